A copy of the same shape without anything personal.

  $ cp "$SAMPLES"/*.vlb .
  $ vlbackup redact first.vlb case.vlb
  case.vlb: 942 bytes
  $ vlbackup ls case.vlb
  templates
           7  alien|C:\xxxxxxxxxxxxb\xxxxxb.vlm
           7  alien|C:\users\xxxb\xxxxxxb\xxxxxxc\xxxxxxxb\xxb\xxxxb\xxxxxc.vlm
          15  xxxc.vlm
          15  xxxxxxxxxxxxxxb.vlm
          15  xxxxxd.vlm
           5  updata.vls
           0  updata_temp.vls
  quick links
    xxxxxxxxxb -> https://xxxc.xxxxxxd/xxxxc?b=0  (xxxc.vlm, profile 1, id c-0)
    xxc -> C:\windows\xxxxxxf.exe  (xxxxxxxxxxxxxxb.vlm, profile 2, id c-1, without credentials)
  categories
    xxxd = xxxf
    xxxg = xxxc;xxxh
  settings (document)
    {"settings":{"current":{"open_guard_desk_qa":"Ctrl+Alt+90","path_dontpromptlist_filename":"https://xxxxd.xxxxxxd/\r\n","show_training_prompt":false,"useGrabbingCreds":true}}}
  $ vlbackup cat case.vlb updata.vls
  xxxxx (no-eol)
  $ vlbackup verify case.vlb
  warning: templates[1]: "alien|C:\users\xxxb\xxxxxxb\xxxxxxc\xxxxxxxb\xxb\xxxxb\xxxxxc.vlm" goes into a folder of the system, of programs or of a user (byte 89, element 0/1)
  warning: quicklinks[1]: "xxc" opens a program: C:\windows\xxxxxxf.exe (byte 579, element 1/1)
  sound, with warnings
  $ vlbackup redact cut.vlb - | vlbackup info -
  vlbackup: standard input is no whole backup: cut at byte 400 of 942 (copy it again, or save what is intact by 'vlbackup recover')
  [1]

What the format and its judgement know stays; equal words are equal, whatever their case.

  $ redact() {
  >   printf '{"schema": "vlbackup-backup-1", "templates": [%s], "quicklinks": [%s], "categories": [%s], "settings": %s}' \
  >     "$1" "$2" "$3" "${4:-$settings}" | vlbackup from-json - - | vlbackup redact - - | vlbackup ls -
  > }
  $ settings='{"document": "{}"}'
  $ names() {
  >   list=
  >   for name; do list="$list${list:+, }{\"name\": \"$name\", \"content\": \"QUI=\"}"; done; redact "$list" | grep -i vlm
  > }
  $ names Anna.vlm 'anna (2).VLM' 'Bank Anna.vlmx' 'a-b_c.vlm' ANNA.Bernd.vlm Größe.vlm größe.vlm '日本.vlm' ' x .vlm' 'CON.vlm' com1.vlm lpt¹.vlm
           2  xxxb.vlm
           2  xxxb (0).VLM
           2  xxxxxxxxb.vlmx
           2  b-xxb.vlm
           2  xxxb.xxxxb.vlm
           2  xxxxc.vlm
           2  xxxxc.vlm
           2  xb.vlm
           2   c .vlm
           2  CON.vlm
           2  com1.vlm
           2  lpt¹.vlm
  $ names 'alien|C:\\Users\\Weber\\a.vlm' 'alien|\\\\server\\share\\b.vlm' 'alien|\\\\?\\UNC\\server\\x.vlm' 'alien|d:/Program Files (x86)/b.vlm' \
  >   'alien|C:\\Windows\\System32\\b.vlm' 'ALIEN|x.vlm' 'a\u202eb\tc.vlm' 'com.vlm' '12345.vlm' '54321.vlm' 'a1.vlm'
           2  alien|C:\Users\xxxxb\b.vlm
           2  alien|\\xxxxxb\xxxxc\c.vlm
           2  alien|\\?\UNC\xxxxxb\d.vlm
           2  alien|d:/Program Files (x86)/c.vlm
           2  alien|C:\Windows\System32\c.vlm
           2  ALIEN|d.vlm
           2  b\u{202E}c\tf.vlm
           2  com.vlm
           2  99990.vlm
           2  99991.vlm
           2  xb.vlm
  $ link() { printf '{"name": "Bank", "target": "%s", "manifest": "Anna.vlm", "profile": %d, "manifestid": "Kennung", "wocred": true}' "$@"; }
  $ redact '' "$(link https://bank.example/login?user=4711 1), $(link 'javascript:alert(1)' 9), $(link 'C:\\Anna\\x.exe' 255)" | grep profile
    xxxb -> https://xxxb.xxxxxxb/xxxxb?xxxc=9990  (xxxd.vlm, profile 1, id xxxxxxc, without credentials)
    xxxb -> javascript:xxxxc(0)  (xxxd.vlm, profile 9, id xxxxxxc, without credentials)
    xxxb -> C:\xxxd\b.exe  (xxxd.vlm, profile 255, id xxxxxxc, without credentials)
  $ redact '' "$(link mailto:anna@bank.example 1), $(link 'http://localhost:8080/a.cmd' 2), $(link 'file:///x' 3)" | grep profile
    xxxb -> mailto:xxxc@xxxb.xxxxxxb  (xxxc.vlm, profile 1, id xxxxxxc, without credentials)
    xxxb -> http://localhost:9990/b.cmd  (xxxc.vlm, profile 2, id xxxxxxc, without credentials)
    xxxb -> file:///c  (xxxc.vlm, profile 3, id xxxxxxc, without credentials)
  $ redact '' '' '{"name": "Privat", "text": "Bank;Anna"}' | grep =
    xxxxxb = xxxb;xxxc

Of the settings the members that are known stay, their flags, numbers of a kind, modifier keys and escapes.

  $ redact '' '' '' '{"document": "{\"settings\": {\"current\": {\"open_guard_desk_qa\": \"Ctrl+Alt+Shift+Win+71\", \"secret\": true, \"useGrabbingCreds\": null, \"n\": [-12.5e7, 1E3, false], \"path_dontpromptlist_filename\": \"K\\u00f6ln\\r\\n\\u001bx\\\"y\\/z\"}}} // Anna"}' | tail -n 1
    {"settings": {"current": {"open_guard_desk_qa": "Ctrl+Alt+Shift+Win+90", "xxxxxb": true, "useGrabbingCreds": null, "b": [-11.1e1, 1E1, false], "path_dontpromptlist_filename": "c\u0078xb\r\n\u001bd\"f\/g"}}} // xxxx
  $ redact '' '' '' '{"document": "Anna {\"open"}' | tail -n 1
    xxxx {"xxxb
  $ redact '' '' '' '{"showPrompt": 1, "hotKey": "Alt+Weber", "dontPromptList": "BAVXZWJlcg=="}' | tail -n 3
    training prompt: show
    hot key: Alt+xxxxb
    do-not-prompt list: 7 bytes as stored

Bytes that are in no known form are filled; damage stays damage.

  $ bytes() { env printf "$(echo "$*" | sed 's/ //g; s/../\\x&/g')"; }
  $ bytes 30 0C 30 04 41 02 57 57 30 04 1F 81 05 00 FF 41 | vlbackup redact - - | od -An -tx1
   30 0c 30 04 05 02 78 78 30 04 1f 81 01 00 78 78
  $ bytes 30 14 30 0A 30 08 1E 03 00 57 57 04 01 57 30 06 57 65 62 65 72 99 | vlbackup redact - - | od -An -tx1
   30 14 30 0a 30 08 1e 03 00 62 78 04 01 78 30 06
   05 65 78 78 78 78
  $ bytes 30 10 30 00 30 00 30 00 30 04 02 02 57 57 04 02 57 57 | vlbackup redact - - | od -An -tx1
   30 10 30 00 30 00 30 00 30 04 02 02 78 78 04 02
   78 78
  $ bytes 30 0D 30 07 30 05 1E 05 00 61 62 30 02 30 80 FF | vlbackup redact - - | od -An -tx1
   30 0d 30 07 30 05 1e 05 00 62 78 30 02 04 80 78
