"""How the tests call the tool: as a person does, by its command line, looking at what it prints.

The environment variable OLELOG names the tool, OLE_REAL_LOGS a folder of real logs.
"""

import csv
import fcntl
import io
import json
import os
import pty
import re
import shutil
import struct
import subprocess
import termios

import pytest

TOOL = os.environ.get("OLELOG") or shutil.which("olelog")
if TOOL is None:
    pytest.skip("OLELOG does not name the tool", allow_module_level=True)
TOOL = os.path.abspath(TOOL)

HEADING = ["Heading", "FIELD_DELIM\tTABS", "VIDEO_FORMAT\t1080", "FPS\t25", ""]

# The standard columns and their types, in their order.
STANDARD = [
    column.rsplit(":", 1)
    for column in """
Cookie:text Type:text Flags:long Name:text Date:date Size:long pic_qual:text aud_qual:text chans:text
Start_time:timecode End_time:timecode Duration:timecode Reel:text Reel_Type:text Scene:text Shot:text
Who:text Description:text Notes:text snd_start:timecode snd_end:timecode snd_reel:text
start_24P_code:timecode end_24P_code:timecode 24P_reel:text film-origin:text pulldown:text sequence:long
start_keycode:timecode end_keycode:timecode film_duration:text start_camcode:timecode end_camcode:timecode
cam_reel:text comp_reel:text cam-date:date start_inkcode:timecode end_inkcode:timecode lab_reel:text
Mdrive:text Tag:long film_label-std:text start_perf:text orig_soundfile:text
""".replace("_", " ").replace("-", "_").split("\n")
    for column in re.findall(r"\S.*?:[a-z]+", column)
]
STANDARD_NAMES = [name for name, _ in STANDARD]


# What of a person's environment changes how the tool appears.
SETTINGS = ("COLUMNS", "LINES", "NO_COLOR", "PAGER", "LESS")


def run(*arguments, stdin=b"", env=None, cwd=None, **more):
    """Runs the tool to its end; texts come back as bytes."""
    environment = {k: v for k, v in os.environ.items() if k not in SETTINGS}
    environment.update(env or {})
    return subprocess.run(
        [TOOL, *map(os.fspath, arguments)],
        input=stdin,
        stdout=subprocess.PIPE,
        stderr=subprocess.PIPE,
        env=environment,
        cwd=cwd,
        timeout=120,
        **more,
    )


def shell(command, **more):
    """Runs a line of bash; `olelog` is the tool."""
    script = f'olelog() {{ "{TOOL}" "$@"; }}; {command}'
    return subprocess.run(["bash", "-c", script], stdout=subprocess.PIPE, stderr=subprocess.PIPE, timeout=60, **more)


def on_terminal(width, *arguments, env=None, height=24):
    """Runs the tool on a terminal of its own; returns exit code and what the terminal got."""
    try:
        pid, terminal = pty.fork()
    except OSError as error:  # a bare container may have none
        pytest.skip(f"no terminal to try: {error}")
    if pid == 0:
        environment = {k: v for k, v in os.environ.items() if k not in SETTINGS}
        os.read(0, 1)  # until the width is set
        os.execve(TOOL, [TOOL, *map(os.fspath, arguments)], environment | {"TERM": "xterm"} | (env or {}))
    fcntl.ioctl(terminal, termios.TIOCSWINSZ, struct.pack("HHHH", height, width, 0, 0))
    settings = termios.tcgetattr(terminal)
    settings[1] &= ~termios.OPOST
    settings[3] &= ~termios.ECHO
    termios.tcsetattr(terminal, termios.TCSANOW, settings)
    os.write(terminal, b"\n")
    got = b""
    while True:
        try:
            piece = os.read(terminal, 65536)
        except OSError:  # the terminal's other end is closed
            break
        if not piece:
            break
        got += piece
    _, status = os.waitpid(pid, 0)
    os.close(terminal)
    return os.waitstatus_to_exitcode(status), got.decode()


def messages(result):
    """What the tool said, with every line checked to carry its name."""
    text = result.stderr.decode("utf-8", "backslashreplace")
    for line in text.splitlines():
        assert line.startswith("olelog: "), text
    return text


def expect(code, *arguments, **more):
    """Runs the tool and checks its exit code; returns what it said."""
    result = run(*arguments, **more)
    said = messages(result)
    assert result.returncode == code, said
    return said


def log_text(columns, rows, heading=None, end="\n"):
    lines = [*(HEADING if heading is None else heading), "Column", "\t".join(columns), "", "Data"]
    lines += ["\t".join(row) for row in rows]
    return (end.join(lines) + end).encode("utf-8", "surrogateescape")


def write_log(path, columns, rows, **more):
    path.write_bytes(log_text(columns, rows, **more))
    return path


def table_text(columns, rows, parameters=("OLEDB:Rev 1",), types=None):
    """A table file, written here without the tool."""

    def line(values):
        return ",".join('"' + value.replace('"', '""').replace("\n", "\\n") + '"' for value in values)

    lines = [*(f'"{p}"' for p in parameters), '"OLEDB"', line(["4"] * len(columns))]
    lines += [line(types or ["text"] * len(columns)), line(columns), *map(line, rows)]
    return "".join(text + "\r\n" for text in lines).encode("utf-8", "surrogateescape")


def write_table(path, *arguments, **more):
    path.write_bytes(table_text(*arguments, **more))
    return path


def csv_rows(table, code=0):
    """The rows of a table file, read by Python's own CSV reader."""
    result = run("show", table, "--format", "csv")
    assert result.returncode == code, messages(result)
    text = result.stdout.decode("utf-8", "surrogateescape")
    return list(csv.DictReader(io.StringIO(text, newline="")))


def info(table, code=0):
    result = run("info", table, "--json")
    assert result.returncode == code, messages(result)
    return json.loads(result.stdout)


def filled(row):
    """A row without its empty values."""
    return {name: value for name, value in row.items() if value}


def leftovers(folder):
    """Files that the tool may have forgotten."""
    return sorted(p.name for p in folder.iterdir() if p.name.startswith("."))
