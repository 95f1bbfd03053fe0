Safety copies: what a restore replaces can be put back.

  $ . "$TESTS/support/product.sh"
  $ copies="$profile/AppData/Local/Veltrano/KRS/SafetyCopies"
  $ restore() { vlhost restore first.vlb --force --quiet 2>>log; }
  $ vlhost restore --undo
  vlhost: there is no safety copy in C:\\users\\*\\AppData\\Local\\Veltrano\\KRS\\SafetyCopies (a restore makes one) (glob)
  [1]
  $ vlhost restore --list-undo
  there is no safety copy
  $ cd "$drive/Logons"; printf mine >bank.vlm; printf own >own.vlm
  $ windows attrib +h 'C:\Logons\bank.vlm'
  $ windows reg add 'HKCU\SOFTWARE\Veltrano\Applications\DashBoard\QLCategories' /v Mine /t REG_EXPAND_SZ /d %x% /f >../log
  $ vlhost setting set show_training_prompt 1 --quiet
  $ cd ../work
  $ restore
  [1]
  $ vlhost restore --undo --dry-run
  puts back: safety copy 1
  plan:
    change           4  C:\Logons\bank.vlm
    add              3  C:\Logons\own.vlm
    delete          15  C:\Logons\Poststelle Köln.vlm
    delete          15  C:\Logons\日本語メール.vlm
    delete           5  C:\Logons\updata.vls
    delete           0  C:\Logons\updata_temp.vls
    delete         285  C:\Logons\quicklinks.txt
    categories: 1 in place of 2
    setting open_guard_desk_qa: 
    setting show_training_prompt: 1
    setting useGrabbingCreds: 0
  nothing was done: --dry-run
  $ vlhost restore --undo
  puts back: safety copy 1
  plan:
    change           4  C:\Logons\bank.vlm
    add              3  C:\Logons\own.vlm
    delete          15  C:\Logons\Poststelle Köln.vlm
    delete          15  C:\Logons\日本語メール.vlm
    delete           5  C:\Logons\updata.vls
    delete           0  C:\Logons\updata_temp.vls
    delete         285  C:\Logons\quicklinks.txt
    categories: 1 in place of 2
    setting open_guard_desk_qa: 
    setting show_training_prompt: 1
    setting useGrabbingCreds: 0
  safety copy: 2 in C:\\users\\*\\AppData\\Local\\Veltrano\\KRS\\SafetyCopies (glob)
  put back
  $ cat "$drive/Logons/bank.vlm" "$drive/Logons/own.vlm"; ls "$drive/Logons"
  mineownbank.vlm
  own.vlm
  $ windows attrib 'C:\Logons\bank.vlm'
  A   H        C:\\Logons\\bank.vlm\r (esc)
  $ values 'HKCU\SOFTWARE\Veltrano\Applications\DashBoard'
  HKEY_CURRENT_USER\SOFTWARE\Veltrano\Applications\DashBoard\QLCategories
      Mine    REG_EXPAND_SZ    %x%
  $ values 'HKCU\SOFTWARE\Veltrano\Settings' | grep -v path
  HKEY_CURRENT_USER\SOFTWARE\Veltrano\Settings
      open_guard_desk_qa    REG_SZ    
      show_training_prompt    REG_SZ    1
      useGrabbingCreds    REG_SZ    0
  $ vlhost restore --list-undo
     2  20??-??-??T??:??:??Z      6 files         335 bytes  before undoing with copy 1 <- put back by --undo (glob)
     1  20??-??-??T??:??:??Z      2 files           7 bytes  before a restore (glob)

