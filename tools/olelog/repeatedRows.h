#pragma once

#include <vector>

class oledb;

/// Some rows of a table.
struct RowRange {
    oledb& table;
    unsigned first;
    unsigned end; ///< behind the last
};

/// The rows of `added` that have the same values as one of `known` in every column in which both
/// ranges hold values, found by name, the cookie and the tag aside: a log that is taken again, with
/// other columns, is noticed. Nothing is the same by such columns alone where the names of takes
/// are not among them. A row without values repeats nothing.
std::vector<unsigned> repeatedRows(const RowRange& known, const RowRange& added);

/// How many rows hold a value that no one row of `others` holds all of, the cookie and the tag
/// aside.
unsigned countMissing(const RowRange& rows, const RowRange& others);
