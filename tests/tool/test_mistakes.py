"""Slips on the command line: the answer names the word, and what was probably meant."""

import pytest
from olelog import expect, run


@pytest.mark.parametrize(
    "words, answer",
    [
        (["shwo", "a.odb"], 'there is no command "shwo"; did you mean show?'),
        (["a.odb"], 'there is no command "a.odb"; there are import, check, '),
        ([], "a command is needed: import, check, "),
        (["container"], "a command is needed: create, add, list, info"),
        (["container", "lsit", "a.sg"], 'there is no command "lsit"; did you mean list?'),
        (["show", "a.odb", "--sortt", "Scene"], "show has no option --sortt; did you mean --sort?"),
        (["show", "a.odb", "--frmat=csv"], "show has no option --frmat; did you mean --format?"),
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


def test_help_comes_both_ways():
    for command in (["show"], ["container", "add"], []):
        asked = run("help", *command)
        assert (asked.returncode, asked.stdout) == (0, run(*command, "--help").stdout)
