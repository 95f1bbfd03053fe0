What is intact in a damaged backup.

  $ cp "$SAMPLES"/*.vlb .
  $ vlbackup recover cut.vlb recovered.vlb
  recovered.vlb: 381 bytes
  lost: byte 379, 21 bytes: damaged, or not of a kind that a restore takes
  lost: byte 400, 542 bytes: missing at the end, by the length that the backup gives
  recovered: 5 templates, 0 quick links, 0 categories, no settings
  [1]
  $ vlbackup verify recovered.vlb
  note: backup: 2 elements: an early version; templates and quick links with narrow texts are restored (byte 0)
  warning: templates[1]: "alien|C:\users\anna\AppData\Roaming\Veltrano\KRS\Cache\cached.vlm" goes into a folder of the system, of programs or of a user (byte 89, element 0/1)
  sound, with warnings
  $ vlbackup recover cut.vlb recovered.vlb
  vlbackup: recovered.vlb exists already (give another name, or --force to replace it)
  [1]
  $ vlbackup recover cut.vlb recovered.vlb --force --quiet
  lost: byte 379, 21 bytes: damaged, or not of a kind that a restore takes
  lost: byte 400, 542 bytes: missing at the end, by the length that the backup gives
  [1]
  $ vlbackup recover cut.vlb recovered.vlb --force --json
  {
    "schema": "vlbackup-recover-1",
    "path": "recovered.vlb",
    "size": 381,
    "recovered": {
      "categories": 0,
      "quicklinks": 0,
      "settings": false,
      "templates": 5
    },
    "lost": [
      {
        "name": "",
        "offset": 379,
        "size": 21,
        "what": "damaged, or not of a kind that a restore takes"
      },
      {
        "name": "",
        "offset": 400,
        "size": 542,
        "what": "missing at the end, by the length that the backup gives"
      }
    ]
  }
  [1]
  $ vlbackup recover cut.vlb - | vlbackup ls - | tail -n 4
  lost: byte 379, 21 bytes: damaged, or not of a kind that a restore takes
  lost: byte 400, 542 bytes: missing at the end, by the length that the backup gives
  recovered: 5 templates, 0 quick links, 0 categories, no settings
          15  日本語メール.vlm
  quick links
  categories
  settings (absent)
  $ vlbackup recover cut.vlb - --json | wc -c
  {
    "schema": "vlbackup-recover-1",
    "path": "-",
    "size": 381,
    "recovered": {
      "categories": 0,
      "quicklinks": 0,
      "settings": false,
      "templates": 5
    },
    "lost": [
      {
        "name": "",
        "offset": 379,
        "size": 21,
        "what": "damaged, or not of a kind that a restore takes"
      },
      {
        "name": "",
        "offset": 400,
        "size": 542,
        "what": "missing at the end, by the length that the backup gives"
      }
    ]
  }
  381
  $ vlbackup recover first.vlb whole.vlb; cmp first.vlb whole.vlb
  whole.vlb: 942 bytes
  recovered: 7 templates, 2 quick links, 2 categories, settings
  $ vlbackup recover cut.vlb cut.vlb --force
  vlbackup: cut.vlb is what is read (give the output another name)
  [1]

Damage in the front, in lengths, in a tag and within entries; what comes after it is found.

  $ damaged() { cp first.vlb damaged.vlb; printf "$2" | dd of=damaged.vlb bs=1 seek=$1 conv=notrunc status=none; }
  $ names() { vlbackup recover damaged.vlb - | vlbackup ls - | sed 's/  (.*//'; }
  $ damaged 0 '\000\000\000\000\000\000\000\000'; names
  lost: byte 0, 8 bytes: damaged, or not of a kind that a restore takes
  recovered: 7 templates, 2 quick links, 2 categories, settings
  templates
           7  alien|C:\Shared Logons\équipe.vlm
           7  alien|C:\users\anna\AppData\Roaming\Veltrano\KRS\Cache\cached.vlm
          15  bank.vlm
          15  Poststelle Köln.vlm
          15  日本語メール.vlm
           5  updata.vls
           0  updata_temp.vls
  quick links
    Meine Bank -> https://bank.example/login?x=1
    ノート -> C:\windows\notepad.exe
  categories
    Home = mail
    Work = bank;post
  settings (document)
    {"settings":{"current":{"open_guard_desk_qa":"Ctrl+Alt+71","path_dontpromptlist_filename":"https://never.example/\r\n","show_training_prompt":false,"useGrabbingCreds":true}}}
  $ damaged 12 '\377'; names | head -n 3
  lost: byte 8, 81 bytes: "｡lien|C:\Shared Logons\équipe.vlm" holds a path, which a restore drops
  recovered: 6 templates, 2 quick links, 2 categories, settings
  templates
           7  alien|C:\users\anna\AppData\Roaming\Veltrano\KRS\Cache\cached.vlm
          15  bank.vlm
  $ damaged 9 '\120'; names
  lost: byte 8, 81 bytes: "alien|C:\Shared Logons\équipe.vlm" damaged, or not of a kind that a restore takes
  recovered: 6 templates, 2 quick links, 2 categories, settings
  templates
           7  alien|C:\users\anna\AppData\Roaming\Veltrano\KRS\Cache\cached.vlm
          15  bank.vlm
          15  Poststelle Köln.vlm
          15  日本語メール.vlm
           5  updata.vls
           0  updata_temp.vls
  quick links
    Meine Bank -> https://bank.example/login?x=1
    ノート -> C:\windows\notepad.exe
  categories
    Home = mail
    Work = bank;post
  settings (document)
    {"settings":{"current":{"open_guard_desk_qa":"Ctrl+Alt+71","path_dontpromptlist_filename":"https://never.example/\r\n","show_training_prompt":false,"useGrabbingCreds":true}}}
  $ damaged 8 '\044'; names | head -n 4
  lost: byte 4, 85 bytes: damaged, or not of a kind that a restore takes
  recovered: 6 templates, 2 quick links, 2 categories, settings
  templates
           7  alien|C:\users\anna\AppData\Roaming\Veltrano\KRS\Cache\cached.vlm
          15  bank.vlm
          15  Poststelle Köln.vlm
  $ damaged 8 'gone, and the length of the name, too'; names | head -n 4
  lost: byte 4, 85 bytes: damaged, or not of a kind that a restore takes
  recovered: 6 templates, 2 quick links, 2 categories, settings
  templates
           7  alien|C:\users\anna\AppData\Roaming\Veltrano\KRS\Cache\cached.vlm
          15  bank.vlm
          15  Poststelle Köln.vlm
  $ tail -c +500 first.vlb > damaged.vlb; names
  lost: byte 0, 80 bytes: damaged, or not of a kind that a restore takes
  recovered: 0 templates, 1 quick link, 2 categories, settings
  templates
  quick links
    ノート -> C:\windows\notepad.exe
  categories
    Home = mail
    Work = bank;post
  settings (document)
    {"settings":{"current":{"open_guard_desk_qa":"Ctrl+Alt+71","path_dontpromptlist_filename":"https://never.example/\r\n","show_training_prompt":false,"useGrabbingCreds":true}}}
  $ damaged 758 '\060'; names | tail -n 4
  recovered: 7 templates, 2 quick links, 2 categories, settings
    Home = mail
    Work = bank;pos0
  settings (document)
    {"settings":{"current":{"open_guard_desk_qa":"Ctrl+Alt+71","path_dontpromptlist_filename":"https://never.example/\r\n","show_training_prompt":false,"useGrabbingCreds":true}}}
  $ (cat first.vlb; printf 'more') > damaged.vlb; vlbackup recover damaged.vlb - | cmp - first.vlb
  lost: byte 942, 4 bytes: damaged, or not of a kind that a restore takes
  recovered: 7 templates, 2 quick links, 2 categories, settings

