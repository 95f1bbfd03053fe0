Spans for OpenTelemetry collectors.

  $ trace() { "$TESTS/vltrace/tracefile.py" "$@"; }
  $ trace >host.x64.vlonlineids.dll~~07.14.17_at_10.00.00.000~~1.4242.trc3 <<'.'
  > # trace3
  > # Machine name: PC-7
  > # Trace Ver: 3.0.2
  > # FileVersion: 1.2.3.4
  > # .
  > 8 U loose
  > 07/14/17 10:00:00.000 8 > CVLKTPages::SetStorageData
  > 8 U '`I04`'
  > 8 > RestoreBackup
  > 8 E -2147024891 failed
  > 8 E 305419896 unknown
  > 8 E 0 a note
  > 10:00:00.100 8 <
  > 10:00:00.200 8 <
  > 9 > unfinished
  > 9 D "text"
  > .

Each call is a span with what was written in it as events; an outermost one begins a trace, and so does what is in no call.

  $ vltrace export --format otlp host*.trc3 >spans
  $ cat spans
  {"resourceSpans":[
  {"resource": {"attributes": [{"key": "service.name","value": {"stringValue": "VLOnlineIDs"}},{"key": "process.executable.name","value": {"stringValue": "host"}},{"key": "process.pid","value": {"intValue": "4242"}},{"key": "log.file.name","value": {"stringValue": "host.x64.vlonlineids.dll~~07.14.17_at_10.00.00.000~~1.4242.trc3"}},{"key": "host.name","value": {"stringValue": "PC-7"}},{"key": "service.version","value": {"stringValue": "1.2.3.4"}}]},"scopeSpans": [{"scope": {"name": "tracecore","version": "3.0.2"},"spans": [
  {"traceId": "36c291276af6bb87e08bb9c94a106d5a","spanId": "e08bb9c94a106d5a","name": "events","kind": 1,"startTimeUnixNano": "0","endTimeUnixNano": "0","attributes": [{"key": "thread.id","value": {"intValue": "8"}}],"events": [{"timeUnixNano": "0","name": "loose","attributes": [{"key": "trace.kind","value": {"stringValue": "message"}}]}],"status": {}},
  {"traceId": "848a528b7c552cf8c4e56373d8e5848d","spanId": "e03524a91545e9a3","parentSpanId": "c4e56373d8e5848d","name": "RestoreBackup","kind": 1,"startTimeUnixNano": "1500026400000002000","endTimeUnixNano": "1500026400100000000","attributes": [{"key": "thread.id","value": {"intValue": "8"}}],"events": [{"timeUnixNano": "1500026400000003000","name": "failed","attributes": [{"key": "trace.kind","value": {"stringValue": "error"}},{"key": "status","value": {"stringValue": "0x80070005"}},{"key": "status.name","value": {"stringValue": "ERROR_ACCESS_DENIED"}},{"key": "status.text","value": {"stringValue": "access is denied"}}]},{"timeUnixNano": "1500026400000005000","name": "unknown","attributes": [{"key": "trace.kind","value": {"stringValue": "error"}},{"key": "status","value": {"stringValue": "0x12345678"}}]},{"timeUnixNano": "1500026400000007000","name": "a note","attributes": [{"key": "trace.kind","value": {"stringValue": "note"}}]}],"status": {"code": 2}},
  {"traceId": "848a528b7c552cf8c4e56373d8e5848d","spanId": "c4e56373d8e5848d","name": "CVLKTPages::SetStorageData","kind": 1,"startTimeUnixNano": "1500026400000000000","endTimeUnixNano": "1500026400200000000","attributes": [{"key": "thread.id","value": {"intValue": "8"}}],"events": [{"timeUnixNano": "1500026400000001000","name": "message","attributes": [{"key": "trace.kind","value": {"stringValue": "message"}}]}],"status": {}},
  {"traceId": "8c288ac52bade06bdc6e6f885a8704c1","spanId": "dc6e6f885a8704c1","name": "unfinished","kind": 1,"startTimeUnixNano": "1500026400200000000","endTimeUnixNano": "1500026400200002000","attributes": [{"key": "thread.id","value": {"intValue": "9"}},{"key": "unfinished","value": {"stringValue": "true"}}],"events": [{"timeUnixNano": "1500026400200001000","name": "\"text\"","attributes": [{"key": "trace.kind","value": {"stringValue": "message"}}]}],"status": {}}
  ]}]}
  ]}
  $ vltrace export --format otlp host*.trc3 | cmp - spans

