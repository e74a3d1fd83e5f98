"""Where the results go: whole or not at all, and never over something that matters."""

import os
import signal
import stat
import subprocess
import tempfile
import time

import pytest
from olelog import TOOL, expect, info, leftovers, log_text, messages, run, shell, table_text, write_log, write_table


@pytest.fixture
def log(tmp_path):
    return write_log(tmp_path / "a.ale", ["Name"], [["A"], ["B"]])


@pytest.fixture
def large(tmp_path):
    return write_table(tmp_path / "large.odb", ["Name", "Note"], [[f"{i}", "x" * 60] for i in range(20000)])


def test_standard_output_takes_the_table(tmp_path, log):
    expect(0, "import", log, "-o", tmp_path / "a.odb")
    result = run("import", "-", "-o", "-", stdin=log.read_bytes())
    assert result.returncode == 0 and result.stdout == (tmp_path / "a.odb").read_bytes()
    assert messages(result) == "olelog: standard input: 2 rows\n"
    piped = shell(f"olelog import {log} -o - | olelog show - --format csv")
    assert piped.stdout.count(b"\r\n") == 3


@pytest.mark.parametrize("format", ["table", "csv", "json"])
def test_closed_pipe_ends_quietly(large, format):
    for ignored in ("", "trap '' PIPE; "):
        result = shell(f'{ignored}olelog show {large} --format {format} | head -c 20; echo " ${{PIPESTATUS[0]}}"')
        assert result.stderr == b"" and result.stdout.endswith(b" 0\n")


def test_closed_pipe_ends_import_quietly(tmp_path, log):
    rows = [[f"{i}", "x" * 60] for i in range(5000)]
    write_log(log, ["Name", "Note"], rows)
    result = shell(f"olelog import {log} -o - | head -c 20 >/dev/null; echo ${{PIPESTATUS[0]}}")
    assert result.stdout == b"0\n" and result.stderr.count(b"\n") == 1


@pytest.mark.parametrize(
    "command",
    [
        "olelog show {large}",
        "olelog show {large} --format csv",
        "olelog show {large} --format json",
        "olelog info {large} --json",
        "olelog --help",
        "olelog import {log} -o -",
    ],
)
def test_full_disk_and_closed_output_are_failures(log, large, command):
    for target in (">/dev/full", ">&-"):
        result = shell(command.format(log=log, large=large) + " " + target)
        assert result.returncode == 3, (target, result.stderr)
        assert b"standard output" in result.stderr


def test_closed_input_is_a_failure(tmp_path):
    assert shell("olelog show - <&-").returncode == 3
    assert shell(f"olelog import - -o {tmp_path}/a.odb <&-").returncode == 3
    assert list(tmp_path.iterdir()) == []


def test_devices_are_written_and_not_replaced(log):
    assert "2 rows" in expect(0, "import", log, "-o", os.devnull)
    assert stat.S_ISCHR(os.stat(os.devnull).st_mode)
    assert "No space left" in expect(3, "import", log, "-o", "/dev/full")


def test_output_over_an_input_needs_in_place(tmp_path, log):
    text = log.read_bytes()
    (tmp_path / "link").symlink_to(log)
    os.link(log, tmp_path / "hard")
    for name in ("a.ale", "./a.ale", "link", "hard", tmp_path / "a.ale"):
        assert "--in-place" in expect(2, "import", "a.ale", "-o", name, cwd=tmp_path)
        assert log.read_bytes() == text
    expect(0, "import", "a.ale", "-o", "a.ale", "--in-place", cwd=tmp_path)
    assert info(log)["rows"] == 2 and (tmp_path / "hard").read_bytes() == text


def test_a_file_that_is_no_table_is_not_replaced_by_mistake(tmp_path, log):
    """As happens with `-o *.ale`, or where the table's name was forgotten."""
    other = tmp_path / "b.ale"
    other.write_bytes(log.read_bytes())
    for logs in ([log], ["-"]):
        said = expect(2, "import", "-o", other, *logs, stdin=log.read_bytes())
        assert "is no table" in said and other.read_bytes() == log.read_bytes()
    expect(0, "import", "-o", other, log, "--in-place")
    assert info(other)["rows"] == 2


def test_an_open_pipe_is_a_target_by_its_name(log):
    result = shell(f"olelog import {log} -o /proc/self/fd/1 | head -c 12")
    assert result.stdout == b'"OLEDB:Rev 1', result.stderr


