One stored file, and the rules for every file that is written.

  $ cp "$SAMPLES"/first.vlb .
  $ vlbackup cat first.vlb bank.vlm
  template: bank
  $ vlbackup cat first.vlb 'Poststelle Köln.vlm' --json
  {
    "schema": "vlbackup-cat-1",
    "base64": "dGVtcGxhdGU6IHBvc3QK",
    "name": "Poststelle Köln.vlm",
    "size": 15
  }
  $ vlbackup cat first.vlb settings | head -c 24
  {"settings":{"current":{ (no-eol)
  $ vlbackup cat first.vlb updata_temp.vls
  $ vlbackup cat first.vlb BANK.vlm
  vlbackup: no BANK.vlm in first.vlb (vlbackup ls shows the stored names)
  [1]
  $ vlbackup cat first.vlb "$(printf '\233')" --json
  {"error": "no � in first.vlb","exitStatus": 1,"hint": "vlbackup ls shows the stored names","schema": "error-1","tool": "vlbackup"}
  [1]
  $ vlbackup cat - bank.vlm < first.vlb
  template: bank

Of two with one name it is the last. A file can have the name "settings", too. Bytes go out as they are.

  $ vlbackup from-json - twice.vlb <<'END'
  > {"schema": "vlbackup-backup-1", "quicklinks": [], "categories": [], "settings": {"document": "{}"}, "templates": [
  >  {"name": "a.vlm", "content": "Zmlyc3QK"}, {"name": "a.vlm", "content": "bGFzdAo="},
  >  {"name": "odd.vlm", "content": "AA0KGv8="}, {"name": "settings", "content": "ZmlsZQo="}]}
  > END
  twice.vlb: 118 bytes
  $ vlbackup cat twice.vlb a.vlm
  last
  $ vlbackup cat twice.vlb settings
  file
  $ vlbackup cat twice.vlb odd.vlm | od -An -tx1
   00 0d 0a 1a ff
  $ vlbackup from-json - legacy.vlb <<'END'
  > {"schema": "vlbackup-backup-1", "templates": [], "quicklinks": [], "categories": [],
  >  "settings": {"showPrompt": 1, "hotKey": ""}}
  > END
  legacy.vlb: 17 bytes
  $ vlbackup cat legacy.vlb settings
  vlbackup: no settings in legacy.vlb (vlbackup ls shows the stored names)
  [1]

A file that exists stays, and with --force it is replaced, with its permissions. What is read is never written.

  $ echo mine > out; chmod 604 out
  $ vlbackup redact twice.vlb out
  vlbackup: out exists already (give another name, or --force to replace it)
  [1]
  $ cat out
  mine
  $ vlbackup redact twice.vlb out --force
  out: 118 bytes
  $ stat -c '%a %s' out
  604 118
  $ vlbackup redact twice.vlb twice.vlb --force
  vlbackup: twice.vlb is what is read (give the output another name)
  [1]
  $ ln -s twice.vlb same
  $ vlbackup redact twice.vlb same --force
  vlbackup: same is what is read (give the output another name)
  [1]
  $ ln twice.vlb hard; vlbackup to-json twice.vlb hard --force; rm hard
  vlbackup: hard is what is read (give the output another name)
  $ vlbackup merge legacy.vlb first.vlb -o first.vlb --force --prefer first
  vlbackup: first.vlb is what is read (give the output another name)
  [1]
  $ vlbackup merge legacy.vlb legacy.vlb -o legacy.vlb --force
  vlbackup: legacy.vlb is what is read (give the output another name)
  [1]
  $ vlbackup redact twice.vlb .
  vlbackup: . is a folder (name a file in it)
  [1]
  $ vlbackup redact twice.vlb none/out
  vlbackup: none/out can't be written: the folder does not exist (check the folder, and whether you may write to it)
  [1]
  $ vlbackup redact none.vlb out --force
  vlbackup: none.vlb does not exist (is the name spelt right?)
  [1]
  $ stat -c %s out
  118
  $ umask 027; vlbackup redact twice.vlb new; stat -c %a new
  new: 118 bytes
  640

A link goes on leading where it did, and a device is written to directly.

  $ echo theirs > target; ln -s target link
  $ vlbackup to-json legacy.vlb link
  vlbackup: link exists already (give another name, or --force to replace it)
  [1]
  $ vlbackup to-json legacy.vlb link --force
  link: 154 bytes
  $ readlink link; head -c 1 target
  target
  { (no-eol)
  $ vlbackup redact legacy.vlb /dev/null
  /dev/null: 17 bytes
  $ vlbackup redact legacy.vlb /dev/full
  vlbackup: /dev/full can't be written whole (is the disk full, or the reader gone?)
  [1]
  $ vlbackup redact legacy.vlb - > /dev/full
  vlbackup: standard output can't be written (is the disk full, or the reader gone?)
  [1]
  $ vlbackup ls legacy.vlb > /dev/full
  vlbackup: standard output can't be written (is the disk full, or the reader gone?)
  [1]

Nothing unfinished is left. Such a name that is taken is passed by.

  $ ls
  first.vlb
  legacy.vlb
  link
  new
  out
  same
  target
  twice.vlb
  $ echo keep > unfinished-1.part; vlbackup redact legacy.vlb case.vlb; cat unfinished-1.part
  case.vlb: 17 bytes
  keep
  $ (ulimit -f 0; trap '' XFSZ; vlbackup redact legacy.vlb case.vlb --force); ls *.part; stat -c %s case.vlb
  vlbackup: case.vlb can't be written whole (is the disk full, or the reader gone?)
  unfinished-1.part
  17

The report is of name and size. On standard output the file is alone.

  $ vlbackup to-json legacy.vlb - | head -n 2
  {
    "schema": "vlbackup-backup-1",
  $ vlbackup redact --json legacy.vlb "$(printf 'x\ny')"
  {
    "schema": "vlbackup-redact-1",
    "path": "x\ny",
    "size": 17
  }
  $ vlbackup redact legacy.vlb "$(printf 'x\ny')" --force
  x\ny: 17 bytes
  $ vlbackup redact --quiet legacy.vlb new --force
  $ vlbackup redact --json legacy.vlb - | wc -c
  17
