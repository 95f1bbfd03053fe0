A bundle says what a helper needs, and nothing of the user's own.

  $ . "$TESTS/support/product.sh"
  $ mkdir "$drive/traces"
  $ for day in 1 2 3 4 5; do
  >   cp "$SAMPLES/failed.trc3" "$drive/traces/old.x64.vlonlineids.dll~~01.0$day.26_at_00.00.00.000~~1.$day.trc3"
  >   touch -d "2026-01-0$day" "$drive"/traces/*"~~1.$day.trc3"
  > done
  $ vlhost trace on --dir 'C:\traces' --quiet
  $ vlhost call set-storage-data first.vlb --quiet >log
  $ vlhost trace off --quiet
  $ vlhost bundle support.zip
  file: support.zip
  backup: yes
  bytes: * (glob)
  traces: 5
  $ unzip -q support.zip -d support && ls support
  README.txt
  backup.vlb
  doctor.json
  trace-1.txt
  trace-2.txt
  trace-3.txt
  trace-4.txt
  trace-5.txt
  version.txt
  $ cat support/README.txt
  What 'vlhost bundle' packs for who helps: the state of an installation, with nothing of the
  user's own.
  
  doctor.json   what is good and what isn't; what was found is left out, as it may be a path
  version.txt   versions of the program, of its formats and of the system
  trace-N.txt   the newest traces, decoded. All that doesn't come from the plug-in's own file,
                such as names, paths and addresses, is replaced by <...>
  backup.vlb    a backup of the same shape as the user's, with its texts and contents replaced
  $ sed 's/ on .*//; s/^Windows .*/Windows/' support/version.txt
  vlhost 1.0.0
  backup format 4
  trace format 3.0.2
  Windows
  $ grep -c '"check"' support/doctor.json; grep what support/doctor.json | sort -u
  16
        "what": ""
  $ sed 1,10d support/trace-1.txt
  196 t 11/21/26
  196 T 23:30:11.053
  196 > CVLKTPages::SetStorageData
  196 U lBound = 0, uBound = 1
  196 E -2147418113 *<...> (glob)
  196 < 
  $ sed -n 's/^[0-9]* > //p' support/trace-5.txt
  CVLKTPages::SetStorageData
  RestoreQuickLinks
  QL::add
  QL::add
  QL::save
  $ vlbackup ls support/backup.vlb
  templates
          15  xxxb.vlm
          15  xxxxxxxxxxxxxxb.vlm
          15  xxxxxb.vlm
           5  updata.vls
           0  updata_temp.vls
  quick links
    xxxxxxxxxb -> https://xxxb.xxxxxxb/xxxxb?b=0  (xxxb.vlm, profile 1, id c-0)
    xxb -> C:\windows\xxxxxxc.exe  (xxxxxxxxxxxxxxb.vlm, profile 2, id c-1, without credentials)
  categories
    xxxc = xxxd
    xxxf = xxxb;xxxg
  settings (document)
    {"settings":{"current":{"open_guard_desk_qa":"Ctrl+Alt+90","show_training_prompt":false,"useGrabbingCreds":true}}}
  $ grep -raiE 'logons|bank|root|Meine|Poststelle' support
  [1]
  $ vlhost bundle support.zip
  vlhost: support.zip exists already (give another name, or --force to replace it)
  [1]
  $ vlhost bundle support.zip --force --json
  {
    "backup": true,
    "bytes": *, (glob)
    "file": "support.zip",
    "schema": "vlhost-bundle-1",
    "traces": 5
  }
  $ vlhost bundle - >piped.zip; unzip -qt piped.zip
  No errors detected in compressed data of piped.zip.
  $ vlhost bundle none/x.zip
  vlhost: none/x.zip can't be written: the folder does not exist (check the folder, and whether you may write to it)
  [1]

Without the plug-in, too.

  $ vlhost unregister --quiet
  $ rm "$place/VloSet.dll"
  $ vlhost bundle less.zip
  file: less.zip
  backup: no
  bytes: * (glob)
  traces: 0
  $ unzip -l less.zip | awk '{ print $4 }'
  
  Name
  ----
  README.txt
  doctor.json
  version.txt
  
  

Its files are of this month.

  $ zipinfo -T support.zip | awk '/^-/ { print substr($7, 1, 6) }' | sort -u | sed "s/$(date +%Y%m)/now/"
  now
