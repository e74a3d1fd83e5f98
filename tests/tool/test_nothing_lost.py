"""Plausible mistakes, and two people at once: nothing that somebody put somewhere goes without a word."""

import fcntl
import os
import subprocess
import time

import pytest
from olelog import TOOL, csv_rows, expect, leftovers, run, table_text, write_log, write_table


def shoot(tmp_path):
    """A table with a tag and an identifier, another one, a log and a container."""
    rows = [["a", "1", "x", "0", ""], ["b", "2", "", "1", "C"], ["b", "3", "y", "0", ""]]
    write_table(tmp_path / "t.odb", ["Name", "Scene", "Notes", "Tag", "Cookie"], rows)
    write_table(tmp_path / "o.odb", ["Name", "Scene"], [["c", "1"]])
    write_table(tmp_path / "c.sg", ["Cookie"], [], ["OLEDB:Rev 1", "Name:n"])
    write_log(tmp_path / "a.ale", ["Name", "Scene"], [["d", "1"]])
    return tmp_path


EDITS = [
    ["sort", "t.odb", "--by", "Scene", "--descending"],
    ["tag", "t.odb", "--all"],
    ["dedupe", "t.odb", "--by", "Name"],
    ["merge", "t.odb", "o.odb"],
    ["save", "t.odb", "-o", "t.odb", "--in-place", "--where", "Name=b"],
    ["import", "a.ale", "-o", "t.odb", "--append"],
    ["import", "a.ale", "-o", "t.odb", "--in-place"],
    ["export", "t.odb", "-o", "x.csv", "--fields", "Name", "--keep-fields"],
    ["export", "t.odb", "-o", "t.odb", "--format", "csv", "--in-place"],
    ["container", "add", "c.sg", "U" + "0" * 32 + "ff"],
    ["check", "a.ale", "--fix", "a.ale", "--in-place"],
]


@pytest.mark.parametrize("words", EDITS, ids=lambda words: "-".join(words[:2]))
@pytest.mark.parametrize("changed", ["replaced", "written", "left"])
def test_what_somebody_else_changed_meanwhile_stays(tmp_path, words, changed):
    """The tool waits for whoever holds the file's lock, so that it can be changed under its hands."""
    target = shoot(tmp_path) / next(w for w in words if w in ("t.odb", "c.sg")) if words[0] != "check" else shoot(tmp_path) / "a.ale"
    before = target.read_bytes()
    with open(target, "rb") as held:
        fcntl.flock(held, fcntl.LOCK_EX)
        tool = subprocess.Popen([TOOL, *words], cwd=tmp_path, stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        end = time.monotonic() + 30
        while not any((tmp_path / name).stat().st_size for name in leftovers(tmp_path)):
            assert time.monotonic() < end and tool.poll() is None, tool.communicate()
            time.sleep(0.01)
        if changed == "replaced":
            (tmp_path / "new").write_bytes(before + b"new")
            os.replace(tmp_path / "new", target)
        elif changed == "written":
            target.write_bytes(before + b"new")
    said = tool.communicate(timeout=60)[1].decode()
    if changed == "left":
        assert tool.returncode in (0, 1) and target.read_bytes() != before or words[0] == "check", said
    else:
        assert f"{target.name} was changed by somebody else meanwhile; run it again" in said
        assert tool.returncode == 3 and target.read_bytes() == before + b"new" and not (tmp_path / "x.csv").exists()
    assert leftovers(tmp_path) == []


def test_standard_input_is_known_to_be_the_table(tmp_path):
    table = shoot(tmp_path) / "t.odb"
    before = table.read_bytes()

    def fed(code, *words):
        with open(table, "rb") as file:
            done = subprocess.run([TOOL, *words], cwd=tmp_path, stdin=file, stdout=subprocess.PIPE, stderr=subprocess.PIPE, timeout=60)
        assert done.returncode == code, done.stderr
        return done.stderr.decode()

    assert "would be replaced by a selection of it" in fed(2, "save", "-", "-o", "t.odb", "--where", "Name=b")
    assert "is a table" in fed(2, "export", "-", "-o", "t.odb", "--format", "csv") and table.read_bytes() == before
    table.write_bytes(before + b'"short"\r\n')
    for words in (["sort", "-", "--by", "Name", "-o", "t.odb"], ["save", "-", "-o", "./t.odb", "--in-place"]):
        assert "would be lost" in fed(3, *words) and table.read_bytes() == before + b'"short"\r\n'
    table.write_bytes(before)
    assert "3 rows, in this order already" in fed(0, "sort", "-", "--by", "Scene", "-o", "t.odb")
    fed(0, "sort", "-", "--by", "Scene", "--descending", "-o", "t.odb")
    assert [row["Scene"] for row in csv_rows(table)] == ["3", "2", "1"]
