// Rows that a table holds already, as where a log is appended twice.

#include "repeatedRows.h"

#include "ole/oledb/oledb.h"
#include "tableValues.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <unordered_set>

namespace {

/// A column of one table, and that of the same name in another.
struct ColumnPair {
    unsigned here;
    unsigned there;
};

bool holdsValues(const RowRange& rows, unsigned col) {
    for (unsigned row = rows.first; row < rows.end; ++row) {
        if (!valueOf(rows.table, row, col).empty()) {
            return true;
        }
    }
    return false;
}

bool isColumn(const oledb& table, unsigned col, const char* name) {
    return static_cast<int>(col) == table.get_fieldnum(name);
}

/// The columns in which rows hold values. Cookies and tags come from elsewhere than logs.
std::vector<unsigned> filledColumns(const RowRange& rows) {
    std::vector<unsigned> columns;
    for (unsigned col = 0; col < rows.table.get_num_fields(); ++col) {
        if (!isColumn(rows.table, col, "Cookie") && !isColumn(rows.table, col, "Tag") &&
            holdsValues(rows, col)) {
            columns.push_back(col);
        }
    }
    return columns;
}

/// Those of the columns that hold values in other rows too.
std::vector<ColumnPair> sharedColumns(const RowRange& rows, const std::vector<unsigned>& columns,
                                      const RowRange& others) {
    std::vector<ColumnPair> shared;
    for (const unsigned col : columns) {
        const int there = others.table.get_fieldnum(rows.table.get_fieldname(col));
        if (there >= 0 && holdsValues(others, static_cast<unsigned>(there))) {
            shared.push_back({col, static_cast<unsigned>(there)});
        }
    }
    return shared;
}

/// A row's values as one text; empty where it has none. Values hold no zero bytes.
std::string textOf(const oledb& table, unsigned row, const std::vector<ColumnPair>& columns,
                   unsigned ColumnPair::*side) {
    std::string text;
    for (const ColumnPair& pair : columns) {
        text += valueOf(table, row, pair.*side);
        text += '\0';
    }
    return text.size() == columns.size() ? "" : text;
}

std::unordered_set<std::string>
textsOf(const RowRange& rows, const std::vector<ColumnPair>& columns, unsigned ColumnPair::*side) {
    std::unordered_set<std::string> texts;
    for (unsigned row = rows.first; row < rows.end; ++row) {
        texts.insert(textOf(rows.table, row, columns, side));
    }
    return texts;
}

bool holdNames(const oledb& table, const std::vector<ColumnPair>& columns) {
    return std::any_of(columns.begin(), columns.end(), [&table](const ColumnPair& pair) {
        return isColumn(table, pair.here, "Name");
    });
}

} // namespace

std::vector<unsigned> repeatedRows(const RowRange& known, const RowRange& added) {
    const std::vector<unsigned> filled = filledColumns(known);
    const std::vector<ColumnPair> shared = sharedColumns(known, filled, added);
    const bool all = shared.size() == filled.size() && shared.size() == filledColumns(added).size();
    std::vector<unsigned> repeated;
    if (!all && !holdNames(known.table, shared)) {
        return repeated;
    }
    const auto texts = textsOf(known, shared, &ColumnPair::here);
    for (unsigned row = added.first; row < added.end; ++row) {
        const std::string text = textOf(added.table, row, shared, &ColumnPair::there);
        if (!text.empty() && texts.contains(text)) {
            repeated.push_back(row);
        }
    }
    return repeated;
}

unsigned countMissing(const RowRange& rows, const RowRange& others) {
    const std::vector<unsigned> filled = filledColumns(rows);
    const std::vector<ColumnPair> shared = sharedColumns(rows, filled, others);
    if (shared.size() != filled.size()) {
        return rows.end - rows.first;
    }
    const auto texts = textsOf(others, shared, &ColumnPair::there);
    unsigned missing = 0;
    for (unsigned row = rows.first; row < rows.end; ++row) {
        const std::string text = textOf(rows.table, row, shared, &ColumnPair::here);
        missing += text.empty() || texts.contains(text) ? 0 : 1;
    }
    return missing;
}
