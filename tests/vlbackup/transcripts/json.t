A backup as JSON, and back.

  $ cp "$SAMPLES"/first.vlb .
  $ vlbackup to-json first.vlb first.json
  first.json: 1467 bytes
  $ cat first.json
  {
    "schema": "vlbackup-backup-1",
    "templates": [
      {
        "content": "c2hhcmVkCg==",
        "name": "alien|C:\\Shared Logons\\équipe.vlm"
      },
      {
        "content": "Y2FjaGVkCg==",
        "name": "alien|C:\\users\\anna\\AppData\\Roaming\\Veltrano\\KRS\\Cache\\cached.vlm"
      },
      {
        "content": "dGVtcGxhdGU6IGJhbmsK",
        "name": "bank.vlm"
      },
      {
        "content": "dGVtcGxhdGU6IHBvc3QK",
        "name": "Poststelle Köln.vlm"
      },
      {
        "content": "dGVtcGxhdGU6IG1haWwK",
        "name": "日本語メール.vlm"
      },
      {
        "content": "c3RhdGU=",
        "name": "updata.vls"
      },
      {
        "content": "",
        "name": "updata_temp.vls"
      }
    ],
    "quicklinks": [
      {
        "manifest": "bank.vlm",
        "manifestid": "m-1",
        "name": "Meine Bank",
        "profile": 1,
        "target": "https://bank.example/login?x=1",
        "wocred": false
      },
      {
        "manifest": "Poststelle Köln.vlm",
        "manifestid": "m-2",
        "name": "ノート",
        "profile": 2,
        "target": "C:\\windows\\notepad.exe",
        "wocred": true
      }
    ],
    "categories": [
      {
        "name": "Home",
        "text": "mail"
      },
      {
        "name": "Work",
        "text": "bank;post"
      }
    ],
    "settings": {
      "document": "{\"settings\":{\"current\":{\"open_guard_desk_qa\":\"Ctrl+Alt+71\",\"path_dontpromptlist_filename\":\"https://never.example/\\r\\n\",\"show_training_prompt\":false,\"useGrabbingCreds\":true}}}"
    }
  }
  $ vlbackup from-json first.json back.vlb; cmp first.vlb back.vlb
  back.vlb: 942 bytes
  $ vlbackup to-json first.vlb - | vlbackup from-json - - | cmp - first.vlb
  $ vlbackup from-json first.json back.vlb --json --force
  {
    "schema": "vlbackup-from-json-1",
    "path": "back.vlb",
    "size": 942
  }

