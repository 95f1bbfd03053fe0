The bytes of a backup, element by element.

  $ cp "$SAMPLES"/*.vlb .
  $ vlbackup hex first.vlb | head -n 24
      offset  tag    length  path          meaning
           0  30        938                backup
           4  30        442  0               templates
           8  30         79  0/0               stored file
          10  1e         68  0/0/0               name "alien|C:\Shared Logons\équipe.vlm"
          12          00 61 00 6c 00 69 00 65 00 6e 00 7c 00 43 00 3a  .a.l.i.e.n.|.C.:
          28          00 5c 00 53 00 68 00 61 00 72 00 65 00 64 00 20  .\.S.h.a.r.e.d. 
          44          00 4c 00 6f 00 67 00 6f 00 6e 00 73 00 5c 00 e9  .L.o.g.o.n.s.\..
          60          00 71 00 75 00 69 00 70 00 65 00 2e 00 76 00 6c  .q.u.i.p.e...v.l
          76          00 6d 00 00                                      .m..
          80  04          7  0/0/1               content
          82          73 68 61 72 65 64 0a                             shared.
          89  30        144  0/1               stored file
          92  1e        132  0/1/0               name
          95          00 61 00 6c 00 69 00 65 00 6e 00 7c 00 43 00 3a  .a.l.i.e.n.|.C.:
         111          00 5c 00 75 00 73 00 65 00 72 00 73 00 5c 00 61  .\.u.s.e.r.s.\.a
         127          00 6e 00 6e 00 61 00 5c 00 41 00 70 00 70 00 44  .n.n.a.\.A.p.p.D
         143          00 61 00 74 00 61 00 5c 00 52 00 6f 00 61 00 6d  .a.t.a.\.R.o.a.m
         159          00 69 00 6e 00 67 00 5c 00 56 00 65 00 6c 00 74  .i.n.g.\.V.e.l.t
         175          00 72 00 61 00 6e 00 6f 00 5c 00 4b 00 52 00 53  .r.a.n.o.\.K.R.S
         191          00 5c 00 43 00 61 00 63 00 68 00 65 00 5c 00 63  .\.C.a.c.h.e.\.c
         207          00 61 00 63 00 68 00 65 00 64 00 2e 00 76 00 6c  .a.c.h.e.d...v.l
         223          4 more bytes (--all shows all)
         227  04          7  0/1/1               content
  $ vlbackup hex first.vlb | tail -n 11
         761  30        178  3               settings
         764  04        175  3/0               document
         767          7b 22 73 65 74 74 69 6e 67 73 22 3a 7b 22 63 75  {"settings":{"cu
         783          72 72 65 6e 74 22 3a 7b 22 6f 70 65 6e 5f 67 75  rrent":{"open_gu
         799          61 72 64 5f 64 65 73 6b 5f 71 61 22 3a 22 43 74  ard_desk_qa":"Ct
         815          72 6c 2b 41 6c 74 2b 37 31 22 2c 22 70 61 74 68  rl+Alt+71","path
         831          5f 64 6f 6e 74 70 72 6f 6d 70 74 6c 69 73 74 5f  _dontpromptlist_
         847          66 69 6c 65 6e 61 6d 65 22 3a 22 68 74 74 70 73  filename":"https
         863          3a 2f 2f 6e 65 76 65 72 2e 65 78 61 6d 70 6c 65  ://never.example
         879          2f 5c 72 5c 6e 22 2c 22 73 68 6f 77 5f 74 72 61  /\r\n","show_tra
         895          47 more bytes (--all shows all)
  $ vlbackup hex first.vlb --all | tail -n 4
         879          2f 5c 72 5c 6e 22 2c 22 73 68 6f 77 5f 74 72 61  /\r\n","show_tra
         895          69 6e 69 6e 67 5f 70 72 6f 6d 70 74 22 3a 66 61  ining_prompt":fa
         911          6c 73 65 2c 22 75 73 65 47 72 61 62 62 69 6e 67  lse,"useGrabbing
         927          43 72 65 64 73 22 3a 74 72 75 65 7d 7d 7d 00     Creds":true}}}.
  $ vlbackup hex first.vlb --json | head -n 40 | tail -n 29
      },
      {
        "header": 4,
        "length": 442,
        "meaning": "templates",
        "offset": 4,
        "path": "0",
        "tag": 48,
        "whole": true
      },
      {
        "header": 2,
        "length": 79,
        "meaning": "stored file",
        "offset": 8,
        "path": "0/0",
        "tag": 48,
        "whole": true
      },
      {
        "hex": "0061006c00690065006e007c0043003a005c0053006800610072006500640020004c006f0067006f006e0073005c00e900710075006900700065002e0076006c006d0000",
        "header": 2,
        "length": 68,
        "meaning": "name \"alien|C:\\Shared Logons\\équipe.vlm\"",
        "offset": 10,
        "path": "0/0/0",
        "tag": 30,
        "whole": true
      },
  $ vlbackup hex first.vlb --json | tail -n 15 | cut -c 1-100
        "tag": 48,
        "whole": true
      },
      {
        "hex": "7b2273657474696e6773223a7b2263757272656e74223a7b226f70656e5f67756172645f6465736b5f7161
        "header": 3,
        "length": 175,
        "meaning": "document",
        "offset": 764,
        "path": "3/0",
        "tag": 4,
        "whole": true
      }
    ]
  }
  $ vlbackup hex first.vlb --json --all | grep '"hex"' | tail -n 1 | wc -c
  367
  $ vlbackup hex cut.vlb 2>&1 | tail -n 4
         381  1e         22  0/5/0               name, cut after 17
         383          00 75 00 70 00 64 00 61 00 74 00 61 00 2e 00 76  .u.p.d.a.t.a...v
         399          00                                               .
  vlbackup: cut.vlb is no whole backup: cut at byte 400 of 942 (copy it again, or save what is intact by 'vlbackup recover')
  $ vlbackup hex cut.vlb --json 2>&1 | tail -n 12
        "hex": "007500700064006100740061002e007600",
        "header": 2,
        "length": 22,
        "meaning": "name",
        "offset": 381,
        "path": "0/5/0",
        "tag": 30,
        "whole": false
      }
    ]
  }
  {"error": "cut.vlb is no whole backup: cut at byte 400 of 942","exitStatus": 1,"hint": "copy it again, or save what is intact by 'vlbackup recover'","schema": "error-1","tool": "vlbackup"}

Links, early settings, unknown elements and damage.

  $ bytes() { env printf "$(echo "$*" | sed 's/ //g; s/../\\x&/g')"; }
  $ bytes 30 2E 30 00 30 12 30 10 04 02 6E 00 04 01 74 04 01 42 02 01 FF 04 01 0A 30 06 30 04 1E 00 1E 00 30 0E 02 01 01 1E 06 00 41 00 09 00 00 04 01 78 00 7F | vlbackup hex -
      offset  tag    length  path          meaning
           0  30         46                backup
           2  30          0  0               templates
           4  30         18  1               quick links
           6  30         16  1/0               quick link
           8  04          2  1/0/0               name
          10          6e 00                                            n.
          12  04          1  1/0/1               target
          14          74                                               t
          15  04          1  1/0/2               manifest
          17          42                                               B
          18  02          1  1/0/3               profile 255
          20          ff                                               .
          21  04          1  1/0/4               manifest id
          23          0a                                               .
          24  30          6  2               categories
          26  30          4  2/0               category
          28  1e          0  2/0/0               name ""
          30  1e          0  2/0/1               text ""
          32  30         14  3               settings
          34  02          1  3/0               prompt 1
          36          01                                               .
          37  1e          6  3/1               hot key "A\t"
          39          00 41 00 09 00 00                                .A....
          45  04          1  3/2               do-not-prompt list
          47          78                                               x
          48  --          2                after the end
          48          00 7f                                            ..
  $ bytes 30 0B 30 00 30 00 30 00 30 00 04 01 41 | vlbackup hex -
      offset  tag    length  path          meaning
           0  30         11                backup
           2  30          0  0               templates
           4  30          0  1               quick links
           6  30          0  2               categories
           8  30          0  3               unknown element
          10  04          1  4               unknown element
          12          41                                               A
  $ bytes 30 0D 30 07 30 05 1E 05 00 61 62 30 02 30 80 FF | vlbackup hex -
      offset  tag    length  path          meaning
           0  30         13                backup
           2  30          7  0               templates
           4  30          5  0/0               stored file
           6  1e          5  0/0/0               name, cut after 3
           8          00 61 62                                         .ab
          11  30          2  1               quick links
          13  --          2  1/0               damaged
          13          30 80                                            0.
          15  --          1                after the end
          15          ff                                               .
  $ bytes 30 0D 30 07 30 05 1E 05 00 61 62 30 02 30 80 FF | vlbackup hex - --json | tail -n 21
      },
      {
        "hex": "3080",
        "header": 0,
        "length": 2,
        "meaning": "damaged",
        "offset": 13,
        "path": "1/0",
        "whole": false
      },
      {
        "hex": "ff",
        "header": 0,
        "length": 1,
        "meaning": "after the end",
        "offset": 15,
        "path": "",
        "whole": true
      }
    ]
  }
  $ bytes 30 0E 30 0A 30 08 1E 00 04 00 30 02 04 00 30 00 | vlbackup hex -
      offset  tag    length  path          meaning
           0  30         14                backup
           2  30         10  0               templates
           4  30          8  0/0               stored file
           6  1e          0  0/0/0               name ""
           8  04          0  0/0/1               content
          10  30          2  0/0/2               unknown item
          12          04 00                                            ..
          14  30          0  1               quick links
  $ bytes 30 81 0A 30 00 30 00 30 00 04 02 02 00 | vlbackup hex - --json | tail -n 11
        "hex": "0200",
        "header": 2,
        "length": 2,
        "meaning": "settings",
        "offset": 9,
        "path": "3",
        "tag": 4,
        "whole": true
      }
    ]
  }

A content of 128 bytes is shown whole, a longer one only with --all.

  $ content() { head -c $1 /dev/zero | base64 -w 0; }
  $ long() {
  >   printf '{"schema": "vlbackup-backup-1", "templates": [{"name": "a", "content": "%s"}], "quicklinks": []}' "$(content $1)" |
  >     vlbackup from-json - -
  > }
  $ long 128 | vlbackup hex - | tail -n 3
         114          00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00  ................
         130          00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00  ................
         146  30          0  1               quick links
  $ long 129 | vlbackup hex - | tail -n 3
         130          00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00  ................
         146          1 more byte (--all shows all)
         147  30          0  1               quick links
  $ long 129 | vlbackup hex - --all | tail -n 3
         130          00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00  ................
         146          00                                               .
         147  30          0  1               quick links
  $ long 129 | vlbackup hex - --json | grep -o '"hex": "0*"' | wc -c
  266
