"""Import: what goes into the table, what is told, what is refused."""

import json
import re

import pytest
from olelog import (
    HEADING,
    STANDARD,
    STANDARD_NAMES,
    csv_rows,
    expect,
    filled,
    info,
    leftovers,
    log_text,
    messages,
    run,
    table_text,
    write_log,
    write_table,
)

START_END = ["01:00:00:00", "01:00:10:00"]


def test_columns_without_any_field_make_empty_rows(tmp_path):
    """As those of a log whose columns stand between commas."""
    log = write_log(tmp_path / "a.ale", ["Name,Start"], [["x,01:00:00:00"]])
    assert "between tabs, not commas" in expect(1, "import", log, "-o", tmp_path / "a.odb")
    expect(3, "import", log, "-o", tmp_path / "b.odb", "--strict")
    own = write_log(tmp_path / "o.ale", ["Lens", "Filter"], [["50", "ND"]])
    assert f"{own}:7: the table has no field" in expect(1, "import", own, "-o", tmp_path / "o.odb", "-q")
    expect(0, "import", own, "-o", tmp_path / "p.odb", "--all-columns")


def test_rows_without_identifier_among_identified_ones_are_told(tmp_path):
    log = write_log(tmp_path / "a.ale", ["Name"], [["a"], ["b"]])
    late = write_log(tmp_path / "b.ale", ["Name"], [["c"]])
    expect(0, "import", log, "-o", tmp_path / "t.odb", "--identify")
    said = expect(0, "import", late, "-o", tmp_path / "t.odb", "--append")
    assert "1 of 3 rows are without an identifier; olelog identify gives them one" in said


def test_log_becomes_table_that_info_and_show_agree_on(tmp_path):
    log = write_log(
        tmp_path / "a.ale",
        ["Name", "Tracks", "Start", "End", "Tape", "Take", "Camroll", "Shoot Date", "Note", "KN Start", "Lens"],
        [
            ["31A-1", "VA1", *START_END, "T1", "1", "A1", "2024-05-14", 'say "hi", then\xe9', "KU 31 5127 0416+08", "25"],
            ["31A-2", "V", *START_END, "T1", "2  ", "A1", "", "", "??", ""],
        ],
        heading=[*HEADING[:-1], "FILM_FORMAT\t35mm, 3perf", "TAPE\tDAY1"],
    )
    said = expect(0, "import", log, "-o", tmp_path / "a.odb")
    assert said == f"olelog: {log}: 2 rows; 1 column dropped: Lens\n"

    facts = info(tmp_path / "a.odb")
    assert facts["kind"] == "table" and facts["rows"] == 2
    assert [[c["name"], c["type"]] for c in facts["columns"]] == STANDARD
    widths = {c["name"]: c["width"] for c in facts["columns"]}
    assert widths["Name"] == 32 and widths["cam_date"] == len("2024-05-14") and widths["start perf"] == 4
    assert {p["name"]: p["value"] for p in facts["parameters"]} == {
        "OLEDB": "Rev 1",
        "FIELD_DELIM": "TABS",
        "VIDEO_FORMAT": "1080",
        "FPS": "25",
        "FILM_FORMAT": "35mm, 3perf",
        "TAPE": "DAY1",
    }

    first, second = csv_rows(tmp_path / "a.odb")
    assert list(first) == STANDARD_NAMES
    assert filled(first) == {
        "Name": "31A-1",
        "chans": "VA1",
        "Start time": "01:00:00:00",
        "End time": "01:00:10:00",
        "Reel": "T1",
        "Shot": "1",
        "cam reel": "A1",
        "cam_date": "2024-05-14",
        "Notes": 'say "hi", then\xe9',
        "start keycode": "KU3151270416+08",
        "film label_std": "F353",
        "Tag": "0",
    }
    assert second["start keycode"] == "??" and second["Shot"] == "2"
    assert json.loads(run("show", tmp_path / "a.odb", "--format", "json").stdout) == [first, second]
    assert leftovers(tmp_path) == []


def test_log_without_rows_gives_an_empty_table(tmp_path):
    log = write_log(tmp_path / "a.ale", ["Name", "Start"], [])
    assert "0 rows" in expect(0, "import", log, "-o", tmp_path / "a.odb")
    assert info(tmp_path / "a.odb")["rows"] == 0 and csv_rows(tmp_path / "a.odb") == []
    assert run("show", tmp_path / "a.odb", "--format", "json").stdout.split() == [b"[", b"]"]
    assert "no rows" in expect(0, "show", tmp_path / "a.odb")


