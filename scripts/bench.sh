#!/usr/bin/env bash
# Installs what is missing, builds driver and benchmarks for speed and prints the ratios.
set -euo pipefail

if [ "${1:-}" = --help ] || [ "${1:-}" = -h ]; then
  cat <<'TEXT'
Usage: scripts/bench.sh [--rounds COUNT] [--filter REGEX] [--json FILE]

Builds the driver and the benchmarks into build/bench and measures the driver beside its peers. The
table goes to standard output. The output of the build goes to build/bench/build.log.

  --rounds COUNT  rounds of which the median counts; 9
  --filter REGEX  only measurements whose name fits, such as ^write
  --json FILE     also writes the figures to a file

Exit code: 0 when everything was measured, whatever the figures are; 2 for wrong arguments.
TEXT
  exit 0
fi

caller=$PWD
arguments=()
while [ $# -gt 0 ]; do
  case $1 in
    --json)
      [ $# -ge 2 ] || { echo "bench.sh: --json takes a file" >&2; exit 2; }
      # The file belongs to the folder of the caller.
      case $2 in /*) arguments+=(--json "$2") ;; *) arguments+=(--json "$caller/$2") ;; esac
      shift 2
      ;;
    *)
      arguments+=("$1")
      shift
      ;;
  esac
done

cd "$(dirname "$0")/.."
scripts/packages.sh build bench
BUILD_TARGETS=korvane_bench scripts/build.sh bench
exec build/bench/bench/korvane_bench "${arguments[@]}"
