How the records of a trace are shown.

  $ trace() { "$TESTS/vltrace/tracefile.py" "$@"; }

The header's date holds until the first stamp. Entries are written late, with the time of the entry; a clock can be set
back; a day and a year can end.

  $ trace >days.trc3 <<'.'
  > # trace3
  > # Machine name: PC-7	Größe\
  > # 12/30/2016 15:59:03.123
  > # .
  > 1A4 > early
  > 12/31/16 23:59:59.900 1A4 U the last second
  > 1A4 <
  > 1A4 > SetStorageData
  > 23:59:59.850 2B0 > Poll
  > 01/01/17 00:00:00.005 1A4 > RestoreBackup
  > 2B0 D waiting
  > 2B0 <
  > 00:00:00.500 12345 <
  > 00:00:00.020 1A4 <
  > 1A4 <
  > 1A4 > back
  > 00:00:00.010 1A4 <
  > FFFFFFFF U no function
  > .
  $ vltrace cat days.trc3
  # days.trc3
  # trace3
  # Machine name: PC-7\tGröße\
  # 12/30/2016 15:59:03.123
  2016-12-30 --:--:--.---  0x01A4  > early
  2016-12-31 23:59:59.900  0x01A4    U the last second
  2016-12-31 23:59:59.900  0x01A4  < early
  2016-12-31 23:59:59.900  0x01A4  > SetStorageData
  2016-12-31 23:59:59.850  0x02B0  > Poll
  2017-01-01 00:00:00.005  0x01A4    > RestoreBackup
  2017-01-01 00:00:00.005  0x02B0    D waiting
  2017-01-01 00:00:00.005  0x02B0  < Poll  155 ms
  2017-01-01 00:00:00.500  0x12345  < (a function whose entry is not known)
  2017-01-01 00:00:00.020  0x01A4    < RestoreBackup  15 ms
  2017-01-01 00:00:00.020  0x01A4  < SetStorageData  120 ms
  2017-01-01 00:00:00.020  0x01A4  > back
  2017-01-01 00:00:00.010  0x01A4  < back  0 ms
  2017-01-01 00:00:00.010  0xFFFFFFFF  U no function

The year of a stamp is the one nearest to the last that is known. A date or a time that can't be is none.

  $ trace <<'.' | vltrace cat -
  > # trace3
  > # 12/31/2099 23:00:00.000
  > # .
  > 01/01/00 00:00:00.000 8 U a new century
  > 12/31/99 23:59:59.999 8 U and back
  > 02/29/00 24:00:00.000 8 U no leap year, no such hour
  > 02/28/00 23:60:00.000 8 > f
  > 02/28/00 23:59:00.000 8 <
  > 02/27/00 23:00:00.000 8 > g
  > 13/01/00 23:30:00.000 8 <
  > .
  # standard input
  # trace3
  # 12/31/2099 23:00:00.000
  2100-01-01 00:00:00.000  0x0008  U a new century
  2099-12-31 23:59:59.999  0x0008  U and back
  ---------- --:--:--.---  0x0008  U no leap year, no such hour
  2100-02-28 --:--:--.---  0x0008  > f
  2100-02-28 23:59:00.000  0x0008  < f
  2100-02-27 23:00:00.000  0x0008  > g
  ---------- 23:30:00.000  0x0008  < g

Another writer begins: what its thread had open is forgotten, that of other threads is not.

  $ trace <<'.' | vltrace cat -
  > 07/14/17 10:00:00.000 8 > f
  > 9 > g
  > 8 N 02-29-2020
  > 8 U it has a day of its own
  > 8 <
  > 9 <
  > .
  # standard input
  # trace3
  2017-07-14 10:00:00.000  0x0008  > f
  2017-07-14 10:00:00.000  0x0009  > g
  2020-02-29 10:00:00.000  0x0008  N 02-29-2020
  2020-02-29 10:00:00.000  0x0008  U it has a day of its own
  2020-02-29 10:00:00.000  0x0008  < (a function whose entry is not known)
  2020-02-29 10:00:00.000  0x0009  < g  82944000000 ms

Statuses have a name and a meaning, notes are as they are. A colour is a mark, which can be left out.

  $ trace >statuses.trc3 <<'.'
  > 07/14/17 10:00:00.000 8 E -2147024891 Größe of 日
  > 8 E 2147942405 the same without a sign
  > 8 E 5 
  > 8 E 305419896 one that nobody knows
  > 8 E 0 a note
  > 8 E 12 
  > 8 E no number
  > 8 E -0 x
  > 8 E 
  > 8 E -2147467259 '`I0c`'red
  > 8 E 0 '`I0C`'red
  > 8 U '`I04`'NoVLAgent
  > 8 U '`I0`'no colour
  > 8 U '`I0G`'no colour
  > 8 U '`I04`x no colour
  > 8 U
  > 8 D '`Ifa`'
  > .
  $ vltrace cat statuses.trc3
  # statuses.trc3
  # trace3
  2017-07-14 10:00:00.000  0x0008  E 0x80070005 ERROR_ACCESS_DENIED (access is denied): Größe of 日
  2017-07-14 10:00:00.000  0x0008  E 0x80070005 ERROR_ACCESS_DENIED (access is denied): the same without a sign
  2017-07-14 10:00:00.000  0x0008  E 0x00000005 ERROR_ACCESS_DENIED (access is denied)
  2017-07-14 10:00:00.000  0x0008  E 0x12345678: one that nobody knows
  2017-07-14 10:00:00.000  0x0008  E a note
  2017-07-14 10:00:00.000  0x0008  E 0x0000000C error 12
  2017-07-14 10:00:00.000  0x0008  E no number
  2017-07-14 10:00:00.000  0x0008  E x
  2017-07-14 10:00:00.000  0x0008  E 
  2017-07-14 10:00:00.000  0x0008  E [colour 0c] 0x80004005 E_FAIL (unspecified failure): red
  2017-07-14 10:00:00.000  0x0008  E [colour 0C] red
  2017-07-14 10:00:00.000  0x0008  U [colour 04] NoVLAgent
  2017-07-14 10:00:00.000  0x0008  U '`I0`'no colour
  2017-07-14 10:00:00.000  0x0008  U '`I0G`'no colour
  2017-07-14 10:00:00.000  0x0008  U '`I04`x no colour
  2017-07-14 10:00:00.000  0x0008  U 
  2017-07-14 10:00:00.000  0x0008  D [colour fa] 
  $ vltrace cat --no-marks statuses.trc3 | grep -n red
  12:2017-07-14 10:00:00.000  0x0008  E 0x80004005 E_FAIL (unspecified failure): red
  13:2017-07-14 10:00:00.000  0x0008  E red
  $ vltrace cat --no-marks --level UD statuses.trc3 | tail -n +3 | cut -c 34-
  U NoVLAgent
  U '`I0`'no colour
  U '`I0G`'no colour
  U '`I04`x no colour
  U 
  D 

