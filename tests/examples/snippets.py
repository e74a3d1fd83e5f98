#!/usr/bin/env python3
"""Makes a program of the C++ that a page shows, so that it is compiled, and runs.

Blocks that begin with an include or a class stand in the program as they are; each other one
becomes a function that gets a table and a view of all its rows.

usage: snippets.py PAGE.md OUT.cpp
"""

import re
import sys

HEAD = """\
#include "misc/CurrentProject.h"
#include "misc/diagnostics.h"
#include "misc/SystemWatchdog.h"
#include "ole/interchange/ALE.h"
#include "ole/interchange/CSV.h"
#include "ole/interchange/ODBFieldView.h"
#include "ole/oledb/messageTypes.h"
#include "ole/oledb/ODBViewCursor.h"
#include "ole/oledb/oledb.h"
#include "ole/oledb/TarnContainerFile.h"
#include "tarn/NotifyMsgTokenIterator.h"
#include "tarn/TextFile.h"
#include <cstdio>
#include <limits>
#include <memory>
#pragma GCC diagnostic ignored "-Wunused-variable"
#pragma GCC diagnostic ignored "-Wunused-but-set-variable"
"""

MAIN = """\
void onNewTable(void (*shown)(oledb&, const ODBView&)) {
    using enum DBFieldTypes::eType;
    const DBFieldDesc columns[] = {{"Cookie", TEXT}, {"Name", TEXT}, {"Scene", TEXT}, {"Notes", TEXT}, {}};
    oledb table{columns};
    for (unsigned row = 0; row < 5; ++row) {
        table.set_field(static_cast<unsigned>(table.add_records(1)), Cookie::random('U', 255));
        table.set_field(row, 2, row + 30);
    }
    const ODBView view{&table};
    view->displayAllRecords();
    shown(table, view);
}
"""


def blocks(page):
    """Line number and text of each C++ block."""
    with open(page, encoding="utf-8") as file:
        text = file.read()
    for found in re.finditer(r"^```cpp\n(.*?)^```$", text, re.DOTALL | re.MULTILINE):
        yield text.count("\n", 0, found.start(1)) + 1, found.group(1)


def main(page, out):
    code, calls = [HEAD], []
    for line, block in blocks(page):
        placed = f'#line {line} "{page}"\n{block}'
        if re.match(r"#include|class |struct ", block):
            code.append(placed)
            continue
        calls.append(f"    onNewTable(shown{line});\n")
        code.append(f"static void shown{line}([[maybe_unused]] oledb& table, [[maybe_unused]] const ODBView& view) {{\n{placed}}}\n")
    assert calls, f"{page} shows no code"
    code += [f'#line 1 "{out}"\nstatic ', MAIN, "int main() {\n", *calls, "}\n"]
    with open(out, "w", encoding="utf-8") as file:
        file.write("".join(code))


if __name__ == "__main__":
    main(*sys.argv[1:])
