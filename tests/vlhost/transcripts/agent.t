The agent takes over secrets and messages; the console notes down each start.

  $ . "$TESTS/support/product.sh"
  $ shown() { sed -E 's/"(time|process|client|window|message)":("[^"]*"|[0-9]+)/"\1":N/g'; }
  $ start() { vlagent --journal journal.txt "$@" >agent 2>&1 & until grep -qs . agent; do sleep 0.1; done; cat agent; }
  $ vlagent --quit
  vlagent: no agent is running\r (esc)
  [1]
  $ start
  vlagent: ready\r (esc)
  $ vlagent --journal other.txt
  vlagent: an agent is running already; end it with vlagent --quit\r (esc)
  [1]
  $ printf 'pässwörd\r\n' | vlhost restore first.vlb --force --entry plugin-data --secret-from 0 | tail -3
  vlhost: not everything came back as the backup has it ('vlhost restore --undo' puts the old state back)
  safety copy: 1 in C:\\users\\*\\AppData\\Local\\Veltrano\\KRS\\SafetyCopies (glob)
  difference: C:\Shared Logons\équipe.vlm: was not written: its folder is missing, and a restore makes none
  difference: C:\users\anna\AppData\Roaming\Veltrano\KRS\Cache\cached.vlm: was not written: its folder is missing, and a restore makes none
  $ vlhost secret read
  pässwörd
  $ vlhost restore first.vlb --force --entry 2 --flags 9 --quiet
  vlhost: not everything came back as the backup has it ('vlhost restore --undo' puts the old state back)
  [1]
  $ vlhost restore --undo --quiet
  $ vlhost call set-plugin-data first.vlb --quiet >log
  $ vlagent --quit
  $ wait; shown <journal.txt
  {"time":N,"event":"started","process":N,"window":N}
  {"time":N,"event":"exchange","command":2,"client":N,"window":N,"message":N,"name":"KRS Protected Storage","bytes":10,"sha256":"46970bef70aced8123f0d5d094717e2a5cd412041e03b26376049fe65b2834a4","outcome":"stored","status":0}
  {"time":N,"event":"message","name":"WM_VL_AGENT_PMRESTORE2DONE","wParam":0,"lParam":0}
  {"time":N,"event":"message","name":"WM_VL_AGENT_PMRESTOREDONE","wParam":0,"lParam":9}
  {"time":N,"event":"message","name":"WM_VL_AGENT_PMRESTOREDONE","wParam":0,"lParam":0}
  {"time":N,"event":"exchange","command":2,"client":N,"window":N,"message":N,"name":"KRS Protected Storage","bytes":0,"sha256":"e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855","outcome":"nothing to store"}
  {"time":N,"event":"message","name":"WM_VL_AGENT_PMRESTORE2DONE","wParam":0,"lParam":0}
  {"time":N,"event":"ended"}
  $ start --once
  vlagent: ready\r (esc)
  $ printf 'second' | vlhost restore first.vlb --force --quiet --entry plugin-data --secret-from 0
  vlhost: not everything came back as the backup has it ('vlhost restore --undo' puts the old state back)
  [1]
  $ wait; tail -4 journal.txt | shown
  {"time":N,"event":"started","process":N,"window":N}
  {"time":N,"event":"exchange","command":2,"client":N,"window":N,"message":N,"name":"KRS Protected Storage","bytes":6,"sha256":"16367aacb67a4a017c8da8ab95682ccb390863780f7114dda0a0e0c55644c7c4","outcome":"stored","status":0}
  {"time":N,"event":"message","name":"WM_VL_AGENT_PMRESTORE2DONE","wParam":0,"lParam":0}
  {"time":N,"event":"ended"}
  $ vlhost secret read
  second
  $ vlagent --unknown
  vlagent: '--unknown' is unknown or lacks its value; see --help\r (esc)
  [2]
  $ vlagent --journal
  vlagent: '--journal' is unknown or lacks its value; see --help\r (esc)
  [2]
  $ vlagent --journal 'C:\none\journal.txt'
  vlagent: the journal 'C:\\none\\journal.txt' can't be written (error 3)\r (esc)
  [1]
  $ vlagent --ready-event none
  vlagent: the event 'none' can't be opened (error 2); the caller makes it\r (esc)
  [1]

The console.

  $ unset VLUSERCONSOLE_NO_WINDOW
  $ VLUserConsole --no-window --log 'notes\new\console.txt' '{42}:3:-1'
  $ VLUserConsole --no-window --log 'notes\new\console.txt'
  $ VLUserConsole --no-window --log 'notes\new\console.txt' 'a:b:c:d'
  $ shown <notes/new/console.txt
  {"time":N,"process":N,"arguments":["--no-window","--log","notes\\new\\console.txt","{42}:3:-1"],"plugin":"{42}","page":"3","item":"-1","window":false}
  {"time":N,"process":N,"arguments":["--no-window","--log","notes\\new\\console.txt"],"plugin":"","page":"","item":"","window":false}
  {"time":N,"process":N,"arguments":["--no-window","--log","notes\\new\\console.txt","a:b:c:d"],"plugin":"a:b","page":"c","item":"d","window":false}
  $ export VLUSERCONSOLE_NO_WINDOW=1
  $ VLUserConsole --log
  VLUserConsole: --log needs the name of a file after it
  [2]
  $ VLUserConsole --loud
  VLUserConsole: unknown option --loud: there are --log FILE and --no-window
  [2]
  $ VLUserConsole a b
  VLUserConsole: more than one target: b
  [2]
  $ echo file >file
  $ VLUserConsole --log 'file\x.txt'
  VLUserConsole: The log can't be written (error 3): give another file with --log.
  [1]
  $ VLUSERCONSOLE_LOG='C:\work\own.txt' VLUserConsole 'Köln:1:0' && shown <own.txt
  {"time":N,"process":N,"arguments":["Köln:1:0"],"plugin":"Köln","page":"1","item":"0","window":false}
  $ vlhost console --quiet
  $ log="$profile/AppData/Local/Veltrano/KRS/VLUserConsole.log"
  $ until [ -s "$log" ]; do sleep 0.1; done; shown <"$log"
  {"time":N,"process":N,"arguments":["{42F9948B-B690-4325-A073-63A8BF31FF32}:0:0"],"plugin":"{42F9948B-B690-4325-A073-63A8BF31FF32}","page":"0","item":"0","window":false}

The journal keeps earlier runs.

  $ grep -c '"started"' journal.txt
  2
