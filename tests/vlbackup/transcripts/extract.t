Stored files are written below a folder, and nowhere else.

  $ cp "$SAMPLES"/first.vlb .
  $ vlbackup extract first.vlb out
  out/alien/C/Shared Logons/équipe.vlm
  out/alien/C/users/anna/AppData/Roaming/Veltrano/KRS/Cache/cached.vlm
  out/bank.vlm
  out/Poststelle Köln.vlm
  out/日本語メール.vlm
  out/updata.vls
  out/updata_temp.vls
  $ cat out/bank.vlm
  template: bank
  $ vlbackup extract first.vlb marked 'alien|*' 'UPDATA.*'
  marked/alien/C/Shared Logons/équipe.vlm
  marked/alien/C/users/anna/AppData/Roaming/Veltrano/KRS/Cache/cached.vlm
  marked/updata.vls
  $ find marked -type f | sort
  marked/alien/C/Shared Logons/équipe.vlm
  marked/alien/C/users/anna/AppData/Roaming/Veltrano/KRS/Cache/cached.vlm
  marked/updata.vls

A file that exists stays, unless --force is given. The others are written all the same.

  $ echo mine > marked/updata.vls
  $ vlbackup extract first.vlb marked updata.vls bank.vlm
  marked/bank.vlm
  vlbackup: marked/updata.vls exists already (give another name, or --force to replace it)
  [1]
  $ cat marked/updata.vls
  mine
  $ vlbackup extract first.vlb marked updata.vls --force
  marked/updata.vls
  $ cat marked/updata.vls
  state (no-eol)
  $ vlbackup extract first.vlb marked none 'bank.*' --force
  marked/bank.vlm
  vlbackup: no none in first.vlb (vlbackup ls shows the stored names)
  [1]
  $ vlbackup extract first.vlb new none; ls new
  vlbackup: no none in first.vlb (vlbackup ls shows the stored names)
  ls: cannot access 'new': No such file or directory
  [2]
  $ vlbackup extract --json first.vlb marked '*.vls' none
  {
    "schema": "vlbackup-extract-1",
    "files": [
      {
        "name": "updata.vls",
        "failure": "marked/updata.vls exists already (give another name, or --force to replace it)"
      },
      {
        "name": "updata_temp.vls",
        "path": "marked/updata_temp.vls"
      }
    ]
  }
  {"error": "no none in first.vlb","exitStatus": 1,"hint": "vlbackup ls shows the stored names","schema": "error-1","tool": "vlbackup"}
  [1]
  $ vlbackup extract first.vlb parent/out
  vlbackup: parent/out can't be made: the folder does not exist (extract into another folder)
  [1]
  $ vlbackup extract first.vlb first.vlb
  vlbackup: first.vlb is no folder (extract into another folder)
  [1]
  $ vlbackup extract first.vlb -
  vlbackup: a folder can't be standard output (vlbackup cat writes one file there)
  [2]
  $ cp first.vlb marked/bank.vlm; vlbackup extract marked/bank.vlm marked bank.vlm --force
  vlbackup: marked/bank.vlm is what is read (give the output another name)
  [1]

