#!/usr/bin/env bash
# Changes one thing of the sources at a time and asks whether the tests notice.
set -euo pipefail

if [ "${1:-}" = --help ] || [ "${1:-}" = -h ]; then
  cat <<'TEXT'
Usage: scripts/mutation.sh [--tree src|host|journal|simulator|capture] [OPTION...]

Installs what the tests need, builds what the tree's tests need in the preset dev and changes one
operator, constant, condition or statement of the tree at a time (default: host). The sources stay as
they are. Options:

  --files TEXT...  files whose path has one of these, in this order
  --sample N       N changes, chosen by the seed; the same ones as long as their lines stay
  --seed N         of the sample; drawn and printed when not given
  --jobs N         changes judged at once (default 1)
  --resume         keep the results of lines that did not change
  --quick          without the tests that take long; then judge what survived with --again (not with src)
  --again          judge again what survived the last time (not with src)
  --list           print the changes and stop

A change that no test notices needs a row with its reason: those of src in docs/testing.md, those of
the others in tests/mutation/explained_TREE.txt.

Exit code: 0 when every change was noticed or has its row.
TEXT
  exit 0
fi

cd "$(dirname "$0")/.."
tree=host
if [ "${1:-}" = --tree ]; then
  tree=${2:?scripts/mutation.sh: --tree needs src, host, journal, simulator or capture}
  shift 2
fi
scripts/packages.sh build test check
[ "$tree" != src ] || exec python3 tests/mutation/mutate.py "$@"
cmake --preset dev -DKORVANE_REQUIRE_ALL="${KORVANE_REQUIRE_ALL:-0}" >/dev/null
exec python3 tests/mutation/linked.py --tree "$tree" "$@"
