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
    get) echo "--count --names $line" ;;
    set) echo "--always --verify --names $line" ;;
    batch) echo "--keep-going --always --verify --names $line" ;;
    watch) echo "--rounds --interval --sample --clock --csv --names --reconnect $line" ;;
    plan) echo "--turnaround --names $line" ;;
    scan) echo "--from --to --resume $line" ;;
    stats) echo "--requests --names --reconnect $line" ;;
    run) echo "--frequency --reverse --word $line" ;;
    stop) echo "--word --all $line" ;;
    line) echo '--json' ;;
    record) echo "--force --rounds --reconnect $line" ;;
    'params dump' | 'params diff' | 'params restore') echo "$line" ;;
    replay) echo "--names $line" ;;
  esac
}

_dx4() {
  local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]}
  local command=${COMP_WORDS[1]} offered=''
  case $command in
    frames | params) [ "$COMP_CWORD" -gt 2 ] && command="$command ${COMP_WORDS[2]}" ;;
  esac
  COMPREPLY=()
  local commands='demo types check copies frames get set batch watch plan scan stats run stop line params record replay'
  case $before in
    --config | --driver | --sim | --resume)
      mapfile -t COMPREPLY < <(compgen -f -- "$word")
      return
      ;;
    --port)
      mapfile -t COMPREPLY < <(compgen -f -- "${word:-/dev/tty}")
      return
      ;;
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
            mapfile -t COMPREPLY < <(compgen -f -- "$word")
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