Names that some file system does not take, or takes for another, are refused on every one.

  $ from() {
  >   list=
  >   for name; do list="$list${list:+, }{\"name\": \"$name\", \"content\": \"eAo=\"}"; done
  >   printf '%s\n' "{\"schema\": \"vlbackup-backup-1\", \"templates\": [$list], \"quicklinks\": []}" |
  >     vlbackup from-json - - | vlbackup extract - new
  >   (cd new; find . -type f | sort); rm -r new
  > }
  $ from 'nul .vlm' 'a:b.vlm' 'a?.vlm' 'a.vlm.' '../a.vlm' 'x\\a.vlm' 'a\u001b.vlm' '..' 'ALIEN|C:\\a.vlm' b.exe
  vlbackup: "nul .vlm" names a device, and isn't written (vlbackup cat writes its bytes)
  vlbackup: "a:b.vlm" holds a path, and isn't written (vlbackup cat writes its bytes)
  vlbackup: "a?.vlm" has a character that no file name can have, and isn't written (vlbackup cat writes its bytes)
  vlbackup: "a.vlm." is the same file as a later one, and isn't written (a restore keeps the last)
  vlbackup: "../a.vlm" is the same file as a later one, and isn't written (a restore keeps the last)
  vlbackup: "x\a.vlm" is the same file as a later one, and isn't written (a restore keeps the last)
  vlbackup: "a\x1B.vlm" has a character that no file name can have, and isn't written (vlbackup cat writes its bytes)
  vlbackup: ".." ends in a blank or a dot, which the file system drops, and isn't written (vlbackup cat writes its bytes)
  vlbackup: "ALIEN|C:\a.vlm" holds a path, and isn't written (vlbackup cat writes its bytes)
  new/b.exe
  ./b.exe
  $ from Ä.vlm a.vlm ä.vlm A.VLM 'alien|C:\\x\\b.vlm' 'alien|c:/x/.\\B.vlm' b.vlm
  vlbackup: "Ä.vlm" is the same file as a later one, and isn't written (a restore keeps the last)
  vlbackup: "a.vlm" is the same file as a later one, and isn't written (a restore keeps the last)
  new/ä.vlm
  new/A.VLM
  vlbackup: "alien|C:\x\b.vlm" is the same file as a later one, and isn't written (a restore keeps the last)
  new/alien/C/x/B.vlm
  new/b.vlm
  ./A.VLM
  ./alien/C/x/B.vlm
  ./b.vlm
  ./ä.vlm
  $ from 'alien|c:\\x/.//b.vlm' 'alien|\\\\s\\x\\b.vlm' 'alien|\\\\?\\C:\\y.vlm' 'alien|//S/t/b.vlm' 'alien|d:/y.vlm'
  new/alien/C/x/b.vlm
  new/alien/UNC/s/x/b.vlm
  vlbackup: "alien|\\?\C:\y.vlm" has a character that no file name can have, and isn't written (vlbackup cat writes its bytes)
  new/alien/UNC/S/t/b.vlm
  new/alien/D/y.vlm
  ./alien/C/x/b.vlm
  ./alien/D/y.vlm
  ./alien/UNC/S/t/b.vlm
  ./alien/UNC/s/x/b.vlm
  $ from 'alien|C:\\x\\' 'alien|C:\\' 'alien|C:' 'alien|x.vlm' 'alien|C:\\a\\..\\b.vlm' 'alien|C:\\con\\b.vlm' 'alien|C:\\a \\b.vlm'
  vlbackup: "alien|C:\x\" names no file, and isn't written (vlbackup cat writes its bytes)
  vlbackup: "alien|C:\" names no file, and isn't written (vlbackup cat writes its bytes)
  vlbackup: "alien|C:" is no full path on a drive or a network share, and isn't written (vlbackup cat writes its bytes)
  vlbackup: "alien|x.vlm" is no full path on a drive or a network share, and isn't written (vlbackup cat writes its bytes)
  vlbackup: "alien|C:\a\..\b.vlm" climbs out of a folder, and isn't written (vlbackup cat writes its bytes)
  vlbackup: "alien|C:\con\b.vlm" names a device, and isn't written (vlbackup cat writes its bytes)
  vlbackup: "alien|C:\a \b.vlm" ends in a blank or a dot, which the file system drops, and isn't written (vlbackup cat writes its bytes)

Nothing is written through a link, or over one.

  $ mkdir -p links/alien/C theirs; echo theirs > theirs/cached.vlm
  $ ln -s ../theirs/cached.vlm links/bank.vlm; ln -s nowhere links/updata.vls; mkfifo links/updata_temp.vls
  $ ln -s "$PWD/theirs" links/alien/C/users; ln -s "$PWD/theirs" 'links/alien/C/Shared Logons'
  $ vlbackup extract first.vlb links --force; cat theirs/cached.vlm; find theirs links | sort
  vlbackup: links/alien/C/Shared Logons is a link, which may lead elsewhere (remove it, or extract into another folder)
  vlbackup: links/alien/C/users is a link, which may lead elsewhere (remove it, or extract into another folder)
  vlbackup: links/bank.vlm is a link, which may lead elsewhere (remove it, or extract into another folder)
  links/Poststelle Köln.vlm
  links/日本語メール.vlm
  vlbackup: links/updata.vls is a link, which may lead elsewhere (remove it, or extract into another folder)
  vlbackup: links/updata_temp.vls is a device or a pipe (extract into another folder)
  theirs
  links
  links/Poststelle Köln.vlm
  links/alien
  links/alien/C
  links/alien/C/Shared Logons
  links/alien/C/users
  links/bank.vlm
  links/updata.vls
  links/updata_temp.vls
  links/日本語メール.vlm
  theirs
  theirs/cached.vlm
  $ mkdir links/file; echo x > links/file/alien; vlbackup extract first.vlb links/file 'alien|*team*' 'alien|*cached*'
  vlbackup: links/file/alien is no folder (extract into another folder)
  vlbackup: no alien|*team* in first.vlb (vlbackup ls shows the stored names)
  [1]
  $ ln -s links/file direct; vlbackup extract first.vlb direct bank.vlm; ls links/file
  direct/bank.vlm
  alien
  bank.vlm
