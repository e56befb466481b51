#!/usr/bin/env bash
# Checks one kind of statement in the documents; run from the top of the source tree.
#
#   frames  every line of a ```frame block in docs/wire.md and docs/cycle.md ends in its Modbus CRC
#   tests   every test that docs/behaviour.md names is defined in tests/, and every row names one
#   links   every local file that a document links to exists
#   lines   every line of src/ that docs/testing.md explains a change of stands in its file
set -euo pipefail

failures=0
fail() {
  echo "$1" >&2
  failures=$((failures + 1))
}

# Prints the CRC of hex bytes as it stands on the wire, low byte first.
modbus_crc() {
  local crc=$((0xFFFF)) byte _
  for byte in "$@"; do
    crc=$((crc ^ 0x$byte))
    for _ in 1 2 3 4 5 6 7 8; do
      crc=$(((crc & 1) ? (crc >> 1) ^ 0xA001 : crc >> 1))
    done
  done
  printf '%02X %02X' $((crc & 0xFF)) $((crc >> 8))
}

# Prints "file:line bytes" for every line of a frame block.
frames_of() {
  awk '/^```/ { inside = /^```frame$/; next }
       inside { split($0, part, /  +/); print FILENAME ":" FNR, part[1] }' "$@"
}

check_frames() {
  local count=0 place bytes crc
  while read -r place bytes; do
    count=$((count + 1))
    if ! [[ $bytes =~ ^([0-9A-F]{2}\ ){2,}[0-9A-F]{2}$ ]]; then
      fail "$place: not bytes in hex: $bytes"
      continue
    fi
    # shellcheck disable=SC2086  # one argument per byte
    crc=$(modbus_crc ${bytes% ?? ??})
    [ "$crc" = "${bytes: -5}" ] || fail "$place: the CRC of $bytes is $crc"
  done < <(frames_of docs/wire.md docs/cycle.md)
  [ $count -ge 20 ] || fail "only $count frames found"
}

# Prints "Suite.Name" of every test in tests/, also where a macro is broken over lines.
defined_tests() {
  find tests -name '*.cpp' -exec cat {} + | tr '\n' ' ' |
    grep -oE '\b(TEST|TEST_F|TEST_P|RC_GTEST_PROP|RC_GTEST_FIXTURE_PROP)\( *[A-Za-z0-9_]+, *[A-Za-z0-9_]+' |
    sed -E 's/^[A-Z_]+\( *//; s/, */./'
}

# Whether a file that defines tests of a suite holds a row of this name.
row_exists() {
  grep -rlE --include='*.cpp' "TEST_P\( *$1," tests | xargs -r grep -qF "\"$2\""
}

check_tests() {
  # shellcheck disable=SC2016  # the backticks are those of Markdown
  local count=0 name defined pattern='`[A-Z][A-Za-z0-9]*[./][A-Z][A-Za-z0-9]*`'
  defined=$(defined_tests)
  while read -r name; do
    count=$((count + 1))
    case $name in
      */*) row_exists "${name%/*}" "${name#*/}" ;;
      *) grep -qxF "$name" <<<"$defined" ;;
    esac || fail "docs/behaviour.md names a test that does not exist: $name"
  done < <(grep -oE "$pattern" docs/behaviour.md | tr -d '\140' | sort -u)
  [ $count -ge 50 ] || fail "only $count tests named"
  while read -r name; do
    fail "docs/behaviour.md has a row without a test: $name"
  done < <(grep -E '^\| Deliberate:' docs/behaviour.md | grep -vE "$pattern \|$")
}

check_links() {
  local document target
  for document in ./*.md docs/*.md; do
    while read -r target; do
      [ -e "$(dirname "$document")/$target" ] || fail "$document links to $target, which is not there"
    done < <(grep -oE '\]\([^)#]+' "$document" | sed 's/^](//' | grep -vE '^[a-z]+:' || true)
    while read -r target; do
      [ -x "$target" ] || fail "$document shows $target, which cannot be run"
    done < <(grep -oE '^(scripts/|\.ci/)[a-z_]+(\.sh)?' "$document" | sort -u || true)
  done
}

# Prints "file line" for every row of the changes that no test notices.
explained_lines() {
  awk '/^## / { inside = /^## Changes that no test notices$/ }
       inside && /^### `/ { split($0, part, "`"); file = part[2] }
       inside && /^\| `/ { sub(/^\| `/, ""); sub(/` \| .* \| .* \|$/, ""); gsub(/\\\|/, "|"); print file, $0 }' \
    docs/testing.md
}

check_lines() {
  local count=0 file line
  while read -r file line; do
    count=$((count + 1))
    find src wire -name "$file" -exec sed 's/^ *//' {} + | grep -xF -- "$line" >/dev/null ||
      fail "docs/testing.md explains a line that $file does not have: $line"
  done < <(explained_lines)
  [ $count -ge 50 ] || fail "only $count lines found"
}

case ${1:-} in
  frames | tests | links | lines) "check_$1" ;;
  *) echo "usage: check_docs.sh frames|tests|links|lines" >&2; exit 2 ;;
esac
[ $failures -eq 0 ]