What a restore would not take is left out: names that no file can have, all but the last of equal ones, settings that are
no JSON.

  $ vlbackup from-json - odd.vlb <<'END'
  > {"schema": "vlbackup-backup-1", "templates": [{"name": "a.vlm", "content": "MQ=="}, {"name": "nul.vlm", "content": ""},
  >   {"name": "A.vlm", "content": "Mg=="}, {"name": "x/b.vlm", "content": ""}],
  >  "quicklinks": [{"name": "l", "target": "t", "manifest": "a.vlm", "profile": 1, "manifestid": "i", "wocred": false},
  >   {"name": "m", "target": "u", "manifest": "a.vlm", "profile": 1, "manifestid": "i", "wocred": false},
  >   {"name": "", "target": "u", "manifest": "a.vlm", "profile": 2, "manifestid": "i", "wocred": false}],
  >  "categories": [{"name": "c", "text": "1"}, {"name": "C", "text": "2"}], "settings": {"document": "{"}}
  > END
  odd.vlb: 243 bytes
  $ vlbackup recover odd.vlb - | vlbackup ls -
  lost: byte 5, 19 bytes: "a.vlm" comes again later, and a restore keeps the last
  lost: byte 24, 22 bytes: "nul.vlm" names a device
  lost: byte 65, 22 bytes: "x/b.vlm" holds a path, which a restore drops
  lost: byte 89, 40 bytes: "l" comes again later, and a restore keeps the last
  lost: byte 169, 38 bytes: "" has no name or no target; a restore drops it
  lost: byte 209, 14 bytes: "c" comes again later, and a restore keeps the last
  lost: byte 237, 6 bytes: damaged, or not of a kind that a restore takes
  recovered: 1 template, 1 quick link, 1 category, no settings
  templates
           1  A.vlm
  quick links
    m -> u  (a.vlm, profile 1, id i)
  categories
    C = 2
  settings (absent)
  $ vlbackup from-json - odd.vlb --force <<'END'
  > {"schema": "vlbackup-backup-1", "templates": [], "quicklinks": [], "categories": [],
  >  "settings": {"document": "{\"settings\": 1}"}}
  > END
  odd.vlb: 28 bytes
  $ vlbackup recover odd.vlb recovered.vlb --force
  vlbackup: nothing in odd.vlb is intact (take another backup)
  [1]

