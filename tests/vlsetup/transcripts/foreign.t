What isn't ours stays, or comes back at the removal.

  $ drive="$WINEPREFIX/drive_c"; mkdir -p "$drive/package/standins"; cd "$drive/package"
  $ cp "$BIN/VLOnlineIDs.dll" .; echo tool >tool.exe
  $ echo policy >standins/VLFPApi.dll; echo settings >standins/VloSet.dll
  $ printf 'VLOnlineIDs.dll\ntool.exe\nstandins/VLFPApi.dll\nstandins/VloSet.dll\n' >files.txt
  $ install() { vlsetup install 'C:\Our Product' --from 'C:\package' "$@"; }
  $ bin="$drive/Our Product/bin"
  $ state() { values; (cd "$drive" && find "Our Product" -type f | LC_ALL=C sort); }
  $ values() { windows reg query 'HKLM\SOFTWARE\Veltrano' /s 2>&1 | tr -d '\r' | grep -v -e '^$' -e HKEY -e Target; }
  $ install --stand-ins none
  installed in C:\Our Product\bin
  $ state
      VeltranoPath    REG_SZ    C:\Our Product
      BinDir    REG_SZ    C:\Our Product\bin
      BinDir    REG_SZ    C:\Our Product\bin
      Version    REG_SZ    1.0.0
      (Default)    REG_EXPAND_SZ    C:\Our Product\bin\VLOnlineIDs.dll
      (Default)    REG_EXPAND_SZ    C:\Our Product\bin\VLOnlineIDs.dll
      (Default)    REG_EXPAND_SZ    C:\Our Product\bin\VLOnlineIDs.dll
  Our Product/bin/VLOnlineIDs.dll
  Our Product/bin/VLOnlineIDs.installed.json
  Our Product/bin/tool.exe
  $ vlsetup uninstall 'C:\Our Product'
  uninstalled; what belongs to users stays
  $ state
  reg: Unable to find the specified registry key
  Our Product/Cleanup.txt

Of the neighbours, those that are there stay.

  $ echo theirs >"$drive/windows/system32/VLFPApi.dll"
  $ windows reg add 'HKLM\SOFTWARE\Veltrano' /v VeltranoPath /d 'C:\Theirs' /f >log; mkdir "$drive/Theirs"
  $ windows reg add 'HKLM\SOFTWARE\Veltrano\Applications' /v BinDir /d 'C:\Theirs\bin' /f >log
  $ windows reg add 'HKLM\SOFTWARE\Veltrano\Branding\Common' /v DLLPath /d 'C:\Theirs\b.dll' /f >log
  $ role='HKLM\SOFTWARE\Veltrano\VLKT\Plugins\TrayIcon\{42F9948B-B690-4325-A073-63A8BF31FF32}'
  $ windows reg add "$role" /ve /d 'C:\Theirs\plugin.dll' /f >log
  $ install
  HKLM\SOFTWARE\Veltrano\VeltranoPath stays as it was: it is not ours
  HKLM\SOFTWARE\Veltrano\Applications\BinDir stays as it was: it is not ours
  C:\windows\system32\VLFPApi.dll stays as it was: it is not ours
  HKLM\SOFTWARE\Veltrano\VLKT\Plugins\TrayIcon\{42F9948B-B690-4325-A073-63A8BF31FF32} comes back when this plug-in is removed
  installed in C:\Our Product\bin
  $ state
      VeltranoPath    REG_SZ    C:\Theirs
      BinDir    REG_SZ    C:\Theirs\bin
      BinDir    REG_SZ    C:\Our Product\bin
      DLLPath    REG_SZ    C:\Theirs\b.dll
      Version    REG_SZ    1.0.0
      (Default)    REG_EXPAND_SZ    C:\Our Product\bin\VLOnlineIDs.dll
      (Default)    REG_EXPAND_SZ    C:\Our Product\bin\VLOnlineIDs.dll
      (Default)    REG_EXPAND_SZ    C:\Our Product\bin\VLOnlineIDs.dll
  Our Product/Cleanup.txt
  Our Product/bin/VLOnlineIDs.dll
  Our Product/bin/VLOnlineIDs.installed.json
  Our Product/bin/tool.exe
  $ install --stand-ins all
  HKLM\SOFTWARE\Veltrano\VeltranoPath stays as it was: it is not ours
  installed in C:\Our Product\bin
  $ state
      VeltranoPath    REG_SZ    C:\Theirs
      BinDir    REG_SZ    C:\Our Product\bin
      BinDir    REG_SZ    C:\Our Product\bin
      DLLPath    REG_SZ    C:\Our Product\bin\Branding.dll
      Version    REG_SZ    1.0.0
      (Default)    REG_EXPAND_SZ    C:\Our Product\bin\VLOnlineIDs.dll
      (Default)    REG_EXPAND_SZ    C:\Our Product\bin\VLOnlineIDs.dll
      (Default)    REG_EXPAND_SZ    C:\Our Product\bin\VLOnlineIDs.dll
  Our Product/Cleanup.txt
  Our Product/bin/VLOnlineIDs.dll
  Our Product/bin/VLOnlineIDs.installed.json
  Our Product/bin/VloSet.dll
  Our Product/bin/tool.exe
  $ cat "$drive/windows/system32/VLFPApi.dll" "$drive/windows/system32/VLFPApi.dll.before"
  policy
  theirs
  $ vlsetup uninstall 'C:\Our Product'
  uninstalled; what belongs to users stays
  $ state
      VeltranoPath    REG_SZ    C:\Theirs
      BinDir    REG_SZ    C:\Theirs\bin
      DLLPath    REG_SZ    C:\Theirs\b.dll
      (Default)    REG_SZ    C:\Theirs\plugin.dll
  Our Product/Cleanup.txt
  $ cat "$drive/windows/system32/VLFPApi.dll"; ls "$drive/windows/system32" | grep -c VLFPApi
  theirs
  1

