"""olelog check: everything that an import would lose or change is found, nothing else is, and a mended log
imports whole."""

import json
import os
import random
import re

import pytest
from olelog import csv_rows, expect, info, leftovers, log_text, messages, run, shell, table_text, write_log

TITLES = ["Name", "Tracks", "Start", "End", "Tape", "Note", "KN Start"]
ROWS = [
    ["1A-1", "VA1", "01:00:00:00", "01:00:10:00", "T1", "good", ""],
    ["1A-2", "VA1", "01:00:10:00", "01:00:20:00", "T1", "", ""],
    ["1A-3", "V", "01:00:20:00", "01:00:30:00", "T1", "Zoë", "KX123456789+012"],
]
CLEAN = log_text(TITLES, ROWS)  # names in line 7, rows in lines 10 to 12


def check(tmp_path, text, *options, code=None):
    log = tmp_path / "a.ale"
    log.write_bytes(text)
    result = run("check", log, "--json", *options)
    facts = json.loads(result.stdout)
    expected = code if code is not None else 1 if facts["findings"] else 0
    assert result.returncode == expected, messages(result)
    for finding in facts["findings"]:
        assert finding["line"] == finding["lines"][0] and finding["message"] and finding["severity"]
    return facts


def row(**cells):
    usual = ["5", "V", "05:00:00:00", "05:00:10:00", "T5", "", ""]
    return [cells.get(title.replace(" ", "_"), cell) for title, cell in zip(TITLES, usual)]


def take(name, start, end, tape="T9", tracks="V"):
    return row(Name=name, Start=start, End=end, Tape=tape, Tracks=tracks)


def with_rows(*rows, titles=TITLES, **more):
    return log_text(titles, [*ROWS, *rows], **more)


def with_heading(*lines):
    return log_text(TITLES, ROWS, heading=["Heading", *lines])


def replaced(old, new):
    assert old in CLEAN
    return CLEAN.replace(old, new, 1)


PARAMETERS = [f"P{i}\tx" for i in range(41)]

