#!/usr/bin/env python3
"""Holds the direction of the project's dependencies, and what the module may not touch.

    tools, examples, tests -> ole -> platform -> C++ standard library
    inside ole:  interchange -> oledb -> fieldspec -> ODBBase.h

The module asks the platform for files, time, the environment and output. So a source under ole/
neither includes the system's headers for these nor calls the functions that print or end the
process.

usage: dependency_arrows.py [ROOT]     exit status 1 where a line breaks a rule
"""

import os
import re
import sys

SOURCE_ENDINGS = (".h", ".cpp")
INCLUDE = re.compile(r'^\s*#\s*include\s*([<"])([^>"]+)[>"]')

# What a folder may include of the project. The first folder that holds a file decides. An entry
# that ends in "/" stands for a folder, any other for one file.
ODB_BASE = ["ole/oledb/ODBBase.h", "ole/oledb/DBFieldTypes.h"]
MAY_INCLUDE = [
    ("platform/", ["platform/"]),
    ("ole/ole.h", ["platform/"]),
    ("ole/Tarn/", ["ole/ole.h", "ole/Tarn/", "platform/"]),
    # What the field specifications stand on must not lean back on them.
    ("ole/oledb/ODBBase.h", ODB_BASE + ["ole/oledb/dbrecord.h", "ole/ole.h", "ole/Tarn/", "platform/"]),
    ("ole/oledb/DBFieldTypes.h", ["ole/ole.h", "ole/Tarn/", "platform/"]),
    ("ole/fieldspec/", ODB_BASE + ["ole/fieldspec/", "ole/ole.h", "ole/Tarn/", "platform/"]),
    ("ole/oledb/", ["ole/oledb/", "ole/fieldspec/", "ole/ole.h", "ole/Tarn/", "platform/"]),
    ("ole/", ["ole/", "platform/"]),
    ("tools/", ["tools/", "ole/", "platform/"]),
    ("examples/", ["ole/", "platform/"]),
]

# Headers of the system that the module leaves to the platform: files, streams, time, environment,
# threads, locale, and character tests that depend on the locale. Headers of C and of the operating
# system (<x.h>, <sys/x>) are all refused.
SYSTEM_HEADERS = set(
    "cassert cctype chrono clocale codecvt condition_variable csignal cstdio ctime cwctype filesystem "
    "format fstream future iomanip ios iosfwd iostream istream locale mutex ostream random regex "
    "semaphore shared_mutex spanstream sstream stop_token streambuf strstream syncstream thread "
    "barrier latch".split()
)

# Called in the module only through the platform. The word must stand alone: console_printf is the
# platform's.
CALLS = re.compile(
    r"\b(assert|v?printf|v?fprintf|puts|fputs|putchar|getenv|setlocale|strtod|atof|stod|strtof|stof)\s*\(|"
    r"\b(abort|cerr|cout|clog|exit|_Exit|quick_exit|terminate)\b"
)

TOKENS = re.compile(
    r'R"(?P<tag>[^()\s\\]{0,16})\(.*?\)(?P=tag)"'  # raw string
    r'|"(?:\\.|[^"\\\n])*"'  # string
    r"|(?<![0-9A-Za-z_])'(?:\\.|[^'\\\n])+'"  # character, but no digit separator
    r"|//(?:\\\n|[^\n])*"  # comment to the line's end
    r"|/\*.*?\*/",  # comment
    re.DOTALL,
)


def without_texts(code):
    """The code with comments and literals blanked; line numbers stay."""
    return TOKENS.sub(lambda m: "\n" * m.group().count("\n") or " ", code)


def without_comments(code):
    """The code with comments blanked, literals kept (an include's name looks like one)."""

    def blank(match):
        text = match.group()
        return "\n" * text.count("\n") or " " if text.startswith("/") else text

    return TOKENS.sub(blank, code)


def sources(root):
    """Project paths of the sources under the folders that the rules speak of, sorted."""
    found = []
    for top in ("platform", "ole", "tools", "examples"):
        for folder, _, names in os.walk(os.path.join(root, top)):
            found += [
                os.path.relpath(os.path.join(folder, name), root).replace(os.sep, "/")
                for name in names
                if name.endswith(SOURCE_ENDINGS)
            ]
    return sorted(found)


def resolve(root, source, name):
    """The project path that an include means, as the compiler would find it; None for the system's."""
    for base in (os.path.dirname(source), "", "platform", "tools", "tools/olelog", "tests"):
        path = os.path.normpath(os.path.join(base, name)).replace(os.sep, "/")
        if not path.startswith("..") and os.path.isfile(os.path.join(root, path)):
            return path
    return None


def inside(path, entries):
    return any(path.startswith(e) if e.endswith("/") else path == e for e in entries)


def allowed(source):
    for scope, entries in MAY_INCLUDE:
        if inside(source, [scope]):
            return entries
    return []


def include_fault(root, source, bracket, name):
    """Why the include breaks a rule, or None."""
    target = resolve(root, source, name)
    if target is not None:
        if inside(target, allowed(source)):
            return None
        return f"includes {target}, against the direction of the dependencies"
    if bracket == '"':
        return f'includes "{name}", which is not in the project'
    if not source.startswith("ole/"):
        return None
    if name in SYSTEM_HEADERS or name.endswith(".h") or "/" in name:
        return f"includes <{name}>, which the module leaves to the platform"
    return None


def faults(root, source):
    with open(os.path.join(root, source), encoding="utf-8", errors="replace") as file:
        code = file.read()
    for number, line in enumerate(without_comments(code).split("\n"), 1):
        include = INCLUDE.match(line)
        if include:
            fault = include_fault(root, source, *include.groups())
            if fault:
                yield number, fault
    if source.startswith("ole/"):
        for number, line in enumerate(without_texts(code).split("\n"), 1):
            for call in CALLS.finditer(line):
                yield number, f"uses {call.group(1) or call.group(2)}, which the module leaves to the platform"


def main(arguments):
    here = os.path.dirname(os.path.abspath(__file__))
    root = arguments[0] if arguments else os.path.join(here, "..", "..")
    all_sources = sources(root)
    if not all_sources:
        print(f"no sources under {root}", file=sys.stderr)
        return 2
    found = [(s, n, fault) for s in all_sources for n, fault in faults(root, s)]
    for source, number, fault in found:
        print(f"{source}:{number}: {fault}")
    print(f"{len(all_sources)} sources, {len(found)} faults")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
