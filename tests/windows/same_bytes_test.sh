#!/usr/bin/env bash
# Two builds of the command-line program, for two systems, write the same files and read each other's.
#   same_bytes_test.sh PROGRAM-HERE PROGRAM-THERE SOURCE-FOLDER [EMULATOR]
set -euo pipefail

program_here=$1
program_there=$2
source=$3
emulator=${4:-}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"
files=0

here() { "$program_here" "$@" > /dev/null; }
there() { $emulator "$program_there" "$@" > /dev/null; }

# same HERE THERE: the same bytes; of texts, which each system writes with its own line ends, the same but
# that each LF has a CR before it there.
same() {
  files=$((files + 1))
  cmp -s "$1" "$2" && return
  grep -qI '' "$1" && cmp <(sed 's/$/\r/' "$1") "$2"
}

mkdir here there
here demo --out here
there demo --out there
diff <(ls here) <(ls there)
for file in here/*; do same "$file" "there/${file#here/}"; done
for file in here/*.bmp here/*.png here/*.img here/*.qmp; do cmp "$file" "there/${file#here/}"; done

# What one wrote the other reads, and writes again as it was.
for map in here/*.qmp; do
  name=$(basename "$map" .qmp)
  there convert "here/$name.qmp" "$name-there.asc" --type byte
  here convert "there/$name.qmp" "$name-here.asc" --type byte
  same "$name-here.asc" "$name-there.asc"
  there convert "$name-here.asc" "$name-there.qmp" --type byte
  here convert "$name-there.asc" "$name-here.qmp" --type byte
  same "$name-here.qmp" "$name-there.qmp"
done
# each MADE-HERE MADE-THERE COMMAND...: runs a command on what the other system made; both give the same.
each() {
  there "${@:3}" "$1" --out from-here
  here "${@:3}" "$2" --out from-there
  same from-there from-here
}
there convert here/growth.doc growth-there.asc
here convert there/growth.doc growth-here.asc
same growth-here.asc growth-there.asc
each here/network.bin there/network.bin network report
each here/network.bin there/network.bin network export --type 2
[ "$(wc -l < from-here)" -gt 1000 ]  # roads, and not the end alone
mv from-here roads-there.txt
mv from-there roads-here.txt
each roads-here.txt roads-there.txt network import --type 2
for table in "$source"/data/tables/*.txt; do
  each "$table" "$table" table convert --to tagged
  mv from-here tagged-there.txt
  mv from-there tagged-here.txt
  each tagged-here.txt tagged-there.txt table convert --to compact
done

echo "The same on both systems: $files files"
