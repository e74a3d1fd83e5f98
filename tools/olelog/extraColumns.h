#pragma once

#include <map>
#include <string>
#include <utility>
#include <vector>

class oledb;
struct DBFieldDesc;

/// Columns that were added to a table for log columns that have no field there.
struct ExtraColumns {
    /// Titles that the import does not find its way from to their column: these have to be filled
    /// by hand. Column numbers by title.
    std::map<std::string, unsigned> filledByHand;
    /// Titles that cannot stand as they are in a table file, and the names that they got.
    std::vector<std::pair<std::string, std::string>> renamed;
    std::vector<std::string> noRoom; ///< titles for which the table file has no room
};

/// Adds a text column for each title, in order, as long as the table can be loaded from a file: at
/// most 255 columns, and names that fit into one line.
ExtraColumns addExtraColumns(oledb& table, const std::vector<std::string>& titles);

/// The number of the field's column, which is added where there is none; -1 where a table file has
/// no room for it.
int addFieldWithRoom(oledb& table, const DBFieldDesc& field);