# What is wrong, and the findings: code and line.
FINDINGS = [
    (b"", [("empty-file", 1)]),
    (CLEAN.decode().encode("utf-16"), [("utf-16", 1)]),
    (CLEAN.replace(b"\n", b"\r"), [("cr-line-ends", 1)]),
    (table_text(["Name"], [["A"]]), [("table-file", 1)]),
    (replaced(b"Column\n", b"column\n"), [("section-word", 6)]),
    (replaced(b"\nData\n", b"\n Data\n"), [("section-word", 9)]),
    (replaced(b"\nData\n", b"\n\n"), [("section-word", 1)]),
    (replaced(b"Column\n", b"Column\n\n\n"), [("blank-names", 7)]),
    (b"Heading\nColumn\nData\n", [("no-names", 3)]),
    (log_text(["Name"], [["A", "B"]]), [("no-row-fits", 7), ("too-many-values", 10)]),
    (with_rows(row(Note="x" * 4100)), [("row-too-long", 13)]),
    (log_text(["Name", "Lens"], [["A", ""], ["B", "25"]]), [("column-without-field", 7)]),
    (log_text(["Name", "Shoot date"], [["A", "today"]]), [("title-spelling", 7)]),
    (with_rows([*row(), "x"], [*row(Tape="T6"), "x"]), [("too-many-values", 13)]),
    (with_heading("FPS\t25\tTAPE\tx"), [("heading-line", 2)]),
    (with_heading("FPS 25"), [("heading-line", 2)]),
    (CLEAN[len("Heading\n") :], [("heading-line", 1)]),
    (replaced(b"\n\nData", b"\nFPS\t24\nData"), [("unread-line", 8)]),
    (with_heading(*PARAMETERS), [("parameter-lost", 41)]),
    (with_heading("FPS\t25", "fps\t24"), [("parameter-lost", 3)]),
    (with_heading('TITLE\tThe "Best"'), [("parameter-changed", 2)]),
    (with_heading("FILM_FORMAT\t\t16mm"), [("film-format", 2)]),
    (with_heading("FILM_FORMAT\t16MM"), [("film-format", 2)]),
    (replaced(b"good", b"go\0od"), [("zero-byte", 10)]),
    (with_rows(row(Name="")), [("leading-tab", 13)]),
    (replaced(b"Tracks", b""), [("empty-title", 7), ("too-many-values", 12)]),
    (replaced(b"Note", b"Tape"), [("joined-columns", 10)]),
    (with_rows(row(KN_Start="KU 31 5127 0416+08")), [("key-number", 13)]),
    (with_rows(row(KN_Start="KU 31 5127 9990416+08")), [("key-number-cut", 13)]),
    (with_rows(row(KN_Start="KU 31 5127 0416 no mark")), [("key-number-cut", 13)]),
    (replaced(b"good", b" good  "), [("trimmed-value", 10)]),
    (replaced(b"good", b"C:\\new"), [("changed-value", 10)]),
    (replaced(b"good", b"a\rb"), [("changed-value", 10), ("mixed-line-ends", 10)]),
    (replaced(b"good\t\n", b"good\t\r"), [("mixed-line-ends", 10), ("too-many-values", 10)]),
    (replaced(b"\nData\n", b"\nDate\n"), [("section-word", 9)]),
    (CLEAN.rstrip(b"\n"), [("no-line-end", 12)]),
    (b"\xef\xbb\xbf" + CLEAN, [("byte-order-mark", 1)]),
    (CLEAN.decode().encode("latin-1"), [("encoding", 12)]),
    (CLEAN.replace(b"\n", b"\r\n", 3), [("mixed-line-ends", 4)]),
    (CLEAN.replace(b"\n", b"\r\n")[:-1], [("mixed-line-ends", 12)]),
    (with_heading("Column count\t7"), [("section-line", 2), ("unread-line", 4)]),
    (log_text(["Name", "Lens", "Lens"], [["A", "1", "2"]]), [("column-without-field", 7), ("duplicate-title", 7)]),
    (with_rows(["x", "V", "01:00:30:00"]), [("too-few-values", 13)]),
    (with_rows(row(Start="1:00")), [("no-timecode", 13)]),
    (with_rows(row(Start="25:00:00:00", End="25:00:01:00")), [("no-timecode", 13), ("no-timecode", 13)]),
    (with_rows(row(Start="01:61:00:00", End="02:30:61:00")), [("no-timecode", 13), ("no-timecode", 13)]),
    (with_rows(row(Start="01:00:00:29", End="01:00:01:30")), [("no-timecode", 13)]),
    (with_rows(take("x", "02:00:00;00", "02:00:10:00")), [("mixed-punctuation", 13)]),
    (with_rows(take("x", "02:00:00;00", "02:00:10;00")), [("mixed-punctuation", 13)]),
    (with_rows(take("x", "02:00:10:00", "02:00:00:00")), [("end-before-start", 13)]),
    (with_rows(take("x", "18:00:00:00", "09:00:00:00")), [("end-before-start", 13)]),
    (with_rows(take("x", "02:00:00:00", "02:00:10:01"), take("y", "02:00:10:00", "02:01:00:00")), [("overlap", 14)]),
    (with_rows(take("x", "23:59:00:00", "00:01:00:00"), take("y", "23:59:59:00", "00:02:00:00")), [("overlap", 14)]),
    (with_rows(take("x", "02:00:00:00", "02:00:10:00"), take("y", "02:00:00:00", "02:00:10:00")), [("overlap", 14)]),
]


@pytest.mark.parametrize("text, expected", FINDINGS, ids=[f"{i}-{found[0][0]}" for i, (_, found) in enumerate(FINDINGS)])
def test_each_trouble_is_found_where_it_is(tmp_path, text, expected):
    found = check(tmp_path, text)["findings"]
    # A title in the place of another, or a row in the place of the names, has more to it than is asked for.
    if expected[0][0] not in ("section-line", "empty-title", "leading-tab"):
        assert sorted((f["code"], f["line"]) for f in found) == sorted(expected)
    assert set(expected) <= {(f["code"], f["line"]) for f in found}


def test_every_code_is_tried_and_described():
    page = open(os.path.join(os.path.dirname(__file__), "../../docs/tool.md"), encoding="utf-8").read()
    described = re.findall(r"^\| `([a-z0-9-]+)` \| (?:refused|lost|changed|doubtful) \|", page, re.MULTILINE)
    assert sorted(described) == sorted({code for _, found in FINDINGS for code, _ in found})


