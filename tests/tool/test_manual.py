"""The manual page: told without a warning, and of the same commands and options as the tool's help."""

import pathlib
import re
import shutil
import subprocess

import pytest
from olelog import run

PAGE = pathlib.Path(__file__).parents[2] / "docs" / "olelog.1"


def help_of(*command):
    return run(*command, "--help").stdout.decode()


def commands_in(text):
    listed = text.split("Subcommands:\n")[1].split("\n\n")[0] if "Subcommands:\n" in text else ""
    return re.findall(r"^  (\S+)", listed, re.MULTILINE)


def options_in(text):
    return set(re.findall(r"(?<![-\w])--[a-z][a-z-]+", text))


def page_text():
    return PAGE.read_text().replace("\\-", "-")


def all_commands():
    for command in commands_in(help_of()):
        yield (command,)
        for below in commands_in(help_of(command)):
            yield (command, below)


@pytest.mark.skipif(shutil.which("man") is None, reason="no man")
def test_man_has_nothing_to_say_against_it():
    told = subprocess.run(
        ["man", "--warnings", "-E", "UTF-8", "-l", "-Tutf8", "-Z", PAGE],
        stdout=subprocess.PIPE, stderr=subprocess.PIPE, check=True, timeout=60,
    )
    assert told.stderr == b"" and b"olelog" in told.stdout


def test_every_command_and_option_stands_there():
    page = page_text()
    offered = {"--help", "--version"}
    found = list(all_commands())
    assert len(found) > 12
    for command in found:
        assert re.search(rf"^\.B olelog {' '.join(command)}\b", page, re.MULTILINE) or command in [
            ("container",), ("completion", "bash"), ("completion", "zsh"),
        ], command
        offered |= options_in(help_of(*command).split("Example")[0])
    assert offered - {"--help", "--version"} <= options_in(page)
    assert options_in(page) <= offered, "the page tells of options that there are not"
