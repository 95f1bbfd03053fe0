The doctor finds what is wrong, and which command mends it.

  $ . "$TESTS/support/product.sh"
  $ vlagent >agent & until grep -qs ready agent; do sleep 0.1; done
  $ vlhost doctor
  good  registration: C:\Program Files\Veltrano\bin\VLOnlineIDs.dll
  good  keys: all three roles lead to that file
  good  file: C:\Program Files\Veltrano\bin\VLOnlineIDs.dll
  good  bitness: 64 bits
  good  component: it loads, and makes an object
  good  bin folder: C:\Program Files\Veltrano\bin\
  good  settings provider: C:\Program Files\Veltrano\bin\VloSet.dll
  good  policy library: C:\windows\system32\VLFPApi.dll
  good  console program: C:\Program Files\Veltrano\bin\VLUserConsole.exe
  good  branding: C:\Program Files\Veltrano\bin\Branding.dll: Veltrano Personal Security
  good  language files: de-DE, en-US, fr-FR, ja-JP, zh-Hant
  good  personal folder: C:\Logons\
  good  policy: the plug-in is on
  good  agent window: it is there
  good  agent objects: all four are there
  good  trace switch: off
  $ vlhost doctor --quiet
  $ ls "$drive/Logons"
  $ vlagent --quit
  $ vlhost doctor --quiet
  bad   agent window: no agent is running
        mend: start vlagent
  bad   agent objects: not there, or not what they should be: VLMAX_NIPC_MUTEX, VLMAX_NIPC_BUFFER_READY, VLMAX_NIPC_DATA_READY, VLMAX_NIPC_BUFFER
        mend: vlagent --quit & start vlagent
  vlhost: 2 of 16 checks are bad (each has the command that mends it)
  [1]
  $ vlhost doctor --json | tail -30
  {"error": "2 of 16 checks are bad","exitStatus": 1,"hint": "each has the command that mends it","schema": "error-1","tool": "vlhost"}
        "what": "C:\\Logons\\"
      },
      {
        "check": "policy",
        "good": true,
        "mend": "",
        "what": "the plug-in is on"
      },
      {
        "check": "agent window",
        "good": false,
        "mend": "start vlagent",
        "what": "no agent is running"
      },
      {
        "check": "agent objects",
        "good": false,
        "mend": "vlagent --quit & start vlagent",
        "what": "not there, or not what they should be: VLMAX_NIPC_MUTEX, VLMAX_NIPC_BUFFER_READY, VLMAX_NIPC_DATA_READY, VLMAX_NIPC_BUFFER"
      },
      {
        "check": "trace switch",
        "good": true,
        "mend": "",
        "what": "off"
      }
    ],
    "good": false,
    "schema": "vlhost-doctor-1"
  }

The plug-in's file.

  $ check() { vlhost doctor 2>&1 | grep -A 1 "^bad" | grep -v -e ^-- -e agent; }
  $ plugin='C:\Program Files\Veltrano\bin\VLOnlineIDs.dll'
  $ cp "$place/VLOnlineIDs.dll" x86.dll
  $ offset=$(od -An -t u4 -j 60 -N 4 x86.dll | tr -d ' ')
  $ printf '\114\001' | dd of=x86.dll bs=1 seek=$((offset + 4)) conv=notrunc status=none
  $ vlhost doctor --plugin 'C:\work\x86.dll' 2>&1 | grep ^bad
  bad   keys: no key, or another file: UIElements\AppControl, UIElements\BackupRestore, TrayIcon
  bad   bitness: it is not the library for 64-bit hosts
  bad   component: can't load C:\work\x86.dll: Bad EXE format for %1.
  bad   language files: C:\work\en-US\x86.dll.mui is missing, which every other language falls back to
  bad   policy: can't load C:\work\x86.dll: Bad EXE format for %1.
  bad   agent window: no agent is running
  bad   agent objects: not there, or not what they should be: VLMAX_NIPC_MUTEX, VLMAX_NIPC_BUFFER_READY, VLMAX_NIPC_DATA_READY, VLMAX_NIPC_BUFFER
  $ echo text >text.dll
  $ role='HKLM\SOFTWARE\Veltrano\VLKT\Plugins\UIElements\BackupRestore\{42F9948B-B690-4325-A073-63A8BF31FF32}'
  $ windows reg add "$role" /ve /d 'C:\work\text.dll' /f >log
  $ check
  bad   keys: no key, or another file: UIElements\AppControl, TrayIcon
        mend: vlhost register
  bad   bitness: it is no library
        mend: vlhost register
  bad   component: can't load C:\work\text.dll: Bad EXE format for %1.
        mend: vlsetup install
  bad   language files: C:\work\en-US\text.dll.mui is missing, which every other language falls back to
        mend: vlsetup install
  bad   policy: can't load C:\work\text.dll: Bad EXE format for %1.
        mend: vlsetup install
  $ vlhost unregister --plugin "$plugin" --quiet
  $ check
  bad   registration: the dashboard knows no plug-in
        mend: vlhost register
  bad   keys: no key, or another file: UIElements\AppControl, UIElements\BackupRestore, TrayIcon
        mend: vlhost register
  bad   file: "" is no file
        mend: vlsetup install
  bad   bitness: it is no library
        mend: vlhost register
  bad   component: the plug-in is not registered with the dashboard
        mend: vlsetup install
  bad   language files: en-US\.mui is missing, which every other language falls back to
        mend: vlsetup install
  bad   policy: the plug-in is not registered with the dashboard
        mend: vlsetup install
  $ vlhost register --quiet

