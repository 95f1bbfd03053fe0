What the filters leave: records that meet each of them.

  $ trace() { "$TESTS/vltrace/tracefile.py" "$@"; }
  $ host='host.x64.vlonlineids.dll~~07.14.17_at_15.59.04.123~~1.4242.trc3'
  $ trace >$host <<'.'
  > 07/14/17 15:59:04.100 1A4 > SetStorageData
  > 15:59:04.110 1A4 > RestoreBackup
  > 15:59:04.150 1A4 E -2147024891 Größe
  > 2B0 > Poll
  > 15:59:04.160 2B0 U '`I04`'NoVLAgent
  > 2B0 D 12 of 15
  > 2B0 <
  > 1A4 <
  > 15:59:05.000 1A4 <
  > 1A4 <
  > 3C8 N 07-14-2017
  > 07/15/17 00:00:00.005 3C8 > main
  > 3C8 E 0 note
  > .
  $ trace >unnamed.trc3 <<'.'
  > 1A4 U before any time
  > 07/14/17 15:59:04.120 1A4 U of nobody
  > .
  $ show() { vltrace cat "$@" >shown; status=$?; grep -v '^#\|^$' shown; return $status; }

Levels; the stamps of time and date only if they are asked for.

  $ show $host --level EN
  2017-07-14 15:59:04.150  0x01A4      E 0x80070005 ERROR_ACCESS_DENIED (access is denied): Größe
  2017-07-14 15:59:05.000  0x03C8  N 07-14-2017
  2017-07-15 00:00:00.005  0x03C8    E note
  $ show $host --level tT
  2017-07-14 --:--:--.---  0x01A4  t 07/14/17
  2017-07-14 15:59:04.100  0x01A4  T 15:59:04.100
  2017-07-14 15:59:04.110  0x01A4    T 15:59:04.110
  2017-07-14 15:59:04.150  0x01A4      T 15:59:04.150
  2017-07-14 15:59:04.160  0x02B0    T 15:59:04.160
  2017-07-14 15:59:05.000  0x01A4    T 15:59:05.000
  2017-07-15 15:59:05.000  0x03C8  t 07/15/17
  2017-07-15 00:00:00.005  0x03C8  T 00:00:00.005

Threads and processes, the latter by the names of the files.

  $ show $host --thread 688 --thread 0X3c8
  2017-07-14 15:59:04.150  0x02B0  > Poll
  2017-07-14 15:59:04.160  0x02B0    U [colour 04] NoVLAgent
  2017-07-14 15:59:04.160  0x02B0    D 12 of 15
  2017-07-14 15:59:04.160  0x02B0  < Poll  10 ms
  2017-07-14 15:59:05.000  0x03C8  N 07-14-2017
  2017-07-15 00:00:00.005  0x03C8  > main
  2017-07-15 00:00:00.005  0x03C8    E note
  $ show . --process 0x1092 --level U
  2017-07-14 15:59:04.160  4242  0x02B0    U [colour 04] NoVLAgent
  $ show . --process 7 --process 4242 --level D
  2017-07-14 15:59:04.160  4242  0x02B0    D 12 of 15
  $ show . --process 7
  vltrace: none of the 14 records is what was asked for (leave out a filter to see more)

Functions that are open or left, texts and regular expressions; of an exit the function's name is the text.

  $ show $host --function restoreb
  2017-07-14 15:59:04.110  0x01A4    > RestoreBackup
  2017-07-14 15:59:04.150  0x01A4      E 0x80070005 ERROR_ACCESS_DENIED (access is denied): Größe
  2017-07-14 15:59:04.160  0x01A4    < RestoreBackup  50 ms
  $ show $host --function POLL --function nothing
  2017-07-14 15:59:04.150  0x02B0  > Poll
  2017-07-14 15:59:04.160  0x02B0    U [colour 04] NoVLAgent
  2017-07-14 15:59:04.160  0x02B0    D 12 of 15
  2017-07-14 15:59:04.160  0x02B0  < Poll  10 ms
  $ show $host --text sTorage --text vlagent
  2017-07-14 15:59:04.100  0x01A4  > SetStorageData
  2017-07-14 15:59:04.160  0x02B0    U [colour 04] NoVLAgent
  2017-07-14 15:59:05.000  0x01A4  < SetStorageData  900 ms
  $ show $host --text I04 --level U
  2017-07-14 15:59:04.160  0x02B0    U [colour 04] NoVLAgent
  $ show $host --text GRÖSSE
  vltrace: none of the 12 records is what was asked for (leave out a filter to see more)
  $ show $host -e '^NoVL|^Größe$'
  2017-07-14 15:59:04.150  0x01A4      E 0x80070005 ERROR_ACCESS_DENIED (access is denied): Größe
  2017-07-14 15:59:04.160  0x02B0    U [colour 04] NoVLAgent
  $ show $host -e '^p.ll$' -i
  2017-07-14 15:59:04.150  0x02B0  > Poll
  2017-07-14 15:59:04.160  0x02B0  < Poll  10 ms
  $ show $host -e '^P.ll$' -e '^\d+ of'
  2017-07-14 15:59:04.150  0x02B0  > Poll
  2017-07-14 15:59:04.160  0x02B0    D 12 of 15
  2017-07-14 15:59:04.160  0x02B0  < Poll  10 ms
  $ show $host --regex '^gr.ßE$' --ignore-case --level E
  2017-07-14 15:59:04.150  0x01A4      E 0x80070005 ERROR_ACCESS_DENIED (access is denied): Größe
  $ show $host -e '-2147024891|I04'
  vltrace: none of the 12 records is what was asked for (leave out a filter to see more)

