"""Exports, read back by other programs; and what becomes of files where writing fails."""

import csv
import io
import json
import os
import resource
import sqlite3
import subprocess

import pytest
from olelog import csv_rows, expect, info, leftovers, log_text, messages, run, write_table

FOLDER = os.environ.get("OLE_REAL_LOGS")
SAMPLES = os.path.join(os.path.dirname(__file__), "..", "..", "samples")
LOGS = [os.path.join(d, f) for d in (SAMPLES, FOLDER) if d for f in sorted(os.listdir(d)) if f.endswith(".ale")]
LOGS = [log for log in LOGS if os.path.basename(log) not in ("cr-only.ale", "blank-lines.ale")]  # no import takes these

COLUMNS = ["Name", "a,b", 'say "x"', "Grüße", "Empty", "length", "when"]
TYPES = ["text"] * 5 + ["double", "dos_date"]
ROWS = [
    ["plain", "1,2", 'a "quoted" word', "äöü – 日本", "", "43.29166667", ""],
    ['"', ",", '""', "line\nbreak", "", "1e99", ""],
    ["=1+1", "-5", "+3", "@x", "", "0", ""],
    ["'tis", "two\n\nlines, \"both\"", ",,", "\u202e", "", "", ""],
]


@pytest.fixture
def table(tmp_path):
    names = [c.replace('"', "") for c in COLUMNS]
    return write_table(tmp_path / "t.odb", names, ROWS, ["OLEDB:Rev 1", "FPS:24"], TYPES)


def stored_rows(table):
    """Names and rows as JSON gives them, to which no quoting of CSV has been."""
    rows = json.loads(run("show", table, "--format", "json").stdout)
    return [c["name"] for c in info(table)["columns"]], [list(row.values()) for row in rows]


def through_sqlite(path, folder):
    """What SQLite's shell imports of a CSV file."""
    base = folder / "x.sqlite"
    subprocess.run(["sqlite3", base, ".mode csv", f".import '{path}' t"], check=True, timeout=60)
    with sqlite3.connect(base) as connection:
        found = connection.execute("select * from t")
        return [column[0] for column in found.description], [list(row) for row in found]


@pytest.mark.parametrize("log", [*LOGS, None], ids=lambda log: os.path.basename(log) if log else "odd values")
def test_other_programs_read_what_the_table_holds(tmp_path, table, log):
    if log:
        assert run("import", log, "-o", table, "--all-columns", "--in-place").returncode in (0, 1)
    names, rows = stored_rows(table)
    assert len(rows) >= 1 and (log or [row[:5] for row in rows] == [row[:5] for row in ROWS])
    expect(0, "export", table, "-o", tmp_path / "x.csv")
    text = (tmp_path / "x.csv").read_bytes().decode()
    assert list(csv.reader(io.StringIO(text, newline=""), strict=True)) == [names, *rows]
    assert through_sqlite(tmp_path / "x.csv", tmp_path) == (names, rows)
    expect(0, "export", table, "-o", tmp_path / "x.JSON")
    assert [list(row.values()) for row in json.loads((tmp_path / "x.JSON").read_text())] == rows
    for format in ("rfc4180", "json"):
        shown = run("show", table, "--format", "csv" if format == "rfc4180" else format)
        assert run("export", table, "-o", "-", "--format", format).stdout == shown.stdout


def test_selection_mark_and_guard(tmp_path, table):
    words = ["--fields", "Name,a,b,say x,Grüße", "--sort", "Name", "--limit", "3"]
    said = expect(0, "export", table, "-o", tmp_path / "x.csv", *words, "--bom", "--guard-formulas")
    text = (tmp_path / "x.csv").read_bytes()
    assert text.startswith(b"\xef\xbb\xbfName,") and text.count(b"\xef\xbb\xbf") == 1
    wanted = sorted((row[:4] for row in ROWS), key=lambda row: row[0])[:3]
    guarded = [["'" + v if v[:1] in ("=", "+", "-", "@") else v for v in row] for row in wanted]
    assert sorted(csv.reader(io.StringIO(text.decode("utf-8-sig"), newline=""))) == sorted([["Name", "a,b", "say x", "Grüße"], *guarded])
    assert "4 cells got an apostrophe" in said
    assert 'no field "Nmae"' in expect(2, "export", table, "-o", tmp_path / "y.csv", "--fields", "Nmae")
    assert "no row is selected" in expect(1, "export", table, "-o", tmp_path / "y.csv", "--where", "Name=nobody")
    assert not (tmp_path / "y.csv").exists()


