#!/usr/bin/env bash
# Checks the formatting and runs clang-tidy over the product's own sources.
set -euo pipefail

usage() {
  cat <<'TEXT'
Usage: scripts/check.sh [format] [tidy]

  format  clang-format has nothing to change in any tracked C++ file
  tidy    clang-tidy finds nothing in src/, wire/, common/, host/, journal/, simulator/, cli/ and the headers they include

Both when none is named. Installs the packages it needs.
TEXT
}

check_format() {
  # A clone owned by somebody else is read here, not trusted.
  git -c safe.directory="$PWD" ls-files -z -- '*.h' '*.cpp' |
    xargs -0 --no-run-if-empty clang-format --dry-run --Werror
}

check_tidy() {
  local root log=build/tidy/tidy.log
  root=$(pwd -P)
  # Nothing is generated, so that the compile commands are all that it takes.
  mkdir -p build/tidy
  if ! cmake --preset tidy >build/tidy/configure.log 2>&1; then
    tail -n 60 build/tidy/configure.log >&2
    return 1
  fi
  if ! run-clang-tidy -quiet -j "$(nproc)" -p build/tidy "^$root/(src|wire|common|host|journal|simulator|cli)/" \
    >"$log" 2>&1; then
    sed 's/\x1b\[[0-9;]*m//g' "$log" | grep -vE '^clang-tidy|warnings? generated|^$' >&2
    echo "check.sh: clang-tidy found something" >&2
    return 1
  fi
  # A pattern that matches no file would find nothing either.
  grep -q '^clang-tidy' "$log"
  echo "clang-tidy: $(grep -c '^clang-tidy' "$log") files, nothing found"
}

for argument in "$@"; do
  case $argument in
    --help | -h) usage; exit 0 ;;
    format | tidy) ;;
    *) echo "check.sh: no check '$argument'; see --help" >&2; exit 2 ;;
  esac
done
[ $# -gt 0 ] || set -- format tidy

cd "$(dirname "$0")/.."
scripts/packages.sh build check
for argument in "$@"; do
  "check_$argument"
done
