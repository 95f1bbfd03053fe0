What is in a backup, as lists.

  $ cp "$SAMPLES"/* .
  $ vlbackup ls first.vlb
  templates
           7  alien|C:\Shared Logons\équipe.vlm
           7  alien|C:\users\anna\AppData\Roaming\Veltrano\KRS\Cache\cached.vlm
          15  bank.vlm
          15  Poststelle Köln.vlm
          15  日本語メール.vlm
           5  updata.vls
           0  updata_temp.vls
  quick links
    Meine Bank -> https://bank.example/login?x=1  (bank.vlm, profile 1, id m-1)
    ノート -> C:\windows\notepad.exe  (Poststelle Köln.vlm, profile 2, id m-2, without credentials)
  categories
    Home = mail
    Work = bank;post
  settings (document)
    {"settings":{"current":{"open_guard_desk_qa":"Ctrl+Alt+71","path_dontpromptlist_filename":"https://never.example/\r\n","show_training_prompt":false,"useGrabbingCreds":true}}}
  $ vlbackup ls none.vlb
  vlbackup: none.vlb does not exist (is the name spelt right?)
  [1]

Names choose, in any letter case, with * and ? as patterns and / for \. A title of nothing is left out.

  $ vlbackup ls first.vlb BANK.vlm 'POSTSTELLE k?ln.vlm'
  templates
          15  bank.vlm
          15  Poststelle Köln.vlm
  $ vlbackup ls first.vlb 'alien|c:/*/?quipe.*' home
  templates
           7  alien|C:\Shared Logons\équipe.vlm
  categories
    Home = mail
  $ vlbackup ls first.vlb '*.VLS' 'meine *'
  templates
           5  updata.vls
           0  updata_temp.vls
  quick links
    Meine Bank -> https://bank.example/login?x=1  (bank.vlm, profile 1, id m-1)
  $ vlbackup ls first.vlb 'b*a*k*' 'b*a*m' '*日*ル*.vlm' '?ank.vlm*'
  templates
          15  bank.vlm
          15  日本語メール.vlm
  $ vlbackup ls first.vlb bank 'ban?vlm' '?bank.vlm' 'bank.vlm?' settings
  settings (document)
    {"settings":{"current":{"open_guard_desk_qa":"Ctrl+Alt+71","path_dontpromptlist_filename":"https://never.example/\r\n","show_training_prompt":false,"useGrabbingCreds":true}}}
  vlbackup: no bank in first.vlb (vlbackup ls shows the stored names)
  vlbackup: no ban?vlm in first.vlb (vlbackup ls shows the stored names)
  vlbackup: no ?bank.vlm in first.vlb (vlbackup ls shows the stored names)
  vlbackup: no bank.vlm? in first.vlb (vlbackup ls shows the stored names)
  [1]
  $ vlbackup ls first.vlb '*' | wc -l
  16
  $ vlbackup ls --json first.vlb ノート updata.vls Work nothing
  {
    "schema": "vlbackup-ls-1",
    "categories": [
      {
        "name": "Work",
        "text": "bank;post"
      }
    ],
    "quicklinks": [
      {
        "manifest": "Poststelle Köln.vlm",
        "manifestid": "m-2",
        "name": "ノート",
        "profile": 2,
        "target": "C:\\windows\\notepad.exe",
        "wocred": true
      }
    ],
    "templates": [
      {
        "alien": false,
        "name": "updata.vls",
        "size": 5,
        "target": "updata.vls"
      }
    ]
  }
  {"error": "no nothing in first.vlb","exitStatus": 1,"hint": "vlbackup ls shows the stored names","schema": "error-1","tool": "vlbackup"}
  [1]
  $ vlbackup ls --json first.vlb 'alien|*équipe.vlm' settings
  {
    "schema": "vlbackup-ls-1",
    "categories": [],
    "quicklinks": [],
    "settings": {
      "document": "{\"settings\":{\"current\":{\"open_guard_desk_qa\":\"Ctrl+Alt+71\",\"path_dontpromptlist_filename\":\"https://never.example/\\r\\n\",\"show_training_prompt\":false,\"useGrabbingCreds\":true}}}",
      "form": "document"
    },
    "templates": [
      {
        "alien": true,
        "name": "alien|C:\\Shared Logons\\équipe.vlm",
        "size": 7,
        "target": "C:\\Shared Logons\\équipe.vlm"
      }
    ]
  }

