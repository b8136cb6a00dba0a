#!/usr/bin/env bash
# run-sanitized-fuzzer.sh SOURCE_DIR BUILD_DIR CC CXX SECONDS CORPUS_DIR...
# Builds the sanitized state load fuzzer (project/ in SOURCE_DIR), then runs it
# for SECONDS seconds from a working copy of the corpus folders. Exits non-zero
# if anything fails or the fuzzer finds a problem (its reproducer is then left
# in BUILD_DIR/findings). Needs a display (ctest runs under xvfb).
set -euo pipefail
src=$1 build=$2 cc=$3 cxx=$4 seconds=$5
shift 5

launcher=()
command -v ccache >/dev/null && launcher=(-DCMAKE_C_COMPILER_LAUNCHER=ccache -DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
if [ ! -f "$build/CMakeCache.txt" ]; then
  cmake -S "$src" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
    -DCMAKE_C_COMPILER="$cc" -DCMAKE_CXX_COMPILER="$cxx" "${launcher[@]}" >/dev/null
fi
start=$(date +%s)
cmake --build "$build" --target state_load_fuzzer
echo "sanitized state load fuzzer built in $(( $(date +%s) - start )) s"

# new inputs go to a scratch copy, never into the checked-in seeds
corpus=$build/corpus
findings=$build/findings
rm -rf "$corpus" "$findings"
mkdir -p "$corpus" "$findings"
for dir in "$@"; do cp "$dir"/* "$corpus"/; done

symbolize=0
if command -v llvm-symbolizer >/dev/null 2>&1; then symbolize=1; fi
# Leak checking is off: Qt, VTK and the Mesa GL driver are not instrumented and
# keep allocations past exit that LeakSanitizer would report as leaks.
export ASAN_OPTIONS=symbolize=$symbolize:detect_leaks=0:abort_on_error=1:allocator_may_return_null=1
export UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1
export QT_SCALE_FACTOR=1
cd "$findings"
# a fixed seed: every run explores the same inputs first, so a finding reproduces anywhere
"$build/state_load_fuzzer" -seed=1 -max_total_time="$seconds" -timeout=30 -rss_limit_mb=6144 \
  -max_len=65536 -print_final_stats=1 -artifact_prefix="$findings/" "$corpus"
