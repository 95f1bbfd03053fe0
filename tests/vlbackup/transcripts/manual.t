The manual page and the completions, made of the commands' own help.

  $ vlbackup --man | sed '1s/"[^"]*"/"DATE"/; 1s/IDs [^"]*/IDs VERSION/; /SS vlbackup info/q'
  .TH VLBACKUP 1 "DATE" "VLOnlineIDs VERSION" "User Commands"
  .SH NAME
  vlbackup \- Looks into backups of the password manager
  .SH SYNOPSIS
  \fBvlbackup\fP \fIcommand\fP [\fIoptions\fP] [\fIarguments\fP]
  .SH DESCRIPTION
  Looks into backups of the password manager. A backup named \- is read from standard input.
  .SH OPTIONS
  Every command takes these.
  .TP
  \fB\-h\fP, \fB\-\-help\fP
  Print this help message and exit
  .TP
  \fB\-\-json\fP
  Print JSON
  .TP
  \fB\-\-color\fP \fBauto\fP|\fBalways\fP|\fBnever\fP
  When to use colours; auto: on a terminal, unless NO_COLOR is set (default: auto)
  .TP
  \fB\-q\fP, \fB\-\-quiet\fP
  Print only what was asked for, and failures
  .TP
  \fB\-V\fP, \fB\-\-version\fP
  Print the versions of it and its formats
  .SH COMMANDS
  .SS vlbackup ls
  List everything in it, or what has one of the names.
  .PP
  \fBvlbackup ls\fP [\fIoptions\fP] \fIbackup\fP [\fIname\fP ...]
  .TP
  \fIbackup\fP
  The backup
  .TP
  \fIname\fP
  Only these names, as ls shows them; * stands for any characters, ? for one
  .PP
  Example:
  .PP
  .RS
  .nf
  vlbackup ls first.vlb "*.vlm"
  .fi
  .RE
  .SS vlbackup info
  $ vlbackup --man | sed -n '/SS vlbackup merge/,/SS vlbackup recover/p'
  .SS vlbackup merge
  Make a new backup of all that is in two; exit status 1 if they differ in what both have.
  .PP
  \fBvlbackup merge\fP [\fIoptions\fP] \fIbackup\fP \fIother\fP
  .TP
  \fIbackup\fP
  The backup
  .TP
  \fIother\fP
  The second backup
  .TP
  \fB\-o\fP, \fB\-\-output\fP \fITEXT\fP
  The file to write; \- is standard output
  .TP
  \fB\-\-prefer\fP \fBfirst\fP|\fBsecond\fP
  Which one's to take of what both have differently
  .TP
  \fB\-\-dry\-run\fP
  Write nothing, only show what it would be
  .TP
  \fB\-\-force\fP
  Replace the file if it exists
  .PP
  Example:
  .PP
  .RS
  .nf
  vlbackup merge \-\-prefer first first.vlb second.vlb \-o both.vlb
  .fi
  .RE
  .SS vlbackup recover
  $ vlbackup --man | sed -n '/EXIT STATUS/,$p'
  .SH EXIT STATUS
  .TP
  \fB0\fP
  Done; of a question: yes, sound, equal.
  .TP
  \fB1\fP
  The work failed, in part or as a whole, or the answer is no.
  .TP
  \fB2\fP
  Wrong usage; nothing was done.
  .SH ENVIRONMENT
  .TP
  \fBNO_COLOR\fP
  No colours, if it is set and \fB\-\-color\fP isn't given.
  $ vlbackup --man | grep SS
  .SS vlbackup ls
  .SS vlbackup info
  .SS vlbackup verify
  .SS vlbackup find
  .SS vlbackup cat
  .SS vlbackup extract
  .SS vlbackup diff
  .SS vlbackup merge
  .SS vlbackup recover
  .SS vlbackup redact
  .SS vlbackup to\-json
  .SS vlbackup from\-json
  .SS vlbackup hex
  $ vlbackup --completion bash
  # bash completion of vlbackup
  _vlbackup()
  {
      local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]}
      local state= words= i
      for ((i = 1; i < COMP_CWORD; ++i)); do
          case "$state ${COMP_WORDS[i]}" in
          ' ls' | ' info' | ' verify' | ' find' | ' cat' | ' extract' | ' diff' | ' merge' | ' recover' | ' redact' | ' to-json' | ' from-json' | ' hex')
              state="$state ${COMP_WORDS[i]}" ;;
          esac
      done
      COMPREPLY=()
      case "$state $before" in
      ' --color') words='auto always never' ;;
      ' ls --color') words='auto always never' ;;
      ' info --color') words='auto always never' ;;
      ' verify --color') words='auto always never' ;;
      ' find --color') words='auto always never' ;;
      ' cat --color') words='auto always never' ;;
      ' extract --color') words='auto always never' ;;
      ' diff --color') words='auto always never' ;;
      ' merge -o') words='' ;;
      ' merge --output') words='' ;;
      ' merge --prefer') words='first second' ;;
      ' merge --color') words='auto always never' ;;
      ' recover --color') words='auto always never' ;;
      ' redact --color') words='auto always never' ;;
      ' to-json --color') words='auto always never' ;;
      ' from-json --color') words='auto always never' ;;
      ' hex --color') words='auto always never' ;;
      *)
          case $state in
          '') words='ls info verify find cat extract diff merge recover redact to-json from-json hex -h --help --json --color -q --quiet -V --version' ;;
          ' ls') [[ $word != -* ]] || words=' -h --help --json --color -q --quiet -V --version' ;;
          ' info') [[ $word != -* ]] || words=' -h --help --json --color -q --quiet -V --version' ;;
          ' verify') [[ $word != -* ]] || words=' -h --help --strict --json --color -q --quiet -V --version' ;;
          ' find') [[ $word != -* ]] || words=' -h --help -i --ignore-case --json --color -q --quiet -V --version' ;;
          ' cat') [[ $word != -* ]] || words=' -h --help --json --color -q --quiet -V --version' ;;
          ' extract') [[ $word != -* ]] || words=' -h --help --force --json --color -q --quiet -V --version' ;;
          ' diff') [[ $word != -* ]] || words=' -h --help --live --restored --json --color -q --quiet -V --version' ;;
          ' merge') [[ $word != -* ]] || words=' -h --help -o --output --prefer --dry-run --force --json --color -q --quiet -V --version' ;;
          ' recover') [[ $word != -* ]] || words=' -h --help --force --json --color -q --quiet -V --version' ;;
          ' redact') [[ $word != -* ]] || words=' -h --help --force --json --color -q --quiet -V --version' ;;
          ' to-json') [[ $word != -* ]] || words=' -h --help --force --json --color -q --quiet -V --version' ;;
          ' from-json') [[ $word != -* ]] || words=' -h --help --force --json --color -q --quiet -V --version' ;;
          ' hex') [[ $word != -* ]] || words=' -h --help --all --json --color -q --quiet -V --version' ;;
          esac ;;
      esac
      COMPREPLY=($(compgen -W "$words" -- "$word"))
  }
  complete -o default -F _vlbackup vlbackup
  $ vlbackup --completion fish | sed -n '1,14p; /merge.*\(output\|prefer\|force\|-s o\)/p'
  # fish completion of vlbackup
  function __vlbackup_at
      set -l state ''
      for word in (commandline -opc)[2..-1]
          switch "$state $word"
              case ' ls' ' info' ' verify' ' find' ' cat' ' extract' ' diff' ' merge' ' recover' ' redact' ' to-json' ' from-json' ' hex'
                  set state "$state $word"
          end
      end
      test "$state" = "$argv"
  end
  complete -c vlbackup -n '__vlbackup_at ""' -f -a ls -d 'List everything in it, or what has one of the names'
  complete -c vlbackup -n '__vlbackup_at ""' -f -a info -d 'Show its version, counts, sizes, checksum and verdict'
  complete -c vlbackup -n '__vlbackup_at ""' -f -a verify -d 'Check its form, what it would restore, and its checksum; exit status 1 for an error'
  complete -c vlbackup -n '__vlbackup_at " merge"' -s o -d 'The file to write; - is standard output' -r
  complete -c vlbackup -n '__vlbackup_at " merge"' -l output -d 'The file to write; - is standard output' -r
  complete -c vlbackup -n '__vlbackup_at " merge"' -l prefer -d 'Which one\'s to take of what both have differently' -x -a 'first second'
  complete -c vlbackup -n '__vlbackup_at " merge"' -l force -d 'Replace the file if it exists'
  $ vlbackup --completion zsh | sed -n "1,9p; /merge --p/p; / -o')/p; /^esac/,\$p" | cut -c 1-120 | uniq
  #compdef vlbackup
  local state= i
  local -a commands options
  for ((i = 2; i < CURRENT; ++i)); do
      case "$state $words[i]" in
      (' ls' | ' info' | ' verify' | ' find' | ' cat' | ' extract' | ' diff' | ' merge' | ' recover' | ' redact' | ' to-js
      esac
  done
  case "$state $words[CURRENT - 1]" in
  (' merge -o') _files; return ;;
  (' merge --prefer') compadd -- first second; return ;;
  esac
  case $state in
  ('') commands=( 'ls:List everything in it, or what has one of the names' 'info:Show its version, counts, sizes, checksum
  (' ls') commands=() options=( '-h:Print this help message and exit' '--help:Print this help message and exit' '--json:Pr
  (' info') commands=() options=( '-h:Print this help message and exit' '--help:Print this help message and exit' '--json:
  (' verify') commands=() options=( '-h:Print this help message and exit' '--help:Print this help message and exit' '--str
  (' find') commands=() options=( '-h:Print this help message and exit' '--help:Print this help message and exit' '-i:Take
  (' cat') commands=() options=( '-h:Print this help message and exit' '--help:Print this help message and exit' '--json:P
  (' extract') commands=() options=( '-h:Print this help message and exit' '--help:Print this help message and exit' '--fo
  (' diff') commands=() options=( '-h:Print this help message and exit' '--help:Print this help message and exit' '--live:
  (' merge') commands=() options=( '-h:Print this help message and exit' '--help:Print this help message and exit' '-o:The
  (' recover') commands=() options=( '-h:Print this help message and exit' '--help:Print this help message and exit' '--fo
  (' redact') commands=() options=( '-h:Print this help message and exit' '--help:Print this help message and exit' '--for
  (' to-json') commands=() options=( '-h:Print this help message and exit' '--help:Print this help message and exit' '--fo
  (' from-json') commands=() options=( '-h:Print this help message and exit' '--help:Print this help message and exit' '--
  (' hex') commands=() options=( '-h:Print this help message and exit' '--help:Print this help message and exit' '--all:Sh
  esac
  if [[ $PREFIX == -* ]]; then
      _describe option options
  elif (($#commands)); then
      _describe command commands
  else
      _files
  fi
  $ vlbackup --completion powershell | sed -n "1,3p; /merge' =/p; /merge --p/p; /^Reg/,\$p" | cut -c 1-200
  # PowerShell completion of vlbackup; each word is followed by its explanation
  $words = @{
      '' = @('ls List everything in it, or what has one of the names', 'info Show its version, counts, sizes, checksum and verdict', 'verify Check its form, what it would restore, and its checksum; exit
      ' merge' = @('-h Print this help message and exit', '--help Print this help message and exit', '-o The file to write; - is standard output', '--output The file to write; - is standard output', '--
      ' merge --prefer' = @('first', 'second')
  Register-ArgumentCompleter -Native -CommandName vlbackup -ScriptBlock {
      param($word, $line, $cursor)
      $state = ''
      $before = ''
      foreach ($element in $line.CommandElements | Select-Object -Skip 1) {
          if ($element.Extent.EndOffset -ge $cursor) { break }
          $before = "$element"
          if ($words.ContainsKey("$state $before")) { $state = "$state $before" }
      }
      $offered = $values["$state $before"]
      if ($null -eq $offered) { $offered = $words[$state] }
      if (!$word) { $offered = $offered -notlike '-*' }
      $offered | Where-Object { $_.StartsWith($word) } | ForEach-Object {
          $name, $help = $_ -split ' ', 2
          if (!$help) { $help = $name }
          [System.Management.Automation.CompletionResult]::new(
              $name, $name, 'ParameterValue', $help)
      }
  }.GetNewClosure()
