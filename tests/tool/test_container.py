"""Containers made, filled and looked at; whatever is wrong with a file, it stays as it was."""

import json
import os
import re
import resource
import shlex
import shutil
import uuid

import pytest
from olelog import csv_rows, expect, info, leftovers, messages, run, table_text, write_table

ROOT = os.path.join(os.path.dirname(__file__), "..", "..")


def cookie(n, kind="M"):
    return f"{kind}-{uuid.UUID(int=n)}-ff"


def short(n, kind="M"):
    return cookie(n, kind).replace("-", "")


def container_text(rows, columns=("Cookie",), parameters=("OLEDB:Rev 1", "Name:n")):
    return table_text(columns, rows, parameters)


def listing(container, code=0):
    result = run("container", "list", container, "--json")
    assert result.returncode == code, messages(result)
    return json.loads(result.stdout)


def facts(container, code=0):
    result = run("container", "info", container, "--json")
    assert result.returncode == code, messages(result)
    return json.loads(result.stdout)


@pytest.fixture
def container(tmp_path):
    """Two items with attributes, and what the tool itself never writes."""
    path = tmp_path / "c.sg"
    rows = [["x, y", short(1), ""], ['say "x"', cookie(2), "7"]]
    path.write_bytes(container_text(rows, ["Note", "cookie", "n"], ["OLEDB:Rev 1", "Name:old", "name:again", "K:v:w"]))
    return path


def test_create(tmp_path):
    path = tmp_path / "c.sg"
    words = ["create", path, short(1), cookie(2, "Z"), short(3)[1:33], "--name", "caf\u00e9", "--attrib", "K=a=b", "--attrib", "L=", "--permanent"]
    assert "would be made" in expect(0, "container", *words, "--dry-run") and not path.exists()
    expect(0, "container", *words)
    parameters = ["OLEDB:Rev 1", "Name:caf\u00e9", "Permanent:true", "K:a=b", "L:"]
    wanted = container_text([[cookie(1)], [cookie(2, "Z")], [cookie(3, "U")]], parameters=parameters)
    assert path.read_bytes() == wanted.replace(b'"4"', b'"41"')
    assert listing(path) == [{"Cookie": cookie(1)}, {"Cookie": cookie(2, "Z")}, {"Cookie": cookie(3, "U")}]
    assert facts(path) == {
        "kind": "container", "name": "caf\u00e9", "permanent": True, "items": 3, "cookie": None, "cookieFromFilename": None,
        "attributes": [{"name": "K", "value": "a=b"}, {"name": "L", "value": ""}], "itemAttributes": [],
    }  # fmt: skip
    assert "--in-place" in expect(2, "container", "create", path, "--name", "new")
    expect(0, "container", "create", path, "--name", "new", "--in-place")
    assert listing(path) == [] and not facts(path)["permanent"]
    assert leftovers(tmp_path) == [] and len(list(tmp_path.iterdir())) == 1


def test_names_that_a_file_does_not_hold_are_told(tmp_path):
    said = expect(1, "container", "create", tmp_path / "c.sg", "--name", ' a"b', "--attrib", "K= v")
    assert 'Name: " a"b" comes back from a table file as "ab"' in said and 'K: " v"' in said


def test_own_cookie(tmp_path):
    path = tmp_path / f"{uuid.UUID(int=5)}.RAK"
    expect(0, "container", "create", path, "--name", "n")
    assert (facts(path)["cookie"], facts(path)["cookieFromFilename"]) == (cookie(5, "U"), cookie(5, "B"))
    text = run("container", "info", path).stdout.decode()
    assert cookie(5, "U") in text and cookie(5, "B") in text


