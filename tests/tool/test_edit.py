"""Commands that change a table file, against the same change made here, and what they leave alone."""

import os
import resource
import stat

import pytest
from olelog import csv_rows, expect, leftovers, messages, run, table_text, write_log, write_table
from test_selection import CHOICES, COLUMNS, ROWS, TYPES, chosen, options


@pytest.fixture
def table(tmp_path):
    return write_table(tmp_path / "t.odb", COLUMNS, [list(row.values()) for row in ROWS], ["OLEDB:Rev 1", "FPS:24"], TYPES)


def saved(rows):
    return [row | {"Tag": row["Tag"] or "0"} for row in rows]


@pytest.mark.parametrize("keys", [["Scene", "Shot"], ["Start time", "Name"], ["a,b"]])
@pytest.mark.parametrize("descending", [False, True])
def test_sort(tmp_path, table, keys, descending):
    wanted = saved(chosen(ROWS, keys=keys, descending=descending))
    words = ["--by", ",".join(keys).upper(), *["--descending"] * descending]
    assert "in another place" in expect(0, "sort", table, *words)
    assert csv_rows(table) == wanted
    before = table.stat()
    assert "in this order already" in expect(0, "sort", table, *words)
    assert table.stat().st_ino == before.st_ino


WAYS = {
    "": lambda tagged, chosen: chosen,
    "--add": lambda tagged, chosen: tagged or chosen,
    "--clear": lambda tagged, chosen: tagged and not chosen,
    "--invert": lambda tagged, chosen: tagged != chosen,
}


@pytest.mark.parametrize("way", WAYS)
@pytest.mark.parametrize("choice", CHOICES[1:8] + CHOICES[14:19], ids=str)
def test_tag(table, way, choice):
    names = {row["Name"] for row in chosen(ROWS, **choice)}
    wanted = []
    for row in ROWS:
        stays = WAYS[way](row["Tag"] in ("1", "7"), row["Name"] in names)
        wanted.append(row | {"Tag": (row["Tag"] if row["Tag"] in ("1", "7") else "1") if stays else "0"})
    if not any(choice.get(k) for k in ("where", "tagged", "limit", "unique")) and way in ("", "--add"):
        assert "which rows?" in expect(2, "tag", table, *way.split(), *options(**choice))
        return
    said = expect(0, "tag", table, *way.split(), *options(**choice))
    assert csv_rows(table) == wanted or "0 got a tag, 0 lost it" in said and csv_rows(table) == ROWS
    tagged = sum(row["Tag"] != "0" for row in wanted)
    assert f"t.odb: {tagged} of 120 rows tagged; " in said
    assert len(csv_rows(table)) == 120 and run("show", table, "--tagged").stdout.count(b"\n") == (tagged + 2 if tagged else 0)


def test_tag_makes_its_column(tmp_path):
    table = write_table(tmp_path / "t.odb", ["A"], [["x"], ["y"]])
    before = table.read_bytes()
    for code, words in [(0, ["--clear"]), (1, ["--where", "A=z"]), (2, []), (2, ["--all", "--clear"]), (2, ["--all", "--where", "A=y"]), (2, ["--all", "--limit", "1"]), (2, ["--where", "B=z"])]:
        expect(code, "tag", table, *words)
        assert table.read_bytes() == before
    expect(0, "tag", table, "--where", "A=y")
    assert csv_rows(table) == [{"A": "x", "Tag": "0"}, {"A": "y", "Tag": "1"}]
    expect(0, "tag", table, "--invert")
    expect(0, "tag", table, "--all")
    assert [row["Tag"] for row in csv_rows(table)] == ["1", "1"]


@pytest.mark.parametrize("by, words", [(["Scene"], []), (["Scene", "Shot"], []), (["Scene"], ["--empty"]), (["a,b"], [])])
def test_dedupe(tmp_path, table, by, words):
    seen, kept = set(), []
    for row in ROWS:
        key = tuple(row[field].lower() for field in by)
        if key not in seen or not any(key) and not words:
            kept.append(row)
        seen.add(key)
    expect(0, "dedupe", table, "--by", ",".join(by), *words, "--tag-only", "-o", tmp_path / "tagged.odb")
    assert [row["Name"] for row in csv_rows(tmp_path / "tagged.odb") if row["Tag"] == "0"] == [row["Name"] for row in kept]
    said = expect(1, "dedupe", table, "--by", ",".join(by), *words)
    assert f"120 rows, {120 - len(kept)} removed" in said and csv_rows(table) == saved(kept)
    told = [row["Name"] for row in ROWS if row not in kept][:20]
    assert [line.split('"')[1] for line in said.splitlines() if ": equals row " in line] == told
    assert ", 0 removed" in expect(0, "dedupe", table, "--by", ",".join(by), *words)


