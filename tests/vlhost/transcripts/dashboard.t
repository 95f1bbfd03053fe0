What a dashboard shows of the plug-in, and what its buttons do.

  $ . "$TESTS/support/product.sh"
  $ vlhost info
  file: C:\Program Files\Veltrano\bin\VLOnlineIDs.dll
  name: Veltrano Personal Security Password Manager
  fixed name: Password Manager
  description: Stores your logons safely and fills them in for you. Backs up and restores your logons, quick links and settings.
  explanation: Password Manager isn't set up yet. Open Veltrano Personal Security to store your first logon.
  class identifier: {42F9948B-B690-4325-A073-63A8BF31FF32}
  icon: C:\Program Files\Veltrano\bin\Branding.dll,193
  kind: 2
  interfaces:
    - IVLKTPages
    - IVLKTElementUI
    - IVLKSecurityStatus
    - IVLKTPluginInfo
    - IVLKTDisableApp
    - IVLKTBackupRestore3
    - IVLKTBackupRestore2
    - IVLKTTraySubscribe
  state:
    status: 0 (not set up)
    level: 2 (not set up: the user is advised)
    switch: 0 (on: no policy, or none that can be read)
    disabled by policy: no
    text: Password Manager isn't set up yet. Open Veltrano Personal Security to store your first logon.
  notifications:
    -
      number: 1
      caption: Password Manager status
      explanation: Password Manager isn't set up yet. Open Veltrano Personal Security to store your first logon.
      shown: yes
      can open console: yes
      level: 2
  $ vlhost info --json | grep -v '^   '
  {
    "classIdentifier": "{42F9948B-B690-4325-A073-63A8BF31FF32}",
    "description": "Stores your logons safely and fills them in for you. Backs up and restores your logons, quick links and settings.",
    "explanation": "Password Manager isn't set up yet. Open Veltrano Personal Security to store your first logon.",
    "file": "C:\\Program Files\\Veltrano\\bin\\VLOnlineIDs.dll",
    "fixedName": "Password Manager",
    "icon": "C:\\Program Files\\Veltrano\\bin\\Branding.dll,193",
    "interfaces": 
    [
    ],
    "kind": 2,
    "name": "Veltrano Personal Security Password Manager",
    "notifications": 
    [
    ],
    "schema": "vlhost-info-1",
    "state": 
    {
    }
  }
  $ vlhost --json notifications
  {
    "level": 2,
    "levelMeaning": "not set up: the user is advised",
    "notifications": 
    [
      {
        "canOpenConsole": true,
        "caption": "Password Manager status",
        "explanation": "Password Manager isn't set up yet. Open Veltrano Personal Security to store your first logon.",
        "level": 2,
        "number": 1,
        "shown": true
      }
    ],
    "schema": "vlhost-notifications-1"
  }

The advice of a user who has stored nothing can be dismissed, and comes back.

  $ advice='HKCU\SOFTWARE\Veltrano\Applications\DashBoard\DismissMessages\{42F9948B-B690-4325-A073-63A8BF31FF32}'
  $ vlhost dismiss
  notifications:
    -
      number: 1
      caption: Password Manager status
      explanation: Password Manager isn't set up yet. Open Veltrano Personal Security to store your first logon.
      shown: no
      can open console: no
      level: 4
  level: 4 (not set up, and the user has dismissed the advice)
  $ values "$advice"
  HKEY_CURRENT_USER\SOFTWARE\Veltrano\Applications\DashBoard\DismissMessages\{42F9948B-B690-4325-A073-63A8BF31FF32}
      2    REG_DWORD    0x1
  $ vlhost status
  status: 0 (not set up)
  level: 4 (not set up, and the user has dismissed the advice)
  switch: 0 (on: no policy, or none that can be read)
  disabled by policy: no
  text: Password Manager isn't set up yet. Open Veltrano Personal Security to store your first logon.
  $ vlhost dismiss --quiet
  $ vlhost console
  started: yes
  $ vlhost show
  notifications:
    -
      number: 1
      caption: Password Manager status
      explanation: Password Manager isn't set up yet. Open Veltrano Personal Security to store your first logon.
      shown: yes
      can open console: yes
      level: 2
  level: 2 (not set up: the user is advised)
  $ values "$advice"
  HKEY_CURRENT_USER\SOFTWARE\Veltrano\Applications\DashBoard\DismissMessages\{42F9948B-B690-4325-A073-63A8BF31FF32}
      2    REG_DWORD    0x0
      4    REG_DWORD    0x1
  $ vlhost show --json
  {
    "level": 2,
    "levelMeaning": "not set up: the user is advised",
    "notifications": 
    [
      {
        "canOpenConsole": true,
        "caption": "Password Manager status",
        "explanation": "Password Manager isn't set up yet. Open Veltrano Personal Security to store your first logon.",
        "level": 2,
        "number": 1,
        "shown": true
      }
    ],
    "schema": "vlhost-notifications-1"
  }

