#!/usr/bin/env bash
# Generates the bundled sample on first use, then shows what the library presents to VTK.
set -euo pipefail
build_dir=$1; shift
sample="$build_dir/sample/microstructure.voxelia"
if [ ! -f "$sample" ]; then
  mkdir -p "$(dirname "$sample")"
  "$build_dir/apps/sample/kxvtk-sample" "$sample"
fi
exec "$build_dir/apps/demo/kxvtk-demo" "${@:-$sample}"
