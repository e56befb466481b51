#!/usr/bin/env bash
# Counts the instructions of a read, whatever else the machine is doing.
set -euo pipefail

if [ "${1:-}" = --help ] || [ "${1:-}" = -h ]; then
  cat <<'TEXT'
Usage: scripts/bench_instructions.sh

Builds driver and benchmarks into build/bench and counts, under Valgrind, the instructions of a read
with its reply and of intf_getData: at a cache of 1,000 registers, for the orders in which a host may
have named them first, beside the lower bound. Takes about two minutes.
TEXT
  exit 0
fi

cd "$(dirname "$0")/.."
scripts/packages.sh build bench check
BUILD_TARGETS=korvane_count scripts/build.sh bench
count=build/bench/bench/korvane_count

# Instructions of one run in which the measured way goes its way so many times.
run() {
  valgrind --tool=callgrind --callgrind-out-file=/dev/null "$count" "$@" 2>&1 \
    | sed -n 's/.*Collected : //p'
}

# The difference of two runs is free of what comes before and after.
per_time() {
  local few many
  few=$(run "$@" 200)
  many=$(run "$@" 1200)
  echo $(((many - few) / 1000))
}

printf '%-10s %9s %-12s %8s %8s %6s\n' what registers order driver limit ratio
for what in unchanged changes getData; do
  for registers in 1 16 120; do
    for order in ascending descending shuffled interleaved; do
      driver=$(per_time driver "$what" "$registers" "$order")
      limit=$(per_time limit "$what" "$registers" "$order")
      printf '%-10s %9d %-12s %8d %8d %6.2f\n' "$what" "$registers" "$order" "$driver" "$limit" \
        "$(awk "BEGIN { print $driver / $limit }")"
    done
  done
done
