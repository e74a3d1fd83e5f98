// Rows that a table holds already, as where a log is appended twice.

#include "repeatedRows.h"

#include "ole/oledb/oledb.h"
#include "tableValues.h"

#include <string>
#include <unordered_set>

namespace {

/// What logs say of a row: its cookie and tag come from elsewhere.
std::vector<unsigned> comparedColumns(const oledb& table) {
    std::vector<unsigned> columns;
    for (unsigned col = 0; col < table.get_num_fields(); ++col) {
        const auto number = static_cast<int>(col);
        if (number != table.get_fieldnum("Cookie") && number != table.get_fieldnum("Tag")) {
            columns.push_back(col);
        }
    }
    return columns;
}

/// A row's values as one text; empty where it has none. Values hold no zero bytes.
std::string textOf(const oledb& table, unsigned row, const std::vector<unsigned>& columns) {
    std::string text;
    for (const unsigned col : columns) {
        text += valueOf(table, row, col);
        text += '\0';
    }
    return text.size() == columns.size() ? "" : text;
}

} // namespace

std::vector<unsigned> repeatedRows(const oledb& table, unsigned end, const oledb& added,
                                   unsigned first) {
    const std::vector<unsigned> columns = comparedColumns(table);
    std::unordered_set<std::string> known;
    for (unsigned row = 0; row < end; ++row) {
        known.insert(textOf(table, row, columns));
    }
    std::vector<unsigned> repeated;
    for (unsigned row = first; row < added.get_num_records(); ++row) {
        const std::string text = textOf(added, row, columns);
        if (!text.empty() && known.contains(text)) {
            repeated.push_back(row);
        }
    }
    return repeated;
}
