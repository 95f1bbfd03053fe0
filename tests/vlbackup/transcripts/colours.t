Colours of the tools. A terminal shows them, unless it can't or NO_COLOR is set.

  $ cp "$SAMPLES"/* .
  $ export TERM=xterm; unset NO_COLOR
  $ colours() { tr -d '\r' | sed 's/\x1B\[\([0-9]*\)m/<\1>/g'; }
  $ terminal() { script -qc "$*" /dev/null < /dev/null | colours; }
  $ terminal vlbackup verify cut.vlb
  <31>vlbackup:<0> cut.vlb is no whole backup: cut at byte 400 of 942 (copy it again, or save what is intact by 'vlbackup recover')
  $ terminal vlbackup info first.vlb | tail -n 1
  verdict      <33>sound, with warnings<0> (errors 0, warnings 2, notes 0)
  $ terminal vlbackup diff first.vlb first.vlb
  <32>equal<0>
  $ terminal vltrace cat failed.trc3 | grep '<3'
  2026-11-21 23:30:11.053  0x00C4    <31>E 0x8000FFFF E_UNEXPECTED (unexpected failure): SetStorageData[com]<0>
  $ terminal vltrace cat damaged.trc3 | grep '<33>'
  <33>vltrace:<0> damaged.trc3 is damaged in 1 place, 78 bytes skipped (vltrace cat shows where)
  2026-11-21 23:29:29.199  0x0138      <33>E strange path ''<0>
  2026-11-21 23:29:29.199  0x0138    <33>E path is invalid ''<0>
  2026-11-21 23:29:29.199  0x0138      <33>E strange path ''<0>
  2026-11-21 23:29:29.199  0x0138    <33>E path is invalid ''<0>
  $ NO_COLOR= terminal vlbackup diff first.vlb first.vlb
  <32>equal<0>
  $ NO_COLOR=1 terminal vlbackup diff first.vlb first.vlb
  equal
  $ TERM=dumb terminal vlbackup diff first.vlb first.vlb
  equal
  $ terminal vlbackup diff first.vlb first.vlb --color never
  equal
  $ NO_COLOR=1 terminal vlbackup diff first.vlb first.vlb --color always
  <32>equal<0>
  $ NO_COLOR=1 terminal vltrace cat failed.trc3 | grep '<3'
  [1]
  $ terminal vltrace cat damaged.trc3 --color never | grep '<3'
  [1]
  $ vltrace cat failed.trc3 | colours | grep '<3'
  [1]
  $ vltrace cat failed.trc3 --color always | colours | grep -c '<3'
  1

A page is none for a terminal.

  $ terminal vltrace view restore.trc3
  <31>vltrace:<0> a page is nothing for a terminal (name a file: -o trace.html)

In a pipe they are only there if they are asked for, and then whatever NO_COLOR says.

  $ vlbackup info first.vlb | tail -n 1 | od -c | head -n 2
  0000000   v   e   r   d   i   c   t                           s   o   u
  0000020   n   d   ,       w   i   t   h       w   a   r   n   i   n   g
  $ coloured() { vlbackup "$@" --color always 2>&1 | colours; }
  $ coloured info first.vlb | tail -n 1
  verdict      <33>sound, with warnings<0> (errors 0, warnings 2, notes 0)
  $ coloured ls none.vlb
  <31>vlbackup:<0> none.vlb does not exist (is the name spelt right?)
  $ coloured verify first.vlb | sed 's/:.*//'
  <33>warning<0>
  <33>warning<0>
  <33>sound, with warnings<0>
  $ coloured diff first.vlb first.vlb
  <32>equal<0>
  $ coloured diff --restored first.vlb second.vlb | cut -c 1-30
  <33>templates<0>: in another o
  <33>settings<0> settings.curre
  <32>equal<0> except for that
  $ coloured diff first.vlb second.vlb | cut -c 1-30
  <31>templates<0>: in another o
  <31>settings<0> settings.curre
  $ coloured recover cut.vlb new.vlb | cut -c 1-30
  new.vlb: 381 bytes
  <31>lost<0>: byte 379, 21 byte
  <31>lost<0>: byte 400, 542 byt
  <32>recovered<0>: 5 templates,
  $ vlbackup to-json first.vlb - | sed s/Meine/My/ | vlbackup from-json - other.vlb -q
  $ coloured merge first.vlb other.vlb --dry-run | grep -v '^vlbackup'
  <31>quicklinks<0> Meine Bank: name: "Meine Bank" and "My Bank"
  <31>vlbackup:<0> first.vlb and other.vlb differ in 1 thing that both have, and nothing is written (--prefer first or --prefer second says which to take)
  $ coloured merge first.vlb other.vlb --dry-run --prefer first
  <33>quicklinks<0> Meine Bank: name: "Meine Bank" and "My Bank"; from the first
  merged: 14 from both, 1 from the first, 0 from the second
  $ NO_COLOR=1 coloured ls none.vlb
  <31>vlbackup:<0> none.vlb does not exist (is the name spelt right?)
  $ vlbackup --color never ls none.vlb
  vlbackup: none.vlb does not exist (is the name spelt right?)
  [1]
