A text in everything that a backup holds.

  $ cp "$SAMPLES"/first.vlb .
  $ vlbackup find first.vlb Köln
  byte 301, element 0/3/0: name of Poststelle Köln.vlm (once, UTF-16BE)
  byte 663, element 1/1/2: manifest of ノート (once, UTF-16BE)
  $ vlbackup find first.vlb bank
  byte 240, element 0/2/0: name of bank.vlm (once, UTF-16BE)
  byte 270, element 0/2/1: content of bank.vlm (once, UTF-8)
  byte 497, element 1/0/1: target of Meine Bank (once, UTF-16BE)
  byte 545, element 1/0/2: manifest of Meine Bank (once, UTF-16BE)
  byte 741, element 2/1/1: text of Work (once, UTF-16BE)
  $ vlbackup find first.vlb BANK
  [1]
  $ vlbackup find --ignore-case first.vlb BANK
  byte 240, element 0/2/0: name of bank.vlm (once, UTF-16BE)
  byte 270, element 0/2/1: content of bank.vlm (once, UTF-8)
  byte 469, element 1/0/0: name of Meine Bank (once, UTF-16BE)
  byte 497, element 1/0/1: target of Meine Bank (once, UTF-16BE)
  byte 545, element 1/0/2: manifest of Meine Bank (once, UTF-16BE)
  byte 741, element 2/1/1: text of Work (once, UTF-16BE)
  $ vlbackup find -i first.vlb ÉQUIPE
  [1]
  $ vlbackup find first.vlb 日本語
  byte 340, element 0/4/0: name of 日本語メール.vlm (once, UTF-16BE)
  $ vlbackup find first.vlb '\windows\'
  byte 597, element 1/1/1: target of ノート (once, UTF-16BE)
  $ vlbackup find first.vlb show_training
  byte 909, element 3/0: document of settings.current.show_training_prompt (once, UTF-8)
  $ vlbackup find first.vlb 'never.example/'
  byte 857, element 3/0: document of settings.current.path_dontpromptlist_filename (once, UTF-8)
  $ vlbackup find first.vlb false
  byte 909, element 3/0: document of settings.current.show_training_prompt (once, UTF-8)
  $ vlbackup find first.vlb ''
  vlbackup: an empty text is everywhere (say what to look for)
  [2]
  $ vlbackup find --json first.vlb ノート
  {
    "schema": "vlbackup-find-1",
    "matches": [
      {
        "count": 1,
        "encoding": "UTF-16BE",
        "name": "ノート",
        "offset": 583,
        "path": "1/1/0",
        "where": "name"
      }
    ]
  }
  $ vlbackup find --json first.vlb none
  {
    "schema": "vlbackup-find-1",
    "matches": []
  }
  [1]
  $ vlbackup find --json first.vlb Alt+71
  {
    "schema": "vlbackup-find-1",
    "matches": [
      {
        "count": 1,
        "encoding": "UTF-8",
        "name": "settings.current.open_guard_desk_qa",
        "offset": 812,
        "path": "3/0",
        "where": "document"
      }
    ]
  }