Its neighbours.

  $ branding='HKLM\SOFTWARE\Veltrano\Branding\Common'
  $ windows reg add "$branding" /v DLLPath /d 'C:\work\text.dll' /f >log
  $ windows reg add 'HKLM\SOFTWARE\Veltrano\Applications' /v BinDir /d 'C:\none' /f >log
  $ mv "$drive/windows/system32/VLFPApi.dll" away.dll; mv "$place/en-US" away
  $ check
  bad   bin folder: C:\none\ is not there
        mend: vlsetup install
  bad   settings provider: C:\none\VloSet.dll: 0x80004001 E_NOTIMPL: Not implemented.
        mend: vlsetup install
  bad   policy library: C:\windows\system32\VLFPApi.dll: Module not found.
        mend: vlsetup install
  bad   console program: C:\none\VLUserConsole.exe is no file
        mend: vlsetup install
  bad   branding: C:\work\text.dll can't be loaded
        mend: vlsetup install
  bad   language files: C:\Program Files\Veltrano\bin\en-US\VLOnlineIDs.dll.mui is missing, which every other language falls back to
        mend: vlsetup install
  bad   personal folder: the settings name none
        mend: vlsetup install
  $ windows reg delete "$branding" /v DLLPath /f >log
  $ windows reg delete 'HKLM\SOFTWARE\Veltrano\Applications' /v BinDir /f >log
  $ check
  bad   bin folder: no BinDir below HKLM\SOFTWARE\Veltrano\Applications
        mend: vlsetup install
  bad   settings provider: x64\VloSet.dll: 0x80004001 E_NOTIMPL: Not implemented.
        mend: vlsetup install
  bad   policy library: C:\windows\system32\VLFPApi.dll: Module not found.
        mend: vlsetup install
  bad   console program: \VLUserConsole.exe is no file
        mend: vlsetup install
  bad   branding: no DLLPath in HKLM\SOFTWARE\Veltrano\Branding\Common
        mend: vlsetup install
  bad   language files: C:\Program Files\Veltrano\bin\en-US\VLOnlineIDs.dll.mui is missing, which every other language falls back to
        mend: vlsetup install
  bad   personal folder: the settings name none
        mend: vlsetup install
  $ windows reg add "$branding" /v DLLPath /d "$plugin" /f >log
  $ windows reg add 'HKLM\SOFTWARE\Veltrano\Applications' /v BinDir /d 'C:\Program Files\Veltrano\bin' /f >log
  $ cp away.dll "$drive/windows/system32/VLFPApi.dll"; mv away "$place/en-US"

The user, policy and tracing.

  $ echo text >file
  $ vlhost setting set path_localstorage_dir 'C:\work\file\in\' --quiet
  $ vlhost disable --quiet
  $ tracing='HKLM\SOFTWARE\Veltrano\Tracing'
  $ check
  bad   branding: C:\Program Files\Veltrano\bin\VLOnlineIDs.dll has no product name
        mend: vlsetup install
  bad   personal folder: C:\work\file\in\ can't be written: Path not found.
        mend: vlhost setting set path_localstorage_dir "%APPDATA%\Veltrano\KRS\Templates\\"
  bad   policy: the plug-in is switched off
        mend: vlhost enable
  $ vlhost setting set path_localstorage_dir '' --quiet
  $ vlhost enable --quiet
  $ vlhost trace on --dir 'C:\work\file\in' --quiet
  $ check
  bad   branding: C:\Program Files\Veltrano\bin\VLOnlineIDs.dll has no product name
        mend: vlsetup install
  bad   personal folder: the settings name none
        mend: vlsetup install
  bad   trace switch: on, but C:\work\file\in\ can't be written: Path not found.
        mend: vlhost trace on --dir %TEMP%
  $ vlhost trace on --dir 'C:\work' --quiet
  $ windows reg add "$tracing" /v TraceToFile /t REG_DWORD /d 2 /f >log
  $ check | tail -2
  bad   trace switch: on, but TraceToFile is none of 1, 3 and 4
        mend: vlhost trace on
  $ windows reg add "$tracing\\ComponentsNOT" /v VLOnlineIDs /f >log
  $ check | tail -2
  bad   trace switch: on, but the plug-in is listed in ComponentsNOT
        mend: reg delete HKLM\SOFTWARE\Veltrano\Tracing\ComponentsNOT /v VLOnlineIDs /f
