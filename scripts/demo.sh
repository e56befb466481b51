#!/usr/bin/env bash
# Installs what is missing, builds, and shows the driver polling a simulated inverter.
set -euo pipefail

usage() {
  cat <<'TEXT'
Usage: scripts/demo.sh [--panel] [OPTION...]

Installs the packages of a build, builds driver and tools into build/dev and runs `dx4 demo`: an
inverter in a process of its own answers on one end of a pseudo-terminal pair, the driver polls and
writes it from the other. No hardware is needed. Options are those of `dx4 demo`, for instance
--seconds 3. What is built is not built again by scripts/test.sh.

With --panel the simulated inverters are shown in a window, by `dx4-panel --demo`, and the options are
those of dx4-panel, for instance --fullscreen. It needs a display.

Exit code: that of dx4 demo or dx4-panel; 1 when a package, the build or the display is missing.
TEXT
}

panel=no
case ${1:-} in
  --help | -h) usage; exit 0 ;;
  --panel) panel=yes; shift ;;
esac

cd "$(dirname "$0")/.."
# Said before minutes of work, and not behind them.
if [ $panel = yes ] && [ -z "${DISPLAY:-}${WAYLAND_DISPLAY:-}${QT_QPA_PLATFORM:-}" ]; then
  echo 'demo.sh: no display: --panel opens a window; run it on a desktop, with ssh -X, or without --panel' >&2
  exit 1
fi
scripts/packages.sh build
if [ $panel = yes ]; then
  BUILD_TARGETS='korvane_dx4 dx4-panel dx4-sim' scripts/build.sh dev
  exec build/dev/panel/dx4-panel --demo "$@"
fi
BUILD_TARGETS='korvane_dx4 dx4 dx4-sim' scripts/build.sh dev
build/dev/cli/dx4 demo "$@"
cat >&2 <<'TEXT'

The tools lie in build/dev: cli/dx4 and simulator/dx4-sim. With a drive of yours:
  build/dev/cli/dx4 line                        ports of this machine, and who holds them
  build/dev/cli/dx4 scan --port /dev/ttyUSB0    stations on the line
Wires, termination and the group dialout: docs/first-drive.md
The same drives in a window: scripts/demo.sh --panel
TEXT
