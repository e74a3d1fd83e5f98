"""Choosing rows and columns: what is shown and saved against the same choice made here."""

import json
import os
import random
import re

import pytest
from olelog import csv_rows, expect, info, leftovers, messages, run, write_table

COLUMNS = ["Name", "Scene", "Shot", "Start time", "End time", "Notes", "Tag", "a,b", "Odd=", "-C", "C"]
TYPES = ["text", "text", "text", "timecode", "timecode", "text", "long", "text", "text", "text", "text"]


def make_rows(count, seed=1):
    chance = random.Random(seed)
    pick = lambda *values: chance.choice(values)
    rows = []
    for i in range(count):
        start = chance.randrange(8)
        rows.append([
            f"r{i}", pick("", "1", "2", "10", "10A", "10a", "x"), pick("", "1", "2", "11"),
            pick("", f"01:00:0{start}:00"), pick("", f"01:00:0{start + 1}:12"),
            pick("", "Print", "print; MOS", "no good", "sprint", "pr nt"), pick("", "0", "1", "7"),
            pick("p", "q"), pick("=", "e"), "minus", "plain",
        ])  # fmt: skip
    return [dict(zip(COLUMNS, row)) for row in rows]


ROWS = make_rows(120)


@pytest.fixture
def table(tmp_path):
    return write_table(tmp_path / "t.odb", COLUMNS, [list(row.values()) for row in ROWS], ["OLEDB:Rev 1", "FPS:24"], TYPES)


def matches(row, field, pattern):
    start, end = row["Start time"], row["End time"]
    if field in ("Start time", "End time"):
        part, length = start[: len(pattern)], len(pattern)
        return bool(start) and (part == pattern or bool(end) and part <= pattern <= end[:length])
    return re.search(re.escape(pattern).replace(r"\?", "."), row[field], re.IGNORECASE) is not None


def ascending(value):
    """Empty values last; numbers in texts count as numbers."""
    pieces = re.findall(r"\d+|\D", value.lower())
    return (not value, [(0, int(p), "") if p.isdigit() else (1, 0, p) for p in pieces])


def chosen(rows, where=(), keys=(), descending=False, unique=None, tagged=False, limit=None):
    rows = [row for row in rows if all(matches(row, *w) for w in where) and (not tagged or row["Tag"] in ("1", "7"))]
    for key in reversed(keys):
        rows.sort(key=lambda row: row[key].lower() if descending else ascending(row[key]), reverse=descending)
    if unique:
        firsts = {}
        for row in rows:
            firsts.setdefault(row[unique].lower(), row)
        rows = list(firsts.values())
    return rows[:limit]


def options(where=(), keys=(), descending=False, unique=None, tagged=False, limit=None):
    words = [word for field, pattern in where for word in ("--where", f"{field}={pattern}")]
    words += ["--sort", ",".join(keys)] * bool(keys) + ["--descending"] * descending + ["--tagged"] * tagged
    words += ["--unique", unique] if unique else []
    return words + ([] if limit is None else ["--limit", str(limit)])


CHOICES = [
    {},
    {"where": [("Scene", "10")]},
    {"where": [("Scene", "10a")]},
    {"where": [("Notes", "pr?nt")]},
    {"where": [("Notes", "?")]},
    {"where": [("Notes", "print"), ("Scene", "1"), ("Shot", "1")]},
    {"where": [("Notes", "print"), ("Notes", "mos")]},
    {"where": [("Start time", "01:00:03:")]},
    {"where": [("End time", "01:00:03:0")]},
    {"where": [("Odd=", "=")]},
    {"where": [("a,b", "q")], "keys": ["a,b", "Name"]},
    {"keys": ["Scene", "Shot"]},
    {"keys": ["Scene", "Shot"], "descending": True},
    {"keys": ["Start time", "Scene", "Name"]},
    {"keys": ["Name"], "unique": "Scene"},
    {"keys": ["Shot"], "descending": True, "unique": "Notes"},
    {"tagged": True},
    {"tagged": True, "where": [("Scene", "10")], "keys": ["Shot"], "unique": "Notes", "limit": 2},
    {"limit": 1},
    {"limit": 2147483647},
]


@pytest.mark.parametrize("choice", CHOICES, ids=str)
def test_rows(tmp_path, table, choice):
    before = table.read_bytes()
    wanted = chosen(ROWS, **choice)
    assert wanted
    got = run("show", table, "--format", "json", *options(**choice))
    assert (got.returncode, got.stderr) == (0, b"") and json.loads(got.stdout) == wanted
    assert table.read_bytes() == before


