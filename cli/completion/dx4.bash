# SPDX-License-Identifier: MIT
# Completion of dx4 for bash.

_dx4_options() {
  local line='--config --port --speed --format --station --timeout --retries --block --shared --json --trace --driver'
  case $1 in
    demo) echo '--seconds --sim --driver --json --trace' ;;
    types) echo '--driver --json' ;;
    check) echo '--count --read --write --json --driver' ;;
    copies) echo '--count --step --json --driver' ;;
    'frames read') echo '--station --block --json --driver --count' ;;
    'frames write') echo '--station --block --json --driver' ;;
    'frames decode') echo '--request --json --driver' ;;
    get) echo "--count --names --as --order $line" ;;
    set) echo "--always --verify --names $line" ;;
    batch) echo "--keep-going --always --verify --names $line" ;;
    watch) echo "--rounds --interval --sample --clock --csv --names --as --order --reconnect $line" ;;
    plan) echo "--turnaround --names $line" ;;
    scan) echo "--from --to --resume --speeds --parities --all-settings $line" ;;
    stats) echo "--requests --names --reconnect $line" ;;
    run) echo "--frequency --reverse --word $line" ;;
    stop) echo "--word --all $line" ;;
    line) echo '--json' ;;
    record) echo "--force --rounds --reconnect $line" ;;
    'params dump' | 'params diff' | 'params restore') echo "$line" ;;
    replay) echo "--names $line" ;;
  esac
}

# Files whose names match a pattern, and folders. Readline quotes blanks and marks folders.
_dx4_files() {
  compopt -o filenames 2>/dev/null
  mapfile -t COMPREPLY < <(compgen -d -- "$2"; compgen -f -X "$1" -- "$2" | while IFS= read -r file; do
    [ -d "$file" ] || printf '%s\n' "$file"
  done)
}

# Stations of the configuration that the line names.
_dx4_stations() {
  local i file
  for ((i = 1; i < COMP_CWORD; i++)); do
    [ "${COMP_WORDS[i]}" = --config ] || continue
    file=${COMP_WORDS[i + 1]}
    [ "$file" = '=' ] && file=${COMP_WORDS[i + 2]}
    file=${file//[\\\'\"]/}
    sed -n 's/^[[:space:]]*address[[:space:]]*=[[:space:]]*\([0-9]*\).*/\1/p' "$file" 2>/dev/null
  done
}

_dx4() {
  local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]}
  local command=${COMP_WORDS[1]} offered=''
  local commands='demo types check copies frames get set batch watch plan scan stats run stop line params record replay'
  case $command in
    frames | params) [ "$COMP_CWORD" -gt 2 ] && command="$command ${COMP_WORDS[2]}" ;;
  esac
  COMPREPLY=()
  # Behind "=" readline begins another word.
  if [ "$word" = '=' ]; then
    word=''
  elif [ "$before" = '=' ]; then
    before=${COMP_WORDS[COMP_CWORD - 2]}
  fi
  case $before in
    --config)
      _dx4_files '!*.toml' "${word//\\/}"
      return
      ;;
    --driver | --sim | --resume)
      _dx4_files '' "${word//\\/}"
      return
      ;;
    --port)
      _dx4_files '' "${word:-/dev/tty}"
      return
      ;;
    --station) offered="$(_dx4_stations)" ;;
    --as) offered='u32 i32 f32' ;;
    --order) offered='high low' ;;
    --format) offered='8N1 8N2 8E1 8E2 8O1 8O2' ;;
    --speed) offered='9600 19200 38400 57600 115200' ;;
    *)
      if [ "$COMP_CWORD" -eq 1 ]; then
        offered="$commands help --help --version"
      elif [ "$command" = frames ]; then
        offered='read write decode --help'
      elif [ "$command" = params ]; then
        offered='dump diff restore --help'
      elif [[ $word == -* ]]; then
        offered="$(_dx4_options "$command") --help"
      else
        case $command in
          params\ * | batch | record | replay | line)
            _dx4_files '' "${word//\\/}"
            return
            ;;
          'frames write' | set) offered='F CW FRE' ;;
          help) offered=$commands ;;
          'frames decode' | demo | types | scan | run | stop) ;;
          check | copies) offered='F D CW FRE SW FU' ;;
          *) offered='F D SW FU' ;;
        esac
      fi
      ;;
  esac
  mapfile -t COMPREPLY < <(compgen -W "$offered" -- "$word")
}

complete -F _dx4 dx4
