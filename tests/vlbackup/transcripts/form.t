The verdict of verify on the form of a backup. The fields of a backup are made as tags, lengths and contents.

  $ tlv() {
  >   tag=$1; shift; hex=$(echo "$*" | tr -d ' \n'); size=$((${#hex} / 2))
  >   if [ $size -lt 128 ]; then printf '%s%02x%s' $tag $size $hex; else printf '%s81%02x%s' $tag $size $hex; fi
  > }
  $ seq() { tlv 30 "$@"; }
  $ wide() { tlv 1e "$(printf "$1" | od -An -tx1 | sed 's/ /00/g')" 0000; }
  $ narrow() { tlv 04 "$(printf "$1" | od -An -tx1)" 00; }
  $ judge() { env printf "$(seq "$@" | sed 's/../\\x&/g')" | vlbackup verify -; }
  $ none=$(seq); one=$(tlv 02 01); content=$(tlv 04 78); pair=$(seq $(wide a.vlm) $content)
  $ document=$(seq $(narrow {}))

An export writes four elements; another number makes another version.

  $ judge $(seq $pair) $none $none $document
  sound
  $ judge $(seq $pair) $none $none
  note: backup: 3 elements: an earlier version; templates, quick links and categories are restored (byte 0)
  sound
  $ judge $(seq $pair) $none
  note: backup: 2 elements: an early version; templates and quick links with narrow texts are restored (byte 0)
  sound
  $ judge $none $none $none $none $none
  note: backup: 5 elements: an unknown version; templates, quick links and categories are restored, the rest is left alone (byte 0)
  sound
  $ judge $none
  vlbackup: standard input is no whole backup: 1 element where a restore wants at least 2 (copy it again, or save what is intact by 'vlbackup recover')
  [1]
  $ (cat "$SAMPLES"/first.vlb; printf x) | vlbackup verify - | grep byte.after
  note: backup: 1 byte after its end, which a restore ignores (byte 942)
  $ judge $one $content $(wide x) $none
  error: templates: not a sequence (byte 2, element 0)
  error: quicklinks: not a sequence (byte 5, element 1)
  error: categories: not a sequence (byte 8, element 2)
  error: settings: no elements; a restore leaves the settings as they are (byte 14, element 3)
  not sound
  [1]

Stored files.

  $ judge $(seq $one $pair $none) $none $none $document
  error: templates[0]: not a sequence (byte 4, element 0/0)
  error: templates[2]: 0 elements in a pair (byte 26, element 0/2)
  error: templates[2] name: not a wide text; a restore takes its encoded bytes for one (byte 26, element 0/2/0)
  error: templates[2]: no name; a restore writes no file (byte 26, element 0/2)
  not sound
  [1]
  $ judge $(seq $(seq $(wide a.vlm)) $(seq $(wide b.vlm) $content $one) $(seq $(wide c.vlm) $one)) $none $none $document
  error: templates[0]: 1 element in a pair (byte 4, element 0/0)
  error: templates[1]: 3 elements in a pair (byte 20, element 0/1)
  error: templates[2]: its content isn't an octet string; a restore writes the encoded bytes (byte 42, element 0/2)
  warning: templates[0]: "a.vlm" is empty, and a restore empties the file (byte 4, element 0/0)
  not sound
  [1]
  $ judge $(seq $(seq $(wide '') $content) $(seq $one $content) $(seq $content $content)) $none $none $document
  error: templates[0]: no name; a restore writes no file (byte 4, element 0/0)
  error: templates[1] name: not a wide text; a restore takes its encoded bytes for one (byte 15, element 0/1/0)
  error: templates[2] name: not a wide text; a restore takes its encoded bytes for one (byte 23, element 0/2/0)
  error: templates[1]: "Ă" is no template (byte 13, element 0/1)
  error: templates[2]: "Ą" is no template (byte 21, element 0/2)
  not sound
  [1]

Texts: another kind, without the zero, with more than one, and with more after it.

  $ text() { judge $(seq $(seq "$1" $content)) $none $none $document; }
  $ text $(tlv 0c 61 2e 76 6c 6d)
  note: templates[0] name: a text of another kind than exports write (byte 6, element 0/0/0)
  sound
  $ text $(tlv 1e 0061 002e 0076 006c 006d)
  warning: templates[0] name: a text that doesn't end with its one terminating zero (byte 6, element 0/0/0)
  sound, with warnings
  $ text $(tlv 1e 0061 002e 0076 006c 006d 0000 0000)
  warning: templates[0] name: a text that doesn't end with its one terminating zero (byte 6, element 0/0/0)
  sound, with warnings
  $ text $(tlv 1e 0061 002e 0076 006c 006d 0000 0062)
  error: templates[0] name: a text with more than a restore takes of it (byte 6, element 0/0/0)
  not sound
  [1]
  $ text $(tlv 1e 0061 002e 0076 006c 006d 0000 00)
  error: templates[0] name: a text with more than a restore takes of it (byte 6, element 0/0/0)
  not sound
  [1]
  $ text $(tlv 1e 0061 002e 0076 006c 006d 0000 62)
  error: templates[0] name: a text with more than a restore takes of it (byte 6, element 0/0/0)
  not sound
  [1]

Quick links.

  $ id=$(wide i); zero=$(tlv 02 00); a=$(wide a.vlm)
  $ link() { seq $(wide n) $(wide t) $a "$@"; }
  $ judge $(seq $pair) $(seq $(link $one $id $one) $(link $zero $id)) $none $document
  note: quicklinks[1]: no wocred, as in an earlier version; a restore reads 0 (byte 65, element 1/1)
  sound
  $ judge $(seq $pair) $(seq $one $none $(link $one) $(link $one $id $one $one)) $none $document
  error: quicklinks[0]: not a sequence (byte 25, element 1/0)
  error: quicklinks[1]: 0 elements; a restore drops the record (byte 28, element 1/1)
  error: quicklinks[2]: 4 elements; a restore drops the record (byte 30, element 1/2)
  error: quicklinks[3]: 7 elements; a restore drops the record (byte 61, element 1/3)
  not sound
  [1]
  $ judge $(seq $pair) $(seq $(link $(tlv 02 02) $id $(tlv 02 02)) $(link $id $id $id) $(link $(tlv 02 0000000001) $(tlv 04 69) $(tlv 02))) $none $document
  error: quicklinks[0]: wocred is neither 0 nor 1; a restore reads 0 (byte 26, element 1/0)
  error: quicklinks[1] profile: not an integer; a restore reads 0 (byte 94, element 1/1/3)
  error: quicklinks[1] wocred: not an integer; a restore reads 0 (byte 106, element 1/1/5)
  error: quicklinks[2] profile: an integer of 5 bytes; a restore reads 0 (byte 140, element 1/2/3)
  error: quicklinks[2] manifestid: not a wide text; a restore takes its encoded bytes for one (byte 147, element 1/2/4)
  error: quicklinks[2] wocred: an integer of 0 bytes; a restore reads 0 (byte 150, element 1/2/5)
  error: quicklinks[2]: "n" has the template and profile of quicklinks[1], and a restore keeps one (byte 112, element 1/2)
  not sound
  [1]
  $ judge $(seq $pair) $(seq $none $(seq $(wide n) $(wide x.exe) $a $one $id $one)) $none $document
  error: quicklinks[0]: 0 elements; a restore drops the record (byte 25, element 1/0)
  warning: quicklinks[1]: "n" opens a program: x.exe (byte 27, element 1/1)
  not sound
  [1]
  $ judge $(seq $pair) $(seq $(seq $(narrow n) $(tlv 04 74) $(narrow a.vlm) $one $(wide i)))
  note: backup: 2 elements: an early version; templates and quick links with narrow texts are restored (byte 0)
  warning: quicklinks[0] target: a text that doesn't end with its one terminating zero (byte 31, element 1/0/1)
  error: quicklinks[0] manifestid: not a narrow text; a restore takes its encoded bytes for one (byte 45, element 1/0/4)
  warning: quicklinks[0]: "n" hides control characters or direction marks in the id (byte 25, element 1/0)
  not sound
  [1]
  $ judge $(seq $pair) $(seq $(seq $(tlv 04 6e 00 00) $(tlv 04 74 00 78) $(narrow a.vlm) $one $(narrow i) $one))
  note: backup: 2 elements: an early version; templates and quick links with narrow texts are restored (byte 0)
  warning: quicklinks[0] name: a text that doesn't end with its one terminating zero (byte 27, element 1/0/0)
  error: quicklinks[0] target: a text with more than a restore takes of it (byte 32, element 1/0/1)
  not sound
  [1]

Categories.

  $ judge $none $none $(seq $none $one $(seq $a) $(seq $id $id $id) $(seq $one $one) $(seq $id $(tlv 1e 0061))) $document
  error: categories[0]: 0 elements in a pair (byte 8, element 2/0)
  error: categories[1]: not a sequence (byte 10, element 2/1)
  error: categories[2]: 1 element in a pair (byte 13, element 2/2)
  error: categories[3]: 3 elements in a pair (byte 29, element 2/3)
  error: categories[4] name: not a wide text; a restore takes its encoded bytes for one (byte 51, element 2/4/0)
  error: categories[4] text: not a wide text; a restore takes its encoded bytes for one (byte 54, element 2/4/1)
  warning: categories[5] text: a text that doesn't end with its one terminating zero (byte 65, element 2/5/1)
  error: categories[1]: "" is the same category as categories[0], and a restore keeps one (byte 10, element 2/1)
  error: categories[5]: "i" is the same category as categories[3], and a restore keeps one (byte 57, element 2/5)
  not sound
  [1]

Settings.

  $ settings() { judge $none $none $none "$@"; }
  $ settings $none
  error: settings: no elements; a restore leaves the settings as they are (byte 8, element 3)
  not sound
  [1]
  $ settings $one
  error: settings: not a sequence (byte 8, element 3)
  error: settings: no elements; a restore leaves the settings as they are (byte 8, element 3)
  not sound
  [1]
  $ settings $(seq $one)
  error: settings document: not a narrow text; a restore takes its encoded bytes for one (byte 10, element 3/0)
  error: settings: the document isn't JSON; a restore leaves the settings as they are (byte 8, element 3)
  not sound
  [1]
  $ settings $(seq $(tlv 04 7b7d))
  warning: settings document: a text that doesn't end with its one terminating zero (byte 10, element 3/0)
  sound, with warnings
  $ settings $(seq $(tlv 04 7b7d 0000))
  warning: settings document: a text that doesn't end with its one terminating zero (byte 10, element 3/0)
  sound, with warnings
  $ settings $(seq $(tlv 04 7b7d 0020))
  error: settings document: a text with more than a restore takes of it (byte 10, element 3/0)
  not sound
  [1]
  $ settings $(seq $one $id)
  note: settings: 2 elements without a document, as in an earlier version (byte 8, element 3)
  sound
  $ settings $(seq $one $id $content)
  note: settings: 3 elements without a document, as in an earlier version (byte 8, element 3)
  sound
  $ settings $(seq $id $one $content $content)
  error: settings prompt: not an integer; a restore reads 0 (byte 10, element 3/0)
  error: settings hot key: not a wide text; a restore takes its encoded bytes for one (byte 16, element 3/1)
  note: settings: 4 elements without a document, as in an earlier version (byte 8, element 3)
  not sound
  [1]

A backup that a restore refuses whole.

  $ judge $none 30
  vlbackup: standard input is no whole backup: the element at byte 4 is damaged (copy it again, or save what is intact by 'vlbackup recover')
  [1]
  $ judge 3005 $none
  vlbackup: standard input is no whole backup: the element at byte 2 is damaged (copy it again, or save what is intact by 'vlbackup recover')
  [1]
  $ judge 3080 $none
  vlbackup: standard input is no whole backup: the element at byte 2 is damaged (copy it again, or save what is intact by 'vlbackup recover')
  [1]
  $ judge 1f
  vlbackup: standard input is no whole backup: the element at byte 2 is damaged (copy it again, or save what is intact by 'vlbackup recover')
  [1]
