"""Show and info: tables for people, CSV and JSON for programs."""

import json
import os
import subprocess
import unicodedata

import pytest
from olelog import TOOL, csv_rows, expect, info, messages, on_terminal, run, table_text, write_table


def places(text):
    """How many places a terminal needs for a text without joined signs."""
    return sum(
        0 if unicodedata.combining(c) else 2 if unicodedata.east_asian_width(c) in "WF" else 1 for c in text
    )


@pytest.fixture
def takes(tmp_path):
    types = ["text", "timecode", "timecode", "text", "long", "text", "text"]
    columns = ["Name", "Start time", "End time", "Description", "Size", "Notes", "Reel"]
    rows = [
        ["31A-1", "01:00:00:00", "01:00:43:07", "a wide view of the whole harbour at dawn, boats leave", "7", "", "R1"],
        ["31A-2", "01:00:43:07", "01:01:35:01", "short", "1200", "", "R2"],
    ]
    return write_table(tmp_path / "takes.odb", columns, rows, types=types)


def test_table_without_a_terminal_is_never_cut(takes):
    lines = run("show", takes, env={"COLUMNS": "20"}).stdout.decode().split("\n")
    assert lines[0] == f"Name   Start time   End time     {'Description':53}  Size  Reel"
    assert lines[2].endswith("at dawn, boats leave     7  R1")
    assert lines[3].endswith("short                                                  1200  R2")
    assert len(lines) == 5 and not any(line.endswith(" ") for line in lines)


def test_all_shows_empty_columns_too(takes):
    assert "Notes" not in run("show", takes).stdout.decode()
    assert "Size  Notes  Reel" in run("show", takes, "--all").stdout.decode()


@pytest.mark.parametrize("width", [200, 100, 80, 57, 56, 40, 30, 20, 9, 3, 1])
def test_table_fits_the_terminal(takes, width):
    code, text = on_terminal(width, "show", takes, env={"NO_COLOR": "1"})
    assert code == 0 and "\x1b" not in text
    table = [line for line in text.split("\n") if line and not line.startswith("olelog: ")]
    said = [line for line in text.split("\n") if line.startswith("olelog: ")]
    assert len(table) == 4 and max(map(places, table)) <= width
    if width >= 24:  # timecodes stand whole or not at all
        assert "01:00:00:00" in table[2] and ("01:00:43:07" in table[2] or "End time" in said[0])
    if width >= 57:
        assert "31A-1" in table[2] and "R1" in table[2] and not said
    if width == 57:
        assert "  a wide view…  " in table[2]
    if width <= 56:
        assert len(said) == 1 and said[0].endswith("Reel") and "Reel" not in table[0]


def test_columns_variable_goes_before_the_terminal_and_width_before_both(takes):
    for env, options, width in [({"COLUMNS": "71"}, [], 71), ({"COLUMNS": "200"}, ["--width", "71"], 71), ({"COLUMNS": "x"}, [], 90)]:
        _, text = on_terminal(90, "show", takes, *options, env=env | {"NO_COLOR": "1"})
        assert max(map(places, text.split("\n"))) == width, (env, options)


def test_wide_and_joined_signs_stand_in_line_and_are_cut_whole(tmp_path):
    names = ["夜景夜景夜景夜景夜景", "e\u0301" * 20, "👩‍👩‍👧" * 8, "plain text of some length", "한국어"]
    table = write_table(tmp_path / "t.odb", ["Name", "Shot"], [[name, "|"] for name in names])
    lines = run("show", table).stdout.decode().split("\n")
    assert lines[2].startswith("夜景夜景夜景夜景夜景       |") and lines[6].startswith("한국어" + " " * 21)
    cut = run("show", table, "--width", "20").stdout.decode().split("\n")
    assert cut[2:7] == [
        "夜景夜景夜景…   |",
        "e\u0301" * 13 + "…  |",
        "👩‍👩‍👧" * 6 + "…   |",
        "plain text of…  |",
        "한국어          |",
    ]


def test_control_characters_never_reach_the_terminal(tmp_path):
    evil = "a\x1b[31mred\x07\nnext\ttab\u202egnp\u009b1m"
    table = tmp_path / "evil.odb"
    table.write_bytes(table_text(["Na\x1bme", "Latin"], [[evil, "caf\udce9"]], ["OLEDB:Rev 1", "P:\x1b[2J"]))
    shown = run("show", table).stdout.decode()
    assert r"a\x1b[31mred\x07\nnext\ttab\u202egnp\xc2\x9b1m" in shown and r"caf\xe9" in shown
    for text in (shown, run("info", table).stdout.decode(), messages(run("show", table, "--width", "5"))):
        assert not any(unicodedata.category(c) in ("Cc", "Cf") for c in text.replace("\n", ""))
    assert csv_rows(table) == [{"Na\x1bme": evil, "Latin": "caf\udce9"}]