@pytest.mark.parametrize(
    "text",
    [
        CLEAN,
        CLEAN.replace(b"\n", b"\r\n"),
        CLEAN + b"\t\n \t \n",  # lines that hold nothing
        log_text([*TITLES, "Lens"], [[*cells, " "] for cells in ROWS]),  # a column without values loses none
        log_text([*TITLES, "Reel"], [[*cells[:4], "", *cells[5:], "T1"] for cells in ROWS]),
        with_heading("FILM_FORMAT\t35mm, 4 perf", "TAPE\t", "FPS\t25"),
        with_heading(" Data rate\t5"),
        with_rows(take("at midnight", "23:59:00:00", "00:00:00:00"), take("over it", "23:59:00:00", "00:05:00:00", "T8")),
        with_rows(take("B camera", "01:00:05:00", "01:00:15:00", "B1")),
        with_rows(take("whole tape", "00:00:00:00", "23:59:59:24", "T1")),
        with_rows(take("subclip", "01:00:05:00", "01:00:08:00", "T1")),
        with_rows(take("no tape", "01:00:05:00", "01:00:15:00", ""), take("neither", "01:00:09:00", "01:00:19:00", "")),
        with_rows(take("picture", "02:00:00:00", "02:00:10:00"), take("sound", "02:00:05:00", "02:00:15:00", tracks="A1")),
        log_text(
            ["Name", "Tape", "Start", "End", "Shoot Date"],
            [["A", "1", "01:00:00:00", "01:00:10:00", "May 1"], ["B", "1", "01:00:05:00", "01:00:15:00", "May 2"]],
        ),
    ],
)
def test_no_false_alarm(tmp_path, text):
    assert check(tmp_path, text, code=0)["findings"] == []
    mended = tmp_path / "mended.ale"
    assert check(tmp_path, text, "--fix", mended, code=0)["changes"] == []
    assert mended.read_bytes() in (text, text + b"\n")


# -- against a reading of its own

SENT = {"Tracks": "chans", "Start": "Start time", "End": "End time", "Tape": "Reel", "Note": "Notes", "Take": "Shot"}
SENT |= {"Camroll": "cam reel", "KN Start": "start keycode", "Shoot Date": "cam_date"}
SAME = ["Name", "Scene", "Reel", "Duration", "Description", "Who"]
NOT_MENDABLE = {"joined-columns", "key-number", "key-number-cut"}


def read_plainly(text):
    """What a person sees in a log: parameters and cells, each with its line."""
    lines = re.split("\r\n|\n|\r", text.replace("\r\r\n", "\n").replace("\0", "").lstrip("\ufeff"))
    word = [line.strip().lower() for line in lines]
    names = next(i for i in range(word.index("column") + 1, len(lines)) if word[i])
    titles = lines[names].split("\t")
    pairs, cells = [], []
    for number, line in enumerate(lines, 1):
        if number <= word.index("column"):
            parts = line.split("\t")
            pairs += [(number, *parts[i : i + 2]) for i in range(0, len(parts) - 1, 2)]
        elif number > word.index("data") + 1:
            for i, cell in enumerate(line.split("\t")):
                title = titles[i] if i < len(titles) and titles[i] else f"Column {i + 1}"
                cells.append((number, title, cell))
    return names + 1, pairs, [cell for cell in cells if cell[2].strip()]


def lost_by_import(table, pairs, cells, own_columns):
    rows = csv_rows(table)
    parameters = {p["name"]: p["value"] for p in info(table)["parameters"]}
    lost = [("parameter", line) for line, name, value in pairs if value and parameters.get(name) != value]
    for line, title, value in cells:
        field = SENT.get(title) or (title if title in SAME or own_columns else None)
        # A value is unlike any other, so it is in its place when it is in its field at all.
        renamed = [name for name in rows[0] if own_columns and name.startswith(title + " ")] if rows else []
        if not any(row.get(name) == value for row in rows for name in [field, *renamed]):
            lost.append((title, line))
    return lost


def is_told(finding, names, title, line):
    if finding["severity"] == "refused" or line in finding["lines"] or finding["code"] == "mixed-line-ends":
        return True
    return finding["line"] == names and (title in finding["columns"] or finding["code"] == "empty-title")


def make_log(pick):
    titles = ["Name", *pick.sample([*list(SENT)[:3], "Tape", "Note", "Camroll", "Scene", "Lens", "Who", "Filter"], 7)]
    rows = []
    for i in range(pick.randrange(1, 6)):
        cells = [f"{title.lower()} {i} é" for title in titles]
        for title, cell in (("Start", f"0{i}:00:00:00"), ("End", f"0{i}:10:00:00")):
            if title in titles:
                cells[titles.index(title)] = cell
        rows.append(cells)
    return titles, rows