def test_lines_with_too_many_values_are_named(tmp_path):
    rows = [["A", "1"], ["B", "2", "3"], ["C", "1", "2"], ["E", "1", "2", "3"], ["D"]]
    log = write_log(tmp_path / "a.ale", ["Name", "Take"], rows)
    said = expect(1, "import", log, "-o", tmp_path / "a.odb")
    assert "2 rows; 3 lines skipped: 11-12 (3 values for 2 column names), 13 (4 values for 2 column names)" in said
    assert [row["Name"] for row in csv_rows(tmp_path / "a.odb")] == ["A", "D"]


@pytest.mark.parametrize(
    "text, cause",
    [
        (b"", "empty"),
        (b"\x00\x01\xff\xfe rubbish", 'no line begins with "Data"'),
        (log_text(["Name"], [["A"]], end="\r"), "CR alone"),
        (log_text(["Name"], [["A"]]).decode().encode("utf-16"), "UTF-16"),
        (log_text(["Name"], [["A"]]).decode().encode("utf-16-be"), "UTF-16"),
        (b"Heading\n\nColumn\nName\nA\n", 'no line begins with "Data"'),
        (b"Heading\nColumn\nName\n\ndata\nA\n", 'line 5 reads "data"'),
        (b"Heading\ncolumn\nName\nData\nA\n", 'no line before line 4 begins with "Column"; line 2 reads "column"'),
        (b"Heading\nColumn\n\nName\nData\nA\n", "line 3, behind \"Column\", is blank"),
        (b"Heading\nColumn\nData\nA\n", "the column names are missing"),
        (b"Heading\nColumn", 'no line begins with "Data"'),
        (b"Heading\n\nColumn\nName\n\nData\nA\tB\nC\tD\n", "every line has more values"),
        (table_text(["Name"], [["A"]]), "this is a table file"),
    ],
)
def test_log_that_cannot_be_taken_is_refused_with_its_cause(tmp_path, text, cause):
    (tmp_path / "bad.ale").write_bytes(text)
    good = write_log(tmp_path / "good.ale", ["Name"], [["A"]])
    kept = write_table(tmp_path / "a.odb", ["Name"], [["keep me"]]).read_bytes()
    said = expect(3, "import", good, tmp_path / "bad.ale", "-o", tmp_path / "a.odb")
    assert cause in said and "bad.ale: cannot be taken" in said
    assert (tmp_path / "a.odb").read_bytes() == kept
    assert leftovers(tmp_path) == []


def test_files_that_cannot_be_read(tmp_path):
    said = expect(3, "import", tmp_path / "none.ale", tmp_path, "-o", tmp_path / "a.odb")
    assert "none.ale: cannot be read: No such file or directory" in said
    assert f"{tmp_path}: cannot be read: Is a directory" in said
    assert not (tmp_path / "a.odb").exists()


def test_all_columns_takes_every_title_under_a_name_that_lasts(tmp_path):
    columns = ["Name", "Lens", "R&B", 'Say "x"', " Outer ", "lens", "Path\\name", "DESCRIPTION"]
    log = write_log(tmp_path / "a.ale", columns, [["A", "25", "rb", "quotes", "blank", "26", "back", "d"], ["B", "50"]])
    said = expect(1, "import", log, "-o", tmp_path / "a.odb", "--all-columns")
    assert "dropped" not in said and "without room" not in said
    for name in ('"R&B" is called "RB"', '"Say "x"" is called "Say x"', '" Outer " is called "Outer"'):
        assert name in said
    first, second = csv_rows(tmp_path / "a.odb")
    assert list(first)[: len(STANDARD)] == STANDARD_NAMES
    assert filled(first) == {
        "Name": "A",
        "Description": "d",
        "Tag": "0",
        "Lens": "25, 26",
        "RB": "rb",
        "Say x": "quotes",
        "Outer": "blank",
        "Pathname": "back",
    }
    assert second["Lens"] == "50"
    assert {c["type"] for c in info(tmp_path / "a.odb")["columns"][len(STANDARD) :]} == {"text"}


