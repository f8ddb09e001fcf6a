# Works the window of "quillaven table edit" from outside, with mouse and keys. To be sourced.
#
#   start demand.txt --number 2         # waits until the window is drawn
#   limits 1990 2040 0 80               # of the table that is shown
#   drag 2005 41.8 20 -30               # from the point there, by pixels
#   click "$ok"
#   finish 0                            # the status that the program ends with
#
# Wants $program and $screenshots. Where a place is told in dialog units or in values of the table, its
# pixel comes from the rules by which the window is laid out and the plot is drawn. What is done in one
# window is worked off in order, so nothing waits but for another window and for what is to be seen.

# Numbers with a point, whatever the locale is that the program is tried under.
awk() { LC_ALL=C command awk "$@"; }

checks=0
failures=0

# Middles of controls, in dialog units.
ok="321 190"
cancel="360 190"
options="84 190"
grid="111 188"
ticks="142 188"
spline="201 188"
linear="238 188"
edit_point_ok="120 11"
edit_point_cancel="120 29"
options_ok="154 14"
options_cancel="154 31"

fail() {
  echo "FAILED: $1" >&2
  failures=$((failures + 1))
}

# expect_same WHAT GOT EXPECTED
expect_same() {
  checks=$((checks + 1))
  [ "$2" = "$3" ] || fail "$1: '$2', expected '$3'"
}

# expect_near WHAT GOT EXPECTED: lists of numbers, to the six digits that a file holds.
expect_near() {
  checks=$((checks + 1))
  awk -v got="$2" -v expected="$3" 'BEGIN {
    n = split(got, g); if (n == 0 || n != split(expected, e)) exit 1
    for (i = 1; i <= n; ++i) {
      size = e[i] < 0 ? -e[i] : e[i]; away = g[i] - e[i]; if (away < 0) away = -away
      if (g[i] !~ /^[-+.0-9e]+$/ || away > 1e-5 * (size > 1 ? size : 1)) exit 1
    } }' || fail "$1: '$2', expected '$3'"
}

# until_true COMMAND...: waits until the command succeeds; fails after 20 seconds.
until_true() {
  local end=$((SECONDS + 20))
  until "$@" > /dev/null 2>&1; do
    if [ $SECONDS -ge $end ]; then
      fail "still not so: $*"
      return 1
    fi
    sleep 0.03
  done
}

# calculate EXPRESSION: a number in full; l, t, r, b are the edges of the plot, w and h its size without
# the margins, x0, x1, y0, y1 the limits.
calculate() {
  awk -v l="$left" -v t="$top" -v r="$right" -v b="$bottom" -v w=$((right - left - 16)) \
    -v h=$((bottom - top - 16)) -v x0="$min_x" -v x1="$max_x" -v y0="$min_y" -v y1="$max_y" \
    "BEGIN { printf \"%.9g\", $1 }"
}
pixel_x() { calculate "l + 8 + int(($1 - x0) / (x1 - x0) * w)"; }
pixel_y() { calculate "t + 8 + h - int(($1 - y0) / (y1 - y0) * h)"; }
# The ways back are no exact inverses of these, and must not be.
value_x() { calculate "(x1 - x0) * ($1 - l - 8) / (w - 1) + x0"; }
value_y() { calculate "(y1 - y0) * (h - ($1 - t - 8)) / (h - 1) + y0"; }
# moved_x VALUE PIXELS
moved_x() { calculate "$1 + (x1 - x0) * $2 / (w - 1)"; }
moved_y() { calculate "$1 - (y1 - y0) * $2 / (h - 1)"; }

# enter_window WINDOW UNITS-WIDE UNITS-HIGH: its place and the size of its letters are those of all units
# that follow.
enter_window() {
  xdotool windowfocus "$1"
  eval "$(xdotool getwindowgeometry --shell "$1")" # X, Y, WIDTH, HEIGHT
  letter_width=$(((WIDTH * 4 + $2 / 2) / $2))
  letter_height=$(((HEIGHT * 8 + $3 / 2) / $3))
}
# The pixel of a unit within the window, rounded.
across() { echo $((($1 * letter_width + 2) / 4)); }
down() { echo $((($1 * letter_height + 4) / 8)); }

enter_tool() {
  enter_window "$window" 387 204
  left=$(across 37) top=$(down 7) right=$(across 295) bottom=$(down 179)
}

# is_open SEARCH...: whether there is such a window; $found is the one in front.
is_open() {
  found=$(xdotool search --onlyvisible "$@" | tail -n 1)
  [ -n "$found" ]
}
is_gone() { ! is_open "$@"; }

