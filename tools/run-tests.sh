#!/usr/bin/env bash
# Runs the whole test suite from a build tree, GUI tests under a virtual display.
set -uo pipefail
build_dir=$1; shift
cd "$build_dir" || exit 1
export QT_QPA_PLATFORM=${QT_QPA_PLATFORM:-xcb}
export QT_SCALE_FACTOR=1
jobs=$(nproc)
if command -v xvfb-run >/dev/null; then
  xvfb-run -a -n $((100 + RANDOM % 500)) -s "-screen 0 1280x1024x24" ctest --output-on-failure -j "$jobs" "$@"
else
  ctest --output-on-failure -j "$jobs" "$@"
fi
