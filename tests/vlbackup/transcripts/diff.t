What two backups don't share.

  $ cp "$SAMPLES"/*.vlb .
  $ vlbackup diff first.vlb first.vlb
  equal
  $ vlbackup diff first.vlb second.vlb
  templates: in another order
  settings settings.current.path_dontpromptlist_filename: only in the first
  [1]
  $ vlbackup diff --restored first.vlb second.vlb
  templates: in another order (files and registry values come in the order in which the system finds them)
  settings settings.current.path_dontpromptlist_filename: only in the first (the do-not-prompt list of a document is not written back)
  equal except for that
  $ vlbackup diff second.vlb first.vlb --restored
  templates: in another order (files and registry values come in the order in which the system finds them)
  settings settings.current.path_dontpromptlist_filename: only in the second
  [1]
  $ vlbackup diff --json --restored first.vlb second.vlb
  {
    "schema": "vlbackup-diff-1",
    "differences": [
      {
        "element": "templates",
        "item": "",
        "reason": "files and registry values come in the order in which the system finds them",
        "what": "in another order"
      },
      {
        "element": "settings",
        "item": "settings.current.path_dontpromptlist_filename",
        "reason": "the do-not-prompt list of a document is not written back",
        "what": "only in the first"
      }
    ],
    "equal": false
  }
  $ vlbackup diff --json first.vlb first.vlb
  {
    "schema": "vlbackup-diff-1",
    "differences": [],
    "equal": true
  }
  $ vlbackup diff --quiet first.vlb first.vlb
  equal
  $ vlbackup diff first.vlb
  vlbackup: the other backup is missing (name the other backup, or give --live)
  [2]
  $ vlbackup diff first.vlb second.vlb --live
  vlbackup: --live compares with the profile, not with another backup (name the other backup, or give --live)
  [2]
  $ vlbackup diff first.vlb --live
  vlbackup: there is no profile on this system (use vlbackup.exe on Windows or under Wine, in the user's own session)
  [1]

Each part by name, and what differs in it.

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
  $ backup a "$(file a.vlm QUI=), $(file b.vlm ''), $(file c.vlm eA==)" "$(link l t a.vlm 7 id true), $(link m t a.vlm 8 id false)" \
  >   "$(category c 1), $(category d 2)"
  $ backup b "$(file b.vlm eA==), $(file a.vlm QUM=), $(file A.vlm eA==)" "$(link l u b.vlm 6 di false), $(link n t a.vlm 8 id false)" \
  >   "$(category d 2), $(category c '\"')"
  $ vlbackup diff a.vlb b.vlb
  templates a.vlm: content: 2 and 2 bytes that differ
  templates b.vlm: content: 0 and 1 bytes that differ
  templates c.vlm: only in the first
  templates A.vlm: only in the second
  templates: in another order
  quicklinks l: target: "t" and "u"
  quicklinks l: manifest: "a.vlm" and "b.vlm"
  quicklinks l: profile: "7" and "6"
  quicklinks l: manifestid: "id" and "di"
  quicklinks l: wocred: "1" and "0"
  quicklinks m: only in the first
  quicklinks n: only in the second
  categories c: text: "1" and """
  categories: in another order
  [1]
  $ vlbackup diff --json a.vlb b.vlb | head -n 22
  {
    "schema": "vlbackup-diff-1",
    "differences": [
      {
        "element": "templates",
        "item": "a.vlm",
        "what": "content: 2 and 2 bytes that differ"
      },
      {
        "element": "templates",
        "item": "b.vlm",
        "what": "content: 0 and 1 bytes that differ"
      },
      {
        "element": "templates",
        "item": "c.vlm",
        "what": "only in the first"
      },
      {
        "element": "templates",
        "item": "A.vlm",
        "what": "only in the second"
  $ vlbackup diff --restored a.vlb b.vlb | tail -n 2
  categories c: text: "1" and """
  categories: in another order (files and registry values come in the order in which the system finds them)

Where a name comes twice, they are matched by their order.

  $ backup a "$(file a.vlm MQ==), $(file a.vlm Mg==), $(file b.vlm Mw==)"
  $ backup b "$(file a.vlm MQ==), $(file b.vlm Mw==), $(file a.vlm Mw==), $(file a.vlm NA==)"
  $ vlbackup diff a.vlb b.vlb
  templates a.vlm: content: 1 and 1 bytes that differ
  templates a.vlm: only in the second
  templates: in another order
  [1]
  $ backup b "$(file a.vlm Mg==), $(file a.vlm MQ==), $(file b.vlm Mw==)"
  $ vlbackup diff a.vlb b.vlb
  templates a.vlm: content: 1 and 1 bytes that differ
  templates a.vlm: content: 1 and 1 bytes that differ
  [1]

Settings by their members, or as a whole.

  $ members() { backup $1 '' '' '' "{\"document\": \"$2\"}"; }
  $ members a '{\"x\": {\"y\": 1, \"z\": \"Ä\\n\"}, \"e\": {}, \"l\": [1, 2]}'
  $ members b '{\"x\": {\"y\": true, \"w\": 1}, \"e\": null, \"l\": [1, 3]}'
  $ vlbackup diff a.vlb b.vlb
  settings e: value: "{}" and "null"
  settings l: value: "[1,2]" and "[1,3]"
  settings x.y: value: "1" and "true"
  settings x.z: only in the first
  settings x.w: only in the second
  [1]
  $ members b ' {\"l\": [1,2], \"e\": {}, \"x\": {\"z\": \"Ä\\n\", \"y\": 1}}'
  $ vlbackup diff a.vlb b.vlb
  backup element 3: encoded differently
  [1]
  $ members b '{'
  $ vlbackup diff a.vlb b.vlb
  settings e: only in the first
  settings l: only in the first
  settings x.y: only in the first
  settings x.z: only in the first
  settings document: only in the second
  [1]
  $ members a '['
  $ vlbackup diff a.vlb b.vlb
  settings document: text: "[" and "{"
  [1]
  $ backup b '' '' '' '{"showPrompt": 1, "hotKey": "Alt+1", "dontPromptList": "BAF4"}'
  $ vlbackup diff a.vlb b.vlb
  settings: in another form
  settings document: only in the first
  settings training prompt: only in the second
  settings hot key: only in the second
  settings do-not-prompt list: only in the second
  [1]
  $ backup a '' '' '' '{"showPrompt": 0, "hotKey": "Alt+2"}'
  $ vlbackup diff a.vlb b.vlb
  settings training prompt: value: "hide" and "show"
  settings hot key: value: "Alt+2" and "Alt+1"
  settings do-not-prompt list: content: 0 and 3 bytes that differ
  [1]

The same for a reader, but not the same bytes; and of another version.

  $ bytes() { env printf "$(echo "$*" | sed 's/ //g; s/../\\x&/g')"; }
  $ bytes 30 08 30 00 30 00 30 00 30 00 > four.vlb; bytes 30 81 08 30 00 30 00 30 00 30 00 > longer.vlb
  $ vlbackup diff four.vlb longer.vlb
  backup: encoded differently
  [1]
  $ bytes 30 0B 30 81 00 30 82 00 00 30 00 30 00 > lists.vlb
  $ vlbackup diff --restored four.vlb lists.vlb
  backup element 0: encoded differently
  backup element 1: encoded differently (a number above 0x7FFFFFFF loses leading FF octets on its way)
  [1]
  $ bytes 30 0A 30 00 30 00 30 00 30 00 30 00 > five.vlb; bytes 30 0A 30 00 30 00 30 00 30 00 04 00 > other.vlb
  $ vlbackup diff five.vlb other.vlb
  backup element 4: encoded differently
  [1]
  $ vlbackup diff four.vlb five.vlb
  backup: elements: 4 and 5
  settings: in another form
  [1]
  $ bytes 30 08 30 00 30 00 30 00 30 00 FF | vlbackup diff four.vlb -
  equal
