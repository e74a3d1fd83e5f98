"""The example that every command's help ends with, run as a person would type it."""

import os
import re
import shutil
import subprocess

import pytest
from olelog import TOOL, expect, run

SAMPLE = os.path.join(os.path.dirname(__file__), "..", "..", "samples", "day-12.ale")


def subcommands(*words):
    text = run(*words, "--help").stdout.decode()
    listed = re.search(r"^Subcommands:\n((?:  .*\n)+)", text, re.MULTILINE)
    return re.findall(r"^  (\S+)", listed.group(1), re.MULTILINE) if listed else []


COMMANDS = [[c] for c in subcommands()] + [[c, s] for c in subcommands() for s in subcommands(c) if c != "completion"]


def test_commands_are_found():
    assert {"import", "sort", "export", "container"} <= {c[0] for c in COMMANDS} and ["container", "add"] in COMMANDS


@pytest.mark.parametrize("command", COMMANDS, ids=" ".join)
def test_example(tmp_path, command):
    shutil.copy(SAMPLE, tmp_path)
    expect(0, "import", "day-12.ale", "-o", "day-12.odb", cwd=tmp_path)
    if command[0] == "container" and command[-1] != "create":
        expect(0, "container", "create", "selects.sg", "--name", "Selects", cwd=tmp_path)
    text = run(*command, "--help").stdout.decode()
    lines = re.findall(r"^  (.*)$", text.split("Example:\n")[1], re.MULTILINE)
    script = "\n".join(lines)
    assert "olelog " + " ".join(command) in script
    env = {**os.environ, "PATH": os.path.dirname(TOOL) + os.pathsep + os.environ["PATH"]}
    done = subprocess.run(["bash", "-ec", script], cwd=tmp_path, env=env, stdout=subprocess.PIPE, stderr=subprocess.PIPE, timeout=60)
    assert done.returncode == 0 or command == ["check"] and done.returncode == 1, done.stderr