A second one brings back what the first replaced; a number chooses.

  $ vlhost restore --undo --quiet
  $ ls "$drive/Logons"
  Poststelle Köln.vlm
  bank.vlm
  quicklinks.txt
  updata.vls
  updata_temp.vls
  日本語メール.vlm
  $ windows attrib -h 'C:\Logons\bank.vlm'
  $ printf mine >"$drive/Logons/bank.vlm"
  $ vlhost restore --undo 1 --dry-run --json
  {
    "done": false,
    "plan": 
    {
      "categories": 
      {
        "count": 1,
        "now": 2
      },
      "copies": 
      [
        1
      ],
      "files": 
      [
        {
          "action": "change",
          "bytes": 4,
          "path": "C:\\Logons\\bank.vlm"
        },
        {
          "action": "add",
          "bytes": 3,
          "path": "C:\\Logons\\own.vlm"
        },
        {
          "action": "delete",
          "bytes": 15,
          "path": "C:\\Logons\\Poststelle Köln.vlm"
        },
        {
          "action": "delete",
          "bytes": 15,
          "path": "C:\\Logons\\日本語メール.vlm"
        },
        {
          "action": "delete",
          "bytes": 5,
          "path": "C:\\Logons\\updata.vls"
        },
        {
          "action": "delete",
          "bytes": 0,
          "path": "C:\\Logons\\updata_temp.vls"
        },
        {
          "action": "delete",
          "bytes": 285,
          "path": "C:\\Logons\\quicklinks.txt"
        }
      ],
      "settings": 
      {
        "open_guard_desk_qa": "",
        "show_training_prompt": "1",
        "useGrabbingCreds": "0"
      }
    },
    "schema": "vlhost-undo-1"
  }
  $ vlhost restore --undo 1 --quiet
  $ vlhost restore --list-undo --json
  {
    "copies": 
    [
      {
        "bytes": 324,
        "continues": 0,
        "files": 6,
        "finished": true,
        "made": "20??-??-??T??:??:??Z", (glob)
        "next": true,
        "number": 4,
        "undoes": 
        [
          1
        ]
      },
      {
        "bytes": 7,
        "continues": 0,
        "files": 2,
        "finished": true,
        "made": "20??-??-??T??:??:??Z", (glob)
        "next": false,
        "number": 3,
        "undoes": 
        [
          2
        ]
      },
      {
        "bytes": 335,
        "continues": 0,
        "files": 6,
        "finished": true,
        "made": "20??-??-??T??:??:??Z", (glob)
        "next": false,
        "number": 2,
        "undoes": 
        [
          1
        ]
      },
      {
        "bytes": 7,
        "continues": 0,
        "files": 2,
        "finished": true,
        "made": "20??-??-??T??:??:??Z", (glob)
        "next": false,
        "number": 1,
        "undoes": []
      }
    ],
    "folder": "C:\\\\users\\\\*\\\\AppData\\\\Local\\\\Veltrano\\\\KRS\\\\SafetyCopies", (glob)
    "schema": "vlhost-list-undo-1"
  }
  $ vlhost restore --undo 9
  vlhost: there is no safety copy 9 ('vlhost restore --list-undo' lists them)
  [1]
  $ vlhost restore --undo x
  vlhost: 'x' is no number of a safety copy ('vlhost restore --list-undo' lists them)
  [2]
  $ vlhost restore first.vlb --undo
  vlhost: file excludes --undo (see vlhost restore --help)
  [2]

The newest five stay, and older ones that hold what is nowhere else: here one of a category, and one of a file.

  $ restore
  [1]
  $ windows reg add 'HKCU\SOFTWARE\Veltrano\Applications\DashBoard\QLCategories' /v Lone /d lone /f >log
  $ restore
  [1]
  $ printf lone >"$drive/Logons/lone.vlm"
  $ restore
  [1]
  $ for at in 1 2 3 4 5 6; do restore; done
  [1]
  $ vlhost restore --list-undo
    13  20??-??-??T??:??:??Z      6 files         335 bytes  before a restore <- put back by --undo (glob)
    12  20??-??-??T??:??:??Z      6 files         335 bytes  before a restore (glob)
    11  20??-??-??T??:??:??Z      6 files         335 bytes  before a restore (glob)
    10  20??-??-??T??:??:??Z      6 files         335 bytes  before a restore (glob)
     9  20??-??-??T??:??:??Z      6 files         335 bytes  before a restore (glob)
     7  20??-??-??T??:??:??Z      7 files         339 bytes  before a restore (glob)
     6  20??-??-??T??:??:??Z      6 files         335 bytes  before a restore (glob)
     5  20??-??-??T??:??:??Z      2 files           7 bytes  before a restore (glob)
  $ ls -v "$copies"
  5
  6
  7
  9
  10
  11
  12
  13