def break_cells(pick, titles, rows):
    """One trouble among the cells."""
    cells = pick.choice(rows)
    at = pick.randrange(len(cells))
    trouble = pick.randrange(9)
    if trouble == 0:
        cells[0] = ""
    elif trouble == 1:
        cells[at] = ""
    elif trouble == 2:
        cells.append(pick.choice(["", "surplus"]))
    elif trouble == 3:
        del cells[max(at, 1) :]
    elif trouble == 4:
        titles[at % len(titles)] = ""
    elif trouble == 5:
        titles.append(pick.choice(["Reel", "Lens", "KN Start", ""]))
        for i, other in enumerate(rows):
            other += ["KU 31 5127 0416+08" + str(i) if titles[-1] == "KN Start" else f"more {i}"]
    elif trouble == 6:
        cells[at] = pick.choice([" {} ", "C:\\new {}", 'say "{}"', "{},", "a\\b {}"]).format(cells[at])
    elif trouble == 7:
        rows.insert(0, [""] * len(titles))
    elif trouble == 8:
        cells += ["", ""]


def break_text(pick, text):
    """One trouble in the whole; the bytes of the log."""
    trouble = pick.randrange(12)
    swaps = {
        0: ("Column\n", "Column\n\n"),
        1: ("Column\n", "COLUMN\n"),
        2: ("\nData\n", "\n data \n"),
        3: ("FPS\t25\n", "FPS\t25\tTAPE\tx\n"),
        4: ("FPS\t25\n", "FPS\t\t25\n"),
        5: ("Heading\n", ""),
    }
    text = text.replace(*swaps.get(trouble, ("", "")), 1) if trouble in swaps else text
    end = {6: "\r", 7: "\r\n", 8: "\r\r\n"}.get(trouble, "\n")
    encoding = {6: "mac-roman", 9: "utf-16", 10: "latin-1", 11: "utf-8-sig"}.get(trouble, "utf-8")
    return text.replace("\n", end).encode(encoding), encoding


SEED = int(os.environ.get("OLE_TEST_SEED", "20"))
ROUNDS = 40 * int(os.environ.get("OLE_TEST_ROUNDS", "1"))


@pytest.mark.parametrize("seed", range(SEED, SEED + 4))
def test_findings_are_what_the_import_loses_and_mending_keeps_it(tmp_path, seed):
    for number in range(ROUNDS):
        pick = random.Random(seed * 100000 + number)
        titles, rows = make_log(pick)
        for _ in range(pick.randrange(4)):
            break_cells(pick, titles, rows)
        broken, encoding = break_text(pick, log_text(titles, rows).decode())
        names, pairs, cells = read_plainly(broken.decode(encoding))
        told = check(tmp_path, broken, "--fix", tmp_path / "mended.ale", "--in-place")["findings"]
        context = f"seed {seed}, round {number}: {broken!r}\n{told}"

        result = run("import", tmp_path / "a.ale", "-o", tmp_path / "a.odb", "--in-place")
        assert (result.returncode == 3) == any(f["severity"] == "refused" for f in told), context + messages(result)
        if result.returncode != 3:
            lost = lost_by_import(tmp_path / "a.odb", pairs, cells, False)
            for what, line in lost:
                assert any(is_told(f, names, what, line) for f in told), (what, line, context)
            assert lost or not [f for f in told if f["severity"] in ("lost", "changed")], context

        mended = (tmp_path / "mended.ale").read_bytes()
        left = check(tmp_path, mended)["findings"]
        run("import", tmp_path / "mended.ale", "-o", tmp_path / "m.odb", "--all-columns", "--in-place")
        excused = {line for f in left if f["code"] in NOT_MENDABLE for line in f["lines"]}
        values = {cell for line, _, cell in read_plainly(mended.decode())[2] if line in excused}
        kept = [(line, title, cell.strip().replace("\\n", "\n")) for line, title, cell in cells if cell not in values]
        assert not lost_by_import(tmp_path / "m.odb", pairs, kept, True), (context, mended, left)


# -- where the mended log goes


CR_ONLY = CLEAN.replace(b"\n", b"\r")


