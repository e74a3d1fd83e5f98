#pragma once

#include "ole/oledb/ODBView.h"

#include <optional>
#include <string>
#include <vector>

class oledb;

namespace CLI {
class App;
}

/// What a person asked to see of a table.
struct SelectionOptions {
    std::vector<std::string> where; ///< FIELD=PATTERN each
    std::string sort;
    bool descending = false;
    std::optional<std::string> fields;
    std::string unique;
    bool tagged = false;
    std::optional<int> limit;

    [[nodiscard]] bool narrows() const; ///< whether rows may be left out
};

/// The rows and columns that were asked for. The table must outlive it.
struct Selection {
    ODBView rows;
    std::vector<unsigned> columns; ///< in the order asked for; all where no fields were named
    std::vector<unsigned> leftOut; ///< those named with a minus sign
    bool columnsNamed = false;     ///< whether fields were asked for one by one
    bool rowsNarrowed = false;     ///< whether an option left out rows, or could have

    [[nodiscard]] bool isEmpty() const { return rows->count() == 0; }
    /// Whether rows were looked for, and there are none.
    [[nodiscard]] bool foundNothing() const { return rowsNarrowed && isEmpty(); }
};

/// The group under which the help of a command lists the options of a selection.
inline constexpr const char* selectionGroup = "Selection";

/// A view on a table, of no rows yet.
ODBView emptyView(oledb& table);

/// Adds the options that choose rows to a command.
void addRowOptions(CLI::App& command, SelectionOptions& options);

/// Adds all options of a selection to a command.
void addSelectionOptions(CLI::App& command, SelectionOptions& options);

/// Selects through a view; the table stays as it is, but for its sort key. Says what is wrong where
/// the options name no field of the table, and gives nothing.
std::optional<Selection> select(oledb& table, const SelectionOptions& options);
