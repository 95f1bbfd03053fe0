Records for other programs, one on each line: JSON Lines and comma-separated values.

  $ trace() { "$TESTS/vltrace/tracefile.py" "$@"; }
  $ trace >a~~1.4242.trc3 <<'.'
  > # trace3
  > # Machine name: "PC"	7
  > # .
  > 8 > early
  > 07/14/17 10:00:00.000 8 > Größe,"of" 日;
  > 8 E -2147024891 '`I04`'failed, "yes"
  > 10:00:00.120 8 <
  > 8 U me\xFFnded
  > 8 U sound
  > 8 U '`I0c`'lines\x0D\x0A\x1B\x7F\xE2\x80\xA8\C:
  > 8 E 0 note
  > ! FF FF
  > 8 <
  > 8 E 305419896 =1+1
  > 8 E no status
  > 8 D
  > 8 N 07-15-2017
  > .
  $ trace >other.trc3 <<'.'
  > 07/14/17 10:00:00.100 FFFFFFFF U other
  > .
  $ vltrace export a*.trc3
  vltrace: a~~1.4242.trc3 is damaged in 1 place, 2 bytes skipped (vltrace cat shows where)
  {"file": "a~~1.4242.trc3","lines": ["trace3","Machine name: \"PC\"\t7"],"type": "header"}
  {"depth": 1,"file": "a~~1.4242.trc3","function": "early","kind": "call","level": ">","offset": 33,"text": "early","thread": 8,"type": "record"}
  {"date": "2017-07-14","depth": 2,"file": "a~~1.4242.trc3","function": "Größe,\"of\" 日;","kind": "call","level": ">","offset": 79,"text": "Größe,\"of\" 日;","thread": 8,"time": "10:00:00.000","type": "record"}
  {"chain": ["early","Größe,\"of\" 日;"],"colour": "04","date": "2017-07-14","depth": 2,"file": "a~~1.4242.trc3","function": "Größe,\"of\" 日;","kind": "error","level": "E","offset": 103,"status": "0x80070005","statusName": "ERROR_ACCESS_DENIED","statusText": "access is denied","text": "failed, \"yes\"","thread": 8,"time": "10:00:00.000","type": "record"}
  {"date": "2017-07-14","depth": 1,"file": "a~~1.4242.trc3","function": "Größe,\"of\" 日;","kind": "call","level": "<","milliseconds": 120,"offset": 161,"text": "","thread": 8,"time": "10:00:00.120","type": "record"}
  {"date": "2017-07-14","depth": 1,"file": "a~~1.4242.trc3","function": "early","kind": "message","level": "U","mended": true,"offset": 168,"text": "me�nded","thread": 8,"time": "10:00:00.120","type": "record"}
  {"date": "2017-07-14","depth": 1,"file": "a~~1.4242.trc3","function": "early","kind": "message","level": "U","offset": 182,"text": "sound","thread": 8,"time": "10:00:00.120","type": "record"}
  {"colour": "0c","date": "2017-07-14","depth": 1,"file": "a~~1.4242.trc3","function": "early","kind": "message","level": "U","offset": 194,"text": "lines\r\n\u001b\u007f\u2028\\C:","thread": 8,"time": "10:00:00.120","type": "record"}
  {"date": "2017-07-14","depth": 1,"file": "a~~1.4242.trc3","function": "early","kind": "note","level": "E","offset": 223,"text": "note","thread": 8,"time": "10:00:00.120","type": "record"}
  {"bytes": 2,"file": "a~~1.4242.trc3","offset": 236,"reason": "no record can begin here","type": "damage"}
  {"date": "2017-07-14","depth": 0,"file": "a~~1.4242.trc3","kind": "call","level": "<","offset": 238,"text": "","thread": 8,"time": "10:00:00.120","type": "record"}
  {"date": "2017-07-14","depth": 0,"file": "a~~1.4242.trc3","kind": "error","level": "E","offset": 245,"status": "0x12345678","text": "=1+1","thread": 8,"time": "10:00:00.120","type": "record"}
  {"date": "2017-07-14","depth": 0,"file": "a~~1.4242.trc3","kind": "error","level": "E","offset": 266,"text": "no status","thread": 8,"time": "10:00:00.120","type": "record"}
  {"date": "2017-07-14","depth": 0,"file": "a~~1.4242.trc3","kind": "message","level": "D","offset": 282,"text": "","thread": 8,"time": "10:00:00.120","type": "record"}
  {"date": "2017-07-15","depth": 0,"file": "a~~1.4242.trc3","kind": "stamp","level": "N","offset": 289,"text": "07-15-2017","thread": 8,"time": "10:00:00.120","type": "record"}
  $ vltrace export --format csv a*.trc3 | tr -d '\r'
  vltrace: a~~1.4242.trc3 is damaged in 1 place, 2 bytes skipped (vltrace cat shows where)
  file,process,offset,date,time,thread,level,kind,depth,function,milliseconds,status,statusName,statusText,text
  a~~1.4242.trc3,4242,33,,,8,>,call,1,early,,,,,early
  a~~1.4242.trc3,4242,79,2017-07-14,10:00:00.000,8,>,call,2,"Größe,""of"" 日;",,,,,"Größe,""of"" 日;"
  a~~1.4242.trc3,4242,103,2017-07-14,10:00:00.000,8,E,error,2,"Größe,""of"" 日;",,0x80070005,ERROR_ACCESS_DENIED,access is denied,"failed, ""yes"""
  a~~1.4242.trc3,4242,161,2017-07-14,10:00:00.120,8,<,call,1,"Größe,""of"" 日;",120,,,,
  a~~1.4242.trc3,4242,168,2017-07-14,10:00:00.120,8,U,message,1,early,,,,,me�nded
  a~~1.4242.trc3,4242,182,2017-07-14,10:00:00.120,8,U,message,1,early,,,,,sound
  a~~1.4242.trc3,4242,194,2017-07-14,10:00:00.120,8,U,message,1,early,,,,,"lines
  \x1b\x7f\xe2\x80\xa8\\C:" (esc)
  a~~1.4242.trc3,4242,223,2017-07-14,10:00:00.120,8,E,note,1,early,,,,,note
  a~~1.4242.trc3,4242,236,2017-07-14,10:00:00.120,,,damage,,,,,,,2 bytes skipped at offset 236: no record can begin here
  a~~1.4242.trc3,4242,238,2017-07-14,10:00:00.120,8,<,call,0,,,,,,
  a~~1.4242.trc3,4242,245,2017-07-14,10:00:00.120,8,E,error,0,,,0x12345678,,,=1+1
  a~~1.4242.trc3,4242,266,2017-07-14,10:00:00.120,8,E,error,0,,,,,,no status
  a~~1.4242.trc3,4242,282,2017-07-14,10:00:00.120,8,D,message,0,,,,,,
  a~~1.4242.trc3,4242,289,2017-07-15,10:00:00.120,8,N,stamp,0,,,,,,07-15-2017
  $ vltrace export --format csv --quiet a*.trc3 | head -n 2 | od -c | grep '\\r'
  0000140   a   t   u   s   T   e   x   t   ,   t   e   x   t  \r  \n   a
  0000240   l   y  \r  \n

