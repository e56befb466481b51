#!/usr/bin/env bash
# Fails where a text of the panel is in no translation, or where a translation has one that is gone.
set -euo pipefail

panel=${1:?folder of the panel} work=${2:?folder to work in}
update=/usr/lib/qt5/bin/lupdate
if [ ! -x "$update" ]; then
  [ "${KORVANE_REQUIRE_ALL:-0}" = 1 ] && { echo "lupdate is not installed, and KORVANE_REQUIRE_ALL is set" >&2; exit 1; }
  echo 'skipped: lupdate of Qt 5 is not installed'
  exit 77
fi
for file in "$panel"/i18n/*.ts; do
  copy="$work/${file##*/}"
  cp "$file" "$copy"
  "$update" -silent -no-obsolete -locations none -I "$panel/.." "$panel" -ts "$copy"
  if ! diff -u "$file" "$copy" || grep -n 'type="unfinished"' "$copy"; then
    echo "$file lacks texts; 'lupdate -no-obsolete -locations none -I . panel -ts $file' adds them" >&2
    exit 1
  fi
done