Other files have other ids. The clock's distance from UTC changes the times alone.

  $ mkdir other; cp host*.trc3 other/1.trc3
  $ ids() { grep -o '"[a-zA-Z]*Id": "[0-9a-f]*"' "$@" | sort -u; }
  $ vltrace export --format otlp other/1.trc3 | ids | cmp -s - spans; ids spans | wc -l
  8
  $ vltrace export --format otlp other/1.trc3 | grep -o '"resource.*'
  "resourceSpans":[
  "resource": {"attributes": [{"key": "service.name","value": {"stringValue": "VLOnlineIDs"}},{"key": "process.executable.name","value": {"stringValue": "1"}},{"key": "log.file.name","value": {"stringValue": "1.trc3"}},{"key": "host.name","value": {"stringValue": "PC-7"}},{"key": "service.version","value": {"stringValue": "1.2.3.4"}}]},"scopeSpans": [{"scope": {"name": "tracecore","version": "3.0.2"},"spans": [
  $ for offset in +00:00 -05:30 +14:00; do
  >   vltrace export --format otlp --utc-offset $offset host*.trc3 | grep -o 'RestoreBackup.*TimeUnixNano": "[0-9]*"'
  > done
  RestoreBackup","kind": 1,"startTimeUnixNano": "1500026400000002000","endTimeUnixNano": "1500026400100000000"
  RestoreBackup","kind": 1,"startTimeUnixNano": "1500046200000002000","endTimeUnixNano": "1500046200100000000"
  RestoreBackup","kind": 1,"startTimeUnixNano": "1499976000000002000","endTimeUnixNano": "1499976000100000000"
  $ echo '01/01/70 00:30:00.000 8 U x' | trace | vltrace export --format otlp --utc-offset +01:00 - | grep -o '"startTime[^,]*'
  "startTimeUnixNano": "0"
  $ for offset in 02:00 +2:00 +15:00 +02:60 +02.00 +0x:00 ''; do vltrace export --format otlp --utc-offset "$offset" spans; done
  vltrace: --utc-offset: "02:00" is no offset: write +02:00 (see vltrace export --help)
  vltrace: --utc-offset: "+2:00" is no offset: write +02:00 (see vltrace export --help)
  vltrace: --utc-offset: "+15:00" is no offset: write +02:00 (see vltrace export --help)
  vltrace: --utc-offset: "+02:60" is no offset: write +02:00 (see vltrace export --help)
  vltrace: --utc-offset: "+02.00" is no offset: write +02:00 (see vltrace export --help)
  vltrace: --utc-offset: "+0x:00" is no offset: write +02:00 (see vltrace export --help)
  vltrace: --utc-offset: "" is no offset: write +02:00 (see vltrace export --help)
  [2]

Several files are several resources; one without spans is none.

  $ trace >none.trc3 <<'.'
  > 8 <
  > .
  $ vltrace export --format otlp none.trc3 other/1.trc3 host*.trc3 | grep -c '"resource"'
  2
  $ vltrace export --format otlp none.trc3
  {"resourceSpans":[
  ]}
  $ vltrace export --format otlp host*.trc3 --thread 9 | tail -n +3 | cut -c 110-
  tartTimeUnixNano": "1500026400200000000","endTimeUnixNano": "1500026400200002000","attributes": [{"key": "thread.id","value": {"intValue": "9"}},{"key": "unfinished","value": {"stringValue": "true"}}],"events": [{"timeUnixNano": "1500026400200001000","name": "\"text\"","attributes": [{"key": "trace.kind","value": {"stringValue": "message"}}]}],"status": {}}
  
  
  $ vltrace export --format otlp host*.trc3 --errors --function Restore | grep -o '"name": "[a-z]*","kind\|"name": "[a-z]*","attr\|"code": .'
  "name": "events","kind
  "name": "failed","attr
  "code": 2
  "name": "events","kind
  "name": "unknown","attr
  "code": 2
  $ vltrace export --format otlp host*.trc3 --notes | grep -c '"code"'
  0
  [1]

More than a thousand events go into children.

  $ (echo '07/14/17 10:00:00.000 8 > f'
  >  echo '8 E 5 failed'
  >  yes '8 U x' | head -n 2100
  >  echo '8 <') | trace | vltrace export --format otlp - >many
  $ sed 's/"events": .*"status"/... "status"/; s/[0-9a-f]\{16,\}/ID/g' many
  {"resourceSpans":[
  {"resource": {"attributes": [{"key": "service.name","value": {"stringValue": "VLOnlineIDs"}},{"key": "process.executable.name","value": {"stringValue": "standard input"}},{"key": "log.file.name","value": {"stringValue": "standard input"}}]},"scopeSpans": [{"scope": {"name": "tracecore"},"spans": [
  {"traceId": "ID","spanId": "ID","parentSpanId": "ID","name": "events","kind": 1,"startTimeUnixNano": "ID","endTimeUnixNano": "ID","attributes": [{"key": "thread.id","value": {"intValue": "8"}}],... "status": {"code": 2}},
  {"traceId": "ID","spanId": "ID","parentSpanId": "ID","name": "events","kind": 1,"startTimeUnixNano": "ID","endTimeUnixNano": "ID","attributes": [{"key": "thread.id","value": {"intValue": "8"}}],... "status": {}},
  {"traceId": "ID","spanId": "ID","name": "f","kind": 1,"startTimeUnixNano": "ID","endTimeUnixNano": "ID","attributes": [{"key": "thread.id","value": {"intValue": "8"}}],... "status": {"code": 2}}
  ]}]}
  ]}
  $ grep -o '"timeUnixNano"' many | wc -l
  2101
  $ tail -n +3 many | while read -r span; do echo "$span" | grep -o '"timeUnixNano"' | wc -l; done
  1000
  1000
  101
  0
  0
  $ (yes '8 > f' | head -n 3; yes '8 U x' | head -n 1000) | trace | vltrace export --format otlp - | grep -c '"name": "events"'
  1