@pytest.mark.parametrize(
    "words, told",
    [
        (["create", "new", "--name", "n", "--attrib", "novalue"], "KEY=VALUE"),
        (["create", "new", "--name", "n", "--attrib", "=x"], "KEY=VALUE"),
        (["create", "new", "--name", "n", "--attrib", "name=x"], "options of their own"),
        (["create", "new", "--name", "n", "--attrib", "oledb=x"], "file format's own"),
        (["create", "new", "--name", "n", "--attrib", "a:b=x"], "colon"),
        (["create", "new", "--name", "n", "--attrib", "a=1", "--attrib", "A=1"], "given twice"),
        (["create", "new", "--name", "n", *[w for i in range(38) for w in ("--attrib", f"k{i}=v")]], "no room for more than 37"),
        (["create", "new", "--name", "n", "rubbish"], '"rubbish" is no cookie'),
        (["create", "new"], "--name is required"),
        (["add", "c.sg"], "nothing to add"),
        (["remove", "c.sg"], "nothing to remove"),
        (["remove", "c.sg", "rubbish"], '"rubbish" is no cookie'),
        (["remove", "c.sg", "--from", "c.sg", "--all", "--sort", "Scene"], 'no field "Scene"'),
        (["remove", "c.sg", "--from", "c.sg", "--sort", "n"], "which rows?"),
        (["add", "c.sg", short(1)[:-1]], "is no cookie"),
        (["add", "c.sg", cookie(9), "--where", "Scene=1"], "--where requires --from"),
        (["add", "c.sg", "--from", "c.sg", "--sort", "Scene"], 'no field "Scene"'),
        (["add", "c.sg", "--from", "c.sg", "--fields", "n"], "--fields"),
        (["create", "new", "--name", "n", "--from", "c.sg", "--sort", "Scene"], "new: not made"),
        (["create", "new", "--name", "n", "--tagged"], "--tagged requires --from"),
        (["add", "-", "--from", "-"], "only once"),
        ([], '"olelog container --help"'),
    ],
)
def test_what_makes_no_sense(container, words, told):
    before = container.read_bytes()
    assert told in expect(2, "container", *words, cwd=container.parent)
    assert container.read_bytes() == before and len(list(container.parent.iterdir())) == 1


def test_add_keeps_what_was_there(container):
    before = container.read_bytes()
    words = ["add", container, cookie(3), short(2), cookie(3), cookie(4, "I"), cookie(2, "B")]
    told = expect(1, "container", *words, "--dry-run")
    assert "2 items would be added" in told and container.read_bytes() == before
    said = expect(1, "container", *words)
    assert "2 items added, 4 in all" in said
    assert f"1 item in it already, not added again: {cookie(2)}" in said and "1 item given more than once" in said
    assert "of kind I" in said
    added = f'"","{cookie(3)}",""\r\n"","{cookie(2, "B")}",""\r\n'.encode()
    assert container.read_bytes() == before.replace(b'"4","4","4"', b'"7","41","4"') + added
    inode = container.stat().st_ino
    assert "nothing was added" in expect(0, "container", "add", container, cookie(2))
    assert container.stat().st_ino == inode and leftovers(container.parent) == []


def test_remove(container):
    """Every row of an item goes, whatever attributes it has; what stays keeps its tag."""
    rows = [[cookie(n % 4), str(n), str(n % 3)] for n in range(1, 12)]
    container.write_bytes(container_text(rows, ["Cookie", "n", "Tag"]))
    before = listing(container)
    assert "1 item would be removed" in expect(0, "container", "remove", container, cookie(1), "--dry-run")
    assert listing(container) == before
    said = expect(1, "container", "remove", container, short(1), cookie(3), cookie(3), cookie(1, "B"))
    assert "2 items removed, 5 in all" in said and f"1 item not in it: {cookie(1, 'B')}" in said
    assert listing(container) == [item for item in before if item["Cookie"] in (cookie(0), cookie(2))]
    # The items of a table's rows, and nothing where none is left to go.
    table = write_table(container.parent / "t.odb", ["Name", "Cookie"], [["a", cookie(2)], ["b", cookie(3)]])
    expect(0, "container", "remove", container, "--from", table, "--where", "Name=a")
    said = expect(1, "container", "remove", container, "--from", table, "--all")
    assert f"{cookie(2)} (a), {cookie(3)} (b)" in said and "nothing was removed" in said
    assert {item["Cookie"] for item in listing(container)} == {cookie(0)}
    expect(0, "container", "remove", container, cookie(0))
    assert listing(container) == [] and info(container)["kind"] == "container"
    expect(3, "container", "remove", container, "--all", "--from", write_table(container.parent / "u.odb", ["Cookie"], [[""]]))
    assert leftovers(container.parent) == []


