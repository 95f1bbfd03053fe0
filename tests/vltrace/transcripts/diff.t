Two runs compared.

  $ trace() { "$TESTS/vltrace/tracefile.py" "$@"; }
  $ a='a.x64.vlonlineids.dll~~07.14.17_at_10.00.00.000~~1.4242.trc3'
  $ b='b.x64.vlonlineids.dll~~07.15.17_at_11.00.00.000~~1.5151.trc3'

Times, durations and what differs from run to run in a text do not count; ids below 100 do, as they may be numbers.

  $ trace >$a <<'.'
  > # trace3
  > # Machine name: A
  > # .
  > 07/14/17 10:00:00.000 1A4 > CVLKTPages::SetStorageData
  > 1A4 U id 420, 0x01A4, 01A4 of 4242, 0x1092 and 1092
  > 10:00:00.500 1A4 U 12345678-9abc-DEF0-1234-56789abcdef0 at 10:00:00.123, 10:00:00, 10.00.00.123
  > 1A4 U 07/14/2017, 07-14-2017, 2017-07-14, 07/14/17, 07.14.17
  > 1A4 U at 0x7FFE12340000, 0x12345
  > 8 U thread 8
  > 1A4 <
  > .
  $ trace >$b <<'.'
  > # trace3
  > # Machine name: B
  > # .
  > 07/15/17 23:59:59.000 2B0 > CVLKTPages::SetStorageData
  > 2B0 U id 688, 0x02B0, 02B0 of 5151, 0x141F and 141F
  > 2B0 U 00000000-9abc-DEF0-1234-56789abcdef1 at 10:00:00.124, 11:00:00, 12.00.00.123
  > 2B0 U 07/15/2017, 07-14-2018, 2018-07-14, 07/15/17, 07.14.18
  > 2B0 U at 0x7FFE43210000, 0x54321
  > 7 U thread 8
  > 2B0 <
  > .
  $ vltrace diff $a $b
  $ (echo '8 U 0x80070005, 0x123, 420x, 10:00:00x, 1234567890 x0x12345'; echo '9 U 9') | trace >one.trc3
  $ (echo '7 U 0x80004005, 0x124, 421x, 10:00:01x, 1234567891 x0x12346'; echo '9 U 8') | trace >other.trc3
  $ vltrace diff one.trc3 other.trc3
  --- one.trc3
  +++ other.trc3
  @@ process 1, thread 1: record 1 and 1 @@
  - U 0x80070005, 0x123, 420x, 10:00:00x, 1234567890 x0x12345
  + U 0x80004005, 0x124, 421x, 10:00:01x, 1234567891 x0x12346
  @@ process 1, thread 2: record 1 and 1 @@
  - U 9
  + U 8
  [1]
  $ vltrace diff $a one.trc3 | head -n 8
  --- a.x64.vlonlineids.dll~~07.14.17_at_10.00.00.000~~1.4242.trc3
  +++ one.trc3
  @@ process 1, thread 1: record 1 and 1 @@
  - > CVLKTPages::SetStorageData
  -   U id <thread>, <thread>, <thread> of <process>, <process> and <process>
  -   U <guid> at <time>, <time>, <time>
  -   U <date>, <date>, <date>, <date>, <date>
  -   U at <address>, <address>