Other files with our names are in the way.

  $ mkdir -p "$bin"; echo their tool >"$bin/tool.exe"
  $ install
  vlsetup: not from an installation of this product: C:\Our Product\bin\tool.exe (move it away, choose another folder, or replace it with --replace)
  [1]
  $ install --replace >log; ls "$bin"
  VLOnlineIDs.dll
  VLOnlineIDs.installed.json
  tool.exe
  tool.exe.before
  $ cat "$bin/tool.exe" "$bin/tool.exe.before"
  tool
  their tool
  $ vlsetup uninstall 'C:\Our Product'
  uninstalled; what belongs to users stays
  $ ls "$bin"; cat "$bin/tool.exe"
  tool.exe
  their tool
  $ rm -r "$drive/Our Product"

Places and packages that will not do.

  $ vlsetup install 'Q:\x' --from 'C:\package'
  vlsetup: there is no Q:\ (which drive is meant?)
  [1]
  $ vlsetup install "C:\\$(printf '%0240d' 0)" --from 'C:\package'
  vlsetup: the path C:\000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000 is too long for a dashboard (choose a shorter one)
  [1]
  $ vlsetup install 'C:\Our Product' --from 'C:\windows'
  vlsetup: C:\windows is no package: there is no list files.txt (start it from the unpacked package)
  [1]
  $ vlsetup install 'C:\Our Product' --from 'C:\Our Product\bin'
  vlsetup: the package can't be installed over itself (start it from the unpacked package)
  [1]
  $ mv tool.exe away; install; mv away tool.exe
  vlsetup: the package is not whole: there is no C:\package\tool.exe (unpack it again)
  $ echo file >"$drive/file"
  $ vlsetup install 'C:\file' --from 'C:\package'
  vlsetup: can't make the folder C:\file: File already exists. (a file of that name is there); everything is as it was
  [1]
  $ mkdir -p "$bin"
  $ echo '{"format": 2}' >"$bin/VLOnlineIDs.installed.json"
  $ install
  vlsetup: C:\Our Product\bin\VLOnlineIDs.installed.json is of another version of this program (use that one's)
  [1]
  $ echo '{' >"$bin/VLOnlineIDs.installed.json"
  $ install
  vlsetup: the record of the installation, C:\Our Product\bin\VLOnlineIDs.installed.json, is damaged (nothing was changed; put it back from a copy, or remove it and what was installed by hand)
  [1]
  $ vlsetup uninstall 'C:\Our Product'
  vlsetup: the record of the installation, C:\Our Product\bin\VLOnlineIDs.installed.json, is damaged (nothing was changed; put it back from a copy, or remove it and what was installed by hand)
  [1]
  $ vlsetup install --stand-ins some
  vlsetup: --stand-ins: "some" is none of none, missing, all (see vlsetup install --help)
  [2]
  $ vlsetup uninstall 'C:\none'
  vlsetup: nothing is installed in C:\none: there is no C:\none\bin\VLOnlineIDs.installed.json (which folder was it?)
  [1]
  $ vlsetup
  vlsetup: A subcommand is required (see vlsetup --help)
  [2]
  $ ls "$bin"; ls "$drive"
  VLOnlineIDs.installed.json
  Our Product
  Program Files
  Program Files (x86)
  ProgramData
  Theirs
  file
  package
  users
  windows
