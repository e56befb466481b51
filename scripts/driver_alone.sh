#!/usr/bin/env bash
# Builds the driver with Qt Core and nothing else, and looks at what the file needs.
set -euo pipefail

usage() {
  cat <<'TEXT'
Usage: scripts/driver_alone.sh [--bare] [QT]

Configures the driver without tools and tests: the step ends at the first package other than Qt's core
that is looked for. Builds it, and lists the libraries that the file needs: the core of Qt 5 (or of 6,
where QT is that) and the runtime libraries of GCC and C at most. The build is in build/driver_alone.

  --bare  in a bare Debian 12 that has qtbase5-dev, cmake, g++ and ninja-build (qt6-base-dev for Qt 6)
          and nothing else; as root, with a Debian mirror

Exit code: 0 when that is so, 1 when not, 2 for wrong arguments.
TEXT
}

bare=no
qt=5
for argument in "$@"; do
  case $argument in
    --help | -h) usage; exit 0 ;;
    --bare) bare=yes ;;
    5 | 6) qt=$argument ;;
    *) echo "driver_alone.sh: unknown argument '$argument'; see --help" >&2; exit 2 ;;
  esac
done

cd "$(dirname "$0")/.."
work=$PWD/build/driver_alone
log=$work.log
mkdir -p build

fail() {
  tail -n 40 "$log" >&2
  echo "driver_alone.sh: $1; all output is in $log" >&2
  exit 1
}

# Configures and builds in a folder, with a command in front.
build_in() {
  local tree=$1 build=$2
  shift 2
  "$@" cmake -G Ninja -S "$tree" -B "$build" -DCMAKE_BUILD_TYPE=Release -DKORVANE_QT_MAJOR="$qt" \
    -DKORVANE_BUILD_TOOLS=OFF -DKORVANE_BUILD_TESTS=OFF -DKORVANE_WERROR=ON \
    -DCMAKE_PROJECT_TOP_LEVEL_INCLUDES="$tree/cmake/OnlyQtCore.cmake" &&
    "$@" cmake --build "$build"
}

# Prints what the driver's file needs, and fails where that is more than it may.
check_needs() {
  local needs more
  needs=$(readelf -d "$1" | sed -n 's/.*(NEEDED).*\[\(.*\)\]/\1/p')
  more=$(grep -vxE "libQt${qt}Core\.so\.$qt|libstdc\+\+\.so\.6|libm\.so\.6|libgcc_s\.so\.1|libc\.so\.6" <<<"$needs") || true
  [ -z "$more" ] || fail "the driver needs more than Qt Core and the runtime libraries: $more"
  grep -qx "libQt${qt}Core.so.$qt" <<<"$needs" || fail "the driver does not need Qt $qt Core"
  echo "the driver needs $(paste -sd ' ' <<<"$needs")"
}

here() {
  rm -rf "$work"
  build_in "$PWD" "$work" >"$log" 2>&1 || fail "the driver is not built with Qt Core alone"
  check_needs "$work/lib/libkorvane_dx4.so"
}

in_bare_system() {
  local root package=qtbase5-dev
  [ "$(id -u)" -eq 0 ] || { echo "driver_alone.sh: --bare needs root" >&2; exit 1; }
  [ "$qt" = 5 ] || package=qt6-base-dev
  root=$(mktemp -d)
  # shellcheck disable=SC2064  # the folder is known now
  trap "rm -rf --one-file-system '$root'" EXIT
  mmdebstrap --quiet --mode=root --variant=apt --include="$package,cmake,g++,ninja-build" \
    bookworm "$root" >"$log" 2>&1 || fail "the bare system is not made"
  mkdir "$root/tree"
  git -c safe.directory="$PWD" ls-files -z | tar -c --null -T - | tar -x -C "$root/tree"
  # A compiler cache of this machine is not there.
  build_in /tree /build env -u CMAKE_CXX_COMPILER_LAUNCHER chroot "$root" >>"$log" 2>&1 ||
    fail "the driver is not built in a bare system"
  check_needs "$root/build/lib/libkorvane_dx4.so"
}

if [ $bare = yes ]; then
  scripts/packages.sh package
  in_bare_system
else
  here
fi