A user who is at risk sees it always.

  $ card='HKCU\SOFTWARE\Veltrano\Applications\DashBoard\IDCard'
  $ windows reg add "$card" /v IDCard_SS /t REG_DWORD /d 1 /f >log
  $ vlhost notifications
  notifications:
    -
      number: 1
      caption: Password Manager status
      explanation: Your logons aren't protected. Open Veltrano Personal Security Password Manager to fix this.
      shown: 0x80070032 ERROR_NOT_SUPPORTED: Request not supported.
      can open console: yes
      level: 1
  level: 1 (at risk: the user has to act)
  $ vlhost dismiss
  vlhost: the notification is still shown (while the user is at risk it can't be dismissed)
  [1]
  $ vlhost dismiss --json
  {"error": "the notification is still shown","exitStatus": 1,"hint": "while the user is at risk it can't be dismissed","schema": "error-1","tool": "vlhost"}
  [1]
  $ vlhost show --quiet
  $ windows reg add "$card" /v IDCard_SS /t REG_DWORD /d 2 /f >log
  $ vlhost status
  status: 1 (ready)
  level: 3 (all is well)
  switch: 0 (on: no policy, or none that can be read)
  disabled by policy: no
  text: Veltrano Personal Security Password Manager is protecting your logons.
  $ vlhost notifications
  notifications:
    -
      number: 1
      caption: Password Manager status
      explanation: Veltrano Personal Security Password Manager is protecting your logons.
      shown: yes
      can open console: no
      level: 3
  level: 3 (all is well)
  $ vlhost dismiss
  notifications:
    -
      number: 1
      caption: Password Manager status
      explanation: Veltrano Personal Security Password Manager is protecting your logons.
      shown: no
      can open console: no
      level: 3
  level: 3 (all is well)
  $ vlhost console --json
  {
    "schema": "vlhost-console-1",
    "started": true
  }

The application can be switched off by the user, and by the machine's policy, which comes first.

  $ windows reg add 'HKCU\SOFTWARE\Veltrano\VLFPApi\Policy' /v 'CommonSettings\{42F9948B-B690-4325-A073-63A8BF31FF32}\DisableApps' /t REG_DWORD /d 1 /f >log
  $ vlhost status
  status: 0 (switched off)
  level: 2 (not set up: the user is advised)
  switch: 2 (off, by the user's own setting)
  disabled by policy: yes
  text: Your administrator has turned off Veltrano Personal Security Password Manager.
  $ vlhost enable
  status: 1 (ready)
  level: 3 (all is well)
  switch: 1 (on, by policy)
  disabled by policy: no
  text: Veltrano Personal Security Password Manager is protecting your logons.
  $ vlhost disable
  status: 0 (switched off)
  level: 2 (not set up: the user is advised)
  switch: 3 (off, by policy)
  disabled by policy: yes
  text: Your administrator has turned off Veltrano Personal Security Password Manager.
  $ vlhost status --json
  {
    "disabledByPolicy": true,
    "level": 2,
    "levelMeaning": "not set up: the user is advised",
    "schema": "vlhost-status-1",
    "status": 0,
    "statusMeaning": "switched off",
    "switch": 3,
    "switchMeaning": "off, by policy",
    "text": "Your administrator has turned off Veltrano Personal Security Password Manager."
  }
  $ vlhost notifications
  notifications:
    -
      number: 1
      caption: Password Manager status
      explanation: Your administrator has turned off Veltrano Personal Security Password Manager.
      shown: yes
      can open console: yes
      level: 2
  level: 2 (not set up: the user is advised)
  $ vlhost backup x.vlb
  vlhost: the plug-in gave no backup: there is nothing to back up, or it failed (the plug-in hides failures: 'vlhost trace on', try again, and read the trace)
  [1]
  $ vlhost enable --quiet
  $ mv "$drive/windows/system32/VLFPApi.dll" away.dll
  $ vlhost disable
  vlhost: the application can't be switched off: 0x8007007E ERROR_MOD_NOT_FOUND: Module not found. (VLFPApi.dll is not in the system folder: install it first)
  [1]
  $ vlhost call disable-status
  number: 0
  status:
    name: S_OK
    number: 0x00000000
    text: Success.
  failed: no
  $ mv away.dll "$drive/windows/system32/VLFPApi.dll"

It is found in the registry, or by name.

  $ vlhost unregister
  file: C:\Program Files\Veltrano\bin\VLOnlineIDs.dll
  done: DllUnregisterServer
  $ vlhost status
  vlhost: the plug-in is not registered with the dashboard (run 'vlhost register' as an administrator, or name the DLL with --plugin)
  [1]
  $ vlhost unregister
  vlhost: the plug-in is not registered with the dashboard (run 'vlhost register' as an administrator, or name the DLL with --plugin)
  [1]
  $ vlhost --plugin 'C:\Program Files\Veltrano\bin\VLOnlineIDs.dll' status
  status: 0 (not set up)
  level: 2 (not set up: the user is advised)
  switch: 1 (on, by policy)
  disabled by policy: no
  text: Password Manager isn't set up yet. Open Veltrano Personal Security to store your first logon.
  $ vlhost unregister --plugin 'C:\Program Files\Veltrano\bin\VLOnlineIDs.dll' --quiet
  $ vlhost register --json
  {
    "done": "DllRegisterServer",
    "file": "C:\\Program Files\\Veltrano\\bin\\VLOnlineIDs.dll",
    "schema": "vlhost-register-1"
  }
  $ cp "$place/VLOnlineIDs.dll" .
  $ vlhost register --plugin 'C:\work\VLOnlineIDs.dll'
  file: C:\work\VLOnlineIDs.dll
  done: DllRegisterServer
  $ vlhost unregister
  file: C:\work\VLOnlineIDs.dll
  done: DllUnregisterServer
  $ vlhost register
  file: C:\Program Files\Veltrano\bin\VLOnlineIDs.dll
  done: DllRegisterServer
  $ role='HKLM\SOFTWARE\Veltrano\VLKT\Plugins\UIElements\BackupRestore\{42F9948B-B690-4325-A073-63A8BF31FF32}'
  $ windows reg add "$role" /ve /t REG_EXPAND_SZ /d '%SystemDrive%\Program Files\Veltrano\bin\VLOnlineIDs.dll' /f >log
  $ vlhost info | sed -n 1p
  file: C:\Program Files\Veltrano\bin\VLOnlineIDs.dll
  $ vlhost register --plugin 'C:\Program Files\Veltrano\bin\Branding.dll'
  vlhost: C:\Program Files\Veltrano\bin\Branding.dll has no DllRegisterServer (is this the plug-in's DLL?)
  [1]
  $ vlhost --plugin 'C:\Program Files\Veltrano\bin\VloSet.dll' info
  vlhost: C:\Program Files\Veltrano\bin\VloSet.dll is no component: it has no DllGetClassObject (is this the plug-in's DLL?)
  [1]
  $ vlhost --plugin 'C:\none.dll' info
  vlhost: can't load C:\none.dll: Module not found. (is the file there? --plugin names another)
  [1]
  $ echo text >text.dll
  $ vlhost --plugin text.dll status --json
  {"error": "can't load text.dll: Bad EXE format for %1.","exitStatus": 1,"hint": "it has to be the 64-bit DLL","schema": "error-1","tool": "vlhost"}
  [1]
  $ values 'HKLM\SOFTWARE\Veltrano\VLKT'
  HKEY_LOCAL_MACHINE\SOFTWARE\Veltrano\VLKT\Plugins
  HKEY_LOCAL_MACHINE\SOFTWARE\Veltrano\VLKT\Plugins\TrayIcon
  HKEY_LOCAL_MACHINE\SOFTWARE\Veltrano\VLKT\Plugins\TrayIcon\{42F9948B-B690-4325-A073-63A8BF31FF32}
      (Default)    REG_EXPAND_SZ    C:\Program Files\Veltrano\bin\VLOnlineIDs.dll
      TargetShellVersions    REG_MULTI_SZ    6.0\07.0\08.0
  HKEY_LOCAL_MACHINE\SOFTWARE\Veltrano\VLKT\Plugins\UIElements
  HKEY_LOCAL_MACHINE\SOFTWARE\Veltrano\VLKT\Plugins\UIElements\AppControl
  HKEY_LOCAL_MACHINE\SOFTWARE\Veltrano\VLKT\Plugins\UIElements\AppControl\{42F9948B-B690-4325-A073-63A8BF31FF32}
      (Default)    REG_EXPAND_SZ    C:\Program Files\Veltrano\bin\VLOnlineIDs.dll
      TargetShellVersions    REG_MULTI_SZ    6.0\07.0\08.0
  HKEY_LOCAL_MACHINE\SOFTWARE\Veltrano\VLKT\Plugins\UIElements\BackupRestore
  HKEY_LOCAL_MACHINE\SOFTWARE\Veltrano\VLKT\Plugins\UIElements\BackupRestore\{42F9948B-B690-4325-A073-63A8BF31FF32}
      (Default)    REG_EXPAND_SZ    %SystemDrive%\Program Files\Veltrano\bin\VLOnlineIDs.dll
      TargetShellVersions    REG_MULTI_SZ    6.0\07.0\08.0
