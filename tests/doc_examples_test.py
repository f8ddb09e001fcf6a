#!/usr/bin/env python3
"""Takes every fenced example out of the README and the documents, builds and runs it.

  doc_examples_test.py SOURCE-FOLDER LIBRARY PROGRAM COMPILER [FLAGS]

Blocks marked cpp are whole programs. Lines of blocks marked sh are commands: those of the program are
run, scripts, presets and targets must be there, and any other command fails the test. What waits for a
user at a screen is built, or run up to its window. Blocks without a mark are contents of files, which
other tests look at.
"""

import json
import os
import re
import shutil
import subprocess
import sys
import tempfile

source, library, program, compiler = sys.argv[1:5]
build = os.path.dirname(os.path.dirname(library))
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


def expect_no_display(where, command):
    """What waits for a user runs up to the window, which cannot open."""
    plain = {name: value for name, value in os.environ.items() if name not in ("DISPLAY", "WAYLAND_DISPLAY")}
    done = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, env=plain)
    if done.returncode != 1 or b"there is no display to edit a table on" not in done.stdout:
        fail(where, f"status {done.returncode} of {command}\n{done.stdout.decode(errors='replace')}")


def require_preset(where, name):
    with open(os.path.join(source, "CMakePresets.json"), encoding="utf-8") as file:
        presets = json.load(file)["configurePresets"]
    if name not in [preset["name"] for preset in presets if not preset.get("hidden")]:
        fail(where, f"there is no preset '{name}'")


def run_command(where, words):
    if words[:3] == ["quillaven", "table", "edit"]:
        expect_no_display(where, [program, *words[1:]])
    elif words[0] == "quillaven":
        run(where, [program, *words[1:]])
    elif words[0].startswith(("scripts/", "tests/")):
        if not os.access(os.path.join(source, words[0]), os.X_OK):
            fail(where, f"there is no {words[0]}")
    elif words[:2] == ["cmake", "--preset"] and len(words) == 3:
        require_preset(where, words[2])
    elif words[:2] == ["ninja", "-C"] and len(words) >= 3 and words[2].startswith("build/"):
        require_preset(where, words[2].removeprefix("build/"))
        for target in words[3:]:
            run(where, ["ninja", "-C", build, "-t", "query", target])
    elif words[0].startswith("build/") and words[0].count("/") == 2:
        _, preset, target = words[0].split("/")
        require_preset(where, preset)
        run(where, ["ninja", "-C", build, "-t", "query", target])
    else:
        fail(where, f"a command that this test does not know: {' '.join(words)}")


def run_commands(where, text):
    for line in text.splitlines():
        for command in line.split("#")[0].split("&&"):
            if command.split():
                run_command(where, command.split())
                counts["commands"] += 1


counts = {"cpp": 0, "sh": 0, "commands": 0}
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
print(f"{counts['cpp']} programs built and run, {counts['sh']} blocks of {counts['commands']} commands")
