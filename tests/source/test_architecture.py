"""docs/architecture.md names every source of the libraries, and none that is not there."""

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
