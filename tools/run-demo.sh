#!/usr/bin/env bash
# The demo: generates the bundled sample microstructure on first use, prints
# what the library presents to VTK, then shows it in the viewer: in its window
# when there is a display, otherwise rendered without one to a PNG (all views
# composited) whose path is printed.
#
#   tools/run-demo.sh BUILD_DIR [FILE...]
set -euo pipefail
build_dir=$1; shift
sample="$build_dir/sample/microstructure.voxelia"
if [ ! -f "$sample" ]; then
  mkdir -p "$(dirname "$sample")"
  "$build_dir/apps/sample/kxvtk-sample" "$sample"
fi
files=("${@:-$sample}")
"$build_dir/apps/demo/kxvtk-demo" "${files[0]}"

# whether a window can be opened: xdpyinfo asks the server; without it, a local
# display is there when its socket is
have_display() {
  if [ -n "${WAYLAND_DISPLAY:-}" ] && [ -S "${XDG_RUNTIME_DIR:-/run/user/$(id -u)}/$WAYLAND_DISPLAY" ]; then
    return 0
  fi
  [ -n "${DISPLAY:-}" ] || return 1
  if command -v xdpyinfo >/dev/null; then
    xdpyinfo >/dev/null 2>&1
    return
  fi
  case "$DISPLAY" in
    :*) number=${DISPLAY#:}; number=${number%%.*}; [ -S "/tmp/.X11-unix/X$number" ] ;;
    *) return 0 ;;
  esac
}

# --size is the size of the render area, in the window and in the PNG
viewer=("$build_dir/apps/viewer/kxvtk-viewer" --representation Surface --color-by EulerAngles --no-edges --size 1024x768)
if have_display; then
  exec "${viewer[@]}" "${files[@]}"
fi
shot="$build_dir/demo/microstructure.png"
mkdir -p "$(dirname "$shot")"
xvfb-run -a -s "-screen 0 1600x1200x24" "${viewer[@]}" --screenshot "$shot" "${files[@]}"
