#!/usr/bin/env bash
# Runs the command-line program as a person would, and looks at what it prints, writes and returns.
#   program_test.sh PROGRAM SOURCE-FOLDER
set -uo pipefail

program=$1
source=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work" || exit 1
checks=0
failures=0

fail() {
  echo "FAILED: $1" >&2
  failures=$((failures + 1))
}

# expect_line TEXT STATUS ARGUMENT...: one line on standard error that holds the text, that status, and
# nothing on standard output.
expect_line() {
  local text=$1 status=$2
  shift 2
  checks=$((checks + 1))
  "$program" "$@" > out.txt 2> err.txt
  local got=$?
  [ "$got" -eq "$status" ] || fail "$*: status $got, expected $status"
  [ "$(wc -l < err.txt)" -eq 1 ] || fail "$*: $(wc -l < err.txt) lines on standard error: $(cat err.txt)"
  [ ! -s out.txt ] || fail "$*: wrote to standard output"
  grep -qF -- "$text" err.txt || fail "$*: '$text' expected in '$(cat err.txt)'"
}

# expect_output TEXT ARGUMENT...: success, with a line of standard output that holds the text.
expect_output() {
  local text=$1
  shift
  checks=$((checks + 1))
  "$program" "$@" > out.txt 2> err.txt || fail "$*: status $?, $(cat err.txt)"
  grep -qF -- "$text" out.txt || fail "$*: '$text' expected in: $(cat out.txt)"
  [ ! -s err.txt ] || fail "$*: wrote to standard error: $(cat err.txt)"
}

# expect_failure_behind_output TEXT OUTPUT ARGUMENT...: status 1 and one line of standard error with the
# text, behind what standard output could tell.
expect_failure_behind_output() {
  local text=$1 output=$2
  shift 2
  checks=$((checks + 1))
  "$program" "$@" > out.txt 2> err.txt
  local got=$?
  [ "$got" -eq 1 ] || fail "$*: status $got, expected 1"
  [ "$(wc -l < err.txt)" -eq 1 ] || fail "$*: $(wc -l < err.txt) lines on standard error: $(cat err.txt)"
  grep -qF -- "$text" err.txt || fail "$*: '$text' expected in '$(cat err.txt)'"
  grep -qF -- "$output" out.txt || fail "$*: '$output' expected in: $(cat out.txt)"
}

expect_same() {
  checks=$((checks + 1))
  [ "$2" = "$3" ] || fail "$1: '$2', expected '$3'"
}

grid=$source/data/liechtenstein/landuse.asc
small=$source/docs/formats/examples/small.asc
help_dir=$source/docs/formats/examples

# Arguments
expect_line "a command is required" 2
expect_line "paint" 2 paint
expect_line "--legend is required" 2 draw "$small" --out a.bmp
expect_line "--zoom" 2 draw "$small" --legend Intervals --out a.bmp --zoom 0
expect_line "--fine" 2 draw "$small" --legend Intervals --out a.bmp --fine many
expect_output "Usage:" --help
# Each help ends in an example of its own
# subcommands ARGUMENT...: what the help of a command lists.
subcommands() { "$program" "$@" --help | sed -n '/^Subcommands:/,/^$/s/^  \([a-z]*\) .*/\1/p'; }
walked=0
# walk ARGUMENT...: a command and all below it.
walk() {
  local name
  walked=$((walked + 1))
  expect_output "Example: quillaven${*:+ $*} " "$@" --help
  for name in $(subcommands "$@"); do walk "$@" "$name"; done
}
walk
expect_line "(quillaven --help tells more)" 2
expect_line "(quillaven draw --help tells more)" 2 draw
expect_line "(quillaven table plot --help tells more)" 2 table plot "$small" --out plot.gif
expect_line "(quillaven network import --help tells more)" 2 network import --typo
expect_output "Status: 0 when all went well; 1 when" --help
expect_output "--zoom INT:INT in [1 - 64]=1" draw --help
expect_output "--fine INT:INT in [1 - 1024]=1" draw --help
expect_output "--saturation INT:INT in [0 - 252]=252" colors spread --help
expect_output "--lightness INT:INT in [0 - 252]=126" colors spread --help
expect_output "--table,--number INT:INT in [1 - 1000000]=1" table eval --help
expect_same "commands with a help" "$walked" 20
expect_output "." --version

