What verify says of the names of stored files and of where they go.

  $ names() {
  >   list=
  >   for name; do list="$list${list:+, }{\"name\": \"$name\", \"content\": \"eA==\"}"; done
  >   printf '%s\n' "{\"schema\": \"vlbackup-backup-1\", \"templates\": [$list], \"quicklinks\": []}" |
  >     vlbackup from-json - - | vlbackup verify - | grep -v ^note | sed 's/ (byte.*//'
  > }

A file of the personal folder has a plain name that any file system takes, and is a template or a data file.

  $ names bank.vlm Größe.VLM 'a b.c.vlm' a.vls .vlm 日本語.vlm com.vlm com10.vlm lpt.vlm nulls.vlm conin.vlm com5x.vlm
  sound
  $ names CON.vlm prn.vlm Aux.b.vlm 'nul .vlm' conin\$.vlm CONOUT\$.vlm com0.vlm lpt9.vlm com¹.vlm lpt².vlm COM³.vlm
  error: templates[0]: "CON.vlm" names a device
  error: templates[1]: "prn.vlm" names a device
  error: templates[2]: "Aux.b.vlm" names a device
  error: templates[3]: "nul .vlm" names a device
  error: templates[4]: "conin$.vlm" names a device
  error: templates[5]: "CONOUT$.vlm" names a device
  error: templates[6]: "com0.vlm" names a device
  error: templates[7]: "lpt9.vlm" names a device
  error: templates[8]: "com¹.vlm" names a device
  error: templates[9]: "lpt².vlm" names a device
  error: templates[10]: "COM³.vlm" names a device
  not sound
  $ names 'C:\\x\\y.vlm' 'x/y.vlm' '..\\y.vlm' 'x:y.vlm'
  error: templates[0]: "C:\x\y.vlm" holds a path, which a restore drops
  error: templates[1]: "x/y.vlm" holds a path, which a restore drops
  error: templates[1]: "x/y.vlm" is the same file as templates[0], and a restore keeps one
  error: templates[2]: "..\y.vlm" holds a path, which a restore drops
  error: templates[2]: "..\y.vlm" is the same file as templates[0], and a restore keeps one
  error: templates[3]: "x:y.vlm" holds a path, which a restore drops
  error: templates[3]: "x:y.vlm" is the same file as templates[0], and a restore keeps one
  not sound
  $ names 'a<.vlm' 'a>.vlm' 'a\".vlm' 'a|b.vlm' 'a?.vlm' 'a*.vlm' 'a\u0001.vlm' 'ALIEN|C.vlm' 'a\tb.vlm'
  error: templates[0]: "a<.vlm" has a character that no file name can have
  error: templates[1]: "a>.vlm" has a character that no file name can have
  error: templates[2]: "a".vlm" has a character that no file name can have
  error: templates[3]: "a|b.vlm" has a character that no file name can have
  error: templates[4]: "a?.vlm" has a character that no file name can have
  error: templates[5]: "a*.vlm" has a character that no file name can have
  warning: templates[6]: "a\x01.vlm" hides control characters or direction marks in the name
  error: templates[6]: "a\x01.vlm" has a character that no file name can have
  error: templates[7]: "ALIEN|C.vlm" has a character that no file name can have
  warning: templates[8]: "a\tb.vlm" hides control characters or direction marks in the name
  error: templates[8]: "a\tb.vlm" has a character that no file name can have
  not sound
  $ names 'a.vlm ' 'b.vlm.' 'c.vlm. .' ' d.vlm' 'e .vlm'
  error: templates[0]: "a.vlm " ends in a blank or a dot, which the file system drops
  error: templates[1]: "b.vlm." ends in a blank or a dot, which the file system drops
  error: templates[2]: "c.vlm. ." ends in a blank or a dot, which the file system drops
  not sound
  $ names a.exe a vlm a.vlmx a.VLM~ a.vlm.txt b.vls.bak
  error: templates[0]: "a.exe" is no template
  error: templates[1]: "a" is no template
  error: templates[2]: "vlm" is no template
  warning: templates[3]: "a.vlmx" is no template by its name
  warning: templates[4]: "a.VLM~" is no template by its name
  error: templates[5]: "a.vlm.txt" is no template
  error: templates[6]: "b.vls.bak" is no template
  not sound
  $ names '\u202emlv.vlm' 'a\u2028.vlm' 'a\u0085.vlm' 'a\u00a0.vlm'
  warning: templates[0]: "\u{202E}mlv.vlm" hides control characters or direction marks in the name
  warning: templates[1]: "a\u{2028}.vlm" hides control characters or direction marks in the name
  warning: templates[2]: "a\u{85}.vlm" hides control characters or direction marks in the name
  sound, with warnings
  $ long=$(printf '%0251d' 0)
  $ names ${long}.vlm ${long}1.vlm | sed "s/$long/<251>/"
  error: templates[1]: "<251>1.vlm" is longer than a file name can be
  not sound

