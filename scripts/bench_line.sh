#!/usr/bin/env bash
# Measures how much of a serial line's time the host fills, beside libmodbus.
set -euo pipefail

if [ "${1:-}" = --help ] || [ "${1:-}" = -h ]; then
  cat <<'TEXT'
Usage: scripts/bench_line.sh [--seconds N] [--speed BITS_PER_SECOND]...

Builds driver, host, simulator and benchmarks into build/bench, has the simulator serve a
pseudo-terminal as fast as its characters take, and prints which share of the time wanted requests and
replies are on the wire: for 1, 8 and 31 stations with 1, 16 and 120 registers each, by the host and by
libmodbus with the same blocks and the same silence between two frames. Takes about four minutes.

Examples:
  scripts/bench_line.sh                             the whole table
  scripts/bench_line.sh --speed 115200 --seconds 1  one speed, rougher
TEXT
  exit 0
fi

cd "$(dirname "$0")/.."
scripts/packages.sh build bench check
BUILD_TARGETS=korvane_line_bench scripts/build.sh bench
exec build/bench/bench/korvane_line_bench "$@"