# Files that cannot be read
expect_line "cannot open 'none.asc': No such file or directory" 1 draw none.asc --legend Landuse --out a.bmp
expect_line "there is no legend 'None'" 1 draw "$small" --legend None --out a.bmp
expect_line "is a folder" 1 info .
: > empty.asc
expect_line "is empty" 1 info empty.asc
expect_line "is no ASCII grid" 1 draw empty.asc --legend Landuse --out a.bmp
head -c 400 "$grid" > cut.asc
expect_line "ends before its last cell" 1 draw cut.asc --legend Landuse --out a.bmp
printf '\000\001\002binary\377' > binary.dat
expect_line "of no kind that is known" 1 info binary.dat
expect_line "'nowhere/a.bmp': Save bitmap: No such file or directory" 1 draw "$small" --legend Intervals --help-dir "$help_dir" \
  --out nowhere/a.bmp
printf '[IDRISI]' > cut.smp
expect_same "no picture is left of all that" "$(ls ./*.bmp 2>/dev/null)" ""

# Drawing: 2 rows of 3 cells at zoom 2 are 4 rows of 6 pixels, padded to 8 bytes
checks=$((checks + 1))
"$program" draw "$small" --legend Intervals --help-dir "$help_dir" --zoom 2 --out small.bmp || fail "draw"
expect_same "size of a small bitmap" "$(stat -c %s small.bmp)" "$((1078 + 4 * 8))"
expect_output "width     6" info small.bmp
# A PNG is as large and of the same colours; a picture of another kind is refused
expect_line "'a.jpg' ends in neither .bmp nor .png" 2 draw "$small" --legend Intervals --help-dir "$help_dir" --out a.jpg
expect_line "'a' ends in neither .bmp nor .png" 2 draw "$small" --legend Intervals --help-dir "$help_dir" --out a
expect_line "cannot write 'nowhere/a.png': No such file or directory" 1 draw "$small" --legend Intervals \
  --help-dir "$help_dir" --out nowhere/a.png
expect_same "no file is left of all that" "$(ls a a.* 2>/dev/null)" ""
checks=$((checks + 1))
"$program" draw "$small" --legend Intervals --help-dir "$help_dir" --zoom 2 --out small.PNG || fail "draw to PNG"
expect_same "start of a drawn PNG" "$(head -c 8 small.PNG | od -An -tx1 | tr -d ' \n')" "89504e470d0a1a0a"
expect_same "its width and height" "$(tail -c +17 small.PNG | head -c 8 | od -An -tx1 | tr -d ' \n')" "0000000600000004"
if command -v python3 > /dev/null; then
  expect_same "colours of the PNG" "$(python3 - small.bmp small.PNG <<'EOF'
import struct, sys, zlib

bmp, png = (open(name, "rb").read() for name in sys.argv[1:])
start, width, height = (struct.unpack_from("<I", bmp, at)[0] for at in (10, 18, 22))
stride = (width + 3) // 4 * 4
drawn = [[bmp[54 + 4 * bmp[start + (height - 1 - y) * stride + x] :][2::-1] for x in range(width)] for y in range(height)]
at, packed = 8, b""
while at < len(png):
    size = struct.unpack_from(">I", png, at)[0]
    if png[at + 4 : at + 8] == b"IDAT":
        packed += png[at + 8 : at + 8 + size]
    at += size + 12
