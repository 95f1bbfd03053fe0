A backup is compared with the disk before it is written.

  $ . "$TESTS/support/product.sh"
  $ vlhost backup logons.vlb
  vlhost: the plug-in gave no backup: there is nothing to back up, or it failed (the plug-in hides failures: 'vlhost trace on', try again, and read the trace)
  [1]
  $ vlhost call set-storage-data first.vlb >log
  $ vlhost backup logons.vlb
  vlhost: warning: quicklinks[1]: "ノート" opens a program: C:\windows\notepad.exe
  file: logons.vlb
  bytes: 651
  contents: 3 templates and 2 data files, equal to the disk; 2 quick links; 2 categories; settings
  $ vlbackup ls logons.vlb
  templates
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
    {"settings":{"current":{"open_guard_desk_qa":"Ctrl+Alt+71","show_training_prompt":false,"useGrabbingCreds":true}}}
  $ vlhost backup logons.vlb
  vlhost: logons.vlb exists already (give another name, or --force to replace it)
  [1]
  $ vlhost backup logons.vlb --checksum
  vlhost: logons.vlb exists already (give another name, or --force to replace it)
  [1]
  $ vlhost backup logons.vlb --checksum --force --quiet
  $ sha256sum -c logons.vlb.sha256
  logons.vlb: OK

A checksum of the backup that is replaced is replaced as well.

  $ printf 'more' >>"$drive/Logons/bank.vlm"
  $ vlhost backup logons.vlb --force --json
  {
    "bytes": 655,
    "categories": 2,
    "dataFiles": 2,
    "file": "logons.vlb",
    "findings": 
    [
      {
        "grade": "warning",
        "item": "quicklinks[1]",
        "what": "\"ノート\" opens a program: C:\\windows\\notepad.exe"
      }
    ],
    "quickLinks": 2,
    "schema": "vlhost-backup-1",
    "secrets": [],
    "templates": 3,
    "written": true
  }
  $ sha256sum -c logons.vlb.sha256
  logons.vlb: OK
  $ vlhost backup other.vlb --checksum --quiet
  $ ls
  cut.vlb
  first.vlb
  log
  logons.vlb
  logons.vlb.sha256
  other.vlb
  other.vlb.sha256
  second.vlb
  $ vlhost backup other.vlb --checksum
  vlhost: other.vlb exists already (give another name, or --force to replace it)
  [1]
  $ rm other.vlb
  $ vlhost backup other.vlb --checksum
  vlhost: other.vlb.sha256 exists already (give another name, or --force to replace it)
  [1]
  $ vlhost backup - >piped.vlb
  vlhost: warning: quicklinks[1]: "ノート" opens a program: C:\windows\notepad.exe
  file: -
  bytes: 655
  contents: 3 templates and 2 data files, equal to the disk; 2 quick links; 2 categories; settings
  $ cmp piped.vlb logons.vlb
  $ vlhost backup - --json
  {"error": "standard output can't take the backup and the JSON text","exitStatus": 2,"hint": "name a file, or leave --json out","schema": "error-1","tool": "vlhost"}
  [2]
  $ vlhost backup - --checksum
  vlhost: a checksum lies beside a file (name one, or leave --checksum out)
  [2]
  $ vlhost backup none/x.vlb
  vlhost: warning: quicklinks[1]: "ノート" opens a program: C:\windows\notepad.exe
  vlhost: none/x.vlb can't be written: the folder does not exist (check the folder, and whether you may write to it)
  [1]
  $ mkdir folder
  $ vlhost backup folder --force
  vlhost: folder is a folder (name a file in it)
  [1]