@pytest.mark.parametrize(
    "fields, wanted",
    [
        ("Shot,Name", ["Shot", "Name"]),
        ("shot,NAME,Shot", ["Shot", "Name"]),
        (" Shot , Name", ["Shot", "Name"]),
        ("a,b,Name", ["a,b", "Name"]),
        ("Name,a,b", ["Name", "a,b"]),
        ("-Scene,-a,b", [c for c in COLUMNS if c not in ("Scene", "a,b")]),
        ("Name,Scene,-name", ["Scene"]),
        ("-C,C", ["-C", "C"]),
        ("--C", [c for c in COLUMNS if c != "-C"]),
    ],
)
def test_fields(table, fields, wanted):
    for given in (["--fields", fields], [f"--fields={fields}"]):
        got = run("show", table, "--format", "json", *given)
        assert [list(row) for row in json.loads(got.stdout)] == [wanted] * len(ROWS), messages(got)


def test_named_fields_are_shown_though_empty(tmp_path):
    table = write_table(tmp_path / "t.odb", ["A", "B", "C"], [["x", "", ""]])
    assert run("show", table, "--fields", "B,A").stdout == b"B  A\n-  -\n   x\n"
    assert run("show", table, "--fields=-C").stdout == b"A\n-\nx\n"


@pytest.mark.parametrize(
    "words, told",
    [
        (["--where", "Scen=1"], '--where: there is no field "Scen"; did you mean "Scene"?'),
        (["--sort", "Scene,start tim"], '--sort: there is no field "start tim"; did you mean "Start time"?'),
        (["--sort", "Scene,"], '--sort: there is no field ""'),
        (["--unique", "Shto"], '"Shot"?'),
        (["--fields", "-Nmae"], '--fields: there is no field "Nmae"; did you mean "Name"?'),
        (["--fields", "quite another"], '"quite another"; olelog info lists'),
        (["--fields", "TAKE"], "--fields: there is no field \"TAKE\"; a log's Take is the field Shot\n"),
        (["--where", "Tape=1"], '"Tape"; did you mean "Name"?'),  # no Reel in this table
        (["--fields", ""], "--fields: "),
        (["--fields", "Name,-Name"], "no field is left"),
        (["--where", "Scene"], "FIELD=PATTERN"),
        (["--where", "=1"], 'no field ""'),
        (["--limit", "-1"], "--limit"),
        (["--limit", "9999999999"], "--limit"),
    ],
)
def test_what_makes_no_sense(table, words, told):
    assert told in expect(2, "show", table, *words)
    assert run("show", table, *words).stdout == b""


@pytest.mark.parametrize("words", [["--where", "Scene=nowhere"], ["--limit", "0"], ["--where", "Scene=1", "--where", "Scene=2"]])
def test_no_row(tmp_path, table, words):
    for format, printed in [("table", b""), ("csv", b"Shot,Name\r\n"), ("json", b"[\n]\n")]:
        got = run("show", table, *words, "--fields", "Shot,Name", "--format", format)
        assert (got.returncode, got.stdout, messages(got)) == (1, printed, f"olelog: {table}: no row is selected\n")


def test_a_cookie_is_found_in_either_form(tmp_path):
    plain, long = "U17de21a4bf004bb188d2c01f3a5e9b70ff", "U-17de21a4-bf00-4bb1-88d2-c01f3a5e9b70-ff"
    held = [plain, long, plain.upper(), plain.replace("17", "18"), long[:-2] + "fe", ""]
    table = write_table(tmp_path / "t.odb", ["Cookie", "Notes"], [[cookie, cookie] for cookie in held])
    for wanted in (plain, long, long.lower(), long[2:]):
        assert run("show", table, "--where", f"COOKIE={wanted}", "--format", "csv").stdout.count(b"\r\n") == 4, wanted
    assert run("show", table, "--where", f"Notes={long}", "--format", "csv").stdout.count(b"\r\n") == 2
    assert run("show", table, "--where", "Cookie=U17d", "--format", "csv").stdout.count(b"\r\n") == 3


def test_tagged_needs_the_field(tmp_path):
    table = write_table(tmp_path / "t.odb", ["A"], [["x"]])
    assert 'no field "Tag"' in expect(1, "show", table, "--tagged")


