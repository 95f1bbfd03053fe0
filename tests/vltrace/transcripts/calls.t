Calls for viewers: the trace event format, and folded stacks.

  $ trace() { "$TESTS/vltrace/tracefile.py" "$@"; }
  $ trace >host.x64.vlonlineids.dll~~07.14.17_at_10.00.00.000~~1.2.trc3 <<'.'
  > # trace3
  > # 01/01/1970 00:00:00.000
  > # .
  > 1A4 > early
  > 01/01/70 00:00:01.000 1A4 > CVLKTPages::SetStorageData
  > 1A4 U '`I04`'reading
  > 1A4 > a;b
  > 1A4 E -2147024891 Größe "of" </script>
  > 2B0 > Poll
  > 1A4 E 0 a note
  > 00:00:00.500 1A4 <
  > 00:00:02.000 1A4 <
  > 2B0 D waiting
  > ! FF FF
  > 2B0 <
  > 1A4 > last
  > 00:00:03.000 1A4 E 5 
  > .
  $ trace >other.x64.vlonlineids.dll~~07.14.17_at_10.00.00.000~~2.2.trc3 <<'.'
  > 01/01/70 00:00:00.010 8 > f
  > 00:00:00.015 8 > f
  > 00:00:00.020 8 <
  > 00:00:00.030 8 > g
  > 8 <
  > 00:00:00.040 8 <
  > 8 N 01-02-1970
  > 8 > unfinished
  > 8 U x
  > .
  $ cp other*.trc3 unnamed.TRC3

Each event of a thread comes at least a microsecond after the one before. A function without an exit ends with its thread's
last event.

  $ vltrace export --format chrome host*.trc3
  vltrace: host.x64.vlonlineids.dll~~07.14.17_at_10.00.00.000~~1.2.trc3 is damaged in 1 place, 2 bytes skipped (vltrace cat shows where)
  {"displayTimeUnit":"ms","traceEvents":[
  {"args": {"name": "host"},"name": "process_name","ph": "M","pid": 2,"tid": 0,"ts": 0},
  {"args": {"labels": "host.x64.vlonlineids.dll~~07.14.17_at_10.00.00.000~~1.2.trc3"},"name": "process_labels","ph": "M","pid": 2,"tid": 0,"ts": 0},
  {"args": {"name": "thread 0x01A4"},"name": "thread_name","ph": "M","pid": 2,"tid": 420,"ts": 0},
  {"name": "early","ph": "B","pid": 2,"tid": 420,"ts": 0},
  {"name": "CVLKTPages::SetStorageData","ph": "B","pid": 2,"tid": 420,"ts": 1000000},
  {"args": {"colour": "04","level": "U","text": "reading"},"cat": "message","name": "reading","ph": "i","pid": 2,"s": "t","tid": 420,"ts": 1000001},
  {"name": "a;b","ph": "B","pid": 2,"tid": 420,"ts": 1000002},
  {"args": {"level": "E","status": "0x80070005","statusName": "ERROR_ACCESS_DENIED","statusText": "access is denied","text": "Größe \"of\" </script>"},"cat": "error","cname": "terrible","dur": 1,"name": "Größe \"of\" </script>","ph": "X","pid": 2,"tid": 420,"ts": 1000003},
  {"args": {"name": "thread 0x02B0"},"name": "thread_name","ph": "M","pid": 2,"tid": 688,"ts": 0},
  {"name": "Poll","ph": "B","pid": 2,"tid": 688,"ts": 1000000},
  {"args": {"level": "E","text": "a note"},"cat": "note","name": "a note","ph": "i","pid": 2,"s": "t","tid": 420,"ts": 1000005},
  {"name": "a;b","ph": "E","pid": 2,"tid": 420,"ts": 1000006},
  {"name": "CVLKTPages::SetStorageData","ph": "E","pid": 2,"tid": 420,"ts": 2000000},
  {"args": {"level": "D","text": "waiting"},"cat": "message","name": "waiting","ph": "i","pid": 2,"s": "t","tid": 688,"ts": 2000000},
  {"args": {"unfinished": true},"name": "early","ph": "E","pid": 2,"tid": 420,"ts": 2000001},
  {"args": {"unfinished": true},"name": "Poll","ph": "E","pid": 2,"tid": 688,"ts": 2000001},
  {"args": {"bytes": 2,"offset": 279,"reason": "no record can begin here"},"name": "damage","ph": "i","pid": 2,"s": "p","tid": 0,"ts": 2000000},
  {"name": "last","ph": "B","pid": 2,"tid": 420,"ts": 2000002},
  {"args": {"level": "E","status": "0x00000005","statusName": "ERROR_ACCESS_DENIED","statusText": "access is denied","text": ""},"cat": "error","cname": "terrible","dur": 1,"name": "","ph": "X","pid": 2,"tid": 420,"ts": 3000000},
  {"args": {"unfinished": true},"name": "last","ph": "E","pid": 2,"tid": 420,"ts": 3000002}
  ]}

