# SPDX-License-Identifier: MIT
# Completion of dx4 for bash.

# Commands and options are those of the program's help: with --help it does nothing but tell.
#
# $1: command, or nothing
_dx4_help() {
  local -a words
  read -ra words <<<"$1"
  "${COMP_WORDS[0]/#\~/$HOME}" "${words[@]}" --help 2>/dev/null
}

_dx4_commands() {
  _dx4_help "$1" | sed -nE '/^Subcommands:/,/^$/s/^  ([a-z]+) .*/\1/p'
}

_dx4_options() {
  _dx4_help "$1" | sed -nE '/--help/d; s/^  (-[a-z],)?(--[a-z-]+).*/\2/p'
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
        offered="$(_dx4_commands '') --help --version"
      elif [ "$command" = frames ] || [ "$command" = params ]; then
        offered="$(_dx4_commands "$command") --help"
      elif [[ $word == -* ]]; then
        offered="$(_dx4_options "$command") --help"
      else
        case $command in
          params\ * | batch | record | replay | line)
            _dx4_files '' "${word//\\/}"
            return
            ;;
          'frames write' | set) offered='F CW FRE' ;;
          help) offered=$(_dx4_commands '') ;;
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
