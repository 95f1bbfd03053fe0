The table of the functions.

  $ trace() { "$TESTS/vltrace/tracefile.py" "$@"; }
  $ trace >host.x64.vlonlineids.dll~~07.14.17_at_10.00.00.000~~1.7.trc3 <<'.'
  > 07/14/17 10:00:00.000 8 > outer
  > 10:00:00.100 8 > twice
  > 10:00:00.200 8 > twice
  > 8 E -1 x
  > 8 E 0 y
  > 8 U z
  > 8 D z
  > 10:00:00.500 8 <
  > 10:00:01.000 8 <
  > 8 E 5 of the outer one
  > 9 > back
  > 09:00:00.000 9 <
  > 9 U in no function
  > 9 <
  > 10 > b\x1Bc;d
  > 10 U last
  > .
  $ trace >other.trc3 <<'.'
  > 10 > outer
  > 10 <
  > 07/14/17 23:59:59.500 10 > outer
  > 07/15/17 00:00:00.004 10 <
  > 10 > outer
  > 00:00:00.005 10 <
  > 11 > lost
  > 11 N 07-15-2017
  > 11 U alone
  > .

Errors, notes and messages count for the innermost function; what is inside one of the same name is not added again; without
an exit, or without a time, there is no duration; a clock that was set back gives 0.

  $ vltrace stats host*.trc3
        calls     errors      notes   messages unfinished   total ms    mean ms longest ms  function
            2          1          1          2          0        900        450        900  twice
            1          0          0          1          1          -          -          -  b\x1Bc;d
            1          0          0          0          0          0          0          0  back
            0          0          0          1          0          -          -          -  main
            1          1          0          0          1          -          -          -  outer
  $ vltrace stats other.trc3
        calls     errors      notes   messages unfinished   total ms    mean ms longest ms  function
            3          0          0          0          0        505        252        504  outer
            1          0          0          0          1          -          -          -  lost
            0          0          0          1          0          -          -          -  main

The order is that of a column, the highest first, and of the names where it is the same.

  $ vltrace stats . | cut -c 56-
     total ms    mean ms longest ms  function
          900        450        900  twice
          505        252        504  outer
            -          -          -  b\x1Bc;d
            0          0          0  back
            -          -          -  lost
            -          -          -  main
  $ for order in total longest calls errors name; do
  >   vltrace stats --sort $order . | tail -n +2 | cut -c 90- | tr '\n' ' '; echo $order
  > done
   twice  outer  b\x1Bc;d  back  lost  main total
   twice  outer  b\x1Bc;d  back  lost  main longest
   outer  twice  b\x1Bc;d  back  lost  main calls
   outer  twice  b\x1Bc;d  back  lost  main errors
   b\x1Bc;d  back  lost  main  outer  twice name
  $ vltrace stats --sort notes .
  vltrace: --sort: "notes" is none of name, calls, errors, total, longest (see vltrace stats --help)
  [2]

Filters choose what is counted. A call counts if its entry does.

  $ vltrace stats --level E .
        calls     errors      notes   messages unfinished   total ms    mean ms longest ms  function
            0          1          0          0          0          -          -          -  outer
            0          1          1          0          0          -          -          -  twice
  $ vltrace stats --from 10:00:00.200 --to 10:00:01.000 host*.trc3
        calls     errors      notes   messages unfinished   total ms    mean ms longest ms  function
            1          1          1          2          0        300        300        300  twice
            1          0          0          0          0          0          0          0  back
            0          1          0          0          0          -          -          -  outer
  $ vltrace stats --function twice --level '<>' .
        calls     errors      notes   messages unfinished   total ms    mean ms longest ms  function
            2          0          0          0          0        900        450        900  twice
  $ vltrace stats --text nowhere .
        calls     errors      notes   messages unfinished   total ms    mean ms longest ms  function
  vltrace: none of the 24 records is what was asked for (leave out a filter to see more)

As a document.

  $ vltrace stats --json --sort name other.trc3
  {
    "schema": "vltrace-stats-1",
    "files": [
      "other.trc3"
    ],
    "functions": [
      {
        "name": "lost",
        "calls": 1,
        "errors": 0,
        "notes": 0,
        "messages": 0,
        "unfinished": 1,
        "timed": 0
      },
      {
        "name": "main",
        "calls": 0,
        "errors": 0,
        "notes": 0,
        "messages": 1,
        "unfinished": 0,
        "timed": 0
      },
      {
        "name": "outer",
        "calls": 3,
        "errors": 0,
        "notes": 0,
        "messages": 0,
        "unfinished": 0,
        "timed": 2,
        "totalMilliseconds": 505,
        "longestMilliseconds": 504
      }
    ]
  }
  $ vltrace stats --json --level E host*.trc3 none.trc3
  {"error": "none.trc3 does not exist","exitStatus": 1,"hint": "is the name spelt right?","schema": "error-1","tool": "vltrace"}
  {
    "schema": "vltrace-stats-1",
    "files": [
      "host.x64.vlonlineids.dll~~07.14.17_at_10.00.00.000~~1.7.trc3"
    ],
    "functions": [
      {
        "name": "outer",
        "calls": 0,
        "errors": 1,
        "notes": 0,
        "messages": 0,
        "unfinished": 0,
        "timed": 0
      },
      {
        "name": "twice",
        "calls": 0,
        "errors": 1,
        "notes": 1,
        "messages": 0,
        "unfinished": 0,
        "timed": 0
      }
    ]
  }
  [1]
  $ printf 'trace3\r\n.\r\n' | vltrace stats --json -
  {
    "schema": "vltrace-stats-1",
    "files": [
      "-"
    ],
    "functions": []
  }
  $ printf 'trace3\r\n.\r\n' | vltrace stats -
        calls     errors      notes   messages unfinished   total ms    mean ms longest ms  function