raw, rows, before = zlib.decompress(packed), [], bytes(3 * width)
for y in range(height):
    line, row = raw[y * (3 * width + 1) : (y + 1) * (3 * width + 1)], bytearray()
    for i, value in enumerate(line[1:]):
        a, b, c = (row[i - 3] if i > 2 else 0), before[i], (before[i - 3] if i > 2 else 0)
        paeth = min((abs(b - c), 0, a), (abs(a - c), 1, b), (abs(a + b - 2 * c), 2, c))[2]
        row.append((value + (0, a, b, (a + b) // 2, paeth)[line[0]]) & 255)
    before = bytes(row)
    rows.append([before[3 * x : 3 * x + 3] for x in range(width)])
print("the same" if rows == drawn and len({c for r in rows for c in r}) > 1 else (rows, drawn))
EOF
)" "the same"
fi
# A last line without a line feed is drawn all the same
head -c -1 "$small" > open.asc
checks=$((checks + 1))
"$program" draw open.asc --legend Intervals --help-dir "$help_dir" --zoom 2 --out open.bmp || fail "open.asc"
expect_same "the same picture" "$(cksum < open.bmp)" "$(cksum < small.bmp)"

# Info
expect_output "rows      992" info "$grid"
expect_output "        8 49304 cells" info "$grid"
expect_output "-9999 (239398 cells)" info "$grid"
expect_output "colours   3" info "$source/docs/formats/examples/Palettes/Primary.smp"
expect_output "   12   90  90  95  transport areas" info "$source/data/Legends/Landuse.txt"
expect_output "    1    0 255   0  high" info "$source/docs/formats/examples/Legends/Version1.txt"

# Conversion: the country goes through every kind of file and comes back byte for byte
expect_output "992 rows, 500 columns" convert "$grid" country.qmp --type byte
expect_output "cells     byte" info country.qmp
expect_output "992 rows, 500 columns" convert "$grid" country.doc
expect_output "type      real, binary" info country.img
expect_output "flag      -9999, NODATA" info country.doc
expect_same "a title that is not there" "$(grep -c '^title\|malformed' out.txt)" 0
sed 's/^\(file title  : \).*/\1The country/' country.doc > titled.doc && cp country.img titled.img
expect_output "title     The country" info titled.doc
expect_output "992 rows, 500 columns" convert country.img country-again.qmp
expect_output "cells     float" info country-again.qmp
expect_output "992 rows, 500 columns" convert country-again.qmp country-again.asc
expect_same "cells of the country" "$(tail -n +7 country-again.asc | cksum)" "$(tail -n +7 "$grid" | tr -d '\r' | cksum)"
expect_line "choose another --type" 1 convert country.qmp a.asc
expect_line "ends in none of" 2 convert "$grid" a.tif
expect_line "--type" 2 convert "$grid" a.qmp --type double
head -c 1000 country.qmp > cut.qmp
expect_line "is no map file, or ends before its last cell" 1 convert cut.qmp a.asc --type byte
expect_line "cannot write 'nowhere/a.qmp'" 1 convert "$grid" nowhere/a.qmp
expect_line "cannot write 'nowhere/a.doc'" 1 convert "$grid" nowhere/a.doc
head -c 1000 country.img > cut.img && cp country.doc cut.doc
expect_failure_behind_output "'cut.img' ends before its last cell" "columns   500" info cut.doc
rm -f country.img
expect_line "Cannot open file" 1 convert country.doc a.asc
expect_failure_behind_output "cannot open 'country.img': No such file or directory" "rows      992" info country.doc
head -n 12 country.doc > cut.doc
expect_line "'cut.doc' ends before its last line" 1 info cut.doc
expect_line "'cut.doc' ends before its last line" 1 convert cut.doc a.asc

# No command writes over the file that it reads, under whatever name
expect_same_file() {
  local file=$1 before
  shift
  before=$(cksum < "$file")
  expect_line "is the file that is read" 2 "$@"
  expect_same "$file after: $*" "$(cksum < "$file")" "$before"
}
cp "$small" own.asc
ln -s own.asc own-link.asc
ln own.asc own.bmp
expect_same_file own.asc convert own.asc own.asc
expect_same_file own.asc convert own.asc ./own-link.asc
expect_same_file own.asc draw own.asc --legend Intervals --help-dir "$help_dir" --out own.bmp
expect_output "2 rows, 3 columns" convert own.asc own.doc
expect_same_file own.img convert own.doc own.doc
expect_same_file own.doc convert own.doc own.img
ln -s own.img own-image.qmp
expect_same_file own.img convert own.doc own-image.qmp
cat "$source/data/tables/demand.txt" > own.svg
expect_same_file own.svg table plot own.svg --out own.svg
expect_same_file own.svg table convert own.svg --to compact --out own.svg
expect_output "Position and size of the cells are not kept" convert --help

# Types of cells, by the bytes of the image
printf 'NCOLS 3\nNROWS 1\nX 0\nY 0\nC 1\nN -9999\n1 300 -2.5\n' > types.asc
bytes_of() { od -An -v -tu1 "$1" | tr -s ' \n' ' '; }
expect_output "1 rows, 3 columns" convert types.asc types.doc --as-byte
expect_output "type      byte, binary" info types.doc
expect_same "float cells as bytes" "$(bytes_of types.img)" " 1 44 254 "
expect_output "1 rows, 3 columns" convert types.asc types.doc --type short
expect_output "type      integer, binary" info types.doc
expect_same "short cells" "$(bytes_of types.img)" " 1 0 44 1 254 255 "
expect_output "1 rows, 3 columns" convert types.img types.qmp --type short
expect_output "cells     short" info types.qmp
expect_line "--as-byte is for float cells" 2 convert types.asc types.doc --type short --as-byte
expect_line "--as-byte is for float cells" 2 convert types.asc types.asc.qmp --as-byte

# Pairs that are not read, and sizes without cells
# pair NAME FIELD VALUE...: the pair types.doc and .img under another name, with other values.
pair() {
  local name=$1
  shift
  cp types.doc "$name.doc" && cp types.img "$name.img"
  while [ $# -gt 0 ]; do
    sed -i "s/^\($1 *: \).*/\\1$2/" "$name.doc"
    shift 2
  done
}
pair ascii "file type" ASCII
expect_line "of an image of type ASCII: only binary ones are read" 1 convert ascii.doc a.asc
pair complex "data type" complex
expect_line "of cells of type complex: only real, integer and byte ones are read" 1 convert complex.doc a.asc
expect_output "type      complex, binary" info complex.doc
pair capitals "file type" BINARY "data type" INTEGER
expect_output "1 rows, 3 columns" convert capitals.doc a.asc
pair minus rows -3 columns -7
expect_line "tells of no cells: -3 rows, -7 columns" 1 convert minus.doc a.asc
pair none rows 0
: > none.img
expect_line "tells of no cells: 0 rows, 3 columns" 1 convert none.img a.asc
expect_output "rows      0" info none.img
pair huge rows 2000000000 columns 2000000000
expect_line "ends before its last cell" 1 convert huge.doc a.asc
printf 'NCOLS -7\nNROWS -3\nX 0\nY 0\nC 1\nN -1\n' > minus.asc
expect_line "holds no cells" 1 convert minus.asc a.qmp
expect_line "ends before its last cell" 1 draw minus.asc --legend Intervals --help-dir "$help_dir" --out minus.bmp

# A map without rows is a map file: two sizes, no items, two empty lists
printf '\000\000\000\000\005\000\000\000\000\000\000\000\000\000\000\000' > none.qmp
expect_output "columns   5" info none.qmp
expect_output "cells     none" info none.qmp
expect_line "'none.qmp' holds no cells" 1 convert none.qmp a.asc

# Files that fail while they are read, and that are none to be read twice
if [ -e /proc/self/mem ]; then
  ln -s /proc/self/mem fault.qmp
  expect_line "'fault.qmp' could not be read" 1 convert fault.qmp a.asc
  expect_line "'fault.qmp' could not be read" 1 info fault.qmp
fi
mkfifo pipe.qmp
expect_line "'pipe.qmp' is no plain file" 1 convert pipe.qmp a.asc
expect_line "'pipe.qmp' is no plain file" 1 info pipe.qmp

# A full disk is told for every kind of file, whether it is full from the first byte on or later
if [ -e /dev/full ]; then
  for kind in asc qmp img; do ln -s /dev/full full.$kind; done
  expect_line "cannot write 'full.asc'" 1 convert "$small" full.asc
  expect_line "'full.qmp' could not be written whole" 1 convert "$small" full.qmp
  expect_line "cannot write 'full.img'" 1 convert "$small" full.img
fi
# limited COMMAND...: files end at 20 KB, as on a disk that runs full.
limited() {
  (
    trap '' XFSZ
    ulimit -f 20
    exec "$@"
  )
}
plain_program=$program
program=limited_program
limited_program() { limited "$plain_program" "$@"; }
expect_line "'late.asc' could not be written whole" 1 convert "$grid" late.asc
expect_line "'late.qmp' could not be written whole" 1 convert "$grid" late.qmp
expect_line "cannot write 'late.doc'" 1 convert "$grid" late.doc
program=$plain_program

# So is standard output, for all that prints
if [ -e /dev/full ]; then
  tables=$source/data/tables
  "$program" network import "$source/data/liechtenstein/net3.txt" --type 3 --out full.bin > out.txt || fail "network import"
  while read -r arguments; do
    checks=$((checks + 1))
    eval "\"\$program\" $arguments" > /dev/full 2> err.txt
    expect_same "status of $arguments to a full disk" $? 1
    expect_same "its line" "$(cat err.txt)" "quillaven: standard output could not be written whole"
  done <<'EOF'
--help
--version
info "$small"
colors spread 6
colors spread 100000
table eval "$tables/demand.txt" 1995
network report full.bin
network check full.bin
convert "$small" full-disk.qmp
EOF
fi

# Colours
expect_output "    1  255 255   0" colors spread 6
expect_output "    0  200  30  30" colors brighten 200 30 30 --factor 0.6
expect_output "    0  144  14  14" colors spread 1 --saturation 208 --lightness 78
expect_output "    1    0 255   0" colors spread 3 --saturation 252
expect_output "    2  100 100 100" colors spread 3 --saturation 0 --lightness 99
expect_line "--saturation" 2 colors spread 6 --saturation 253
expect_line "--lightness" 2 colors spread 6 --lightness -1
expect_line "count" 2 colors spread 0
expect_line "color" 2 colors brighten 200 30 256 --factor 0.6
expect_line "color" 2 colors brighten 200 30 --factor 0.6

# Networks: the four types of a country become one file; its figures are those of its makers
country=$source/data/liechtenstein
expect_output "country.bin: 9 nodes, 16 links" network import "$country/net0.txt" --type 0 --out country.bin
for type in 1 2 3; do
  expect_output "country.bin: " network import "$country/net$type.txt" --type $type --add-to country.bin \
    --out country.bin
done
expect_output "country.bin: no faults" network check country.bin
expect_output "Allocated 21501 links, used 21500 links: 258000 bytes used 12 bytes wasted" network report country.bin
expect_output "306 links unidirectional" network report country.bin
checks=$((checks + 1))
"$program" network export country.bin --type 3 --out rails.txt || fail "network export"
expect_same "railways read and written" "$(cksum < rails.txt)" "$(cksum < "$country/net3.txt")"
expect_same_file rails.txt network import rails.txt --type 3 --out rails.txt
expect_same_file country.bin network export country.bin --type 3 --out country.bin
expect_same_file country.bin network report country.bin --out country.bin
expect_output "from node 630 to 631, id 251, type 2" network nearest country.bin 540000 5222000
expect_output "2000: 3 nodes, 2 links" network years "$help_dir/network-years.txt"
expect_output "1997: 2 nodes, 2 links" network years "$help_dir/network-years.txt" --year 1997
checks=$((checks + 1))
"$program" network years "$help_dir/network-years.txt" --year 1980 > out.txt 2> err.txt || fail "a year before the first"
expect_same "the warning of a year before the first" "$(cat err.txt)" \
  "quillaven: warning: '$help_dir/network-years.txt' begins with the year 1990"
expect_output "1990: " network years "$help_dir/network-years.txt" --year 1990
expect_line "demand.txt' tells of no years" 1 network years "$source/data/tables/demand.txt"
expect_line "demand.txt' tells of no years" 1 network years "$source/data/tables/demand.txt" --year 1990
expect_line "ubcommand is required (quillaven network --help tells more)" 2 network
expect_line "--type" 2 network import rails.txt --type 256 --out a.bin
expect_line "cannot open 'none.txt': No such file or directory" 1 network import none.txt --type 1 --out a.bin
expect_line "'$small': ArcInfo vector file: Id of vector expected" 1 network import "$small" --type 1 --out a.bin
expect_line "'rails.txt': Read network: Incorrect header of the binary network file" 1 network report rails.txt
head -c 5000 country.bin > cut.bin
expect_line "ends before its last record" 1 network nearest cut.bin 0 0
checks=$((checks + 1))
"$program" network check "$source/fuzz/corpus/network_binary/circles" > out.txt 2> err.txt && fail "faults end well"
expect_same "lines of faults" "$(wc -l < out.txt)" 8
grep -q "has 8 faults" err.txt || fail "faults are not counted"

# expect_faults FILE LINE...: these lines and no others, in any order, and a status that is not 0
expect_faults() {
  local file=$1
  shift
  checks=$((checks + 1))
  "$program" network check "$file" > out.txt 2> err.txt && fail "$file: faults end well"
  expect_same "faults of $file" "$(sort out.txt)" "$(printf '%s\n' "$@" | sort)"
}
# words NUMBER...: 32-bit numbers, little-endian
words() {
  local word
  for word in "$@"; do
    printf "$(printf '\\x%02x\\x%02x\\x%02x\\x%02x' $((word & 255)) $((word >> 8 & 255)) $((word >> 16 & 255)) \
      $((word >> 24 & 255)))"
  done
}
node="0 0 0 0"
{ printf MI03; words 1 $node 0 0  2 0 0 0  0 0 0  5  0 0  99 1  1 0  0 9  0 2  1; printf '%32s' ""; printf more; } > odd.bin
expect_faults odd.bin "list cell 1 is in use but in no list" \
  "list cell 1 names link 99, which is beyond the pool" "list cell 2 is in use but in no list" \
  "list cell 3 leads beyond the pool" "link type 0: the name has no end" "4 bytes are behind the end"
{ printf MI03; words 2 $node 0 0 $node 1 2  2 0 0 0  1 1 0x05000007  3 0 0  1 0  1 0  1; head -c 32 /dev/zero; } > type.bin
expect_faults type.bin "link 1: type 5 has no name"
{ printf 'MI 3'; words 1 $node 0 0  1 0 0 0  1 0 0; } > blank.bin
expect_faults blank.bin "the file ends before the count of the link types"
expect_line "ends before its last record" 1 network report blank.bin

# Through pipes, to devices, and onto disks that are full; nothing is left behind
mkdir scratch
export TMPDIR=$work/scratch
checks=$((checks + 2))
"$program" network report country.bin > report.txt || fail "network report"
"$program" network report /dev/stdin < country.bin > out.txt || fail "network report of standard input"
expect_same "the report of standard input" "$(cat out.txt)" "$(cat report.txt)"
cat country.bin | "$program" network report /dev/stdin > out.txt || fail "network report of a pipe"
expect_same "the report of a pipe" "$(cat out.txt)" "$(cat report.txt)"
checks=$((checks + 1))
"$program" network export country.bin --type 3 --out /dev/stdout > out.txt || fail "network export to a pipe"
expect_same "railways to standard output" "$(cksum < out.txt)" "$(cksum < rails.txt)"
expect_line "cannot write '/dev/full': No space left on device" 1 network import rails.txt --type 3 --out /dev/full
expect_line "cannot write '/dev/full': No space left on device" 1 network export country.bin --type 3 --out /dev/full
expect_line "cannot write '/dev/full': No space left on device" 1 network report country.bin --out /dev/full
expect_line "cannot write 'none/a.bin': No such file or directory" 1 network import rails.txt --type 3 --out none/a.bin
checks=$((checks + 1))
(trap '' XFSZ; ulimit -f 8; "$program" network import "$country/net2.txt" --type 2 --out a.bin) > out.txt 2> err.txt &&
  fail "a network that has no room ends well"
grep -q "cannot write '.*': File too large" err.txt || fail "no room: $(cat err.txt)"
expect_same "scratch files left" "$(find scratch -mindepth 1)" ""
unset TMPDIR

# What the library reads with a box is a warning, and what it does not read is no year
printf '1\n1 2\n3 4\nEND\nEND' > open.txt
checks=$((checks + 1))
"$program" network import open.txt --type 1 --out open.bin > out.txt 2> err.txt || fail "import without a last line break"
expect_same "what it reads" "$(cat out.txt)" "open.bin: 2 nodes, 1 links"
expect_same "its warning" "$(cat err.txt)" "quillaven: warning: 'open.txt': ArcInfo vector file: Unexpected end of file"
printf 'year\t1990\t<none>\nadd\t1\t2\t3\t4\t1\nyear\t1995\t<none>' > open-years.txt
expect_output "1990: 2 nodes, 1 links" network years open-years.txt
expect_same "years of a list without a last line break" "$(wc -l < out.txt)" 1

# The demo, twice, with the same bytes
expect_output "all 496000 cells agree" demo --out first
expect_same "files of the demo" "$(ls first | wc -l)" 54
for name in first/*.asc first/*.doc first/*.img first/*.bin first/*.txt first/growth-{1994,2003}.qmp; do
  checks=$((checks + 1))
  grep -qF -- "${name#first/}" first/index.html || fail "the page does not tell of $name"
done
# Times differ from run to run.
untimed() { sed 's/, [0-9.]* s$//' "$1"; }
untimed out.txt | sed 's/first/second/' > first.txt
expect_output "11  water                         2448 cells" demo --out second
expect_same "roads of the network" "$(grep -c "Other roads              21218 links of 4451 polylines" out.txt)" 1
expect_same "one-way roads" "$(grep -c "306 links are one-way, of 81 polylines" out.txt)" 1
expect_same "the year 1995, forward and back" "$(grep -c "1995  planned  0, roads 21234, railways 266" out.txt)" 2
expect_same "what it prints" "$(untimed out.txt)" "$(cat first.txt)"
expect_same "settlements after nine years" "$(grep -c "residential cells: 16031 and 16031" out.txt)" 1
expect_same "the last line" "$(tail -n 1 out.txt)" "Open this page in a browser: $PWD/second/index.html"
checks=$((checks + 1))
diff -r first second || fail "the demo writes other bytes the second time"
for year in 1995 2000; do
  checks=$((checks + 1))
  ! cmp -s first/network-1990.png "first/network-$year.png" || fail "the network of $year is that of 1990"
done
expect_output "with seed 7" demo --seed 7 --out third
checks=$((checks + 1))
! cmp -s first/growth-2003.bmp third/growth-2003.bmp || fail "another seed gives the same years"
checks=$((checks + 1))
last_step=$(script -qec "'$program' demo --out third" /dev/null | grep -ao '\[[0-9]*/[0-9]*\]' | tail -n 1)
[[ "$last_step" =~ ^\[([0-9]+)/([0-9]+)\]$ && "${BASH_REMATCH[1]}" = "${BASH_REMATCH[2]}" ]] ||
  fail "the progress of the demo ends at $last_step"
# The demo tells why its first picture cannot be written
checks=$((checks + 1))
(trap '' XFSZ; ulimit -f 200; "$program" demo --out little) > out.txt 2> err.txt && fail "a demo without room ends well"
expect_same "what it says" "$(cat err.txt)" \
  "quillaven: cannot write 'little/1-one-scale.bmp': Save bitmap: File too large"
expect_line "cannot make folder" 1 demo --out small.bmp/under-a-file

# Function tables
tables=$source/data/tables
expect_output "$(printf '2\t0.3679')" table eval "$tables/distance-decay.txt" 0 2 100
expect_same "one line for each x" "$(wc -l < out.txt)" 3
expect_output "$(printf -- '-5\t18.2')" table eval "$tables/demand.txt" -5
expect_output "$(printf '40\t1')" table eval "$tables/step.txt" 40
expect_line "is required" 2 table eval "$tables/step.txt"
expect_line "--to" 2 table convert "$tables/step.txt" --to other --out a.txt
expect_line "cannot open 'none.txt': No such file or directory" 1 table eval none.txt 1
expect_line "holds no function table" 1 table eval empty.asc 1
expect_line "holds no table number 2" 1 table eval "$tables/demand.txt" --table 2 1
expect_line "ends in none of .svg, .bmp and .png" 2 table plot "$tables/demand.txt" --out plot.gif
expect_line "cannot write 'nowhere/a.svg': No such file or directory" 1 table plot "$tables/step.txt" \
  --out nowhere/a.svg
printf '0\t1\t3\nx\t0\tnan\t1\ny\t0\t0\t0\n' > nan.txt
expect_line "values that cannot be drawn" 1 table plot nan.txt --out nan.png

checks=$((checks + 1))
"$program" table convert "$tables/distance-decay.txt" --to tagged --out again.txt || fail "table convert"
expect_same "the same table" "$(cksum < again.txt)" "$(cksum < "$tables/distance-decay.txt")"
"$program" table convert "$tables/step.txt" --to compact --out again.txt || fail "table convert"
expect_same "the same table" "$(cksum < again.txt)" "$(cksum < "$tables/step.txt")"
# What the compact form has no place for is told: a spline, and limits of x that no point lies at
expect_same "no warning" "$("$program" table convert "$tables/distance-decay.txt" --to compact --out again.txt 2>&1)" ""
sed '2s/1990\t2040/1980\t2050/; 2s/^\t0/\t1/' "$tables/demand.txt" > wide.txt
expect_same "limits changed" "$(sed -n 2p wide.txt | cut -f 2,4,5 | tr '\t' ' ')" "1 1980 2050"
for table in "$tables/demand.txt" wide.txt; do
  checks=$((checks + 1))
  "$program" table convert "$table" --to compact --out again.txt > out.txt 2> err.txt || fail "table convert $table"
  expect_same "the warning of $table" "$(cat err.txt)" "quillaven: warning: 'again.txt': the compact form holds \
neither type nor limits of x; the table is read as straight lines from 1990 to 2040"
done
cat "$tables/distance-decay.txt" "$tables/demand.txt" > both.txt
"$program" table convert both.txt --table 2 --to tagged --out again.txt || fail "table convert"
expect_same "the second table" "$(tail -n +2 again.txt | cksum)" "$(tail -n +2 "$tables/demand.txt" | cksum)"

display=${DISPLAY:-}
unset DISPLAY WAYLAND_DISPLAY
cp "$tables/step.txt" edited.txt
expect_line "there is no display to edit a table on" 1 table edit edited.txt
expect_line "holds no table number 2" 1 table edit edited.txt --table 2
expect_line "holds no table number 2" 1 table edit edited.txt --number 2
expect_line "received 2" 2 table edit edited.txt --number 2 --table 2
mkdir -p folder.txt
expect_line "'folder.txt' is a folder" 1 table edit folder.txt
plain_program=$program
in_time() { timeout 20 "$plain_program" "$@"; }
program=in_time
expect_line "'pipe.qmp' is no plain file" 1 table edit pipe.qmp
program=$plain_program
expect_same "the table" "$(cksum < edited.txt)" "$(cksum < "$tables/step.txt")"
expect_same "no backup" "$(ls edited.txt.bak 2>/dev/null)" ""
[ -z "$display" ] || export DISPLAY=$display

for kind in svg bmp png; do
  checks=$((checks + 1))
  "$program" table plot "$tables/demand.txt" --out plot.$kind || fail "table plot to .$kind"
done
expect_same "points in the picture" "$(grep -c '<circle' plot.svg)" 8
expect_same "curves in the picture" "$(grep -c '<polyline' plot.svg)" 1
checks=$((checks + 1))
grep -q '>demand in 1000 dwellings</text>' plot.svg || fail "the label of y is missing"
grep -q '>2010</text>' plot.svg || fail "the axis of x has no numbers"
expect_same "size of the bitmap" "$(stat -c %s plot.bmp)" "$((54 + 800 * 3 * 500))"
expect_same "start of the PNG" "$(head -c 8 plot.png | od -An -tx1 | tr -d ' \n')" "89504e470d0a1a0a"
expect_output "width     800" info plot.bmp

# Info knows what the program writes, and names the file of a user where it does not
expect_output "height    500" info plot.png
expect_output "bits      8 a channel" info plot.png
head -c 20 plot.png > cut.png
expect_line "PNG 'cut.png' ends within its header" 1 info cut.png
expect_output "points    8" info "$tables/demand.txt"
expect_output "between   a spline" info "$tables/demand.txt"
expect_output "between   straight lines" info "$tables/distance-decay.txt"
expect_output "form      compact" info "$tables/step.txt"
expect_output "Network" info country.bin
expect_same "what a network holds" "$(tail -n 1 out.txt)" "links     21500"
expect_line "'cut.bin' ends before its last record" 1 info cut.bin
expect_output "Network vector text" info "$country/net3.txt"
expect_same "what vector text holds" "$(tail -n 1 out.txt)" "links     266"
expect_output "years     1990 1995 2000" info "$help_dir/network-years.txt"
printf '<html>text</html>\n' > page.html
expect_line "'page.html' is of no kind that is known here; as a legend: contains bad char at column 1: '<html>" 1 \
  info page.html
expect_line "'plot.svg' is of no kind" 1 info plot.svg
checks=$((checks + 1))
grep -q 'legend.txt' err.txt && fail "the copy of a file is named: $(cat err.txt)"
printf 'Version 2\nNClasses many\n' > bad-legend.txt
expect_line "'bad-legend.txt' is of no kind that is known here; as a legend: version 2 Legend: 'NClasses" 1 \
  info bad-legend.txt

# Completion in bash: what the help lists, and files elsewhere
. "$source/apps/completion/quillaven"
# completed WORD...: what the last word may become, in one line.
completed() {
  COMP_WORDS=("$program" "$@")
  COMP_CWORD=$#
  _quillaven
  printf '%s\n' "${COMPREPLY[@]}" | LC_ALL=C sort | tr '\n' ' '
}
expect_same "the function for the program" "$(complete -p quillaven)" "complete -F _quillaven quillaven"
expect_same "completed commands" "$(completed c)" "colors convert "
expect_same "all commands" "$(completed "")" "$(subcommands | LC_ALL=C sort | tr '\n' ' ')"
expect_same "commands of a group" "$(completed network ne)" "nearest "
expect_same "options of a command" "$(completed draw "$small" --)" \
  "--fine --help --help-dir --legend --out --stamp --zoom "
expect_same "options of a command in a group" "$(completed table plot --t)" "--table "
expect_same "options of the program" "$(completed --v)" "--version "
expect_same "files" "$(completed draw smal)" "small.PNG small.bmp "
expect_same "files behind an option" "$(completed draw "$small" --out small.b)" "small.bmp "
expect_same "nothing" "$(completed colors zzz)" " "

echo "$checks checks, $failures failures"
[ "$failures" -eq 0 ]
