// Items that are asked for on the command line.

#include "WantedItems.h"

#include "Command.h"
#include "ContainerTable.h"
#include "messages.h"
#include "ole/oledb/oledb.h"
#include "shownText.h"

#include <algorithm>
#include <fmt/format.h>

namespace {

constexpr std::size_t mostNamed = 5;

} // namespace

/// Takes a cookie's text; false where it is none. `place` is where it comes from, `name` what a
/// person calls the item.
bool WantedItems::takeCookie(const std::string& text, const std::string& place,
                             std::string_view name) {
    if (standsForNoItem(text)) {
        say("{}{} is of kind I, which stands for no item and is never stored", place,
            inQuotes(text));
        leftOut_ = true;
        return true;
    }
    const Cookie cookie{text.c_str(), false};
    if (!cookie.valid()) {
        return false;
    }
    repeated_ += cookies_.add(cookie) ? 0 : 1;
    if (!name.empty()) {
        names_.emplace(cookie, name);
    }
    return true;
}

bool WantedItems::takeArguments(const std::vector<std::string>& texts) {
    const auto bad = std::find_if_not(texts.begin(), texts.end(), [this](const std::string& text) {
        return takeCookie(text, "");
    });
    if (bad != texts.end()) {
        say("{} is no cookie: a kind letter, 32 hex digits and 2 of flags, hyphens between them as "
            "you like",
            inQuotes(*bad));
    }
    return bad == texts.end();
}

/// Takes the cookies of the chosen rows; says which have none, and then returns false.
bool WantedItems::takeRows(const LoadedTable& loaded, const InputFile& file, ODBViewRep& rows) {
    const int col = loaded.table->get_fieldnum("Cookie");
    const int nameCol = loaded.table->get_fieldnum("Name");
    Findings findings;
    bool missing = false;
    for (int i = 0; i < rows.count(); ++i) {
        const auto row = static_cast<unsigned>(rows.sourceRow(i));
        const char* const held = loaded.table->get_field(row, col);
        const std::string text = held ? held : "";
        const char* const name = loaded.table->get_field(row, nameCol);
        const std::string place = placeOf(loaded, file, row);
        if (text.empty()) {
            findings.tell(place + ": the row has no cookie");
            missing = true;
        } else if (!takeCookie(text, place + ": ", name ? name : "")) {
            findings.tell(fmt::format("{}: Cookie: {} is no cookie", place, inQuotes(text)));
        }
    }
    findings.close();
    if (missing) {
        say("{}: \"olelog identify TABLE\" gives every row of a table without a cookie a new one",
            file.name());
    }
    return !findings.any();
}

std::optional<int> WantedItems::takeTable(const ItemSource& asked) {
    if (asked.from.empty()) {
        return std::nullopt;
    }
    const auto file = InputFile::open(asked.from);
    const LoadedTable loaded = file ? loadTable(*file) : LoadedTable{};
    if (!loaded.table || !loaded.whole) {
        return exitFailure;
    }
    const auto selection = select(*loaded.table, asked.selection);
    if (!selection) {
        return exitUsage;
    }
    if (selection->isEmpty()) {
        say("{}: no row is selected", file->name());
        return exitFindings;
    }
    return takeRows(loaded, *file, *selection->rows) ? std::nullopt
                                                     : std::optional<int>{exitFailure};
}

std::string WantedItems::behindColon(const CookieVec& cookies) const {
    std::vector<std::string> texts;
    for (const Cookie& cookie : cookies) {
        const auto found = names_.find(cookie);
        texts.emplace_back(cookie.asString(true).c_str());
        texts.back() += found == names_.end() ? "" : " (" + found->second + ")";
    }
    return texts.empty() ? "" : ": " + listed(texts, mostNamed);
}

void WantedItems::tellRepeated() const {
    if (repeated_ != 0) {
        note("{} given more than once, taken once", counted(repeated_, "item"));
    }
}

int WantedItems::exitCode() const {
    return leftOut_ ? exitFindings : exitFine;
}

bool asksForItems(const std::string& container, const ItemSource& items, std::string_view doing) {
    if (items.cookies.empty() && items.from.empty()) {
        say("nothing to {}: name cookies, or a table with --from", doing);
        return false;
    }
    if (container == "-" && items.from == "-") {
        sayLine("standard input can be read only once");
        return false;
    }
    return true;
}