What a text says can't steer a terminal.

  $ trace <<'.' | vltrace cat -
  > # trace3
  > # a\tb
  > # .
  > 8 > f\x1B[31m
  > 8 U before
  > 8 U tab\x09, lines\x0D\x0A, \x00, \x7F, \xC2\x9B, \xE2\x80\xAE, \xE2\x80\xA8, C:\new
  > 8 <
  > .
  # standard input
  # trace3
  # a\tb
  ---------- --:--:--.---  0x0008  > f\x1B[31m
  ---------- --:--:--.---  0x0008    U before
  ---------- --:--:--.---  0x0008    U tab\t, lines\r\n, \x00, \x7F, \u{9B}, \u{202E}, \u{2028}, C:\new
  ---------- --:--:--.---  0x0008  < f\x1B[31m

Errors and notes, each with its open functions. A file without any isn't mentioned.

  $ trace >failed.trc3 <<'.'
  > # trace3
  > # 07/14/2017 10:00:00.000
  > # .
  > 8 > main
  > 10:00:00.250 8 > RestoreBackup
  > 8 U working
  > 8 E -2147024891 '`I04`'first
  > 9 E 0 in no function
  > 10:00:01.000 8 <
  > 8 E -2147467259 second
  > 8 E 0 a note
  > .
  $ trace >fine.trc3 <<'.'
  > 07/14/17 09:00:00.000 8 U all is well
  > .
  $ vltrace cat --errors fine.trc3 failed.trc3
  # #2: failed.trc3
  # trace3
  # 07/14/2017 10:00:00.000
  2017-07-14 10:00:00.250  #2  0x0008  E [colour 04] 0x80070005 ERROR_ACCESS_DENIED (access is denied): first
      in main, entered --:--:--.---
      in RestoreBackup, entered 10:00:00.250
  2017-07-14 10:00:01.000  #2  0x0008  E 0x80004005 E_FAIL (unspecified failure): second
      in main, entered --:--:--.---
  $ vltrace cat --notes failed.trc3 fine.trc3
  # #1: failed.trc3
  # trace3
  # 07/14/2017 10:00:00.000
  2017-07-14 10:00:00.250  #1  0x0009  E in no function
  2017-07-14 10:00:01.000  #1  0x0008  E a note
      in main, entered --:--:--.---
  $ vltrace cat --errors --notes --no-marks failed.trc3 | grep -v '^ '
  # failed.trc3
  # trace3
  # 07/14/2017 10:00:00.000
  2017-07-14 10:00:00.250  0x0008  E 0x80070005 ERROR_ACCESS_DENIED (access is denied): first
  2017-07-14 10:00:00.250  0x0009  E in no function
  2017-07-14 10:00:01.000  0x0008  E 0x80004005 E_FAIL (unspecified failure): second
  2017-07-14 10:00:01.000  0x0008  E a note
  $ vltrace cat --color always --errors --notes failed.trc3 | tail -n 4
  2017-07-14 10:00:01.000  0x0008  \x1b[31mE 0x80004005 E_FAIL (unspecified failure): second\x1b[0m (esc)
      in main, entered --:--:--.---
  2017-07-14 10:00:01.000  0x0008  \x1b[33mE a note\x1b[0m (esc)
      in main, entered --:--:--.---

What is deeper than 40 functions stays in one column, and a chain shows its last hundred.

  $ (yes '8 > f' | head -n 103; echo '8 E 5 deep') | trace >deep.trc3
  $ vltrace cat deep.trc3 | sed -n '41,44p;$p'
  ---------- --:--:--.---  0x0008                                                                              > f
  ---------- --:--:--.---  0x0008                                                                                > f
  ---------- --:--:--.---  0x0008                                                                                  > f
  ---------- --:--:--.---  0x0008                                                                                  > f
  ---------- --:--:--.---  0x0008                                                                                  E 0x00000005 ERROR_ACCESS_DENIED (access is denied): deep
  $ vltrace cat --errors deep.trc3 | sed -n '4,5p;$p'
      in 3 more functions
      in f, entered --:--:--.---
      in f, entered --:--:--.---
  $ vltrace cat --errors deep.trc3 | wc -l
  104
