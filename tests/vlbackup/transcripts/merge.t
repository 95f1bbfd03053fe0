One backup of all that is in two.

  $ cp "$SAMPLES"/first.vlb .
  $ vlbackup to-json first.vlb - | sed 's/équipe/team/; s/Meine Bank/My bank/' | vlbackup from-json - third.vlb
  third.vlb: 932 bytes
  $ vlbackup merge first.vlb third.vlb -o both.vlb
  templates alien|C:\Shared Logons\équipe.vlm: only in the first
  templates alien|C:\Shared Logons\team.vlm: only in the second
  quicklinks Meine Bank: name: "Meine Bank" and "My bank"
  vlbackup: first.vlb and third.vlb differ in 1 thing that both have, and nothing is written (--prefer first or --prefer second says which to take)
  [1]
  $ vlbackup merge --prefer second first.vlb third.vlb -o both.vlb
  both.vlb: 1013 bytes
  templates alien|C:\Shared Logons\équipe.vlm: only in the first
  templates alien|C:\Shared Logons\team.vlm: only in the second
  quicklinks Meine Bank: name: "Meine Bank" and "My bank"; from the second
  merged: 13 from both, 1 from the first, 2 from the second
  $ vlbackup diff first.vlb both.vlb
  templates alien|C:\Shared Logons\team.vlm: only in the second
  quicklinks Meine Bank: only in the first
  quicklinks My bank: only in the second
  [1]
  $ vlbackup merge --prefer first third.vlb first.vlb -o - | vlbackup ls - '*an*' '*.vlm'
  templates alien|C:\Shared Logons\team.vlm: only in the first
  templates alien|C:\Shared Logons\équipe.vlm: only in the second
  quicklinks My bank: name: "My bank" and "Meine Bank"; from the first
  merged: 13 from both, 2 from the first, 1 from the second
  templates
           7  alien|C:\Shared Logons\team.vlm
           7  alien|C:\users\anna\AppData\Roaming\Veltrano\KRS\Cache\cached.vlm
          15  bank.vlm
          15  Poststelle Köln.vlm
          15  日本語メール.vlm
           7  alien|C:\Shared Logons\équipe.vlm
  quick links
    My bank -> https://bank.example/login?x=1  (bank.vlm, profile 1, id m-1)
  $ vlbackup merge first.vlb first.vlb -o both.vlb --force; cmp first.vlb both.vlb
  both.vlb: 942 bytes
  merged: 15 from both, 0 from the first, 0 from the second
  $ vlbackup merge first.vlb third.vlb --dry-run
  templates alien|C:\Shared Logons\équipe.vlm: only in the first
  templates alien|C:\Shared Logons\team.vlm: only in the second
  quicklinks Meine Bank: name: "Meine Bank" and "My bank"
  vlbackup: first.vlb and third.vlb differ in 1 thing that both have, and nothing is written (--prefer first or --prefer second says which to take)
  [1]
  $ vlbackup merge first.vlb third.vlb --dry-run --prefer first
  templates alien|C:\Shared Logons\équipe.vlm: only in the first
  templates alien|C:\Shared Logons\team.vlm: only in the second
  quicklinks Meine Bank: name: "Meine Bank" and "My bank"; from the first
  merged: 13 from both, 2 from the first, 1 from the second
  $ vlbackup merge first.vlb third.vlb --dry-run --prefer first --quiet
  $ vlbackup merge first.vlb third.vlb --prefer first --quiet -o both.vlb --force
  $ vlbackup merge first.vlb third.vlb --quiet -o both.vlb --force
  templates alien|C:\Shared Logons\équipe.vlm: only in the first
  templates alien|C:\Shared Logons\team.vlm: only in the second
  quicklinks Meine Bank: name: "Meine Bank" and "My bank"
  vlbackup: first.vlb and third.vlb differ in 1 thing that both have, and nothing is written (--prefer first or --prefer second says which to take)
  [1]

  $ vlbackup merge first.vlb third.vlb
  vlbackup: where to write is missing (give either --output or --dry-run)
  [2]
  $ vlbackup merge first.vlb third.vlb -o both.vlb --dry-run
  vlbackup: --dry-run writes nothing (give either --output or --dry-run)
  [2]
  $ vlbackup merge first.vlb third.vlb -o both.vlb --prefer third
  vlbackup: --prefer: "third" is none of first, second (see vlbackup merge --help)
  [2]
  $ vlbackup merge first.vlb third.vlb -o both.vlb --prefer first
  vlbackup: both.vlb exists already (give another name, or --force to replace it)
  [1]
  $ vlbackup verify both.vlb
  warning: templates[1]: "alien|C:\users\anna\AppData\Roaming\Veltrano\KRS\Cache\cached.vlm" goes into a folder of the system, of programs or of a user (byte 89, element 0/1)
  warning: quicklinks[1]: "ノート" opens a program: C:\windows\notepad.exe (byte 656, element 1/1)
  sound, with warnings

