A restore shows its plan, makes a safety copy, and compares.

  $ . "$TESTS/support/product.sh"
  $ vlhost restore first.vlb --dry-run
  backup: 4 elements: the current version; templates, quick links, categories and settings are restored
  plan:
    add              7  C:\Shared Logons\équipe.vlm
    add              7  C:\users\anna\AppData\Roaming\Veltrano\KRS\Cache\cached.vlm
    add             15  C:\Logons\bank.vlm
    add             15  C:\Logons\Poststelle Köln.vlm
    add             15  C:\Logons\日本語メール.vlm
    add              5  C:\Logons\updata.vls
    add              0  C:\Logons\updata_temp.vls
    quick links: 2, add C:\Logons\quicklinks.txt
    categories: 2 in place of 0
    settings: as in the backup
  warning: templates[1]: "alien|C:\users\anna\AppData\Roaming\Veltrano\KRS\Cache\cached.vlm" goes into a folder of the system, of programs or of a user
  warning: quicklinks[1]: "ノート" opens a program: C:\windows\notepad.exe
  warning: C:\Shared Logons\équipe.vlm: outside the folders that this profile's settings name
  warning: C:\users\anna\AppData\Roaming\Veltrano\KRS\Cache\cached.vlm: outside the folders that this profile's settings name
  vlhost: the backup writes to folders that are not this profile's (nothing was touched; 'vlhost setting set path_alienstorage_dirs' names further folders, and --force restores it all the same)
  [1]
  $ vlhost restore first.vlb 2>&1 | tail -1
  vlhost: the backup writes to folders that are not this profile's (nothing was touched; 'vlhost setting set path_alienstorage_dirs' names further folders, and --force restores it all the same)
  $ vlhost restore first.vlb --dry-run --force --json | grep -B 2 -A 7 '"quickLinks\|where'
        "grade": "warning",
        "what": "\"alien|C:\\users\\anna\\AppData\\Roaming\\Veltrano\\KRS\\Cache\\cached.vlm\" goes into a folder of the system, of programs or of a user",
        "where": "templates[1]"
      },
      {
        "grade": "warning",
        "what": "\"ノート\" opens a program: C:\\windows\\notepad.exe",
        "where": "quicklinks[1]"
      },
      {
        "grade": "warning",
        "what": "outside the folders that this profile's settings name",
        "where": "C:\\Shared Logons\\équipe.vlm"
      },
      {
        "grade": "warning",
        "what": "outside the folders that this profile's settings name",
        "where": "C:\\users\\anna\\AppData\\Roaming\\Veltrano\\KRS\\Cache\\cached.vlm"
      }
    ],
    "plan": 
    {
      "appliesSettings": true,
      "categories": 
      {
  --
        }
      ],
      "quickLinks": 
      {
        "action": "add",
        "count": 2,
        "path": "C:\\Logons\\quicklinks.txt"
      }
    },
    "schema": "vlhost-restore-1"
  $ ls "$drive/Logons"; ls
  cut.vlb
  first.vlb
  second.vlb

