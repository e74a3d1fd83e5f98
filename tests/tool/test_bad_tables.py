"""Tables that are cut, garbled or no tables at all: a clear message, never a crash or a hang."""

import os
import random
import re

import pytest
from olelog import csv_rows, expect, info, leftovers, log_text, messages, run, table_text

GOOD = table_text(["Name", "Note"], [["a", "1"], ["b", "2"], ["c", "3"]], ["OLEDB:Rev 1", "Owner:me"])


def both(table, code):
    """What info and show say; they agree."""
    said = expect(code, "info", table)
    assert expect(code, "show", table) == said
    return said


@pytest.mark.parametrize(
    "text, cause",
    [
        (b"", "the file is empty"),
        (b"rubbish\n" * 3, "no table file"),
        (bytes(range(256)) * 40, "no table file"),
        (b"\n" + GOOD, "no table file"),
        (log_text(["Name"], [["A"]]), "this is a log, not a table file"),
        (b'"OLEDB:Rev 1"\r\n"Owner:me"\r\n', "the file is cut"),
        (b'"OLEDB"\r\n', "line 2, which should tell the columns' widths, is missing"),
        (b'"OLEDB"\r\n\r\n"text"\r\n"A"\r\n', "line 2, which should tell the columns' widths, is blank"),
        (b'"OLEDB"\r\n"4","4"\r\n"text"\r\n"A","B"\r\n', "line 3, with the columns' types, has 1 value; line 2 tells of 2"),
        (b'"OLEDB"\r\n"4","4"\r\n"text","text"\r\n', "line 4, with the columns' names, has 0 values"),
        (table_text([f"c{i}" for i in range(400)], []), "400 columns, and 255 is the most"),
    ],
)
def test_file_that_is_no_table(tmp_path, text, cause):
    table = tmp_path / "bad.odb"
    table.write_bytes(text)
    assert cause in both(table, 3)


@pytest.mark.parametrize(
    "text, rows, told",
    [
        (GOOD.replace(b'"b","2"', b'"b"'), 1, "line 8: row 2 has 1 value for 2 columns; reading stopped there, with 1 row read"),
        (GOOD.replace(b'"b","2"', b'"b","2",'), 1, "line 8: row 2 has 3 values for 2 columns"),
        (GOOD.replace(b'"b","2"', b""), 1, "line 8: is blank, which ends the table; 1 line behind it was not read"),
        (GOOD.replace(b'"a","1"', b'"OLEDB","1"') + b'"d","4"\r\n', 1, "line 7: a second header; it and the two lines behind it"),
        (GOOD.replace(b'"2"', b'"' + b"2" * 4090 + b'"'), 3, "line 8: longer than 4095 bytes"),
        (GOOD.replace(b'"b"', b'"' + b"b" * 5000 + b'"'), 1, "line 8: row 2 has 1 value for 2 columns in its first 4095 bytes"),
        (GOOD.replace(b'"2"', b'"2\0 lost"'), 3, "line 8: holds a zero byte"),
        (GOOD.replace(b'"text","text"', b'"text","texture"'), 3, "line 5: a column's type is unknown"),
    ],
)
def test_table_that_is_read_in_part_says_where_it_stopped(tmp_path, text, rows, told):
    table = tmp_path / "part.odb"
    table.write_bytes(text)
    assert told in both(table, 1)
    assert info(table, 1)["rows"] == rows == len(csv_rows(table, 1))


def test_other_revisions_are_read_with_a_remark(tmp_path):
    table = tmp_path / "t.odb"
    table.write_bytes(GOOD.replace(b"Rev 1", b"Rev 7"))
    assert "is of revision 7" in both(table, 0)


def test_lines_among_the_parameters_that_are_none_are_told(tmp_path):
    table = tmp_path / "t.odb"
    table.write_bytes(GOOD.replace(b"Owner:me", b"me"))
    assert "line 2: is no parameter, name:value, and was not read" in both(table, 0)


def test_nothing_of_the_module_reaches_standard_output(tmp_path):
    table = tmp_path / "t.odb"
    table.write_bytes(GOOD.replace(b'"b","2"', b'"b"'))
    assert run("show", table, "--format", "csv").stdout == b"Name,Note\r\na,1\r\n"


def test_paths_that_are_no_files(tmp_path):
    assert "No such file or directory" in both(tmp_path / "none.odb", 3)
    assert "Is a directory" in both(tmp_path, 3)
    assert "Not a directory" in both(os.devnull + "/x", 3)
    assert "the file is empty" in both(os.devnull, 3)
    assert r"evil\x1b\n: cannot be read" in both(tmp_path / "evil\x1b\n", 3)


def test_files_cut_anywhere_and_changed_anywhere_end_in_order(tmp_path):
    """Seeded, so that a failure comes back."""
    dice = random.Random(4)
    table = tmp_path / "t.odb"
    texts = [GOOD[:n] for n in range(0, len(GOOD), 7)]
    for _ in range(60):
        text = bytearray(GOOD)
        for _ in range(dice.randint(1, 6)):
            text[dice.randrange(len(text))] = dice.choice([0, 10, 13, 34, 44, 92, 110, 128, 255])
        texts.append(bytes(text))
    for text in texts:
        table.write_bytes(text)
        result = run("show", table, "--format", "csv")
        said = messages(result)
        assert result.returncode in (0, 1, 3), (text, said)
        assert result.returncode == 0 or said, text
        assert (result.returncode == 3) == (result.stdout == b""), text


def test_logs_cut_anywhere_and_changed_anywhere_end_in_order(tmp_path):
    """What an import accepts loads again with the rows that it told of."""
    dice = random.Random(5)
    good = log_text(["Name", "Start", "R&B", "Note"], [["A", "01:00:00:00", "x", "n"]] * 3)
    log, table = tmp_path / "a.ale", tmp_path / "a.odb"
    texts = [good[:n] for n in range(0, len(good), 9)]
    for _ in range(60):
        text = bytearray(good)
        for _ in range(dice.randint(1, 8)):
            text[dice.randrange(len(text))] = dice.choice([0, 9, 10, 13, 34, 44, 58, 92, 110, 255])
        texts.append(bytes(text))
    for text in texts:
        log.write_bytes(text)
        table.unlink(missing_ok=True)
        result = run("import", log, "-o", table, "--all-columns")
        said = messages(result)
        assert result.returncode in (0, 1, 3), (text, said)
        assert table.exists() == (result.returncode != 3), (text, said)
        if table.exists():
            rows = int(re.search(r"a\.ale: (\d+) row", said).group(1))
            assert len(csv_rows(table)) == rows, (text, said)
    assert leftovers(tmp_path) == []