def test_merge(tmp_path):
    """Fills what is missing, adds what matches nothing, converts timecodes, overwrites nothing."""
    columns, types = ["Name", "Reel", "Notes", "Start time", "Tag"], ["text", "text", "text", "timecode", "long"]
    rows = [["a", "R1", "", "01:00:00:00", "1"], ["A", "", "", "", ""], ["", "R9", "", "", ""], ["b", "R2", "no", "", ""]]
    table = write_table(tmp_path / "t.odb", columns, rows, types=types)
    other = [["A", "R1", "yes", "01000005", "x", "7"], ["b", "R3", "no", "", "x", ""], ["", "R9", "n", "", "", ""], ["new", "R4", "", "odd", "", "7"]]
    write_table(tmp_path / "o.odb", ["NAME", "Reel", "notes", "start time", "Lens", "tag"], other, types=["text"] * 3 + ["timecode_s"] + ["text"] * 2)
    said = expect(1, "merge", table, tmp_path / "o.odb", "--by", "name")
    got = [list(row.values()) for row in csv_rows(table)]
    assert got == [
        ["a", "R1", "yes", "01:00:00:00", "1"],
        ["A", "R1", "yes", "01:00:00:05", "0"],
        ["", "R9", "", "", "0"],
        ["b", "R2", "no", "", "0"],
        ["", "R9", "n", "", "0"],
        ["new", "R4", "", "", "7"],
    ]
    for part in (
        "1 column dropped, which the table has no field for: Lens",
        'row 4, "new": Start time: "odd" is no timecode',
        'row 1, "a": Start time: "01:00:00:00" stays; row 1 of',
        'row 4, "b": Reel: "R2" stays; row 2 of',
        "2 added, 2 matched; 4 values filled in, 2 differ and stay",
    ):
        assert part in said, said
    everything = write_table(tmp_path / "t.odb", columns, rows, types=types)
    expect(1, "merge", everything, tmp_path / "o.odb")
    assert [row["Name"] for row in csv_rows(everything)] == ["a", "A", "", "b", "A", "b", "", "new"]
    expect(3, "merge", everything, write_table(tmp_path / "q.odb", ["Q"], [["x"]]))
    assert "has no field" in expect(2, "merge", everything, tmp_path / "q.odb", "--by", "Name")


COMMANDS = [["sort", "--by", "Scene"], ["tag", "--all"], ["dedupe", "--by", "Scene"], ["merge", "o.odb"]]


def call(table, command, *words):
    return [command[0], table, *command[1:], *words]


@pytest.mark.parametrize("command", COMMANDS, ids=lambda c: c[0])
def test_files_are_replaced_whole_or_left_alone(tmp_path, table, command):
    write_table(tmp_path / "o.odb", ["Name"], [["n"]])
    os.symlink("t.odb", tmp_path / "link.odb")
    table.chmod(0o640)
    before, names = table.read_bytes(), sorted(p.name for p in tmp_path.iterdir())
    at = {"cwd": tmp_path}
    code = 1 if command[0] == "dedupe" else 0  # values go with the removed rows
    said = expect(code, *call("link.odb", command, "--dry-run"), **at)
    assert "would be " in said and said.endswith("nothing was written (--dry-run)\n")

    def limit():
        resource.setrlimit(resource.RLIMIT_FSIZE, (1024, 1024))

    assert "File too large" in expect(3, *call("t.odb", command), preexec_fn=limit, **at)
    assert "there is no folder no;" in expect(3, *call("t.odb", command, "-o", "no/x.odb"), **at)
    write_log(tmp_path / "log.ale", ["Name"], [["n"]])
    assert "is no table" in expect(2, *call("t.odb", command, "-o", "log.ale"), **at)
    os.remove(tmp_path / "log.ale")
    piped = run(*call("-", command), stdin=before, **at)
    assert table.read_bytes() == before and sorted(p.name for p in tmp_path.iterdir()) == names
    expect(code, *call("link.odb", command), **at)
    assert table.read_bytes() == piped.stdout != before and stat.S_IMODE(table.stat().st_mode) == 0o640
    assert sorted(p.name for p in tmp_path.iterdir()) == names
    table.write_bytes(before + b'"short"\r\n')
    assert "would be lost" in expect(3, *call("t.odb", command), **at)
    assert table.read_bytes() == before + b'"short"\r\n'
    expect(1, *call("t.odb", command, "-o", "new.odb"), **at)
    assert (tmp_path / "new.odb").read_bytes() == piped.stdout