Work that was killed half way: what it left goes, and an undo goes back to before it.

  $ mkdir "$copies/90.dropped" "$copies/91.part"
  $ newest=$(ls "$copies" | grep '^[0-9]*$' | sort -n | tail -1)
  $ rm "$copies/$newest/finished"
  $ restore
  [1]
  $ vlhost restore --list-undo >list; head -2 list
    92  20??-??-??T??:??:??Z      6 files         335 bytes  before a restore; holds what the work before, after copy 13, had left unfinished <- put back by --undo (glob)
    13  20??-??-??T??:??:??Z      6 files         335 bytes  before a restore, which did not finish <- put back by --undo (glob)
  $ ls "$copies"
  10
  11
  12
  13
  5
  6
  7
  92
  $ vlhost restore --undo --dry-run >list; head -1 list
  puts back: safety copy 13 92
  $ rm "$copies/$newest"/files/0/[0-9]*
  $ vlhost restore --list-undo >list; head -1 list
  vlhost: the safety copy in C:\\users\\*\\AppData\\Local\\Veltrano\\KRS\\SafetyCopies\\13 is damaged (what is left of its files can be copied by hand) (glob)
    92  20??-??-??T??:??:??Z      6 files         335 bytes  before a restore; holds what the work before, after copy 13, had left unfinished <- put back by --undo (glob)
  $ vlhost setting set path_localstorage_dir 'C:\other' --quiet
  $ vlhost restore --undo --json
  {"error": "the safety copy in C:\\\\users\\\\*\\\\AppData\\\\Local\\\\Veltrano\\\\KRS\\\\SafetyCopies\\\\13 is damaged","exitStatus": 0,"hint": "what is left of its files can be copied by hand","schema": "error-1","tool": "vlhost"} (glob)
  {"error": "the safety copy is of the personal folder C:\\Logons\\, which is C:\\other now","exitStatus": 1,"hint": "nothing was touched; set path_localstorage_dir back first","schema": "error-1","tool": "vlhost"}
  [1]
  $ vlhost setting set path_localstorage_dir 'C:\Logons\' --quiet

The one copy of earlier versions is taken over.

  $ rm -r "$copies"; mkdir -p "$copies/../RestoreUndo"; printf early >"$copies/../RestoreUndo/0"
  $ cat >"$copies/../RestoreUndo/index.json" <<'END'
  > {"folder":"C:\\Logons\\","files":[{"path":"C:\\Logons\\early.vlm","copy":"0","attributes":32}],"dashboard":{},"settings":{}}
  > END
  $ vlhost restore --undo
  puts back: safety copy 1
  plan:
    add              5  C:\Logons\early.vlm
    delete          15  C:\Logons\bank.vlm
    delete          15  C:\Logons\Poststelle Köln.vlm
    delete          15  C:\Logons\日本語メール.vlm
    delete           5  C:\Logons\updata.vls
    delete           0  C:\Logons\updata_temp.vls
    delete         285  C:\Logons\quicklinks.txt
    categories: 0 in place of 2
  safety copy: 2 in C:\\users\\*\\AppData\\Local\\Veltrano\\KRS\\SafetyCopies (glob)
  put back
  $ cat "$drive/Logons/early.vlm"
  early (no-eol)

A file that lost its attributes alone is put back, too.

  $ restore
  [1]
  $ windows attrib +h 'C:\Logons\bank.vlm'
  $ restore
  [1]
  $ vlhost restore --undo --dry-run | grep vlm
    change          15  C:\Logons\bank.vlm
    same            15  C:\Logons\Poststelle Köln.vlm
    same            15  C:\Logons\日本語メール.vlm

Files are compared to their ends.

  $ head -c 70000 /dev/zero | tr '\0' x >"$drive/Logons/large.vlm"
  $ vlhost backup large.vlb --quiet
  $ printf y | dd of="$drive/Logons/large.vlm" bs=1 seek=69999 conv=notrunc status=none
  $ vlhost restore large.vlb --dry-run | grep large
    change       70000  C:\Logons\large.vlm

The do-not-prompt list that a backup of the earlier form replaces is in the copy.

  $ printf mine >"$drive/Logons/never.txt"
  $ vlbackup from-json - earlier.vlb --quiet <<'END'
  > {"schema": "vlbackup-backup-1", "templates": [], "quicklinks": [], "categories": [],
  >  "settings": {"showPrompt": 1, "hotKey": "Alt+1", "dontPromptList": "BAF4"}}
  > END
  $ vlhost restore earlier.vlb --quiet
  $ cat "$drive/Logons/never.txt"
  \x04\x00\x01 (no-eol) (esc)
  $ vlhost restore --undo --quiet
  $ cat "$drive/Logons/never.txt"
  mine (no-eol)
