#!/usr/bin/env bash
# Runs the black-box tests under Valgrind: no error, and nothing left behind after unload.
set -euo pipefail

if [ "${1:-}" = --help ] || [ "${1:-}" = -h ]; then
  cat <<'TEXT'
Usage: scripts/valgrind.sh [BUILD DIRECTORY]

Runs every test of tests/api but the one that counts allocations, and the reload test, under
Valgrind's memcheck, out of build/dev unless another directory is named; build/dev is built first.
Each test loads the plug-in and unloads it, so what is left at the end includes what the unloaded
driver left.

Exit code: 0 when no test found an error or a leak.
TEXT
  exit 0
fi

cd "$(dirname "$0")/.."
build=${1:-}
if [ -z "$build" ]; then
  scripts/packages.sh build test check
  scripts/build.sh dev
  build=build/dev
fi

run=0
log=$(mktemp)
trap 'rm -f "$log"' EXIT
for test in "$build"/tests/api/*_test "$build"/tests/export/export_reload_test; do
  [ -x "$test" ] || continue
  # Counts by a malloc of its own, which memcheck puts its own in place of.
  [ "$(basename "$test")" = api_allocation_test ] && continue
  # Blocks that are still reachable belong to libraries with state for the process, Qt among them.
  if ! valgrind --quiet --error-exitcode=99 --leak-check=full --suppressions=scripts/valgrind.supp \
    --show-leak-kinds=definite,indirect,possible --errors-for-leak-kinds=definite,indirect,possible \
    "$test" --gtest_brief=1 >"$log" 2>&1; then
    tail -n 60 "$log" >&2
    echo "valgrind.sh: $(basename "$test") failed" >&2
    exit 1
  fi
  run=$((run + 1))
done
[ $run -gt 0 ] || { echo "valgrind.sh: no test found in $build/tests/api" >&2; exit 1; }
echo "$run test programs, no error and no leak"
