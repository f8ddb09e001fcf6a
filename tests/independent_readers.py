#!/usr/bin/env python3
"""Files that the program writes, read by readers that share nothing with it.

  independent_readers.py PROGRAM SOURCE-FOLDER

Grids and bitmaps are read by GDAL's tools as well, where they are installed; the rest by the byte.
"""

import os
import shutil
import struct
import subprocess
import sys
import tempfile

program, source = sys.argv[1], sys.argv[2]
grid_file = os.path.join(source, "data", "liechtenstein", "landuse.asc")
gdal_translate = shutil.which("gdal_translate")
checks = 0


def expect(what, got, expected):
    global checks
    checks += 1
    if got != expected:
        sys.exit(f"FAILED: {what}: {str(got)[:200]}, expected {str(expected)[:200]}")


def run(*arguments):
    subprocess.run([program, *arguments], check=True, stdout=subprocess.DEVNULL)


def read_grid(name):
    with open(name, newline=None) as file:
        head = dict(file.readline().split() for _ in range(6))
        cells = [float(word) for word in file.read().split()]
    return int(head["NROWS"]), int(head["NCOLS"]), cells


def by_gdal(name, kind, code):
    """The cells of a file as GDAL sees them, through its plainest format."""
    raw = name + ".raw"
    subprocess.run([gdal_translate, "-q", "-of", "ENVI", "-ot", kind, name, raw], check=True)
    with open(raw, "rb") as file:
        data = file.read()
    return list(struct.unpack(f"<{len(data) // struct.calcsize(code)}{code}", data))


def check_grid():
    run("convert", grid_file, "a.asc")
    expect("cells of the grid", read_grid("a.asc"), (rows, cols, cells))
    if gdal_translate:
        expect("cells of the grid by GDAL", by_gdal("a.asc", "Float32", "f"), cells)


def check_idrisi():
    for type_name, code, size in (("float", "f", 4), ("short", "h", 2), ("byte", "B", 1)):
        run("convert", grid_file, "a.doc", "--type", type_name)
        with open("a.img", "rb") as file:
            image = file.read()
        expected = cells if type_name != "byte" else [int(cell) & 0xFF for cell in cells]
        expect("cells of the image", list(struct.unpack(f"<{rows * cols}{code}", image)), expected)
        expect("bytes of the image", len(image), rows * cols * size)
        with open("a.doc") as file:
            lines = {line[:14].split(":")[0].strip(): line[14:].strip() for line in file}
        data_type = {"float": "real", "short": "integer", "byte": "byte"}[type_name]
        expect("type in the document", lines["data type"], data_type)
        expect("rows in the document", lines["rows"], str(rows))
        expect("columns in the document", lines["columns"], str(cols))


def check_map():
    run("convert", grid_file, "a.qmp")
    with open("a.qmp", "rb") as file:
        data = file.read()
    got_rows, got_cols, items = struct.unpack_from("<iii", data)
    expect("sizes of the map", (got_rows, got_cols), (rows, cols))
    at = 12
    (names,) = struct.unpack_from("<H", data, at)
    expect("names of the map", names, items)
    at += 2
    for _ in range(names):
        at += 1 + data[at]  # all are short
    (colors,) = struct.unpack_from("<H", data, at)
    expect("colours of the map", colors, items)
    at += 2 + 4 * colors
    expect("cells of the map", list(struct.unpack_from(f"<{rows * cols}f", data, at)), cells)
    expect("end of the map", len(data), at + rows * cols * 4)


def check_bitmap():
    run("draw", grid_file, "--legend", "Landuse", "--out", "a.bmp")
    with open("a.bmp", "rb") as file:
        data = file.read()
    expect("sizes of the bitmap", struct.unpack_from("<ii", data, 18), (cols, rows))
    (start,) = struct.unpack_from("<I", data, 10)
    stride = (cols + 3) // 4 * 4
    pixels = []
    for row in range(rows):
        at = start + (rows - 1 - row) * stride
        pixels.extend(data[at : at + cols])
    expect("pixels of classes", all(p == c for p, c in zip(pixels, cells) if c >= 0), True)
    white = [data[54 + 4 * p : 57 + 4 * p] for p, c in zip(pixels, cells) if c < 0]
    expect("cells without data", set(white), {b"\xff\xff\xff"})
    if gdal_translate:
        expect("pixels by GDAL", by_gdal("a.bmp", "Byte", "B"), pixels)


rows, cols, cells = read_grid(grid_file)
with tempfile.TemporaryDirectory() as folder:
    os.chdir(folder)
    check_grid()
    check_idrisi()
    check_map()
    check_bitmap()
    os.chdir("/")
print(f"{checks} checks" + ("" if gdal_translate else "; GDAL's tools are missing: its part is skipped"))
