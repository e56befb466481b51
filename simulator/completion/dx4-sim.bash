# SPDX-License-Identifier: MIT
# Completion of dx4-sim for bash.

_dx4_sim() {
  local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]} offered=''
  COMPREPLY=()
  case $before in
    --faults | --values | --log | --pcap | --link)
      mapfile -t COMPREPLY < <(compgen -f -- "$word")
      return
      ;;
    --port)
      mapfile -t COMPREPLY < <(compgen -f -- "${word:-/dev/tty}")
      return
      ;;
    --format) offered='8N1 8N2 8E1 8E2 8O1 8O2' ;;
    --speed) offered='0 1200 2400 4800 9600 19200 38400 57600 115200 230400' ;;
    --stations | --turnaround | --seed) ;;
    *)
      offered='--pty --port --link --speed --format --turnaround --stations --values --faults'
      offered="$offered --seed --log --pcap --json --help --version"
      ;;
  esac
  mapfile -t COMPREPLY < <(compgen -W "$offered" -- "$word")
}

complete -F _dx4_sim dx4-sim