def test_mended_log_replaces_only_what_it_may(tmp_path):
    log, table = tmp_path / "a.ale", tmp_path / "t.odb"
    log.write_bytes(CR_ONLY)
    table.write_bytes(table_text(["Name"], [["A"]]))
    assert "would be replaced" in expect(2, "check", log, "--fix", log)
    other = write_log(tmp_path / "b.ale", ["Name"], [["B"]])
    before = other.read_bytes()
    for file in (table, other):
        assert "exists; --in-place" in expect(2, "check", log, "--fix", file)
    assert log.read_bytes() == CR_ONLY and b"OLEDB" in table.read_bytes() and other.read_bytes() == before
    log.chmod(0o640)
    expect(1, "check", log, "--fix", log, "--in-place")
    assert log.read_bytes() == CLEAN and log.stat().st_mode & 0o777 == 0o640
    log.write_bytes(CR_ONLY)
    limited = shell(f"ulimit -f 0; olelog check {log} --fix {log} --in-place")
    assert limited.returncode == 3 and log.read_bytes() == CR_ONLY and leftovers(tmp_path) == []


def test_standard_input_and_output(tmp_path):
    result = run("check", "-", "--fix", "-", stdin=CR_ONLY)
    assert result.returncode == 1 and result.stdout == CLEAN
    assert "standard input:1: " in messages(result) and "mended: " in messages(result)
    assert expect(2, "check", "-", "--fix", "-", "--json") and expect(2, "check", "-", "-")
    (tmp_path / "a.ale").write_bytes(CLEAN)
    assert "one log at a time" in expect(2, "check", tmp_path / "a.ale", "-", "--fix", tmp_path / "m.ale", stdin=CLEAN)
    assert b": 3 rows; nothing found" in run("check", tmp_path / "a.ale", tmp_path / "a.ale").stderr
    assert expect(3, "check", tmp_path / "none.ale", tmp_path / "a.ale").count("\n") == 2


@pytest.mark.parametrize("text", [b"", b"\xff\xfe\x00\xd8", b"\0\xff rubbish", table_text(["Name"], [["A"]]), b"Heading\nColumn\nData\n"])
def test_what_cannot_be_mended_is_not_written(tmp_path, text):
    (tmp_path / "a.ale").write_bytes(text)
    assert "cannot be mended" in expect(3, "check", tmp_path / "a.ale", "--fix", tmp_path / "m.ale")
    assert not (tmp_path / "m.ale").exists() and leftovers(tmp_path) == []


def test_bytes_of_other_encodings_are_converted_and_listed(tmp_path):
    log = CLEAN.decode().encode("latin-1") + "5\tV\t\t\t\tñ\t\n".encode()
    changes = check(tmp_path, log, "--fix", tmp_path / "m.ale")["changes"]
    assert [(c["line"], c["code"]) for c in changes] == [(12, "encoding")] and '"Zoë"' in changes[0]["message"]
    assert (tmp_path / "m.ale").read_bytes() == CLEAN + "5\tV\t\t\t\tñ\t\n".encode()
    for options in ([], ["--encoding", "MACINTOSH"]):
        mac = CLEAN.decode().replace("\n", "\r" if not options else "\n").encode("mac-roman")
        check(tmp_path, mac, "--fix", tmp_path / "m.ale", "--in-place", *options)
        assert (tmp_path / "m.ale").read_bytes() == CLEAN
    assert "no encoding" in expect(2, "check", tmp_path / "a.ale", "--encoding", "nonsense")


def test_ignored_findings_do_not_count(tmp_path):
    text = log_text(["Name", "Lens"], [["A", "25"], ["", "25"]])
    assert len(check(tmp_path, text)["findings"]) == 2
    assert check(tmp_path, text, "--ignore", "leading-tab,column-without-field", code=0)["findings"] == []
    assert "--ignore" in expect(2, "check", tmp_path / "a.ale", "--ignore", "nonsense")


def test_one_trouble_in_many_rows_is_one_finding_of_all_its_lines(tmp_path):
    text = with_rows(*[row(Name="", Tape=f"T{i}") for i in range(20, 26)], row(Tape="x"), row(Name="", Tape="y"))
    (finding,) = check(tmp_path, text)["findings"]
    assert finding["lines"] == [13, 14, 15, 16, 17, 18, 20]
    shown = run("check", tmp_path / "a.ale").stdout.decode()
    assert shown.startswith(f"{tmp_path}/a.ale:13: ") and "6 other lines: 14-18, 20) [leading-tab]\n" in shown


def test_example_of_the_help_works(tmp_path):
    text = run("check", "--help").stdout.decode()
    example = text[text.index("  printf") : text.index("tells that")]
    assert shell(f"cd {tmp_path}; {example}").returncode == 1
    expect(0, "import", tmp_path / "mended.ale", "-o", tmp_path / "t.odb")
    assert [row["Start time"] for row in csv_rows(tmp_path / "t.odb")] == ["01:00:00:00"]


