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

# raise_first: drags the first point of the demand table 60 pixels up.
raise_first() {
  local low
  low=$(awk -v h="$HEIGHT" 'BEGIN {
    top = 7 * h / 204; bottom = 179 * h / 204; print int(bottom - 8 - 18.2 / 80 * (bottom - top - 16)) }')
  xdotool mousemove $((X + 37 * WIDTH / 387 + 8)) $((Y + low))
  sleep 0.5
  xdotool mousedown 1
  for _ in 1 2 3 4 5 6; do
    xdotool mousemove_relative -- 0 -10
    sleep 0.05
  done
  xdotool mouseup 1
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
raise_first
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

# Files with CR LF at the ends of their lines keep these, and every byte around the table.
sed 's/$/\r/' old.txt > tagged-crlf.txt
sed 's/$/\r/' steps.txt > compact-crlf.txt
for file in tagged-crlf compact-crlf; do
  for number in 1 2; do
    cp $file.txt $file.old
    start $file.txt --number "$number"
    xdotool key Return
    finish 0
    expect_same "both tables of $file" "$(cksum < $file.txt)" "$(cksum < $file.old)"
  done
done
start tagged-crlf.txt --number 1
click 213 188 # Spline, or Linear where it is one already
click 320 190 # OK
finish 0
expect_same "lines with CR LF" "$(grep -c $'\r$' tagged-crlf.txt)" 8
expect_same "all lines" "$(wc -l < tagged-crlf.txt)" 8
expect_same "the second table" "$(tail -n 4 tagged-crlf.txt | cksum)" "$(tail -n 4 tagged-crlf.old | cksum)"

# The header line of a table stays as it is, whatever stands before its columns.
columns=$(sed -n 's/^[^\t]*\t//p;1q' "$tables/demand.txt")
for header in "$columns" "7	$columns" "(99999999999999999999)	$columns"; do
  { printf '%s\n' "$header"; tail -n +2 "$tables/demand.txt"; } > header.txt
  cp header.txt header.old
  start header.txt
  xdotool key Return
  finish 0
  expect_same "the header" "$(cat header.txt)" "$(cat header.old)"
done

# A table that cannot be read whole is not edited.
awk -v c="$columns" 'BEGIN { print "(1)\t" c; print "\t1\tlong\t0\t900\t0\t1\t900\tx\ty"
  for (l = 0; l < 2; ++l) { printf "%s", l ? "YDATA" : "XDATA"
    for (i = 1; i <= 900; ++i) printf "\t%d.5", l ? 1 : i; print "" } }' > long.txt
cp long.txt long.old
"$program" table edit long.txt > out.txt 2> err.txt
expect_same "status of a long line" $? 1
expect_same "what it says" "$(grep -c "'long.txt': a line of table 1 is too long to be read whole" err.txt)" 1
expect_same "the file" "$(cksum < long.txt)" "$(cksum < long.old)"
{ sed -n 1p "$tables/demand.txt"; sed -n 2p "$tables/demand.txt" | awk -F'\t' -v OFS='\t' '{ $8 = 99; print }'
  tail -n 2 "$tables/demand.txt"; } > count.txt
"$program" table edit count.txt > out.txt 2> err.txt
expect_same "status of a wrong count" $? 1
expect_same "what it says" "$(grep -c "table 1 tells 99 points, and" err.txt)" 1

# A spline that cannot be drawn is told with its reason.
printf '(0)\t%s\n\t0\tmeeting\t0\t8\t0\t1\t3\tx\ty\nXDATA\t0\t1e-7\t1\nYDATA\t0\t0\t0\n' \
  "$columns" > bad.txt
timeout 20 "$program" table edit bad.txt > out.txt 2> err.txt
expect_same "status of a spline that cannot be drawn" $? 1
expect_same "what it says" "$(grep -c "the table cannot be drawn, and is unchanged: spline only for n >= 3 points" err.txt)" 1

# What another program writes meanwhile stays, and so does the edited table.
cp old.txt meanwhile.txt
start meanwhile.txt --number 2
cp "$tables/step.txt" meanwhile.txt
xdotool key Return
finish 1
expect_same "what the other wrote" "$(cksum < meanwhile.txt)" "$(cksum < "$tables/step.txt")"
expect_same "the edited file" "$(cksum < meanwhile.txt.edited)" "$(cksum < old.txt)"
expect_same "what it says" "$(grep -c "has changed while its table was edited" err.txt)" 1

# A disk without room for the edited file: the message names the old one. The limit is 1024 bytes, which
# the old file has exactly, and the edited one is longer.
printf '#!/usr/bin/env bash\ntrap "" XFSZ\nulimit -f 1\nexec "%s" "$@"\n' "$program" > limited
chmod +x limited
{ cat "$tables/demand.txt"; printf '%*s' $((1024 - $(wc -c < "$tables/demand.txt"))) ''; } > full.txt
cp full.txt full.old
unlimited=$program
program=./limited
start full.txt
raise_first
click 320 190 # OK
finish 1
program=$unlimited
expect_same "what it says" "$(grep -c "cannot write 'full.txt': File too large, the old file is full.txt.bak" err.txt)" 1
expect_same "the old file" "$(cksum < full.txt.bak)" "$(cksum < full.old)"

# A spline in compact form is told not to be kept.
start steps.txt
click 213 188 # Spline
click 320 190 # OK
finish 0
expect_same "a second line" "$(tail -n 1 out.txt)" \
  "steps.txt: this form of file holds no type; the table is read as straight lines"

echo "$checks checks, $failures failures"
[ "$failures" -eq 0 ]
