"""docs/architecture.md names every source of the libraries, and none that is not there; the reference
has every public header."""

import glob
import os
import re

with open("docs/architecture.md", encoding="utf-8") as file:
    PAGE = file.read()
SOURCES = [path for end in ("h", "cpp") for top in ("ole", "platform") for path in glob.glob(f"{top}/**/*.{end}", recursive=True)]
NAMES = {os.path.splitext(os.path.basename(path))[0] for path in SOURCES}


def test_every_source_has_its_place():
    assert SOURCES
    assert sorted(name for name in NAMES if not re.search(rf"\b{re.escape(name)}\b", PAGE)) == []


def test_every_place_is_there():
    named = re.findall(r"`(?:ole|tarn|misc)/[\w/.]*?(\w+)\.(?:h|cpp)`", PAGE) + re.findall(r"`(\w+)\.(?:h|cpp)`", PAGE)
    elsewhere = {"main", "Command", "importCommand", "XCommand", "checks", "LimitsTest", "DocumentsTest"}
    assert sorted(set(named) - NAMES - elsewhere) == []


def public_headers(folder):
    """What a folder's CMakeLists.txt installs for hosts to include."""
    with open(f"{folder}/CMakeLists.txt", encoding="utf-8") as file:
        listed = re.search(r"set\(public_headers(.*?)\)", file.read(), re.DOTALL)
    return [f"{folder}/{name}" for name in re.findall(r"[\w/]+\.h", listed.group(1))]


def test_the_reference_has_every_public_header():
    with open("docs/Doxyfile", encoding="utf-8") as file:
        described = re.findall(r"(?:ole|platform)/[\w/]+\.h", file.read())
    assert sorted(described) == sorted(public_headers("ole") + public_headers("platform"))
