#!/usr/bin/env bash
# Opens the page of the demo in a real browser, asks whether every picture on it has loaded, and
# photographs all of it. Looks into the pictures for what the page says they show.
#   page_test.sh PROGRAM [PHOTO.png]     status 77 where there is no browser; the photo lies beside
#                                        the program if no place is given
set -euo pipefail

program=$1
browser=$(command -v chromium || command -v chromium-browser || command -v google-chrome || true)
if [ -z "$browser" ]; then
  echo "no browser is installed: skipped"
  exit 77
fi
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
# What is negated, or stands before "&&", never ends a script by itself.
fail() {
  echo "FAILED: $1" >&2
  exit 1
}

# Under a terminal, if there is "script" to make one: the steps must end where they said they would.
if command -v script > /dev/null; then
  script -qefc "'$program' demo --out '$work/demo'" /dev/null > "$work/terminal" < /dev/null
  last=$(grep -ao '\[[0-9]*/[0-9]*\]' "$work/terminal" | tail -n 1 || true)
  echo "last step: $last"
  [[ "$last" =~ ^\[([0-9]+)/([0-9]+)\]$ && "${BASH_REMATCH[1]}" = "${BASH_REMATCH[2]}" ]] ||
    fail "the steps end at '$last'"
else
  "$program" demo --out "$work/demo" > "$work/terminal"
fi
tr -d '\r' < "$work/terminal" | grep -qxF "Open this page in a browser: $work/demo/index.html"

# Another seed is told, and builds elsewhere.
"$program" demo --out "$work/other" --seed 7 > "$work/other.txt"
grep -q "Seed of the chance: 1995" "$work/demo/index.html"
grep -q "Seed of the chance: 7\." "$work/other/index.html"
grep -q "with seed 7$" "$work/other.txt"
! cmp -s "$work/demo/growth-2003.bmp" "$work/other/growth-2003.bmp" || fail "another seed gives the same years"
cmp "$work/demo/growth-1994.bmp" "$work/other/growth-1994.bmp"

# Railways are black and planned links blue in the years that have them, and in no other.
count_pixels() {  # PICTURE.png RRGGBB
  python3 - "$work/demo/$1" "$2" << 'END'
import struct, sys, zlib
data, at, packed = open(sys.argv[1], 'rb').read(), 8, b''
while at < len(data):
    size, kind = struct.unpack('>I4s', data[at:at + 8])
    body = data[at + 8:at + 8 + size]
    if kind == b'IHDR': width, height = struct.unpack('>II', body[:8])
    if kind == b'IDAT': packed += body
    at += size + 12
raw, stride, above, count = zlib.decompress(packed), 3 * width, bytearray(3 * width), 0
def paeth(a, b, c):
    p = a + b - c
    return min((abs(p - a), 0, a), (abs(p - b), 1, b), (abs(p - c), 2, c))[2]
wanted = bytes.fromhex(sys.argv[2])
for y in range(height):
    start = y * (stride + 1)
    row, filter = bytearray(raw[start + 1:start + 1 + stride]), raw[start]
    for i in range(stride):
        a, c = (row[i - 3], above[i - 3]) if i >= 3 else (0, 0)
        b = above[i]
        row[i] = row[i] + (0, a, b, (a + b) // 2, paeth(a, b, c) if filter == 4 else 0)[filter] & 255
    count += sum(row[i:i + 3] == wanted for i in range(0, stride, 3))
    above = row
print(count)
END
}
for year in 1990 1995 2000; do
  railways=$(count_pixels "network-$year.png" 000000)
  planned=$(count_pixels "network-$year.png" 1f5fff)
  echo "network of $year: $railways pixels of railways, $planned of planned links"
  [ $((railways > 100)) = $((year < 2000)) ]
  [ $((planned > 20)) = $((year < 1995)) ]
done

browse() {
  "$browser" --headless --no-sandbox --disable-gpu --disable-quic --no-first-run --disable-background-networking \
    --disable-component-update --disable-sync --user-data-dir="$work/profile" --virtual-time-budget=10000 "$@" \
    "file://$work/demo/index.html" 2> "$work/log"
}

browse --window-size=1300,1000 --dump-dom > "$work/page.html"
loaded=$(grep -o 'data-pictures="[0-9]* of [0-9]*"' "$work/page.html" | grep -o '[0-9]* of [0-9]*' || true)
written=$(grep -o '<img ' "$work/demo/index.html" | wc -l)
echo "pictures loaded: ${loaded:-none}; on the page: $written"
[ "$written" -ge 15 ]
[ "$loaded" = "$written of $written" ]

height=$(grep -o 'data-height="[0-9]*"' "$work/page.html" | grep -o '[0-9]*')
photo=${2:-$(dirname "$program")/demo-page.png}
browse --window-size="1300,$((height + 100))" --screenshot="$photo"  # a window takes a few pixels more
echo "the page, $height pixels high: $photo"
[ "$(head -c 8 "$photo" | od -An -tx1 | tr -d ' \n')" = 89504e470d0a1a0a ]
[ "$(stat -c %s "$photo")" -gt 50000 ]
[ "$((16#$(head -c 24 "$photo" | tail -c 4 | od -An -tx1 | tr -d ' \n')))" -ge "$height" ]
