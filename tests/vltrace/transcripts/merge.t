Several files together, and folders.

  $ trace() { "$TESTS/vltrace/tracefile.py" "$@"; }
  $ stamp='x64.vlonlineids.dll~~07.14.17_at_10.00.00'

The records come in the order of time; at the same time, in that of the files. What comes late in its own file stays there.

  $ mkdir -p traces/folder.trc3
  $ trace >traces/host.$stamp.001~~1.4242.trc3 <<'.'
  > # trace3
  > # 07/14/2017 10:00:00.000
  > # .
  > 8 U before any time
  > 10:00:00.200 8 > call
  > 10:00:00.100 8 U late
  > 10:00:00.300 8 <
  > .
  $ trace >traces/other.$stamp.002~~1.77.TRC3 <<'.'
  > # trace3
  > # .
  > ! FF FF
  > 07/14/17 10:00:00.100 8 U first
  > 10:00:00.200 8 U the same moment
  > ! FE
  > 07/13/17 10:00:00.250 8 U a day before
  > .
  $ trace <<'.' | gzip -c >traces/packed.trc3.gz
  > 07/14/17 10:00:00.200 8 U also then
  > .
  $ echo no trace >traces/readme.txt
  $ vltrace cat traces
  vltrace: traces/other.x64.vlonlineids.dll~~07.14.17_at_10.00.00.002~~1.77.TRC3 is damaged in 2 places, 3 bytes skipped (vltrace cat shows where)
  # 4242: traces/host.x64.vlonlineids.dll~~07.14.17_at_10.00.00.001~~1.4242.trc3
  # trace3
  # 07/14/2017 10:00:00.000
  
  # 77: traces/other.x64.vlonlineids.dll~~07.14.17_at_10.00.00.002~~1.77.TRC3
  # trace3
  -- 77: 2 bytes skipped at offset 11: no record can begin here --
  
  # #3: traces/packed.trc3.gz
  # trace3
  2017-07-14 --:--:--.---  4242  0x0008  U before any time
  2017-07-14 10:00:00.100  77  0x0008  U first
  2017-07-14 10:00:00.200  4242  0x0008  > call
  2017-07-14 10:00:00.100  4242  0x0008    U late
  2017-07-14 10:00:00.200  77  0x0008  U the same moment
  -- 77: 1 byte skipped at offset 100: no record can begin here --
  2017-07-13 10:00:00.250  77  0x0008  U a day before
  2017-07-14 10:00:00.200  #3  0x0008  U also then
  2017-07-14 10:00:00.300  4242  0x0008  < call  100 ms
  $ vltrace cat --quiet traces/packed.trc3.gz traces/ | grep '^# #\|^# [0-9]\|[0-9]  U'
  # #1: traces/packed.trc3.gz
  # 4242: traces/host.x64.vlonlineids.dll~~07.14.17_at_10.00.00.001~~1.4242.trc3
  # 07/14/2017 10:00:00.000
  # 77: traces/other.x64.vlonlineids.dll~~07.14.17_at_10.00.00.002~~1.77.TRC3
  # #4: traces/packed.trc3.gz
  2017-07-14 --:--:--.---  4242  0x0008  U before any time
  2017-07-14 10:00:00.100  77  0x0008  U first
  2017-07-14 10:00:00.200  #1  0x0008  U also then
  2017-07-14 10:00:00.200  77  0x0008  U the same moment
  2017-07-13 10:00:00.250  77  0x0008  U a day before
  2017-07-14 10:00:00.200  #4  0x0008  U also then

