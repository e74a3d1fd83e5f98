"""README quotes the example program, and what it says of running it is what happens."""

import os
import re
import subprocess

PROGRAM = os.environ["TYPICAL_ROAD"]


def blocks(kind):
    """README's fenced blocks of a kind, in order."""
    with open("README.md", encoding="utf-8") as file:
        found = re.findall(r"^```(\w*)\n(.*?)^```$", file.read(), re.DOTALL | re.MULTILINE)
    return [text for name, text in found if name == kind]


def test_readme_quotes_the_program():
    with open("examples/typical_road.cpp", encoding="utf-8") as file:
        assert blocks("cpp") == [file.read()]


def test_the_program_does_what_readme_shows(tmp_path):
    [shown] = [b for b in blocks("") if "typical_road samples" in b]
    os.symlink(os.path.abspath("samples"), tmp_path / "samples")
    os.symlink(PROGRAM, tmp_path / "typical_road")
    said = ""
    for command in re.findall(r"^\$ (.*)\n", shown, re.MULTILINE):
        run = subprocess.run(
            ["sh", "-c", command], cwd=tmp_path, capture_output=True, text=True, check=False
        )
        assert (run.returncode, run.stderr) == (0, "")
        said += f"$ {command}\n{run.stdout}"
    assert said == shown


def test_a_missing_log_is_told(tmp_path):
    run = subprocess.run([PROGRAM, "none.ale"], cwd=tmp_path, capture_output=True, text=True, check=False)
    assert (run.returncode, run.stdout, run.stderr) == (1, "", "usage: typical_road LOG.ale\n")
    assert os.listdir(tmp_path) == []
