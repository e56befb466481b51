#!/usr/bin/env bash
# Tries the Debian packages: builds them twice alike, and installs, upgrades and purges them in a bare system.
set -euo pipefail

usage() {
  cat <<'TEXT'
Usage: scripts/package_check.sh [PART...]

Parts, all of them in this order when none is named; as root, with a Debian mirror:

  build    makes the packages, see scripts/package.sh; lintian finds no error and no warning
  again    makes them once more in another folder, with another umask, locale, time zone and number of
           jobs: each package is the same to the byte
  system   a bare Debian 12: they are installed, the tool runs, they are upgraded and purged, and no file
           is left or changed
  tests    autopkgtest in a bare Debian 12: the tests of debian/tests

The packages and the output of the tools are in build/package_check.

Exit code: 0 when nothing was found, 1 when something was, 2 for wrong arguments.
TEXT
}

parts=("$@")
for part in "${parts[@]}"; do
  case $part in
    --help | -h) usage; exit 0 ;;
    build | again | system | tests) ;;
    *) echo "package_check.sh: no part '$part'; see --help" >&2; exit 2 ;;
  esac
done
[ ${#parts[@]} -gt 0 ] || parts=(build again system tests)

cd "$(dirname "$0")/.."
[ "$(id -u)" -eq 0 ] || { echo "package_check.sh: needs root, for the bare system" >&2; exit 1; }
# Mounts of the bare system are seen by this script alone, and end with it.
if [ -z "${PACKAGE_CHECK_INSIDE:-}" ]; then
  exec env PACKAGE_CHECK_INSIDE=1 unshare --mount "$0" "${parts[@]}"
fi
scripts/packages.sh build package
# With a base_dir a compiler cache writes paths of its own into the debug symbols.
export CCACHE_DISABLE=1
work=$PWD/build/package_check
mkdir -p "$work"

fail() {
  echo "package_check.sh: $1" >&2
  exit 1
}

# Runs a step, of the name that comes first, whose output is only of interest when it fails.
quietly() {
  local name=$1 log=$work/$1.log
  shift
  "$@" >"$log" 2>&1 || { tail -n 40 "$log" >&2; fail "$name failed; all output is in $log"; }
}

build() {
  rm -rf "$work/packages"
  scripts/package.sh --lint "$work/packages"
}

# The second tree lies elsewhere, and is what a tarball holds: without Git.
again() {
  local file second
  second=$(mktemp -d)
  rm -rf "$work/packages again"
  mkdir "$second/another tree"
  git -c safe.directory="$PWD" ls-files -z | tar -c --null -T - | tar -x -C "$second/another tree"
  (
    umask 0077
    export LC_ALL=C TZ=Pacific/Kiritimati HOME=/nonexistent TMPDIR=$second/elsewhere
    mkdir "$TMPDIR"
    "$second/another tree/scripts/package.sh" --jobs 1 "$work/packages again"
  ) || { cp "$second/another tree/build/packages.log" "$work/again.log" || true; fail "the second build failed"; }
  rm -rf "$second"
  for file in "$work"/packages/*.deb "$work"/packages/*.tar.xz; do
    cmp "$file" "$work/packages again/${file##*/}" || fail "${file##*/} is not the same when it is built again"
  done
  echo "again: $(find "$work/packages" -name '*.deb' | wc -l) packages and the source are the same to the byte"
}

# A bare system in a folder, with what a program needs of the machine's own; and the end of it.
bare_system() {
  rm -rf --one-file-system "$1"
  # It is fetched once a day.
  find "$work" -maxdepth 1 -name bare.tar -mtime +0 -delete
  [ -f "$work/bare.tar" ] ||
    quietly mmdebstrap mmdebstrap --quiet --mode=root --variant=apt bookworm "$work/bare.tar.new"
  [ -f "$work/bare.tar" ] || mv "$work/bare.tar.new" "$work/bare.tar"
  mkdir "$1"
  tar -C "$1" --numeric-owner -xpf "$work/bare.tar"
  mount --bind /dev "$1/dev"
  mount --bind /dev/pts "$1/dev/pts"
  mount -t proc proc "$1/proc"
  mkdir "$1/packages"
  mount --bind "$work" "$1/packages"
  cp /etc/resolv.conf "$1/etc/resolv.conf"
  quietly update chroot "$1" apt-get update
  # No daemon is to be started by what is installed.
  printf '#!/bin/sh\nexit 101\n' >"$1/usr/sbin/policy-rc.d"
  chmod +x "$1/usr/sbin/policy-rc.d"
}

end_system() {
  umount -R "$system/dev" "$system/proc" "$system/packages"
  rm -rf --one-file-system "$system"
}

inside() {
  DEBIAN_FRONTEND=noninteractive LC_ALL=C.UTF-8 chroot "$system" "$@"
}

# Every file, folder and link with its rights, and every file with its sum; but for what apt, dpkg and the
# loader note of themselves.
files_of_system() {
  local -a noted=(-path ./packages -o -path ./tmp -o -path ./var/cache -o -path ./var/log -o -path ./var/lib/apt
    -o -path ./var/lib/dpkg -o -name ld.so.cache)
  (
    cd "$system"
    find . -xdev \( "${noted[@]}" \) -prune -o -printf '%M %u %g %p %l\n' | LC_ALL=C sort
    find . -xdev \( "${noted[@]}" \) -prune -o -type f -print0 | LC_ALL=C sort -z | xargs -0 md5sum
  )
}

# The same packages as a version that comes after theirs.
make_upgrade() {
  local file folder
  rm -rf "$work/upgrade"
  mkdir "$work/upgrade"
  folder=$(mktemp -d)
  for file in "$work"/packages/*.deb; do
    dpkg-deb -R "$file" "$folder/package"
    sed -i -E 's/^(Version: .*)/\1+upgrade/; s/(\(= [^)]*)\)/\1+upgrade)/g' "$folder/package/DEBIAN/control"
    dpkg-deb -Znone -b "$folder/package" "$work/upgrade/${file##*/}" >/dev/null
    rm -rf "$folder/package"
  done
  rmdir "$folder"
}

system() {
  local ours needed package
  system=$work/bare
  bare_system "$system"
  make_upgrade
  mapfile -t ours < <(for package in "$work"/packages/*.deb; do dpkg-deb -f "$package" Package; done)
  # What they need comes first, so that what is left after them is theirs.
  mapfile -t needed < <(inside bash -c 'apt-get install --simulate --no-install-recommends -q /packages/packages/*.deb' |
    sed -n 's/^Inst \([^ ]*\) .*/\1/p' | grep -vxF "$(printf '%s\n' "${ours[@]}")")
  [ ${#needed[@]} -gt 0 ] || fail "apt cannot tell what the packages need"
  quietly needed inside apt-get install -qy --no-install-recommends "${needed[@]}"
  files_of_system >"$work/before"

  quietly install inside bash -c 'apt-get install -qy --no-install-recommends /packages/packages/*.deb'
  quietly installed inside dx4 demo --seconds 1
  grep -q '^Done: ' "$work/installed.log" || fail "dx4 demo did not come to its end"
  quietly upgrade inside bash -c 'apt-get install -qy --no-install-recommends /packages/upgrade/*.deb'
  # shellcheck disable=SC2016  # dpkg-query fills it in
  inside dpkg-query -W -f '${Version}\n' korvane-dx4-tools | grep -q upgrade || fail "the packages were not upgraded"
  quietly upgraded inside dx4 demo --seconds 1
  quietly purge inside apt-get purge -qy "${ours[@]}"
  files_of_system >"$work/after"
  diff "$work/before" "$work/after" >"$work/left" || { cat "$work/left" >&2; fail "purging left these"; }
  ! inside dpkg-query -W 'korvane*' 'libkorvane*' 2>/dev/null | grep . || fail "dpkg knows them still"
  end_system
  echo "system: ${#ours[@]} packages installed, upgraded and purged; nothing is left"
}

tests() {
  system=$work/bare
  bare_system "$system"
  rm -rf "$work/autopkgtest"
  quietly autopkgtest autopkgtest --output-dir "$work/autopkgtest" "$work"/packages/*.deb "$work"/packages/*.dsc -- chroot "$system"
  grep -E ' (PASS|FAIL|SKIP)' "$work/autopkgtest/summary"
  end_system
}

for part in "${parts[@]}"; do
  printf '== %s (%(%H:%M:%S)T)\n' "$part" -1
  "$part"
done
