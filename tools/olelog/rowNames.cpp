// Rows as messages name them: a number alone is hard to find where tables are shown without any.

#include "rowNames.h"

#include "ole/oledb/oledb.h"
#include "shownText.h"
#include "tableValues.h"

#include <fmt/format.h>
#include <string_view>

std::string calledBy(oledb& table, unsigned row) {
    const int named = table.get_fieldnum("Name");
    std::string_view text = named >= 0 ? valueOf(table, row, static_cast<unsigned>(named)) : "";
    for (unsigned col = 0; text.empty() && col < table.get_num_fields(); ++col) {
        text = valueOf(table, row, col);
    }
    return inQuotes(text);
}

std::string rowAndName(oledb& table, unsigned row) {
    return fmt::format("row {}, {}", row + 1, calledBy(table, row));
}
