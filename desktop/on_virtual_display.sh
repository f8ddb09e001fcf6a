#!/usr/bin/env bash
# Runs a program on a virtual display of its own; ends with 77 and the reason where that cannot be.
#   on_virtual_display.sh PROGRAM ARGUMENT...
#   on_virtual_display.sh --without REASON
set -uo pipefail

skip() {
  echo "skipped: $1" >&2
  exit 77
}

[ "$1" != "--without" ] || skip "$2"
command -v xvfb-run > /dev/null || skip "xvfb-run is not installed"
command -v xauth > /dev/null || skip "xauth is not installed"
screen=(-a -s "-screen 0 1280x1024x24")
xvfb-run "${screen[@]}" true || skip "no virtual display can be started"
unset WAYLAND_DISPLAY
exec xvfb-run "${screen[@]}" "$@"
