"""The tool's limits of docs/limits.md, each tried one below it, at it and one beyond it: the figures are the page's."""

import pathlib
import re

import pytest
from olelog import HEADING, STANDARD, csv_rows, expect, info, leftovers, run, write_log, write_table

PAGE = (pathlib.Path(__file__).parents[2] / "docs" / "limits.md").read_text()
FIGURES = {name: int(figure) for name, figure in re.findall(r"^\| (.*?) \| (\d+) \|", PAGE.split("## The tool")[1], re.M)}


def told(code, command, folder, *arguments, **more):
    """What is said of a log."""
    words = ["-o", folder / "t.odb"] if command == "import" else []
    return expect(code, command, write_log(folder / "a.ale", *arguments, **more), *words)


def columns(folder, n, beyond):
    table = write_table(folder / "t.odb", [f"c{i}" for i in range(n)], [["x"] * n])
    for command in ("info", "show"):
        said = expect(3 if beyond else 0, command, table)
        assert (f"line 3 tells of {n} columns, and {n - 1} is the most" in said) == beyond
    table = write_table(folder / "t.odb", [f"c{i}" for i in range(n - 1)], [["x"] * (n - 1)] * 2)
    for words in (["dedupe", table, "--by", "c1", "--tag-only"], ["tag", table, "--all"]):
        assert ("no room" in expect(3 if beyond else 0, *words)) == beyond
    assert len(info(table)["columns"]) == (n - 1 if beyond else n)


def row(folder, n, beyond):
    table = write_table(folder / "r.odb", ["A"], [["x"]])
    table.write_bytes(table.read_bytes() + b"x" * n + b"\r\n")
    assert (f"line 7: longer than {n - 1} bytes" in expect(1 if beyond else 0, "show", table)) == beyond
    notes = "x" * (n - 3 * len(STANDARD) - len("A0") - 1) + '"'  # written twice; Tag holds a 0
    rows = [["B", ""], ["A", notes], ["C", notes[1:]]]
    said = told(3 if beyond else 0, "import", folder, ["Name", "Notes"], rows)
    refused = f"a.ale:11: the row needs a line of {n} bytes" in said and "t.odb: not written" in said
    assert refused == beyond == ("a.ale" in said and not (folder / "t.odb").exists())
    assert "a.ale:12" not in said and leftovers(folder) == []
    assert beyond or [r["Notes"] for r in csv_rows(folder / "t.odb")] == ["", *[r[1] for r in rows[1:]]]


def parameters(folder, n, beyond):
    texts = ["OLEDB:Rev 1", *[f"P{i}:v" for i in range(2, n + 1)]]
    table = write_table(folder / "t.odb", ["A"], [["y"], ["x"]], texts)
    before = table.read_bytes()
    said = expect(1 if beyond else 0, "info", table)
    assert (f'line {n}: the parameter "P{n}" was not read; a table has room for {n - 1}' in said) == beyond
    said = expect(3 if beyond else 0, "sort", table, "--by", "A")
    assert ("would be lost" in said) == (table.read_bytes() == before) == beyond
    assert len(info(table, 1 if beyond else 0)["parameters"]) == (n - 1 if beyond else n)


def log_parameters(folder, n, beyond):
    heading = ["Heading", *[f"P{i:02}\t{i}" for i in range(1, n + 1)]]
    said = told(1 if beyond else 0, "import", folder, ["Name"], [["A"]], heading=heading)
    assert (f"do not fit into the table's 40: P{n}\n" in said or f"does not fit into the table's 40: P{n}\n" in said) == beyond
    assert len(info(folder / "t.odb")["parameters"]) == (n if beyond else n + 1)


def tag(folder, n, beyond):
    table = write_table(folder / "t.odb", ["A", "Tag"], [["y", str(n)], ["x", "0"]])
    assert (f'"{n}" is no tag' in expect(1 if beyond else 0, "sort", table, "--by", "A")) == beyond
    assert csv_rows(table)[1]["Tag"] == str(n - 1 if beyond else n)


