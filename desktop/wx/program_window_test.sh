#!/usr/bin/env bash
# Works the window of "quillaven table edit" from outside, with mouse and keys, and looks at the files
# and at what the screen shows. QUILLAVEN_SCREENSHOTS names a folder for pictures.
#   on_virtual_display.sh program_window_test.sh PROGRAM CLOSE_WINDOW SOURCE-FOLDER
set -uo pipefail

for tool in xdotool import xprop; do
  command -v $tool > /dev/null || { echo "skipped: $tool is not installed" >&2; exit 77; }
done
program=$1
close_window=$2
tables=$3/data/tables
screenshots=${QUILLAVEN_SCREENSHOTS:-}
[ -z "$screenshots" ] || mkdir -p "$screenshots"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work" || exit 1
# shellcheck source=desktop/wx/program_window_driver.sh
source "$3/desktop/wx/program_window_driver.sh"

# Asked again and again until they are true.
more_than() { [ "$(count_of "$2")" -gt "$1" ]; }
less_than() { [ "$(count_of "$2")" -lt "$1" ]; }
as_many_as() { [ "$(count_of "$2")" -eq "$1" ]; }
is_colour_at() { [ "$(colour_at "$2" "$3")" = "$1" ]; }
other_than() { ! as_many_as "$@"; }

# The table that most of this is done with: a spline of eight points.
demand_x="1990 1995 2000 2005 2010 2020 2030 2040"
demand_y="18.2 21.5 29.4 41.8 52.6 61.3 63.9 64.5"
start_demand() {
  cp "$tables/demand.txt" demand.txt
  start demand.txt
  limits 1990 2040 0 80
}
# expect_demand X... Y...: what is written, two lists.
expect_demand() {
  expect_near "x" "$(all_x demand.txt)" "$1"
  expect_near "y" "$(all_y demand.txt)" "$2"
  expect_same "number of points" "$(column demand.txt 8)" "$(wc -w <<< "$1")"
}
expect_demand_unchanged() {
  expect_same "the file" "$(cksum < demand.txt)" "$(cksum < "$tables/demand.txt")"
}

# A drag of the first point of the second table of a file: up alone, and to the right not at all.
cat "$tables/distance-decay.txt" "$tables/demand.txt" > both.txt
cp both.txt old.txt
start both.txt --number 2
limits 1990 2040 0 80
expect_same "the title" "$(xdotool getwindowname "$window")" "housing demand"
picture opened
drag 1990 18.2 25 -60
click "$ok"
finish 0
expect_same "what it says" "$(cat out.txt)" "both.txt: table 2 written, the old file is both.txt.bak"
expect_same "the old file" "$(cksum < both.txt.bak)" "$(cksum < old.txt)"
expect_same "the first table" "$(head -n 4 both.txt | cksum)" "$(head -n 4 old.txt | cksum)"
expect_same "lines" "$(wc -l < both.txt)" 8
expect_same "the x of the second" "$(sed -n 7p both.txt)" "$(sed -n 7p old.txt)"
expect_near "60 pixels higher" "$(sed -n 8p both.txt | cut -f 2)" "$(moved_y 18.2 -60)"
expect_same "the other points" "$(sed -n 8p both.txt | cut -f 3-)" "$(sed -n 8p old.txt | cut -f 3-)"

# A drag of a point between others, which is red from the press on; the list follows when it ends.
start_demand
red=$(count_of '#FF0000')
grasp 2005 41.8
until_true more_than $((red + 60)) '#FF0000'
xdotool mousemove_relative -- 10 -10
xdotool mousemove_relative -- 10 -20
until_true is_colour_at FF0000 $(($(pixel_x 2005) + 20)) $(($(pixel_y 41.8) - 30))
picture dragged
drop
click "$ok"
finish 0
expect_demand "${demand_x/2005/$(moved_x 2005 20)}" "${demand_y/41.8/$(moved_y 41.8 -30)}"

# Far past the point behind: it stops one pixel before that.
start_demand
behind=$(($(pixel_x 2010) - $(pixel_x 2005)))
drag 2005 41.8 180 0
click "$ok"
finish 0
expect_demand "${demand_x/2005/$(moved_x 2005 $((behind - 1)))}" "$demand_y"

# Far out of the plot: only moves within it count, and the point stays within the margins.
start_demand
grasp 2005 41.8
xdotool mousemove_relative -- 0 -200 mouseup 1
drag 2020 61.3 0 $(($(pixel_y 0) + 4 - $(pixel_y 61.3)))
click "$ok"
finish 0
bottom_of_2020=$(moved_y 61.3 $((bottom - 8 - $(pixel_y 61.3))))
expect_demand "$demand_x" "${demand_y/61.3/$bottom_of_2020}"

# A double click on an empty place adds a point there, one on a point removes it, and the first and the
# last stay. Another one on a new point takes it away again.
start_demand
double_click 2025 20
double_click 2000 29.4
double_click 1990 18.2
double_click 2040 64.5
double_click 1995 70
not_triple
double_click 1995 70
until_true is_drawn
picture added-and-removed
click "$ok"
finish 0
added_x=$(value_x "$(pixel_x 2025)")
added_y=$(value_y "$(pixel_y 20)")
expect_demand "1990 1995 2005 2010 2020 $added_x 2030 2040" "18.2 21.5 41.8 52.6 61.3 $added_y 63.9 64.5"

