The page for a browser.

  $ trace() { "$TESTS/vltrace/tracefile.py" "$@"; }
  $ trace >host.x64.vlonlineids.dll~~07.14.17_at_10.00.00.000~~1.4242.trc3 <<'.'
  > # trace3
  > # 01/01/1970 00:00:00.000
  > # .
  > 01/01/70 00:00:01.000 8 > outer
  > 8 > </script><b>"Größe"
  > 8 E -2147024891 first
  > 9 > Poll
  > 8 E 305419896 second
  > 8 E 5 first
  > 8 E 0 note
  > 00:00:01.250 8 <
  > 8 D '`I04`'debug
  > 9 U \xE2\x80\xA8\x1B
  > 9 <
  > ! FF FF
  > 8 N 01-01-1970
  > 8 U in no function
  > .
  $ trace >other.trc3 <<'.'
  > 01/01/70 00:00:00.999 8 U earlier
  > .

It holds all that it needs, and the records as JSON in columns.

  $ vltrace view . -o page.html
  vltrace: ./host.x64.vlonlineids.dll~~07.14.17_at_10.00.00.000~~1.4242.trc3 is damaged in 1 place, 2 bytes skipped (vltrace cat shows where)
  $ data() { sed -n '/id="data"/,/<\/script>/p' "$@" | sed '1d;$d; s/,"\([a-z]*\)": /,\n"\1": /g'; }
  $ data page.html
  {"files": [{"name": "./host.x64.vlonlineids.dll~~07.14.17_at_10.00.00.000~~1.4242.trc3",
  "program": "host",
  "process": 4242},{"name": "./other.trc3",
  "program": "other"}],
  "lanes": [[0,8],[0,9],[0,-1],[1,8]],
  "strings": ["outer","\u003c/script>\u003cb>\"Größe\"","first","Poll","second","note","debug","\u2028\u001b","2 bytes skipped at offset 258: no record can begin here","in no function","earlier"],
  "statuses": [["0x80070005","ERROR_ACCESS_DENIED","access is denied"],["0x00000005","ERROR_ACCESS_DENIED","access is denied"],["0x12345678","",""]],
  "base": 999000,
  "calls": {"lane": [0,0,1],
  "name": [0,1,3],
  "from": [1000,1,-1],
  "took": [250002,249999,250001],
  "parent": [0,1,0],
  "finished": [0,1,1]},
  "marks": {"lane": [0,0,0,0,0,1,2,0,3],
  "text": [2,4,2,5,6,7,8,9,10],
  "status": [1,3,2,0,0,0,0,0,0],
  "at": [1002,2,2,2,249993,-1,1,3,-251004],
  "call": [2,2,2,2,1,3,0,0,0],
  "kind": "EEEnDUxUU"}}
  $ grep -c '{{' page.html
  0
  [1]
  $ grep -o '</script>' page.html | wc -l
  2
  $ grep -o "default-src '[a-z]*'" page.html
  default-src 'none'
  $ grep -o 'src=.*\|href=.*\|url(.*\|http[s:].*\|import .*' page.html
  [1]
  $ tail -n 1 page.html
  </html>

Filters leave records out.

  $ vltrace view host*.trc3 --errors | data
  vltrace: host.x64.vlonlineids.dll~~07.14.17_at_10.00.00.000~~1.4242.trc3 is damaged in 1 place, 2 bytes skipped (vltrace cat shows where)
  {"files": [{"name": "host.x64.vlonlineids.dll~~07.14.17_at_10.00.00.000~~1.4242.trc3",
  "program": "host",
  "process": 4242}],
  "lanes": [[0,8],[0,-1]],
  "strings": ["first","second","2 bytes skipped at offset 258: no record can begin here"],
  "statuses": [["0x80070005","ERROR_ACCESS_DENIED","access is denied"],["0x00000005","ERROR_ACCESS_DENIED","access is denied"],["0x12345678","",""]],
  "base": 1000002,
  "calls": {"lane": [],
  "name": [],
  "from": [],
  "took": [],
  "parent": [],
  "finished": []},
  "marks": {"lane": [0,0,0,1],
  "text": [0,1,0,2],
  "status": [1,3,2,0],
  "at": [0,2,2,249994],
  "call": [0,0,0,0],
  "kind": "EEEx"}}
  $ vltrace view host*.trc3 --function poll --level '<>U' | data | grep -A 12 calls
  vltrace: host.x64.vlonlineids.dll~~07.14.17_at_10.00.00.000~~1.4242.trc3 is damaged in 1 place, 2 bytes skipped (vltrace cat shows where)
  "calls": {"lane": [0],
  "name": [0],
  "from": [0],
  "took": [250001],
  "parent": [0],
  "finished": [1]},
  "marks": {"lane": [0,1],
  "text": [1,2],
  "status": [0,0],
  "at": [250000,1],
  "call": [1,0],
  "kind": "Ux"}}
  $ printf 'trace3\r\n.\r\n' | vltrace view - | data
  {"files": [{"name": "standard input",
  "program": "standard input"}],
  "lanes": [],
  "strings": [],
  "statuses": [],
  "base": 0,
  "calls": {"lane": [],
  "name": [],
  "from": [],
  "took": [],
  "parent": [],
  "finished": []},
  "marks": {"lane": [],
  "text": [],
  "status": [],
  "at": [],
  "call": [],
  "kind": ""}}
  $ vltrace view host*.trc3 other.trc3 none.trc3 -o other.html
  vltrace: host.x64.vlonlineids.dll~~07.14.17_at_10.00.00.000~~1.4242.trc3 is damaged in 1 place, 2 bytes skipped (vltrace cat shows where)
  vltrace: none.trc3 does not exist (is the name spelt right?)
  vltrace: other.html is not written, as not all could be read (leave out what can't)
  [1]
  $ ls *.html
  page.html
