The summary of a backup.

  $ cp "$SAMPLES"/* .
  $ vlbackup info first.vlb
  backup       942 bytes, 4 elements: the current version; templates, quick links, categories and settings are restored
  sha-256      5c5a22657b67ad55652dbc5e8c54c18401df800fe49fe6894d0d000792485ce8
  templates    7 (2 with a full path), 64 bytes
  quick links  2
  categories   2
  settings     document
  verdict      sound, with warnings (errors 0, warnings 2, notes 0)
  $ vlbackup info --json first.vlb
  {
    "schema": "vlbackup-info-1",
    "categories": 2,
    "elementSizes": [
      446,
      247,
      64,
      181
    ],
    "elements": 4,
    "findings": {
      "error": 0,
      "warning": 2,
      "note": 0
    },
    "oldQuicklinks": false,
    "quicklinks": 2,
    "settings": "document",
    "sha256": "5c5a22657b67ad55652dbc5e8c54c18401df800fe49fe6894d0d000792485ce8",
    "size": 942,
    "templateBytes": 64,
    "templates": 7,
    "verdict": "warning",
    "version": "4 elements: the current version; templates, quick links, categories and settings are restored"
  }
  $ vlbackup info - < second.vlb
  backup       880 bytes, 4 elements: the current version; templates, quick links, categories and settings are restored
  sha-256      d1987fc5d6740a38519006933ebf2856de823bdb1e4f2faa3b1dc2b4ff0a1c44
  templates    7 (2 with a full path), 64 bytes
  quick links  2
  categories   2
  settings     document
  verdict      sound, with warnings (errors 0, warnings 2, notes 0)

Each version, by the number of its elements, with forms of the settings and counts of findings.

  $ bytes() { env printf "$(echo "$*" | sed 's/ //g; s/../\\x&/g')"; }
  $ bytes 30 04 30 00 30 00 | vlbackup info -
  backup       6 bytes, 2 elements: an early version; templates and quick links with narrow texts are restored
  sha-256      5177e59e29190ce16da25329a493301d47053ae658e1f596858e3ed2ab4048cc
  templates    0 (0 with a full path), 0 bytes
  quick links  0, old form
  categories   0
  settings     absent
  verdict      sound (errors 0, warnings 0, notes 1)
  $ bytes 30 06 30 00 30 00 30 00 | vlbackup info -
  backup       8 bytes, 3 elements: an earlier version; templates, quick links and categories are restored
  sha-256      05a2319868a522c15ce44e3d805cbf9e6590c82dc711e134bc39c8f1ce703a53
  templates    0 (0 with a full path), 0 bytes
  quick links  0
  categories   0
  settings     absent
  verdict      sound (errors 0, warnings 0, notes 1)
  $ bytes 30 08 30 00 30 00 30 00 30 00 | vlbackup info -
  backup       10 bytes, 4 elements: the current version; templates, quick links, categories and settings are restored
  sha-256      0107357eb946c6de838e9181ba33b7d9020407caa5c8e362794914eaa9580dbd
  templates    0 (0 with a full path), 0 bytes
  quick links  0
  categories   0
  settings     unsupported
  verdict      not sound (errors 1, warnings 0, notes 0)
  $ bytes 30 0D 30 00 30 00 30 00 30 05 02 01 01 1E 00 | vlbackup info -
  backup       15 bytes, 4 elements: the current version; templates, quick links, categories and settings are restored
  sha-256      550f981c53d4683ce6e0c2dfca9724ccdcc789c09de7e790a3c3c023ce9cc37a
  templates    0 (0 with a full path), 0 bytes
  quick links  0
  categories   0
  settings     legacy
  verdict      sound, with warnings (errors 0, warnings 1, notes 1)
  $ bytes 30 0A 30 00 30 00 30 00 30 00 30 00 | vlbackup info --json -
  {
    "schema": "vlbackup-info-1",
    "categories": 0,
    "elementSizes": [
      2,
      2,
      2,
      2,
      2
    ],
    "elements": 5,
    "findings": {
      "error": 0,
      "warning": 0,
      "note": 1
    },
    "oldQuicklinks": false,
    "quicklinks": 0,
    "settings": "absent",
    "sha256": "055c5ac5df8173485849cd2d0d3c189c7e4b95e52838ffaa97f1a364358bc0a8",
    "size": 12,
    "templateBytes": 0,
    "templates": 0,
    "verdict": "sound",
    "version": "5 elements: an unknown version; templates, quick links and categories are restored, the rest is left alone"
  }
  $ bytes 30 02 30 00 | vlbackup info -
  vlbackup: standard input is no whole backup: 1 element where a restore wants at least 2 (copy it again, or save what is intact by 'vlbackup recover')
  [1]
  $ bytes 30 00 | vlbackup info -
  vlbackup: standard input is no whole backup: 0 elements where a restore wants at least 2 (copy it again, or save what is intact by 'vlbackup recover')
  [1]

Bytes after the end are in the checksum, not in the size.

  $ bytes 30 04 30 00 30 00 00 00 | vlbackup info -
  backup       6 bytes, 2 elements: an early version; templates and quick links with narrow texts are restored
  sha-256      47502a3dfb72c86ca47b19c375e829a5e24485bffada5ad3d831ba3ab48f66cc
  templates    0 (0 with a full path), 0 bytes
  quick links  0, old form
  categories   0
  settings     absent
  verdict      sound (errors 0, warnings 0, notes 2)
  $ bytes 30 04 30 00 30 00 00 00 | sha256sum
  47502a3dfb72c86ca47b19c375e829a5e24485bffada5ad3d831ba3ab48f66cc  -
