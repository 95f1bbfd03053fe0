What is written to files and streams, and what the commands refuse.

  $ trace() { "$TESTS/vltrace/tracefile.py" "$@"; }
  $ trace >one.trc3 <<'.'
  > 07/14/17 10:00:00.000 8 E 5 failed
  > .
  $ mkdir traces empty; cp one.trc3 traces

A file is written as a whole or not at all, and replaced only with --force; what is read is never.

  $ vltrace cat --output lines one.trc3
  $ cat lines
  # one.trc3
  # trace3
  2017-07-14 10:00:00.000  0x0008  E 0x00000005 ERROR_ACCESS_DENIED (access is denied): failed
  $ vltrace stats -o lines one.trc3
  vltrace: lines exists already (give another name, or --force to replace it)
  [1]
  $ vltrace stats -o lines --force one.trc3 none.trc3
  vltrace: none.trc3 does not exist (is the name spelt right?)
  vltrace: lines is not written, as not all could be read (leave out what can't)
  [1]
  $ vltrace cat -o lines --force --from 2017-02-30 one.trc3
  vltrace: --from: "2017-02-30" is no time: write 2017-07-14T15:59:04.123 or a part (see vltrace cat --help)
  [2]
  $ vltrace cat --level N -o lines --force one.trc3
  vltrace: the only record is not what was asked for (leave out a filter to see more)
  $ cat lines
  # one.trc3
  # trace3
  $ vltrace cat -o traces --force one.trc3
  vltrace: traces is a folder (name a file in it)
  [1]
  $ vltrace cat -o none/lines one.trc3
  vltrace: none/lines can't be written: the folder does not exist (check the folder, and whether you may write to it)
  [1]
  $ vltrace cat -o one.trc3 --force one.trc3
  vltrace: one.trc3 is what is read (give the output another name)
  [1]
  $ vltrace cat -o traces/one.trc3 --force traces
  vltrace: traces/one.trc3 is what is read (give the output another name)
  [1]
  $ vltrace cat -o ./one.trc3 --force - <one.trc3
  vltrace: ./one.trc3 is what is read (give the output another name)
  [1]
  $ ln one.trc3 link; vltrace cat -o link --force one.trc3
  vltrace: link is what is read (give the output another name)
  [1]
  $ vltrace cat -o - one.trc3 >both
  $ cat both
  # one.trc3
  # trace3
  2017-07-14 10:00:00.000  0x0008  E 0x00000005 ERROR_ACCESS_DENIED (access is denied): failed
  $ chmod 600 both; vltrace cat -o both one.trc3 --level N --force --quiet && stat -c %a both && ls
  600
  both
  empty
  lines
  link
  one.trc3
  traces
  $ vltrace cat one.trc3 >/dev/full
  vltrace: standard output can't be written (is the disk full, or the reader gone?)
  [1]

What is asked for goes to standard output, failures and warnings to the other.

  $ vltrace cat one.trc3 none.trc3 2>/dev/null
  # one.trc3
  # trace3
  2017-07-14 10:00:00.000  0x0008  E 0x00000005 ERROR_ACCESS_DENIED (access is denied): failed
  [1]
  $ vltrace cat none.trc3 --level N one.trc3 >/dev/null
  vltrace: none.trc3 does not exist (is the name spelt right?)
  vltrace: the only record is not what was asked for (leave out a filter to see more)
  [1]
  $ vltrace stats --json one.trc3 none.trc3 2>&1 >/dev/null
  {"error": "none.trc3 does not exist","exitStatus": 1,"hint": "is the name spelt right?","schema": "error-1","tool": "vltrace"}
  [1]

Wrong usage: one line, and 2.

  $ vltrace
  vltrace: A subcommand is required (see vltrace --help)
  [2]
  $ vltrace show one.trc3
  vltrace: "show" is no command (see vltrace --help)
  [2]
  $ vltrace one.trc3
  vltrace: what to do with one.trc3 is missing (a command goes before it: see vltrace --help)
  [2]
  $ vltrace cat
  vltrace: FILE is required (see vltrace cat --help)
  [2]
  $ vltrace cat --follow one.trc3
  vltrace: The following argument was not expected: --follow (see vltrace cat --help)
  [2]
  $ vltrace cat --text
  vltrace: --text: 1 required TEXT missing (see vltrace cat --help)
  [2]
  $ vltrace cat - - <one.trc3
  vltrace: standard input can be read only once (save it to a file)
  [2]
  $ vltrace diff - - <one.trc3
  vltrace: standard input can be read only once (save it to a file)
  [2]
  $ vltrace tail -f -
  vltrace: standard input can't be followed (name the file)
  [2]
  $ vltrace tail -f -o lines one.trc3
  vltrace: what is followed has no end, so --output would never be complete (redirect the standard output)
  [2]
  $ vltrace tail -n -1 one.trc3
  vltrace: --lines: "-1" is no number of lines (see vltrace tail --help)
  [2]
  $ for id in 0x 1x '' -1 4294967296 0x1FFFFFFFF; do vltrace cat --thread "$id" one.trc3; vltrace cat --process "$id" one.trc3; done
  vltrace: --thread: "0x" is no id: write 420 or 0x1A4 (see vltrace cat --help)
  vltrace: --process: "0x" is no id: write 420 or 0x1A4 (see vltrace cat --help)
  vltrace: --thread: "1x" is no id: write 420 or 0x1A4 (see vltrace cat --help)
  vltrace: --process: "1x" is no id: write 420 or 0x1A4 (see vltrace cat --help)
  vltrace: --thread: "" is no id: write 420 or 0x1A4 (see vltrace cat --help)
  vltrace: --process: "" is no id: write 420 or 0x1A4 (see vltrace cat --help)
  vltrace: --thread: "-1" is no id: write 420 or 0x1A4 (see vltrace cat --help)
  vltrace: --process: "-1" is no id: write 420 or 0x1A4 (see vltrace cat --help)
  vltrace: --thread: "4294967296" is no id: write 420 or 0x1A4 (see vltrace cat --help)
  vltrace: --process: "4294967296" is no id: write 420 or 0x1A4 (see vltrace cat --help)
  vltrace: --thread: "0x1FFFFFFFF" is no id: write 420 or 0x1A4 (see vltrace cat --help)
  vltrace: --process: "0x1FFFFFFFF" is no id: write 420 or 0x1A4 (see vltrace cat --help)
  [2]
  $ vltrace cat --level EX one.trc3
  vltrace: --level: "EX" has a letter that is none of ><UEDNTt (see vltrace cat --help)
  [2]
  $ for time in 2017-13-01 2017-02-30 17-07-14 2017-07 2017-07-14T 2017-07-14x10:00 24:00 10:60 10:00:60 10:00:00.1 10:00:00.1234 10 noon; do
  >   vltrace cat --from "$time" one.trc3
  > done
  vltrace: --from: "2017-13-01" is no time: write 2017-07-14T15:59:04.123 or a part (see vltrace cat --help)
  vltrace: --from: "2017-02-30" is no time: write 2017-07-14T15:59:04.123 or a part (see vltrace cat --help)
  vltrace: --from: "17-07-14" is no time: write 2017-07-14T15:59:04.123 or a part (see vltrace cat --help)
  vltrace: --from: "2017-07" is no time: write 2017-07-14T15:59:04.123 or a part (see vltrace cat --help)
  vltrace: --from: "2017-07-14T" is no time: write 2017-07-14T15:59:04.123 or a part (see vltrace cat --help)
  vltrace: --from: "2017-07-14x10:00" is no time: write 2017-07-14T15:59:04.123 or a part (see vltrace cat --help)
  vltrace: --from: "24:00" is no time: write 2017-07-14T15:59:04.123 or a part (see vltrace cat --help)
  vltrace: --from: "10:60" is no time: write 2017-07-14T15:59:04.123 or a part (see vltrace cat --help)
  vltrace: --from: "10:00:60" is no time: write 2017-07-14T15:59:04.123 or a part (see vltrace cat --help)
  vltrace: --from: "10:00:00.1" is no time: write 2017-07-14T15:59:04.123 or a part (see vltrace cat --help)
  vltrace: --from: "10:00:00.1234" is no time: write 2017-07-14T15:59:04.123 or a part (see vltrace cat --help)
  vltrace: --from: "10" is no time: write 2017-07-14T15:59:04.123 or a part (see vltrace cat --help)
  vltrace: --from: "noon" is no time: write 2017-07-14T15:59:04.123 or a part (see vltrace cat --help)
  [2]
  $ vltrace cat --to 10:0 one.trc3
  vltrace: --to: "10:0" is no time: write 2017-07-14T15:59:04.123 or a part (see vltrace cat --help)
  [2]
  $ vltrace cat -e '(' one.trc3
  vltrace: "(" is no regular expression: missing closing parenthesis at character 2 (--text looks for a text as it is)
  [2]
  $ vltrace cat -e 'a' -e '[b' one.trc3
  vltrace: "[b" is no regular expression: missing terminating ] for character class at character 3 (--text looks for a text as it is)
  [2]
  $ vltrace export --format folded --utc-offset 2 one.trc3
  vltrace: --utc-offset: "2" is no offset: write +02:00 (see vltrace export --help)
  [2]

What is no trace.

  $ vltrace cat empty
  vltrace: empty is a folder with no trace in it (traces end in .trc3)
  [1]
  $ vltrace tail none.trc3
  vltrace: none.trc3 does not exist (is the name spelt right?)
  [1]
  $ for command in cat tail stats export; do : | vltrace $command - 2>&1 >/dev/null; done
  vltrace: standard input is no trace: it is empty (trace files end in .trc3, and have something in them)
  vltrace: standard input is no trace: it is empty (trace files end in .trc3, and have something in them)
  vltrace: standard input is no trace: it is empty (trace files end in .trc3, and have something in them)
  vltrace: standard input is no trace: it is empty (trace files end in .trc3, and have something in them)
  [1]

An apostrophe in the help is quoted for the shell.

  $ vltrace --completion zsh | grep -oE "Perl.{4}s" | sort -u
  Perl'\''s