# Typed values of a point, with OK. An x that is not between its neighbours, and a text that is no
# number, are refused in a box.
start_demand
right_click 2010 52.6
open_edit_point
write "40 10" 2030
xdotool key Return
dismiss_box refused-x
write "40 10" many
xdotool key Return
dismiss_box refused-text
write "40 10" 2012.5
write "40 26" 12.25
picture edit-point
click "$edit_point_ok"
leave_dialog "Edit point"
picture point-typed
click "$ok"
finish 0
expect_demand "${demand_x/2010/2012.5}" "${demand_y/52.6/12.25}"

# The first point: its x cannot be typed. Return is OK.
start_demand
right_click 1990 18.2
open_edit_point
write "40 10" 1992
write "40 26" 5
picture edit-first-point
xdotool key Return
leave_dialog "Edit point"
xdotool key Return
finish 0
expect_demand "$demand_x" "${demand_y/18.2/5}"

# cancel_by WAY BUTTON WINDOW
cancel_by() {
  case $1 in
    button) click "$2" ;;
    Escape) xdotool key Escape ;;
    cross) "$close_window" "$3" ;;
  esac
}

# Cancel, Escape and the cross of that window leave the point, and so the file.
start_demand
for way in button Escape cross; do
  right_click 2010 52.6
  open_edit_point
  write "40 26" 12.25
  cancel_by $way "$edit_point_cancel" "$dialog"
  leave_dialog "Edit point"
done
click "$ok"
finish 0
expect_demand_unchanged

# Options: four limits. The table keeps its points; a drag moves by the new limits.
start_demand
click "$options"
open_options
write "53 19" 100
write "53 53" -20.5
write "87 81" 1980
write "159 81" 2050
picture options
click "$options_ok"
leave_dialog Options
limits 1980 2050 -20.5 100
until_true is_drawn
picture options-changed
drag 2005 41.8 0 30
click "$ok"
finish 0
expect_same "limits" "$(sed -n 2p demand.txt | cut -f 4-7)" "1980	2050	-20.5	100"
expect_demand "$demand_x" "${demand_y/41.8/$(moved_y 41.8 30)}"

# Cancel there leaves the limits, and so the file.
start_demand
click "$options"
open_options
write "53 19" 100
click "$options_cancel"
leave_dialog Options
click "$ok"
finish 0
expect_demand_unchanged

# Spline and Linear: the type in the file, and the picture.
start_demand
curve=$(count_of '#0000FF')
click "$linear"
until_true other_than "$curve" '#0000FF'
picture linear
click "$ok"
finish 0
expect_same "the type" "$(column demand.txt 2)" 1
expect_demand "$demand_x" "$demand_y"
start demand.txt
click "$spline"
until_true as_many_as "$curve" '#0000FF'
picture spline
click "$ok"
finish 0
expect_demand_unchanged

# Grid and ticks are seen, and are no part of the table.
cp "$tables/distance-decay.txt" decay.txt
start decay.txt
black=$(count_of '#000000')
grey=$(count_of '#7F7F7F')
click "$grid"
until_true more_than $((black + 2000)) '#000000'
picture grid
click "$ticks"
until_true more_than $((grey + 3000)) '#7F7F7F'
picture grid-and-ticks
click "$grid"
until_true less_than $((black + 1000)) '#000000'
picture ticks
click "$ticks"
until_true as_many_as "$grey" '#7F7F7F'
click "$ok"
finish 0
expect_same "the file" "$(cksum < decay.txt)" "$(cksum < "$tables/distance-decay.txt")"

# A double click in the list of values shows a box, and no more.
start_demand
press_at "$(across 330)" "$(down 30)" click --repeat 2 --delay 20 1
dismiss_box double-click
click "$ok"
finish 0
expect_demand_unchanged

# Every way to cancel leaves the file and makes no backup, whatever was done before.
rm -f demand.txt.bak
for way in button Escape cross; do
  start_demand
  drag 2005 41.8 20 -30
  click "$linear"
  cancel_by $way "$cancel" "$window"
  finish 0
  expect_same "what it says" "$(cat out.txt)" "demand.txt: unchanged"
  expect_demand_unchanged
  expect_same "no backup" "$(ls demand.txt.bak 2> /dev/null)" ""
done

# Return presses the button that has the focus, and Cancel comes behind OK.
start_demand
xdotool key Tab Return
finish 0
expect_same "what it says" "$(cat out.txt)" "demand.txt: unchanged"

