Installing, repairing, upgrading and removing.

  $ drive="$WINEPREFIX/drive_c"; mkdir -p "$drive/package/en-US" "$drive/package/standins"; cd "$drive/package"
  $ cp "$BIN/VLOnlineIDs.dll" "$BIN/vlagent.exe" .; echo tool 1 >tool.exe; echo texts >en-US/texts.mui
  $ echo policy >standins/VLFPApi.dll; echo settings >standins/VloSet.dll; echo remove >remove.cmd
  $ printf 'VLOnlineIDs.dll\r\nvlagent.exe\ntool.exe\nen-US/texts.mui\nstandins/VLFPApi.dll\nstandins/VloSet.dll\n' >files.txt
  $ install() { vlsetup install 'C:\Our Product' --from 'C:\package' "$@"; }
  $ values() { windows reg query "HKLM\\SOFTWARE\\$1" /s 2>&1 | tr -d '\r' | sed '/^$/d'; }
  $ files() { (cd "$drive" && find "Our Product" windows/system32/VLFPApi.dll | LC_ALL=C sort); }
  $ install
  installed in C:\Our Product\bin
  $ files
  Our Product
  Our Product/bin
  Our Product/bin/VLOnlineIDs.dll
  Our Product/bin/VLOnlineIDs.installed.json
  Our Product/bin/VloSet.dll
  Our Product/bin/en-US
  Our Product/bin/en-US/texts.mui
  Our Product/bin/tool.exe
  Our Product/bin/vlagent.exe
  windows/system32/VLFPApi.dll
  $ values Veltrano
  HKEY_LOCAL_MACHINE\SOFTWARE\Veltrano
      VeltranoPath    REG_SZ    C:\Our Product
  HKEY_LOCAL_MACHINE\SOFTWARE\Veltrano\Applications
      BinDir    REG_SZ    C:\Our Product\bin
  HKEY_LOCAL_MACHINE\SOFTWARE\Veltrano\Applications\KRS
      BinDir    REG_SZ    C:\Our Product\bin
  HKEY_LOCAL_MACHINE\SOFTWARE\Veltrano\Branding
  HKEY_LOCAL_MACHINE\SOFTWARE\Veltrano\Branding\Common
      DLLPath    REG_SZ    C:\Our Product\bin\Branding.dll
  HKEY_LOCAL_MACHINE\SOFTWARE\Veltrano\Products
  HKEY_LOCAL_MACHINE\SOFTWARE\Veltrano\Products\VLOnlineIDs
      Version    REG_SZ    1.0.0
  HKEY_LOCAL_MACHINE\SOFTWARE\Veltrano\VLKT
  HKEY_LOCAL_MACHINE\SOFTWARE\Veltrano\VLKT\Plugins
  HKEY_LOCAL_MACHINE\SOFTWARE\Veltrano\VLKT\Plugins\TrayIcon
  HKEY_LOCAL_MACHINE\SOFTWARE\Veltrano\VLKT\Plugins\TrayIcon\{42F9948B-B690-4325-A073-63A8BF31FF32}
      (Default)    REG_EXPAND_SZ    C:\Our Product\bin\VLOnlineIDs.dll
      TargetShellVersions    REG_MULTI_SZ    6.0\07.0\08.0
  HKEY_LOCAL_MACHINE\SOFTWARE\Veltrano\VLKT\Plugins\UIElements
  HKEY_LOCAL_MACHINE\SOFTWARE\Veltrano\VLKT\Plugins\UIElements\AppControl
  HKEY_LOCAL_MACHINE\SOFTWARE\Veltrano\VLKT\Plugins\UIElements\AppControl\{42F9948B-B690-4325-A073-63A8BF31FF32}
      (Default)    REG_EXPAND_SZ    C:\Our Product\bin\VLOnlineIDs.dll
      TargetShellVersions    REG_MULTI_SZ    6.0\07.0\08.0
  HKEY_LOCAL_MACHINE\SOFTWARE\Veltrano\VLKT\Plugins\UIElements\BackupRestore
  HKEY_LOCAL_MACHINE\SOFTWARE\Veltrano\VLKT\Plugins\UIElements\BackupRestore\{42F9948B-B690-4325-A073-63A8BF31FF32}
      (Default)    REG_EXPAND_SZ    C:\Our Product\bin\VLOnlineIDs.dll
      TargetShellVersions    REG_MULTI_SZ    6.0\07.0\08.0
  $ cat "$drive/windows/system32/VLFPApi.dll" "$drive/Our Product/bin/tool.exe" "$drive/Our Product/bin/VloSet.dll"
  policy
  tool 1
  settings

