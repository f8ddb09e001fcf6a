#!/usr/bin/env python3
"""Files that the program writes, read by readers that share nothing with it, and files of other
writers, read by the program.

  independent_readers.py PART PROGRAM SOURCE-FOLDER

PART is "bytes", where Python's struct is the other side, or "gdal", where GDAL's tools are. Ends with
status 77, which counts as skipped, where these are missing.
"""

import array
import itertools
import os
import shutil
import struct
import subprocess
import sys
import tempfile

SKIPPED = 77
part, program, source = sys.argv[1:4]
grid_file = os.path.join(source, "data", "liechtenstein", "landuse.asc")
NO_DATA = -9999
checks = 0

# Cells by the program's name of their type: the type in a documentation file, and struct's letter.
TYPES = {"float": ("real", "f"), "short": ("integer", "h"), "byte": ("byte", "B")}


def expect(what, got, expected):
    global checks
    checks += 1
    if got != expected:
        sys.exit(f"FAILED: {what}: {str(got)[:200]}, expected {str(expected)[:200]}")


def run(*arguments):
    result = subprocess.run([program, *arguments], check=True, capture_output=True, text=True)
    return result.stdout


def read_bytes(name):
    with open(name, "rb") as file:
        return file.read()


def write_bytes(name, data):
    with open(name, "wb") as file:
        file.write(data)


def pack(code, values):
    return struct.pack(f"<{len(values)}{code}", *values)


def unpack(code, data):
    return list(struct.unpack(f"<{len(data) // struct.calcsize(code)}{code}", data))


def read_grid(name):
    with open(name, newline=None) as file:
        head = dict(file.readline().split() for _ in range(6))
        cells = [float(word) for word in file.read().split()]
    return int(head["NROWS"]), int(head["NCOLS"]), cells


def as_type(values, type_name):
    """Values as cells of a type: integers are truncated and keep their low bits."""
    if type_name == "float":
        return array.array("f", values).tolist()
    bits = 16 if type_name == "short" else 8
    low = [int(value) & (1 << bits) - 1 for value in values]
    return [n - (1 << bits) if bits == 16 and n >= 1 << 15 else n for n in low]


# ---- the document and the image of a pair ----


def read_document(name):
    with open(name) as file:
        return {line[:14].split(":")[0].strip(): line[14:].rstrip("\n") for line in file}


def write_pair(name, data_type, rows, cols, image, flag="none"):
    values = ["made elsewhere", data_type, "binary", cols, rows, "plane", "m", 1, 0, cols, 0, rows]
    values += ["unknown", 1, 0, 0, "unspecified", "unknown", flag, "none", 0]
    with open(name + ".doc", "w", newline="\r\n") as file:
        file.writelines(f"{'field':<12}: {value}\n" for value in values)
    write_bytes(name + ".img", image)


def check_pairs_written():
    for type_name, (data_type, code) in TYPES.items():
        run("convert", grid_file, "a.doc", "--type", type_name)
        expected = as_type(cells, type_name)
        expect("cells of the image", unpack(code, read_bytes("a.img")), expected)
        document = read_document("a.doc")
        with_data = [cell for cell in expected if cell != NO_DATA]
        for field, value in {
            "data type": data_type,
            "file type": "binary",
            "rows": str(rows),
            "columns": str(cols),
            "min. value": f"{min(with_data):g}",
            "max. value": f"{max(with_data):g}",
            "flag value": str(NO_DATA),
            "flag def'n": "NODATA",
            "legend cats": "0",
        }.items():
            expect(f"{field} of the {type_name} document", document[field], value)


def check_pairs_read():
    samples = [0, 1, -2, 3.75, -9.5, 254, 3e9, -70000.25, 2.0**40, 12345.5]
    for (data_type, code), type_name in itertools.product(TYPES.values(), TYPES):
        stored_as = next(name for name, (kind, _) in TYPES.items() if kind == data_type)
        stored = as_type(samples, stored_as)
        write_pair("b", data_type, 2, 5, pack(code, stored), "-2 is none")
        expect("what the program tells", run("convert", "b.img", "b.qmp", "--type", type_name),
               "2 rows, 5 columns\n")
        data = read_bytes("b.qmp")
        own_code = TYPES[type_name][1]
        own = unpack(own_code, data[-10 * struct.calcsize(own_code):])
        expect(f"{data_type} cells read as {type_name}", own, as_type(stored, type_name))
    expect("the flag", "no data   -2 " in run_grid("b"), True)


def run_grid(name):
    run("convert", name + ".doc", name + ".asc")
    return run("info", name + ".asc")


# ---- map files ----


def text_form(text):
    if len(text) < 255:
        return bytes([len(text)]) + text
    if len(text) < 65534:
        return b"\xff" + struct.pack("<H", len(text)) + text
    return b"\xff\xff\xff" + struct.pack("<I", len(text)) + text


def count_form(count):
    return struct.pack("<H", count) if count < 65535 else b"\xff\xff" + struct.pack("<I", count)