@pytest.mark.parametrize("choice", CHOICES, ids=str)
def test_saved_rows_are_the_shown_ones(tmp_path, table, choice):
    expect(0, "save", table, "-o", tmp_path / "s.odb", *options(**choice))
    as_saved = [row | {"Tag": row["Tag"] or "0"} for row in chosen(ROWS, **choice)]
    assert csv_rows(tmp_path / "s.odb") == as_saved
    facts, before = info(tmp_path / "s.odb"), info(table)
    assert facts["parameters"] == before["parameters"]
    assert [(c["name"], c["type"]) for c in facts["columns"]] == [(c["name"], c["type"]) for c in before["columns"]]


def test_save_fields(tmp_path, table):
    out = tmp_path / "s.odb"
    expect(0, "save", table, "-o", out, "--fields", "End time,Name,a,b", "--where", "Scene=10", "--sort", "Name")
    wanted = chosen(ROWS, where=[("Scene", "10")], keys=["Name"])
    assert csv_rows(out) == [{name: row[name] for name in ("End time", "Name", "a,b")} for row in wanted]
    assert [(c["name"], c["type"]) for c in info(out)["columns"]] == [("End time", "timecode"), ("Name", "text"), ("a,b", "text")]
    assert info(out)["parameters"] == info(table)["parameters"]


def test_save_through_pipes(tmp_path, table):
    expect(0, "save", table, "-o", tmp_path / "s.odb", "--limit", "3")
    got = run("save", "-", "-o", "-", "--limit", "3", stdin=table.read_bytes())
    assert (got.returncode, got.stderr, got.stdout) == (0, b"", (tmp_path / "s.odb").read_bytes())


def test_what_is_not_meant_is_told(table):
    assert "there is no exact match" in expect(1, "show", table, "--where", "Scene==1")
    assert "--unique takes one field" in expect(2, "show", table, "--unique", "Scene,Shot")


def test_save_in_place(tmp_path, table):
    before = table.read_bytes()
    os.symlink(table, tmp_path / "link.odb")
    assert "--in-place" in expect(2, "save", table, "-o", tmp_path / "link.odb", "--limit", "3")
    for code, words in [(1, ["--limit", "0"]), (2, ["--sort", "nothing like it"])]:
        expect(code, "save", table, "-o", table, "--in-place", *words)
        assert table.read_bytes() == before
    expect(0, "save", table, "-o", table, "--in-place", "--where", "Scene=10", "--descending", "--sort", "Name")
    assert [row["Name"] for row in csv_rows(table)] == [
        row["Name"] for row in chosen(ROWS, where=[("Scene", "10")], keys=["Name"], descending=True)
    ]
    assert leftovers(tmp_path) == [] and len(list(tmp_path.iterdir())) == 2


def test_save_of_a_damaged_table(tmp_path, table):
    table.write_bytes(table.read_bytes() + b'"one"\r\n')
    before = table.read_bytes()
    expect(3, "save", table, "-o", table, "--in-place", "--limit", "3")
    assert table.read_bytes() == before
    expect(1, "save", table, "-o", tmp_path / "s.odb", "--limit", "3")
    assert len(csv_rows(tmp_path / "s.odb")) == 3


def test_save_refuses_what_would_not_come_back(tmp_path):
    table = write_table(tmp_path / "t.odb", ["A", "B"], [["x", "OLEDB"]])
    assert 'first value is "OLEDB"' in expect(3, "save", table, "-o", tmp_path / "s.odb", "--fields", "B,A")
    assert not (tmp_path / "s.odb").exists()
    expect(3, "save", table, "-o", tmp_path / "no" / "s.odb")
    expect(3, "save", tmp_path / "none.odb", "-o", tmp_path / "s.odb")
    expect(2, "save", table)


@pytest.mark.skipif(not os.environ.get("OLE_REAL_LOGS"), reason="OLE_REAL_LOGS names no folder of real logs")
def test_scene_of_a_real_log(tmp_path):
    table = tmp_path / "t.odb"
    expect(0, "import", os.path.join(os.environ["OLE_REAL_LOGS"], "scene-take-rolls.ale"), "-o", table)
    everything = csv_rows(table)
    for pattern, scenes in [("101B", {"101B"}), ("101?", {"101B", "101C", "101D"}), ("1?1d", {"101D"})]:
        got = run("show", table, "--where", f"Scene={pattern}", "--sort", "Scene,Shot", "--fields", "Name,Scene,Shot,Reel")
        lines = [re.split("  +", line) for line in got.stdout.decode().splitlines()]
        wanted = sorted((r for r in everything if r["Scene"] in scenes), key=lambda r: (r["Scene"], int(r["Shot"])))
        assert lines[0] == ["Name", "Scene", "Shot", "Reel"] and len(wanted) >= 12
        assert lines[2:] == [[r[name] for name in lines[0]] for r in wanted]