@pytest.mark.parametrize("seed", range(SEED, SEED + 3))
def test_any_bytes_are_taken_for_what_they_are(tmp_path, seed):
    pick = random.Random(seed)
    for _ in range(ROUNDS):
        text = bytearray(pick.choice([CLEAN, CR_ONLY, CLEAN.decode().encode("utf-16")]))
        for _ in range(pick.randrange(1, 9)):
            at = pick.randrange(len(text))
            text[at : at + pick.choice([0, 1, 7])] = pick.choice([b"\t", b"\n", b"\r", b"\0", b"\xff", b"Data", b"Column", b"\t\t"])
        (tmp_path / "a.ale").write_bytes(text)
        result = run("check", tmp_path / "a.ale", "--fix", tmp_path / "m.ale", "--in-place")
        assert result.returncode in (0, 1, 3), (text, messages(result))
        if result.returncode != 3:
            assert run("import", tmp_path / "m.ale", "-o", tmp_path / "t.odb").returncode != 3 or (
                b"row-too-long" in result.stdout
            ), text


def test_title_for_a_surplus_value_leaves_other_rows_whole(tmp_path):
    check(tmp_path, with_rows([*row(), "x"]), "--fix", tmp_path / "m.ale")
    left = check(tmp_path, (tmp_path / "m.ale").read_bytes())["findings"]
    assert [(f["code"], f["columns"]) for f in left] == [("column-without-field", ["Column 8"])]


def test_what_is_left_is_told_at_the_end(tmp_path):
    lines = CLEAN.replace(b"Column\n", b"Column\n\n").replace(b"Tape", b"Tpae") + b"x\tV\n\tV\t\t\t\t\t\n"
    broken = lines.decode().replace("\n", "\r").encode("mac-roman")
    found = [(f["code"], f["line"]) for f in check(tmp_path, broken)["findings"]]
    names = [("blank-names", 7), ("column-without-field", 8)]
    assert found == [("cr-line-ends", 1), *names, ("encoding", 13), ("too-few-values", 14), ("leading-tab", 15)]
    log, mended = tmp_path / "a.ale", tmp_path / "m.ale"
    assert expect(1, "check", log).endswith(": --fix OUT mends 4 of these\n")
    assert 'did you mean "Tape" by "Tpae"?' in run("check", log).stdout.decode()
    said = expect(1, "check", log, "--fix", mended, "--in-place")
    assert "--encoding NAME changes the guess" in said
    assert said.endswith("m.ale can be imported; 2 findings are left for you: lines 7 (column-without-field), 13 (too-few-values)\n")
    left = json.loads(run("check", mended, "--json").stdout)["findings"]
    assert [f["line"] for f in left] == [7, 13]
    said = expect(1, "check", log, "--fix", mended, "--in-place", "--encoding", "MACINTOSH", "--ignore", "column-without-field,too-few-values")
    assert "guess" not in said and said.endswith("m.ale can be imported; no finding is left\n")
    log.write_bytes(with_rows(row(Note="x" * 4100)))
    before = mended.read_bytes()
    said = expect(3, "check", log, "--fix", mended, "--in-place")
    assert "m.ale: not written: " in said and "the row needs a line of" in said and mended.read_bytes() == before
    assert "--fix OUT" not in expect(1, "check", log)


def test_a_line_is_parted_at_its_cr_where_both_parts_are_rows(tmp_path):
    """What stands behind the CR must not become columns."""
    log, fixed = tmp_path / "a.ale", tmp_path / "fixed.ale"
    log.write_bytes(log_text(["Name", "Take", "Note"], [["A", "1", "x\rB", "2", "y"], ["C", "3", "z\rD", "4"], ["E", "5", "a\rb"]]))
    assert "10: the line holds a CR" in (said := run("check", log).stdout.decode()) and "3 in CR alone" in said
    last = expect(1, "check", log, "--fix", fixed).splitlines()[-1]
    assert "can be imported, but not whole; " in last and "12 (mixed-line-ends)" in last
    lines = fixed.read_bytes().split(b"\n")
    assert lines[6] == b"Name\tTake\tNote" and lines[9:] == [b"A\t1\tx", b"B\t2\ty", b"C\t3\tz\rD\t4", b"E\t5\ta\rb", b""]