Processes are kept apart, whatever their names.

  $ vltrace export --format chrome . | grep process_
  vltrace: ./host.x64.vlonlineids.dll~~07.14.17_at_10.00.00.000~~1.2.trc3 is damaged in 1 place, 2 bytes skipped (vltrace cat shows where)
  {"args": {"name": "host"},"name": "process_name","ph": "M","pid": 2,"tid": 0,"ts": 0},
  {"args": {"labels": "./host.x64.vlonlineids.dll~~07.14.17_at_10.00.00.000~~1.2.trc3"},"name": "process_labels","ph": "M","pid": 2,"tid": 0,"ts": 0},
  {"args": {"name": "other"},"name": "process_name","ph": "M","pid": 3,"tid": 0,"ts": 0},
  {"args": {"labels": "./other.x64.vlonlineids.dll~~07.14.17_at_10.00.00.000~~2.2.trc3"},"name": "process_labels","ph": "M","pid": 3,"tid": 0,"ts": 0},
  {"args": {"name": "unnamed"},"name": "process_name","ph": "M","pid": 1,"tid": 0,"ts": 0},
  {"args": {"labels": "./unnamed.TRC3"},"name": "process_labels","ph": "M","pid": 1,"tid": 0,"ts": 0},
  $ vltrace export --format chrome unnamed.TRC3
  {"displayTimeUnit":"ms","traceEvents":[
  {"args": {"name": "unnamed"},"name": "process_name","ph": "M","pid": 1,"tid": 0,"ts": 0},
  {"args": {"labels": "unnamed.TRC3"},"name": "process_labels","ph": "M","pid": 1,"tid": 0,"ts": 0},
  {"args": {"name": "thread 0x0008"},"name": "thread_name","ph": "M","pid": 1,"tid": 8,"ts": 0},
  {"name": "f","ph": "B","pid": 1,"tid": 8,"ts": 10000},
  {"name": "f","ph": "B","pid": 1,"tid": 8,"ts": 15000},
  {"name": "f","ph": "E","pid": 1,"tid": 8,"ts": 20000},
  {"name": "g","ph": "B","pid": 1,"tid": 8,"ts": 30000},
  {"name": "g","ph": "E","pid": 1,"tid": 8,"ts": 30001},
  {"name": "f","ph": "E","pid": 1,"tid": 8,"ts": 40000},
  {"args": {"level": "N","text": "01-02-1970"},"cat": "stamp","name": "01-02-1970","ph": "i","pid": 1,"s": "t","tid": 8,"ts": 86400040000},
  {"name": "unfinished","ph": "B","pid": 1,"tid": 8,"ts": 86400040001},
  {"args": {"level": "U","text": "x"},"cat": "message","name": "x","ph": "i","pid": 1,"s": "t","tid": 8,"ts": 86400040002},
  {"args": {"unfinished": true},"name": "unfinished","ph": "E","pid": 1,"tid": 8,"ts": 86400040003}
  ]}
  $ vltrace export --format chrome host*.trc3 --errors
  vltrace: host.x64.vlonlineids.dll~~07.14.17_at_10.00.00.000~~1.2.trc3 is damaged in 1 place, 2 bytes skipped (vltrace cat shows where)
  {"displayTimeUnit":"ms","traceEvents":[
  {"args": {"name": "host"},"name": "process_name","ph": "M","pid": 2,"tid": 0,"ts": 0},
  {"args": {"labels": "host.x64.vlonlineids.dll~~07.14.17_at_10.00.00.000~~1.2.trc3"},"name": "process_labels","ph": "M","pid": 2,"tid": 0,"ts": 0},
  {"args": {"name": "thread 0x01A4"},"name": "thread_name","ph": "M","pid": 2,"tid": 420,"ts": 0},
  {"args": {"level": "E","status": "0x80070005","statusName": "ERROR_ACCESS_DENIED","statusText": "access is denied","text": "Größe \"of\" </script>"},"cat": "error","cname": "terrible","dur": 1,"name": "Größe \"of\" </script>","ph": "X","pid": 2,"tid": 420,"ts": 1000002},
  {"args": {"name": "thread 0x02B0"},"name": "thread_name","ph": "M","pid": 2,"tid": 688,"ts": 0},
  {"args": {"bytes": 2,"offset": 279,"reason": "no record can begin here"},"name": "damage","ph": "i","pid": 2,"s": "p","tid": 0,"ts": 2000000},
  {"args": {"level": "E","status": "0x00000005","statusName": "ERROR_ACCESS_DENIED","statusText": "access is denied","text": ""},"cat": "error","cname": "terrible","dur": 1,"name": "","ph": "X","pid": 2,"tid": 420,"ts": 3000000}
  ]}
  $ vltrace export --format chrome host*.trc3 --level '<>E' --thread 420 --from 00:00:01 | grep -v '"M"'
  vltrace: host.x64.vlonlineids.dll~~07.14.17_at_10.00.00.000~~1.2.trc3 is damaged in 1 place, 2 bytes skipped (vltrace cat shows where)
  {"displayTimeUnit":"ms","traceEvents":[
  {"name": "CVLKTPages::SetStorageData","ph": "B","pid": 2,"tid": 420,"ts": 1000000},
  {"name": "a;b","ph": "B","pid": 2,"tid": 420,"ts": 1000001},
  {"args": {"level": "E","status": "0x80070005","statusName": "ERROR_ACCESS_DENIED","statusText": "access is denied","text": "Größe \"of\" </script>"},"cat": "error","cname": "terrible","dur": 1,"name": "Größe \"of\" </script>","ph": "X","pid": 2,"tid": 420,"ts": 1000002},
  {"args": {"level": "E","text": "a note"},"cat": "note","name": "a note","ph": "i","pid": 2,"s": "t","tid": 420,"ts": 1000004},
  {"name": "a;b","ph": "E","pid": 2,"tid": 420,"ts": 1000005},
  {"name": "CVLKTPages::SetStorageData","ph": "E","pid": 2,"tid": 420,"ts": 2000000},
  {"args": {"bytes": 2,"offset": 279,"reason": "no record can begin here"},"name": "damage","ph": "i","pid": 2,"s": "p","tid": 0,"ts": 2000000},
  {"name": "last","ph": "B","pid": 2,"tid": 420,"ts": 2000002},
  {"args": {"level": "E","status": "0x00000005","statusName": "ERROR_ACCESS_DENIED","statusText": "access is denied","text": ""},"cat": "error","cname": "terrible","dur": 1,"name": "","ph": "X","pid": 2,"tid": 420,"ts": 3000000},
  {"args": {"unfinished": true},"name": "last","ph": "E","pid": 2,"tid": 420,"ts": 3000002}
  ]}
  $ printf 'trace3\r\n.\r\n' | vltrace export --format chrome -
  {"displayTimeUnit":"ms","traceEvents":[
  {"args": {"name": "standard input"},"name": "process_name","ph": "M","pid": 1,"tid": 0,"ts": 0},
  {"args": {"labels": "standard input"},"name": "process_labels","ph": "M","pid": 1,"tid": 0,"ts": 0}
  ]}