def test_what_people_put_there_is_not_replaced_by_mistake(tmp_path):
    """A container, and tags or identifiers of another table; a plain table is, and that is told."""
    log = write_log(tmp_path / "a.ale", ["Name"], [["A"], ["B"]])
    source = write_table(tmp_path / "s.odb", ["Name"], [["B"], ["A"]])
    write_table(tmp_path / "other.odb", ["Name"], [["c"]])
    columns, named = ["Cookie", "Name", "Tag"], ["OLEDB:Rev 1", "Name:K"]
    plain = table_text(columns, [["", "A", "0"], ["", "B", ""]])
    kept = {
        "is a container with 2 items": table_text(["Cookie"], [["U" + "0" * 33 + f"{i}"] for i in range(2)], named),
        "holds 1 tagged row and 2 identifiers": table_text(columns, [["c", "x", "7"], ["d", "y", "0"]]),
        "holds 1 identifier": table_text(columns[:1], [["c"], [""]]),
        "holds 2 tagged rows": table_text(columns[1:], [["x", "1"], ["y", "2"], ["z", "none"]]),
    }
    out = tmp_path / "out.odb"
    commands = [["import", log], ["save", source], ["sort", source, "--by", "Name"], ["merge", source, tmp_path / "other.odb"]]
    for command in commands:
        out.write_bytes(plain)
        assert "replaced " in (said := expect(0, *command, "-o", out)) and "out.odb, which held 2 rows" in said
        assert ("out.odb: written; " in said) == (command[0] in ("sort", "merge"))
        written = out.read_bytes()
        for told, text in kept.items():
            out.write_bytes(text)
            said = expect(2, *command, "-o", out)
            assert f"{told}, which would go; " in said and "--in-place allows that" in said
            assert ("--append" in said) == (command[0] == "import" and "container" not in told)
            assert out.read_bytes() == text
            expect(0, *command, "-o", out, "--in-place")
            assert out.read_bytes() == written
    out.write_bytes(container := next(iter(kept.values())))
    for command in [["import", log, "--append", "-o", out], *(call(out, c) for c in COMMANDS[:3]), ["merge", out, source]]:
        assert "is a container" in expect(2, *command, cwd=tmp_path) and out.read_bytes() == container


def test_another_table_is_not_replaced_by_mistake(tmp_path):
    """Its rows would go; the same rows in another order, or with more values, are replaced."""
    day = write_table(tmp_path / "day.odb", ["Name", "Notes"], [["b", ""], ["a", "old"]])
    other = write_table(tmp_path / "other.odb", ["Name", "Notes"], [["a", "new"], ["c", "x"]])
    before = other.read_bytes()
    for words in (["sort", day, "--by", "Name"], ["save", day], ["merge", day, other, "--by", "Name"], ["dedupe", day, "--by", "Name"]):
        said = expect(2, *words, "-o", other)
        assert "not among the new ones and would go; --in-place" in said and other.read_bytes() == before
    expect(0, "sort", day, "--by", "Name", "-o", tmp_path / "new.odb")
    expect(0, "sort", day, "--by", "Notes", "-o", tmp_path / "new.odb")
    assert leftovers(tmp_path) == []


def test_backup(tmp_path):
    table = write_table(tmp_path / "t.odb", ["Name"], [["b"], ["a"]])
    first = table.read_bytes()
    expect(0, "sort", table, "--by", "Name", "--backup", "--dry-run")
    assert [path.name for path in tmp_path.iterdir()] == ["t.odb"]
    expect(0, "sort", table, "--by", "Name", "--backup")
    second = table.read_bytes()
    assert (tmp_path / "t.odb~").read_bytes() == first != second
    expect(0, "sort", table, "--by", "Name", "--backup")  # nothing changes, and the backup stays
    assert (tmp_path / "t.odb~").read_bytes() == first
    (tmp_path / "t.odb~").unlink()
    (tmp_path / "t.odb~").mkdir()
    said = expect(3, "sort", table, "--by", "Name", "--descending", "--backup")
    assert "the backup cannot be written" in said and table.read_bytes() == second


