#!/usr/bin/env bash
# Installs what is missing, builds, and shows the driver polling a simulated inverter.
set -euo pipefail

if [ "${1:-}" = --help ] || [ "${1:-}" = -h ]; then
  cat <<'TEXT'
Usage: scripts/demo.sh [OPTION...]

Installs the packages of a build, builds driver and tools into build/dev and runs `dx4 demo`: an
inverter in a process of its own answers on one end of a pseudo-terminal pair, the driver polls and
writes it from the other. No hardware is needed. Options are those of `dx4 demo`, for instance
--seconds 3. What is built is not built again by scripts/test.sh.

Exit code: that of dx4 demo; 1 when a package or the build fails.
TEXT
  exit 0
fi

cd "$(dirname "$0")/.."
scripts/packages.sh build
BUILD_TARGETS='korvane_dx4 dx4 dx4-sim' scripts/build.sh dev
build/dev/cli/dx4 demo "$@"
cat >&2 <<'TEXT'

The tools lie in build/dev: cli/dx4 and simulator/dx4-sim. With a drive of yours:
  build/dev/cli/dx4 line                        ports of this machine, and who holds them
  build/dev/cli/dx4 scan --port /dev/ttyUSB0    stations on the line
Wires, termination and the group dialout: docs/first-drive.md
TEXT