Backups of every version: two elements have narrow link texts, three no settings, and of five or more nobody knows the
rest. Early settings are typed elements.

  $ backup() { vlbackup from-json --quiet --force - "$1.vlb"; }
  $ backup two <<'END'
  > {"schema": "vlbackup-backup-1", "templates": [],
  >  "quicklinks": [{"name": "né", "target": "t", "manifest": "m", "profile": 255, "manifestid": "i"}]}
  > END
  $ vlbackup ls two.vlb
  templates
  quick links
    né -> t  (m, profile 255, id i)
  categories
  settings (absent)
  $ vlbackup ls --json two.vlb
  {
    "schema": "vlbackup-ls-1",
    "categories": [],
    "quicklinks": [
      {
        "manifest": "m",
        "manifestid": "i",
        "name": "né",
        "profile": 255,
        "target": "t",
        "wocred": false
      }
    ],
    "settings": {
      "form": "absent"
    },
    "templates": []
  }
  $ backup three <<'END'
  > {"schema": "vlbackup-backup-1", "templates": [], "categories": [{"name": "c", "text": ""}],
  >  "quicklinks": [{"name": "n", "target": "t", "manifest": "m", "profile": 0, "manifestid": "", "wocred": false}]}
  > END
  $ vlbackup ls three.vlb
  templates
  quick links
    n -> t  (m, profile 0, id )
  categories
    c = 
  settings (absent)
  $ backup five <<'END'
  > {"schema": "vlbackup-backup-1", "templates": [], "categories": [], "quicklinks": [], "more": [
  >  {"der": "MBIEEHsic2V0dGluZ3MiOnt9fQA="}, {"der": "MAA="}]}
  > END
  $ vlbackup ls five.vlb
  templates
  quick links
  categories
  settings (absent)
  $ backup legacy <<'END'
  > {"schema": "vlbackup-backup-1", "templates": [], "categories": [], "quicklinks": [],
  >  "settings": {"showPrompt": 1, "hotKey": "Alt+1", "dontPromptList": "BAF4"}}
  > END
  $ vlbackup ls legacy.vlb
  templates
  quick links
  categories
  settings (legacy)
    training prompt: show
    hot key: Alt+1
    do-not-prompt list: 3 bytes as stored
  $ vlbackup ls --json legacy.vlb settings
  {
    "schema": "vlbackup-ls-1",
    "categories": [],
    "quicklinks": [],
    "settings": {
      "dontPromptList": "BAF4",
      "form": "legacy",
      "hotKey": "Alt+1",
      "showPrompt": true
    },
    "templates": []
  }
  $ backup legacy <<'END'
  > {"schema": "vlbackup-backup-1", "templates": [], "categories": [], "quicklinks": [],
  >  "settings": {"showPrompt": 2, "hotKey": ""}}
  > END
  $ vlbackup ls legacy.vlb settings
  settings (legacy)
    training prompt: hide
    hot key: 
    do-not-prompt list: 0 bytes as stored

Nothing in a backup steers the terminal.

  $ backup odd <<'END'
  > {"schema": "vlbackup-backup-1", "templates": [{"name": "\u001b[31m\u202e\t.vlm", "content": ""}],
  >  "quicklinks": [{"name": "a\nb", "target": "\u007f", "manifest": "\u0085", "profile": 1, "manifestid": "\u2028",
  >                  "wocred": true}],
  >  "categories": [{"name": "\u200e", "text": "\u2066"}, {"name": "😀", "text": "߀ߺ"}], "settings": {"document": "\r\n\u0001<\ufffd"}}
  > END
  $ vlbackup ls odd.vlb
  templates
           0  \x1B[31m\u{202E}\t.vlm
  quick links
    a\nb -> \x7F  (\u{85}, profile 1, id \u{2028}, without credentials)
  categories
    \u{200E} = \u{2066}
    😀 = ߀ߺ
  settings (document)
    \r\n\x01<�
  $ vlbackup ls --json odd.vlb
  {
    "schema": "vlbackup-ls-1",
    "categories": [
      {
        "name": "\u200e",
        "text": "\u2066"
      },
      {
        "name": "😀",
        "text": "߀ߺ"
      }
    ],
    "quicklinks": [
      {
        "manifest": "\u0085",
        "manifestid": "\u2028",
        "name": "a\nb",
        "profile": 1,
        "target": "\u007f",
        "wocred": true
      }
    ],
    "settings": {
      "document": "\r\n\u0001<�",
      "form": "document"
    },
    "templates": [
      {
        "alien": false,
        "name": "\u001b[31m\u202e\t.vlm",
        "size": 0,
        "target": "\u001b[31m\u202e\t.vlm"
      }
    ]
  }