Names in another case are one file, as Windows has it: Latin, Greek and Cyrillic letters.

  $ names a.vlm b.vlm A.VLM B.vlm. a.Vlm
  error: templates[2]: "A.VLM" is the same file as templates[0], and a restore keeps one
  error: templates[3]: "B.vlm." ends in a blank or a dot, which the file system drops
  error: templates[3]: "B.vlm." is the same file as templates[1], and a restore keeps one
  error: templates[4]: "a.Vlm" is the same file as templates[0], and a restore keeps one
  not sound
  $ names Äý.vlm äÝ.vlm Āĺž.vlm āĹŽ.vlm Ω.vlm ω.vlm Жѐ.vlm жЀ.vlm Ａ.vlm ａ.vlm
  error: templates[1]: "äÝ.vlm" is the same file as templates[0], and a restore keeps one
  error: templates[3]: "āĹŽ.vlm" is the same file as templates[2], and a restore keeps one
  error: templates[5]: "ω.vlm" is the same file as templates[4], and a restore keeps one
  error: templates[7]: "жЀ.vlm" is the same file as templates[6], and a restore keeps one
  error: templates[9]: "ａ.vlm" is the same file as templates[8], and a restore keeps one
  not sound
  $ names × ÷ ß ẞ ı I İ i ÿ Ÿ ŉ Ŋ | grep same
  error: templates[7]: "i" is the same file as templates[5], and a restore keeps one
  error: templates[9]: "\xc5\xb8" is the same file as templates[8], and a restore keeps one (esc)

A marked path is full, and does not climb; each of its parts is one that a file system takes.

  $ names 'alien|C:\\a\\b.vlm' 'alien|c:/x//./b.vlm' 'alien|Z:\\userspace\\b.vlm' 'alien|C:\\b.vlm' 'alien|C:\\window\\b.vlm'
  sound
  $ names 'alien|a\\b.vlm' 'alien|C:b.vlm' 'alien|\\a\\b.vlm' 'alien|' 'alien|1:\\b.vlm' 'alien|\\\\' 'alien|C:'
  error: templates[0]: "alien|a\b.vlm" is no full path on a drive or a network share
  error: templates[1]: "alien|C:b.vlm" is no full path on a drive or a network share
  error: templates[2]: "alien|\a\b.vlm" is no full path on a drive or a network share
  error: templates[3]: "alien|" is no full path on a drive or a network share
  error: templates[3]: "alien|" is no template
  error: templates[4]: "alien|1:\b.vlm" is no full path on a drive or a network share
  error: templates[5]: "alien|\\" is no full path on a drive or a network share
  error: templates[5]: "alien|\\" is no template
  error: templates[6]: "alien|C:" is no full path on a drive or a network share
  error: templates[6]: "alien|C:" is no template
  not sound
  $ names 'alien|C:\\a\\..\\b.vlm' 'alien|C:\\..' 'alien|C:\\a.exe:b.vlm' 'alien|C:\\nul\\b.vlm' 'alien|C:\\a \\b.vlm'
  error: templates[0]: "alien|C:\a\..\b.vlm" climbs out of a folder
  error: templates[1]: "alien|C:\.." climbs out of a folder
  error: templates[1]: "alien|C:\.." is no template
  error: templates[2]: "alien|C:\a.exe:b.vlm" names a stream of a file
  error: templates[3]: "alien|C:\nul\b.vlm" names a device
  error: templates[4]: "alien|C:\a \b.vlm" ends in a blank or a dot, which the file system drops
  not sound
  $ names 'alien|C:\\a.vls' 'alien|C:\\a.vlmx' 'alien|C:\\a\\' 'alien|C:\\a.exe' 'alien|C:\\a?\\c.vlm' 'alien|C:\\a\\b.vlm.'
  error: templates[0]: "alien|C:\a.vls" is no template
  warning: templates[1]: "alien|C:\a.vlmx" is no template by its name
  error: templates[2]: "alien|C:\a\" is no template
  error: templates[3]: "alien|C:\a.exe" is no template
  error: templates[4]: "alien|C:\a?\c.vlm" has a character that no file name can have
  error: templates[5]: "alien|C:\a\b.vlm." ends in a blank or a dot, which the file system drops
  not sound

