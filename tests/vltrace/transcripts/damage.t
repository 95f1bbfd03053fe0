What is shown of a damaged trace, and what is said of it.

  $ trace() { "$TESTS/vltrace/tracefile.py" "$@"; }

In the middle. What was open is forgotten, since entries and exits may be missing; the times stay.

  $ trace >middle.trc3 <<'.'
  > 07/14/17 10:00:00.000 8 > outer
  > 8 > inner
  > 9 > other
  > ! FF
  > 8 <
  > 8 > again
  > ! 01 02 03 04 05 06 07 08 09
  > 9 U a long enough text
  > 8 U short
  > 8 <
  > .
  $ vltrace cat middle.trc3
  vltrace: middle.trc3 is damaged in 2 places, 10 bytes skipped (vltrace cat shows where)
  # middle.trc3
  # trace3
  2017-07-14 10:00:00.000  0x0008  > outer
  2017-07-14 10:00:00.000  0x0008    > inner
  2017-07-14 10:00:00.000  0x0009  > other
  -- 1 byte skipped at offset 81: no record can begin here --
  2017-07-14 10:00:00.000  0x0008  < (a function whose entry is not known)
  2017-07-14 10:00:00.000  0x0008  > again
  -- 9 bytes skipped at offset 101: no record can begin here --
  2017-07-14 10:00:00.000  0x0009  U a long enough text
  2017-07-14 10:00:00.000  0x0008  U short
  2017-07-14 10:00:00.000  0x0008  < (a function whose entry is not known)
  $ vltrace cat --quiet middle.trc3 >/dev/null
  $ vltrace stats middle.trc3
  vltrace: middle.trc3 is damaged in 2 places, 10 bytes skipped (vltrace cat shows where)
        calls     errors      notes   messages unfinished   total ms    mean ms longest ms  function
            1          0          0          0          1          -          -          -  again
            1          0          0          0          1          -          -          -  inner
            0          0          0          2          0          -          -          -  main
            1          0          0          0          1          -          -          -  other
            1          0          0          0          1          -          -          -  outer
  $ vltrace cat --errors middle.trc3
  vltrace: middle.trc3 is damaged in 2 places, 10 bytes skipped (vltrace cat shows where)
  vltrace: none of the 8 records is what was asked for (leave out a filter to see more)
  # middle.trc3
  # trace3
  -- 1 byte skipped at offset 81: no record can begin here --
  -- 9 bytes skipped at offset 101: no record can begin here --

At the end: a header, or a text, that is cut. No more is said of the places before it then.

  $ trace <<'.' >end.trc3
  > 8 U whole
  > ! FF FF
  > 8 U whole again
  > 8 U this is cut
  > .
  $ head -c -3 end.trc3 | vltrace cat -
  vltrace: standard input is cut at byte 43: the rest is no whole record (is it still being written?)
  # standard input
  # trace3
  ---------- --:--:--.---  0x0008  U whole
  -- 2 bytes skipped at offset 23: no record can begin here --
  ---------- --:--:--.---  0x0008  U whole again
  -- 15 bytes skipped at offset 43: a record is cut short --
  $ head -c -14 end.trc3 | vltrace cat -
  vltrace: standard input is cut at byte 43: the rest is no whole record (is it still being written?)
  # standard input
  # trace3
  ---------- --:--:--.---  0x0008  U whole
  -- 2 bytes skipped at offset 23: no record can begin here --
  ---------- --:--:--.---  0x0008  U whole again
  -- 4 bytes skipped at offset 43: a record is cut short --

A record after damage is believed if its text is readable, and long or another record follows.

  $ trace <<'.' | vltrace cat -
  > ! FF FF FF
  > 8 U 7 bytes
  > ! FE FE
  > 8 U 8 bytes.
  > ! FD
  > 8 U not \x01 readable
  > 8 U one
  > 8 <
  > .
  vltrace: standard input is damaged in 2 places, 41 bytes skipped (vltrace cat shows where)
  # standard input
  # trace3
  -- 19 bytes skipped at offset 11: no record can begin here --
  ---------- --:--:--.---  0x0008  U 8 bytes.
  -- 22 bytes skipped at offset 45: no record can begin here --
  ---------- --:--:--.---  0x0008  U one
  ---------- --:--:--.---  0x0008  < (a function whose entry is not known)

