#!/usr/bin/env bash
# Holds the binary boundary of a build against the one that is recorded in abi/.
set -euo pipefail

usage() {
  cat <<'TEXT'
Usage: scripts/abi.sh [--check | --record] [BUILD]

Compares functions, records and their layout in the built plug-in, the host library and the journal with
abi/qt5 or abi/qt6, whichever Qt BUILD was made with: build/dev when none is named. BUILD has debug
information and is made by GCC without sanitizers, as the preset dev is. The records are those of
Debian 12 on amd64.

  --check   any difference fails, and what to do is said; this is what is done without an option
  --record  write the records anew
  --help    print this text

Exit code: 0 when nothing differs or all is recorded, 1 when something differs or a file is missing, 2 for
wrong arguments.
TEXT
}

wrong() {
  echo "abi.sh: $1; see --help" >&2
  exit 2
}

action=check
build=
for argument in "$@"; do
  case $argument in
    --help | -h) usage; exit 0 ;;
    --check) action=check ;;
    --record) action=record ;;
    -*) wrong "no option '$argument'" ;;
    *)
      [ -z "$build" ] || wrong "one build and no more, not '$build' and '$argument'"
      build=$argument
      ;;
  esac
done
case $build in '' | /*) ;; *) build=$PWD/$build ;; esac
cd "$(dirname "$0")/.."
build=${build:-$PWD/build/dev}

fail() {
  printf 'abi.sh: %s\n' "$@" >&2
  exit 1
}

command -v abidw >/dev/null || scripts/packages.sh check
qt=
for major in 5 6; do
  [ ! -f "$build/lib/libkorvane_host_qt$major.so" ] || qt=$major
done
[ -n "$qt" ] || fail "no host library in $build; 'scripts/build.sh dev' makes one"
records=abi/qt$qt

# Name of the record, file in the build, and which of abi/*.abignore says what counts.
parts=(
  "plugin lib/libkorvane_dx4.so plugin"
  "records abi/libkorvane_boundary_records.so plugin"
  "host lib/libkorvane_host_qt$qt.so library"
  "journal lib/libkorvane_journal_qt$qt.so library"
)

# Prints the boundary of a file, without places of this machine and lines of the sources.
describe() {
  [ -f "$1" ] || fail "$1 is missing; 'scripts/build.sh dev' makes it"
  abidw --no-corpus-path --no-comp-dir-path --no-show-locs --no-parameter-names --no-write-default-sizes \
    --drop-undefined-syms --no-elf-needed --exported-interfaces-only --type-id-style hash \
    --suppressions "abi/$2.abignore" "$1" |
    sed -E "s/^ +//; s|( path=')(\.\./)+|\1|"
}

record() {
  mkdir -p "$records"
  local name file counts
  for part in "${parts[@]}"; do
    read -r name file counts <<<"$part"
    describe "$build/$file" "$counts" >"$records/$name.abi.new"
    mv "$records/$name.abi.new" "$records/$name.abi"
    echo "abi.sh: $records/$name.abi is recorded" >&2
  done
}

# What to do about a difference, by the bits that abidiff ends with.
advise() {
  local name=$1 bits=$2
  if ((bits & 3)); then
    echo "abi.sh: abidiff could not compare $name" >&2
  elif [ "$name" = plugin ] || [ "$name" = records ]; then
    cat >&2 <<TEXT
abi.sh: the boundary of the plug-in differs from $records/$name.abi, and runtimes are built against it.
Take the change back: this boundary does not move, see docs/compatibility.md. Where another compiler or Qt
only describes the same in other words, record that with 'scripts/abi.sh --record'.
TEXT
  else
    cat >&2 <<TEXT
abi.sh: the library $name differs from $records/$name.abi. Where that is not meant, take it back; else:
  1. Something is gone or has another layout: raise the second figure of the version in CMakeLists.txt, and
     with it the soname; 'scripts/version.sh --check' names what else says it. Functions were only added:
     the third figure does.
  2. Say in CHANGELOG.md what programs have to change, and look whether docs/compatibility.md still holds.
  3. 'scripts/abi.sh --record', and commit the records with the change.
TEXT
  fi
}

check() {
  local name file counts bits failures=0
  local new
  new=$(mktemp)
  # shellcheck disable=SC2064  # the name is that of now
  trap "rm -f '$new'" EXIT
  for part in "${parts[@]}"; do
    read -r name file counts <<<"$part"
    [ -f "$records/$name.abi" ] || fail "$records/$name.abi is missing; 'scripts/abi.sh --record' makes it"
    describe "$build/$file" "$counts" >"$new"
    bits=0
    abidiff "$records/$name.abi" "$new" >&2 || bits=$?
    if [ $bits -ne 0 ]; then
      advise "$name" $bits
      failures=$((failures + 1))
    fi
  done
  [ $failures -eq 0 ] || exit 1
  echo "abi.sh: ${#parts[@]} boundaries are those of $records"
}

$action