Paths to the system, to programs, to users and to the network are worth a look, in any spelling.

  $ names 'alien|C:\\Windows\\System32\\b.vlm' 'alien|d:/PROGRAM FILES (x86)/b.vlm' 'alien|C:\\ProgramData\\b.vlm' \
  >   'alien|C:\\Users\\x\\b.vlm' 'alien|C:\\Documents and Settings\\b.vlm' 'alien|C:\\PROGRA~1\\b.vlm' \
  >   'alien|C:\\DOCUME~1\\b.vlm' 'alien|C:\\System Volume Information\\b.vlm' 'alien|C:\\SYSTEM~1\\b.vlm' \
  >   'alien|C:\\$Recycle.Bin\\b.vlm' 'alien|C:\\boot\\b.vlm' 'alien|C:\\WinNT\\b.vlm' 'alien|C:\\Windows.old\\b.vlm'
  warning: templates[0]: "alien|C:\Windows\System32\b.vlm" goes into a folder of the system, of programs or of a user
  warning: templates[1]: "alien|d:/PROGRAM FILES (x86)/b.vlm" goes into a folder of the system, of programs or of a user
  warning: templates[2]: "alien|C:\ProgramData\b.vlm" goes into a folder of the system, of programs or of a user
  warning: templates[3]: "alien|C:\Users\x\b.vlm" goes into a folder of the system, of programs or of a user
  warning: templates[4]: "alien|C:\Documents and Settings\b.vlm" goes into a folder of the system, of programs or of a user
  warning: templates[5]: "alien|C:\PROGRA~1\b.vlm" goes into a folder of the system, of programs or of a user
  warning: templates[6]: "alien|C:\DOCUME~1\b.vlm" goes into a folder of the system, of programs or of a user
  warning: templates[7]: "alien|C:\System Volume Information\b.vlm" goes into a folder of the system, of programs or of a user
  warning: templates[8]: "alien|C:\SYSTEM~1\b.vlm" goes into a folder of the system, of programs or of a user
  warning: templates[9]: "alien|C:\$Recycle.Bin\b.vlm" goes into a folder of the system, of programs or of a user
  warning: templates[10]: "alien|C:\boot\b.vlm" goes into a folder of the system, of programs or of a user
  warning: templates[11]: "alien|C:\WinNT\b.vlm" goes into a folder of the system, of programs or of a user
  warning: templates[12]: "alien|C:\Windows.old\b.vlm" goes into a folder of the system, of programs or of a user
  sound, with warnings
  $ names 'alien|C:\\\\.\\Users\\b.vlm' 'alien|C:\\x\\..\\Users\\b.vlm' 'alien|C:\\Users. \\b.vlm'
  warning: templates[0]: "alien|C:\\.\Users\b.vlm" goes into a folder of the system, of programs or of a user
  warning: templates[1]: "alien|C:\x\..\Users\b.vlm" goes into a folder of the system, of programs or of a user
  error: templates[1]: "alien|C:\x\..\Users\b.vlm" climbs out of a folder
  error: templates[1]: "alien|C:\x\..\Users\b.vlm" is the same file as templates[0], and a restore keeps one
  warning: templates[2]: "alien|C:\Users. \b.vlm" goes into a folder of the system, of programs or of a user
  error: templates[2]: "alien|C:\Users. \b.vlm" ends in a blank or a dot, which the file system drops
  error: templates[2]: "alien|C:\Users. \b.vlm" is the same file as templates[0], and a restore keeps one
  not sound
  $ names 'alien|\\\\?\\C:\\Users\\x\\b.vlm' 'alien|\\\\.\\C:\\a\\b.vlm' 'alien|\\??\\C:\\a\\b.vlm'
  warning: templates[0]: "alien|\\?\C:\Users\x\b.vlm" has a prefix that lets the system take the path as it stands
  warning: templates[0]: "alien|\\?\C:\Users\x\b.vlm" goes into a folder of the system, of programs or of a user
  warning: templates[1]: "alien|\\.\C:\a\b.vlm" has a prefix that lets the system take the path as it stands
  warning: templates[2]: "alien|\??\C:\a\b.vlm" has a prefix that lets the system take the path as it stands
  error: templates[2]: "alien|\??\C:\a\b.vlm" is the same file as templates[1], and a restore keeps one
  not sound
  $ names 'alien|\\\\server\\share\\b.vlm' 'alien|\\\\?\\UNC\\server\\share\\b.vlm' 'alien|//server/share/b.vlm'
  warning: templates[0]: "alien|\\server\share\b.vlm" goes to a network share
  warning: templates[1]: "alien|\\?\UNC\server\share\b.vlm" has a prefix that lets the system take the path as it stands
  warning: templates[1]: "alien|\\?\UNC\server\share\b.vlm" goes to a network share
  error: templates[1]: "alien|\\?\UNC\server\share\b.vlm" is the same file as templates[0], and a restore keeps one
  warning: templates[2]: "alien|//server/share/b.vlm" goes to a network share
  error: templates[2]: "alien|//server/share/b.vlm" is the same file as templates[0], and a restore keeps one
  not sound
  $ names "alien|C:\\\\$long\\\\1.vlm" "alien|D:\\\\$long\\\\.vlm" | sed "s/$long/<251>/"
  warning: templates[0]: "alien|C:\<251>\1.vlm" is longer than most hosts can write
  sound, with warnings
  $ names "alien|C:\\\\$(printf 'Ж%.0s' $(seq 200))\\\\a.vlm"
  sound

