#!/usr/bin/env bash
# What a release says of itself, and the scripts that make one. Every folder has a blank in its name.
set -euo pipefail

part=${1:?part} build=${2:?build folder} work=${3:?folder to work in}
top=$(cd "${0%/*}/../.." && pwd)

fail() {
  printf '%s\n' "$@" >&2
  exit 1
}

# A copy of what says a version, to be spoilt.
copy_of_places() {
  rm -rf "$work"
  mkdir -p "$work"
  tar -C "$top" -c CMakeLists.txt CHANGELOG.md debian docs/man scripts | tar -C "$work" -x
}

# Each place that is written by hand is held against the one version.
version() {
  local place change said
  "$top/scripts/version.sh" --check
  while IFS='|' read -r place change; do
    copy_of_places
    sed -i -E "$change" "$work/$place"
    ! cmp -s "$top/$place" "$work/$place" || fail "the change of $place changes nothing: $change"
    if said=$("$work/scripts/version.sh" --check 2>&1); then fail "a wrong version in $place is not noticed"; fi
    grep -q "^$place says '.*'; with version " <<<"$said" || fail "$place is not named:" "$said"
  done <<'PLACES'
CHANGELOG.md|s/^## [0-9.]+ - /## 9.9.9 - /
debian/changelog|1s/\([0-9.]+\)/(9.9.9)/
debian/control|s/^(Package: libkorvane-host-qt5-).*/\19.9/
docs/man/dx4.1|s/^\.Os .*/.Os/
docs/man/dx4-sim.1|s/^(\.Os korvane_dx4) .*/\1 9.9.9/
PLACES
  copy_of_places
  sed -i 's/^## [0-9]/## Unreleased\n\nLater.\n\n&/' "$work/CHANGELOG.md"
  "$work/scripts/version.sh" --check || fail "what is not released yet is taken for a wrong version"
  "$work/scripts/version.sh" --notes >"$work/notes"
  ! grep -E '^## |Later' "$work/notes" || fail "the notes are not those of this version alone"
}

# The programs say the version, as their manual pages do.
programs() {
  local version
  version=$("$top/scripts/version.sh")
  [ "$("$build/cli/dx4" --version)" = "dx4 $version" ] || fail "dx4 --version: $("$build/cli/dx4" --version)"
  [ "$("$build/simulator/dx4-sim" --version)" = "dx4-sim $version" ] ||
    fail "dx4-sim --version: $("$build/simulator/dx4-sim" --version)"
}

"$part"
