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
docs/man/dx4-panel.1|s/^(\.Os korvane_dx4) .*/\1 9.9.9/
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

# Ends the test as skipped where a tool is missing, and as failed where everything is required.
needs() {
  local tool
  for tool in "$@"; do
    command -v "$tool" >/dev/null && continue
    [ "${KORVANE_REQUIRE_ALL:-0}" = 1 ] && fail "$tool is not installed, and KORVANE_REQUIRE_ALL is set"
    echo "skipped: $tool is not installed"
    exit 77
  done
}

# Builds four small files in the places of plug-in, records, host and journal. Options of the preprocessor
# say what is different in them.
small_build() {
  local name
  mkdir -p "$work/a build/lib" "$work/a build/abi"
  cat >"$work/small.cpp" <<'CODE'
struct Record {
    int count;
#ifdef FIELD
    int inserted;
#endif
    short value;
};
extern "C" int intf_first(const Record &record) { return record.count; }
extern "C" int intf_helper(int count) { return count; }
namespace dx4::host {
int wait(const Record &record) { return record.count; }
#ifndef REMOVED
int stop(const Record &record) { return record.value; }
#endif
#ifdef ADDED
int start(int count) { return count; }
#endif
} // namespace dx4::host
namespace inner {
#ifdef INTERNAL
int other(int count) { return count; }
#endif
} // namespace inner
CODE
  for name in lib/libkorvane_dx4 abi/libkorvane_boundary_records lib/libkorvane_host_qt5 lib/libkorvane_journal_qt5; do
    "${CXX:-c++}" -std=c++17 -g -fPIC -shared "$@" "$work/small.cpp" -o "$work/a build/$name.so"
  done
}

# A changed field, a function that is gone and one that is new are noticed, each with what to do about it;
# what is nobody's business is not.
abi() {
  needs abidw abidiff
  local change wanted said
  rm -rf "$work"
  mkdir -p "$work/scripts" "$work/abi"
  cp "$top/scripts/abi.sh" "$top/scripts/packages.sh" "$work/scripts"
  cp "$top"/abi/*.abignore "$work/abi"
  small_build
  "$work/scripts/abi.sh" --record "$work/a build"
  "$work/scripts/abi.sh" --check "$work/a build" || fail "what was recorded differs from itself"
  small_build -DINTERNAL
  "$work/scripts/abi.sh" --check "$work/a build" || fail "an internal function is taken for the boundary"
  while read -r change wanted; do
    small_build "-D$change"
    if said=$("$work/scripts/abi.sh" --check "$work/a build" 2>&1); then fail "$change is not noticed"; fi
    [[ $said == *"$wanted"* ]] || fail "$change: '$wanted' is not said:" "$said"
  done <<'CHANGES'
FIELD Take the change back: this boundary does not move
FIELD int inserted
REMOVED the library host differs from abi/qt5/host.abi
REMOVED dx4::host::stop
ADDED dx4::host::start
ADDED 'scripts/abi.sh --record', and commit the records with the change
CHANGES
  rm "$work/abi/qt5/journal.abi"
  if said=$("$work/scripts/abi.sh" "$work/a build" 2>&1); then fail "a record that is missing is not noticed"; fi
  [[ $said == *"abi/qt5/journal.abi is missing"* ]] || fail "$said"
}

# A clone that is a release by itself: what says its version, the scripts, and a file with a blank.
small_clone() {
  copy_of_places
  clone="$work/a clone"
  mkdir "$clone"
  find "$work" -mindepth 1 -maxdepth 1 ! -name 'a clone' -exec mv -t "$clone" {} +
  echo 'A file.' >"$clone/a file"
  printf '/build*/\n' >"$clone/.gitignore"
  unset GIT_DIR GIT_WORK_TREE
  export GIT_CONFIG_GLOBAL=/dev/null GIT_AUTHOR_NAME=a GIT_AUTHOR_EMAIL=a@b GIT_COMMITTER_NAME=a GIT_COMMITTER_EMAIL=a@b
  export GIT_AUTHOR_DATE='2026-11-22T00:00:00Z' GIT_COMMITTER_DATE='2026-11-22T00:00:00Z'
  git -C "$clone" init -q
  git -C "$clone" add -A
  git -C "$clone" commit -qm 'tree: begin'
}

# Makes a quick release of the clone into a folder of the name that is given.
release() {
  "$clone/scripts/release.sh" --no-packages "$work/$1"
}

# The clone is refused with this sentence, and nothing is left in the folder.
refused() {
  local wanted=$1 said
  if said=$(release refused 2>&1); then fail "accepted, where '$wanted' should be said"; fi
  [[ $said == *"$wanted"* ]] || fail "'$wanted' is not said:" "$said"
  [ -z "$(ls -A "$work/refused" 2>/dev/null)" ] || fail "something was made all the same"
}

# A release without packages: all files, their sums, a bill that holds, and the same bytes once more.
made() {
  needs git python3 dpkg-query
  local version file
  version=$("$top/scripts/version.sh")
  small_clone
  release first
  release second >/dev/null
  for file in "$version.tar.gz" "$version.spdx.json" "$version-notes.md"; do
    [ -s "$work/first/korvane_dx4-$file" ] || fail "korvane_dx4-$file is not there"
  done
  diff -r "$work/first" "$work/second" || fail "the same commit gives other bytes"
  (cd "$work/first" && sha256sum --quiet --strict -c SHA256SUMS)
  [ "$(wc -l <"$work/first/SHA256SUMS")" -eq 3 ] || fail "SHA256SUMS leaves something out"
  tar -tzf "$work/first/korvane_dx4-$version.tar.gz" | grep -x "korvane_dx4-$version/a file" >/dev/null || fail "the tarball lacks a file"
  "$top/tests/release/check_bill.py" "$work/first/korvane_dx4-$version.spdx.json" "$work/first/korvane_dx4-$version.tar.gz" cmake
}

# What must not be released is refused, with what to do.
refusals() {
  needs git python3 dpkg-query
  local version
  version=$("$top/scripts/version.sh")
  small_clone
  git -C "$clone" tag other
  echo 'One more.' >"$clone/one more"
  refused "not committed, or not ignored:"
  git -C "$clone" add -A
  git -C "$clone" commit -qm 'tree: add one more'
  git clone -q --bare "$clone" "$work/a remote"
  git -C "$work/a remote" tag "v$version" other
  git -C "$clone" remote add origin "$work/a remote"
  refused "the tag v$version is on another commit in the remote 'origin'"
  "$clone/scripts/release.sh" --no-packages --offline "$work/offline" >/dev/null || fail "--offline asks a remote"
  git -C "$clone" remote set-url origin "$work/nowhere"
  refused "cannot ask the remote 'origin' for the tag v$version"
  git -C "$clone" remote remove origin
  git -C "$clone" tag -am "$version" "v$version" other
  refused "the tag v$version is on another commit"
  git -C "$clone" tag -d "v$version" >/dev/null
  git -C "$clone" tag -am "$version" "v$version"
  release tagged >/dev/null || fail "the tag of this very commit is refused"
  git -C "$clone" tag -d "v$version" >/dev/null
  sed -i 's/^## [0-9].*/## Unreleased/' "$clone/CHANGELOG.md"
  git -C "$clone" commit -qam 'changes: forget the version'
  refused "CHANGELOG.md has no entry for $version"
  if "$clone/scripts/release.sh" --fast 2>"$work/said"; then fail "--fast is taken"; else [ $? -eq 2 ]; fi
}

"$part"
