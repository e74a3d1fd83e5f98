#!/usr/bin/env python3
"""Makes a program of the C++ that a page shows, so that it is compiled, and runs.

Includes, classes and static functions stand in the program as they are: it has no others. The other
blocks of the section "A first program" are one function together, in their order; each further one
becomes a function that gets a table and a view of all its rows.

usage: snippets.py PAGE.md OUT.cpp
"""

import re
import sys

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


FIRST = "## A first program"
AS_IT_IS = r"(///.*\n)*(#include|class |struct |static )"


def blocks(page):
    """Line number, section and text of each C++ block."""
    with open(page, encoding="utf-8") as file:
        text = file.read()
    for found in re.finditer(r"^```cpp\n(.*?)^```$", text, re.DOTALL | re.MULTILINE):
        before = text[: found.start(1)]
        section = re.findall(r"^## .*", before, re.MULTILINE)[-1]
        yield before.count("\n") + 1, section, found.group(1)


def main(page, out):
    top, first, rest, calls = [], [], [], []
    for line, section, block in blocks(page):
        placed = f'#line {line} "{page}"\n{block}'
        if re.match(AS_IT_IS, block):
            top.append(placed)
        elif section == FIRST:
            first.append(placed)
        else:
            calls.append(f"    onNewTable(shown{line});\n")
            rest.append(f"static void shown{line}([[maybe_unused]] oledb& table, [[maybe_unused]] const ODBView& view) {{\n{placed}}}\n")
    assert first and calls, f"{page} shows too little code"
    with open(out, "w", encoding="utf-8") as file:
        file.write("".join(top))
        file.write("".join(["static int firstProgram(int argc, char** argv) {\n", *first, "}\n", *rest]))
        file.write(f'#line 1 "{out}"\nstatic {MAIN}')
        file.write("int main(int argc, char** argv) {\n    const int status = firstProgram(argc, argv);\n")
        file.write("".join([*calls, "    return status;\n}\n"]))


if __name__ == "__main__":
    main(*sys.argv[1:])
