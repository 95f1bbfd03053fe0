The verdict of verify, and what it says of contents.

A warning alone fails with --strict; in JSON each finding has its grade and place.

  $ cp "$SAMPLES"/*.vlb .
  $ vlbackup verify first.vlb
  warning: templates[1]: "alien|C:\users\anna\AppData\Roaming\Veltrano\KRS\Cache\cached.vlm" goes into a folder of the system, of programs or of a user (byte 89, element 0/1)
  warning: quicklinks[1]: "ノート" opens a program: C:\windows\notepad.exe (byte 579, element 1/1)
  sound, with warnings
  $ vlbackup verify --strict first.vlb
  warning: templates[1]: "alien|C:\users\anna\AppData\Roaming\Veltrano\KRS\Cache\cached.vlm" goes into a folder of the system, of programs or of a user (byte 89, element 0/1)
  warning: quicklinks[1]: "ノート" opens a program: C:\windows\notepad.exe (byte 579, element 1/1)
  sound, with warnings
  [1]
  $ vlbackup verify --json --strict first.vlb
  {
    "schema": "vlbackup-verify-1",
    "findings": [
      {
        "grade": "warning",
        "offset": 89,
        "path": "0/1",
        "what": "\"alien|C:\\users\\anna\\AppData\\Roaming\\Veltrano\\KRS\\Cache\\cached.vlm\" goes into a folder of the system, of programs or of a user",
        "where": "templates[1]"
      },
      {
        "grade": "warning",
        "offset": 579,
        "path": "1/1",
        "what": "\"ノート\" opens a program: C:\\windows\\notepad.exe",
        "where": "quicklinks[1]"
      }
    ],
    "checksum": "absent",
    "verdict": "warning"
  }
  [1]
  $ env printf '\x30\x0D\x30\x00\x30\x00\x30\x00\x30\x05\x04\x03{}\x00' | vlbackup verify --strict --json -
  {
    "schema": "vlbackup-verify-1",
    "findings": [],
    "checksum": "absent",
    "verdict": "sound"
  }
  $ env printf '\x30\x04\x30\x00\x30\x00' | vlbackup verify --strict --json -
  {
    "schema": "vlbackup-verify-1",
    "findings": [
      {
        "grade": "note",
        "offset": 0,
        "path": "",
        "what": "2 elements: an early version; templates and quick links with narrow texts are restored",
        "where": "backup"
      }
    ],
    "checksum": "absent",
    "verdict": "sound"
  }
  $ vlbackup verify cut.vlb
  vlbackup: cut.vlb is no whole backup: cut at byte 400 of 942 (copy it again, or save what is intact by 'vlbackup recover')
  [1]
  $ vlbackup verify cut.vlb --json
  {
    "schema": "vlbackup-verify-1",
    "findings": [
      {
        "grade": "error",
        "offset": 400,
        "path": "",
        "what": "cut at byte 400 of 942",
        "where": "backup"
      }
    ],
    "checksum": "absent",
    "verdict": "error"
  }
  [1]
  $ echo text | vlbackup verify - --json
  {
    "schema": "vlbackup-verify-1",
    "findings": [
      {
        "grade": "error",
        "offset": 0,
        "path": "",
        "what": "not a sequence of elements",
        "where": "backup"
      }
    ],
    "checksum": "absent",
    "verdict": "error"
  }
  [1]

What has no bytes empties the file, except the data files, which are stored so when they are missing.

  $ vlbackup from-json - - <<'END' | vlbackup verify --strict -
  > {"schema": "vlbackup-backup-1", "quicklinks": [], "templates": [{"name": "a.vlm", "content": ""},
  >  {"name": "updata.vls", "content": ""}, {"name": "updata_temp.vls", "content": ""}, {"name": "b.vls", "content": ""}]}
  > END
  note: backup: 2 elements: an early version; templates and quick links with narrow texts are restored (byte 0)
  warning: templates[0]: "a.vlm" is empty, and a restore empties the file (byte 4, element 0/0)
  warning: templates[3]: "b.vls" is empty, and a restore empties the file (byte 88, element 0/3)
  sound, with warnings
  [1]
