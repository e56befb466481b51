#!/usr/bin/env bash
# The scripts that a newcomer runs first, with tools that are played.
set -euo pipefail

part=${1:?part} work=${2:?folder to work in}
top=$(cd "${0%/*}/../.." && pwd)

fail() {
  printf '%s\n' "$@" >&2
  exit 1
}

# Plays a program: its text is the rest of a shell script.
play() {
  printf '#!/bin/sh\n%s\n' "$2" >"$work/played/$1"
  chmod +x "$work/played/$1"
}

# A bare machine: root, no package of ours, an apt that does what it is told here.
bare_machine() {
  rm -rf "$work"
  mkdir -p "$work/played" "$work/temporary"
  play id 'echo 0'
  play dpkg-query 'exit 1'
  play apt-get "$1"
}

# Runs packages.sh on it; what it says goes to $work/said.
install_packages() {
  if PATH="$work/played:$PATH" TMPDIR="$work/temporary" "$top/scripts/packages.sh" build 2>"$work/said"; then
    fail "the packages are said to be there"
  fi
}

# Without a network one line tells that, in place of forty of apt.
network() {
  bare_machine 'echo "W: Failed to fetch http://deb.debian.org/debian  Temporary failure resolving deb.debian.org"; exit 100'
  install_packages
  [ "$(wc -l <"$work/said")" -eq 2 ] || fail "more than two lines:" "$(cat "$work/said")"
  grep -q '^Installing .* output goes to .*\.log$' "$work/said" || fail "the log is not named:" "$(cat "$work/said")"
  grep -q '^packages.sh: no network: apt reaches no mirror; .*cmake' "$work/said" || fail "$(cat "$work/said")"
}

# What apt says itself is shown where there is a network.
refused_package() {
  bare_machine 'echo "E: Unable to locate package libcli11-dev"; exit 100'
  install_packages
  grep -q '^E: Unable to locate package libcli11-dev$' "$work/said" || fail "$(cat "$work/said")"
  grep -q '^packages.sh: apt could not install: .*; all output is in .*\.log$' "$work/said" || fail "$(cat "$work/said")"
}

# Figures are those of the last line that has some.
estimate() {
  rm -rf "$work"
  mkdir -p "$work"
  . "$top/scripts/progress.sh"
  printf '%s\n' '-- Configuring done' >"$work/log"
  [ -z "$(ninja_progress "$work/log" || true)" ] || fail "progress before there is any"
  printf '%s\n' '[1/40] Building CXX' '[30/40] Building CXX' >>"$work/log"
  [ "$(ninja_progress "$work/log")" = '30 40' ] || fail "ninja: $(ninja_progress "$work/log")"
  printf '%s\n' '0 upgraded, 12 newly installed, 0 to remove.' 'Unpacking cmake' 'Unpacking gcc' 'Setting up cmake' >"$work/log"
  [ "$(apt_progress "$work/log")" = '3 24' ] || fail "apt: $(apt_progress "$work/log")"
  [ "$(in_words 89) $(in_words 90) $(in_words 330)" = '89 s 2 min 6 min' ] || fail "$(in_words 89) $(in_words 90) $(in_words 330)"
}

# A build that fails shows the end of its log, names the log, and fails.
failed_build() {
  rm -rf "$work"
  mkdir -p "$work/played" "$work/tree"
  cp -r "$top/scripts" "$work/tree"
  play cmake 'echo "error: no such thing"; exit 1'
  if PATH="$work/played:$PATH" "$work/tree/scripts/build.sh" dev 2>"$work/said"; then fail "a failed build is taken"; fi
  grep -q '^Building dev; output goes to build/dev/build.log$' "$work/said" || fail "$(cat "$work/said")"
  grep -q '^error: no such thing$' "$work/said" || fail "$(cat "$work/said")"
  grep -q '^build.sh: the build of dev failed; all output is in build/dev/build.log$' "$work/said" || fail "$(cat "$work/said")"
  play cmake 'exit 0'
  PATH="$work/played:$PATH" "$work/tree/scripts/build.sh" dev 2>"$work/said" || fail "a good build is not taken"
}

# A window without a display is refused in one line, before anything is installed or built.
no_display() {
  bare_machine 'echo called >>"$0.calls"; exit 100'
  if env -u DISPLAY -u WAYLAND_DISPLAY -u QT_QPA_PLATFORM PATH="$work/played:$PATH" \
    "$top/scripts/demo.sh" --panel 2>"$work/said"; then
    fail "a window is shown without a display"
  fi
  [ "$(wc -l <"$work/said")" -eq 1 ] || fail "not one line:" "$(cat "$work/said")"
  grep -q '^demo.sh: no display: ' "$work/said" || fail "$(cat "$work/said")"
  [ ! -e "$work/played/apt-get.calls" ] || fail "packages were asked for"
}

"$part"
