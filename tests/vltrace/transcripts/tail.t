The last lines, and files that grow.

  $ trace() { "$TESTS/vltrace/tracefile.py" "$@"; }
  $ trace >host~~1.4242.trc3 <<'.'
  > 07/14/17 10:00:00.000 8 > f
  > 8 U one
  > 8 E 5 two
  > 8 U three
  > .
  $ cp host~~1.4242.trc3 other.trc3
  $ vltrace tail -n 2 other.trc3
  2017-07-14 10:00:00.000  0x0008    E 0x00000005 ERROR_ACCESS_DENIED (access is denied): two
  2017-07-14 10:00:00.000  0x0008    U three
  $ vltrace tail --lines 0 other.trc3
  $ vltrace tail -n 100 other.trc3
  # other.trc3
  # trace3
  2017-07-14 10:00:00.000  0x0008  > f
  2017-07-14 10:00:00.000  0x0008    U one
  2017-07-14 10:00:00.000  0x0008    E 0x00000005 ERROR_ACCESS_DENIED (access is denied): two
  2017-07-14 10:00:00.000  0x0008    U three
  $ seq -f '8 U %g' 30 | trace | vltrace tail - | sed -n '1p;$='
  ---------- --:--:--.---  0x0008  U 11
  20
  $ vltrace tail -n 3 . --level U
  2017-07-14 10:00:00.000  4242  0x0008    U three
  2017-07-14 10:00:00.000  #2  0x0008    U one
  2017-07-14 10:00:00.000  #2  0x0008    U three
  $ vltrace tail -n 1 --errors other.trc3
  2017-07-14 10:00:00.000  0x0008  E 0x00000005 ERROR_ACCESS_DENIED (access is denied): two
      in f, entered 10:00:00.000
  $ vltrace tail -n 3 other.trc3 none.trc3
  vltrace: none.trc3 does not exist (is the name spelt right?)
  2017-07-14 10:00:00.000  0x0008    U one
  2017-07-14 10:00:00.000  0x0008    E 0x00000005 ERROR_ACCESS_DENIED (access is denied): two
  2017-07-14 10:00:00.000  0x0008    U three
  [1]

Followed, one look after another: what comes is shown when it is there, as far as it is whole.

  $ follow() { : >lines; timeout 60 vltrace tail -f "$@" >>lines 2>&1 & }
  $ seen() { i=0; until grep -q -e "$1" lines || [ $((i += 1)) -gt 600 ]; do sleep 0.05; done; }
  $ shown() { seen "$1"; kill $!; { wait $!; } 2>/dev/null; cat lines; }
  $ follow -n 1 other.trc3
  $ seen three
  $ trace --more >more <<'.'
  > 8 <
  > 10:00:01.000 8 U four
  > 8 U five
  > .
  $ head -c -1 more >>other.trc3; seen four
  $ tail -c 1 more >>other.trc3; shown five
  2017-07-14 10:00:00.000  0x0008    U three
  2017-07-14 10:00:00.000  0x0008  < f  0 ms
  2017-07-14 10:00:01.000  0x0008  U four
  2017-07-14 10:00:01.000  0x0008  U five

A file that is replaced is read from its beginning: one that begins in another way, or is shorter than what was read. What
was open in the old one is forgotten, and what it ends with is shown.

  $ cp host~~1.4242.trc3 other.trc3; follow -n 1 other.trc3; seen three
  $ head -c 10 more >>other.trc3; seen '< f'
  $ trace >other.trc3 <<'.'
  > # trace3
  > # of another run
  > # .
  > 07/15/17 10:00:00.000 8 U another beginning, and more in it than there was before
  > .
  $ seen another
  $ rm other.trc3
  $ trace >new <<'.'
  > 07/15/17 11:00:00.000 8 <
  > 8 U and one that was moved there
  > .
  $ mv new other.trc3; shown moved
  2017-07-14 10:00:00.000  0x0008    U three
  2017-07-14 10:00:00.000  0x0008  < f  0 ms
  -- 3 bytes skipped at offset 94: a record is cut short --
  vltrace: other.trc3 is cut at byte 94: the rest is no whole record (is it still being written?)
  
  # other.trc3
  # trace3
  # of another run
  2017-07-15 10:00:00.000  0x0008  U another beginning, and more in it than there was before
  
  # other.trc3
  # trace3
  2017-07-15 11:00:00.000  0x0008  < (a function whose entry is not known)
  2017-07-15 11:00:00.000  0x0008  U and one that was moved there
  $ (echo "8 U $(printf '%05000d' 0)"; echo '8 U long'; echo '8 U longer') | trace >long
  $ cp long other.trc3; follow -n 1 other.trc3; seen longer
  $ head -c -13 long >new; echo '9 U shorter, and the same for 4 KiB' >line; mv new other.trc3; seen 'U 0000'
  $ trace --more <line >>other.trc3; shown shorter | cut -c 1-80
  ---------- --:--:--.---  0x0008  U longer
  
  # other.trc3
  # trace3
  ---------- --:--:--.---  0x0008  U 000000000000000000000000000000000000000000000
  ---------- --:--:--.---  0x0008  U long
  ---------- --:--:--.---  0x0009  U shorter, and the same for 4 KiB

A folder: also the files that come into it, each with its process in front. Filters apply.

  $ mkdir folder; follow -n 5 folder --level U host~~1.4242.trc3; seen three
  $ cp host~~1.4242.trc3 folder/new~~1.77.trc3; seen '77 .*three'
  $ echo no trace >folder/readme.txt
  $ gzip <host~~1.4242.trc3 >packed; mv packed folder/packed.trc3.gz; seen '#3 .*three'
  $ echo '8 U at last' | trace --more >>folder/new~~1.77.trc3; shown last
  # 4242: host~~1.4242.trc3
  # trace3
  2017-07-14 10:00:00.000  4242  0x0008    U one
  2017-07-14 10:00:00.000  4242  0x0008    U three
  
  # 77: folder/new~~1.77.trc3
  # trace3
  2017-07-14 10:00:00.000  77  0x0008    U one
  2017-07-14 10:00:00.000  77  0x0008    U three
  
  # #3: folder/packed.trc3.gz
  # trace3
  2017-07-14 10:00:00.000  #3  0x0008    U one
  2017-07-14 10:00:00.000  #3  0x0008    U three
  2017-07-14 10:00:00.000  77  0x0008    U at last
  $ vltrace tail -f none.trc3
  vltrace: none.trc3 does not exist (is the name spelt right?)
  [1]
