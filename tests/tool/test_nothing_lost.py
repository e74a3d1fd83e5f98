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


def size_of(path):
    """Of a temporary file, which may be gone at any time."""
    try:
        return path.stat().st_size
    except FileNotFoundError:
        return 0


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
        while not any(size_of(tmp_path / name) for name in leftovers(tmp_path)):
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


def heading(*lines):
    return ["Heading", *lines]


LOSSES = [  # columns, rows, heading, what an import tells
    (["Name", "KN Start"], [["A", "KU 31 5127 0416 no mark"]], heading(), 'a.ale:6: KN Start: "KU 31 5127 0416 no mark" becomes ""'),
    (["Name", "film label_std"], [["A", "F16"]], heading("FILM_FORMAT\t35mm"), 'a.ale:7: film label_std: "F16" becomes "F35", for line 2'),
    (["Name"], [["A"]], heading("FILM_FORMAT\t65mm"), 'a.ale:2: the film format "65mm" is read as 35 mm'),
    (["Name"], [["A"]], heading("FPS\t24", "fps\t25"), 'a.ale:3: "fps" stands twice in the heading; its value "25" takes the place of "24"'),
    (["Name"], [["A"]], heading() + ["Column", "Name", "FPS\t24"], 'a.ale:4: "FPS\\t24" is not read'),
    (["Name", "Take"], [["A", "1"], ["B", "2", "3"]], heading(), "1 line skipped: 7"),
    (["Name", "Take"], [["A", "1"], ["", "2"]], heading(), "moved one column to the left"),
    (["Name", "Take"], [["A", "1"], ["B"]], heading(), "the row has 1 value for 2 column names"),
    (["Name", "Take"], [["A", "1\0b"]], heading(), "zero byte"),
]


@pytest.mark.parametrize("columns, rows, lines, told", LOSSES, ids=range(len(LOSSES)))
def test_import_tells_what_a_log_loses(tmp_path, columns, rows, lines, told):
    write_log(tmp_path / "a.ale", columns, rows, heading=lines)
    assert told in expect(3, "import", "a.ale", "-o", "a.odb", "--strict", cwd=tmp_path) and not (tmp_path / "a.odb").exists()
    assert told in expect(1, "import", "a.ale", "-o", "a.odb", cwd=tmp_path) and csv_rows(tmp_path / "a.odb")
    whole = write_log(tmp_path / "b.ale", ["Name", "KN Start", "Perf"], [["A", "KU315127041 6+08", "1"], ["B", "??", ""]], heading=["Heading", "FILM_FORMAT\t16mm"])
    expect(0, "import", whole, "-o", tmp_path / "b.odb", "--strict")


def test_import_replaces_no_row_that_the_logs_do_not_bring_back(tmp_path):
    log, table = write_log(tmp_path / "a.ale", ["Name", "Lens"], [["A", "50"], ["B", ""]]), tmp_path / "a.odb"
    expect(0, "import", log, "-o", table)
    expect(0, "sort", table, "--by", "Name", "--descending")
    assert "replaced " in expect(0, "import", log, "-o", table)
    expect(0, "import", log, "-o", table, "--all-columns")
    before = table.read_bytes()
    assert "holds 2 rows, 2 of which are not among the new ones" in expect(2, "import", log, "-o", table)
    write_log(log, ["Name", "Lens"], [["B", ""], ["C", ""]])
    assert "1 of which is not" not in expect(2, "import", log, "-o", table, "--all-columns") and table.read_bytes() == before
    assert "which held 2 rows" in expect(0, "import", log, "-o", table, "--in-place") and [r["Name"] for r in csv_rows(table)] == ["B", "C"]


def test_doubles_are_known_by_the_columns_that_both_fill(tmp_path):
    log, table = write_log(tmp_path / "a.ale", ["Name", "Take", "Lens"], [["A", "1", "50"], ["B", "1", "50"]]), tmp_path / "a.odb"
    expect(0, "import", log, "-o", table)
    assert "2 rows stand in the table already" in expect(1, "import", log, "-o", table, "--append", "--all-columns")
    other = write_log(tmp_path / "b.ale", ["Name", "Take"], [["B", "1"], ["B", "2"]])
    assert "b.ale: 1 row stands in another log already" in expect(1, "import", log, other, "-o", tmp_path / "all.odb")
    expect(0, "import", log, "-o", tmp_path / "c.odb", "--all-columns")
    assert "2 rows stand in the table already" in expect(1, "merge", tmp_path / "c.odb", table)[:200]
    scenes = write_table(tmp_path / "s.odb", ["Scene", "Shot"], [["1", "1"]])
    assert "already" not in expect(0, "merge", scenes, write_table(tmp_path / "s2.odb", ["Scene", "Notes"], [["1", "x"]]))