Names in another case are one thing, as they are to Windows; a data file that was missing gives way.

  $ backup() {
  >   printf '{"schema": "vlbackup-backup-1", "templates": [%s], "quicklinks": [%s], "categories": [%s], "settings": %s}' \
  >     "$2" "$3" "$4" "${5:-$settings}" | vlbackup from-json - $1.vlb --force --quiet
  > }
  $ settings='{"document": "{}"}'
  $ file() { printf '{"name": "%s", "content": "%s"}' "$@"; }
  $ link() {
  >   printf '{"name": "%s", "target": "%s", "manifest": "%s", "profile": %s, "manifestid": "%s", "wocred": %s}' "$@"
  > }
  $ category() { printf '{"name": "%s", "text": "%s"}' "$@"; }
  $ backup a "$(file a.vlm QUI=), $(file B.vlm MQ==), $(file updata.vls ''), $(file updata_temp.vls MQ==), $(file 'alien|C:\\x.vlm' '')" \
  >   "$(link l t a.vlm 7 id true), $(link m t b.vlm 7 id true), $(link n t a.vlm 8 id true)" "$(category c 1), $(category d 1)"
  $ backup b "$(file b.VLM MjI=), $(file A.VLM QUI=), $(file updata.vls MzMz), $(file updata_temp.vls ''), $(file z.vlm NDQ=), $(file 'alien|c:/X.vlm' eA==)" \
  >   "$(link o u B.vlm 7 x false), $(link l t A.vlm 7 id true)" "$(category D 2), $(category C 1), $(category e '')"
  $ vlbackup merge a.vlb b.vlb -o -
  templates B.vlm: content: 1 and 2 bytes that differ
  templates updata.vls: only in the second
  templates updata_temp.vls: only in the first
  templates alien|C:\x.vlm: content: 0 and 1 bytes that differ
  templates z.vlm: only in the second
  quicklinks m: name: "m" and "o"; target: "t" and "u"; manifestid: "id" and "x"; wocred: "1" and "0"
  quicklinks n: only in the first
  categories d: text: "1" and "2"
  categories e: only in the second
  vlbackup: a.vlb and b.vlb differ in 4 things that both have, and nothing is written (--prefer first or --prefer second says which to take)
  [1]
  $ vlbackup merge a.vlb b.vlb -o - --prefer first | vlbackup ls -
  templates B.vlm: content: 1 and 2 bytes that differ; from the first
  templates updata.vls: only in the second
  templates updata_temp.vls: only in the first
  templates alien|C:\x.vlm: content: 0 and 1 bytes that differ; from the first
  templates z.vlm: only in the second
  quicklinks m: name: "m" and "o"; target: "t" and "u"; manifestid: "id" and "x"; wocred: "1" and "0"; from the first
  quicklinks n: only in the first
  categories d: text: "1" and "2"; from the first
  categories e: only in the second
  merged: 3 from both, 6 from the first, 3 from the second
  templates
           2  a.vlm
           1  B.vlm
           3  updata.vls
           1  updata_temp.vls
           0  alien|C:\x.vlm
           2  z.vlm
  quick links
    l -> t  (a.vlm, profile 7, id id, without credentials)
    m -> t  (b.vlm, profile 7, id id, without credentials)
    n -> t  (a.vlm, profile 8, id id, without credentials)
  categories
    c = 1
    d = 1
    e = 
  settings (document)
    {}
  $ vlbackup merge a.vlb b.vlb -o - --prefer second 2> report | vlbackup ls -; tail -n 1 report
  templates
           2  a.vlm
           2  b.VLM
           3  updata.vls
           1  updata_temp.vls
           1  alien|c:/X.vlm
           2  z.vlm
  quick links
    l -> t  (a.vlm, profile 7, id id, without credentials)
    o -> u  (B.vlm, profile 7, id x)
    n -> t  (a.vlm, profile 8, id id, without credentials)
  categories
    c = 1
    D = 2
    e = 
  settings (document)
    {}
  merged: 3 from both, 2 from the first, 7 from the second
  $ vlbackup merge a.vlb b.vlb --json --dry-run --prefer first | head -n 26
  {
    "schema": "vlbackup-merge-1",
    "items": [
      {
        "element": "templates",
        "from": "both",
        "item": "a.vlm"
      },
      {
        "conflict": "content: 1 and 2 bytes that differ",
        "element": "templates",
        "from": "first",
        "item": "B.vlm"
      },
      {
        "element": "templates",
        "from": "second",
        "item": "updata.vls"
      },
      {
        "element": "templates",
        "from": "first",
        "item": "updata_temp.vls"
      },
      {
        "conflict": "content: 0 and 1 bytes that differ",
  $ vlbackup merge a.vlb b.vlb --json -o c.vlb | grep -c neither
  {"error": "a.vlb and b.vlb differ in 4 things that both have, and nothing is written","exitStatus": 1,"hint": "--prefer first or --prefer second says which to take","schema": "error-1","tool": "vlbackup"}
  4

Settings are put together member by member.

  $ members() { backup $1 '' '' '' "{\"document\": \"$2\"}"; }
  $ members a '{\"a\": 1, \"b\": 2, \"x\": {\"y\": [1]}}'
  $ members b '{\"a\": 1, \"b\": \"Ä\", \"c\": {\"d\": 4}, \"e\": \"\", \"x\": 5}'
  $ vlbackup merge a.vlb b.vlb -o - --prefer second | vlbackup cat - settings
  settings b: 2 and "Ä"; from the second
  settings c.d: only in the second
  settings e: only in the second
  settings x: {"y": [1]} and 5; from the second
  merged: 1 from both, 0 from the first, 4 from the second
  {"a": 1, "b": "Ä", "c": {"d": 4}, "e": "", "x": 5} (no-eol)
  $ members b '{\"c\": {\"d\": 4}}'
  $ vlbackup merge a.vlb b.vlb -o - 2> /dev/null | vlbackup cat - settings
  {"a":1,"b":2,"c":{"d":4},"x":{"y":[1]}} (no-eol)
  $ members b '{\"b\": 2, \"x\": {\"y\": [1]}}'
  $ vlbackup merge b.vlb a.vlb --quiet -o c.vlb --force; cmp a.vlb c.vlb
  $ backup b '' '' '' '{"showPrompt": 1, "hotKey": "Alt+1"}'
  $ vlbackup merge a.vlb b.vlb --dry-run
  settings: of another form, or not the same
  vlbackup: a.vlb and b.vlb differ in 1 thing that both have, and nothing is written (--prefer first or --prefer second says which to take)
  [1]
  $ vlbackup merge a.vlb b.vlb -o - --prefer second | vlbackup ls - settings
  settings: of another form, or not the same; from the second
  merged: 0 from both, 0 from the first, 1 from the second
  settings (legacy)
    training prompt: show
    hot key: Alt+1
    do-not-prompt list: 0 bytes as stored
  $ vlbackup merge b.vlb b.vlb --dry-run --json
  {
    "schema": "vlbackup-merge-1",
    "items": [
      {
        "element": "settings",
        "from": "both",
        "item": ""
      }
    ]
  }

Versions: the new backup has the form of the later.

  $ vlbackup from-json - two.vlb --quiet <<'END'
  > {"schema": "vlbackup-backup-1", "templates": [],
  >  "quicklinks": [{"name": "né", "target": "t", "manifest": "a.vlm", "profile": 255, "manifestid": "i", "wocred": true}]}
  > END
  $ vlbackup merge two.vlb two.vlb -o - 2> /dev/null | vlbackup info - | head -n 1
  backup       37 bytes, 2 elements: an early version; templates and quick links with narrow texts are restored
  $ backup a "$(file a.vlm '')" "$(link n t a.vlm 1 i false)" ''
  $ vlbackup merge two.vlb a.vlb -o - | vlbackup ls -
  templates a.vlm: only in the second
  quicklinks né: only in the first
  quicklinks n: only in the second
  merged: 0 from both, 1 from the first, 2 from the second
  templates
           0  a.vlm
  quick links
    né -> t  (a.vlm, profile 255, id i, without credentials)
    n -> t  (a.vlm, profile 1, id i)
  categories
  settings (document)
    {}
  $ vlbackup merge a.vlb two.vlb -o - 2> /dev/null | vlbackup verify -
  warning: templates[0]: "a.vlm" is empty, and a restore empties the file (byte 4, element 0/0)
  sound, with warnings
  $ env printf '\x30\x0A\x30\x00\x30\x00\x30\x00\x30\x00\x30\x00' > five.vlb
  $ vlbackup merge five.vlb two.vlb -o - 2> /dev/null | vlbackup info - | head -n 1
  backup       55 bytes, 5 elements: an unknown version; templates, quick links and categories are restored, the rest is left alone
  $ vlbackup merge five.vlb a.vlb --dry-run
  templates a.vlm: only in the second
  quicklinks n: only in the second
  settings: of another form, or not the same
  vlbackup: five.vlb and a.vlb differ in 1 thing that both have, and nothing is written (--prefer first or --prefer second says which to take)
  [1]

Both must be sound.

  $ members a '{'
  $ vlbackup merge first.vlb a.vlb --dry-run
  vlbackup: a.vlb is not sound (vlbackup verify says why, and vlbackup recover saves what is intact)
  [1]
  $ vlbackup merge a.vlb first.vlb --dry-run --json
  {"error": "a.vlb is not sound","exitStatus": 1,"hint": "vlbackup verify says why, and vlbackup recover saves what is intact","schema": "error-1","tool": "vlbackup"}
  [1]
