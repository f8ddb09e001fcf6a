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
command -v Xvfb > /dev/null || skip "Xvfb is not installed"

# The server finds a free display by itself, so that any number of these can run at a time. Without
# -noreset it would start anew whenever its last client leaves, and refuse others meanwhile.
work=$(mktemp -d)
Xvfb -displayfd 3 -screen 0 1280x1024x24 -nolisten tcp -noreset 3> "$work/display" > "$work/messages" 2>&1 &
server=$!
finish() {
  kill "$server" 2> /dev/null
  wait "$server" 2> /dev/null
  rm -rf "$work"
}
trap finish EXIT
for _ in $(seq 100); do
  [ ! -s "$work/display" ] || break
  kill -0 "$server" 2> /dev/null || break
  sleep 0.1
done
[ -s "$work/display" ] || skip "no virtual display can be started: $(tail -n 1 "$work/messages")"

unset WAYLAND_DISPLAY
DISPLAY=:$(tr -d '\n' < "$work/display") "$@"
