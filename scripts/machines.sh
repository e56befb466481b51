#!/usr/bin/env bash
# Builds the driver for other machines, and runs its tests in emulators.
set -euo pipefail

if [ "${1:-}" = --help ] || [ "${1:-}" = -h ]; then
  cat <<'TEXT'
Usage: scripts/machines.sh [MACHINE...]

Builds the driver with Qt 5 for each machine that is named, or for all, and runs all of its tests in
an emulator of that processor; none may fail or be skipped. The presets of the same names build with
warnings as errors; nothing may be left out for want of a library. As root, with a Debian mirror.

  arm64  64-bit ARM
  armhf  32-bit ARM, where the records of the boundary are smaller
  s390x  big-endian

The machine's Debian 12 is extracted into build/machines/MACHINE, where none of it is ever installed or
run but by the emulator; this system gets no foreign packages. The output of the tests is in
build/MACHINE/tests.log.

Exit code: 0 when all tests passed, 1 when not, 2 for wrong arguments.
TEXT
  exit 0
fi

machines=("$@")
[ ${#machines[@]} -gt 0 ] || machines=(arm64 armhf s390x)

emulator_of() {
  case $1 in
    arm64) echo qemu-aarch64-static ;;
    armhf) echo qemu-arm-static ;;
    s390x) echo qemu-s390x-static ;;
    *) echo "machines.sh: no machine '$1'; one of arm64, armhf, s390x" >&2; return 2 ;;
  esac
}

for machine in "${machines[@]}"; do
  emulator_of "$machine" >/dev/null || exit 2
done

cd "$(dirname "$0")/.."
scripts/packages.sh machines

# What the driver and its tests are linked with. No script of a package is run, so it is no system that
# could be started, and needs no emulator to be made.
make_root() {
  local root=build/machines/$1 log=build/machines/$1.log
  [ ! -d "$root" ] || return 0
  [ "$(id -u)" -eq 0 ] || { echo "machines.sh: needs root, to extract the packages of $1" >&2; return 1; }
  mkdir -p build/machines
  rm -rf --one-file-system "$root.new"
  if ! mmdebstrap --quiet --mode=root --variant=extract --architectures="$1" \
    --include=libc6-dev,libstdc++-12-dev,qtbase5-dev,libgtest-dev,libgmock-dev,librapidcheck-dev \
    bookworm "$root.new" 'deb http://deb.debian.org/debian bookworm main' >"$log" 2>&1; then
    tail -n 20 "$log" >&2
    echo "machines.sh: the packages of $1 were not extracted; all output is in $log" >&2
    return 1
  fi
  mv "$root.new" "$root"
}

# Prints how many tests of a machine passed.
run_tests() {
  local machine=$1 log=build/$1/tests.log test
  : >"$log"
  for test in "build/$machine"/tests/*/*_test; do
    timeout 900 "$(emulator_of "$machine")" -L "$PWD/build/machines/$machine" "$test" --gtest_brief=1 >>"$log" 2>&1 ||
      { tail -n 40 "$log" >&2; echo "machines.sh: $test failed on $machine" >&2; return 1; }
  done
  if grep -F '[  SKIPPED ]' "$log" >&2; then
    echo "machines.sh: tests were skipped on $machine" >&2
    return 1
  fi
  awk '/ tests? from .* ran/ { count += $2 } END { print count + 0 }' "$log"
}

for machine in "${machines[@]}"; do
  begun=$SECONDS
  make_root "$machine"
  scripts/build.sh "$machine"
  built=$SECONDS
  count=$(run_tests "$machine")
  echo "$machine: $count tests passed, built in $((built - begun)) s, run in $((SECONDS - built)) s"
done
