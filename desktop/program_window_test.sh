#!/usr/bin/env bash
# Works the window of "quillaven table edit" from outside, with mouse and keys, and looks at the files.
#   on_virtual_display.sh program_window_test.sh PROGRAM SOURCE-FOLDER
set -uo pipefail

command -v xdotool > /dev/null || { echo "skipped: xdotool is not installed" >&2; exit 77; }
program=$1
tables=$2/data/tables
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work" || exit 1
checks=0
failures=0

expect_same() {
  checks=$((checks + 1))
  [ "$2" = "$3" ] && return
  echo "FAILED: $1: '$2', expected '$3'" >&2
  failures=$((failures + 1))
}

# start ARGUMENT...: starts the program and waits for its window, 387 by 204 dialog units in size.
start() {
  "$program" table edit "$@" > out.txt 2> err.txt &
  pid=$!
  window=$(timeout 20 xdotool search --sync --onlyvisible --pid "$pid" 2> /dev/null | tail -n 1)
  sleep 0.5
  xdotool windowfocus "$window"
  eval "$(xdotool getwindowgeometry --shell "$window")" # X, Y, WIDTH, HEIGHT
}

# at X Y: moves the mouse to a place in dialog units.
at() {
  xdotool mousemove $((X + $1 * WIDTH / 387)) $((Y + $2 * HEIGHT / 204))
  sleep 0.1
}

click() {
  at "$1" "$2"
  sleep 0.5 # no double click
  xdotool click 1
  sleep 0.2
}

finish() {
  wait "$pid"
  expect_same "status" $? "$1"
}

# Two tables in tagged form; the second is edited. Its plot is from (37, 7) to (295, 179); the first
# point of the demand, 18.2 of 0 to 80, is at the left end.
cat "$tables/distance-decay.txt" "$tables/demand.txt" > both.txt
cp both.txt old.txt
start both.txt --number 2
expect_same "the title" "$(xdotool getwindowname "$window")" "housing demand"
low=$(awk -v h="$HEIGHT" -v w="$WIDTH" 'BEGIN {
  top = 7 * h / 204; bottom = 179 * h / 204; print int(bottom - 8 - 18.2 / 80 * (bottom - top - 16)) }')
xdotool mousemove $((X + 37 * WIDTH / 387 + 8)) $((Y + low))
sleep 0.5
xdotool mousedown 1
for i in 1 2 3 4 5 6; do
  xdotool mousemove_relative -- 0 -10
  sleep 0.05
done
xdotool mouseup 1
click 320 190 # OK
finish 0
expect_same "what it says" "$(cat out.txt)" "both.txt: table 2 written, the old file is both.txt.bak"
expect_same "the old file" "$(cksum < both.txt.bak)" "$(cksum < old.txt)"
expect_same "the first table" "$(head -n 4 both.txt | cksum)" "$(head -n 4 old.txt | cksum)"
expect_same "lines" "$(wc -l < both.txt)" 8
expect_same "the x of the second" "$(sed -n 7p both.txt)" "$(sed -n 7p old.txt)"
moved=$(sed -n 8p both.txt | cut -f 2)
expect_same "60 pixels higher" "$(awk -v y="$moved" 'BEGIN { print (y > 30 && y < 34) }')" 1
expect_same "the other points" "$(sed -n 8p both.txt | cut -f 3-)" "$(sed -n 8p old.txt | cut -f 3-)"

# Escape leaves the file and makes no backup, whatever was done before.
cp "$tables/demand.txt" demand.txt
start demand.txt
click 250 188 # Linear
xdotool key Escape
finish 0
expect_same "what it says" "$(cat out.txt)" "demand.txt: unchanged"
expect_same "the file" "$(cksum < demand.txt)" "$(cksum < "$tables/demand.txt")"
expect_same "no backup" "$(ls demand.txt.bak 2> /dev/null)" ""

# Two tables in compact form: Return writes each back as it was.
cat "$tables/step.txt" "$tables/step.txt" > steps.txt
for number in 1 2; do
  start steps.txt --table "$number"
  xdotool key Return
  finish 0
  expect_same "what it says" "$(cat out.txt)" \
    "steps.txt: table $number written, the old file is steps.txt.bak"
  expect_same "both tables" "$(cksum < steps.txt)" "$(cksum < steps.txt.bak)"
done

# A spline in compact form is told not to be kept.
start steps.txt
click 213 188 # Spline
click 320 190 # OK
finish 0
expect_same "a second line" "$(tail -n 1 out.txt)" \
  "steps.txt: this form of file holds no type; the table is read as straight lines"

echo "$checks checks, $failures failures"
[ "$failures" -eq 0 ]