Several files.

  $ vltrace export --quiet . | grep header
  {"file": "./a~~1.4242.trc3","lines": ["trace3","Machine name: \"PC\"\t7"],"process": "4242","type": "header"}
  {"file": "./other.trc3","lines": ["trace3"],"process": "#2","type": "header"}
  $ vltrace export --quiet . | grep '"time": "10:00:00.1'
  {"date": "2017-07-14","depth": 0,"file": "./other.trc3","kind": "message","level": "U","offset": 45,"process": "#2","text": "other","thread": 4294967295,"time": "10:00:00.100","type": "record"}
  {"date": "2017-07-14","depth": 1,"file": "./a~~1.4242.trc3","function": "Größe,\"of\" 日;","kind": "call","level": "<","milliseconds": 120,"offset": 161,"process": "4242","text": "","thread": 8,"time": "10:00:00.120","type": "record"}
  {"date": "2017-07-14","depth": 1,"file": "./a~~1.4242.trc3","function": "early","kind": "message","level": "U","mended": true,"offset": 168,"process": "4242","text": "me�nded","thread": 8,"time": "10:00:00.120","type": "record"}
  {"date": "2017-07-14","depth": 1,"file": "./a~~1.4242.trc3","function": "early","kind": "message","level": "U","offset": 182,"process": "4242","text": "sound","thread": 8,"time": "10:00:00.120","type": "record"}
  {"colour": "0c","date": "2017-07-14","depth": 1,"file": "./a~~1.4242.trc3","function": "early","kind": "message","level": "U","offset": 194,"process": "4242","text": "lines\r\n\u001b\u007f\u2028\\C:","thread": 8,"time": "10:00:00.120","type": "record"}
  {"date": "2017-07-14","depth": 1,"file": "./a~~1.4242.trc3","function": "early","kind": "note","level": "E","offset": 223,"process": "4242","text": "note","thread": 8,"time": "10:00:00.120","type": "record"}
  {"date": "2017-07-14","depth": 0,"file": "./a~~1.4242.trc3","kind": "call","level": "<","offset": 238,"process": "4242","text": "","thread": 8,"time": "10:00:00.120","type": "record"}
  {"date": "2017-07-14","depth": 0,"file": "./a~~1.4242.trc3","kind": "error","level": "E","offset": 245,"process": "4242","status": "0x12345678","text": "=1+1","thread": 8,"time": "10:00:00.120","type": "record"}
  {"date": "2017-07-14","depth": 0,"file": "./a~~1.4242.trc3","kind": "error","level": "E","offset": 266,"process": "4242","text": "no status","thread": 8,"time": "10:00:00.120","type": "record"}
  {"date": "2017-07-14","depth": 0,"file": "./a~~1.4242.trc3","kind": "message","level": "D","offset": 282,"process": "4242","text": "","thread": 8,"time": "10:00:00.120","type": "record"}
  {"date": "2017-07-15","depth": 0,"file": "./a~~1.4242.trc3","kind": "stamp","level": "N","offset": 289,"process": "4242","text": "07-15-2017","thread": 8,"time": "10:00:00.120","type": "record"}
  $ vltrace export --format csv . --text other --quiet
  file,process,offset,date,time,thread,level,kind,depth,function,milliseconds,status,statusName,statusText,text\r (esc)
  ./other.trc3,,45,2017-07-14,10:00:00.100,4294967295,U,message,0,,,,,,other\r (esc)
  ./a~~1.4242.trc3,4242,236,2017-07-14,10:00:00.120,,,damage,,,,,,,2 bytes skipped at offset 236: no record can begin here\r (esc)
  $ vltrace export --quiet --format csv --errors . | grep -c 0x80070005
  1
  $ vltrace export --quiet --level tN . | cut -c 1-60
  {"file": "./a~~1.4242.trc3","lines": ["trace3","Machine name
  {"file": "./other.trc3","lines": ["trace3"],"process": "#2",
  {"date": "2017-07-14","depth": 1,"file": "./a~~1.4242.trc3",
  {"date": "2017-07-14","depth": 0,"file": "./other.trc3","kin
  {"bytes": 2,"file": "./a~~1.4242.trc3","offset": 236,"proces
  {"date": "2017-07-15","depth": 0,"file": "./a~~1.4242.trc3",
  $ vltrace export --quiet --notes --format jsonl a*.trc3 | grep note
  {"date": "2017-07-14","depth": 1,"file": "a~~1.4242.trc3","function": "early","kind": "note","level": "E","offset": 223,"text": "note","thread": 8,"time": "10:00:00.120","type": "record"}

An error has its chain, of the last hundred functions.

  $ (seq -f '8 > f%g' 120; echo '8 E 1 x'; echo '8 U y') | trace | vltrace export - --text x --text y | grep record |
  >   sed 's/"f22".*"f119"/.../'
  {"chain": ["f21",...,"f120"],"depth": 120,"file": "standard input","function": "f120","kind": "error","level": "E","offset": 1223,"status": "0x00000001","statusName": "S_FALSE","statusText": "done, with the answer no","text": "x","thread": 8,"type": "record"}
  {"depth": 120,"file": "standard input","function": "f120","kind": "message","level": "U","offset": 1233,"text": "y","thread": 8,"type": "record"}

Nothing at all.

  $ printf 'trace3\r\n.\r\n' | vltrace export -
  {"file": "standard input","lines": ["trace3"],"type": "header"}
  $ printf 'trace3\r\n.\r\n' | vltrace export --format csv -
  file,process,offset,date,time,thread,level,kind,depth,function,milliseconds,status,statusName,statusText,text\r (esc)
  $ vltrace export --format xml other.trc3
  vltrace: --format: "xml" is none of jsonl, csv, chrome, folded, otlp (see vltrace export --help)
  [2]
  $ vltrace export --json other.trc3
  {"error": "The following argument was not expected: --json","exitStatus": 2,"hint": "see vltrace export --help","schema": "error-1","tool": "vltrace"}
  [2]