Two spellings of one path are one file, and a path is never a name.

  $ names 'alien|C:\\a\\b.vlm' 'alien|c:/A/.//B.vlm' 'alien|\\\\?\\C:\\a\\b.vlm' 'alien|C:\\x\\..\\a\\b.vlm.' b.vlm
  error: templates[1]: "alien|c:/A/.//B.vlm" is the same file as templates[0], and a restore keeps one
  warning: templates[2]: "alien|\\?\C:\a\b.vlm" has a prefix that lets the system take the path as it stands
  error: templates[2]: "alien|\\?\C:\a\b.vlm" is the same file as templates[0], and a restore keeps one
  error: templates[3]: "alien|C:\x\..\a\b.vlm." climbs out of a folder
  error: templates[3]: "alien|C:\x\..\a\b.vlm." ends in a blank or a dot, which the file system drops
  error: templates[3]: "alien|C:\x\..\a\b.vlm." is the same file as templates[0], and a restore keeps one
  not sound
  $ names 'alien|\\\\s\\x\\b.vlm' 'alien|//S/x/b.vlm' 'alien|\\\\?\\UNC\\s\\x\\b.vlm' 'alien|C:\\s\\x\\b.vlm'
  warning: templates[0]: "alien|\\s\x\b.vlm" goes to a network share
  warning: templates[1]: "alien|//S/x/b.vlm" goes to a network share
  error: templates[1]: "alien|//S/x/b.vlm" is the same file as templates[0], and a restore keeps one
  warning: templates[2]: "alien|\\?\UNC\s\x\b.vlm" has a prefix that lets the system take the path as it stands
  warning: templates[2]: "alien|\\?\UNC\s\x\b.vlm" goes to a network share
  error: templates[2]: "alien|\\?\UNC\s\x\b.vlm" is the same file as templates[0], and a restore keeps one
  not sound
