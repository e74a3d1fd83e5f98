"""The tabulator key, in real shells."""

import os
import pty
import select
import shutil
import subprocess
import time

import pytest
from olelog import TOOL, expect, run, write_table

FOLDER = os.path.dirname(TOOL)
ENVIRONMENT = {**os.environ, "PATH": FOLDER + os.pathsep + os.environ["PATH"], "TERM": "dumb"}


@pytest.fixture
def shoot(tmp_path):
    write_table(tmp_path / "day.odb", ["Scene", "Shot", "Start time", "A,B"], [["1", "2", "3", "4"]])
    return tmp_path


def in_bash(folder, *words):
    """What bash would offer for the last word; it has parted the line itself."""
    script = """
        source <(olelog completion bash)
        compopt() { :; }                    # only there while a key is handled
        COMP_WORDS=("$@") COMP_CWORD=$(($# - 1))
        _olelog
        printf '%s\\n' "${COMPREPLY[@]}"
    """
    found = subprocess.run(
        ["bash", "-c", script, "bash", "olelog", *words],
        cwd=folder, env=ENVIRONMENT, stdout=subprocess.PIPE, check=True, timeout=60,
    )
    return found.stdout.decode().splitlines()


@pytest.mark.parametrize(
    "words, offered",
    [
        (["sh"], ["show"]),
        (["show", "--so"], ["--sort"]),
        (["show", "da"], ["day.odb"]),
        (["show", "day.odb", "--sort", "s"], ["scene", "shot", "start\\ time"]),
        (["show", "day.odb", "--sort", '"s'], ["scene", "shot", "start time"]),
        (["show", "--fields", "x", "day.odb", "--fields", "Shot,-St"], ["Shot,-Start\\ time"]),
        (["show", "day.odb", "--sort", "Start\\ time,Sc"], ["Start\\ time,Scene"]),
        (["show", "day.odb", "--where", "Sh"], ["Shot="]),
        (["show", "day.odb", "--where", "Shot", "=", "1"], [""]),
        (["show", "day.odb", "--where", "Shot", "="], [""]),
        (["show", "day.odb", "--where", "Shot", "=", ""], [""]),
        (["show", "day.odb", "--where", "Shot", "=", "1", "--so"], ["--sort"]),
        (["container", "add", "c.sg", "--from", "day.odb", "--where", "Sh"], ["Shot="]),
        (["show", "--format", "=", "c"], ["csv"]),
        (["show", "--limit", ""], [""]),
        (["show", "--sort", "S"], [""]),  # no table, no fields
        (["completion", ""], ["bash", "zsh"]),
        (["check", "a.ale", "--ignore", "overlap,no-t"], ["overlap,no-timecode"]),
        (["show", "--color", "a"], ["auto", "always"]),
        (["help", "container", "re"], ["remove"]),
        (["nonsense", "--so"], [""]),
    ],
)
def test_bash_offers_what_fits(shoot, words, offered):
    assert in_bash(shoot, *words) == offered


def test_every_command_and_option_is_offered(shoot):
    """The help tells of nothing that the key does not know."""
    listed = run("--help").stdout.decode().split("Subcommands:\n")[1]
    commands = [line.split()[0] for line in listed.splitlines() if line.startswith("  ") and line[2] != " "]
    assert len(commands) > 4 and in_bash(shoot, "") == [*commands]
    for command in commands:
        help_text = run(command, "--help").stdout.decode().split("Example:")[0]
        for word in {word.strip("[],.") for word in help_text.split() if word.startswith("--")}:
            assert word in in_bash(shoot, command, word), (command, word)


def test_a_broken_table_offers_no_fields(tmp_path):
    (tmp_path / "bad.odb").write_bytes(b'"OLEDB"\r\n"4"\r\n')
    result = run("completion", "words", "--", "show", str(tmp_path / "bad.odb"), "--sort", "")
    assert (result.returncode, result.stdout, result.stderr) == (0, b"", b"")
    expect(2, "completion")
    expect(2, "completion", "fish")


class Terminal:
    """zsh as a person sits before it."""

    def __init__(self, folder):
        self.process, self.file = pty.fork()
        if self.process == 0:
            os.chdir(folder)
            os.execvpe("zsh", ["zsh", "-f", "-i"], ENVIRONMENT)

    def type(self, keys, expected):
        os.write(self.file, keys.encode())
        seen, end = "", time.monotonic() + 30
        while expected not in seen and time.monotonic() < end:
            if select.select([self.file], [], [], 0.2)[0]:
                seen += os.read(self.file, 4096).decode(errors="replace").replace("\a", "")
        assert expected in seen, seen

    def close(self):
        os.close(self.file)
        os.waitpid(self.process, 0)


@pytest.mark.skipif(shutil.which("zsh") is None, reason="no zsh")
def test_zsh_completes_commands_files_and_fields(shoot):
    zsh = Terminal(shoot)
    try:
        zsh.type("autoload -Uz compinit; compinit -u -D; source <(olelog completion zsh); PS1='rea''dy> '\r", "ready> ")
        zsh.type("olelog sho\t", "show ")
        zsh.type("da\t", "day.odb ")
        zsh.type("--sort Start\t", "Start\\ time")
        zsh.type("\x7f,Sce\t", "ene")
        zsh.type(" --where Sh\t", "Shot=")
        zsh.type("1 --\t", "-- Sort from the last to the first")
    finally:
        zsh.close()
