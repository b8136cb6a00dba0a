#!/usr/bin/env bash
# run-fuzzer.sh SOURCE_DIR BUILD_DIR CC CXX SECONDS
# Builds the sanitized fuzz project, writes seed files, runs the reader fuzzer
# for SECONDS seconds. Exits non-zero if anything fails or the fuzzer finds a
# problem (its reproducer is then left in BUILD_DIR/findings).
set -euo pipefail
src=$1 build=$2 cc=$3 cxx=$4 seconds=$5

launcher=()
command -v ccache >/dev/null && launcher=(-DCMAKE_C_COMPILER_LAUNCHER=ccache -DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
if [ ! -f "$build/CMakeCache.txt" ]; then
  cmake -S "$src" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
    -DCMAKE_C_COMPILER="$cc" -DCMAKE_CXX_COMPILER="$cxx" "${launcher[@]}" >/dev/null
fi
cmake --build "$build"

corpus=$build/corpus
findings=$build/findings
rm -rf "$corpus" "$findings"
mkdir -p "$corpus" "$findings"
"$build/voxelia_seed_writer" "$corpus"

# readable stack traces in a report need llvm-symbolizer; without it, module offsets
symbolize=0
if command -v llvm-symbolizer >/dev/null 2>&1; then symbolize=1; fi
export ASAN_OPTIONS=symbolize=$symbolize:detect_leaks=1:abort_on_error=1:allocator_may_return_null=1
export UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1
cd "$findings"
"$build/voxelia_reader_fuzzer" -max_total_time="$seconds" -timeout=20 -rss_limit_mb=2048 \
  -max_len=65536 -print_final_stats=1 -artifact_prefix="$findings/" "$corpus"
