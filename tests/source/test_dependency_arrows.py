"""The check of the dependencies finds what it promises to find, and nothing else."""

import os
import sys

import pytest

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
import dependency_arrows  # noqa: E402

HEADERS = [
    "platform/tarn/Text.h",
    "ole/ole.h",
    "ole/Tarn/Vector.h",
    "ole/fieldspec/SExpr.h",
    "ole/oledb/DBFieldTypes.h",
    "ole/oledb/ODBBase.h",
    "ole/oledb/oledb.h",
    "ole/interchange/ALE.h",
    "tools/olelog/show.h",
    "tests/model/Model.h",
]


def run(tmp_path, capsys, source, code):
    """Exit status and printed faults for a small project with the one given source."""
    for path in HEADERS + [source]:
        (tmp_path / path).parent.mkdir(parents=True, exist_ok=True)
        (tmp_path / path).write_text("")
    (tmp_path / source).write_text(code)
    status = dependency_arrows.main([str(tmp_path)])
    lines = capsys.readouterr().out.splitlines()
    return status, lines[:-1]


BROKEN = [
    ("platform/tarn/a.cpp", '#include "ole/ole.h"'),
    ("platform/tarn/a.cpp", '#include "olelog/show.h"'),
    ("platform/tarn/a.cpp", '#include "model/Model.h"'),
    ("ole/Tarn/a.h", '#include "ole/oledb/oledb.h"'),
    ("ole/fieldspec/a.cpp", '#include "ole/oledb/oledb.h"'),
    ("ole/fieldspec/a.cpp", '#include "../interchange/ALE.h"'),
    ("ole/oledb/a.cpp", "#include <ole/interchange/ALE.h>"),
    ("ole/oledb/ODBBase.h", '#include "ole/fieldspec/SExpr.h"'),
    ("ole/oledb/ODBBase.h", '#include "oledb.h"'),
    ("ole/interchange/a.cpp", '#include "olelog/show.h"'),
    ("ole/interchange/a.cpp", '#include "missing.h"'),
    ("ole/oledb/a.cpp", "#include <fstream>"),
    ("ole/oledb/a.cpp", "  #  include  <sys/stat.h> // why"),
    ("ole/oledb/a.cpp", "#include <unistd.h>"),
    ("ole/oledb/a.cpp", "#include <cctype>"),
    ("ole/oledb/a.cpp", 'void f() { printf("x"); }'),
    ("ole/oledb/a.cpp", 'void f() { std::puts ("x"); }'),
    ("ole/oledb/a.cpp", "void f(bool b) { assert(b); }"),
    ("ole/oledb/a.cpp", "void f() { std::abort(); }"),
    ("ole/oledb/a.cpp", 'void f() { std::cerr << "x"; }'),
    ("ole/oledb/a.cpp", "int n = 1'000; void f(bool b) { assert(b == ('x' > 0)); }"),
    ("tools/olelog/a.cpp", '#include "model/Model.h"'),
    ("examples/a.cpp", '#include "olelog/show.h"'),
]

SOUND = [
    ("platform/tarn/a.cpp", '#include "tarn/Text.h"\n#include <cstdio>\nvoid f() { printf("x"); }'),
    ("ole/fieldspec/a.cpp", '#include "ole/oledb/ODBBase.h"\n#include "tarn/Text.h"'),
    ("ole/oledb/a.cpp", '#include "oledb.h"\n#include "ole/fieldspec/SExpr.h"\n#include <vector>'),
    ("ole/interchange/a.cpp", '#include "ole/oledb/oledb.h"\n#include <algorithm>'),
    ("ole/oledb/a.cpp", 'void f() { tarn::console_printf("printf(x)"); }'),
    ("ole/oledb/a.cpp", "// #include <fstream>\n/* abort\n   puts( */\nstatic_assert(true);"),
    ("ole/oledb/a.cpp", '// it\'s\nconst char* s = "abort"; const char* r = R"(cerr " puts()";'),
    ("tools/olelog/a.cpp", '#include "ole/interchange/ALE.h"\n#include <fstream>'),
    ("examples/a.cpp", '#include "ole/interchange/ALE.h"\n#include <cstdio>'),
]


@pytest.mark.parametrize("source, code", BROKEN)
def test_a_broken_rule_is_found(tmp_path, capsys, source, code):
    status, lines = run(tmp_path, capsys, source, code + "\n")
    assert status == 1
    assert len(lines) == 1
    assert lines[0].startswith(f"{source}:1: ")


@pytest.mark.parametrize("source, code", SOUND)
def test_sound_code_passes(tmp_path, capsys, source, code):
    assert run(tmp_path, capsys, source, code + "\n") == (0, [])


def test_the_line_is_the_line_of_the_fault(tmp_path, capsys):
    code = "/* one\n two */\nint x;\nvoid f() { abort(); }\n"
    status, lines = run(tmp_path, capsys, "ole/oledb/a.cpp", code)
    assert (status, [line.split(":")[1] for line in lines]) == (1, ["4"])


def test_an_empty_project_is_no_success(tmp_path, capsys):
    assert dependency_arrows.main([str(tmp_path)]) == 2
