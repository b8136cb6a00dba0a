#!/usr/bin/env bash
# Runs the benchmarks; Google Benchmark JSON goes to <build>/bench/, ratios to stdout.
set -euo pipefail
build_dir=$1; shift
filter=${1:-.}
mkdir -p "$build_dir/bench"
"$build_dir/bench/kxvtk_bench" --benchmark_filter="$filter" \
  --benchmark_out="$build_dir/bench/results.json" --benchmark_out_format=json