def map_file(map_rows, map_cols, items, code, map_cells):
    data = struct.pack("<iii", map_rows, map_cols, len(items)) + count_form(len(items))
    data += b"".join(text_form(name) for name, _ in items)
    data += count_form(len(items)) + pack("I", [color for _, color in items])
    return data + pack(code, map_cells)


def read_items(data):
    """The legend items of a map file, and where its cells begin."""
    at = 12

    def take(form):
        nonlocal at
        (value,) = struct.unpack_from("<" + form, data, at)
        at += struct.calcsize(form)
        return value

    def count():
        short = take("H")
        return take("I") if short == 0xFFFF else short

    def text():
        nonlocal at
        length = take("B")
        if length == 0xFF:
            length = take("H")
        if length == 0xFFFF:
            length = take("I")
        at += length
        return data[at - length : at]

    names = [text() for _ in range(count())]
    colors = [take("I") for _ in range(count())]
    return list(zip(names, colors)), at


def check_maps_written():
    for type_name, (_, code) in TYPES.items():
        run("convert", grid_file, "a.qmp", "--type", type_name)
        data = read_bytes("a.qmp")
        items, at = read_items(data)
        expect("sizes of the map", struct.unpack_from("<iii", data), (rows, cols, len(items)))
        expect(f"{type_name} cells of the map", unpack(code, data[at:]), as_type(cells, type_name))
        expect("the map by its parts", data, map_file(rows, cols, items, code, unpack(code, data[at:])))


def check_maps_read():
    lengths = [0, 1, 254, 255, 256, 300, 65533, 65534, 65535, 70000]
    few = [(bytes(1 + i % 255 for i in range(n)), 0x00BBAA00 + n % 256) for n in lengths]
    many = [(b"%d" % i, i) for i in range(65536)]
    for items in ([], few, many):
        for type_name, (_, code) in TYPES.items():
            own = as_type([1, 2.5, -3, 200, 70000, 6], type_name)
            made = map_file(2, 3, items, code, own)
            write_bytes("m.qmp", made)
            told = run("info", "m.qmp").split()
            expect("what the program tells", told[2:], ["rows", "2", "columns", "3", "cells", type_name,
                                                        "classes", str(len(items))])
            expect("what it converts", run("convert", "m.qmp", "n.qmp", "--type", type_name),
                   "2 rows, 3 columns\n")
            expect(f"{type_name} map of {len(items)} items, read and written", read_bytes("n.qmp"), made)
            run("convert", "m.qmp", "m.asc", "--type", type_name)
            expect("its cells", read_grid("m.asc"), (2, 3, [float(value) for value in own]))


# ---- grids and bitmaps ----


def check_grid():
    run("convert", grid_file, "a.asc")
    expect("cells of the grid", read_grid("a.asc"), (rows, cols, cells))


def check_bitmap():
    run("draw", grid_file, "--legend", "Landuse", "--out", "a.bmp")
    data = read_bytes("a.bmp")
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
    return pixels


# ---- GDAL ----


def gdal(*arguments):
    subprocess.run([gdal_translate, "-q", *arguments], check=True)


def by_gdal(name, kind, code):
    """The cells of a file as GDAL sees them, through its plainest format."""
    raw = name + ".raw"
    gdal("-of", "ENVI", "-ot", kind, name, raw)
    return unpack(code, read_bytes(raw))


def check_written_by_gdal():
    """GDAL's own grid, and its plain cells as an image."""
    gdal("-of", "AAIGrid", grid_file, "g.asc")
    run("convert", "g.asc", "h.asc")
    expect("GDAL's grid", read_grid("h.asc"), (rows, cols, cells))
    for type_name, kind in (("float", "Float32"), ("short", "Int16")):
        gdal("-of", "ENVI", "-ot", kind, grid_file, "g.raw")
        write_pair("g", TYPES[type_name][0], rows, cols, read_bytes("g.raw"), str(NO_DATA))
        run("convert", "g.doc", "h.asc", "--type", type_name)
        expect(f"GDAL's {kind} cells", read_grid("h.asc"), (rows, cols, cells))


def check_bytes():
    check_grid()
    check_pairs_written()
    check_pairs_read()
    check_maps_written()
    check_maps_read()
    check_bitmap()


def check_gdal():
    run("convert", grid_file, "a.asc")
    expect("cells of the grid by GDAL", by_gdal("a.asc", "Float32", "f"), cells)
    pixels = check_bitmap()
    expect("pixels by GDAL", by_gdal("a.bmp", "Byte", "B"), pixels)
    check_written_by_gdal()


gdal_translate = shutil.which("gdal_translate")
if part == "gdal" and gdal_translate is None:
    print("skipped: gdal_translate is not installed")
    sys.exit(SKIPPED)
rows, cols, cells = read_grid(grid_file)
with tempfile.TemporaryDirectory() as folder:
    os.chdir(folder)
    {"bytes": check_bytes, "gdal": check_gdal}[part]()
    os.chdir("/")
print(f"{checks} checks")