# start ARGUMENT...: starts the program and waits for its window.
start() {
  "$program" table edit "$@" > out.txt 2> err.txt &
  pid=$!
  if ! until_true is_open --pid "$pid"; then
    cat out.txt err.txt >&2
    picture not-opened
    exit 1
  fi
  window=$found
  enter_tool
  until_true is_drawn
}

has_ended() { ! kill -0 "$pid"; }

# finish STATUS: waits for the program's end, which comes after all that was done in its window.
finish() {
  if ! until_true has_ended; then
    picture left-open
    kill "$pid"
  fi
  wait "$pid"
  expect_same "status" $? "$1"
}

limits() { min_x=$1 max_x=$2 min_y=$3 max_y=$4; }

# What the screen shows where the tool stands, also while another window is in front of it.
shot() { import -silent -window root -crop "${tool_place:-${WIDTH}x$HEIGHT+$X+$Y}" "$@"; }

# count_of COLOUR: pixels of a colour, #RRGGBB.
count_of() {
  shot -depth 8 -format %c histogram:info:- | awk -v c="$1" '$0 ~ c { sum += $1 } END { print sum + 0 }'
}
# colour_at X Y: RRGGBB of a pixel of the window in front.
colour_at() {
  import -silent -window root -crop "1x1+$((X + $1))+$((Y + $2))" -depth 8 \
    -format '%[hex:p{0,0}]' info:-
}
is_drawn() { [ "$(count_of '#0000FF')" -gt 100 ]; }

# picture NAME: keeps what the screen shows there.
picture() {
  [ -n "$screenshots" ] || return
  shot +repage "$screenshots/program-$1.png"
}

# open_dialog TITLE UNITS-WIDE UNITS-HIGH: waits for a window above the tool; all units are its own.
open_dialog() {
  tool_place=${WIDTH}x$HEIGHT+$X+$Y
  until_true is_open --name "^$1\$"
  dialog=$found
  enter_window "$dialog" "$2" "$3"
}
open_edit_point() { open_dialog "Edit point" 149 55; }
open_options() { open_dialog "Options" 186 95; }

# leave_dialog TITLE: waits until it has closed; the tool is in front again.
leave_dialog() {
  until_true is_gone --name "^$1\$"
  unset tool_place
  enter_tool
}

# dismiss_box NAME: waits for a box, keeps a picture of it by that name, and presses Return in it.
dismiss_box() {
  until_true is_open --name "^Quillaven\$"
  picture "$1"
  xdotool windowfocus "$found" key Return
  until_true is_gone --name "^Quillaven\$"
}

# press_at X Y COMMAND...: goes to a pixel of the window in front, and does something there.
press_at() {
  local x=$1 y=$2
  shift 2
  xdotool mousemove $((X + x)) $((Y + y)) "$@"
}

# click "X Y": in dialog units.
click() {
  local place
  read -ra place <<< "$1"
  press_at "$(across "${place[0]}")" "$(down "${place[1]}")" click 1
}

# write "X Y" TEXT: writes over the text of an edit.
write() {
  click "$1"
  xdotool key ctrl+a
  xdotool type -- "$2"
}

# The same at values of the table.
double_click() { press_at "$(pixel_x "$1")" "$(pixel_y "$2")" click --repeat 2 --delay 20 1; }
right_click() { press_at "$(pixel_x "$1")" "$(pixel_y "$2")" click 3; }

list_of_values() {
  import -silent -window root -crop "$((WIDTH - right - 20))x$((bottom - top))+$((X + right + 20))+$((Y + top))" \
    -format '%#' info:-
}
grasp() {
  list_before=$(list_of_values)
  press_at "$(pixel_x "$1")" "$(pixel_y "$2")" mousedown 1
}
# Waits until the button is known to be up: up to then the tool has all of the mouse. The list tells.
drop() {
  xdotool mouseup 1
  until_true list_is_new
}
list_is_new() { [ "$(list_of_values)" != "$list_before" ]; }

# drag X Y RIGHT DOWN: in four steps, with a change to follow.
drag() {
  local i x y
  grasp "$1" "$2"
  x=$(pixel_x "$1") y=$(pixel_y "$2")
  for i in 1 2 3 4; do
    press_at $((x + $3 * i / 4)) $((y + $4 * i / 4))
    sleep 0.02
  done
  drop
}

# After a double click a third one in the same place within 0.8 s of the first counts as a triple one.
not_triple() { sleep 0.9; }

# Numbers of a table in tagged form: all x, all y, and one column of its second line.
all_x() { sed -n 3p "$1" | cut -f 2- | tr '\t' ' '; }
all_y() { sed -n 4p "$1" | cut -f 2- | tr '\t' ' '; }
column() { sed -n 2p "$1" | cut -f "$2"; }
