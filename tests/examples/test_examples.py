"""The examples do what README and docs/embedding.md show of them, and tell what they cannot do."""

import os
import re
import subprocess

import pytest

PROGRAMS = os.environ["EXAMPLES"]


def blocks(page, kind):
    """A page's fenced blocks of a kind, in order."""
    with open(page, encoding="utf-8") as file:
        found = re.findall(r"^```(\w*)\n(.*?)^```$", file.read(), re.DOTALL | re.MULTILINE)
    return [text for name, text in found if name == kind]


def run(command, folder):
    for path in ("samples", *(os.path.join(PROGRAMS, name) for name in NAMES)):
        link = folder / os.path.basename(path)
        if not link.is_symlink():
            link.symlink_to(os.path.abspath(path))
    return subprocess.run(["sh", "-c", command], cwd=folder, capture_output=True, text=True, check=False)


NAMES = sorted(name[:-4] for name in os.listdir("examples") if name.endswith(".cpp"))


def test_readme_quotes_the_first_program():
    with open("examples/first_table.cpp", encoding="utf-8") as file:
        assert blocks("README.md", "cpp") == [file.read()]


@pytest.mark.parametrize("page", ["README.md", "docs/embedding.md"])
def test_programs_do_what_the_page_shows(page, tmp_path):
    shown = [b for b in blocks(page, "") if any(b.startswith(f"$ ./{name} ") for name in NAMES)]
    assert shown
    said = []
    for block in shown:
        commands = re.findall(r"^\$ (.*)\n", block, re.MULTILINE)
        runs = [(command, run(command, tmp_path)) for command in commands]
        assert [(r.returncode, r.stderr) for _, r in runs] == [(0, "")] * len(runs)
        said.append("".join(f"$ {command}\n{r.stdout}" for command, r in runs))
    assert said == shown


def test_the_first_program_of_the_guide(tmp_path):
    (shown,) = [b for b in blocks("docs/embedding.md", "") if b.startswith("$ ./my_editor ")]
    (tmp_path / "my_editor").symlink_to(os.path.abspath(os.path.join(PROGRAMS, "embedding")))
    command, said = shown[2:].split("\n", 1)
    done = run(command, tmp_path)
    assert (done.returncode, done.stdout[: len(said)]) == (0, said)
    assert "not saved\n" in done.stdout[len(said) :], "an empty table that could not be written"


@pytest.mark.parametrize(
    "command, code, told",
    [
        ("./first_table none.ale", 1, ""),
        ("./typical_road none.ale", 1, "usage: typical_road LOG.ale\n"),
        ("./live_host none.ale", 1, "usage: live_host LOG.ale\n"),
        ("./container_browser none.sg none.odb", 1, "none.sg: no container file\n"),
        ("./container_browser items.sg none.odb", 1, "none.odb: no table file\n"),
        ("./container_browser items.sg items.sg 1", 1, "items.sg: item 1 names no take of items.sg\n"),
    ],
)
def test_what_cannot_be_done_is_told(command, code, told, tmp_path):
    (tmp_path / "items.sg").write_text('"OLEDB"\n"12"\n"text"\n"Cookie"\n', encoding="utf-8")
    done = run(command, tmp_path)
    assert (done.returncode, done.stdout, done.stderr) == (code, "", told)
    assert sorted(set(os.listdir(tmp_path)) - {"samples", *NAMES}) == ["items.sg"]
