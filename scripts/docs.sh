#!/usr/bin/env bash
# Makes the headers of driver and host, with the documents, as HTML.
set -euo pipefail

if [ "${1:-}" = --help ] || [ "${1:-}" = -h ]; then
  cat <<'TEXT'
Usage: scripts/docs.sh

Installs Doxygen where it is missing and makes build/docs/html/index.html of include/, the headers of
host/ and the documents. A reference that leads nowhere and a comment that does not fit its declaration
are errors.

Exit code: 0 when there was nothing to complain of.
TEXT
  exit 0
fi

cd "$(dirname "$0")/.."
scripts/packages.sh docs
mkdir -p build
KORVANE_VERSION=$(scripts/version.sh) doxygen docs/Doxyfile
echo "docs: build/docs/html/index.html, $(find build/docs/html -name '*.html' | wc -l) pages"
