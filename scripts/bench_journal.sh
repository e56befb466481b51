#!/usr/bin/env bash
# Measures what the journal costs.
set -euo pipefail

if [ "${1:-}" = --help ] || [ "${1:-}" = -h ]; then
  cat <<'TEXT'
Usage: scripts/bench_journal.sh [GOOGLE_BENCHMARK_OPTION]...

Builds the journal and its benchmark into build/bench and prints what a second of samples costs to be
written, beside the same rows written by Qt SQL alone, what a window of 16 minutes, of 160 and of a day
costs to be read, and how many bytes of the file a sample takes. Takes half a minute.

Examples:
  scripts/bench_journal.sh
  scripts/bench_journal.sh --benchmark_filter=window
  scripts/bench_journal.sh --benchmark_format=json
TEXT
  exit 0
fi

cd "$(dirname "$0")/.."
scripts/packages.sh build bench
BUILD_TARGETS=korvane_journal_bench scripts/build.sh bench
exec build/bench/bench/korvane_journal_bench "$@"
