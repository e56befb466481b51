#!/usr/bin/env bash
# Measures which lines and branches the tests reach in-process, and holds each folder to its figures.
set -euo pipefail

if [ "${1:-}" = --help ] || [ "${1:-}" = -h ]; then
  cat <<'TEXT'
Usage: scripts/coverage.sh [--no-gate] [FOLDER...]

Builds the preset coverage into build/coverage, runs the tests (black-box through the plug-in and
white-box through the linked objects are counted together) and reports the lines and branches of src,
wire, host, journal, simulator and capture that were reached, those of src that were missed one by one. HTML reports go
to build/coverage/report/FOLDER.html.

The least that each folder must reach is in scripts/coverage_figures.txt. Where folders are named, those
alone are measured; "src wire" takes half the time, as the tests of the others are left out.

Left out of the count: branches that only the compiler adds for exceptions
(--exclude-throw-branches), and branches that GCC marks as unreachable. The tool's own tests are not
run: what they alone reach of the host is not counted.

  --no-gate  report only

Exit code: 0 when every folder reached its figures, 2 or more when not.
TEXT
  exit 0
fi

cd "$(dirname "$0")/.."
scripts/packages.sh build test check
gate=yes
if [ "${1:-}" = --no-gate ]; then
  gate=no
  shift
fi
folders=("$@")
[ $# -gt 0 ] || folders=(src wire host journal simulator capture)
build=build/coverage
areas=(api unit export model property soak)
[ "${folders[*]}" = "src wire" ] || areas+=(host service journal guard faults simulator integration)
BUILD_TARGETS=$(printf 'tests/%s/all ' "${areas[@]}") scripts/build.sh coverage -DKORVANE_BUILD_TOOLS=ON
find "$build" -name '*.gcda' -delete
# A test that an earlier build left behind would be run, and wipe out what others have counted.
ninja -C "$build" -t cleandead >/dev/null
find "$build" -name '*.gcno' | while IFS= read -r notes; do
  [ -e "${notes%.gcno}.o" ] || rm -f "$notes"
done

for area in "${areas[@]}"; do
  for test in "$build/tests/$area"/*_test; do
    [ -x "$test" ] || continue
    if ! "$test" --gtest_brief=1 >"$build/coverage-test.log" 2>&1; then
      tail -n 40 "$build/coverage-test.log" >&2
      echo "coverage.sh: $test failed" >&2
      exit 1
    fi
  done
done

mkdir -p "$build/report"

# Prints "lines branches", in percent, of one folder.
measure() {
  gcovr --root . --filter "$1/" --object-directory "$build" --exclude-throw-branches \
    --exclude-unreachable-branches --gcov-executable "$PWD/scripts/gcov_executed.sh" \
    --html-details "$build/report/$1.html" --json-summary "$build/report/$1.json" \
    --txt "$build/report/$1.txt" "$build/$1" >&2
  python3 -c '
import json, sys
found = json.load(open(sys.argv[1]))
print(*(found[kind] for kind in ("line_covered", "line_total", "branch_covered", "branch_total")))
' "$build/report/$1.json"
}

# One percent figure with a decimal, rounded down: 99.9 is not 100.
percent() {
  local tenths=$(($1 * 1000 / ($2 > 0 ? $2 : 1)))
  echo "$((tenths / 10)).$((tenths % 10))"
}

failed=0
table=$(printf '%-10s %22s %22s' folder lines branches)
for folder in "${folders[@]}"; do
  read -r least_lines least_branches < <(sed -n "s/^$folder //p" scripts/coverage_figures.txt) || {
    echo "coverage.sh: no folder $folder in scripts/coverage_figures.txt" >&2
    exit 2
  }
  read -r lines all_lines branches all_branches < <(measure "$folder")
  table+=$(printf '\n%-10s %6s %% %5d of %5d %6s %% %5d of %5d' "$folder" \
    "$(percent "$lines" "$all_lines")" "$lines" "$all_lines" \
    "$(percent "$branches" "$all_branches")" "$branches" "$all_branches")
  if [ $((lines * 100)) -lt $((least_lines * all_lines)) ] ||
    [ $((branches * 100)) -lt $((least_branches * all_branches)) ]; then
    echo "coverage.sh: $folder is below $least_lines % of lines or $least_branches % of branches" >&2
    failed=2
  fi
done

[ ! -f "$build/report/src.txt" ] || grep -E '%' "$build/report/src.txt" | grep -v '100%' || true
printf '%s\n' "$table"
[ $gate = no ] || exit $failed
