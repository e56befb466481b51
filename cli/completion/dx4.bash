# SPDX-License-Identifier: MIT
# Completion of dx4 for bash. The program itself says what the last word may become.

# Files whose names match a pattern, and folders. Readline quotes blanks and marks folders.
_dx4_files() {
  compopt -o filenames 2>/dev/null
  mapfile -t COMPREPLY < <(compgen -d -- "$2"; compgen -f -X "!$1" -- "$2" | while IFS= read -r file; do
    [ -d "$file" ] || printf '%s\n' "$file"
  done)
}

_dx4() {
  local word=${COMP_WORDS[COMP_CWORD]} offered
  local -a words=("${COMP_WORDS[@]:1:COMP_CWORD}")
  [ "$word" = '=' ] && word=''
  offered=$("${COMP_WORDS[0]/#\~/$HOME}" --complete "${words[@]//[\\\'\"]/}" 2>/dev/null)
  case $offered in
    :files*) _dx4_files "${offered#:files }" "${word//\\/}" ;;
    *) mapfile -t COMPREPLY < <(compgen -W "$(cut -f 1 <<<"$offered")" -- "$word") ;;
  esac
}

complete -F _dx4 dx4
