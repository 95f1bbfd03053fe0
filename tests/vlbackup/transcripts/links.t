What verify says of quick links, categories, contents and the settings.

  $ sound='{"document": "{}"}'
  $ backup() {
  >   printf '{"schema": "vlbackup-backup-1", "templates": [{"name": "a.vlm", "content": "QUI="}], "quicklinks": [%s],
  >     "categories": [%s], "settings": %s}' "$1" "$2" "${3:-$sound}" | vlbackup from-json - -
  > }
  $ link() {
  >   printf '{"name": "%s", "target": "%s", "manifest": "%s", "profile": %d, "manifestid": "%s", "wocred": false}' \
  >     "$1" "$2" "$3" $4 "$5"
  > }

Of two links of one template and profile a restore keeps one. The template is one of the personal folder, in any case.

  $ backup "$(link l t a.vlm 7 id), $(link m t A.VLM 8 id), $(link l t a.vlm 9 id)" | vlbackup verify -
  sound
  $ backup "$(link l t a.vlm 7 id), $(link m t b.vlm 7 id), $(link n t a.vlm 7 other)" | vlbackup verify -
  warning: quicklinks[1]: "m" is lost at the next change of the quick links, as b.vlm is no template of the personal folder (byte 70, element 1/1)
  error: quicklinks[2]: "n" has the template and profile of quicklinks[0], and a restore keeps one (byte 112, element 1/2)
  not sound
  [1]
  $ backup "$(link l t '..\\a.vlm' 1 id), $(link m t 'x:a.vlm' 1 id), $(link n t '' 1 id), $(link o t '' 1 id)" |
  >   vlbackup verify -
  error: quicklinks[0]: "l" names a template with a path: ..\a.vlm (byte 28, element 1/0)
  error: quicklinks[1]: "m" names a template with a path: x:a.vlm (byte 76, element 1/1)
  error: quicklinks[1]: "m" has the template and profile of quicklinks[0], and a restore keeps one (byte 76, element 1/1)
  error: quicklinks[2]: "n" names no template; a restore drops it (byte 122, element 1/2)
  error: quicklinks[3]: "o" names no template; a restore drops it (byte 154, element 1/3)
  not sound
  [1]
  $ backup "$(link '' t a.vlm 1 id), $(link n '' a.vlm 2 id), $(link n t a.vlm 3 '')" | vlbackup verify -
  error: quicklinks[0]: "" has no name or no target; a restore drops it (byte 27, element 1/0)
  error: quicklinks[1]: "n" has no name or no target; a restore drops it (byte 67, element 1/1)
  not sound
  [1]
  $ backup "$(link 'l\r\nUrl=x' 't\n' a.vlm 1 '\r'), $(link n t 'a.vlm\n' 2 id)" | vlbackup verify -
  error: quicklinks[0]: "l\r\nUrl=x" has a line end in the name, which its file can't hold (byte 27, element 1/0)
  error: quicklinks[0]: "l\r\nUrl=x" has a line end in the target, which its file can't hold (byte 27, element 1/0)
  error: quicklinks[0]: "l\r\nUrl=x" has a line end in the id, which its file can't hold (byte 27, element 1/0)
  error: quicklinks[1]: "n" has a line end in the manifest, which its file can't hold (byte 83, element 1/1)
  warning: quicklinks[1]: "n" is lost at the next change of the quick links, as a.vlm\n is no template of the personal folder (byte 83, element 1/1)
  not sound
  [1]
  $ backup "$(link 'l\u202e' 't\u0007' 'a.vlm\u2066' 1 '\u200f')" | vlbackup verify -
  warning: quicklinks[0]: "l\u{202E}" hides control characters or direction marks in the name (byte 26, element 1/0)
  warning: quicklinks[0]: "l\u{202E}" hides control characters or direction marks in the target (byte 26, element 1/0)
  warning: quicklinks[0]: "l\u{202E}" hides control characters or direction marks in the manifest (byte 26, element 1/0)
  warning: quicklinks[0]: "l\u{202E}" hides control characters or direction marks in the id (byte 26, element 1/0)
  warning: quicklinks[0]: "l\u{202E}" is lost at the next change of the quick links, as a.vlm\u{2066} is no template of the personal folder (byte 26, element 1/0)
  sound, with warnings