def test_all_columns_of_several_logs_come_in_log_order(tmp_path):
    write_log(tmp_path / "a.ale", ["Name", "Z", "A"], [["1", "z", "a"]])
    write_log(tmp_path / "b.ale", ["B", "A", "Name"], [["b", "a2", "2"]])
    assert expect(0, "import", "a.ale", "b.ale", "-o", "all.odb", "--all-columns", cwd=tmp_path).splitlines() == [
        "olelog: a.ale: 1 row",
        "olelog: b.ale: 1 row",
        "olelog: all.odb: 2 rows, 47 columns",
    ]
    rows = csv_rows(tmp_path / "all.odb")
    assert list(rows[0])[len(STANDARD) :] == ["Z", "A", "B"]
    assert [(r["Name"], r["Z"], r["A"], r["B"]) for r in rows] == [("1", "z", "a", ""), ("2", "", "a2", "b")]


@pytest.mark.parametrize("count, length", [(300, 5), (200, 30), (211, 3), (212, 3), (151, 24), (4, 1016)])
def test_all_columns_stops_where_the_table_would_not_load(tmp_path, count, length):
    """211 titles and the 44 standard columns just fit; beyond, empty standard columns give way first."""
    titles = [f"c{i:0{length - 1}d}" for i in range(count)]
    log = write_log(tmp_path / "a.ale", ["Name", "Start", *titles], [["A", "01:00:00:00", *["v"] * count]])
    result = run("import", log, "-o", tmp_path / "a.odb", "--all-columns")
    said = messages(result)
    names = [c["name"] for c in info(tmp_path / "a.odb")["columns"]]
    missing = [title for title in titles if title not in names]
    assert len(names) <= 255 and len('","'.join(names)) + 2 <= 4095
    if count == 211:
        assert names == STANDARD_NAMES + titles
    else:
        assert names == ["Name", "Start time", *titles[: len(titles) - len(missing)]]
        assert "left out to make room, as no log fills them: Cookie, Type" in said
    if missing:
        plural = "" if len(missing) == 1 else "s"
        assert f"{len(missing)} column{plural} without room: {', '.join(missing)}\n" in said
        full = len(names) == 255 or len('","'.join([*names, missing[0]])) + 2 > 4095
        assert full, "a column was left out although there was room"
    assert result.returncode == (1 if missing else 0)
    assert filled(csv_rows(tmp_path / "a.odb")[0]) == {
        name: "v" for name in titles if name not in missing
    } | {"Name": "A", "Start time": "01:00:00:00"} | ({"Tag": "0"} if count == 211 else {})


def test_making_room_keeps_name_cookie_and_what_any_log_fills(tmp_path):
    titles = [f"c{i}" for i in range(240)]
    write_log(tmp_path / "a.ale", ["Start", *titles], [["01:00:00:00", *[""] * 240]])
    write_log(tmp_path / "b.ale", ["Note", "Perf"], [["??", "3"], ["n", ""]], heading=["Heading", "FILM_FORMAT\t16mm"])
    expect(0, "import", "a.ale", "b.ale", "-o", "all.odb", "--all-columns", "--identify", cwd=tmp_path)
    names = [c["name"] for c in info(tmp_path / "all.odb")["columns"]]
    assert names[:6] == ["Cookie", "Name", "Start time", "Notes", "film label_std", "start perf"]
    assert names[6:] == titles


def test_identify_gives_every_row_one_identifier_and_keeps_those_that_are_there(tmp_path):
    kept = "U00112233445566778899aabbccddeeffff"
    rows = [["A", kept], *[[str(i), ""] for i in range(200)]]
    log = write_log(tmp_path / "a.ale", ["Name", "Cookie"], rows)
    expect(0, "import", log, "-o", tmp_path / "a.odb", "--identify")
    cookies = [row["Cookie"] for row in csv_rows(tmp_path / "a.odb")]
    assert cookies[0] == kept and len(set(cookies)) == 201
    version4 = re.compile(r"U[0-9a-f]{12}4[0-9a-f]{3}[89ab][0-9a-f]{15}ff", re.ASCII)
    assert all(version4.fullmatch(cookie) for cookie in cookies[1:]), cookies[:3]

    assert "201 rows stand" in expect(1, "import", log, "-o", tmp_path / "a.odb", "--identify", "--append")
    again = [row["Cookie"] for row in csv_rows(tmp_path / "a.odb")]
    assert again[:201] == cookies and len(set(again)) == 401  # the kept one stands twice