Every other form, and what is in no form.

  $ tlv() { tag=$1; shift; hex=$(echo "$*" | tr -d ' \n'); printf '%s%02x%s' $tag $((${#hex} / 2)) $hex; }
  $ seq() { tlv 30 "$@"; }
  $ wide() { tlv 1e "$(printf "$1" | od -An -tx1 | sed 's/ /00/g')" 0000; }
  $ narrow() { tlv 04 "$(printf "$1" | od -An -tx1)" 00; }
  $ again() {
  >   env printf "$(seq "$@" | sed 's/../\\x&/g')" > backup.vlb
  >   vlbackup to-json backup.vlb backup.json --quiet --force; sed 1,2d backup.json
  >   vlbackup from-json backup.json - | cmp - backup.vlb
  > }
  $ none=$(seq); one=$(tlv 02 01); id=$(wide i)
  $ again $none $(seq $(seq $(narrow n) $(narrow 'g\303\266') $(narrow m) $(tlv 02 00ff) $(narrow i)) \
  >   $(seq $(narrow n) $(tlv 04 ff00) $(narrow m) $one $(narrow i)) $(seq $id $id $id $one $id $one))
    "templates": [],
    "quicklinks": [
      {
        "manifest": "m",
        "manifestid": "i",
        "name": "n",
        "profile": 255,
        "target": "gö"
      },
      {
        "der": "MBMEAm4ABAL/AAQCbQACAQEEAmkA"
      },
      {
        "der": "MB4eBABpAAAeBABpAAAeBABpAAACAQEeBABpAAACAQE="
      }
    ]
  }
  $ again $none $(seq $(seq $id $id $id $one $id) $(seq $id $id $id $one $id $(tlv 02 02)) $(seq $id $id $id $one) \
  >   $(seq $id $id $id $id $id $one)) $none
    "templates": [],
    "quicklinks": [
      {
        "manifest": "i",
        "manifestid": "i",
        "name": "i",
        "profile": 1,
        "target": "i"
      },
      {
        "der": "MB4eBABpAAAeBABpAAAeBABpAAACAQEeBABpAAACAQI="
      },
      {
        "der": "MBUeBABpAAAeBABpAAAeBABpAAACAQE="
      },
      {
        "der": "MCEeBABpAAAeBABpAAAeBABpAAAeBABpAAAeBABpAAACAQE="
      }
    ],
    "categories": []
  }
  $ again $(seq $(seq $id 048100) $(seq $id $(tlv 04 78) $one) $(seq $(tlv 1e 0061) $none) $(seq $id $one) 3081021e00) $none
    "templates": [
      {
        "der": "MAkeBABpAAAEgQA="
      },
      {
        "der": "MAweBABpAAAEAXgCAQE="
      },
      {
        "der": "MAYeAgBhMAA="
      },
      {
        "der": "MAkeBABpAAACAQE="
      },
      {
        "der": "MIECHgA="
      }
    ],
    "quicklinks": []
  }
  $ again $none $none $(seq $(seq $id $id) $(seq $id $(tlv 1e d800 0000)) $one) $none
    "templates": [],
    "quicklinks": [],
    "categories": [
      {
        "name": "i",
        "text": "i"
      },
      {
        "der": "MAweBABpAAAeBNgAAAA="
      },
      {
        "der": "AgEB"
      }
    ],
    "settings": {
      "der": "MAA="
    }
  }
  $ again $none $none $none $(seq $one $id $(tlv 02 05))
    "templates": [],
    "quicklinks": [],
    "categories": [],
    "settings": {
      "dontPromptList": "AgEF",
      "hotKey": "i",
      "showPrompt": 1
    }
  }
  $ again $none $none $none $(seq $(tlv 02 0001) $id)
    "templates": [],
    "quicklinks": [],
    "categories": [],
    "settings": {
      "der": "MAoCAgABHgQAaQAA"
    }
  }
  $ again $none 308100 $(tlv 04) $none $one
    "templates": [],
    "quicklinks": {
      "der": "MIEA"
    },
    "categories": {
      "der": "BAA="
    },
    "more": [
      {
        "der": "MAA="
      },
      {
        "der": "AgEB"
      }
    ]
  }

The outer length is written in its shortest form, and bytes after the end are left out.

  $ env printf '\x30\x82\x00\x04\x30\x00\x30\x00\xFF' | vlbackup to-json - - | vlbackup from-json - - | od -An -tx1
   30 04 30 00 30 00

