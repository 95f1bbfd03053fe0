Tracing is switched for the machine.

  $ . "$TESTS/support/product.sh"
  $ tracing='HKLM\SOFTWARE\Veltrano\Tracing'
  $ vlhost trace status
  tracing: off
  to: file
  folder: C:\Program Files\Veltrano\bin\
  values: none
  files: none
  $ vlhost trace off
  tracing: off
  to: file
  folder: C:\Program Files\Veltrano\bin\
  values: none
  files: none
  $ vlhost trace on --dir 'C:\traces' --json
  {
    "files": [],
    "folder": "C:\\traces\\",
    "schema": "vlhost-trace-1",
    "to": "file",
    "tracing": "on, with no end",
    "values": 
    {
      "DoTrace": 1,
      "TracePath": "C:\\traces",
      "TraceToFile": 1
    }
  }
  $ values "$tracing"
  HKEY_LOCAL_MACHINE\SOFTWARE\Veltrano\Tracing
      DoTrace    REG_DWORD    0x1
      TracePath    REG_EXPAND_SZ    C:\traces
      TraceToFile    REG_DWORD    0x1
  $ vlhost call set-storage-data cut.vlb >log 2>&1
  [1]
  $ vlhost trace status
  tracing: on, with no end
  to: file
  folder: C:\traces\
  values:
    DoTrace: 1
    TracePath: C:\traces
    TraceToFile: 1
  files:
    -
      name: vlhost.x64.vlonlineids.dll~~*.trc3 (glob)
      size: * (glob)
      modified: 20??-??-?? ??:??:?? (glob)
      process: * (glob)
      open: no
  $ vlhost trace on --until 2090-12-31 --to console
  tracing: on until the beginning of 2090-12-31
  to: console
  folder: C:\traces\
  values:
    DoTrace: 3818404800
    TracePath: C:\traces
    TraceToFile: 3
  files:
    -
      name: vlhost.x64.vlonlineids.dll~~*.trc3 (glob)
      size: * (glob)
      modified: 20??-??-?? ??:??:?? (glob)
      process: * (glob)
      open: no
  $ vlhost trace on --to debugger --quiet
  $ vlhost trace status | sed -n 1,2p
  tracing: on, with no end
  to: debugger, or a console without one
  $ values "$tracing"
  HKEY_LOCAL_MACHINE\SOFTWARE\Veltrano\Tracing
      DoTrace    REG_DWORD    0x1
      TracePath    REG_EXPAND_SZ    C:\traces
      TraceToFile    REG_DWORD    0x4
  $ vlhost trace off --quiet
  $ values "$tracing"
  HKEY_LOCAL_MACHINE\SOFTWARE\Veltrano\Tracing
      TracePath    REG_EXPAND_SZ    C:\traces
      TraceToFile    REG_DWORD    0x4

What can't be is refused, and nothing is switched.

  $ vlhost trace on --dir traces
  vlhost: 'traces' is no full path (every process would take it from its own current folder)
  [2]
  $ vlhost trace on --to nowhere
  vlhost: --to: "nowhere" is none of file, console, debugger (see vlhost trace on --help)
  [2]
  $ vlhost trace on --until yesterday
  vlhost: 'yesterday' is no day (such as --until 2026-12-31)
  [2]
  $ vlhost trace on --until 2090-02-30
  vlhost: '2090-02-30' is no day (such as --until 2026-12-31)
  [2]
  $ vlhost trace on --until 2020-01-01
  vlhost: 2020-01-01 is not to come: tracing ends at the beginning of that day (the earliest is tomorrow)
  [2]
  $ vlhost trace on --until 2099-01-01
  vlhost: 2099-01-01 is further away than the switch can hold (leave --until out for no end)
  [2]
  $ vlhost trace on --to console --wait
  vlhost: --wait can prove it by a trace file alone (leave --wait out)
  [2]
  $ vlhost trace on --wait 99999
  vlhost: process 99999 can't be watched: Invalid parameter. (nothing was switched; is the number right, and the process yours?)
  [1]
  $ vlhost trace on --wait --quiet
  $ vlhost trace off --wait --json | grep -A 3 followed
    "followed": [],
    "schema": "vlhost-trace-1",
    "to": "file",
    "tracing": "off",
  $ windows reg add "$tracing" /v FileName /d one.trc3 /f >log
  $ vlhost trace on --wait
  vlhost: --wait needs a trace file for each process, and a value under HKLM\SOFTWARE\Veltrano\Tracing gives all one name (remove FileName, or NewFileAlways or noTimestamp)
  [1]
  $ windows reg delete "$tracing" /v FileName /f >log
  $ windows reg add "$tracing\\ComponentsNOT" /v VLOnlineIDs /f >log
  $ vlhost trace on --wait
  vlhost: the plug-in writes no trace: it is listed in ComponentsNOT (remove it there, below HKLM\SOFTWARE\Veltrano\Tracing)
  [1]
  $ vlhost trace status | sed -n 1p
  tracing: off
  $ vlhost trace on | sed -n 1p
  tracing: off for the plug-in: it is listed in ComponentsNOT
  $ windows reg add "$tracing\\Components" /v VLOnlineIDs /f >log
  $ vlhost trace status | sed -n 1p
  tracing: on, with no end

The values that others have set. An end that is past is removed by who may.

  $ windows reg add "$tracing" /v DoTrace /t REG_DWORD /d 86400 /f >log
  $ windows reg add "$tracing" /v TraceToFile /t REG_DWORD /d 2 /f >log
  $ windows reg add "$tracing" /v TracePathLow /t REG_EXPAND_SZ /d '%SystemDrive%\low' /f >log
  $ windows reg add "$tracing" /v noTimestamp /t REG_DWORD /d 1 /f >log
  $ vlhost trace status
  tracing: off
  to: nowhere: TraceToFile is none of 1, 3 and 4
  folder: C:\low\
  values:
    TracePath: C:\traces
    TracePathLow: %SystemDrive%\low
    TraceToFile: 2
    noTimestamp: 1
  files: none
  $ vlhost trace on --dir 'C:\third'
  tracing: on, with no end
  to: file
  folder: C:\third\
  values:
    DoTrace: 1
    TracePath: C:\traces
    TracePathLow: C:\third
    TraceToFile: 1
    noTimestamp: 1
  files: none
  $ windows reg delete "$tracing" /v TracePathLow /f >log
  $ vlhost trace on --quiet --dir '%SystemDrive%\fourth'
  $ values "$tracing"
  HKEY_LOCAL_MACHINE\SOFTWARE\Veltrano\Tracing
      DoTrace    REG_DWORD    0x1
      noTimestamp    REG_DWORD    0x1
      TracePath    REG_EXPAND_SZ    %SystemDrive%\fourth
      TraceToFile    REG_DWORD    0x1
  HKEY_LOCAL_MACHINE\SOFTWARE\Veltrano\Tracing\Components
      VLOnlineIDs    REG_SZ    
  HKEY_LOCAL_MACHINE\SOFTWARE\Veltrano\Tracing\ComponentsNOT
      VLOnlineIDs    REG_SZ    