def test_append_keeps_what_was_there(tmp_path):
    table = tmp_path / "t.odb"
    log = write_log(tmp_path / "a.ale", ["Name", "Note", "Lens"], [["new", "n", "50"]])
    write_table(table, ["Lens", "Name", "Tag"], [["25", "old", "1"], ["35", "older", "0"]], ["OLEDB:Rev 1", "Owner:me", "FPS:24"])
    said = expect(0, "import", log, "-o", table, "--append")
    assert "1 column dropped: Note" in said and "3 rows, 3 columns" in said
    assert 'FPS is "25", was "24"' in said
    rows = csv_rows(table)
    assert [list(row.values()) for row in rows] == [["25", "old", "1"], ["35", "older", "0"], ["50", "new", "0"]]
    assert [p["name"] for p in info(table)["parameters"]] == ["OLEDB", "Owner", "FPS", "FIELD_DELIM", "VIDEO_FORMAT"]

    assert "1 row stands in" in expect(1, "import", log, "-o", table, "--append", "--all-columns", "--identify")
    last = csv_rows(table)[3]
    assert [last[name] for name in ("Lens", "Name", "Tag", "Note")] == ["50", "new", "0", "n"]
    assert [c["name"] for c in info(table)["columns"]] == ["Lens", "Name", "Tag", "Cookie", "Note"]
    assert len({row["Cookie"] for row in csv_rows(table)}) == 4

    expect(0, "import", log, "-o", tmp_path / "fresh.odb", "--append")
    assert info(tmp_path / "fresh.odb")["rows"] == 1


def test_append_to_a_table_without_the_field_of_a_column_adds_one_by_its_title(tmp_path):
    table = write_table(tmp_path / "t.odb", ["Name"], [["old"]])
    log = write_log(tmp_path / "a.ale", ["Name", "Start", "Note"], [["new", "01:00:00:00", "n  "]])
    expect(0, "import", log, "-o", table, "--append", "--all-columns")
    assert [list(row.values()) for row in csv_rows(table)] == [["old", "", ""], ["new", "01:00:00:00", "n"]]


@pytest.mark.parametrize(
    "damage",
    [
        lambda text: text[: text.rindex(b",")],
        lambda text: text.replace(b'"b"', b'"b","c"'),
        lambda text: text.replace(b'"b"', b'\r\n"b"'),
        lambda text: b"\r\n" + text,
        lambda text: b"",
    ],
)
def test_append_to_a_damaged_table_changes_nothing(tmp_path, damage):
    table = tmp_path / "t.odb"
    text = damage(table_text(["Name", "Note"], [["a", "1"], ["b", "2"]]))
    table.write_bytes(text)
    log = write_log(tmp_path / "a.ale", ["Name"], [["new"]])
    assert "nothing was appended" in expect(3, "import", log, "-o", table, "--append")
    assert table.read_bytes() == text


def test_heading_parameters_that_differ_or_do_not_fit_are_named(tmp_path):
    write_log(tmp_path / "a.ale", ["Name"], [["A"]], heading=["Heading", "FPS\t25", "TAPE\tone", "SAME\tx"])
    write_log(tmp_path / "b.ale", ["Name"], [["B"]], heading=["Heading", "fps\t24", "TAPE\ttwo", "SAME\tx"])
    said = expect(0, "import", "a.ale", "b.ale", "-o", "t.odb", cwd=tmp_path)
    assert 'b.ale: heading differs' in said and 'TAPE is "two", was "one"' in said and 'was "25"' in said
    assert "SAME" not in said


def test_rows_with_a_leading_tab_are_told_to_be_shifted(tmp_path):
    log = write_log(tmp_path / "a.ale", ["Name", "Take"], [["A", "1"], ["", "2"], ["", ""]])
    assert "by a leading tab in line 11\n" in expect(1, "import", log, "-o", tmp_path / "a.odb")
    assert [row["Name"] for row in csv_rows(tmp_path / "a.odb")] == ["A", "2"]


def test_heading_lines_that_are_no_parameters_are_told(tmp_path):
    log = write_log(tmp_path / "a.ale", ["Name"], [["A"]], heading=["Heading", "FPS\t25\tTAPE\tx"])
    assert "heading line 2 not taken (4 texts" in expect(0, "import", log, "-o", tmp_path / "a.odb")


