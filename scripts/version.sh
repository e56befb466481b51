#!/usr/bin/env bash
# Tells the version of this tree, and holds every place that says it against it.
set -euo pipefail

usage() {
  cat <<'TEXT'
Usage: scripts/version.sh [--check | --notes]

Prints the version, which stands in one place: project(korvane_dx4 VERSION ...) of CMakeLists.txt. Builds
take it from there. What is written by hand has to say the same:

  CHANGELOG.md      the newest version of the list; above it only "## Unreleased" may stand
  debian/changelog  the first entry
  debian/control    the library packages end in the first two figures, as their sonames do
  docs/man          ".Os korvane_dx4 VERSION"

Options:
  --check  name each place that says another version
  --notes  print what CHANGELOG.md says of this version, the notes of its release
  --help   print this text

Exit code: 0 when all is well, 1 when a place says another version or CHANGELOG.md says nothing of this
one, 2 for wrong arguments.
TEXT
}

case ${1:-} in
  --help | -h) usage; exit 0 ;;
  '' | --check | --notes) ;;
  *) echo "version.sh: no option '$1'; see --help" >&2; exit 2 ;;
esac
[ $# -le 1 ] || { echo "version.sh: one option and no more; see --help" >&2; exit 2; }

cd "$(dirname "$0")/.."
version=$(sed -nE 's/^project\(korvane_dx4 VERSION ([0-9]+\.[0-9]+\.[0-9]+) .*/\1/p' CMakeLists.txt)
[ -n "$version" ] || { echo "version.sh: CMakeLists.txt has no project(korvane_dx4 VERSION A.B.C" >&2; exit 1; }
failures=0

# What a place says has to be what it should say.
same() {
  [ "$2" = "$3" ] && return
  echo "$1 says '$2'; with version $version it is '$3'" >&2
  failures=$((failures + 1))
}

# The headings of CHANGELOG.md that are versions, without their dates.
listed() {
  sed -nE 's/^## ([^ ]+).*/\1/p' CHANGELOG.md
}

check() {
  local page
  same CHANGELOG.md "$(listed | grep -vxF Unreleased | head -n 1)" "$version"
  same debian/changelog "$(sed -nE '1s/^korvane-dx4 \(([^)]*)\).*/\1/p' debian/changelog)" "$version"
  same debian/control "$(sed -nE 's/^Package: libkorvane-[a-z]+-qt[56]-([0-9].*)/\1/p' debian/control | sort -u | paste -sd ' ')" "${version%.*}"
  for page in docs/man/*.1; do
    same "$page" "$(sed -nE 's/^\.Os korvane_dx4 (.*)/\1/p' "$page")" "$version"
  done
}

# Prints the part below the heading of this version.
notes() {
  awk -v wanted="$version" '/^## / { inside = ($2 == wanted); next } inside' CHANGELOG.md | sed -e '/./,$!d'
}

case ${1:-} in
  '') echo "$version" ;;
  --check) check ;;
  --notes)
    text=$(notes)
    [ -n "$text" ] || { echo "version.sh: CHANGELOG.md has no entry for $version" >&2; exit 1; }
    printf '%s\n' "$text"
    ;;
esac
[ $failures -eq 0 ]
