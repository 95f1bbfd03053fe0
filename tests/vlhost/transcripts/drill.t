A drill proves that a backup can be put back, and touches nothing of the user's own.

  $ . "$TESTS/support/product.sh"
  $ temp=$(windows cmd /c 'echo %TEMP%' | tr -d '\r' | sed "s,^C:,$drive,; s,\\\\,/,g")
  $ left() { ls "$temp" | grep drill; windows reg query 'HKCU\SOFTWARE\Veltrano-Drill' 2>&1 | grep HKEY; ls "$drive/Logons"; }
  $ vlagent --journal journal.txt >agent & until grep -qs ready agent; do sleep 0.1; done
  $ vlhost drill first.vlb
  warning: C:\Shared Logons\équipe.vlm: outside the folders that this profile's settings name; a restore asks for --force
  warning: C:\users\anna\AppData\Roaming\Veltrano\KRS\Cache\cached.vlm: outside the folders that this profile's settings name; a restore asks for --force
  as expected: templates: in another order (files and registry values come in the order in which the system finds them)
  as expected: settings settings.current.path_dontpromptlist_filename: only in the first (the do-not-prompt list of a document is not written back)
  restored into a throw-away profile, backed up there and compared: 7 files, 2 quick links, 2 categories and the settings come back
  $ vlhost drill second.vlb --json
  {
    "backup": "second.vlb",
    "categories": 2,
    "differences": [],
    "files": 7,
    "outside": 
    [
      "C:\\Shared Logons\\équipe.vlm",
      "C:\\users\\anna\\AppData\\Roaming\\Veltrano\\KRS\\Cache\\cached.vlm"
    ],
    "quickLinks": 2,
    "restorable": true,
    "schema": "vlhost-drill-1"
  }
  $ mkdir "$drive/Shared Logons"
  $ vlhost setting set path_alienstorage_dirs 'C:\Shared Logons|C:\users\anna\AppData\Roaming\Veltrano\KRS\Cache' --quiet
  $ vlhost drill - <first.vlb
  as expected: templates: in another order (files and registry values come in the order in which the system finds them)
  as expected: settings settings.current.path_dontpromptlist_filename: only in the first (the do-not-prompt list of a document is not written back)
  restored into a throw-away profile, backed up there and compared: 7 files, 2 quick links, 2 categories and the settings come back
  $ vlhost drill first.vlb --quiet
  $ vlbackup to-json first.vlb first.json
  first.json: 1467 bytes
  $ sed 's/"manifest": "bank.vlm"/"manifest": "gone.vlm"/' first.json | vlbackup from-json - gone.vlb
  gone.vlb: 942 bytes
  $ vlhost drill gone.vlb
  as expected: templates: in another order (files and registry values come in the order in which the system finds them)
  difference: quicklinks Meine Bank: only in the first
  as expected: settings settings.current.path_dontpromptlist_filename: only in the first (the do-not-prompt list of a document is not written back)
  vlhost: not everything would come back from gone.vlb (your own profile was not touched)
  [1]
  $ vlhost drill gone.vlb --json | grep -A 12 differences
  {"error": "not everything would come back from gone.vlb","exitStatus": 1,"hint": "your own profile was not touched","schema": "error-1","tool": "vlhost"}
    "differences": 
    [
      {
        "element": "templates",
        "item": "",
        "reason": "files and registry values come in the order in which the system finds them",
        "what": "in another order"
      },
      {
        "element": "quicklinks",
        "item": "Meine Bank",
        "reason": "",
        "what": "only in the first"
  $ sed 's/"bank.vlm"/"..\\\\bank.vlm"/' first.json | vlbackup from-json - hostile.vlb
  hostile.vlb: 955 bytes
  $ vlhost drill hostile.vlb
  vlhost: hostile.vlb is not sound ('vlbackup verify' says why)
  [1]
  $ vlhost drill cut.vlb
  vlhost: cut.vlb is no whole backup: cut at byte 400 of 942 (copy it again, or save what is intact by 'vlbackup recover')
  [1]
  $ vlhost drill none.vlb
  vlhost: none.vlb does not exist (is the name spelt right?)
  [1]
  $ left
  $ grep -c RESTOREDONE journal.txt
  0
  [1]
  $ vlagent --quit

One that was killed leaves its profile to the next.

  $ mkdir -p "$temp/vlhost-drill-99999/Local" "$temp/vlhost-drill-x"
  $ windows reg add 'HKCU\SOFTWARE\Veltrano-Drill\99999\Software' /f >log
  $ left
  vlhost-drill-99999
  vlhost-drill-x
  HKEY_CURRENT_USER\\SOFTWARE\\Veltrano-Drill\\99999\r (esc)
  $ vlhost drill first.vlb --quiet
  $ left
  $ rm "$place/VloSet.dll"
  $ vlhost drill first.vlb
  vlhost: the setting 'path_localstorage_dir': 0x80004001 E_NOTIMPL: Not implemented. ('vlhost doctor' says what is missing)
  [1]
  $ left
