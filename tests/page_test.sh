#!/usr/bin/env bash
# Opens the page of the demo in a real browser and asks whether every picture on it has loaded.
#   page_test.sh PROGRAM [PHOTO.png]     status 77 where there is no browser
set -euo pipefail

program=$1
browser=$(command -v chromium || command -v chromium-browser || command -v google-chrome || true)
if [ -z "$browser" ]; then
  echo "no browser is installed: skipped"
  exit 77
fi
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
"$program" demo --out "$work/demo" > /dev/null

browse() {
  "$browser" --headless --no-sandbox --disable-gpu --disable-quic --no-first-run --disable-background-networking \
    --disable-component-update --disable-sync --user-data-dir="$work/profile" --virtual-time-budget=10000 "$@" \
    "file://$work/demo/index.html" 2> "$work/log"
}

browse --dump-dom > "$work/page.html"
loaded=$(grep -o 'data-pictures="[0-9]* of [0-9]*"' "$work/page.html" | grep -o '[0-9]* of [0-9]*' || true)
written=$(grep -o '<img ' "$work/demo/index.html" | wc -l)
echo "pictures loaded: ${loaded:-none}; on the page: $written"
[ "$written" -ge 15 ]
[ "$loaded" = "$written of $written" ]

photo=${2:-$work/photo.png}
browse --window-size=1300,3600 --screenshot="$photo"
[ "$(head -c 8 "$photo" | od -An -tx1 | tr -d ' \n')" = 89504e470d0a1a0a ]
[ "$(stat -c %s "$photo")" -gt 50000 ]
