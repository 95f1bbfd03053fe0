How the program is asked, and what it says to what it does not understand.

  $ vlbackup --help | grep .
  Looks into backups of the password manager. A backup named - is read from standard input.
  Usage: vlbackup [OPTIONS] SUBCOMMAND
  Options:
    -h,--help                   Print this help message and exit
    --json                      Print JSON
    --color TEXT:{auto,always,never}*auto* (glob)
                                When to use colours; auto: on a terminal, unless NO_COLOR is set
    -q,--quiet                  Print only what was asked for, and failures
    -V,--version                Print the versions of it and its formats
  Subcommands:
    ls                          List everything in it, or what has one of the names
    info                        Show its version, counts, sizes, checksum and verdict
    verify                      Check its form, what it would restore, and its checksum; exit status 1 for an error
    find                        Find a text in its names, links, categories, settings and file contents
    cat                         Write the bytes of a stored file, or the settings document
    extract                     Write its stored files below a folder; exit status 1 if one can't be
    diff                        Compare it with another, or with the profile; exit status 1 if they differ
    merge                       Make a new backup of all that is in two; exit status 1 if they differ in what both have
    recover                     Make a new backup of what is intact in a damaged one; exit status 1 if some is lost
    redact                      Make a copy of the same shape without anything personal, for a support case
    to-json                     Write all of it as JSON, to edit or to process
    from-json                   Make a backup from the JSON that to-json writes
    hex                         Show its bytes, element by element
  $ vlbackup merge --help
  Make a new backup of all that is in two; exit status 1 if they differ in what both have
  Usage: vlbackup merge [OPTIONS] backup other
  
  Positionals:
    backup TEXT REQUIRED        The backup
    other TEXT REQUIRED         The second backup
  
  Options:
    -h,--help                   Print this help message and exit
    -o,--output TEXT            The file to write; - is standard output
    --prefer TEXT:{first,second}
                                Which one's to take of what both have differently
    --dry-run                   Write nothing, only show what it would be
    --force                     Replace the file if it exists
  
  Example:
    vlbackup merge --prefer first first.vlb second.vlb -o both.vlb
  Options of every command: see vlbackup --help
  $ vlbackup help find
  Find a text in its names, links, categories, settings and file contents
  Usage: vlbackup find [OPTIONS] backup text
  
  Positionals:
    backup TEXT REQUIRED        The backup
    text TEXT REQUIRED          What to look for
  
  Options:
    -h,--help                   Print this help message and exit
    -i,--ignore-case            Take a letter from A to Z for its small one
  
  Example:
    vlbackup find -i first.vlb bank.example
  Options of every command: see vlbackup --help
  $ vlbackup help | head -n 2
  Looks into backups of the password manager. A backup named - is read from standard input.
  Usage: vlbackup [OPTIONS] SUBCOMMAND
  $ for command in ls info verify find cat extract diff merge recover redact to-json from-json hex
  > do vlbackup $command --help | sed -n -e 1,2p -e '/^  *-.*  /p' | grep -v -e --help; done
  List everything in it, or what has one of the names
  Usage: vlbackup ls [OPTIONS] backup [name...]
  Show its version, counts, sizes, checksum and verdict
  Usage: vlbackup info [OPTIONS] backup
  Check its form, what it would restore, and its checksum; exit status 1 for an error
  Usage: vlbackup verify [OPTIONS] backup
    --strict                    Exit status 1 for a warning, too
  Find a text in its names, links, categories, settings and file contents
  Usage: vlbackup find [OPTIONS] backup text
    -i,--ignore-case            Take a letter from A to Z for its small one
  Write the bytes of a stored file, or the settings document
  Usage: vlbackup cat [OPTIONS] backup name
  Write its stored files below a folder; exit status 1 if one can't be
  Usage: vlbackup extract [OPTIONS] backup folder [name...]
    --force                     Replace files that exist
  Compare it with another, or with the profile; exit status 1 if they differ
  Usage: vlbackup diff [OPTIONS] backup [other]
    --live                      Compare with the profile as it is now: vlhost, which must be beside, takes a backup of it (Windows)
    --restored                  The other was taken after restoring this one: pass what the format makes different
  Make a new backup of all that is in two; exit status 1 if they differ in what both have
  Usage: vlbackup merge [OPTIONS] backup other
    -o,--output TEXT            The file to write; - is standard output
    --dry-run                   Write nothing, only show what it would be
    --force                     Replace the file if it exists
  Make a new backup of what is intact in a damaged one; exit status 1 if some is lost
  Usage: vlbackup recover [OPTIONS] backup output
    --force                     Replace the file if it exists
  Make a copy of the same shape without anything personal, for a support case
  Usage: vlbackup redact [OPTIONS] backup output
    --force                     Replace the file if it exists
  Write all of it as JSON, to edit or to process
  Usage: vlbackup to-json [OPTIONS] backup output
    --force                     Replace the file if it exists
  Make a backup from the JSON that to-json writes
  Usage: vlbackup from-json [OPTIONS] backup output
    --force                     Replace the file if it exists
  Show its bytes, element by element
  Usage: vlbackup hex [OPTIONS] backup
    --all                       Show every byte of a long content
  $ vlbackup --version
  vlbackup *.* (glob)
  backup format 4
  trace format 3.0.2
  $ vlbackup ls -V
  vlbackup *.* (glob)
  backup format 4
  trace format 3.0.2
  $ vlbackup
  vlbackup: A subcommand is required (see vlbackup --help)
  [2]
  $ vlbackup --json
  {"error": "A subcommand is required","exitStatus": 2,"hint": "see vlbackup --help","schema": "error-1","tool": "vlbackup"}
  [2]
  $ vlbackup list
  vlbackup: "list" is no command (see vlbackup --help)
  [2]
  $ vlbackup "$(printf 'what\n')" --json
  {"error": "\"what\" is no command","exitStatus": 2,"hint": "see vlbackup --help","schema": "error-1","tool": "vlbackup"}
  [2]
  $ cp "$SAMPLES"/first.vlb .; vlbackup first.vlb
  vlbackup: what to do with first.vlb is missing (a command goes before it: see vlbackup --help)
  [2]
  $ vlbackup first.vlb ls
  vlbackup: backup is required (see vlbackup ls --help)
  [2]
  $ vlbackup --wrong
  vlbackup: "--wrong" is no option (see vlbackup --help)
  [2]
  $ vlbackup ls
  vlbackup: backup is required (see vlbackup ls --help)
  [2]
  $ vlbackup ls first.vlb --wrong
  vlbackup: The following argument was not expected: --wrong (see vlbackup ls --help)
  [2]
  $ vlbackup ls first.vlb -- --json
  vlbackup: no --json in first.vlb (vlbackup ls shows the stored names)
  [1]
  $ vlbackup cat first.vlb -- --json
  vlbackup: no --json in first.vlb (vlbackup ls shows the stored names)
  [1]
  $ vlbackup info first.vlb extra
  vlbackup: The following argument was not expected: extra (see vlbackup info --help)
  [2]
  $ vlbackup cat first.vlb
  vlbackup: name is required (see vlbackup cat --help)
  [2]
  $ vlbackup extract first.vlb
  vlbackup: folder is required (see vlbackup extract --help)
  [2]
  $ vlbackup redact first.vlb
  vlbackup: output is required (see vlbackup redact --help)
  [2]
  $ vlbackup find first.vlb
  vlbackup: text is required (see vlbackup find --help)
  [2]
  $ vlbackup ls first.vlb --color sometimes
  vlbackup: --color: "sometimes" is none of auto, always, never (see vlbackup ls --help)
  [2]
  $ vlbackup ls first.vlb --force
  vlbackup: The following argument was not expected: --force (see vlbackup ls --help)
  [2]
  $ vlbackup diff first.vlb a b
  vlbackup: The following argument was not expected: b (see vlbackup diff --help)
  [2]
  $ vlbackup --completion sh
  vlbackup: "sh" is none of bash, zsh, fish, powershell (see vlbackup --help)
  [2]
  $ vlbackup --json ls first.vlb settings | head -n 2
  {
    "schema": "vlbackup-ls-1",
  $ vlbackup -q ls first.vlb settings | head -n 1
  settings (document)
