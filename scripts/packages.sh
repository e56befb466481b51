#!/usr/bin/env bash
# Installs the Debian 12 packages that one purpose needs, and only those that are missing.
set -euo pipefail
# shellcheck source-path=SCRIPTDIR
. "$(dirname "$0")/progress.sh"

usage() {
  cat <<'TEXT'
Usage: scripts/packages.sh [--list] [PURPOSE...]

Installs what is missing through apt, with sudo unless run as root. Says nothing and does not call
apt when everything is there.

Purposes (build when none is named):
  build   compiler, CMake, Qt 5 and the libraries of the driver, host, simulator and tools
  test    GoogleTest, GoogleMock, RapidCheck and the independent Modbus peers
  check   Clang, clang-tidy, clang-format, coverage, Valgrind, abidiff
  bench   Google Benchmark
  docs    Doxygen
  package debhelper, lintian and what releases are made and packages tried with in a bare system
  qt6     Qt 6 beside Qt 5, with the serial bus of the tests, for the qt6 preset
  machines
          compilers and emulators of other machines, see scripts/machines.sh

Options:
  --list  print the packages of the purposes and install nothing
  --help  print this text
TEXT
}

packages_of() {
  case $1 in
    build)
      echo cmake ninja-build g++ pkg-config
      echo qtbase5-dev libqt5serialport5-dev libqt5sql5-sqlite libmodbus-dev libcli11-dev libtomlplusplus-dev
      echo libboost-context-dev qttools5-dev-tools libqwt-qt5-dev
      ;;
    test)
      echo libgtest-dev libgmock-dev librapidcheck-dev
      echo mbpoll tshark libqt5serialbus5-dev binutils zsh fish fonts-dejavu-core
      ;;
    check)
      echo git clang clang-tidy clang-format libclang-rt-14-dev gcovr valgrind mold abigail-tools
      ;;
    bench)
      echo libbenchmark-dev libqt5serialbus5-dev
      ;;
    docs)
      echo doxygen
      ;;
    package)
      echo debhelper dpkg-dev pkgconf lintian mmdebstrap autopkgtest git python3
      ;;
    qt6)
      echo qt6-base-dev qt6-serialport-dev qt6-serialbus-dev libqt6sql6-sqlite qt6-l10n-tools
      ;;
    machines)
      echo cmake ninja-build mmdebstrap qemu-user-static
      echo g++-aarch64-linux-gnu g++-arm-linux-gnueabihf g++-s390x-linux-gnu
      ;;
    *)
      echo "packages.sh: no purpose '$1'; one of build, test, check, bench, docs, package, qt6, machines" >&2
      return 2
      ;;
  esac
}

# Prints those of its arguments that dpkg does not hold as installed.
missing_of() {
  local installed package
  installed=$(dpkg-query --show --showformat='${db:Status-Status} ${Package}\n' "$@" 2>/dev/null || true)
  for package in "$@"; do
    grep -qxF "installed $package" <<<"$installed" || echo "$package"
  done
}

install_packages() {
  local -a become_root=()
  local log
  if [ "$(id -u)" -ne 0 ]; then
    if ! command -v sudo >/dev/null; then
      echo "packages.sh: neither root nor sudo; as root run: apt-get install $*" >&2
      return 1
    fi
    become_root=(sudo)
  fi
  # Asked for now, as the prompt would be lost among what is shown later.
  [ ${#become_root[@]} -eq 0 ] || sudo true || return 1
  log=$(mktemp --suffix=.log "${TMPDIR:-/tmp}/korvane-packages-XXXXXX")
  echo "Installing $# packages and what they need; output goes to $log" >&2
  run_apt "$@" </dev/null >>"$log" 2>&1 &
  show_progress $! "$log" apt_progress
  if wait $!; then
    rm -f "$log"
    return
  fi
  if grep -qE 'Temporary failure resolving|Could not resolve|Could not connect|Unable to connect|Network is unreachable' "$log"; then
    echo "packages.sh: no network: apt reaches no mirror; connect this machine, or install there: $*" >&2
  else
    tail -n 40 "$log" >&2
    echo "packages.sh: apt could not install: $*; all output is in $log" >&2
  fi
  return 1
}

# tshark asks whether everybody may capture; it is only given files to decode here.
run_apt() {
  "${become_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get update &&
    "${become_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install \
      --yes --no-install-recommends -o DPkg::Lock::Timeout=120 -o Dpkg::Use-Pty=0 "$@"
}

list_only=no
purposes=()
for argument in "$@"; do
  case $argument in
    --help | -h) usage; exit 0 ;;
    --list) list_only=yes ;;
    -*) echo "packages.sh: no option '$argument'; see --help" >&2; exit 2 ;;
    *) purposes+=("$argument") ;;
  esac
done
[ ${#purposes[@]} -gt 0 ] || purposes=(build)

wanted=()
for purpose in "${purposes[@]}"; do
  names=$(packages_of "$purpose") || exit 2
  # shellcheck disable=SC2206  # the names are one word each
  wanted+=($names)
done

if [ $list_only = yes ]; then
  printf '%s\n' "${wanted[@]}" | sort -u
  exit 0
fi
if ! command -v dpkg-query >/dev/null || ! command -v apt-get >/dev/null; then
  echo "packages.sh: needs apt; elsewhere install what these Debian packages hold: ${wanted[*]}" >&2
  exit 1
fi

mapfile -t missing < <(missing_of "${wanted[@]}" | sort -u)
[ ${#missing[@]} -eq 0 ] || install_packages "${missing[@]}"
