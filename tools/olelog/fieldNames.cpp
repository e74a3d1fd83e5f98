// Field names as people type them: in any case, in lists, with slips.

#include "fieldNames.h"

#include "check/knownTitles.h"
#include "messages.h"
#include "nearest.h"
#include "ole/interchange/ALE.h"
#include "ole/oledb/oledb.h"
#include "shownText.h"
#include "tarn/trimmed.h"

#include <algorithm>
#include <cstddef>

namespace {

bool isField(const oledb& table, const std::string& name) {
    return !name.empty() && table.get_fieldnum(name.c_str()) >= 0;
}

/// Whether a piece of a list is a field, or one to be left out.
bool namesField(const oledb& table, const std::string& piece) {
    return isField(table, piece) || (piece.starts_with('-') && isField(table, piece.substr(1)));
}

/// The field whose name comes nearest; "" when none is near.
std::string nearestField(oledb& table, const std::string& name) {
    std::vector<std::string> fields;
    for (unsigned col = 0; col < table.get_num_fields(); ++col) {
        fields.emplace_back(table.get_fieldname(col));
    }
    return nearestOf(name, fields);
}

/// "a log's Take is the field Shot", where an import sends a log's column of this name to another
/// field: people ask for what they read in the log. "" where it does not. A title is found in any
/// case.
std::string whereTitleWent(oledb& table, const std::string& title) {
    for (const std::string& spelling : {title, nearKnownTitle(title)}) {
        const int col = ALE::findODBColumnFor(table, spelling.c_str());
        if (!spelling.empty() && col >= 0) {
            return fmt::format("a log's {} is the field {}", spelling,
                               table.get_fieldname(static_cast<unsigned>(col)));
        }
    }
    return {};
}

/// What helps a person who named a field that there is not.
std::string hintFor(oledb& table, const std::string& name) {
    if (std::string went = whereTitleWent(table, name); !went.empty()) {
        return went;
    }
    const std::string nearest = nearestField(table, name);
    return nearest.empty() ? "olelog info lists those of a table"
                           : "did you mean " + inQuotes(nearest) + "?";
}

std::string pieceOf(std::string_view list, std::size_t start, std::size_t end) {
    return std::string{Tarn::trimmed(list.substr(start, end - start))};
}

/// Where the name that begins at `start` ends: at the first comma behind which it is a field's,
/// else at the first of all.
std::size_t endOfName(const oledb& table, const std::string& list, std::size_t start) {
    const std::size_t first = std::min(list.find(',', start), list.size());
    for (std::size_t end = first; end < list.size();
         end = std::min(list.find(',', end + 1), list.size())) {
        if (namesField(table, pieceOf(list, start, end))) {
            return end;
        }
    }
    return namesField(table, pieceOf(list, start, list.size())) ? list.size() : first;
}

} // namespace

std::optional<unsigned> columnOf(oledb& table, std::string_view option, const std::string& name) {
    if (isField(table, name)) {
        return static_cast<unsigned>(table.get_fieldnum(name.c_str()));
    }
    say("{}: there is no field {}; {}", option, inQuotes(name), hintFor(table, name));
    return std::nullopt;
}

std::vector<std::string> namesOfList(const oledb& table, const std::string& list) {
    std::vector<std::string> names;
    for (std::size_t start = 0; start <= list.size();) {
        const std::size_t end = endOfName(table, list, start);
        names.push_back(pieceOf(list, start, end));
        start = end + 1;
    }
    return names;
}

std::optional<std::vector<unsigned>> columnsOf(oledb& table, std::string_view option,
                                               const std::string& list) {
    std::vector<unsigned> columns;
    for (const std::string& name : namesOfList(table, list)) {
        const auto col = columnOf(table, option, name);
        if (!col) {
            return std::nullopt;
        }
        columns.push_back(*col);
    }
    return columns;
}
