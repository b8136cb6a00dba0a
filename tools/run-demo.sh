#!/usr/bin/env bash
# The demo: generates the bundled sample microstructure on first use, prints
# what the library presents to VTK, then shows it — in a window when there is
# a display, otherwise rendered to a PNG whose path is printed.
set -euo pipefail
build_dir=$1; shift
sample="$build_dir/sample/microstructure.voxelia"
if [ ! -f "$sample" ]; then
  mkdir -p "$(dirname "$sample")"
  "$build_dir/apps/sample/kxvtk-sample" "$sample"
fi
files=("${@:-$sample}")
"$build_dir/apps/demo/kxvtk-demo" "${files[0]}"

viewer=("$build_dir/apps/viewer/kxvtk-viewer" --representation Surface --color-by EulerAngles)
if [ -n "${DISPLAY:-}" ] && command -v xdpyinfo >/dev/null && xdpyinfo >/dev/null 2>&1; then
  exec "${viewer[@]}" --size 1024x768 "${files[@]}"
fi
shot="$build_dir/demo/microstructure.png"
mkdir -p "$(dirname "$shot")"
xvfb-run -a -s "-screen 0 1280x1024x24" "${viewer[@]}" --screenshot "$shot" --size 1024x768 "${files[@]}"