def test_permissions_stay_and_new_files_follow_the_mask(tmp_path, log):
    table = tmp_path / "a.odb"
    write_table(table, ["Name"], [["old"]])
    table.chmod(0o640)
    expect(0, "import", log, "-o", table, "--in-place")
    assert stat.S_IMODE(table.stat().st_mode) == 0o640 and info(table)["rows"] == 2
    assert shell(f"umask 027; olelog import {log} -o {tmp_path}/new.odb").returncode == 0
    assert stat.S_IMODE((tmp_path / "new.odb").stat().st_mode) == 0o640


def test_links_stay_links(tmp_path, log):
    folder = tmp_path / "elsewhere"
    folder.mkdir()
    (tmp_path / "new.odb").symlink_to("elsewhere/new.odb")
    write_table(folder / "old", ["Name"], [["old"]])
    (tmp_path / "old.odb").symlink_to(folder / "old")
    for name in ("new.odb", "old.odb"):
        expect(0, "import", log, "-o", tmp_path / name, "--in-place")
        assert (tmp_path / name).is_symlink() and info(tmp_path / name)["rows"] == 2
    assert sorted(p.name for p in folder.iterdir()) == ["new.odb", "old"]


def test_places_that_cannot_be_written(tmp_path, log):
    assert "there is no folder" in expect(3, "import", log, "-o", tmp_path / "none" / "a.odb")
    assert "Is a directory" in expect(3, "import", log, "-o", tmp_path)
    (tmp_path / "circle").symlink_to("circle")
    assert "symbolic links" in expect(3, "import", log, "-o", tmp_path / "circle")
    assert sorted(p.name for p in tmp_path.iterdir()) == ["a.ale", "circle"]


def test_without_permission(tmp_path):
    """As a user whom the permissions hold."""
    as_root = os.geteuid() == 0
    someone = {"user": 65534, "group": 65534, "extra_groups": []} if as_root else {}
    with tempfile.TemporaryDirectory(dir="/tmp") as name:
        folder, shared = os.path.join(name, "folder"), os.path.join(name, "shared")
        os.mkdir(folder)
        os.mkdir(shared)
        os.chmod(name, 0o755)
        os.chmod(shared, 0o777)
        try:
            expect(0, "--version", cwd="/", **someone)
        except (AssertionError, OSError):
            pytest.skip("the tool lies where another user cannot run it")
        log, table = os.path.join(name, "a.ale"), os.path.join(folder, "a.odb")
        with open(log, "wb") as file:
            file.write(log_text(["Name"], [["A"]]))
        read_only = os.path.join(shared, "a.odb")
        for path in (table, read_only):
            with open(path, "wb") as file:
                file.write(table_text(["Name"], [["keep me"]]))
        os.chmod(read_only, 0o444)
        os.chmod(folder, 0o555)
        try:
            for output in (table, os.path.join(folder, "new.odb"), read_only):
                said = expect(3, "import", log, "-o", output, cwd="/", **someone)
                assert "Permission denied" in said
            os.chmod(log, 0)
            assert "Permission denied" in expect(3, "import", log, "-o", "/dev/null", cwd="/", **someone)
            for path in (table, read_only):
                assert os.listdir(os.path.dirname(path)) == ["a.odb"]
                with open(path, "rb") as file:
                    assert file.read() == table_text(["Name"], [["keep me"]])
        finally:
            os.chmod(folder, 0o755)


@pytest.mark.parametrize("number", [signal.SIGINT, signal.SIGTERM, signal.SIGHUP])
def test_signals_leave_no_temporary_files(tmp_path, number):
    """Standard input is being copied when the signal comes."""
    env = os.environ | {"TMPDIR": str(tmp_path)}
    process = subprocess.Popen(
        [TOOL, "import", "-", "-o", tmp_path / "a.odb"], stdin=subprocess.PIPE, env=env,
        # A test run in the background of a shell ignores some of them, and so would the tool.
        preexec_fn=lambda: signal.signal(number, signal.SIG_DFL),
    )
    deadline = time.monotonic() + 30
    while not leftovers(tmp_path) and time.monotonic() < deadline:
        time.sleep(0.01)
    assert leftovers(tmp_path), "the copy was never begun"
    process.send_signal(number)
    assert process.wait(30) == -number
    process.stdin.close()
    assert list(tmp_path.iterdir()) == []
