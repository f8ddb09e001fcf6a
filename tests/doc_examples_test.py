#!/usr/bin/env python3
"""Takes every fenced example out of the README and the documents, builds and runs it.

  doc_examples_test.py SOURCE-FOLDER LIBRARY PROGRAM COMPILER [FLAGS]

Blocks marked cpp are whole programs. Lines of blocks marked sh are commands: those of the program are
run, and scripts must be there. What waits for a user at a screen is built, but not run. Blocks without
a mark are contents of files, which other tests look at.
"""

import os
import re
import shutil
import subprocess
import sys
import tempfile

source, library, program, compiler = sys.argv[1:5]
flags = " ".join(sys.argv[5:]).split()
pages = ["README.md", "CONTRIBUTING.md"]
for folder, _, names in os.walk(os.path.join(source, "docs")):
    pages += [os.path.relpath(os.path.join(folder, name), source) for name in names]
pages = sorted(page for page in pages if page.endswith(".md"))


def fail(where, what):
    sys.exit(f"FAILED: {where}: {what}")


def blocks(page):
    with open(os.path.join(source, page), encoding="utf-8") as file:
        text = file.read()
    for match in re.finditer(r"^```(\w*)\n(.*?)^```$", text, re.M | re.S):
        line = text.count("\n", 0, match.start()) + 1
        yield match.group(1), match.group(2), f"{page}:{line}"


def run(where, command, **options):
    done = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, **options)
    if done.returncode != 0:
        fail(where, f"status {done.returncode} of {command}\n{done.stdout.decode(errors='replace')}")


def build_and_run(where, code):
    with open("example.cpp", "w", encoding="utf-8") as file:
        file.write(code)
    folder = os.path.dirname(library)
    command = [compiler, *flags, "-std=c++20", "-Wall", "-Wextra", "-Werror", f"-I{source}", "example.cpp"]
    if "<quillaven/desktop/" in code:
        run(where, [*command, f"-I{source}/desktop/include", "-fsyntax-only"])
        return
    run(where, [*command, library, f"-Wl,-rpath,{folder}", "-o", "example"])
    run(where, ["./example"])


def run_commands(where, text):
    for line in text.splitlines():
        line = line.split("#")[0].strip()
        if line.startswith("quillaven table edit "):
            run(where, [program, "table", "edit", "--help"])
        elif line.startswith("quillaven "):
            run(where, [program, *line.split()[1:]])
        elif line.startswith(("scripts/", "tests/")):
            if not os.access(os.path.join(source, line.split()[0]), os.X_OK):
                fail(where, f"there is no {line.split()[0]}")


counts = {"cpp": 0, "sh": 0}
with tempfile.TemporaryDirectory() as folder:
    os.chdir(folder)
    for data in ("liechtenstein", "tables"):
        shutil.copytree(os.path.join(source, "data", data), ".", dirs_exist_ok=True)
    shutil.copytree(os.path.join(source, "data", "Legends"), "Legends")
    shutil.copy("net2.txt", "roads.txt")
    for page in pages:
        for kind, text, where in blocks(page):
            if kind == "cpp":
                build_and_run(where, text)
            elif kind == "sh":
                run_commands(where, text)
            elif kind:
                fail(where, f"a block of kind '{kind}'")
            if kind in counts:
                counts[kind] += 1
    os.chdir("/")
if min(counts.values()) == 0:
    fail("the documents", f"no examples found: {counts}")
print(f"{counts['cpp']} programs built and run, {counts['sh']} blocks of commands")