A target of the web is fine; one that opens something else is worth a look.

  $ targets() {
  >   list=; number=0
  >   for target; do number=$((number + 1)); list="$list${list:+, }$(link l "$target" a.vlm $number id)"; done
  >   backup "$list" | vlbackup verify - | sed 's/ (byte.*//'
  > }
  $ targets HTTPS://x.example:80/javascript: http://x ftp://x x.example:8080/a localhost:8080 x.com x.example/a.txt \
  >   'www.x.example' 'h\tttp://x' x.com:80 example:80/a.com
  warning: quicklinks[8]: "l" hides control characters or direction marks in the target
  warning: quicklinks[10]: "l" is an address that is not one of the web: example:80/a.com
  sound, with warnings
  $ targets javascript:x ' java\tscript:1/alert(1)' data:text/html,x file:///c:/x mailto:a@b vbscript:x ms-settings:x 'a+b.c-1:x'
  warning: quicklinks[0]: "l" is an address that is not one of the web: javascript:x
  warning: quicklinks[1]: "l" hides control characters or direction marks in the target
  warning: quicklinks[1]: "l" is an address that is not one of the web:  java\tscript:1/alert(1)
  warning: quicklinks[2]: "l" is an address that is not one of the web: data:text/html,x
  warning: quicklinks[3]: "l" is an address that is not one of the web: file:///c:/x
  warning: quicklinks[4]: "l" is an address that is not one of the web: mailto:a@b
  warning: quicklinks[5]: "l" is an address that is not one of the web: vbscript:x
  warning: quicklinks[6]: "l" is an address that is not one of the web: ms-settings:x
  warning: quicklinks[7]: "l" is an address that is not one of the web: a+b.c-1:x
  sound, with warnings
  $ targets 'c:\\windows\\NOTEPAD.exe' x.EXE 'iexplore.exe -x' 'c:\\a.bat' '\\\\server\\x.txt' 'd:/x.txt' \
  >   'c:x.LNK' '\\\\s\\x.ps1' 'a/b.com' 'x.hta' 'x.js' 'x.reg' 'x.exe?y' 'http://x/a.exe' 'http://x/a.vbs'
  warning: quicklinks[0]: "l" opens a program: c:\windows\NOTEPAD.exe
  warning: quicklinks[1]: "l" opens a program: x.EXE
  warning: quicklinks[2]: "l" opens a program: iexplore.exe -x
  warning: quicklinks[3]: "l" opens a program: c:\a.bat
  warning: quicklinks[4]: "l" opens a file: \\server\x.txt
  warning: quicklinks[5]: "l" opens a file: d:/x.txt
  warning: quicklinks[6]: "l" opens a program: c:x.LNK
  warning: quicklinks[7]: "l" opens a program: \\s\x.ps1
  warning: quicklinks[8]: "l" opens a program: a/b.com
  warning: quicklinks[9]: "l" opens a program: x.hta
  warning: quicklinks[10]: "l" opens a program: x.js
  warning: quicklinks[11]: "l" opens a program: x.reg
  warning: quicklinks[13]: "l" opens a program: http://x/a.exe
  sound, with warnings

Categories with names in another case are one.

  $ category() { printf '{"name": "%s", "text": "%s"}' "$1" "$2"; }
  $ backup '' "$(category Ж 1), $(category ж 2), $(category z 1), $(category '\u200e' 1), $(category '' '')" | vlbackup verify -
  error: categories[1]: "ж" is the same category as categories[0], and a restore keeps one (byte 42, element 2/1)
  warning: categories[3]: "\u{200E}" hides control characters or direction marks in the name (byte 70, element 2/3)
  not sound
  [1]

The settings document is JSON, as leniently read as a restore does, and has texts where a restore wants some.

  $ document() { backup '' '' "{\"document\": \"$1\"}" | vlbackup verify -; }
  $ document '{'
  error: settings: the document isn't JSON; a restore leaves the settings as they are (byte 28, element 3)
  not sound
  [1]
  $ document ''
  error: settings: an empty document; a restore leaves the settings as they are (byte 28, element 3)
  not sound
  [1]
  $ document 'x'
  error: settings: the document isn't JSON; a restore leaves the settings as they are (byte 28, element 3)
  not sound
  [1]
  $ document '[1]'
  error: settings: a member that holds others is no object; a restore fails there, with the files replaced by then (byte 28, element 3)
  not sound
  [1]
  $ document 'null'
  sound
  $ document '{} // as a restore reads it'
  sound
  $ document '/* */ {\"settings\": {}} and more'
  sound
  $ document '{\"settings\": []}'
  sound
  $ document '{\"settings\": 1}'
  error: settings: a member that holds others is no object; a restore fails there, with the files replaced by then (byte 28, element 3)
  not sound
  [1]
  $ document '{\"settings\": {\"current\": \"\"}}'
  error: settings: a member that holds others is no object; a restore fails there, with the files replaced by then (byte 28, element 3)
  not sound
  [1]
  $ document '{\"settings\": {\"current\": [1]}}'
  error: settings: a member that holds others is no object; a restore fails there, with the files replaced by then (byte 28, element 3)
  not sound
  [1]
  $ current() { document "{\\\"settings\\\": {\\\"current\\\": {\\\"$1\\\": $2}}}"; }
  $ current open_guard_desk_qa 1
  error: settings: a member that must be a text is none; a restore fails there, with the files replaced by then (byte 28, element 3)
  not sound
  [1]
  $ current open_guard_desk_qa true
  sound
  $ current open_guard_desk_qa '{}'
  sound
  $ current path_dontpromptlist_filename '[1]'
  error: settings: a member that must be a text is none; a restore fails there, with the files replaced by then (byte 28, element 3)
  not sound
  [1]
  $ current useGrabbingCreds '\"x\"'
  sound
  $ current useGrabbingCreds 1
  sound
  $ current other 1
  sound
  $ backup '' '' '{"showPrompt": 1, "hotKey": "\u0007"}' | vlbackup verify -
  note: settings: 2 elements without a document, as in an earlier version (byte 28, element 3)
  sound
