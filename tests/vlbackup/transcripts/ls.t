What is in a backup, as lists.

  $ vlbackup ls $SAMPLES/first.vlb
  templates
           7  alien|C:\\Shared Logons\\\xc3\xa9quipe.vlm (esc)
           7  alien|C:\users\anna\AppData\Roaming\Veltrano\KRS\Cache\cached.vlm
          15  bank.vlm
          15  Poststelle K\xc3\xb6ln.vlm (esc)
          15  \xe6\x97\xa5\xe6\x9c\xac\xe8\xaa\x9e\xe3\x83\xa1\xe3\x83\xbc\xe3\x83\xab.vlm (esc)
           5  updata.vls
           0  updata_temp.vls
  quick links
    Meine Bank -> https://bank.example/login?x=1  (bank.vlm, profile 1, id m-1)
    \xe3\x83\x8e\xe3\x83\xbc\xe3\x83\x88 -> C:\\windows\\notepad.exe  (Poststelle K\xc3\xb6ln.vlm, profile 2, id m-2, without credentials) (esc)
  categories
    Home = mail
    Work = bank;post
  settings (document)
    {"settings":{"current":{"open_guard_desk_qa":"Ctrl+Alt+71","path_dontpromptlist_filename":"https://never.example/\r\n","show_training_prompt":false,"useGrabbingCreds":true}}}
  $ vlbackup ls none.vlb
  vlbackup: none.vlb does not exist (is the name spelt right?)
  [1]