What can't be stored is said, and nothing is written.

  $ mkdir "$drive/Logons/team.vlm"
  $ windows reg add 'HKCU\SOFTWARE\Veltrano\Applications\DashBoard\QLCategories' /v Odd /t REG_DWORD /d 4 /f >log
  $ vlhost backup logons.vlb --force
  vlhost: warning: templates[2]: "team.vlm" is empty, and a restore empties the file
  vlhost: warning: quicklinks[1]: "ノート" opens a program: C:\windows\notepad.exe
  vlhost: error: C:\Logons\team.vlm: is a folder, of which a restore would make an empty file: rename it
  vlhost: error: Odd: the category is not in the backup: from the first value that is no text, the plug-in leaves them out
  vlhost: error: Work: the category is not in the backup: from the first value that is no text, the plug-in leaves them out
  vlhost: the plug-in gave a backup that is not whole (nothing was written to logons.vlb; mend what is listed, and try again)
  [1]
  $ vlhost backup logons.vlb --force --json
  {
    "bytes": 643,
    "categories": 1,
    "dataFiles": 2,
    "file": "logons.vlb",
    "findings": 
    [
      {
        "grade": "warning",
        "item": "templates[2]",
        "what": "\"team.vlm\" is empty, and a restore empties the file"
      },
      {
        "grade": "warning",
        "item": "quicklinks[1]",
        "what": "\"ノート\" opens a program: C:\\windows\\notepad.exe"
      },
      {
        "grade": "error",
        "item": "C:\\Logons\\team.vlm",
        "what": "is a folder, of which a restore would make an empty file: rename it"
      },
      {
        "grade": "error",
        "item": "Odd",
        "what": "the category is not in the backup: from the first value that is no text, the plug-in leaves them out"
      },
      {
        "grade": "error",
        "item": "Work",
        "what": "the category is not in the backup: from the first value that is no text, the plug-in leaves them out"
      }
    ],
    "quickLinks": 2,
    "schema": "vlhost-backup-1",
    "secrets": [],
    "templates": 4,
    "written": false
  }
  {"error": "the plug-in gave a backup that is not whole","exitStatus": 1,"hint": "nothing was written to logons.vlb; mend what is listed, and try again","schema": "error-1","tool": "vlhost"}
  [1]
  $ sha256sum -c logons.vlb.sha256
  logons.vlb: OK
  $ rmdir "$drive/Logons/team.vlm"
  $ windows reg delete 'HKCU\SOFTWARE\Veltrano\Applications\DashBoard\QLCategories' /v Odd /f >log
  $ : >"$drive/Logons/empty.vlm"
  $ mkdir "$drive/team"; echo team >"$drive/team/team.vlm"
  $ vlhost setting set path_alienstorage_dirs 'C:\team' --quiet
  $ echo secret | vlhost secret store --quiet
  $ vlhost backup logons.vlb --force
  vlhost: warning: templates[1]: "empty.vlm" is empty, and a restore empties the file
  vlhost: warning: quicklinks[1]: "ノート" opens a program: C:\windows\notepad.exe
  file: logons.vlb
  bytes: 739
  contents: 5 templates and 2 data files, equal to the disk; 2 quick links; 2 categories; settings; the secret is not inside: store KRS Protected Storage apart
  $ vlhost backup logons.vlb --force --quiet
  $ vlbackup ls logons.vlb 'alien*' 'empty*'
  templates
           0  empty.vlm
           5  alien|C:\team\team.vlm
  $ rm "$drive"/Logons/*
  $ vlhost backup one.vlb
  file: one.vlb
  bytes: 314
  contents: 1 template and 0 data files, equal to the disk; 0 quick links; 2 categories; settings; the secret is not inside: store KRS Protected Storage apart
  $ vlhost setting set path_localstorage_dir '' --quiet
  $ vlhost backup none.vlb
  vlhost: the settings name no personal folder (is VloSet.dll in the installation's bin folder?)
  [1]
  $ rm "$place/VloSet.dll"
  $ vlhost backup none.vlb
  vlhost: there is nothing to back up without settings: 0x80004001 E_NOTIMPL: Not implemented. (VloSet.dll is not in the installation's bin folder)
  [1]
