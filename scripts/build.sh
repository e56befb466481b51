#!/usr/bin/env bash
# Configures and builds one preset, and shows what the tools said when one fails.
set -euo pipefail

if [ $# -lt 1 ] || [ "$1" = --help ] || [ "$1" = -h ]; then
  cat <<'TEXT'
Usage: scripts/build.sh PRESET [CMAKE OPTION...]

Configures and builds a preset of CMakePresets.json into build/PRESET. The output of the tools goes
to build/PRESET/build.log; its end is shown when a step fails. How far it is, and how long it may take
yet, is shown on standard error. The packages have to be there.

Environment:
  BUILD_TARGETS        what to build, separated by blanks; everything when empty
  KORVANE_REQUIRE_ALL  1 makes a component that would be left out, for want of a library or a tool,
                       an error; tests that would be skipped fail
TEXT
  [ $# -ge 1 ] && exit 0 || exit 2
fi

cd "$(dirname "$0")/.."
. scripts/progress.sh
preset=$1
shift
log=build/$preset/build.log
mkdir -p "build/$preset"
: >"$log"

compile() {
  # shellcheck disable=SC2086  # one word per target
  cmake --preset "$preset" -DKORVANE_REQUIRE_ALL="${KORVANE_REQUIRE_ALL:-0}" "$@" &&
    cmake --build --preset "$preset" ${BUILD_TARGETS:+--target $BUILD_TARGETS}
}

[ -f "build/$preset/build.ninja" ] || echo "Building $preset; output goes to $log" >&2
# The build has a process group of its own, and ends with this script.
set -m
compile "$@" >"$log" 2>&1 </dev/null &
builder=$!
set +m
trap 'kill -- -$builder 2>/dev/null || true' EXIT
trap 'exit 130' INT
trap 'exit 143' TERM
show_progress $builder "$log" ninja_progress
if ! wait $builder; then
  tail -n 60 "$log" >&2
  echo "build.sh: the build of $preset failed; all output is in $log" >&2
  exit 1
fi