An upgrade takes the place of it, and adds to the record what it adds. What is no more in the package stays until the removal.

  $ echo tool 2 >tool.exe; echo new >new.txt; chmod -w new.txt
  $ sed 's/en-US.*/new.txt/' files.txt >files && mv files files.txt
  $ install --uninstaller remove.cmd
  installed in C:\Our Product\bin
  $ files
  Our Product
  Our Product/bin
  Our Product/bin/VLOnlineIDs.dll
  Our Product/bin/VLOnlineIDs.installed.json
  Our Product/bin/VloSet.dll
  Our Product/bin/en-US
  Our Product/bin/en-US/texts.mui
  Our Product/bin/new.txt
  Our Product/bin/remove.cmd
  Our Product/bin/tool.exe
  Our Product/bin/vlagent.exe
  windows/system32/VLFPApi.dll
  $ cat "$drive/Our Product/bin/tool.exe"
  tool 2
  $ values 'Microsoft\Windows\CurrentVersion\Uninstall\VLOnlineIDs'
  HKEY_LOCAL_MACHINE\SOFTWARE\Microsoft\Windows\CurrentVersion\Uninstall\VLOnlineIDs
      DisplayName    REG_SZ    Veltrano Password Manager plug-in
      DisplayVersion    REG_SZ    1.0.0
      InstallLocation    REG_SZ    C:\Our Product
      Publisher    REG_SZ    Veltrano
      QuietUninstallString    REG_SZ    "C:\Our Product\bin\remove.cmd" /S
      UninstallString    REG_SZ    "C:\Our Product\bin\remove.cmd"
  $ rm "$drive/Our Product/bin/new.txt"
  $ install
  installed in C:\Our Product\bin
  $ cat "$drive/Our Product/bin/new.txt"
  new

While a file is in use nothing is changed.

  $ windows 'C:\Our Product\bin\vlagent.exe' >agent & until grep -qs ready agent; do sleep 0.1; done
  $ echo tool 3 >tool.exe
  $ install
  vlsetup: can't replace or remove C:\Our Product\bin\vlagent.exe: Sharing violation. (close the program that uses it)
  [1]
  $ cat "$drive/Our Product/bin/tool.exe"
  tool 2
  $ vlsetup uninstall 'C:\Our Product'
  vlsetup: can't replace or remove C:\Our Product\bin\vlagent.exe: Sharing violation. (close the program that uses it)
  [1]
  $ windows 'C:\Our Product\bin\vlagent.exe' --quit
  $ install
  installed in C:\Our Product\bin
  $ cat "$drive/Our Product/bin/tool.exe"
  tool 3

Others' changes stay, and are named.

  $ echo more >>"$drive/Our Product/bin/tool.exe"
  $ echo notes >"$drive/Our Product/bin/notes.txt"
  $ windows reg add 'HKLM\SOFTWARE\Veltrano\Applications' /v BinDir /d 'C:\Theirs' /f >log
  $ tray='HKLM\SOFTWARE\Veltrano\VLKT\Plugins\TrayIcon\{42F9948B-B690-4325-A073-63A8BF31FF32}'
  $ windows reg add "$tray" /ve /d 'C:\Theirs\plugin.dll' /f >log
  $ echo theirs >"$drive/windows/system32/VLFPApi.dll"
  $ install
  vlsetup: not from an installation of this product: C:\Our Product\bin\tool.exe (move it away, choose another folder, or replace it with --replace)
  [1]
  $ vlsetup uninstall 'C:\Our Product'
  HKLM\SOFTWARE\Veltrano\Applications\BinDir was changed since and stays
  C:\Our Product\bin\tool.exe was changed since and stays
  C:\windows\system32\VLFPApi.dll was changed since and stays
  uninstalled; what belongs to users stays
  $ files
  Our Product
  Our Product/Cleanup.txt
  Our Product/bin
  Our Product/bin/notes.txt
  Our Product/bin/tool.exe
  windows/system32/VLFPApi.dll
  $ values Veltrano
  HKEY_LOCAL_MACHINE\SOFTWARE\Veltrano\Applications
      BinDir    REG_SZ    C:\Theirs
  HKEY_LOCAL_MACHINE\SOFTWARE\Veltrano\VLKT
  HKEY_LOCAL_MACHINE\SOFTWARE\Veltrano\VLKT\Plugins
  HKEY_LOCAL_MACHINE\SOFTWARE\Veltrano\VLKT\Plugins\TrayIcon
  HKEY_LOCAL_MACHINE\SOFTWARE\Veltrano\VLKT\Plugins\TrayIcon\{42F9948B-B690-4325-A073-63A8BF31FF32}
      (Default)    REG_SZ    C:\Theirs\plugin.dll
  $ values 'Microsoft\Windows\CurrentVersion\Uninstall\VLOnlineIDs'
  reg: Unable to find the specified registry key
  $ vlsetup uninstall 'C:\Our Product'
  vlsetup: nothing is installed in C:\Our Product: there is no C:\Our Product\bin\VLOnlineIDs.installed.json (which folder was it?)
  [1]