def hidden(folder, n, beyond):
    table = write_table(folder / "t.odb", [f"c{i}" for i in range(1, n + 1)], [["x"] * n])
    expect(0, "export", table, "-o", folder / "x.csv", "--fields", f"-c{n}", "--keep-fields")
    entries = next(p for p in info(table)["parameters"] if p["name"] == "V5_FIELD_MAP")["value"].split()
    assert sorted(map(int, entries)) == sorted([*range(1, n), *([] if beyond else [-n])])


def rate(folder, n, beyond):
    table = write_table(folder / "t.odb", ["d"], [["1.04"]], ["OLEDB:Rev 1", f"FPS:{n}"], ["double"])
    result = run("export", table, "-o", "-", "--format", "csv")
    assert (b"25 frames" in result.stderr) == beyond
    assert result.stdout.endswith(b"00:00:01:01\r\n" if beyond else f":01:{int(n * 0.04 + 0.001)}\r\n".encode())


def number(*words):
    def tried(folder, n, beyond):
        table = write_table(folder / "t.odb", ["A"], [["x"]])
        assert (words[-1] in expect(2 if beyond else 0, "show", table, *words, str(n))) == beyond

    return tried


def findings(folder, n, beyond):
    said = told(1, "import", folder, ["Name", "Notes"], [["A", "a\rb"]] * n)
    assert said.count("carriage return") == (n - 1 if beyond else n)
    assert ("... and 1 more of this kind" in said) == beyond


def runs(folder, n, beyond):
    said = told(1, "import", folder, ["Name"], [["A"], ["B", "C"]] * n)
    assert said.count("(2 values") == (n - 1 if beyond else n) and ("), and more" in said) == beyond


def shifted(folder, n, beyond):
    said = told(1, "import", folder, ["Name", "Take"], [["", "1"]] * n)
    last = len(HEADING) + 4 + n
    assert f"{last - 1} and 1 more\n" in said if beyond else f"{last - 1}, {last}\n" in said


def lost_columns(folder, n, beyond):
    titles = [f"C{i:03}" for i in range(n)]
    said = told(0, "import", folder, ["Name", *titles], [["A", *["v"] * n]])
    assert titles[-1] in said
    said = run("check", folder / "a.ale").stdout.decode()
    assert f"{titles[-2]} and 1 more" in said if beyond else f"{titles[-2]}, {titles[-1]}" in said


def missing_values(folder, n, beyond):
    titles = [f"C{i:03}" for i in range(n)]
    write_log(folder / "a.ale", ["Name", *titles], [["A"]])
    said = run("check", folder / "a.ale").stdout.decode()
    assert f"{titles[-2]} and 1 more; " in said if beyond else f"{titles[-2]}, {titles[-1]}; " in said


def quoted(folder, n, beyond):
    said = told(1, "import", folder, ["Name", "Tag"], [["A", "x" * n]])
    assert '"' + ("x" * (n - 2) + "…" if beyond else "x" * n) + '"' in said


TRIES = {
    "columns that the tool reads or writes": columns,
    "bytes of a row's line that the tool writes": row,
    "parameters of a table that the tool reads": parameters,
    "parameters of a log that an import takes": log_parameters,
    "tag in the column `Tag`": tag,
    "hidden columns that `--keep-fields` stores": hidden,
    "frames a second in the parameter `FPS`": rate,
    "`--limit`": number("--limit"),
    "`--width`": number("--width"),
    "findings of a kind that are told": findings,
    "runs of left out lines that an import tells": runs,
    "lines with a leading tab that an import tells": shifted,
    "columns without a field that `check` names": lost_columns,
    "columns without a value that `check` names of a row": missing_values,
    "characters of a value in a message": quoted,
}


def test_every_limit_of_the_page_is_tried():
    assert FIGURES.keys() == TRIES.keys()


@pytest.mark.parametrize("step", [-1, 0, 1])
@pytest.mark.parametrize("name", TRIES)
def test_limit(tmp_path, name, step):
    TRIES[name](tmp_path, FIGURES[name] + step, step == 1)