def test_add_through_pipes(container):
    before = container.read_bytes()
    got = run("container", "add", "-", cookie(3), stdin=before)
    assert got.returncode == 0 and got.stdout.endswith(f'"","{cookie(3)}",""\r\n'.encode())
    assert b'"x, y"' in run("container", "add", "-", cookie(2), stdin=before).stdout  # unchanged, and still there


def test_add_chosen_rows(container):
    rows = [[str(n), f"{n % 3}", short(n) if n % 2 else cookie(n)] for n in range(1, 40)]
    table = write_table(container.parent / "t.odb", ["Name", "Scene", "Cookie"], [*rows, ["x", "9", ""], ["y", "8", "rubbish"]])
    expect(0, "container", "add", container, cookie(50), "--from", table, "--where", "Scene=2", "--sort", "Name", "--descending")
    chosen = sorted((n for n in range(1, 40) if n % 3 == 2 and n != 2), key=str, reverse=True)
    assert [item["cookie"] for item in listing(container)] == [cookie(n) for n in [1, 2, 50, *chosen]]
    before = container.read_bytes()
    for choice in ("Name=x", "Scene=?"):
        said = expect(3, "container", "add", container, "--from", table, "--where", choice)
        assert f"{table}:45: the row has no cookie" in said and "olelog identify TABLE" in said
    said = expect(3, "container", "add", container, "--from", table, "--where", "Name=y")
    assert f'{table}:46: Cookie: "rubbish" is no cookie' in said
    assert "no row is selected" in expect(1, "container", "add", container, "--from", table, "--where", "Name=none")
    expect(0, "container", "add", container, "--from", container)
    table.write_bytes(table.read_bytes() + b'"cut"')
    assert f"{table}: line 47" in expect(3, "container", "add", container, "--from", table, "--where", "Scene=1")
    assert container.read_bytes() == before


def test_create_of_chosen_rows(tmp_path):
    rows = [[f"{n}A, take", f"{n % 2}", cookie(n)] for n in range(1, 9)]
    table = write_table(tmp_path / "t.odb", ["Name", "Scene", "Cookie"], [*rows, ["", "1", cookie(9)], ["x", "5", ""]])
    words = ["create", tmp_path / "c.sg", "--name", "n", cookie(20), "--from", table, "--where"]
    named = f'{cookie(20)}, "{cookie(8)} (8A, take)", "{cookie(6)} (6A, take)"'
    told = expect(0, "container", *words, "Scene=0", "--sort", "Name", "--descending", "--limit", "2", "--dry-run")
    assert told.endswith(f'would be made: container "n" with 3 items: {named}\n')
    assert "no row is selected" in expect(1, "container", *words, "Scene=7")
    assert f"{table}:15: the row has no cookie" in expect(3, "container", *words, "Scene=5")
    assert list(tmp_path.iterdir()) == [table]
    expect(0, "container", *words, "Scene=1", "--sort", "Name")
    assert [item["Cookie"] for item in listing(tmp_path / "c.sg")] == [cookie(n) for n in (20, 1, 3, 5, 7, 9)]
    told = expect(0, "container", "add", tmp_path / "c.sg", "--from", table, "--limit", "2", "--dry-run")
    assert f'not added again: "{cookie(1)} (1A, take)"\n' in told and f'1 item would be added: "{cookie(2)} (2A, take)"\n' in told