def test_a_key_of_several_rows_is_told(tmp_path):
    table = write_table(tmp_path / "t.odb", ["Name", "Scene", "Notes"], [["A1", "1", ""], ["B1", "1", ""], ["A2", "2", ""]])
    other = write_table(tmp_path / "o.odb", ["Name", "Scene", "Notes"], [["A1", "1", "print"], ["A2", "2", "no good"]])
    said = expect(1, "merge", table, other, "--by", "Scene", "--dry-run")
    assert f'row 1, "A1" of {other} matches 2 rows: row 1, "A1", row 2, "B1"' in said and said.count("matches 2") == 1
    assert 'row 2, "B1": Notes: "print" would be filled in' in said
    many = write_table(tmp_path / "m.odb", ["Name", "Scene"], [[f"n{i}", "1"] for i in range(9)])
    assert 'matches 9 rows: row 1, "n0", row 2, "n1", row 3, "n2", row 4, "n3", row 5, "n4", ...;' in expect(1, "merge", many, other, "--by", "Scene")
    said = expect(0, "merge", table, other, "--by", "Scene,Name")
    assert 'row 1, "A1": Notes: "print" filled in' in said and "matches 2" not in said


def test_rows_that_are_added_again_are_named(tmp_path):
    log, table = write_log(tmp_path / "a.ale", ["Name", "Notes"], [["A", "x"], ["B", ""], ["C", ""]]), tmp_path / "a.odb"
    assert "already" not in expect(0, "import", log, "-o", table, "--identify")
    expect(0, "tag", table, "--where", "Name=B")
    write_log(log, ["Name", "Notes"], [["A", "x"], ["new", ""], ["C", ""], ["B", ""], ["a", "x"], ["new", ""]])
    assert "3 rows stand in the table already, with the same values wherever both have some, and added again: line 10, 12-13" in expect(
        1, "import", log, "-o", table, "--append"
    )
    assert len(csv_rows(table)) == 9
    other = write_table(tmp_path / "o.odb", ["Cookie", "Name", "Notes"], [["Q", "A", "x"], ["", "A", ""], ["", "", ""]])
    assert "o.odb: 1 row stands in the table already" in (said := expect(1, "merge", table, other)) and "row 1; --by" in said
    assert "already" not in expect(1, "merge", table, other, "--by", "Name")


def test_strict_writes_nothing_that_would_change(tmp_path):
    log = write_log(tmp_path / "a.ale", ["Name", "Notes", "Tag"], [["A", "x\\ny", ""], ["B", "", "maybe"]])
    for words in ([], ["--append"]):
        said = expect(3, "import", log, "-o", tmp_path / "a.odb", "--strict", *words)
        assert 'a.ale:10: Notes: "x\\ny"' in said and 'a.ale:11: Tag: "maybe" is no tag' in said and "--strict" in said
    assert sorted(p.name for p in tmp_path.iterdir()) == ["a.ale"]
    odd = write_log(tmp_path / "b.ale", ["Name", 'a "b"'], [["A", "x"]])
    expect(3, "import", odd, "-o", tmp_path / "b.odb", "--all-columns", "--strict")
    expect(1, "import", odd, "-o", tmp_path / "b.odb", "--all-columns")
    table = write_table(tmp_path / "t.odb", ["A", "Tag"], [["b", "maybe"], ["a", ""]])
    before = table.read_bytes()
    for command in (["sort", "--by", "A"], ["dedupe", "--by", "Tag", "--empty"], ["tag", "--add", "--where", "A=a"]):
        said = expect(3 if command[0] != "dedupe" else 0, *call(table, command, "--strict"))
        assert table.read_bytes() == before
    expect(3, "save", table, "-o", tmp_path / "s.odb", "--strict")
    assert not (tmp_path / "s.odb").exists()
    expect(1, "sort", table, "--by", "A")
    assert [list(row.values()) for row in csv_rows(table)] == [["a", "0"], ["b", "0"]] and leftovers(tmp_path) == []


def test_row_that_grows_too_long(tmp_path):
    """A tag more, and the line passes what can be read back."""
    table = write_table(tmp_path / "t.odb", ["A", "B"], [["x", "y" * 4086], ["y", ""]])
    before = table.read_bytes()
    assert "row 1: the row needs a line of 4096 bytes" in (said := expect(3, "tag", table, "--where", "A=y")), said
    assert "the longest is that of B, with 4086" in said and table.read_bytes() == before