def test_dedupe_names_what_goes_with_a_row(tmp_path):
    columns = ["Name", "Notes", "Tag", "Cookie"]
    rows = [["a", "x", "", ""], ["A", "y", "1", "C"], ["a", "", "0", ""], ["b", "", "1", ""]]
    table = write_table(tmp_path / "t.odb", columns, rows)
    for words in (["--dry-run"], []):
        said = expect(1, "dedupe", table, "--by", "Name", *words)
        goes = "would go" if words else "goes"
        for what in (f'Notes: "y" {goes}; row 1, "a" has "x"', f'Tag: "1" {goes}; row 1, "a" has none', f'Cookie: "C" {goes}'):
            assert f'row 2, "A": {what}' in said
        assert "removed, and with them 3 values that the kept rows lack" in said and said.count(" has ") == 3
    write_table(table, columns, rows)
    assert '4 rows, 2 tagged; 1 other row lost its tag' in expect(0, "dedupe", table, "--by", "Name", "--tag-only")
    expect(0, "dedupe", write_table(tmp_path / "u.odb", columns, [["a", "x", "0", "C"], ["A", "", "", "C"]]), "--by", "Name")


def test_merge_keeps_identifiers_to_one_row(tmp_path):
    columns, cookie = ["Name", "Cookie", "Tag"], "U" + "0" * 31 + "1ff"
    hyphens = "U-00000000-0000-0000-0000-000000000001-ff"
    table = write_table(tmp_path / "t.odb", columns, [["a", "", ""], ["a", "", ""], ["b", "K", ""], ["c", "", ""]], ["OLEDB:Rev 1", "FPS:24"])
    other = write_table(tmp_path / "o.odb", columns, [["a", hyphens, "1"], ["c", "K", ""], ["d", cookie, ""]], ["OLEDB:Rev 1", "FPS:25"])
    said = expect(1, "merge", table, other, "--by", "Name")
    assert [row["Cookie"] for row in csv_rows(table)] == [hyphens, "", "K", "", cookie]
    for what in ('row 2, "a": Cookie: the identifier of row 1', 'row 4, "c": Cookie: the identifier of row 2', "for row 3, \"b\" has it",
                 'row 3, "d" of', "is added with the identifier that row 1, \"a\" has", 'FPS is "25" there and "24" here', "2 tags of matching rows not taken"):
        assert what in said, said
    os.symlink("t.odb", tmp_path / "l.odb")
    assert "are one file" in expect(2, "merge", table, tmp_path / "l.odb")


def test_identify(tmp_path):
    table = write_table(tmp_path / "t.odb", ["Name"], [["a"], ["b"]])
    hint = expect(3, "container", "create", tmp_path / "c.sg", "--name", "n", "--from", table)
    assert '"olelog identify TABLE" gives every row' in hint
    before = table.read_bytes()
    assert "2 would get an identifier" in expect(0, "identify", table, "--dry-run") and table.read_bytes() == before
    assert "2 rows, 2 got an identifier" in expect(0, "identify", table)
    cookies = [row["Cookie"] for row in csv_rows(table)]
    assert len(set(cookies)) == 2 and all(len(c) == 35 for c in cookies)
    assert "0 got an identifier" in expect(0, "identify", table) and [row["Cookie"] for row in csv_rows(table)] == cookies
    expect(0, "container", "create", tmp_path / "c.sg", "--name", "n", "--from", table)
    expect(3, "identify", write_table(tmp_path / "full.odb", [f"c{i}" for i in range(255)], [["x"] * 255]))


def test_what_is_replaced_or_left_out_is_told(tmp_path):
    table = shoot(tmp_path) / "t.odb"
    assert "replaced" not in expect(0, "export", table, "-o", tmp_path / "x.csv")
    assert "x.csv" in (said := expect(0, "export", table, "-o", tmp_path / "x.csv")) and "replaced" in said
    said = expect(0, "save", table, "-o", table, "--in-place", "--fields", "Name")
    for what in ("column Tag is left out, which holds values in 1 row\n", "column Cookie is left out", "t.odb, which held 3 rows"):
        assert what in said
    assert "left out" not in expect(0, "save", table, "-o", tmp_path / "n.odb")


def test_empty_values_are_found_and_orders_need_keys(tmp_path):
    table = shoot(tmp_path) / "t.odb"
    found = run("show", table, "--where", "Notes=", "--format", "csv", "--fields", "Scene").stdout
    assert found == b"Scene\r\n2\r\n"
    assert run("show", table, "--where", "Notes =", "--where", "Name=b", "--format", "csv", "--fields", "Scene").stdout == found
    for words in (["show", table], ["tag", table, "--all"]):
        assert "--descending needs --sort" in expect(2, *words, "--descending")


def test_a_left_over_is_told_with_what_is_wrong_with_it(tmp_path):
    container = tmp_path / "c.sg"
    text = table_text(["Cookie"], [["U" + f"{i:032x}ff"] for i in range(3)], ["OLEDB:Rev 1", "Name:n"])
    container.write_bytes(text)
    (tmp_path / "c.sg.tmp").write_bytes(text[: text.rindex(b'"U')])
    assert "(2 items; " in (said := expect(0, "container", "list", container)) and "c.sg holds 3)" in said
    (tmp_path / "c.sg.tmp").write_bytes(text + b'"x","y"\r\n')
    assert "(3 items, and it is damaged)" in expect(0, "container", "list", container)
