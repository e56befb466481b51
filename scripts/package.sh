#!/usr/bin/env bash
# Makes all Debian packages in one command.
set -euo pipefail

usage() {
  cat <<'TEXT'
Usage: scripts/package.sh [OPTION...] [FOLDER]

Installs the packages that a build needs, builds the Debian packages of this tree as debian/ says, with
those of the debug symbols, and puts them into FOLDER: build/packages when none is named. Files that
Git does not know are left out. Shows how far it is, as everything is compiled.

  --jobs N    compile so many files at a time; as many as there are cores
  --lint      also have lintian look at them: an error or a warning fails
  --help      print this text

All output of the tools goes to build/packages.log. The tree is copied below TMPDIR, or /var/tmp, and
built there; a gigabyte is needed for that.

Exit code: 0 when the packages are made, 1 when a step failed, 2 for wrong arguments.
TEXT
}

wrong() {
  echo "package.sh: $1; see --help" >&2
  exit 2
}

jobs=$(nproc)
lint=no
folder=
while [ $# -gt 0 ]; do
  case $1 in
    --help | -h) usage; exit 0 ;;
    --lint) lint=yes ;;
    --jobs)
      [[ ${2:-} =~ ^[1-9][0-9]*$ ]] || wrong "--jobs takes a number from 1 up"
      jobs=$2
      shift
      ;;
    -*) wrong "no option '$1'" ;;
    *)
      [ -z "$folder" ] || wrong "one folder and no more, not '$folder' and '$1'"
      folder=$1
      ;;
  esac
  shift
done
case $folder in '' | /*) ;; *) folder=$PWD/$folder ;; esac

cd "$(dirname "$0")/.."
folder=${folder:-$PWD/build/packages}
log=$PWD/build/packages.log

fail() {
  [ ! -t 2 ] || printf '\r\033[K' >&2
  tail -n 40 "$log" >&2
  echo "package.sh: $1; all output is in $log" >&2
  exit 1
}

# Copies what Git knows as it stands here; without Git, what a tarball held.
copy_tree() {
  if git -c safe.directory="$PWD" rev-parse --is-inside-work-tree >/dev/null 2>&1; then
    git -c safe.directory="$PWD" ls-files -z
  else
    find . -path './build*' -prune -o -type f -print0
  fi | tar -c --null --ignore-failed-read -T - | tar -x -C "$1"
}

# Shows on a terminal how far ninja is, from what it writes into the log.
watch_build() {
  local begun=$SECONDS last
  while kill -0 "$1" 2>/dev/null; do
    last=$(grep -aoE '^\[[0-9]+/[0-9]+\]' "$log" | tail -n 1) || true # none in the beginning
    [ ! -t 2 ] || printf '\r\033[K  %s after %d s' "${last:-preparing}" $((SECONDS - begun)) >&2
    sleep 1
  done
  [ ! -t 2 ] || printf '\r\033[K' >&2
}

scripts/packages.sh build package
version=$(dpkg-parsechangelog -S Version)
if ! mkdir -p build "$folder" 2>/dev/null || [ ! -w "$folder" ]; then
  echo "package.sh: cannot write to $folder" >&2
  exit 1
fi
# Folders of the source package have the rights that this gives them.
umask 022
# Not below this folder: dpkg's compiler options take no path with blanks.
work=$(mktemp -d "${TMPDIR:-/var/tmp}/korvane-packages-XXXXXX")
builder=
# The build has a process group of its own, and ends with this script.
trap '[ -z "$builder" ] || kill -- -$builder 2>/dev/null; rm -rf "$work"' EXIT
trap 'exit 130' INT
trap 'exit 143' TERM
tree=$work/korvane-dx4-$version
mkdir "$tree"
copy_tree "$tree"

echo "Building the packages of korvane-dx4 $version; output goes to $log" >&2
(cd "$tree" && exec env DEB_BUILD_OPTIONS="parallel=$jobs ${DEB_BUILD_OPTIONS:-}" TERM=dumb \
  setsid dpkg-buildpackage --no-sign --no-pre-clean --no-post-clean --build=full) >"$log" 2>&1 &
builder=$!
watch_build $builder
wait $builder || fail "the build failed"
builder=

if [ $lint = yes ]; then
  lintian --fail-on error,warning --allow-root "$work"/korvane-dx4_*.changes >>"$log" 2>&1 || fail "lintian found something"
  echo "lintian: no errors, no warnings" >&2
fi
find "$work" -maxdepth 1 -type f -exec mv -t "$folder" {} +
echo "$folder:"
(cd "$folder" && ls -1 ./*_"$version"*)