def test_form_of_editors(tmp_path, table):
    """Two header lines, capitals, quotes around commas and nothing else; what that loses is told."""
    said = expect(1, "export", table, "-o", tmp_path / "x.csv", "--format", "csv", "--fields", "length,a,b,say x")
    assert (tmp_path / "x.csv").read_bytes() == (
        b'Length,A,b,Say x\r\n,,\r\n00:00:43:07,"1,2",a "quoted" word\r\n,",",""\r\n'
        b'00:00:00:00,-5,+3\r\n00:00:00:00,"two\n\nlines, "both"",",,"\r\n'
    )
    assert "3 values hold quotes or line breaks" in said
    expect(0, "export", table, "-o", tmp_path / "x.csv", "--format", "csv", "--fields", "Name", "--limit", "1")
    assert (tmp_path / "x.csv").read_bytes() == b"Name\r\n\r\nplain\r\n"
    twice = write_table(tmp_path / "two.odb", ["A", "B", "a"], [["1", "2", "3"]], ["OLEDB:Rev 1", "FPS:23.98"])
    assert "by their names alone" in expect(1, "export", twice, "-o", tmp_path / "x.csv", "--format", "csv")
    seconds = write_table(tmp_path / "s.odb", ["d"], [["3600"]], ["OLEDB:Rev 1", "FPS:23.98"], ["double"])
    assert run("export", seconds, "-o", "-", "--format", "csv").stdout == b"D\r\n\r\n00:59:56:09\r\n"
    plain = write_table(tmp_path / "p.odb", ["d"], [["3.2"]], types=["double"])
    result = run("export", plain, "-o", "-", "--format", "csv")
    assert result.stdout == b"D\r\n\r\n00:00:03:05\r\n" and "no parameter FPS" in messages(result)


def test_fields_are_kept(tmp_path, table):
    x = tmp_path / "x.csv"
    expect(0, "export", table, "-o", x, "--fields", "when,Name,-Empty", "--keep-fields")
    kept, before = x.read_bytes(), csv_rows(table)
    assert {"name": "V5_FIELD_MAP", "value": "7 1 -5"} in info(table)["parameters"] and len(before) == 4
    for format in ("rfc4180", "json", "csv"):
        result = run("export", table, "-o", "-", "--format", format)
        assert "2 of 7 fields, as the table's field map has them" in messages(result)
        assert result.stdout == kept if format == "rfc4180" else b"plain" in result.stdout and b"1,2" not in result.stdout
    expect(0, "export", table, "-o", x, "--all-fields")
    assert x.read_bytes() == run("show", table, "--format", "csv").stdout
    expect(0, "export", table, "-o", x, "--fields", "-Name", "--keep-fields")
    assert {"name": "V5_FIELD_MAP", "value": "2 3 4 5 6 7 -1"} in info(table)["parameters"]
    wide = write_table(tmp_path / "w.odb", [f"c{i}" for i in range(1, 121)], [["x"] * 120])
    expect(0, "export", wide, "-o", x, "--fields", "-c110,-c99", "--keep-fields")
    assert info(wide)["parameters"][1]["value"].endswith(" 119 120 -99")  # -110 would be read as -11
    expect(0, "export", wide, "-o", x)
    assert x.read_text().splitlines()[0].split(",") == [f"c{i}" for i in range(1, 121) if i not in (99, 110)]
    twice = write_table(tmp_path / "two.odb", ["A", "B", "A"], [["1", "2", "3"]])
    unchanged, x_before = twice.read_bytes(), x.read_bytes()
    assert "by their names" in expect(3, "export", twice, "-o", x, "--fields", "-B", "--keep-fields")
    assert twice.read_bytes() == unchanged and x.read_bytes() == x_before
    hidden = write_table(tmp_path / "h.odb", ["A"], [["1"]], ["OLEDB:Rev 1", "V5_FIELD_MAP:-1"])
    assert "shows no field" in expect(3, "export", hidden, "-o", x)


