#!/usr/bin/env bash
# Measures what the trend of the panel costs.
set -euo pipefail

if [ "${1:-}" = --help ] || [ "${1:-}" = -h ]; then
  cat <<'TEXT'
Usage: scripts/bench_panel.sh [GOOGLE_BENCHMARK_OPTION]...

Builds the panel and its benchmark into build/bench and prints what a window of a minute and one of a
day, of eight traces each, cost to be read and painted anew at 1280 x 800, on a screen in memory, and
what it costs to take eight values. Takes half a minute.

Examples:
  scripts/bench_panel.sh
  scripts/bench_panel.sh --benchmark_filter=day
TEXT
  exit 0
fi

cd "$(dirname "$0")/.."
scripts/packages.sh build bench
BUILD_TARGETS=korvane_panel_bench scripts/build.sh bench
exec build/bench/bench/korvane_panel_bench "$@"
