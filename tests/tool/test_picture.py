"""README's commands work, and its picture shows what the tool prints."""

import html
import os
import re
import shutil

from olelog import shell

ROOT = os.path.join(os.path.dirname(__file__), "..", "..")
WIDTH = "100"  # of the terminal that was drawn


def drawn_lines(path):
    """The lines of text of the picture, from top to bottom."""
    with open(path, encoding="utf-8") as file:
        drawing = file.read()
    lines = {}
    for height, text in re.findall(r'<text class="terminal-r\d+"[^>]* y="([\d.]+)"[^>]*>([^<]*)</text>', drawing):
        lines.setdefault(float(height), []).append(html.unescape(text).replace("\xa0", " "))
    return ["".join(lines[height]).rstrip() for height in sorted(lines)]


def test_picture(tmp_path):
    shutil.copy(os.path.join(ROOT, "samples", "day-12.ale"), tmp_path)
    drawn = drawn_lines(os.path.join(ROOT, "docs", "olelog.svg"))
    commands = [line for line in drawn if line.startswith("$ ")]
    assert len(commands) == 3
    printed = []
    for command in commands:
        typed = command[2:].replace("olelog show", f"olelog show --width {WIDTH}")
        done = shell(f"{typed} 2>&1", cwd=tmp_path)
        assert done.returncode == 0, done.stdout
        printed += [command, *done.stdout.decode().splitlines(), ""]
    assert drawn == [line.rstrip() for line in printed], "scripts/picture.sh draws it anew"


def test_commands_of_readme(tmp_path):
    shutil.copytree(os.path.join(ROOT, "samples"), tmp_path / "samples")
    with open(os.path.join(ROOT, "README.md"), encoding="utf-8") as file:
        commands = re.findall(r"^olelog .*", file.read(), re.MULTILINE)
    assert len(commands) == 4
    codes = [shell(command, cwd=tmp_path).returncode for command in commands]
    assert codes == [1, 0, 0, 0]  # 1: the check has findings