def test_tags_are_shown_once_there_are_any(tmp_path):
    table = write_table(tmp_path / "t.odb", ["Name", "Tag"], [["a", "0"], ["b", "0"]])
    assert "Tag" not in run("show", table).stdout.decode()
    table = write_table(tmp_path / "t.odb", ["Name", "Tag"], [["a", "0"], ["b", "1"]])
    assert "Tag" in run("show", table).stdout.decode()


def test_csv_is_rfc_4180(tmp_path):
    rows = [['say "x"', "a,b", "line\nfeed"], ["", " blank", "\u00e9\udcff"], ["", "", ""]]
    table = tmp_path / "t.odb"
    table.write_bytes(table_text(["A", "B,b", "C"], [[r.strip() for r in row] for row in rows]))
    got = run("show", table, "--format", "csv").stdout
    assert got == b'A,"B,b",C\r\n"say ""x""","a,b","line\nfeed"\r\n,blank,\xc3\xa9\xff\r\n,,\r\n'


def test_csv_of_one_column_keeps_empty_rows(tmp_path):
    table = write_table(tmp_path / "t.odb", ["A"], [["x"], [""], ["y"]])
    assert run("show", table, "--format", "csv").stdout == b'A\r\nx\r\n""\r\ny\r\n'


def test_json_replaces_what_is_no_utf8_and_says_so(tmp_path):
    table = write_table(tmp_path / "t.odb", ["A", "a", "B"], [["caf\udce9", 'q"\\\u591c', "1"], ["x", "", "\x1f"]])
    result = run("show", table, "--format", "json")
    assert json.loads(result.stdout) == [
        {"A": "caf\ufffd", "a": 'q"\\\u591c', "B": "1"},
        {"A": "x", "a": "", "B": "\x1f"},
    ]
    assert result.returncode == 1 and "1 text with bytes that are no UTF-8" in messages(result)


def test_json_of_columns_with_one_name_keeps_all_values(tmp_path):
    table = write_table(tmp_path / "t.odb", ["X", "X", "X 2"], [["1", "2", "3"]])
    assert json.loads(run("show", table, "--format", "json").stdout) == [{"X": "1", "X 2": "2", "X 2 2": "3"}]


def test_info_tells_kinds_widths_and_parameters(tmp_path):
    types = ["timecode", "X", "c", "text_s"]
    table = write_table(tmp_path / "t.odb", ["start keycode", "Odd", "Char", "Long"], [["1", "", "z", "0123456789"]], types=types)
    facts = info(table)
    assert [(c["name"], c["type"], c["width"], c["filled"]) for c in facts["columns"]] == [
        ("start keycode", "timecode", 17, 1),
        ("Odd", "X", 4, 0),
        ("Char", "c", 4, 1),
        ("Long", "text_s", 10, 1),
    ]
    assert facts["parameters"] == [{"name": "OLEDB", "value": "Rev 1"}]
    text = run("info", table).stdout.decode()
    assert text.startswith(f"{table}: table, 1 row, 4 columns\n") and "start keycode  timecode     17            1" in text


def test_standard_input_and_pipes_are_files_too(takes):
    text = takes.read_bytes()
    direct = run("show", takes).stdout
    assert run("show", "-", stdin=text).stdout == direct
    piped = subprocess.run(["bash", "-c", f'"{TOOL}" show <(cat "{takes}")'], stdout=subprocess.PIPE, timeout=60)
    assert piped.stdout == direct
    assert "standard input: " in expect(3, "info", "-", stdin=b"no table")


@pytest.mark.parametrize("command", [[], ["import"], ["info"], ["show"]])
def test_help_goes_to_standard_output(command):
    result = run(*command, "--help")
    assert result.returncode == 0 and not result.stderr
    assert result.stdout.decode().splitlines()[1].startswith(" ".join(["Usage: olelog", *command]))


def test_version():
    assert run("--version").stdout == b"olelog 14.0.0.0\n"


@pytest.mark.parametrize(
    "arguments",
    [
        [],
        ["impot", "a"],
        ["import", "a.ale"],
        ["import", "-o", "x.odb"],
        ["import", "-", "-", "-o", "x.odb"],
        ["import", "a.ale", "-o", "-", "--append"],
        ["show"],
        ["show", "a", "b"],
        ["show", "a", "--format", "xml"],
        ["show", "a", "--width", "0"],
        ["show", "a", "--width", "wide"],
        ["info", "--jason", "a"],
    ],
)
def test_wrong_usage(tmp_path, arguments):
    assert expect(2, *arguments, cwd=tmp_path)
    assert list(tmp_path.iterdir()) == []