It has the form of the earliest version that holds what was found.

  $ vlbackup from-json - two.vlb <<'END'
  > {"schema": "vlbackup-backup-1", "templates": [{"name": "a.vlm", "content": ""}],
  >  "quicklinks": [{"name": "né", "target": "t", "manifest": "m", "profile": 255, "manifestid": "i"}]}
  > END
  two.vlb: 48 bytes
  $ vlbackup recover two.vlb - | cmp - two.vlb
  recovered: 1 template, 1 quick link, 0 categories, no settings
  $ tail -c +3 two.vlb | vlbackup recover - - | vlbackup ls -
  recovered: 1 template, 1 quick link, 0 categories, no settings
  templates
           0  a.vlm
  quick links
    né -> t  (m, profile 255, id i)
  categories
  settings (absent)
  $ vlbackup from-json - three.vlb <<'END'
  > {"schema": "vlbackup-backup-1", "templates": [], "quicklinks": [], "categories": [{"name": "c", "text": "1"}]}
  > END
  three.vlb: 22 bytes
  $ tail -c +6 three.vlb | vlbackup recover - - | vlbackup info - | sed 1q
  lost: byte 0, 3 bytes: damaged, or not of a kind that a restore takes
  lost: byte 17, 33 bytes: missing at the end, by the length that the backup gives
  recovered: 0 templates, 0 quick links, 1 category, no settings
  backup       22 bytes, 3 elements: an earlier version; templates, quick links and categories are restored
  $ vlbackup from-json - legacy.vlb <<'END'
  > {"schema": "vlbackup-backup-1", "templates": [], "quicklinks": [], "categories": [],
  >  "settings": {"showPrompt": 1, "hotKey": "Alt+1", "dontPromptList": "BAF4"}}
  > END
  legacy.vlb: 30 bytes
  $ tail -c +3 legacy.vlb | vlbackup recover - - | vlbackup ls -
  recovered: 0 templates, 0 quick links, 0 categories, settings
  templates
  quick links
  categories
  settings (legacy)
    training prompt: show
    hot key: Alt+1
    do-not-prompt list: 3 bytes as stored

Nothing at all.

  $ head -c 60 first.vlb | vlbackup recover - out
  vlbackup: nothing in standard input is intact (take another backup)
  [1]
  $ env printf '\x30\x04\x30\x00\x30\x00' | vlbackup recover - - 2> /dev/null | od -An -tx1
   30 04 30 00 30 00
  $ env printf '\x30\x06\x30\x00\x30\x00\x30\x00' | vlbackup recover - - 2> /dev/null | od -An -tx1
   30 06 30 00 30 00 30 00
  $ printf '' | vlbackup recover - out
  vlbackup: standard input is no backup: it is empty (a backup is what 'vlhost backup' writes)
  [1]
  $ vlbackup from-json - - <<'END' | vlbackup recover - out
  > {"schema": "vlbackup-backup-1", "templates": [{"name": "nul.vlm", "content": ""}], "quicklinks": []}
  > END
  vlbackup: nothing in standard input is intact (take another backup)
  [1]
