#pragma once

#include "ole/oledb/ODBBase.h"

#include <string_view>

/// A value of a table or view, "" where there is none; good until it is written.
inline std::string_view valueOf(const ODBBase& table, unsigned row, unsigned col) {
    const char* const value = table.get_field(row, static_cast<int>(col));
    return value ? value : "";
}

/// How many rows have a value in a column.
inline unsigned countFilled(const ODBBase& table, unsigned col) {
    unsigned filled = 0;
    for (unsigned row = 0; row < table.get_num_records(); ++row) {
        filled += valueOf(table, row, col).empty() ? 0 : 1;
    }
    return filled;
}
