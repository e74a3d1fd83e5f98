"""What only a person at a terminal gets: colours, the pager, progress; and how to be rid of them."""

import re

import pytest
from olelog import expect, log_text, messages, on_terminal, run, write_log, write_table

FINDINGS = log_text(["Name", "Start", "End"], [["a", "01:00:00:00", "00:59:00:00"], ["b", "01:00:00:00", "x", "more"]])


@pytest.fixture
def table(tmp_path):
    return write_table(tmp_path / "t.odb", ["Name", "Tag"], [[f"row {i:02}", str(i % 2)] for i in range(100)], types=["text", "long"])


def without_colours(text):
    return re.sub(r"\x1b\[[0-9;]*m", "", text)


def test_colours(table):
    _, text = on_terminal(80, "show", table, "--limit", "2", "--fields", "Name")
    assert text.splitlines() == ["\x1b[1mName\x1b[0m", "\x1b[2m------\x1b[0m", "row 00", "\x1b[32mrow 01\x1b[0m"]
    for words, env in [([], {"NO_COLOR": "1"}), ([], {"TERM": "dumb"}), (["--color", "never"], {})]:
        assert "\x1b" not in on_terminal(80, "show", table, "--limit", "2", *words, env=env)[1]
    assert b"\x1b" not in run("show", table, env={"TERM": "xterm"}).stdout
    assert b"\x1b[32mrow 01" in run("show", table, "--color", "always", env={"NO_COLOR": "1"}).stdout
    assert "always" in expect(2, "show", table, "--color", "green")


def test_findings_are_the_same_with_and_without_colours(tmp_path):
    log = tmp_path / "a.ale"
    log.write_bytes(FINDINGS)
    plain = run("check", log)
    colourful = run("check", log, "--color=always")
    text = colourful.stdout.decode()
    assert without_colours(text) == plain.stdout.decode() and plain.stdout.count(b"\n") >= 2
    assert "\x1b[31m[too-many-values]\x1b[0m" in text and "\x1b[36m[end-before-start]\x1b[0m" in text
    assert without_colours(colourful.stderr.decode()) == plain.stderr.decode() != colourful.stderr.decode()


def test_long_tables_go_through_the_pager(table):
    def lines(*words, height=24, pager="sed s/^/P:/"):
        code, text = on_terminal(80, "show", table, *words, env={"PAGER": pager, "NO_COLOR": "1"}, height=height)
        assert code == 0
        return text.splitlines()

    whole = lines("--no-pager")
    assert len(whole) == 102 and not any(line.startswith("P:") for line in whole)
    assert lines() == ["P:" + line for line in whole]
    assert lines(height=103) == whole  # fits, and leaves a line for the prompt
    assert lines(height=102) == ["P:" + line for line in whole]
    assert lines("--limit", "5") == whole[:7]
    assert lines(pager="cat") == lines(pager="") == whole
    assert lines(pager="head -n 1") == whole[:1]  # the person leaves early
    assert lines("--format", "csv")[0] == "Name,Tag"
    assert lines(pager="no-such-pager --really")[1:] == whole  # behind what is wrong with it
    code, text = on_terminal(80, "show", table, env={"PAGER": "/no/such/pager"})
    assert code == 3 and '"/no/such/pager" cannot be run' in text and "--no-pager" in text


def test_the_pager_is_left_alone_where_nobody_looks(table):
    assert run("show", table, env={"PAGER": "sed s/^/P:/", "TERM": "xterm", "LINES": "5"}).stdout.startswith(b"Name")


def test_progress_of_long_work(tmp_path):
    log = write_log(tmp_path / "a.ale", ["Name", "Notes", "Reel"], [[f"take {i}", "print " * 8, "r"] for i in range(300000)])
    table = tmp_path / "a.odb"
    _, text = on_terminal(80, "import", log, "-o", table)
    bars = re.findall(r"olelog: ([^\r\n\[]+) \[(#*)(\.*)\] +(\d+) %", text)
    assert bars, text
    for doing, done, left, percent in bars:
        assert len(done) + len(left) == 30, doing
        assert int(percent) * 30 // 100 <= len(done) <= (int(percent) + 1) * 30 // 100, (doing, percent)
    # nothing of it is left on the screen
    left = [line.split("\x1b[K")[-1] for line in text.split("\n")]
    assert without_colours("\n".join(left)) == f"olelog: {log}: 300000 rows\n"
    assert on_terminal(80, "import", log, "-o", table, "--quiet")[1] == ""
    result = run("import", log, "-o", table)
    assert messages(result) == f"olelog: {log}: 300000 rows\nolelog: replaced {table}, which held 300000 rows\n"


def test_progress_stays_away_from_short_work(table):
    assert "%" not in on_terminal(80, "sort", table, "--by", "Name")[1]


def test_quiet_tells_what_is_wrong_and_nothing_else(tmp_path):
    log = write_log(tmp_path / "a.ale", ["Name", "Notes"], [["a", "print"]])
    broken = tmp_path / "b.ale"
    broken.write_bytes(FINDINGS)
    table = tmp_path / "a.odb"
    for words in (["import", log, "-o", table], ["sort", table, "--by", "Name"], ["show", table], ["tag", table, "--all"]):
        assert expect(0, *words, "-q") == ""
    assert expect(0, "--quiet", "container", "create", tmp_path / "c.sg", "--name", "n") == ""
    assert "1 line skipped" in expect(1, "import", broken, "-o", tmp_path / "b.odb", "--quiet")
    assert "no row is selected" in expect(1, "-q", "show", table, "--where", "Name=nobody")
    assert "1 of 1 row would be tagged" in expect(0, "tag", table, "--all", "--dry-run", "-q")