Folded stacks: microseconds of the functions by themselves. What takes no time has one; a semicolon is a colon.

  $ vltrace export --format folded host*.trc3
  vltrace: host.x64.vlonlineids.dll~~07.14.17_at_10.00.00.000~~1.2.trc3 is damaged in 1 place, 2 bytes skipped (vltrace cat shows where)
  host;early 1000001
  host;early;CVLKTPages::SetStorageData 999996
  host;early;CVLKTPages::SetStorageData;a:b 4
  host;Poll 1000001
  host;last 1000000
  $ vltrace export --format folded other*.trc3 unnamed.TRC3
  other;f 24999
  other;f;f 5000
  other;f;g 1
  other;unfinished 2
  unnamed;f 24999
  unnamed;f;f 5000
  unnamed;f;g 1
  unnamed;unfinished 2
  $ vltrace export --format folded other*.trc3 --text g --text unfinished
  other;g 1
  other;unfinished 1
  $ (echo '8 > f\x1B'; echo '8 U x') | trace | vltrace export --format folded -
  standard input;f\x1B 2
  $ (yes '8 > f' | head -n 150) | trace | vltrace export --format folded - >deep
  $ wc -l <deep
  100
  $ tail -n 1 deep | tr ';' '\n' | sort | uniq -c
       99 f
        1 f 101
        1 standard input