The process stands in front; where two files are of one process, or a name has none, the number of the file.

  $ trace >b.$stamp.001~~1.0.trc3 <<'.'
  > 07/14/17 09:00:00.000 8 U of no process
  > .
  $ for name in c d; do cp b.$stamp.001~~1.0.trc3 $name.$stamp.001~~1.5.trc3; done
  $ cp b.$stamp.001~~1.0.trc3 'e~~1.trc3'
  $ cp b.$stamp.001~~1.0.trc3 f~~1.99999999999.trc3
  $ vltrace cat *.trc3 | grep '^# #\|^# [0-9]'
  # #1: b.x64.vlonlineids.dll~~07.14.17_at_10.00.00.001~~1.0.trc3
  # #2: c.x64.vlonlineids.dll~~07.14.17_at_10.00.00.001~~1.5.trc3
  # #3: d.x64.vlonlineids.dll~~07.14.17_at_10.00.00.001~~1.5.trc3
  # #4: e~~1.trc3
  # #5: f~~1.99999999999.trc3
  $ vltrace cat [ce]*.trc3 - <'e~~1.trc3' | grep '^# #\|^# [0-9]\|^2017'
  # 5: c.x64.vlonlineids.dll~~07.14.17_at_10.00.00.001~~1.5.trc3
  # #2: e~~1.trc3
  # #3: standard input
  2017-07-14 09:00:00.000  5  0x0008  U of no process
  2017-07-14 09:00:00.000  #2  0x0008  U of no process
  2017-07-14 09:00:00.000  #3  0x0008  U of no process
  $ vltrace cat c*.trc3 | head -n 1
  # c.x64.vlonlineids.dll~~07.14.17_at_10.00.00.001~~1.5.trc3
  $ vltrace cat c*.trc3 c*.trc3 | grep 2017
  2017-07-14 09:00:00.000  #1  0x0008  U of no process
  2017-07-14 09:00:00.000  #2  0x0008  U of no process

One that can't be read doesn't keep back the others. The exit status says so.

  $ vltrace cat none.trc3 c*.trc3 traces/readme.txt traces/folder.trc3
  vltrace: traces/folder.trc3 is a folder with no trace in it (traces end in .trc3)
  vltrace: none.trc3 does not exist (is the name spelt right?)
  vltrace: traces/readme.txt is no trace: it is text (trace files end in .trc3, and have something in them)
  # c.x64.vlonlineids.dll~~07.14.17_at_10.00.00.001~~1.5.trc3
  # trace3
  2017-07-14 09:00:00.000  0x0008  U of no process
  [1]
  $ vltrace stats none.trc3 c*.trc3 traces/folder.trc3
  vltrace: traces/folder.trc3 is a folder with no trace in it (traces end in .trc3)
  vltrace: none.trc3 does not exist (is the name spelt right?)
        calls     errors      notes   messages unfinished   total ms    mean ms longest ms  function
            0          0          0          1          0          -          -          -  main
  [1]
  $ vltrace tail -n 1 c*.trc3 none.trc3
  vltrace: none.trc3 does not exist (is the name spelt right?)
  2017-07-14 09:00:00.000  0x0008  U of no process
  [1]
  $ vltrace cat traces/folder.trc3/
  vltrace: traces/folder.trc3/ is a folder with no trace in it (traces end in .trc3)
  [1]
  $ vltrace export traces/readme.txt
  vltrace: traces/readme.txt is no trace: it is text (trace files end in .trc3, and have something in them)
  [1]

Compressed files are read as they are, several members and padding too; what is cut is read up to there.

  $ (yes '8 U 1234567890' | head -n 200; echo '8 U the end') | trace >plain.trc3
  $ (head -c 1000 plain.trc3 | gzip; tail -c +1001 plain.trc3 | gzip -9n; printf '\0\0\0') >packed.gz
  $ vltrace cat packed.gz | tail -n 1
  ---------- --:--:--.---  0x0008  U the end
  $ vltrace export packed.gz | tail -n 1
  {"depth": 0,"file": "packed.gz","kind": "message","level": "U","offset": 3411,"text": "the end","thread": 8,"type": "record"}
  $ vltrace cat - <packed.gz | wc -l
  203
  $ head -c 100 packed.gz | vltrace cat - | sed -n 3p
  vltrace: standard input is cut or damaged: the rest of its gzip data can't be read (copy it again)
  ---------- --:--:--.---  0x0008  U 1234567890
  $ (head -c 1000 plain.trc3 | gzip -n | head -c -8; printf '\0\0\0\0\0\0\0\0') | vltrace cat - | grep -c 1234567890
  vltrace: standard input is cut or damaged: the rest of its gzip data can't be read (copy it again)
  58
  $ (gzip -n <plain.trc3; printf '\037\213\010 not a member') | vltrace cat - | tail -n 1
  vltrace: standard input is cut or damaged: the rest of its gzip data can't be read (copy it again)
  ---------- --:--:--.---  0x0008  U the end
  $ gzip </dev/null | vltrace cat -
  vltrace: standard input is no trace: it is a gzip archive (trace files end in .trc3, and have something in them)
  [1]
  $ echo some text | gzip | vltrace cat -
  vltrace: standard input is no trace: it is a gzip archive (trace files end in .trc3, and have something in them)
  [1]