Marked paths need the settings' leave, or --force.

  $ mkdir "$drive/Shared Logons"
  $ vlhost setting set path_alienstorage_dirs 'C:\Shared Logons|C:\users\anna\AppData\Roaming\Veltrano\KRS\Cache' --quiet
  $ vlhost restore first.vlb
  backup: 4 elements: the current version; templates, quick links, categories and settings are restored
  plan:
    add              7  C:\Shared Logons\équipe.vlm
    add              7  C:\users\anna\AppData\Roaming\Veltrano\KRS\Cache\cached.vlm
    add             15  C:\Logons\bank.vlm
    add             15  C:\Logons\Poststelle Köln.vlm
    add             15  C:\Logons\日本語メール.vlm
    add              5  C:\Logons\updata.vls
    add              0  C:\Logons\updata_temp.vls
    quick links: 2, add C:\Logons\quicklinks.txt
    categories: 2 in place of 0
    settings: as in the backup
  warning: templates[1]: "alien|C:\users\anna\AppData\Roaming\Veltrano\KRS\Cache\cached.vlm" goes into a folder of the system, of programs or of a user
  warning: quicklinks[1]: "ノート" opens a program: C:\windows\notepad.exe
  safety copy: 1 in C:\\users\\*\\AppData\\Local\\Veltrano\\KRS\\SafetyCopies (glob)
  difference: C:\users\anna\AppData\Roaming\Veltrano\KRS\Cache\cached.vlm: was not written: its folder is missing, and a restore makes none
  vlhost: not everything came back as the backup has it ('vlhost restore --undo' puts the old state back)
  [1]
  $ mkdir -p "$drive/users/anna/AppData/Roaming/Veltrano/KRS/Cache"
  $ vlhost restore first.vlb
  backup: 4 elements: the current version; templates, quick links, categories and settings are restored
  plan:
    same             7  C:\Shared Logons\équipe.vlm
    add              7  C:\users\anna\AppData\Roaming\Veltrano\KRS\Cache\cached.vlm
    same            15  C:\Logons\bank.vlm
    same            15  C:\Logons\Poststelle Köln.vlm
    same            15  C:\Logons\日本語メール.vlm
    same             5  C:\Logons\updata.vls
    same             0  C:\Logons\updata_temp.vls
    quick links: 2, change C:\Logons\quicklinks.txt
    categories: 2 in place of 2
    settings: as in the backup
  warning: templates[1]: "alien|C:\users\anna\AppData\Roaming\Veltrano\KRS\Cache\cached.vlm" goes into a folder of the system, of programs or of a user
  warning: quicklinks[1]: "ノート" opens a program: C:\windows\notepad.exe
  safety copy: 2 in C:\\users\\*\\AppData\\Local\\Veltrano\\KRS\\SafetyCopies (glob)
  restored and compared: all is as the backup has it
  $ tr -d '\r' <"$drive/Logons/quicklinks.txt"
  [ShortCutRecord]
  Manifest=c:\logons\bank.vlm
  Url=https://bank.example/login?x=1
  Name=Meine Bank
  Profile=1
  ManifestID=m-1
  QLwoCred=0
  [ShortCutRecord]
  Manifest=c:\logons\Poststelle Köln.vlm
  Dlgpath=C:\windows\notepad.exe
  Name=ノート
  Profile=2
  ManifestID=m-2
  QLwoCred=1
  $ cat "$drive/Shared Logons"/*.vlm "$drive/users/anna/AppData/Roaming/Veltrano/KRS/Cache/cached.vlm"
  shared
  cached
  $ values 'HKCU\SOFTWARE\Veltrano\Applications\DashBoard'
  HKEY_CURRENT_USER\SOFTWARE\Veltrano\Applications\DashBoard
      LastQLCategory    REG_SZ    
  HKEY_CURRENT_USER\SOFTWARE\Veltrano\Applications\DashBoard\QLCategories
      Home    REG_SZ    mail
      Work    REG_SZ    bank;post
  $ values 'HKCU\SOFTWARE\Veltrano\Settings' | grep -v path
  HKEY_CURRENT_USER\SOFTWARE\Veltrano\Settings
      open_guard_desk_qa    REG_SZ    Ctrl+Alt+71
      show_training_prompt    REG_SZ    -1
      useGrabbingCreds    REG_SZ    1
  $ vlhost restore first.vlb --quiet

What a later user has is added to, changed or deleted; what can't be is a difference.

  $ cd "$drive/Logons"
  $ rm bank.vlm; echo later >updata.vls; echo late >late.vlm; echo late >late.vls; echo kept >kept.txt; rm quicklinks.txt
  $ windows reg add 'HKCU\SOFTWARE\Veltrano\Applications\DashBoard\QLCategories' /v Late /d late /f >"$drive/log"
  $ vlhost setting set open_guard_desk_qa F1 --quiet
  $ cd ../work
  $ windows attrib +r 'C:\Logons\late.vlm'
  $ vlhost restore - --json <second.vlb
  {
    "differences": 
    [
      {
        "item": "C:\\Logons\\late.vlm",
        "what": "was not deleted (is it read-only?)"
      }
    ],
    "done": true,
    "elements": 4,
    "findings": 
    [
      {
        "grade": "warning",
        "what": "\"alien|C:\\users\\anna\\AppData\\Roaming\\Veltrano\\KRS\\Cache\\cached.vlm\" goes into a folder of the system, of programs or of a user",
        "where": "templates[4]"
      },
      {
        "grade": "warning",
        "what": "\"ノート\" opens a program: C:\\windows\\notepad.exe",
        "where": "quicklinks[1]"
      }
    ],
    "plan": 
    {
      "appliesSettings": true,
      "categories": 
      {
        "count": 2,
        "now": 3
      },
      "files": 
      [
        {
          "action": "add",
          "bytes": 15,
          "path": "C:\\Logons\\bank.vlm"
        },
        {
          "action": "same",
          "bytes": 15,
          "path": "C:\\Logons\\Poststelle Köln.vlm"
        },
        {
          "action": "same",
          "bytes": 15,
          "path": "C:\\Logons\\日本語メール.vlm"
        },
        {
          "action": "same",
          "bytes": 7,
          "path": "C:\\Shared Logons\\équipe.vlm"
        },
        {
          "action": "same",
          "bytes": 7,
          "path": "C:\\users\\anna\\AppData\\Roaming\\Veltrano\\KRS\\Cache\\cached.vlm"
        },
        {
          "action": "change",
          "bytes": 5,
          "path": "C:\\Logons\\updata.vls"
        },
        {
          "action": "same",
          "bytes": 0,
          "path": "C:\\Logons\\updata_temp.vls"
        },
        {
          "action": "delete",
          "bytes": 5,
          "path": "C:\\Logons\\late.vlm"
        },
        {
          "action": "delete",
          "bytes": 5,
          "path": "C:\\Logons\\late.vls"
        }
      ],
      "quickLinks": 
      {
        "action": "add",
        "count": 2,
        "path": "C:\\Logons\\quicklinks.txt"
      }
    },
    "safetyCopy": 4,
    "schema": "vlhost-restore-1"
  }
  {"error": "not everything came back as the backup has it","exitStatus": 1,"hint": "'vlhost restore --undo' puts the old state back","schema": "error-1","tool": "vlhost"}
  [1]
  $ windows attrib -r 'C:\Logons\late.vlm'
  $ vlhost restore first.vlb --entry 2 --flags 3 | tail -1
  restored and compared: all is as the backup has it
  $ ls "$drive/Logons"
  Poststelle Köln.vlm
  bank.vlm
  kept.txt
  quicklinks.txt
  updata.vls
  updata_temp.vls
  日本語メール.vlm

One that is not sound is refused.

  $ vlbackup to-json first.vlb first.json
  first.json: 1467 bytes
  $ sed 's/"bank.vlm"/"..\\\\bank.vlm"/' first.json | vlbackup from-json - hostile.vlb
  hostile.vlb: 955 bytes
  $ vlhost restore hostile.vlb
  backup: 4 elements: the current version; templates, quick links, categories and settings are restored
  plan:
    same             7  C:\Shared Logons\équipe.vlm
    same             7  C:\users\anna\AppData\Roaming\Veltrano\KRS\Cache\cached.vlm
    same            15  C:\Logons\bank.vlm
    same            15  C:\Logons\Poststelle Köln.vlm
    same            15  C:\Logons\日本語メール.vlm
    same             5  C:\Logons\updata.vls
    same             0  C:\Logons\updata_temp.vls
    quick links: 2, change C:\Logons\quicklinks.txt
    categories: 2 in place of 2
    settings: as in the backup
  warning: templates[1]: "alien|C:\users\anna\AppData\Roaming\Veltrano\KRS\Cache\cached.vlm" goes into a folder of the system, of programs or of a user
  error: templates[2]: "..\bank.vlm" holds a path, which a restore drops
  error: quicklinks[0]: "Meine Bank" names a template with a path: ..\bank.vlm
  warning: quicklinks[1]: "ノート" opens a program: C:\windows\notepad.exe
  vlhost: the backup is not sound (nothing was touched; --force restores it all the same)
  [1]
  $ sed 's/"updata_temp.vls"/"BANK.vlm"/' first.json | vlbackup from-json - twice.vlb
  twice.vlb: 928 bytes
  $ vlhost restore twice.vlb --force --quiet
  $ sed 's/"Home"/"\\u0007bell"/' first.json | vlbackup from-json - bell.vlb
  bell.vlb: 944 bytes
  $ vlhost restore bell.vlb --dry-run | tail -4
  warning: templates[1]: "alien|C:\users\anna\AppData\Roaming\Veltrano\KRS\Cache\cached.vlm" goes into a folder of the system, of programs or of a user
  warning: quicklinks[1]: "ノート" opens a program: C:\windows\notepad.exe
  warning: categories[0]: "\x07bell" hides control characters or direction marks in the name
  nothing was done: --dry-run
  $ vlhost restore cut.vlb --force
  vlhost: cut.vlb is no whole backup: cut at byte 400 of 942 (copy it again, or save what is intact by 'vlbackup recover')
  [1]
  $ vlhost restore none.vlb
  vlhost: none.vlb does not exist (is the name spelt right?)
  [1]

Wrong usage changes nothing.

  $ vlhost restore
  vlhost: a backup is wanted (vlhost restore FILE)
  [2]
  $ vlhost restore first.vlb --secret-from 0
  vlhost: only --entry plugin-data takes a secret
  [2]
  $ vlhost restore first.vlb --flags 3
  vlhost: only --entry 2 takes flags
  [2]
  $ vlhost restore first.vlb --entry 3
  vlhost: --entry: "3" is none of 1, 2, plugin-data (see vlhost restore --help)
  [2]
  $ echo secret | vlhost restore first.vlb --entry plugin-data --secret-from 0
  backup: 4 elements: the current version; templates, quick links, categories and settings are restored
  plan:
    same             7  C:\Shared Logons\équipe.vlm
    same             7  C:\users\anna\AppData\Roaming\Veltrano\KRS\Cache\cached.vlm
    change          15  C:\Logons\bank.vlm
    same            15  C:\Logons\Poststelle Köln.vlm
    same            15  C:\Logons\日本語メール.vlm
    same             5  C:\Logons\updata.vls
    add              0  C:\Logons\updata_temp.vls
    quick links: 2, change C:\Logons\quicklinks.txt
    categories: 2 in place of 2
    settings: as in the backup
  warning: templates[1]: "alien|C:\users\anna\AppData\Roaming\Veltrano\KRS\Cache\cached.vlm" goes into a folder of the system, of programs or of a user
  warning: quicklinks[1]: "ノート" opens a program: C:\windows\notepad.exe
  vlhost: no agent is running, so the secret would be lost (nothing was touched; start vlagent.exe first)
  [1]
  $ mkdir -p away; mv "$profile/AppData/Local/Veltrano/KRS/SafetyCopies" away
  $ echo file >"$profile/AppData/Local/Veltrano/KRS/SafetyCopies"
  $ vlhost restore first.vlb | tail -1
  vlhost: no safety copy can be made: filesystem error: cannot create directories: Not a directory [C:\\users\\*\\AppData\\Local\\Veltrano\\KRS\\SafetyCopies] (nothing was touched) (glob)
  warning: quicklinks[1]: "ノート" opens a program: C:\windows\notepad.exe
  $ rm "$place/VloSet.dll"
  $ vlhost restore first.vlb
  vlhost: the settings name no personal folder (is VloSet.dll in the installation's bin folder?)
  [1]
