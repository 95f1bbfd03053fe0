Single operations: their status, and all that they return.

  $ . "$TESTS/support/product.sh"
  $ vlhost call get-property 1
  status:
    name: S_OK
    number: 0x00000000
    text: Success.
  failed: no
  value:
    type: VT_BSTR
    value: Veltrano Personal Security Password Manager
  $ vlhost call get-property 12345
  status:
    name: ERROR_UNKNOWN_PROPERTY
    number: 0x80070648
    text: Unknown property.
  failed: yes
  value:
    type: VT_EMPTY
  vlhost: the operation failed: 0x80070648 ERROR_UNKNOWN_PROPERTY
  [1]
  $ vlhost call get-property 101 --notification 1
  status:
    name: S_OK
    number: 0x00000000
    text: Success.
  failed: no
  value:
    type: VT_BSTR
    value: Password Manager isn't set up yet. Open Veltrano Personal Security to store your first logon.
  $ vlhost call get-property 101 --notification 2
  vlhost: there are 1 notifications (the first is number 1)
  [1]
  $ vlhost call get-property 4 --json
  {
    "failed": false,
    "schema": "vlhost-call-1",
    "status": 
    {
      "name": "S_OK",
      "number": "0x00000000",
      "text": "Success."
    },
    "value": 
    {
      "type": "VT_BSTR",
      "value": "Stores your logons safely and fills them in for you. Backs up and restores your logons, quick links and settings."
    }
  }
  $ vlhost call get-property 100 --json
  {
    "failed": false,
    "schema": "vlhost-call-1",
    "status": 
    {
      "name": "S_OK",
      "number": "0x00000000",
      "text": "Success."
    },
    "value": 
    {
      "type": "VT_I4",
      "value": 2
    }
  }
  $ vlhost call get-property 103
  status:
    name: S_OK
    number: 0x00000000
    text: Success.
  failed: no
  value:
    type: VT_ARRAY | VT_VARIANT
    value:
      lower: 0
      upper: 0
      elements:
        -
          type: VT_UNKNOWN
          value: an object with IVLKTElementUI
  $ vlhost call get-status
  number: 0
  status:
    name: S_OK
    number: 0x00000000
    text: Success.
  failed: no
  value:
    type: VT_BSTR
    value: Password Manager isn't set up yet. Open Veltrano Personal Security to store your first logon.
  $ vlhost call get-info 0
  status:
    name: S_OK
    number: 0x00000000
    text: Success.
  failed: no
  value:
    type: VT_BSTR
    value: {42F9948B-B690-4325-A073-63A8BF31FF32}
  $ vlhost call get-info 7
  status:
    name: ERROR_UNKNOWN_PROPERTY
    number: 0x80070648
    text: Unknown property.
  failed: yes
  value:
    type: VT_EMPTY
  vlhost: the operation failed: 0x80070648 ERROR_UNKNOWN_PROPERTY
  [1]
  $ vlhost call disable-local 1
  status:
    name: S_OK
    number: 0x00000000
    text: Success.
  failed: no
  $ vlhost call disable-status --json
  {
    "failed": false,
    "number": 3,
    "schema": "vlhost-call-1",
    "status": 
    {
      "name": "S_OK",
      "number": "0x00000000",
      "text": "Success."
    }
  }
  $ vlhost call disable-local 0 >log
  $ vlhost call subscribe
  status:
    name: S_OK
    number: 0x00000000
    text: Success.
  failed: no
  $ vlhost call add-pages
  status:
    name: S_OK
    number: 0x00000000
    text: Success.
  failed: no

Values of each type.

  $ vlhost call set-property 1 --type bool --value maybe
  vlhost: the value is neither true nor false (give --value true, or another --type)
  [2]
  $ vlhost call set-property 1 --type number --value x
  vlhost: 'x' is no number
  [2]
  $ vlhost call set-property 1 --type date
  vlhost: --type: "date" is none of bool, number, text, empty, null (see vlhost call set-property --help)
  [2]
  $ vlhost call set-property 1 --notification 1 --type bool --value false
  status:
    name: ERROR_UNKNOWN_PROPERTY
    number: 0x80070648
    text: Unknown property.
  failed: yes
  vlhost: the operation failed: 0x80070648 ERROR_UNKNOWN_PROPERTY
  [1]
  $ vlhost call set-property 1 --notification 1 --type number --value 1
  status:
    name: ERROR_UNKNOWN_PROPERTY
    number: 0x80070648
    text: Unknown property.
  failed: yes
  vlhost: the operation failed: 0x80070648 ERROR_UNKNOWN_PROPERTY
  [1]
  $ vlhost call set-property 1 --notification 1 --type null
  status:
    name: ERROR_UNKNOWN_PROPERTY
    number: 0x80070648
    text: Unknown property.
  failed: yes
  vlhost: the operation failed: 0x80070648 ERROR_UNKNOWN_PROPERTY
  [1]
  $ vlhost call set-property 2 --notification 1 --type text --value x
  status:
    name: S_OK
    number: 0x00000000
    text: Success.
  failed: no
  $ vlhost call set-property 99 --notification 1 --type empty
  status:
    name: ERROR_UNKNOWN_PROPERTY
    number: 0x80070648
    text: Unknown property.
  failed: yes
  vlhost: the operation failed: 0x80070648 ERROR_UNKNOWN_PROPERTY
  [1]

Backups as they are, without check and safety copy.

  $ vlhost call get-storage-data
  status:
    name: S_OK
    number: 0x00000000
    text: Success.
  failed: no
  secretNames:
    type: VT_EMPTY
  storageData:
    type: VT_EMPTY
  $ vlhost call set-storage-data first.vlb
  status:
    name: S_OK
    number: 0x00000000
    text: Success.
  failed: no
  $ ls "$drive/Logons"
  Poststelle Köln.vlm
  bank.vlm
  quicklinks.txt
  updata.vls
  updata_temp.vls
  日本語メール.vlm
  $ rm "$drive"/Logons/*
  $ vlhost call set-storage-data2 7 first.vlb --json
  {
    "failed": false,
    "schema": "vlhost-call-1",
    "status": 
    {
      "name": "S_OK",
      "number": "0x00000000",
      "text": "Success."
    }
  }
  $ vlhost call set-plugin-data second.vlb
  status:
    name: S_OK
    number: 0x00000000
    text: Success.
  failed: no
  $ ls "$drive/Logons"
  Poststelle Köln.vlm
  bank.vlm
  quicklinks.txt
  updata.vls
  updata_temp.vls
  日本語メール.vlm
  $ vlhost call get-storage-data | cut -c 1-80
  status:
    name: S_OK
    number: 0x00000000
    text: Success.
  failed: no
  secretNames:
    type: VT_EMPTY
  storageData:
    type: VT_ARRAY | VT_UI1
    value:
      bytes: 308202873081d630251e1200620061006e006b002e0076006c006d0000040f74656d7
      lower: 0
      upper: 650
  $ printf x | vlhost call set-plugin-data second.vlb --secrets - | sed -n 1,3p
  status:
    name: S_OK
    number: 0x00000000
  $ vlhost call set-plugin-data second.vlb --secrets none.der
  vlhost: can't open none.der: File not found. (is the name spelt right?)
  [1]
  $ echo no backup | vlhost call set-storage-data -
  status:
    name: E_UNEXPECTED
    number: 0x8000FFFF
    text: error 0x8000FFFF
  failed: yes
  vlhost: the operation failed: 0x8000FFFF E_UNEXPECTED
  [1]
  $ vlhost call set-storage-data none.vlb
  vlhost: none.vlb does not exist (is the name spelt right?)
  [1]
