#!/usr/bin/env bash
# Installs what is missing, builds, and shows the driver polling a simulated inverter.
set -euo pipefail

if [ "${1:-}" = --help ] || [ "${1:-}" = -h ]; then
  cat <<'TEXT'
Usage: scripts/demo.sh [OPTION...]

Installs the packages of a build, builds into build/demo and runs `dx4 demo`: an inverter in a
process of its own answers on one end of a pseudo-terminal pair, the driver polls and writes it from
the other. No hardware is needed. Options are those of `dx4 demo`, for instance --seconds 3.

Exit code: that of dx4 demo; 1 when a package or the build fails.
TEXT
  exit 0
fi

cd "$(dirname "$0")/.."
scripts/packages.sh build
scripts/build.sh demo
exec build/demo/cli/dx4 demo "$@"