@pytest.mark.parametrize(
    "text, told",
    [
        (container_text([[short(1)], ["rubbish"]]), 'c.sg:8: the item\'s cookie cannot be read: "rubbish"'),
        (container_text([[short(1)[1:33]]]), "c.sg:7: the item's cookie cannot be read: \"" + short(1)[1:33] + '"; the letter'),
        (container_text([["", "x"]], ["Cookie", "n"]), "c.sg:7: the item has no cookie"),
        (container_text([[cookie(1, "I")]]), "c.sg:7: "),
        (container_text([[cookie(1), "x"]], ["Cookie", "n"]) + b'"cut', "c.sg: line 8: "),
        (b"", "the file is empty"),
        (None, "No such file"),
    ],
)
def test_bad_containers(tmp_path, text, told):
    path = tmp_path / "c.sg"
    if text is not None:
        path.write_bytes(text)
    for words in (["list"], ["info"], ["list", "--json"], ["add", cookie(9)]):
        assert told in expect(3, "container", words[0], path, *words[1:])
    assert [p.read_bytes() for p in tmp_path.iterdir()] == ([] if text is None else [text])


@pytest.mark.parametrize(
    "columns, parameters, lacks",
    [
        (["Name", "Cookie"], ["OLEDB:Rev 1", "FPS:25"], 'no parameter Name or Permanent; olelog show'),
        (["Name"], ["OLEDB:Rev 1", "Name:n"], 'no column Cookie; olelog show'),
    ],
)
def test_plain_tables_are_no_containers(tmp_path, columns, parameters, lacks):
    table = write_table(tmp_path / "t.odb", columns, [[""] * len(columns)], parameters)
    before = table.read_bytes()
    for words in (["list"], ["info"], ["add", cookie(9)], ["add", "--from", table], ["add", cookie(9), "--dry-run"]):
        said = expect(2, "container", words[0], table, *words[1:])
        assert f"{table}: is a table, but no container: it has {lacks}" in said
    assert table.read_bytes() == before


def test_list_with_a_table(container):
    rows = [["x\ny", "31A", short(2), "R1"], ["later", "9", cookie(2), "R2"], ["b", "2", cookie(2, "B"), "R3"], ["c", "", "", ""]]
    table = write_table(container.parent / "t.odb", ["name", "Shot", "Cookie", "Reel"], rows)
    expect(0, "container", "add", container, cookie(3), cookie(2, "B"))
    before = container.read_bytes()
    items = [{"Note": note, "cookie": c, "n": n} for note, c, n in [("x, y", cookie(1), ""), ('say "x"', cookie(2), "7"), ("", cookie(3), ""), ("", cookie(2, "B"), "")]]

    def told(*words, code=0):
        result = run("container", "list", container, "--with", table, *words)
        assert result.returncode == code, messages(result)
        return result.stdout.decode(), messages(result)

    text, said = told("--json")
    found = [("", ""), ("x\ny", "31A"), ("", ""), ("b", "2")]
    assert json.loads(text) == [{**item, "name": name, "Shot": shot} for item, (name, shot) in zip(items, found)]
    assert said == f"olelog: {table}: no row for 2 of 4 items\n"
    lines = told("--fields", "reel,Name")[0].splitlines()
    assert lines[0].split() == ["Note", "cookie", "n", "Reel", "name"] and lines[3].split()[-3:] == ["7", "R1", r"x\ny"]
    assert 'there is no field "Rel"; did you mean "Reel"?' in told("--fields", "Rel", code=2)[1]
    assert "--fields requires --with" in expect(2, "container", "list", container, "--fields", "Name")
    assert "only once" in expect(2, "container", "list", "-", "--with", "-")
    assert "No such file" in expect(3, "container", "list", container, "--with", "none.odb")
    table.write_bytes(table.read_bytes() + b'"cut"')
    assert json.loads(told("--json", code=1)[0])[3]["name"] == "b"
    assert "has no field Name, Scene or Shot" in expect(2, "container", "list", container, "--with", container)
    own = expect(0, "container", "list", container, "--with", container, "--fields", "n,cookie")
    assert own == "" and listing(container)[1] == items[1] and container.read_bytes() == before


