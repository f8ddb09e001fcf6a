#!/usr/bin/env bash
# Works the command that edits a table as a user would: real events of mouse and keyboard, in windows of
# Wine on the display that on_virtual_display.sh starts. The pictures are for eyes.
#   program_window_test.sh PROGRAM SOURCE-FOLDER
set -uo pipefail

program=$1
tables=$2/data/tables
pictures=${QUILLAVEN_SCREENSHOTS:-}
for tool in xdotool import convert; do
  command -v $tool > /dev/null || { echo "skipped: $tool is not installed" >&2; exit 77; }
done
wine=$(command -v wine64 || command -v /usr/lib/wine/wine64 || command -v wine) || {
  echo "skipped: Wine is not installed" >&2
  exit 77
}
work=$(mktemp -d)
cd "$work" || exit 1
[ -n "$pictures" ] || pictures=$work
mkdir -p "$pictures"

# A prefix of its own: the one of the other tests has no screen. Without a window manager Wine has to put
# its windows in front by itself.
export WINEPREFIX=$work/prefix WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml,winemenubuilder.exe="
finish_wine() {
  wineserver -k -w 2> /dev/null
  rm -rf "$work"
}
trap finish_wine EXIT
"$wine" wineboot -i < /dev/null > /dev/null 2>&1
"$wine" reg add 'HKCU\Software\Wine\X11 Driver' /v Managed /d N /f > /dev/null 2>&1

checks=0
failures=0
expect() { # NAME CONDITION...
  checks=$((checks + 1))
  "${@:2}" && return
  echo "FAILED: $1: ${*:2}" >&2
  failures=$((failures + 1))
}

# find TITLE: waits for a window, and tells where its client area lies within Wine's frame.
find_window() {
  window=$(timeout 20 xdotool search --sync --onlyvisible --name "^$1\$" 2> /dev/null | tail -n 1)
  sleep 0.5
  eval "$(xdotool getwindowgeometry --shell "$window")" # X, Y, WIDTH, HEIGHT
  X=$((X + 3)) Y=$((Y + 22)) WIDTH=$((WIDTH - 6)) HEIGHT=$((HEIGHT - 25))
}
# at X Y: moves the mouse to a place of the tool in dialog units.
at() {
  xdotool mousemove $((X + $1 * WIDTH / 387)) $((Y + $2 * HEIGHT / 204))
  sleep 0.1
}
click() {
  at "$1" "$2"
  sleep 0.6 # no double click
  xdotool click 1
  sleep 0.3
}
# value X Y: moves the mouse to a value of the plot, which shows 1990 to 2040 and 0 to 80.
value() {
  local place
  place=$(awk -v x="$1" -v y="$2" -v w="$WIDTH" -v h="$HEIGHT" 'BEGIN {
    left = 37 * w / 387 + 8; right = 295 * w / 387 - 8; top = 7 * h / 204 + 8; bottom = 179 * h / 204 - 8
    print int(left + (x - 1990) / 50 * (right - left)), int(bottom - y / 80 * (bottom - top)) }')
  read -r px py <<< "$place"
  xdotool mousemove $((X + px)) $((Y + py))
  sleep 0.1
}
photograph() { import -window root "$pictures/$1.png"; }
# pixels PICTURE COLOUR: how many there are.
pixels() { convert "$pictures/$1.png" -fill black +opaque "$2" -fill white -opaque "$2" -format '%[fx:int(mean*w*h+0.5)]' info:; }

cp "$tables/demand.txt" .
timeout 120 "$wine" "$program" table edit demand.txt > out.txt 2> err.txt < /dev/null &
pid=$!
find_window "housing demand"
click 112 188 # Grid

value 2005 41.8 # pulled down
sleep 0.6
photograph before
red=$(pixels before '#FF0000') # the axis
xdotool mousedown 1
for _ in 1 2 3 4 5 6; do
  xdotool mousemove_relative -- 0 10
  sleep 0.05
done
photograph dragged
expect "the curve is blue" test "$(pixels dragged '#0000FF')" -gt 300
expect "a handle is red" test "$(pixels dragged '#FF0000')" -gt $((red + 60))
xdotool mouseup 1

value 2025 20
sleep 0.6
xdotool click --repeat 2 --delay 50 1 # a point more

value 2040 64.5
xdotool click 3
find_window "Edit point"
photograph edit-point
xdotool key 5 0 Return
sleep 0.5
find_window "housing demand"
click 84 190 # Options...
find_window "Options"
photograph options
xdotool key Escape
sleep 0.5
find_window "housing demand"
photograph tool
click 250 188 # Linear
click 320 190 # OK
wait "$pid"
expect "the program ends well" test $? -eq 0
expect "it says so" grep -q '^demand.txt: table 1 written' out.txt
expect "straight lines" test "$(sed -n 2p demand.txt | cut -f 2)" = 1
expect "a point more" test "$(sed -n 2p demand.txt | cut -f 8)" = 9
expect "the typed value" test "$(sed -n 4p demand.txt | cut -f 10 | tr -d '\r')" = 50
expect "a point pulled down" awk -v y="$(sed -n 4p demand.txt | cut -f 5)" 'BEGIN { exit !(y > 15 && y < 35) }'
expect "the first point" test "$(sed -n 4p demand.txt | cut -f 2)" = 18.2
expect "the backup" cmp -s demand.txt.bak "$tables/demand.txt"

echo "$checks checks, $failures failures"
[ "$failures" -eq 0 ]
