The checksum beside a backup, in the forms that sha256sum writes.

  $ cp "$SAMPLES"/first.vlb 'my backup.vlb'; zeros=$(printf '%064d' 0)
  $ verify() { vlbackup verify 'my backup.vlb' | grep -v ^warning:.[tq]; }
  $ verify
  sound, with warnings
  $ sha256sum 'my backup.vlb' > 'my backup.vlb.sha256'; cat *.sha256
  5c5a22657b67ad55652dbc5e8c54c18401df800fe49fe6894d0d000792485ce8  my backup.vlb
  $ verify
  sound, with warnings
  $ sum=$(head -c 64 *.sha256)
  $ vlbackup verify --json 'my backup.vlb' | grep checksum
    "checksum": "equal",
  $ checksum() { printf "$@" > 'my backup.vlb.sha256'; verify; }

In capitals, as of a binary file, and as the only line for a file that was renamed.

  $ checksum '%s *my backup.vlb\r\n' $(echo $sum | tr a-f A-F)
  sound, with warnings
  $ checksum '%s  other.vlb\n' $sum
  sound, with warnings
  $ checksum '\\%s  other.vlb\n' $sum
  sound, with warnings

Of several lines it is the one with the name.

  $ checksum '%s  a\n\n%s  my backup.vlb\n' $zeros $sum
  sound, with warnings
  $ checksum '%s  a\n%s  b\n' $zeros $sum
  warning: backup: can't be compared: no checksum of it can be read from my backup.vlb.sha256 (byte 0)
  sound, with warnings
  $ checksum '%s  a\n%s  b\n' $sum $sum
  warning: backup: can't be compared: no checksum of it can be read from my backup.vlb.sha256 (byte 0)
  sound, with warnings
  $ checksum '%s  my backup.vlb\n%s  a\n' $zeros $sum
  error: backup: has another checksum than my backup.vlb.sha256 says; it was changed or damaged since (byte 0)
  not sound
  $ vlbackup verify 'my backup.vlb' > out
  [1]
  $ vlbackup verify --json 'my backup.vlb' | tail -n 11
      {
        "grade": "error",
        "offset": 0,
        "path": "",
        "what": "has another checksum than my backup.vlb.sha256 says; it was changed or damaged since",
        "where": "backup"
      }
    ],
    "checksum": "different",
    "verdict": "error"
  }

What is none: too short, too long, no hexadecimal, without a name, nothing.

  $ checksum '%s\n' $sum
  warning: backup: can't be compared: no checksum of it can be read from my backup.vlb.sha256 (byte 0)
  sound, with warnings
  $ checksum '%s  my backup.vlb\n' ${sum}0
  warning: backup: can't be compared: no checksum of it can be read from my backup.vlb.sha256 (byte 0)
  sound, with warnings
  $ checksum '%s  my backup.vlb\n' ${sum%?}
  warning: backup: can't be compared: no checksum of it can be read from my backup.vlb.sha256 (byte 0)
  sound, with warnings
  $ checksum 'x%s  my backup.vlb\n' ${sum%?}
  warning: backup: can't be compared: no checksum of it can be read from my backup.vlb.sha256 (byte 0)
  sound, with warnings
  $ checksum ''
  warning: backup: can't be compared: no checksum of it can be read from my backup.vlb.sha256 (byte 0)
  sound, with warnings
  $ rm *.sha256; mkdir 'my backup.vlb.sha256'
  $ vlbackup verify 'my backup.vlb' --strict --json | tail -n 11
      {
        "grade": "warning",
        "offset": 0,
        "path": "",
        "what": "can't be compared: no checksum of it can be read from my backup.vlb.sha256",
        "where": "backup"
      }
    ],
    "checksum": "unreadable",
    "verdict": "warning"
  }
  $ rmdir *.sha256; vlbackup verify - --json < 'my backup.vlb' | grep checksum
    "checksum": "absent",
  $ echo $zeros > -.sha256; vlbackup verify - --json < 'my backup.vlb' | grep checksum
    "checksum": "absent",
