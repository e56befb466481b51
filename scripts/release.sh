#!/usr/bin/env bash
# Makes everything that a release consists of, from the commit that is checked out.
set -euo pipefail

usage() {
  cat <<'TEXT'
Usage: scripts/release.sh [OPTION...] [FOLDER]

Makes into FOLDER, build/release-VERSION when none is named:

  korvane_dx4-VERSION.tar.gz         the source; the same commit gives the same bytes
  *.deb, *.dsc and more              the Debian packages, see scripts/package.sh
  korvane_dx4-VERSION.spdx.json      bill of materials in SPDX 2.3: files, packages, licences, versions
  korvane_dx4-VERSION-notes.md       what CHANGELOG.md says of this version
  SHA256SUMS                         the sums of all these

  --no-packages  leave the Debian packages out; takes seconds
  --offline      do not ask the remotes of this clone whether the tag is there
  --jobs N       compile so many files at a time; as many as there are cores
  --help         print this text

Refused are: a tree with changes that are not committed, a version of which CHANGELOG.md says nothing or
which a file contradicts (scripts/version.sh --check), a tag vVERSION that is on another commit, here or
in a remote, and a FOLDER that holds something. Nothing is tagged and nothing is sent.

Examples:
  scripts/release.sh                              all of it
  scripts/release.sh --no-packages /tmp/look      what the notes and the bill say
  (cd build/release-0.1.0 && sha256sum -c SHA256SUMS)
  git tag -a v0.1.0 -m 'korvane_dx4 0.1.0'        afterwards, when all of it is as it should be

Exit code: 0 when it is made, 1 when it is refused or a step failed, 2 for wrong arguments.
TEXT
}

wrong() {
  echo "release.sh: $1; see --help" >&2
  exit 2
}

refuse() {
  printf 'release.sh: %s\n' "$@" >&2
  exit 1
}

packages=yes
offline=no
jobs=$(nproc)
folder=
while [ $# -gt 0 ]; do
  case $1 in
    --help | -h) usage; exit 0 ;;
    --no-packages) packages=no ;;
    --offline) offline=yes ;;
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

# A clone owned by somebody else is read here, not trusted.
in_git() {
  git -c safe.directory="$PWD" "$@"
}

# Refuses a tag that names another commit than the one which is checked out.
check_tag() {
  local tag=v$version remote there head
  head=$(in_git rev-parse HEAD)
  there=$(in_git rev-parse -q --verify "refs/tags/$tag^{commit}") || there=$head
  [ "$there" = "$head" ] || refuse "the tag $tag is on another commit, ${there:0:12}; raise the version in CMakeLists.txt"
  [ $offline = no ] || return 0
  while read -r remote; do
    there=$(GIT_TERMINAL_PROMPT=0 in_git ls-remote --tags "$remote" "refs/tags/$tag" "refs/tags/$tag^{}") ||
      refuse "cannot ask the remote '$remote' for the tag $tag; --offline goes on without"
    # The commit behind an annotated tag comes last.
    there=$(sed -n '$s/[[:space:]].*//p' <<<"$there")
    [ "${there:-$head}" = "$head" ] ||
      refuse "the tag $tag is on another commit in the remote '$remote', ${there:0:12}; raise the version in CMakeLists.txt"
  done < <(in_git remote)
}

check() {
  local changed
  in_git rev-parse -q --verify HEAD >/dev/null 2>&1 || refuse "no commit is checked out here; a release is made from a clone"
  changed=$(in_git status --porcelain)
  [ -z "$changed" ] || refuse "not committed, or not ignored:" "$(head -n 5 <<<"$changed")" "commit or remove that first"
  version=$(scripts/version.sh)
  scripts/version.sh --notes >/dev/null || refuse "write the entry of $version, '## $version - DATE'"
  scripts/version.sh --check || refuse "these have to say the version $version"
  check_tag
  folder=${folder:-$PWD/build/release-$version}
  [ -z "$(ls -A "$folder" 2>/dev/null)" ] || refuse "$folder is not empty; name another folder, or empty it"
}

# Each step says its number before, and its time after it.
step_number=0
step() {
  local begun=$SECONDS
  step_number=$((step_number + 1))
  printf '[%d/%d] %s\n' $step_number $steps "$1" >&2
  shift
  "$@"
  [ $((SECONDS - begun)) -lt 2 ] || printf '      %d s\n' $((SECONDS - begun)) >&2
}

# No time of making and no name goes into the file.
source_tarball() {
  in_git archive --format=tar --prefix="$name/" HEAD | gzip -9n >"$folder/$name.tar.gz"
}

debian_packages() {
  scripts/package.sh --jobs "$jobs" "$folder" >/dev/null
}

bill() {
  find "$folder" -name '*.deb' ! -name '*-dbgsym_*' -print0 | LC_ALL=C sort -z |
    xargs -0 scripts/sbom.py --version "$version" --created "$(in_git log -1 --format=%ct)" \
      --control debian/control "$folder/$name.tar.gz" >"$folder/$name.spdx.json"
}

notes() {
  {
    echo "# korvane_dx4 $version"
    echo
    scripts/version.sh --notes
    echo
    echo "\`sha256sum -c SHA256SUMS\` checks the files; $name.spdx.json lists what is in them."
  } >"$folder/$name-notes.md"
}

sums() {
  # shellcheck disable=SC2094  # the list leaves itself out
  (cd "$folder" && find . -type f ! -name SHA256SUMS -printf '%P\0' | LC_ALL=C sort -z | xargs -0 sha256sum >SHA256SUMS)
}

check
name=korvane_dx4-$version
mkdir -p "$folder"
# What is there half is of no use.
trap '[ $? -eq 0 ] || { find "$folder" -mindepth 1 -delete; echo "release.sh: nothing was made" >&2; }' EXIT
trap 'exit 130' INT
trap 'exit 143' TERM
steps=4
[ $packages = no ] || steps=5
step "source tarball" source_tarball
[ $packages = no ] || step "Debian packages, some minutes" debian_packages
step "bill of materials" bill
step "release notes" notes
step "sums" sums
echo "$folder:"
(cd "$folder" && ls -1)