@pytest.mark.parametrize(
    "words, told",
    [
        (["-o", "x.txt"], "which format?"),
        (["-o", "-"], "which format?"),
        (["-o", "x.json", "--bom"], "--bom"),
        (["-o", "x.csv", "--format", "csv", "--guard-formulas"], "--guard-formulas"),
        (["-o", "x.csv", "--keep-fields"], "--fields"),
        (["-o", "t.odb", "--format", "json"], "t.odb is a table"),
        (["-o", "t.odb", "--format", "json", "--in-place", "--keep-fields", "--fields", "Name"], "--keep-fields"),
    ],
)
def test_what_makes_no_sense(tmp_path, table, words, told):
    before = table.read_bytes()
    assert told in expect(2, "export", "t.odb", *words, cwd=tmp_path)
    assert table.read_bytes() == before and os.listdir(tmp_path) == ["t.odb"]


def test_bytes_that_are_no_utf8_are_told(tmp_path):
    table = write_table(tmp_path / "t.odb", ["Name"], [["caf\udce9"], ["caf\u00e9"]])
    said = expect(1, "export", table, "-o", tmp_path / "t.csv", "--bom")
    assert said.startswith("olelog: 1 text with bytes that are no UTF-8") and b"caf\xe9\r\n" in (tmp_path / "t.csv").read_bytes()


def test_a_log_is_not_replaced_by_mistake(tmp_path, table):
    """Whatever its encoding and its line ends; an export that stands there is."""
    log, words = tmp_path / "a.ale", ["export", table, "--format", "json", "-o"]
    text = log_text(["Name"], [["A"]]).decode()
    for old in (text.encode(), text.encode("utf-16"), text.replace("\n", "\r").encode(), text.split("\n", 1)[1].encode()):
        log.write_bytes(old)
        assert "is a log; --in-place" in expect(2, *words, log) and log.read_bytes() == old
    for old in (b"", b'[\n]\n', b"Name,Heading\r\nColumn,x\r\n", b"Headings\n"):
        log.write_bytes(old)
        expect(0, *words, log)
        assert log.read_bytes().startswith(b"[\n  {")
    log.write_text(text)
    expect(0, *words, log, "--in-place")


@pytest.mark.parametrize("format", ["csv", "rfc4180", "json"])
def test_writing_that_fails(tmp_path, format):
    table = write_table(tmp_path / "t.odb", ["Name", "Note"], [[f"{i}", "x" * 60] for i in range(2000)])
    x = tmp_path / "x.csv"
    x.write_bytes(b"old\n")
    before, names = table.read_bytes(), sorted(os.listdir(tmp_path))

    def limit():
        resource.setrlimit(resource.RLIMIT_FSIZE, (100000, 100000))

    words = ["--format", format, "--fields", "Note,Name"]
    assert "File too large" in expect(3, "export", table, "-o", x, *words, preexec_fn=limit)
    assert "No space left" in expect(3, "export", table, "-o", "/dev/full", *words)
    assert "there is no folder" in expect(3, "export", table, "-o", tmp_path / "no" / "x.csv", *words)
    assert "Is a directory" in expect(3, "export", table, "-o", tmp_path, *words)
    assert "cannot be read" in expect(3, "export", tmp_path / "none.odb", "-o", x, *words)
    assert x.read_bytes() == b"old\n" and table.read_bytes() == before and sorted(os.listdir(tmp_path)) == names
    x.chmod(0o640)
    expect(0, "export", table, "-o", x, *words)
    assert x.stat().st_mode & 0o777 == 0o640 and len(x.read_bytes()) > 100000 and leftovers(tmp_path) == []


def test_a_table_that_cannot_keep_its_fields_keeps_the_export_too(tmp_path):
    """The second of two files fails: neither is replaced."""
    table = write_table(tmp_path / "t.odb", ["A", "B"], [["x", "y" * 60]] * 2000)
    before = table.read_bytes()

    def limit():
        resource.setrlimit(resource.RLIMIT_FSIZE, (20000, 20000))

    expect(3, "export", table, "-o", tmp_path / "x.csv", "--fields", "A", "--keep-fields", preexec_fn=limit)
    assert os.listdir(tmp_path) == ["t.odb"] and table.read_bytes() == before
