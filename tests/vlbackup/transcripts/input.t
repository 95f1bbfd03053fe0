Inputs that are no backup: one line each, with the reason and what to do.

  $ cp "$SAMPLES"/*.vlb "$SAMPLES"/restore.trc3 .
  $ vlbackup ls none.vlb
  vlbackup: none.vlb does not exist (is the name spelt right?)
  [1]
  $ vlbackup ls none/none.vlb --json
  {"error": "none/none.vlb does not exist","exitStatus": 1,"hint": "is the name spelt right?","schema": "error-1","tool": "vlbackup"}
  [1]
  $ vlbackup ls .
  vlbackup: . is a folder (name a file in it)
  [1]
  $ vlbackup ls /dev/null
  vlbackup: /dev/null is no backup: it is empty (a backup is what 'vlhost backup' writes)
  [1]
  $ what() { printf "$@" | vlbackup info -; }
  $ what ''
  vlbackup: standard input is no backup: it is empty (a backup is what 'vlhost backup' writes)
  [1]
  $ what 'PK\003\004rest'
  vlbackup: standard input is no backup: it is a ZIP archive (a backup is what 'vlhost backup' writes)
  [1]
  $ what '\037\213\010'
  vlbackup: standard input is no backup: it is a gzip archive (a backup is what 'vlhost backup' writes)
  [1]
  $ what '7z\274\257\047\034'
  vlbackup: standard input is no backup: it is a 7z archive (a backup is what 'vlhost backup' writes)
  [1]
  $ what '%%PDF-1.7'
  vlbackup: standard input is no backup: it is a PDF document (a backup is what 'vlhost backup' writes)
  [1]
  $ what 'MZ\220\000'
  vlbackup: standard input is no backup: it is a Windows program (a backup is what 'vlhost backup' writes)
  [1]
  $ what '\177ELF\002'
  vlbackup: standard input is no backup: it is a program (a backup is what 'vlhost backup' writes)
  [1]
  $ what '\211PNG'
  vlbackup: standard input is no backup: it is a picture (a backup is what 'vlhost backup' writes)
  [1]
  $ what '\377\330\377\340'
  vlbackup: standard input is no backup: it is a picture (a backup is what 'vlhost backup' writes)
  [1]
  $ what '\377\376a\000'
  vlbackup: standard input is no backup: it is UTF-16 text (a backup is what 'vlhost backup' writes)
  [1]
  $ what 'trace3'
  vlbackup: standard input is no backup: it is a trace, which vltrace reads (a backup is what 'vlhost backup' writes)
  [1]
  $ what '\000\000\000\000\000'
  vlbackup: standard input is no backup: it is nothing but zeros (a backup is what 'vlhost backup' writes)
  [1]
  $ what '0123 plain\r\n\tß日\n'
  vlbackup: standard input is no backup: it is text (a backup is what 'vlhost backup' writes)
  [1]
  $ what '\n {"a": 1}'
  vlbackup: standard input is no backup: it is JSON text (a backup is what 'vlhost backup' writes)
  [1]
  $ what '[1]'
  vlbackup: standard input is no backup: it is JSON text (a backup is what 'vlhost backup' writes)
  [1]
  $ what '\357\273\277<html>'
  vlbackup: standard input is no backup: it is XML or HTML text (a backup is what 'vlhost backup' writes)
  [1]
  $ what 'text with \001'
  vlbackup: standard input is no backup: it is bytes that begin 74 65 78 74 20 77 69 74 (a backup is what 'vlhost backup' writes)
  [1]
  $ what '\376\001\002'
  vlbackup: standard input is no backup: it is bytes that begin FE 01 02 (a backup is what 'vlhost backup' writes)
  [1]
  $ what '\002\001\005 and more than eight'
  vlbackup: standard input is no backup: it is bytes that begin 02 01 05 20 61 6E 64 20 (a backup is what 'vlhost backup' writes)
  [1]
  $ head -c 5000 /dev/zero | vlbackup info -
  vlbackup: standard input is no backup: it is nothing but zeros (a backup is what 'vlhost backup' writes)
  [1]
  $ (cat first.vlb | head -c 300; printf '{}') | vlbackup info --json -
  {"error": "standard input is no whole backup: cut at byte 302 of 942","exitStatus": 1,"hint": "copy it again, or save what is intact by 'vlbackup recover'","schema": "error-1","tool": "vlbackup"}
  [1]
  $ vlbackup info restore.trc3
  vlbackup: restore.trc3 is no backup: it is a trace, which vltrace reads (a backup is what 'vlhost backup' writes)
  [1]

One that begins as a backup is cut or damaged, and it is said where.

  $ vlbackup info cut.vlb
  vlbackup: cut.vlb is no whole backup: cut at byte 400 of 942 (copy it again, or save what is intact by 'vlbackup recover')
  [1]
  $ what '0'
  vlbackup: standard input is no backup: it is text (a backup is what 'vlhost backup' writes)
  [1]
  $ what '0\204\377'
  vlbackup: standard input is no whole backup: not a sequence of elements (copy it again, or save what is intact by 'vlbackup recover')
  [1]
  $ what '0\200\000\000'
  vlbackup: standard input is no whole backup: not a sequence of elements (copy it again, or save what is intact by 'vlbackup recover')
  [1]
  $ what '0\004\060\000\060\011'
  vlbackup: standard input is no whole backup: the element at byte 4 is damaged (copy it again, or save what is intact by 'vlbackup recover')
  [1]
  $ what '0\003\060\000\060'
  vlbackup: standard input is no whole backup: the element at byte 4 is damaged (copy it again, or save what is intact by 'vlbackup recover')
  [1]
  $ what '0\002\060\000'
  vlbackup: standard input is no whole backup: 1 element where a restore wants at least 2 (copy it again, or save what is intact by 'vlbackup recover')
  [1]
  $ what '0\n1\n2\n'
  vlbackup: standard input is no backup: it is text (a backup is what 'vlhost backup' writes)
  [1]
  $ what '0a\tb'
  vlbackup: standard input is no backup: it is text (a backup is what 'vlhost backup' writes)
  [1]
  $ what '0\0400\002\004\000'
  vlbackup: standard input is no whole backup: cut at byte 6 of 34 (copy it again, or save what is intact by 'vlbackup recover')
  [1]

The same from each command, and nothing is written.

  $ mkdir empty; cd empty
  $ for command in 'ls -' 'info -' 'cat - a' 'verify -' 'find - a' 'extract - out' 'to-json - out' 'diff - x' \
  >   'merge - x -o out' 'recover - out' 'redact - out' 'hex -'
  > do echo text | vlbackup $command; done 2>&1 | uniq -c; ls
       12 vlbackup: standard input is no backup: it is text (a backup is what 'vlhost backup' writes)
  $ for command in 'ls -' 'info -' 'cat - a' 'verify -' 'find - a' 'extract - out' 'to-json - out' 'diff - x' \
  >   'merge - x -o out'
  > do vlbackup $command < ../cut.vlb; done 2>&1 | uniq -c; ls
        9 vlbackup: standard input is no whole backup: cut at byte 400 of 942 (copy it again, or save what is intact by 'vlbackup recover')
  $ vlbackup from-json - out < ../first.vlb; cd ..
  vlbackup: standard input is no JSON document: it is a backup, which vlbackup reads (vlbackup to-json writes one)
  $ vlbackup diff first.vlb cut.vlb
  vlbackup: cut.vlb is no whole backup: cut at byte 400 of 942 (copy it again, or save what is intact by 'vlbackup recover')
  [1]
  $ vlbackup diff - - < first.vlb
  vlbackup: both backups can't come from standard input (save one to a file)
  [2]
  $ vlbackup merge - - -o out < first.vlb
  vlbackup: both backups can't come from standard input (save one to a file)
  [2]
  $ vlbackup diff first.vlb - < first.vlb
  equal
  $ mkfifo pipe; cat first.vlb > pipe & vlbackup cat pipe bank.vlm
  template: bank
