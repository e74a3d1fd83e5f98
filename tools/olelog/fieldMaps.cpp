// The field map of a table, which its parameter keeps as a text of column numbers.

#include "fieldMaps.h"

#include "messages.h"
#include "ole/interchange/FieldMap.h"
#include "ole/oledb/oledb.h"
#include "selection.h"

#include <fmt/ranges.h>
#include <string>

namespace {

constexpr unsigned hiddenThatCanBeRead = 99;

std::vector<unsigned> visibleColumns(const FieldMap& map) {
    std::vector<unsigned> columns;
    for (int i = 0; i < map.numVisible(); ++i) {
        const int col = map.getVisibleFieldIndex(i);
        if (col >= 0) {
            columns.push_back(static_cast<unsigned>(col));
        }
    }
    return columns;
}

} // namespace

std::optional<std::vector<unsigned>> columnsOfStoredMap(oledb& table) {
    const char* const text = table.get_param_val(FieldMap::parameterName);
    if (!text || *text == '\0') {
        return std::nullopt;
    }
    return visibleColumns(FieldMap{emptyView(table)});
}

FieldMap mapOf(const ODBView& view, const std::vector<unsigned>& columns) {
    FieldMap map{view};
    map.clear();
    for (const unsigned col : columns) {
        map.append(view->get_fieldname(col), true);
    }
    return map;
}

bool keepMap(oledb& table, const std::vector<unsigned>& shown,
             const std::vector<unsigned>& hidden) {
    std::vector<std::string> entries;
    entries.reserve(shown.size() + hidden.size());
    for (const unsigned col : shown) {
        entries.push_back(std::to_string(col + 1));
    }
    for (const unsigned col : hidden) {
        if (col < hiddenThatCanBeRead) { // what is not in the map is not shown either
            entries.push_back("-" + std::to_string(col + 1));
        }
    }
    const std::string text = fmt::format("{}", fmt::join(entries, " "));
    if (table.add_param(FieldMap::parameterName, text.c_str()) != 0) {
        say("the table has {} parameters already, and there is no room for a field map",
            oledb::maxParams);
        return false;
    }
    if (visibleColumns(FieldMap{emptyView(table)}) != shown) {
        sayLine("a field map cannot keep these fields: it tells them apart by their names alone");
        return false;
    }
    return true;
}