@pytest.mark.parametrize(
    "field, value, told",
    [
        ("Notes", "C:\\new", '"C:\\new" comes back'),
        ("Notes", "a\rb", "carriage return"),
        ("Notes", "ends\x0b", "blanks at the ends"),
        ("Tag", "yes", "no tag"),
        ("Notes", "a\0b", "zero byte"),
    ],
)
def test_values_that_the_table_file_changes_are_told_and_the_rest_is_kept(tmp_path, field, value, told):
    log = write_log(tmp_path / "a.ale", ["Name", field], [["A", "fine"], ["B", value]])
    if field == "Tag":
        write_log(log, ["Name", field], [["A", "0"], ["B", value]])
    said = expect(1, "import", log, "-o", tmp_path / "a.odb")
    assert told in said and ("a.ale:11: " + field in said or "line 11" in said)
    assert [row["Name"] for row in csv_rows(tmp_path / "a.odb")] == ["A", "B"]


def test_parameter_that_the_table_file_changes_is_told(tmp_path):
    heading = ["Heading", 'TITLE\tThe "Best" set', "FILM_FORMAT\t\t16mm", "A:B\tc"]
    log = write_log(tmp_path / "a.ale", ["Name"], [["A"]], heading=heading)
    said = expect(1, "import", log, "-o", tmp_path / "a.odb")
    assert "parameter TITLE" in said and "parameter FILM_FORMAT" in said and 'parameter "A:B"' in said


def test_first_value_that_reads_as_a_header_refuses_the_table(tmp_path):
    table = write_table(tmp_path / "t.odb", ["Name", "Note"], [["a", "1"]])
    before = table.read_bytes()
    log = write_log(tmp_path / "a.ale", ["Name"], [["fine"], ["OLEDB"], ["x"]])
    said = expect(3, "import", log, "-o", table, "--append")
    assert 'a.ale:11: the row\'s first value is "OLEDB"' in said
    assert table.read_bytes() == before


def test_header_in_a_parameter_refuses_the_table(tmp_path):
    log = write_log(tmp_path / "a.ale", ["Name"], [["A"]], heading=["Heading", 'OLEDB",x\ty'])
    said = expect(3, "import", log, "-o", tmp_path / "a.odb")
    assert "not written" in said and not (tmp_path / "a.odb").exists()


def test_map_file_of_the_user_is_followed(tmp_path):
    (tmp_path / "ALEFieldMap.txt").write_text("Lens = Notes\nTape = nowhere\n")
    log = write_log(tmp_path / "a.ale", ["Name", "Lens", "Tape"], [["A", "25", "T1"]])
    env = {"OLE_PREFS_DIR": str(tmp_path)}
    assert "1 column dropped: Tape" in expect(0, "import", log, "-o", tmp_path / "a.odb", env=env)
    assert filled(csv_rows(tmp_path / "a.odb")[0]) == {"Name": "A", "Notes": "25", "Tag": "0"}
    expect(0, "import", log, "-o", tmp_path / "a.odb", "--all-columns", env=env)
    assert csv_rows(tmp_path / "a.odb")[0]["Tape"] == "T1"


def test_columns_that_share_a_field_are_told(tmp_path):
    log = write_log(tmp_path / "a.ale", ["Name", "Note", "Notes"], [["A", "one", "two"]])
    assert "joined in Notes: Note, Notes" in expect(0, "import", log, "-o", tmp_path / "a.odb")
    assert csv_rows(tmp_path / "a.odb")[0]["Notes"] == "one, two"


def test_bytes_of_other_encodings_pass_through(tmp_path):
    log = tmp_path / "a.ale"
    log.write_bytes(log_text(["Name", "Note"], [["Zo\udceb", "\udc80\udcff \u591c"]]))
    expect(0, "import", log, "-o", tmp_path / "a.odb")
    row = csv_rows(tmp_path / "a.odb")[0]
    assert (row["Name"], row["Notes"]) == ("Zo\udceb", "\udc80\udcff \u591c")


def test_rows_with_too_few_values_are_told_once(tmp_path):
    rows = [["A", "1", "x"], ["B", "x"], ["C", "2", ""], ["D"], ["E", "x"], ["F", "x"]]
    log = write_log(tmp_path / "a.ale", ["Name", "Scene", "Notes"], rows)
    text = (
        "a.ale:11: the row has 2 values for 3 column names; without a value: Notes; if a cell is missing, the values "
        "behind it stand one column too far left"
    )
    said = expect(1, "import", log, "-o", tmp_path / "t.odb")
    assert said.count("the row has") == 1 and f"{text} (and so in 3 other lines: 13-15)\n" in said
    assert len(csv_rows(tmp_path / "t.odb")) == 6
    assert f"{text} (and so in 2 other lines: 14-15) [too-few-values]\n" in run("check", log).stdout.decode()
