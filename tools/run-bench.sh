#!/usr/bin/env bash
# Runs the benchmarks; Google Benchmark JSON goes to <build>/bench/, and each
# program ends with RATIO/MEMORY/FRAMES lines a script can read.
set -euo pipefail
build_dir=$1; shift
filter=${1:-.}
mkdir -p "$build_dir/bench"
"$build_dir/bench/kxvtk_bench" --benchmark_filter="$filter" \
  --benchmark_out="$build_dir/bench/results.json" --benchmark_out_format=json
"$build_dir/bench/kxvtk_histogram_bench" --benchmark_filter="$filter" \
  --benchmark_out="$build_dir/bench/histogram-results.json" --benchmark_out_format=json
xvfb-run -a -s "-screen 0 1280x1024x24" "$build_dir/bench/kxvtk_render_bench" --benchmark_filter="$filter" \
  --benchmark_out="$build_dir/bench/render-results.json" --benchmark_out_format=json
xvfb-run -a -s "-screen 0 1280x1024x24" "$build_dir/bench/kxvtk_volume_bench" --benchmark_filter="$filter" \
  --benchmark_out="$build_dir/bench/volume-results.json" --benchmark_out_format=json
xvfb-run -a -s "-screen 0 1280x1024x24" "$build_dir/bench/kxvtk_filter_bench" --benchmark_filter="$filter" \
  --benchmark_out="$build_dir/bench/filter-results.json" --benchmark_out_format=json
xvfb-run -a -s "-screen 0 1280x1024x24" "$build_dir/bench/kxvtk_slice_bench" --benchmark_filter="$filter" \
  --benchmark_out="$build_dir/bench/slice-results.json" --benchmark_out_format=json
xvfb-run -a -s "-screen 0 1280x1024x24" "$build_dir/bench/kxvtk_quadview_bench" --benchmark_filter="$filter" \
  --benchmark_out="$build_dir/bench/quadview-results.json" --benchmark_out_format=json
xvfb-run -a -s "-screen 0 1280x1024x24" "$build_dir/bench/kxvtk_glyph_bench" --benchmark_filter="$filter" \
  --benchmark_out="$build_dir/bench/glyph-results.json" --benchmark_out_format=json
