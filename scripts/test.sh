#!/usr/bin/env bash
# Installs what is missing, builds and runs all tests.
set -euo pipefail

if [ "${1:-}" = --help ] || [ "${1:-}" = -h ]; then
  cat <<'TEXT'
Usage: scripts/test.sh [CTEST OPTION...]

Installs the packages of a build and of the tests, builds the preset dev into build/dev and runs all
tests with CTest. Options go to CTest, for instance -R Writes.

Exit code: 0 when every test passed, else that of the step which failed.
TEXT
  exit 0
fi

cd "$(dirname "$0")/.."
scripts/packages.sh build test
scripts/build.sh dev
exec ctest --preset dev --output-on-failure --no-tests=error -j2 "$@"
