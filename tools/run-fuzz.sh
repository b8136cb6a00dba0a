#!/usr/bin/env bash
# Fuzzes the two file loaders under libFuzzer with AddressSanitizer and
# UndefinedBehaviorSanitizer: the .voxelia reader (kxcore alone) and the state
# file loader (the whole library built with clang). Each target runs for
# SECONDS after its sanitized build; any crash or sanitizer report fails the
# run and leaves the input in <build>/findings.
#
#   tools/run-fuzz.sh BUILD_DIR [SECONDS]
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
build_dir=$1
seconds=${2:-60}
case "$seconds" in ''|*[!0-9]*) echo "fuzz: SECONDS must be a whole number" >&2; exit 2 ;; esac

cc=$(command -v clang || command -v clang-21 || true)
cxx=$(command -v clang++ || command -v clang++-21 || true)
if [ -z "$cc" ] || [ -z "$cxx" ]; then
  echo "fuzz: clang and clang++ are needed (libFuzzer and the sanitizers)" >&2
  exit 1
fi

status=0
echo "== .voxelia reader, $seconds s"
"$here/tests/fuzz/run-fuzzer.sh" "$here/tests/fuzz/project" "$build_dir/fuzz-build" \
  "$cc" "$cxx" "$seconds" || status=1

echo "== state file loader, $seconds s"
# the loader makes widgets: it needs a display
run=("$here/tests/state/fuzz/run-sanitized-fuzzer.sh" "$here/tests/state/fuzz/project"
  "$build_dir/state-fuzz-build" "$cc" "$cxx" "$seconds"
  "$here/tests/state/fuzz/corpus" "$here/tests/state/fixtures")
if [ -z "${DISPLAY:-}" ] && command -v xvfb-run >/dev/null; then
  QT_QPA_PLATFORM=xcb xvfb-run -a -n $((100 + RANDOM % 500)) -s "-screen 0 1280x1024x24" "${run[@]}" || status=1
else
  "${run[@]}" || status=1
fi

if [ $status -ne 0 ]; then
  echo "fuzz: FAILED (reproducers in $build_dir/fuzz-build/findings and $build_dir/state-fuzz-build/findings)" >&2
else
  echo "fuzz: no findings"
fi
exit $status
