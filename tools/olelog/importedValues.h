#pragma once

#include "LogFile.h"

#include <optional>
#include <string>
#include <string_view>

/// What an import makes of a value by itself.
struct ImportedValue {
    bool kept;        ///< only its form is another
    std::string what; ///< for people
};

/// The titles of columns of which values do not go into the table as they stand: film key numbers
/// get a form of their own, and the heading's film format goes over any label.
bool changesValues(const LogHead& head, std::string_view title);

/// What became of a value that changed in such a column; nothing of one in any other.
std::optional<ImportedValue> importedValue(const LogHead& head, const std::string& title,
                                           std::string_view piece, std::string_view value);
