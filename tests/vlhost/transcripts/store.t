The settings of the user, and the secret.

  $ . "$TESTS/support/product.sh"
  $ vlhost setting get path_localstorage_dir
  path_localstorage_dir: C:\Logons\
  $ vlhost setting get path_cachestorage_dir
  path_cachestorage_dir: C:\\users\\*\\AppData\\Roaming\\Veltrano\\KRS\\Cache\\ (glob)
  $ vlhost setting get path_bin_dir --json
  {
    "key": "path_bin_dir",
    "schema": "vlhost-setting-1",
    "value": "C:\\Program Files\\Veltrano\\bin"
  }
  $ vlhost setting set open_guard_desk_qa 'Ctrl+H'
  open_guard_desk_qa: Ctrl+H
  $ vlhost setting set path_cachestorage_dir '%APPDATA%\Cache\' --json
  {
    "key": "path_cachestorage_dir",
    "schema": "vlhost-setting-1",
    "value": "%APPDATA%\\Cache\\"
  }
  $ vlhost setting get path_cachestorage_dir
  path_cachestorage_dir: %APPDATA%\Cache\
  $ windows reg add 'HKCU\SOFTWARE\Veltrano\Settings' /v path_cachestorage_dir /t REG_EXPAND_SZ /d '%SystemDrive%\Cache\' /f >log
  $ vlhost setting get path_cachestorage_dir
  path_cachestorage_dir: C:\Cache\
  $ vlhost setting set show_training_prompt 1 --quiet
  $ vlhost setting set useGrabbingCreds ''
  useGrabbingCreds: 
  $ vlhost setting get useGrabbingCreds
  useGrabbingCreds: 
  $ values 'HKCU\SOFTWARE\Veltrano\Settings'
  HKEY_CURRENT_USER\SOFTWARE\Veltrano\Settings
      open_guard_desk_qa    REG_SZ    Ctrl+H
      path_cachestorage_dir    REG_EXPAND_SZ    %SystemDrive%\Cache\
      path_dontpromptlist_filename    REG_SZ    C:\Logons\never.txt
      path_localstorage_dir    REG_SZ    C:\Logons\
      path_quicklink_filename    REG_SZ    C:\Logons\quicklinks.txt
      show_training_prompt    REG_SZ    1
      useGrabbingCreds    REG_SZ    
  $ vlhost setting get no_such_key
  vlhost: the setting 'no_such_key': 0x80070002 ERROR_FILE_NOT_FOUND: File not found. (is the key spelt right?)
  [1]
  $ vlhost setting set no_such_key x --json
  {"error": "the setting 'no_such_key': 0x80070002 ERROR_FILE_NOT_FOUND: File not found.","exitStatus": 1,"hint": "is the key spelt right?","schema": "error-1","tool": "vlhost"}
  [1]
  $ vlhost setting set show_training_prompt
  vlhost: value is required (see vlhost setting set --help)
  [2]
  $ vlhost setting set open_guard_desk_qa "$(printf 'a\nb\033[1m\177')" --quiet
  $ vlhost setting get open_guard_desk_qa
  open_guard_desk_qa: a\nb\x1B[1m\x7F
  $ vlhost setting get open_guard_desk_qa --json
  {
    "key": "open_guard_desk_qa",
    "schema": "vlhost-setting-1",
    "value": "a\nb\u001b[1m\u007f"
  }
  $ windows reg delete 'HKLM\SOFTWARE\Veltrano\Applications' /f >log
  $ vlhost setting get open_guard_desk_qa
  vlhost: the setting 'open_guard_desk_qa': 0x80004001 E_NOTIMPL: Not implemented. (VloSet.dll is not in the installation's bin folder)
  [1]

A secret comes from a file descriptor, and goes to one.

  $ vlhost secret exists
  name: KRS Protected Storage
  exists: no
  vlhost: there is no secret 'KRS Protected Storage'
  [1]
  $ vlhost secret read
  vlhost: can't read the secret 'KRS Protected Storage': 0x80070002 ERROR_FILE_NOT_FOUND: File not found. (there is none of that name)
  [1]
  $ vlhost secret delete
  vlhost: can't delete the secret 'KRS Protected Storage': 0x80070002 ERROR_FILE_NOT_FOUND: File not found. (there is none of that name)
  [1]
  $ printf 'pässwörd\r\n' | vlhost secret store
  stored: KRS Protected Storage
  $ vlhost secret read
  pässwörd
  $ vlhost secret exists
  name: KRS Protected Storage
  exists: yes
  $ printf 'two\nlines\n' | vlhost secret store --json
  {
    "schema": "vlhost-secret-1",
    "stored": "KRS Protected Storage"
  }
  $ vlhost secret read --json
  two
  lines
  $ printf 'another' | vlhost secret --name other store --quiet
  $ vlhost secret read --name other
  another
  $ vlhost secret delete
  deleted: KRS Protected Storage
  $ vlhost secret exists --json
  {
    "exists": false,
    "name": "KRS Protected Storage",
    "schema": "vlhost-secret-1"
  }
  {"error": "there is no secret 'KRS Protected Storage'","exitStatus": 1,"hint": "","schema": "error-1","tool": "vlhost"}
  [1]
  $ vlhost secret --name other exists --quiet
  $ vlhost secret delete --name other --json
  {
    "deleted": "other",
    "schema": "vlhost-secret-1"
  }
  $ printf '\n' | vlhost secret store
  vlhost: the secret is empty (give it as a line of text)
  [1]
  $ printf '\303(' | vlhost secret store
  vlhost: the secret is no UTF-8 text (convert it first)
  [1]
  $ printf 'a\0b' | vlhost secret store
  vlhost: the secret is no UTF-8 text (convert it first)
  [1]
  $ head -c 1048577 /dev/zero | tr '\0' x | vlhost secret store
  vlhost: the secret is longer than 1 MiB (is it the right file?)
  [1]
  $ vlhost secret store --from 9
  vlhost: can't read the secret from file descriptor 9 (0 is standard input)
  [1]
  $ vlhost secret exists
  name: KRS Protected Storage
  exists: no
  vlhost: there is no secret 'KRS Protected Storage'
  [1]
  $ rm "$drive/windows/system32/VLFPApi.dll" "$place/VLFPApi.dll"
  $ vlhost secret exists
  vlhost: can't use the secret store of VLFPApi.dll: 0x8007007E ERROR_MOD_NOT_FOUND: Module not found. (the library has to be in the system folder or beside this program)
  [1]
