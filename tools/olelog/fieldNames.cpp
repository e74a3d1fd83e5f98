// Field names as people type them: in any case, in lists, with slips.

#include "fieldNames.h"

#include "messages.h"
#include "ole/oledb/oledb.h"
#include "shownText.h"
#include "tarn/Ascii.h"
#include "tarn/trimmed.h"

#include <algorithm>
#include <cstddef>
#include <numeric>
#include <utility>

namespace {

bool isField(const oledb& table, const std::string& name) {
    return !name.empty() && table.get_fieldnum(name.c_str()) >= 0;
}

/// Whether a piece of a list is a field, or one to be left out.
bool namesField(const oledb& table, const std::string& piece) {
    return isField(table, piece) || (piece.starts_with('-') && isField(table, piece.substr(1)));
}

/// How many characters have to be changed, put in or taken out to make one text the other.
std::size_t distance(std::string_view a, std::string_view b) {
    std::vector<std::size_t> costs(b.size() + 1);
    std::iota(costs.begin(), costs.end(), std::size_t{0});
    for (std::size_t i = 0; i < a.size(); ++i) {
        std::size_t diagonal = std::exchange(costs[0], i + 1);
        for (std::size_t j = 0; j < b.size(); ++j) {
            const std::size_t changed =
                diagonal + (Tarn::toLower(a[i]) == Tarn::toLower(b[j]) ? 0 : 1);
            diagonal = costs[j + 1];
            costs[j + 1] = std::min({changed, costs[j] + 1, diagonal + 1});
        }
    }
    return costs.back();
}

/// The field whose name comes nearest; "" when none is near.
std::string nearestField(oledb& table, const std::string& name) {
    std::string nearest;
    std::size_t least = name.size() < 3 ? 2 : std::max<std::size_t>(name.size() / 3, 2) + 1;
    for (unsigned col = 0; col < table.get_num_fields(); ++col) {
        const std::string field = table.get_fieldname(col);
        const std::size_t steps = distance(name, field);
        if (!field.empty() && steps < least) {
            least = steps;
            nearest = field;
        }
    }
    return nearest;
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
    const std::string nearest = nearestField(table, name);
    say("{}: there is no field {}; {}", option, inQuotes(name),
        nearest.empty() ? "olelog info lists those of a table"
                        : "did you mean " + inQuotes(nearest) + "?");
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
