# SPDX-License-Identifier: MIT
# Completion of dx4-panel for bash.

_dx4_panel() {
  local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]}
  COMPREPLY=()
  case $before in
    --config | --driver | --sim)
      compopt -o filenames 2>/dev/null
      mapfile -t COMPREPLY < <(compgen -f -- "$word")
      return
      ;;
  esac
  mapfile -t COMPREPLY < <(compgen -W '--config --demo --fullscreen --driver --sim --help --version' -- "$word")
}

complete -F _dx4_panel dx4-panel