Where they differ, three records before and after are shown, and differences that are near each other together.

  $ trace >one.trc3 <<'.'
  > 1 > f
  > 1 U 1
  > 1 U 2
  > 1 U 3
  > 1 U 4
  > 1 U 5
  > 1 U 6
  > 1 U 7
  > 1 U 8
  > 1 U 9
  > 1 U 10
  > 1 <
  > 1 U end
  > .
  $ trace >other.trc3 <<'.'
  > 1 > f
  > 1 U 1
  > 1 U 2
  > 1 U 3
  > 1 E -2147024891 '`I04`'failed
  > 1 U 4
  > 1 U 5
  > 1 U 6
  > 1 U 7
  > 1 U 8
  > 1 U nine
  > 1 U 10
  > 1 <
  > 1 U end
  > 2 U a second thread
  > .
  $ vltrace diff one.trc3 other.trc3
  --- one.trc3
  +++ other.trc3
  @@ process 1, thread 1: record 2 and 2 @@
      U 1
      U 2
      U 3
  +   E [colour 04] 0x80070005 ERROR_ACCESS_DENIED (access is denied): failed
      U 4
      U 5
      U 6
      U 7
      U 8
  -   U 9
  +   U nine
      U 10
    < f
    U end
  @@ process 1, thread 2: record 1 and 1 @@
  + U a second thread
  [1]
  $ vltrace diff other.trc3 one.trc3 --thread 2
  vltrace: none of the 13 records is what was asked for (leave out a filter to see more)
  --- other.trc3
  +++ one.trc3
  @@ process 1, thread 1: record 1 and 1 @@
  - U a second thread
  [1]
  $ vltrace diff --level U -e '^[0-9]' one.trc3 other.trc3
  --- one.trc3
  +++ other.trc3
  @@ process 1, thread 1: record 6 and 6 @@
      U 6
      U 7
      U 8
  -   U 9
      U 10
  [1]
  $ vltrace diff --color always --errors one.trc3 other.trc3
  \x1b[33mvltrace:\x1b[0m none of the 13 records is what was asked for (leave out a filter to see more) (esc)
  --- one.trc3
  +++ other.trc3
  @@ process 1, thread 1: record 1 and 1 @@
  \x1b[32m+   E [colour 04] 0x80070005 ERROR_ACCESS_DENIED (access is denied): failed\x1b[0m (esc)
  [1]
  $ vltrace diff --text end one.trc3 other.trc3
  $ vltrace diff one.trc3 other.trc3 -o differences
  [1]
  $ head -n 2 differences
  --- one.trc3
  +++ other.trc3

Runs of several processes: in the order of their files.

  $ mkdir good bad
  $ cp $a good; cp one.trc3 good/z.trc3
  $ cp $b bad; cp other.trc3 bad/z.trc3; cp one.trc3 bad/zz.trc3
  $ vltrace diff good bad --level E
  vltrace: none of the 20 records is what was asked for (leave out a filter to see more)
  --- good
  +++ bad
  @@ process 2, thread 1: record 1 and 1 @@
  +   E [colour 04] 0x80070005 ERROR_ACCESS_DENIED (access is denied): failed
  [1]
  $ vltrace diff good bad --text 10
  --- good
  +++ bad
  @@ process 1, thread 1: record 1 and 1 @@
  -   U id <thread>, <thread>, <thread> of <process>, <process> and <process>
      U <guid> at <time>, <time>, <time>
  +   U at <address>, <address>
  @@ process 3, thread 1: record 1 and 1 @@
  +   U 10
  [1]
  $ vltrace diff good good

Next to nothing in common: shown as a whole.

  $ seq -f '8 U one %g' 1500 | trace >one.trc3
  $ seq -f '8 U other %g' 1500 | trace >other.trc3
  $ vltrace diff one.trc3 other.trc3 | sed -n '1,4p;1503,1504p;$p'
  --- one.trc3
  +++ other.trc3
  @@ process 1, thread 1: record 1 and 1 @@
  - U one 1
  - U one 1500
  + U other 1
  + U other 1500

What can't be read is no difference.

  $ vltrace diff one.trc3 none.trc3
  vltrace: none.trc3 does not exist (is the name spelt right?)
  [1]
  $ vltrace diff one.trc3
  vltrace: RUN: At least 2 required but received 1 (see vltrace diff --help)
  [2]
  $ vltrace diff one.trc3 one.trc3 one.trc3
  vltrace: RUN: At Most 2 required but received 3 (see vltrace diff --help)
  [2]
  $ head -c -1 one.trc3 | vltrace diff - one.trc3
  vltrace: standard input is cut at byte 21389: the rest is no whole record (is it still being written?)
  --- -
  +++ one.trc3
  @@ process 1, thread 1: record 1497 and 1497 @@
    U one 1497
    U one 1498
    U one 1499
  + U one 1500
  [1]
