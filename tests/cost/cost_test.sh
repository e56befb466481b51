#!/usr/bin/env bash
# Counts what a way of using the driver costs with 1,000 and with 8,000 registers.
set -euo pipefail

valgrind=${1:?valgrind} program=${2:?program that goes the way} way=${3:?way}

# Instructions of a run in which the way is gone so many times.
run() {
  "$valgrind" --tool=callgrind --callgrind-out-file=/dev/null "$program" "$@" 2>&1 | sed -n 's/.*Collected : //p'
}

# Of the last of three times: the ones before it fill what is kept from one to the next.
cost() {
  echo $(($(run "$way" "$1" 3) - $(run "$way" "$1" 2)))
}

few=$(cost 1000)
many=$(cost 8000)
case $way in
  # Of one register; sorting costs a little more where there are more of them.
  name | merge | merge_again) few=$((few / 1000)) many=$((many / 8000)) ;;
esac
echo "$way: $few instructions with 1,000 registers, $many with 8,000"
# A search through all of them would cost eight times as much.
[ "$many" -gt 0 ] && [ "$many" -lt $((2 * few)) ]
