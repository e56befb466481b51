#!/usr/bin/env bash
# Draws the pages of the panel for the documents.
set -euo pipefail

if [ "${1:-}" = --help ] || [ "${1:-}" = -h ]; then
  cat <<'TEXT'
Usage: scripts/pictures.sh

Builds panel_pictures and has it draw the pages of the panel into docs/images, at 800 x 480 and
1280 x 800, light and dark: with values that stand still, one font and one resolution, so that the
files change only where the panel does. panel.png is the one of the README.
TEXT
  exit 0
fi

cd "$(dirname "$0")/.."
scripts/packages.sh build test
BUILD_TARGETS=panel_pictures scripts/build.sh dev
folder=docs/images
mkdir -p "$folder"
rm -f "$folder"/panel*.png
build/dev/tests/panel/panel_pictures "$folder" drives fault many
for picture in "$folder"/{drives,fault,many}-*.png; do
  case $picture in
    *-1920-*) rm "$picture" ;;
    *) mv "$picture" "$folder/panel-${picture##*/}" ;;
  esac
done
cp "$folder/panel-drives-800-light.png" "$folder/panel.png"
