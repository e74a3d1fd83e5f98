#!/usr/bin/env python3
"""Every header of the libraries compiles alone, and may be included twice.

usage: header_alone.py [--installed FOLDER] COMPILER [FLAG...]

The headers are the project's, whose root is the current folder, or those that were installed below
FOLDER, which then find nothing but one another. Exit status 1 on a fault.
"""

import concurrent.futures
import glob
import os
import subprocess
import sys

FLAGS = "-std=c++20 -fsyntax-only -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Werror".split()
PROJECT = {"ole": ".", "platform": "platform"}  # headers below the first are named from the second
HINT = "A header that an installed one includes is installed too: see ole/CMakeLists.txt and platform/CMakeLists.txt."


def headers(folders):
    found = []
    for folder, base in folders.items():
        for path in glob.glob(f"{folder}/**/*.h", recursive=True):
            found.append(os.path.relpath(path, base).replace(os.sep, "/"))
    return sorted(found)


def compile_alone(command, header):
    """What the compiler says of the header; empty where it is content."""
    code = f"#include <{header}>\n" * 2
    result = subprocess.run(
        command + ["-x", "c++", "-"], input=code, capture_output=True, text=True, check=False
    )
    if result.returncode == 0:
        return ""
    return result.stderr or f"{command[0]} ended with {result.returncode}\n"


def main(arguments):
    folders = PROJECT
    if arguments[:1] == ["--installed"]:
        folders = {folder: folder for folder in arguments[1:2]}
        arguments = arguments[2:]
    if not arguments:
        print(__doc__.strip(), file=sys.stderr)
        return 2
    command = arguments[:1] + FLAGS + [f"-I{base}" for base in folders.values()] + arguments[1:]
    names = headers(folders)
    with concurrent.futures.ThreadPoolExecutor(max_workers=2) as pool:
        outputs = list(pool.map(lambda name: compile_alone(command, name), names))
    bad = [(name, text) for name, text in zip(names, outputs) if text]
    for name, text in bad:
        print(f"{name} does not compile alone:\n{text}")
    if bad and folders is not PROJECT:
        print(HINT)
    print(f"{len(names)} headers, {len(bad)} faults")
    return 1 if bad or not names else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