What is wrong in a document is named with its place.

  $ wrong() { printf '{"schema": "vlbackup-backup-1", %s}' "$1" | vlbackup from-json - - 2>&1 | sed 's/.*input: //'; }
  $ wrong '"templates": []'
  the document lacks its member quicklinks (vlbackup to-json writes such a document)
  $ wrong '"templates": [], "quicklinks": [], "x": 1'
  the document has an unknown member x (vlbackup to-json writes such a document)
  $ wrong '"templates": {}, "quicklinks": []'
  templates must be a list (vlbackup to-json writes such a document)
  $ wrong '"templates": [1], "quicklinks": []'
  templates[0] must be an object (vlbackup to-json writes such a document)
  $ wrong '"templates": [{"nam": "a"}], "quicklinks": []'
  templates[0] lacks its member name (vlbackup to-json writes such a document)
  $ wrong '"templates": [{"name": "a", "content": "", "size": 0}], "quicklinks": []'
  templates[0] has an unknown member size (vlbackup to-json writes such a document)
  $ wrong '"templates": [{"name": 1, "content": ""}], "quicklinks": []'
  templates[0].name must be a string (vlbackup to-json writes such a document)
  $ wrong '"templates": [{"name": "a\u0000b", "content": ""}], "quicklinks": []'
  templates[0].name has a character U+0000, which ends a text (vlbackup to-json writes such a document)
  $ wrong '"templates": [{"name": "\ud800", "content": ""}], "quicklinks": []'
  not JSON: Line 1, Column 56  additional six characters expected to parse unicode surrogate pair.
  $ wrong '"templates": [{"name": "a", "content": 1}], "quicklinks": []'
  templates[0].content must be a string (vlbackup to-json writes such a document)
  $ for text in '!' eA eA= eA==x eA=A 'e A=' 'eA==='
  > do wrong "\"templates\": [{\"name\": \"a\", \"content\": \"$text\"}], \"quicklinks\": []"; done | uniq -c
        7 templates[0].content is no Base64 with its padding (vlbackup to-json writes such a document)
  $ link() { wrong '"templates": [], "quicklinks": [{"name": "n", "target": "t", "manifest": "m", "manifestid": "i", '"$1"'}]'; }
  $ link '"profile": -1'
  quicklinks[0].profile must be a number from 0 to 4294967295 (vlbackup to-json writes such a document)
  $ link '"profile": 4294967296'
  quicklinks[0].profile must be a number from 0 to 4294967295 (vlbackup to-json writes such a document)
  $ link '"profile": 1.5'
  quicklinks[0].profile must be a number from 0 to 4294967295 (vlbackup to-json writes such a document)
  $ link '"profile": "1"'
  quicklinks[0].profile must be a number from 0 to 4294967295 (vlbackup to-json writes such a document)
  $ link '"profile": 1, "wocred": 1'
  quicklinks[0].wocred must be true or false (vlbackup to-json writes such a document)
  $ link '"wocred": true'
  quicklinks[0] lacks its member profile (vlbackup to-json writes such a document)
  $ wrong '"templates": [], "quicklinks": [{"der": "BAEx"}, {"der": "BAEy/w=="}]'
  quicklinks[1].der is not one element (vlbackup to-json writes such a document)
  $ wrong '"templates": [], "quicklinks": [{"der": "BAIx"}]'
  quicklinks[0].der is not one element (vlbackup to-json writes such a document)
  $ wrong '"templates": [], "quicklinks": [{"der": "BAEx", "name": ""}]'
  quicklinks[0] has an unknown member name (vlbackup to-json writes such a document)
  $ more() { wrong '"templates": [], "quicklinks": [], '"$1"; }
  $ more '"settings": {"document": ""}'
  the document lacks its member categories (vlbackup to-json writes such a document)
  $ more '"categories": [], "settings": {"document": "", "hotKey": ""}'
  settings has an unknown member hotKey (vlbackup to-json writes such a document)
  $ more '"categories": [], "settings": {"hotKey": ""}'
  settings lacks its member showPrompt (vlbackup to-json writes such a document)
  $ more '"categories": [], "settings": 1'
  settings must be an object (vlbackup to-json writes such a document)
  $ more '"categories": [{"name": "c"}]'
  categories[0] lacks its member text (vlbackup to-json writes such a document)
  $ more '"categories": [], "settings": {"document": ""}, "more": []'
  the document can't have both settings and more (vlbackup to-json writes such a document)
  $ more '"categories": [], "more": [{"der": "MAA="}]'
  more must be a list of two or more elements (vlbackup to-json writes such a document)
  $ more '"categories": [], "more": {}'
  more must be a list of two or more elements (vlbackup to-json writes such a document)
  $ more '"categories": [], "more": [{"der": "MAA="}, {}]'
  more[1] lacks its member der (vlbackup to-json writes such a document)
  $ printf '{"schema": "vlbackup-backup-2"}' | vlbackup from-json - out
  vlbackup: standard input: schema must be "vlbackup-backup-1" (vlbackup to-json writes such a document)
  [1]
  $ printf '{}' | vlbackup from-json - out
  vlbackup: standard input: schema must be "vlbackup-backup-1" (vlbackup to-json writes such a document)
  [1]
  $ printf '{"a": 1,, }' > wrong.json; vlbackup from-json wrong.json out --json
  {"error": "wrong.json: not JSON: Line 1, Column 9  Missing '}' or object member name","exitStatus": 1,"hint": "","schema": "error-1","tool": "vlbackup"}
  [1]
  $ printf '{"a": "x' | vlbackup from-json - out
  vlbackup: standard input: not JSON: Line 1, Column 7  Syntax error: value, object or array expected.
  [1]
  $ printf '{"a": 1} x' | vlbackup from-json - out
  vlbackup: standard input: not JSON: Line 1, Column 10  Extra non-whitespace after JSON value.
  [1]
  $ printf '[]' | vlbackup from-json - out
  vlbackup: standard input: the document must be an object (vlbackup to-json writes such a document)
  [1]
  $ vlbackup from-json none.json out
  vlbackup: none.json does not exist (is the name spelt right?)
  [1]
  $ (printf '{"a":'; printf '[%.0s' $(env seq 2000)) | vlbackup from-json - out
  vlbackup: standard input: not JSON: Exceeded stackLimit in readValue().
  [1]
