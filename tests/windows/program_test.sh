#!/usr/bin/env bash
# Runs the command-line program on Windows: what it writes is what it writes elsewhere.
#   program_test.sh PROGRAM SOURCE-FOLDER [EMULATOR]
set -euo pipefail

program=$1
source=$2
emulator=${3:-}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"
examples=$source/docs/formats/examples

run() { $emulator "$program" "$@" | tr -d '\r'; }
expect() {
  grep -qF -- "$2" <<< "$1" || { echo "'$2' expected in: $1" >&2; exit 1; }
}

expect "$(run --version)" "."
expect "$(run info "$source/data/liechtenstein/landuse.asc")" "rows      992"
run draw "$examples/small.asc" --legend Intervals --help-dir "$examples" --zoom 2 --out small.bmp
expect "$(stat -c %s small.bmp)" 1110
expect "$(run info small.bmp)" "width     6"
run convert "$examples/small.asc" small.qmp > /dev/null
run convert small.qmp again.asc > /dev/null
diff <(tr -d '\r' < again.asc | tail -n +7) <(tr -d '\r' < "$examples/small.asc" | tail -n +7)
if run info missing.asc > out.txt 2>&1; then
  echo "a missing file ends well" >&2
  exit 1
fi
