#!/usr/bin/env bash
# Measures which lines and branches of src/ the tests reach in-process, and holds them to 100 %.
set -euo pipefail

if [ "${1:-}" = --help ] || [ "${1:-}" = -h ]; then
  cat <<'TEXT'
Usage: scripts/coverage.sh [--no-gate]

Builds the preset coverage into build/coverage, runs the tests that reach src/ (black-box through the
plug-in and white-box through the linked objects are counted together) and reports lines and
branches, those that were missed one by one. An HTML report goes to build/coverage/report.

Left out of the count: branches that only the compiler adds for exceptions, which the driver never
throws (--exclude-throw-branches), and branches that GCC marks as unreachable.

  --no-gate  report only

Exit code: 0 when every line and every branch was reached, 2 or more when not.
TEXT
  exit 0
fi

cd "$(dirname "$0")/.."
scripts/packages.sh build test check
build=build/coverage
scripts/build.sh coverage -DKORVANE_BUILD_TOOLS=OFF
find "$build" -name '*.gcda' -delete

for area in api unit export model property soak; do
  for test in "$build/tests/$area"/*_test; do
    [ -x "$test" ] || continue
    if ! "$test" --gtest_brief=1 >"$build/coverage-test.log" 2>&1; then
      tail -n 40 "$build/coverage-test.log" >&2
      echo "coverage.sh: $test failed" >&2
      exit 1
    fi
  done
done

gate=(--fail-under-line 100 --fail-under-branch 100)
[ "${1:-}" = --no-gate ] && gate=()
mkdir -p "$build/report"
count=(gcovr --root . --filter 'src/' --object-directory "$build/src" --exclude-throw-branches
  --exclude-unreachable-branches --gcov-executable "$PWD/scripts/gcov_executed.sh")
"${count[@]}" --html-details "$build/report/index.html" --txt "$build/report/lines.txt" "$build/src"
"${count[@]}" --branches "${gate[@]}" "$build/src"
cat "$build/report/lines.txt"