No such level, texts that aren't of their level's shape, an error without a number.

  $ trace <<'.' | vltrace cat -
  > 07/14/17 10:00:00.000 8 U before
  > 8 X no such level
  > 8 T 1:00:00.000
  > 8 U a readable text
  > 8 < an exit with a text
  > 8 U a readable text
  > 8 E an error without its number
  > 8 E 12345678901 too long
  > 8 U after
  > .
  vltrace: standard input is damaged in 3 places, 125 bytes skipped (vltrace cat shows where)
  # standard input
  # trace3
  2017-07-14 10:00:00.000  0x0008  U before
  -- 38 bytes skipped at offset 58: no record can begin here --
  2017-07-14 10:00:00.000  0x0008  U a readable text
  -- 26 bytes skipped at offset 118: no record can begin here --
  2017-07-14 10:00:00.000  0x0008  U a readable text
  -- 61 bytes skipped at offset 166: no record can begin here --
  2017-07-14 10:00:00.000  0x0008  U after
  $ trace <<'.' | vltrace cat -
  > 07/14/17 10:00:00.000 8 U before
  > 8 T ab:cd:ef.ghi
  > 8 U no time is known from here
  > 8 t ab/cd/ef
  > 8 U no day is
  > 8 N ab-cd-efgh
  > 8 U the day is
  > .
  # standard input
  # trace3
  2017-07-14 10:00:00.000  0x0008  U before
  2017-07-14 --:--:--.---  0x0008  U no time is known from here
  2017-07-14 --:--:--.---  0x0008  U no day is
  2017-07-14 --:--:--.---  0x0008  N ab-cd-efgh
  2017-07-14 --:--:--.---  0x0008  U the day is

Texts with bytes that are no characters are mended, unless they are very long.

  $ (echo '8 U caf\xE9 \xC3\xA9 \xED\xA0\x80 \xF4\x90\x80\x80'
  >  echo '8 > g'
  >  echo '8 > f\xFF'
  >  echo '8 U cut at a character\xC3'
  >  echo '8 <'
  >  echo "8 U \\xFF$(printf '%04095d' 0)"
  >  echo '8 U between'
  >  echo "8 U \\xFF$(printf '%04096d' 0)"
  >  echo '8 U the end') | trace >mended.trc3
  $ vltrace cat mended.trc3 | cut -c 1-80
  vltrace: mended.trc3 is damaged in 1 place, 4104 bytes skipped (vltrace cat shows where)
  # mended.trc3
  # trace3
  ---------- --:--:--.---  0x0008  U caf� é ��� ����  -- the text
  ---------- --:--:--.---  0x0008  > g
  ---------- --:--:--.---  0x0008    > f�  -- the text is damaged --
  ---------- --:--:--.---  0x0008      U cut at a character�  -- the text is dam
  ---------- --:--:--.---  0x0008    < f�
  ---------- --:--:--.---  0x0008    U �0000000000000000000000000000000000000000
  ---------- --:--:--.---  0x0008    U between
  -- 4104 bytes skipped at offset 4201: no record can begin here --
  ---------- --:--:--.---  0x0008  U the end
  $ vltrace cat mended.trc3 | grep -c '0000  -- the text is damaged --'
  vltrace: mended.trc3 is damaged in 1 place, 4104 bytes skipped (vltrace cat shows where)
  1
  $ vltrace export mended.trc3 | grep caf
  vltrace: mended.trc3 is damaged in 1 place, 4104 bytes skipped (vltrace cat shows where)
  {"depth": 0,"file": "mended.trc3","kind": "message","level": "U","mended": true,"offset": 11,"text": "caf� é ��� ����","thread": 8,"type": "record"}
  $ vltrace export mended.trc3 | grep -c '"mended": true'
  vltrace: mended.trc3 is damaged in 1 place, 4104 bytes skipped (vltrace cat shows where)
  4