Errors, and notes.

  $ show $host --notes --thread 0x3C8
  2017-07-15 00:00:00.005  0x03C8  E note
      in main, entered 00:00:00.005
  $ show $host --errors --notes --level U
  vltrace: none of the 12 records is what was asked for (leave out a filter to see more)

Times are local, with both ends; a time without a day is that of any day.

  $ show $host --from 2017-07-15
  2017-07-15 00:00:00.005  0x03C8  > main
  2017-07-15 00:00:00.005  0x03C8    E note
  $ show $host --to 15:59 --from 00:00
  2017-07-14 15:59:04.100  0x01A4  > SetStorageData
  2017-07-14 15:59:04.110  0x01A4    > RestoreBackup
  2017-07-14 15:59:04.150  0x01A4      E 0x80070005 ERROR_ACCESS_DENIED (access is denied): Größe
  2017-07-14 15:59:04.150  0x02B0  > Poll
  2017-07-14 15:59:04.160  0x02B0    U [colour 04] NoVLAgent
  2017-07-14 15:59:04.160  0x02B0    D 12 of 15
  2017-07-14 15:59:04.160  0x02B0  < Poll  10 ms
  2017-07-14 15:59:04.160  0x01A4    < RestoreBackup  50 ms
  2017-07-14 15:59:05.000  0x01A4  < SetStorageData  900 ms
  2017-07-14 15:59:05.000  0x01A4  < (a function whose entry is not known)
  2017-07-14 15:59:05.000  0x03C8  N 07-14-2017
  2017-07-15 00:00:00.005  0x03C8  > main
  2017-07-15 00:00:00.005  0x03C8    E note
  $ show $host --from 15:59:04.150 --to 15:59:04.159
  2017-07-14 15:59:04.150  0x01A4      E 0x80070005 ERROR_ACCESS_DENIED (access is denied): Größe
  2017-07-14 15:59:04.150  0x02B0  > Poll
  $ show $host --to 2017-07-14T15:59:04.110
  2017-07-14 15:59:04.100  0x01A4  > SetStorageData
  2017-07-14 15:59:04.110  0x01A4    > RestoreBackup
  $ show $host --from '2017-07-14 15:59:05' --to 2017-07-14
  2017-07-14 15:59:05.000  0x01A4  < SetStorageData  900 ms
  2017-07-14 15:59:05.000  0x01A4  < (a function whose entry is not known)
  2017-07-14 15:59:05.000  0x03C8  N 07-14-2017
  $ show $host --from 15:59:04.151 --to 2017-07-14T15:59:04
  2017-07-14 15:59:04.160  0x02B0    U [colour 04] NoVLAgent
  2017-07-14 15:59:04.160  0x02B0    D 12 of 15
  2017-07-14 15:59:04.160  0x02B0  < Poll  10 ms
  2017-07-14 15:59:04.160  0x01A4    < RestoreBackup  50 ms
  $ show unnamed.trc3 --from 00:00
  2017-07-14 15:59:04.120  0x01A4  U of nobody
  $ show unnamed.trc3 --to 15:59:05
  2017-07-14 15:59:04.120  0x01A4  U of nobody
  $ show unnamed.trc3 --from 2017-07-15
  vltrace: none of the 2 records is what was asked for (leave out a filter to see more)
  $ show $host --to 2017-07-13T23:59:59.999
  vltrace: none of the 12 records is what was asked for (leave out a filter to see more)

All together. What is asked for by what is not there has a line of its own, and no failure.

  $ show . --process 4242 --thread 420 --level '<>' --function set --text backup --from 15:59:04.160
  2017-07-14 15:59:04.160  4242  0x01A4    < RestoreBackup  50 ms
  $ show . --quiet --text nowhere

An expression that would never end ends the command.

  $ (echo '8 U fine'; echo "8 U $(printf '%040d' 0)"; echo '8 U after') | trace | vltrace cat -e '(0+0+)+y|fine' -
  # standard input
  # trace3
  ---------- --:--:--.---  0x0008  U fine
  vltrace: "(0+0+)+y|fine" is too expensive for a text of 40 bytes: match limit exceeded (make the expression simpler)
  [1]