Texts of two bytes to a character are found at whole characters; contents are searched in UTF-8 and UTF-16LE.

  $ printf '{"schema": "vlbackup-backup-1", "quicklinks": [], "templates": [{"name": "\u4100\u4200", "content": ""},
  >   {"name": "AB\u0141\u0042", "content": "%s"}]}' "$(printf 'AB \000A\000B A\000B\000 aAB' | base64)" | vlbackup from-json - two.vlb
  two.vlb: 50 bytes
  $ vlbackup find two.vlb A
  byte 20, element 0/1/0: name of ABŁB (once, UTF-16BE)
  byte 32, element 0/1/1: content of ABŁB (4 times, UTF-8)
  byte 36, element 0/1/1: content of ABŁB (2 times, UTF-16LE)
  $ vlbackup find two.vlb B
  byte 22, element 0/1/0: name of ABŁB (2 times, UTF-16BE)
  byte 33, element 0/1/1: content of ABŁB (4 times, UTF-8)
  byte 42, element 0/1/1: content of ABŁB (once, UTF-16LE)
  $ vlbackup find two.vlb AB
  byte 20, element 0/1/0: name of ABŁB (once, UTF-16BE)
  byte 32, element 0/1/1: content of ABŁB (2 times, UTF-8)
  byte 40, element 0/1/1: content of ABŁB (once, UTF-16LE)
  $ vlbackup find -i two.vlb aB
  byte 20, element 0/1/0: name of ABŁB (once, UTF-16BE)
  byte 32, element 0/1/1: content of ABŁB (2 times, UTF-8)
  byte 40, element 0/1/1: content of ABŁB (once, UTF-16LE)
  $ vlbackup find two.vlb $(printf '\344\204\200')
  byte 8, element 0/0/0: name of 䄀䈀 (once, UTF-16BE)
  byte 35, element 0/1/1: content of ABŁB (once, UTF-16LE)
  $ vlbackup find two.vlb "$(printf '\377')"
  [1]

The document member by member, with its escapes resolved; what is no JSON as it stands.

  $ doc() { printf '{"schema": "vlbackup-backup-1", "quicklinks": [], "categories": [], "templates": [], "settings": %s}' "$1" | vlbackup from-json - doc.vlb --force --quiet; }
  $ doc '{"document": "{\"a\": {\"b\": \"K\\u00f6ln Köln\", \"c\": [\"köln\", 7, {\"Köln\": \"x\"}]}, \"e\": {}} // Köln"}'
  $ vlbackup find doc.vlb Köln
  byte 24, element 3/0: document of a.b (2 times, UTF-8)
  byte 71, element 3/0: document of a.c.Köln (once, UTF-8)
  $ vlbackup find -i doc.vlb K
  byte 24, element 3/0: document of a.b (2 times, UTF-8)
  byte 49, element 3/0: document of a.c (once, UTF-8)
  byte 71, element 3/0: document of a.c.Köln (once, UTF-8)
  $ vlbackup find doc.vlb 7
  byte 58, element 3/0: document of a.c (once, UTF-8)
  $ vlbackup find doc.vlb a.b
  byte 24, element 3/0: document of a.b (once, UTF-8)
  $ vlbackup find doc.vlb '{'
  [1]
  $ doc '{"document": "Köln {"}'
  $ vlbackup find doc.vlb Köln
  byte 12, element 3/0: document (once, UTF-8)
  $ doc '{"showPrompt": 1, "hotKey": "Alt+1", "dontPromptList": "BAZLAPYAbAA="}'
  $ vlbackup find doc.vlb Alt
  byte 15, element 3/1: hot key (once, UTF-16BE)
  $ vlbackup find doc.vlb Kö
  byte 29, element 3/2: do-not-prompt list (once, UTF-16LE)
  $ doc '{"der": "MAMEAUI="}'
  $ vlbackup find doc.vlb B
  byte 12, element 3/0: document (once, UTF-8)

Links with narrow texts, unknown elements, and bytes after the end.

  $ bytes() { env printf "$(echo "$*" | sed 's/ //g; s/../\\x&/g')"; }
  $ bytes 30 16 30 00 30 12 30 10 04 02 41 00 04 01 41 04 01 42 02 01 41 04 01 41 41 41 > old.vlb
  $ vlbackup find old.vlb A
  byte 10, element 1/0/0: name of A (once, UTF-8)
  byte 14, element 1/0/1: target of A (once, UTF-8)
  byte 23, element 1/0/4: manifest id of A (once, UTF-8)
  byte 24, element none: after the end (2 times, UTF-8)
  $ bytes 30 0F 30 00 30 00 30 00 30 03 04 01 41 04 02 41 00 > five.vlb
  $ vlbackup find five.vlb A
  byte 12, element 3/0: unknown item (once, UTF-8)
  byte 15, element 4: unknown element (once, UTF-8)
  byte 15, element 4: unknown element (once, UTF-16LE)