A text of 64 KiB and more has a length that wrapped.

  $ (echo "8 U $(printf '%065546d' 7)"; echo '8 U the next') | trace | vltrace cat -
  vltrace: standard input is damaged in 1 place, 65536 bytes skipped (vltrace cat shows where)
  # standard input
  # trace3
  ---------- --:--:--.---  0x0008  U 0000000000
  -- 65536 bytes skipped at offset 28: no record can begin here; perhaps the text before it was too long for its length field --
  ---------- --:--:--.---  0x0008  U the next
  $ (echo "8 U $(printf '%065535d' 7)"; echo '8 U the next') | trace | vltrace cat - | cut -c 1-60
  # standard input
  # trace3
  ---------- --:--:--.---  0x0008  U 0000000000000000000000000
  ---------- --:--:--.---  0x0008  U the next

The header: its mark is another, it has no end, it isn't there. Records are found all the same.

  $ (printf 'trace4\r\nTrace Ver: 4\r\n.\r\n'; echo '8 U a record' | trace --more) | vltrace cat -
  vltrace: standard input is damaged in 1 place, 0 bytes skipped (vltrace cat shows where)
  # standard input
  -- damage at offset 0: the header doesn't begin with its mark, "trace3" --
  # trace4
  # Trace Ver: 4
  ---------- --:--:--.---  0x0008  U a record
  $ (printf 'trace3\r\n07/14/2017 10:00:00.000\r\n'; echo '10:00:00.000 8 U a record' | trace --more) | vltrace cat -
  vltrace: standard input is damaged in 1 place, 0 bytes skipped (vltrace cat shows where)
  # standard input
  # trace3
  # 07/14/2017 10:00:00.000
  -- damage at offset 33: the header has no end --
  2017-07-14 10:00:00.000  0x0008  U a record
  $ (printf 'trace3\r\n'; printf 'x%.0s' $(seq 1100); echo '8 U a record' | trace --more) | vltrace cat - | tail -n +3 | cut -c 1-80
  vltrace: standard input is damaged in 2 places, 1100 bytes skipped (vltrace cat shows where)
  -- damage at offset 8: the header has no end --
  -- 1100 bytes skipped at offset 8: no record can begin here --
  ---------- --:--:--.---  0x0008  U a record
  $ (printf 'trace3\r\n'; yes "$(printf '%0999d\r' 0)" | head -n 70; echo '8 U a record' | trace --more) | vltrace cat - | cut -c 1-80 | uniq -c
  vltrace: standard input is damaged in 2 places, 4004 bytes skipped (vltrace cat shows where)
        1 # standard input
        1 # trace3
       66 # 000000000000000000000000000000000000000000000000000000000000000000000000000000
        1 -- damage at offset 66074: the header has no end --
        1 -- 4004 bytes skipped at offset 66074: no record can begin here --
        1 ---------- --:--:--.---  0x0008  U a record
  $ (echo '8 U a record'; echo '8 U another') | trace --more | vltrace cat -
  vltrace: standard input is damaged in 1 place, 0 bytes skipped (vltrace cat shows where)
  # standard input
  -- damage at offset 0: there is no header --
  ---------- --:--:--.---  0x0008  U a record
  ---------- --:--:--.---  0x0008  U another
  $ printf 'trace3\r\nMachine na' | vltrace cat -
  vltrace: standard input is cut at byte 8: the rest is no whole record (is it still being written?)
  # standard input
  # trace3
  -- damage at offset 8: the header has no end --
  -- 10 bytes skipped at offset 8: no record can begin here --
  $ printf 'trace3' | vltrace cat -
  vltrace: standard input is cut or damaged: it has no more than the mark of a trace (trace files end in .trc3, and have something in them)
  [1]

What holds no record and no header is no trace.

  $ for beginning in 'trace4\r\n.\r\n' 'trac' ' {"a": 1}' '\0\0\0\0\0\0\0\0\0' ''; do
  >   printf "$beginning" | vltrace cat -
  >   echo $?
  > done
  vltrace: standard input is no trace: it is text (trace files end in .trc3, and have something in them)
  1
  vltrace: standard input is no trace: it is text (trace files end in .trc3, and have something in them)
  1
  vltrace: standard input is no trace: it is JSON text (trace files end in .trc3, and have something in them)
  1
  vltrace: standard input is no trace: it is nothing but zeros (trace files end in .trc3, and have something in them)
  1
  vltrace: standard input is no trace: it is empty (trace files end in .trc3, and have something in them)
  1
  $ printf 'trace3\r\n.\r\n' | vltrace cat -
  # standard input
  # trace3
