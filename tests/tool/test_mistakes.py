"""Slips on the command line: the answer names the word, and what was probably meant."""

import pytest
from olelog import expect, run, write_log


@pytest.mark.parametrize(
    "words, answer",
    [
        (["shwo", "a.odb"], 'there is no command "shwo"; did you mean show?'),
        (["a.odb"], 'there is no command "a.odb"; there are import, check, '),
        ([], "a command is needed: import, check, "),
        (["container"], "a command is needed: create, add, remove, list, info"),
        (["show", "a.odb", "--qiet"], "show has no option --qiet; did you mean --quiet?"),
        (["container", "lsit", "a.sg"], 'there is no command "lsit"; did you mean list?'),
        (["show", "a.odb", "--sortt", "Scene"], "show has no option --sortt; did you mean --sort?"),
        (["show", "a.odb", "--frmat=csv"], "show has no option --frmat; did you mean --format?"),
        (["show", "a.odb", "--json"], "show has no option --json; it is --format json here"),
        (["import", "a.ale", "-o", "a", "-o", "b"], "--output is given more than once, and takes one value"),
        (["show", "-o", "a.odb"], "show has no option -o\n"),
        (["sort", "a.odb", "--by", "Scene", "Shot"], '"Shot" has no place here; names of a list'),
        (["info", "a.odb", "b.odb"], '"b.odb" has no place here'),
        (["import", "a.ale"], "-o TABLE or --output is required"),
        (["--vresion"], "olelog has no option --vresion; did you mean --version?"),
    ],
)
def test_the_word_is_named(words, answer):
    said = expect(2, *words)
    assert answer in said and "--help" in said.splitlines()[-1]


def test_the_file_that_was_meant_is_named(tmp_path):
    (tmp_path / "day-12.odb").mkdir()
    (tmp_path / "day-13.odb").write_bytes(b"")
    said = expect(3, "show", "dya-13.odb", cwd=tmp_path)
    assert said == "olelog: dya-13.odb: cannot be read: No such file or directory; did you mean day-13.odb?\n"
    assert f"did you mean {tmp_path}/day-13.odb?" in expect(3, "info", tmp_path / "day.13.odb")
    assert expect(3, "show", "nothing-like-it", cwd=tmp_path).endswith("directory\n")
    assert "; there is no folder no/such" in expect(3, "import", "no/such/a.ale", "-o", "a.odb", cwd=tmp_path)


def test_short_options_take_an_equals_sign(tmp_path):
    log = write_log(tmp_path / "a.ale", ["Name"], [["a"]])
    for words in (["-o=a.odb"], ["-oa.odb"], ["-o", "a.odb"], ["--output=a.odb"]):
        expect(0, "import", log, *words, cwd=tmp_path)
        assert sorted(path.name for path in tmp_path.iterdir()) == ["a.ale", "a.odb"]
        (tmp_path / "a.odb").unlink()


def test_help_of_a_command_that_there_is_not():
    assert 'there is no command "impotr"; did you mean import?' in expect(2, "help", "impotr")
    assert "did you mean --sort?" in expect(2, "show", "--sotr", "--help")


def test_a_file_that_looks_like_an_option(tmp_path):
    (tmp_path / "-day.odb").write_bytes(b"")
    assert "the file of this name is written ./-day.odb" in expect(2, "show", "-day.odb", cwd=tmp_path)
    assert '"": cannot be read: No such file or directory' in expect(3, "show", "")


def test_help_comes_both_ways():
    for command in (["show"], ["container", "add"], []):
        asked = run("help", *command)
        assert (asked.returncode, asked.stdout) == (0, run(*command, "--help").stdout)