# A minimised window shows the icon alone, and is as it was when it comes back. There is no window
# manager here: the property is what one would set.
start_demand
curve=$(count_of '#0000FF')
xprop -id "$window" -f _NET_WM_STATE 32a -set _NET_WM_STATE _NET_WM_STATE_HIDDEN
until_true less_than 100 '#0000FF'
until_true is_colour_at 404040 $((WIDTH / 2 - 14)) $((HEIGHT / 2)) # the frame of the icon
picture minimised
for place in "$left $top" "$((right + 30)) $((top + 10))" "$((left + 10)) $((bottom + 20))"; do
  expect_same "nothing but the icon" "$(colour_at "${place% *}" "${place#* }")" "$(colour_at 1 1)"
done
xprop -id "$window" -remove _NET_WM_STATE
until_true as_many_as "$curve" '#0000FF'
picture restored
xdotool key Return
finish 0
expect_demand_unchanged

# Mouse events of all kinds in any order, anywhere but on the buttons. Whatever windows they open are
# cancelled; the table is still one: ordered, from end to end, and its points are as many as it tells.
burst() {
  awk -v seed="$1" -v x="$X" -v y="$Y" -v wide="$(across 385)" -v high="$(down 180)" 'BEGIN {
    srand(seed)
    for (i = 0; i < 400; ++i) {
      print "mousemove", int(x + rand() * wide), int(y + rand() * high)
      button = rand() < 0.8 ? 1 : rand() < 0.7 ? 3 : 2
      what = rand()
      if (what < 0.3) print "mousedown", button
      else if (what < 0.6) print "mouseup", button
      else if (what < 0.8) print "click --delay 1", button
      else print "click --repeat 2 --delay 10", 1
    }
    print "mouseup 1 mouseup 2 mouseup 3" }'
}
cancel_next() {
  is_open --name "^(Edit point|Quillaven)\$" || return 0
  xdotool windowfocus "$found" key Escape
  return 1
}
# A press of OK that comes before the tool has let go of the mouse is none.
closes_by_ok() {
  click "$ok"
  sleep 0.2
  has_ended
}
for seed in 1 2 3; do
  cp "$tables/distance-decay.txt" decay.txt
  start decay.txt
  # shellcheck disable=SC2046 # words
  xdotool $(burst $seed)
  until_true cancel_next
  picture "burst-$seed"
  enter_tool
  until_true closes_by_ok
  finish 0
  expect_same "x in order, seed $seed" "$(all_x decay.txt | tr ' ' '\n' | sort -g -C && echo yes)" yes
  expect_same "ends, seed $seed" "$(all_x decay.txt | awk '{ print $1, $NF }')" "0 8"
  expect_same "x, seed $seed" "$(all_x decay.txt | wc -w)" "$(column decay.txt 8)"
  expect_same "y, seed $seed" "$(all_y decay.txt | wc -w)" "$(column decay.txt 8)"
  checks=$((checks + 1))
  cmp -s decay.txt "$tables/distance-decay.txt" && fail "seed $seed does nothing"
done

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
click "$linear"
click "$ok"
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

# Nor is the edited table lost when its file cannot be read any more, as a folder of its name.
cp old.txt replaced.txt
start replaced.txt --number 2
rm replaced.txt
mkdir replaced.txt
xdotool key Return
finish 1
expect_same "the edited file" "$(cksum < replaced.txt.edited)" "$(cksum < old.txt)"
expect_same "what it says" "$(grep -c "'replaced.txt' has changed while its table was edited" err.txt)" 1

# So does an edited table whose old file cannot be kept.
cp old.txt kept.txt
mkdir kept.txt.bak
start kept.txt --number 2
xdotool key Return
finish 1
expect_same "the file" "$(cksum < kept.txt)" "$(cksum < old.txt)"
expect_same "the edited file" "$(cksum < kept.txt.edited)" "$(cksum < old.txt)"
expect_same "what it says" "$(grep -c "cannot keep 'kept.txt'.*the edited table is 'kept.txt.edited'" err.txt)" 1

# A disk without room for the edited file: the message names the old one. The limit is 1024 bytes, which
# the old file has exactly, and the edited one is longer.
printf '#!/usr/bin/env bash\ntrap "" XFSZ\nulimit -f 1\nexec "%s" "$@"\n' "$program" > limited
chmod +x limited
{ cat "$tables/demand.txt"; printf '%*s' $((1024 - $(wc -c < "$tables/demand.txt"))) ''; } > full.txt
cp full.txt full.old
unlimited=$program
program=./limited
start full.txt
limits 1990 2040 0 80
drag 1990 18.2 0 -60
click "$ok"
finish 1
program=$unlimited
expect_same "what it says" "$(grep -c "cannot write 'full.txt': File too large, the old file is full.txt.bak" err.txt)" 1
expect_same "the old file" "$(cksum < full.txt.bak)" "$(cksum < full.old)"

# A spline in compact form is told not to be kept.
start steps.txt
click "$spline"
click "$ok"
finish 0
lost="quillaven: warning: 'steps.txt': the compact form holds neither type nor limits of x; \
the table is read as straight lines from 0 to 60"
expect_same "the warning of a spline" "$(cat err.txt)" "$lost"

# So are limits of x that no point lies at.
start steps.txt
click "$options"
open_options
write "159 81" 90
click "$options_ok"
leave_dialog Options
click "$ok"
finish 0
expect_same "the warning of limits" "$(cat err.txt)" "$lost"

echo "$checks checks, $failures failures"
[ "$failures" -eq 0 ]