def test_containers_cut_anywhere(tmp_path):
    path = tmp_path / "c.sg"
    whole = container_text([[cookie(1), "a"], [cookie(2), "b"]], ["Cookie", "n"])
    known = [{"Cookie": cookie(1), "n": "a"}, {"Cookie": cookie(2), "n": "b"}]
    for length in range(len(whole)):
        path.write_bytes(whole[:length])
        result = run("container", "list", path, "--json")
        assert result.returncode == 3 or json.loads(result.stdout) in (known[:0], known[:1], known), whole[:length]
        code = run("container", "add", path, cookie(3)).returncode
        assert code == result.returncode and (code == 0 or path.read_bytes() == whole[:length])


def test_writing_that_fails(container):
    before = container.read_bytes()
    full = lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (2000, 2000))
    many = [cookie(n) for n in range(100, 200)]
    for words in (["add", container], ["create", container, "--in-place", "--name", "n"], ["create", container.parent / "new.sg", "--name", "n"]):
        assert "cannot be written: File too large" in expect(3, "container", *words, *many, preexec_fn=full)
    for words in ([], ["--dry-run"]):
        assert "cannot be written" in expect(3, "container", "create", container.parent / "no" / "c.sg", "--name", "n", *words)
    assert container.read_bytes() == before and list(container.parent.iterdir()) == [container]


def test_left_over(container):
    beside = container.parent / "c.sg.tmp"
    shutil.copy(container, beside)
    for words in (["list"], ["info"], ["add", cookie(2)]):
        said = expect(0, "container", words[0], container, *words[1:])
        assert f"(2 items); to restore it in place of {container}: mv {beside} {container}" in said
    container.unlink()
    for code, words in [(3, ["list"]), (3, ["info"]), (3, ["add", cookie(2)]), (2, ["create", "--name", "n"])]:
        said = expect(code, "container", words[0], container, *words[1:])
        assert f"(2 items), perhaps the only copy of {container}; to restore it: mv {beside} {container}" in said
    assert list(container.parent.iterdir()) == [beside]
    odd = container.parent / "it's"
    (container.parent / "it's.tmp").write_bytes(b"rubbish")
    assert r"(no container that can be read)" in expect(3, "container", "list", odd)
    os.system(expect(3, "container", "list", odd).split("to restore it: ")[1])
    assert odd.read_bytes() == b"rubbish"


def test_info_tells_containers_from_tables(container, tmp_path):
    got = info(container)
    assert (got["kind"], got["name"], got["items"], got["rows"], len(got["columns"])) == ("container", "old", 2, 2, 3)
    assert run("info", container).stdout.decode().startswith(f'{container}: container "old", 2 items, 3 columns\n')
    assert info(write_table(tmp_path / "t.odb", ["Cookie"], []))["kind"] == "table"
    assert info(write_table(tmp_path / "p.odb", ["Cookie"], [], ["OLEDB:Rev 1", "permanent:no"]))["kind"] == "container"
    assert info(write_table(tmp_path / "n.odb", ["Name"], [], ["OLEDB:Rev 1", "Name:n"]))["kind"] == "table"


def test_examples_of_the_help(tmp_path):
    shutil.copy(os.path.join(ROOT, "samples", "day-12.ale"), tmp_path)
    for command in ("create", "add", "list", "info"):
        text = run("container", command, "--help").stdout.decode()
        examples = re.findall("^  (olelog .*)$", text.split("Example:\n")[1], re.MULTILINE)
        assert examples and text.endswith(examples[-1] + "\n")
        for example in examples:
            if shlex.split(example)[1] == "import":  # a table with identifiers is not written over
                (tmp_path / "day-12.odb").unlink(missing_ok=True)
            expect(0, *shlex.split(example)[1:], cwd=tmp_path)
    assert len(listing(tmp_path / "selects.sg")) == 1 + len([r for r in csv_rows(tmp_path / "day-12.odb") if "31A" in r["Scene"]])
