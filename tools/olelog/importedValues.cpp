#include "importedValues.h"

#include "shownText.h"
#include "tarn/StringFunctions.h"

#include <algorithm>
#include <fmt/format.h>

namespace {

constexpr std::string_view keyNumberTitle = "KN Start";
constexpr std::string_view filmLabelTitle = "film label_std"; // in any case

/// What of a key number is no matter of form.
std::string essence(std::string_view keyNumber) {
    std::string kept{keyNumber};
    std::erase_if(kept, [](char c) { return c == ' ' || c == '-' || c == '_'; });
    std::replace(kept.begin(), kept.end(), '&', '+');
    return kept;
}

bool isFilmLabel(const LogHead& head, std::string_view title) {
    return head.filmFormat.line != 0 && compareIgnoringCase(title, filmLabelTitle) == 0;
}

} // namespace

bool changesValues(const LogHead& head, std::string_view title) {
    return title == keyNumberTitle || isFilmLabel(head, title);
}

std::optional<ImportedValue> importedValue(const LogHead& head, const std::string& title,
                                           std::string_view piece, std::string_view value) {
    if (isFilmLabel(head, title)) {
        return ImportedValue{false,
                             fmt::format("{}: {} becomes {}, for line {} sets it: {}", shown(title),
                                         inQuotes(piece), inQuotes(value), head.filmFormat.line,
                                         inQuotes(head.filmFormat.text))};
    }
    if (title != keyNumberTitle) {
        return std::nullopt;
    }
    const bool whole = essence(piece) == essence(value);
    return ImportedValue{whole, fmt::format("{}: {} becomes {}: key numbers are kept in 15 "
                                            "characters{}",
                                            shown(title), inQuotes(piece), inQuotes(value),
                                            whole ? "" : ", and this one does not fit")};
}
