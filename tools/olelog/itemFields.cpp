// Items as a person knows them. A container holds cookies alone; the table that they came from
// tells the names of the takes.

#include "itemFields.h"

#include "Command.h"
#include "fieldNames.h"
#include "messages.h"
#include "tableFile.h"

#include <algorithm>
#include <optional>
#include <vector>

namespace {

/// The row of each item, where it has one.
using Rows = std::vector<std::optional<unsigned>>;

std::vector<unsigned> wellKnownColumns(const oledb& table) {
    std::vector<unsigned> columns;
    for (const char* const name : {"Name", "Scene", "Shot"}) {
        const int col = table.get_fieldnum(name);
        if (col >= 0) {
            columns.push_back(static_cast<unsigned>(col));
        }
    }
    return columns;
}

std::optional<std::vector<unsigned>> chosenColumns(oledb& table, const ItemRows& asked) {
    if (!asked.fields.empty()) {
        return columnsOf(table, "--fields", asked.fields);
    }
    std::vector<unsigned> columns = wellKnownColumns(table);
    if (columns.empty()) {
        say("{}: has no field Name, Scene or Shot; --fields names those to show", asked.table);
        return std::nullopt;
    }
    return columns;
}

/// Adds a text column, with a number behind its name where an attribute of the items has that name
/// already; -1 where there is no room.
int addColumn(oledb& table, const std::string& wanted) {
    std::string name = wanted;
    for (int n = 2; table.get_fieldnum(name.c_str()) >= 0; ++n) {
        name = wanted + " " + std::to_string(n);
    }
    return table.addField({name.c_str(), DBFieldTypes::TEXT});
}

Rows rowsOf(const LoadedContainer& container, const oledb& table) {
    Rows rows(container.table->get_num_records());
    for (unsigned item = 0; item < rows.size(); ++item) {
        const auto col = static_cast<int>(container.cookieCol);
        const int row = table.getRowIndexByID({container.table->get_field(item, col), true});
        if (row >= 0) {
            rows[item] = static_cast<unsigned>(row);
        }
    }
    return rows;
}

void fillColumn(oledb& items, unsigned col, const oledb& table, unsigned from, const Rows& rows) {
    for (unsigned item = 0; item < rows.size(); ++item) {
        if (rows[item]) {
            items.set_field(item, col, table.get_field(*rows[item], static_cast<int>(from)));
        }
    }
}

void tellMissing(const Rows& rows, const InputFile& file) {
    const auto missing = std::count(rows.begin(), rows.end(), std::nullopt);
    if (missing != 0) {
        say("{}: no row for {} of {}", file.name(), missing, counted(rows.size(), "item"));
    }
}

} // namespace

int addItemFields(LoadedContainer& container, const ItemRows& asked) {
    const auto file = InputFile::open(asked.table);
    const LoadedTable loaded = file ? loadTable(*file) : LoadedTable{};
    if (!loaded.table) {
        return exitFailure;
    }
    const auto columns = chosenColumns(*loaded.table, asked);
    if (!columns) {
        return exitUsage;
    }
    const auto rows = rowsOf(container, *loaded.table);
    for (const unsigned col : *columns) {
        const int added = addColumn(*container.table, loaded.table->get_fieldname(col));
        if (added < 0) {
            say("{}: no room for more columns beside the items", file->name());
            return exitUsage;
        }
        fillColumn(*container.table, static_cast<unsigned>(added), *loaded.table, col, rows);
    }
    tellMissing(rows, *file);
    return loaded.whole ? exitFine : exitFindings;
}
