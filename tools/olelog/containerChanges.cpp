// olelog container create and add: items into a container, each once. Whatever the container held
// stays as it stands in the file; the new items come behind.

#include "checkedSave.h"
#include "Command.h"
#include "ContainerTable.h"
#include "containerTasks.h"
#include "messages.h"
#include "misc/BoolString.h"
#include "ole/oledb/TarnContainerFile.h"
#include "SaveTarget.h"
#include "shownText.h"
#include "tableFile.h"
#include "tarn/StringFunctions.h"

#include <filesystem>
#include <fmt/format.h>
#include <memory>
#include <optional>
#include <unordered_map>
#include <utility>

namespace {

constexpr std::size_t mostNamed = 5;

std::string nameOf(const std::string& container) {
    return container == "-" ? "standard output" : container;
}

/// Cookies that are asked for, each once, and what is wrong with some.
struct WantedItems {
    CookieSet cookies;
    std::unordered_map<Cookie, std::string, CookieHash> names; ///< of those that a table names
    unsigned repeated = 0;                                     ///< how many were asked for again
    bool leftOut = false; ///< whether there were some of kind 'I'
};

/// Takes a cookie's text; false where it is none. `place` is where it comes from, `name` what a
/// person calls the item.
bool takeCookie(WantedItems& wanted, const std::string& text, const std::string& place,
                std::string_view name = {}) {
    if (standsForNoItem(text)) {
        say("{}{} is of kind I, which stands for no item and is never stored", place,
            inQuotes(text));
        wanted.leftOut = true;
        return true;
    }
    const Cookie cookie{text.c_str(), false};
    if (!cookie.valid()) {
        return false;
    }
    wanted.repeated += wanted.cookies.add(cookie) ? 0 : 1;
    if (!name.empty()) {
        wanted.names.emplace(cookie, name);
    }
    return true;
}

bool takeArguments(WantedItems& wanted, const std::vector<std::string>& texts) {
    for (const std::string& text : texts) {
        if (!takeCookie(wanted, text, "")) {
            say("{} is no cookie: a kind letter, 32 hex digits and 2 of flags, hyphens between "
                "them as you like",
                inQuotes(text));
            return false;
        }
    }
    return true;
}

// -- items of a table

/// Takes the cookies of the chosen rows; says which have none, and then returns false.
bool takeRows(WantedItems& wanted, const LoadedTable& loaded, const InputFile& file,
              ODBViewRep& rows) {
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
        } else if (!takeCookie(wanted, text, place + ": ", name ? name : "")) {
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

/// Takes the cookies of the table that was named; the exit code where that cannot be done.
std::optional<int> takeTable(WantedItems& wanted, const ItemSource& asked) {
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
    return takeRows(wanted, loaded, *file, *selection->rows) ? std::nullopt
                                                             : std::optional<int>{exitFailure};
}

// -- a new container

/// Why this cannot be an attribute of a new container; "" where it can.
std::string whyNoAttribute(const std::string& key, bool hasValue, const oledb& table) {
    const auto is = [&key](const char* name) { return compareIgnoringCase(key, name) == 0; };
    if (key.empty() || !hasValue) {
        return "should be KEY=VALUE";
    }
    if (is(TarnContainerFile::getNameParamKey()) || is(TarnContainerFile::getPermanentParamKey())) {
        return "the name and whether it is permanent have options of their own";
    }
    if (is("OLEDB")) {
        return "this key is the file format's own";
    }
    if (key.find(':') != std::string::npos) {
        return "a key cannot hold a colon";
    }
    return table.get_param_val(key.c_str()) ? "this key is given twice" : "";
}

bool setAttributes(oledb& table, const std::vector<std::string>& attributes) {
    for (const std::string& text : attributes) {
        const std::size_t sign = text.find('=');
        const std::string key = text.substr(0, sign);
        const bool hasValue = sign != std::string::npos;
        std::string why = whyNoAttribute(key, hasValue, table);
        if (why.empty() && table.add_param(key.c_str(), text.substr(sign + 1).c_str()) != 0) {
            why =
                fmt::format("a container has no room for more than {}", table.get_num_params() - 3);
        }
        if (!why.empty()) {
            say("--attrib {}: {}", inQuotes(text), why);
            return false;
        }
    }
    return true;
}

std::unique_ptr<oledb> makeTable(const ContainerCreation& wanted) {
    const DBFieldDesc columns[] = {{"Cookie", DBFieldTypes::TEXT}, {}};
    auto table = std::make_unique<oledb>(columns);
    table->add_param(TarnContainerFile::getNameParamKey(), wanted.name.c_str());
    table->add_param(TarnContainerFile::getPermanentParamKey(),
                     BoolAsString(wanted.permanent).c_str());
    return setAttributes(*table, wanted.attributes) ? std::move(table) : nullptr;
}

/// Whether something stands where the container is to be made, or may be its only copy.
bool isInTheWay(const std::string& container) {
    std::error_code failed;
    if (std::filesystem::is_regular_file(container, failed) &&
        std::filesystem::file_size(container, failed) != 0) {
        say("{} exists; \"olelog container add\" adds items to it, --in-place allows to replace it",
            container);
        return true;
    }
    if (hasLeftOver(container) && !std::filesystem::exists(container, failed)) {
        tellLeftOver(container);
        say("{}: not made; --in-place allows that", container);
        return true;
    }
    return false;
}

// -- the end of both

/// The first of the cookies, with the names that a table gives their items, behind a colon.
std::string behindColon(const CookieVec& cookies, const WantedItems& wanted) {
    std::vector<std::string> texts;
    for (const Cookie& cookie : cookies) {
        const auto found = wanted.names.find(cookie);
        texts.emplace_back(cookie.asString(true).c_str());
        texts.back() += found == wanted.names.end() ? "" : " (" + found->second + ")";
    }
    return texts.empty() ? "" : ": " + listed(texts, mostNamed);
}

/// Saves the container; `codeSoFar` is the exit code where that finds nothing.
int save(oledb& table, const SaveTarget& place, int codeSoFar) {
    const int code = saveChecked(table, place, {});
    return code == exitFine ? codeSoFar : code;
}

void tellRepeated(const WantedItems& wanted) {
    if (wanted.repeated != 0) {
        say("{} given more than once, taken once", counted(wanted.repeated, "item"));
    }
}

int exitCodeOf(const WantedItems& wanted) {
    return wanted.leftOut ? exitFindings : exitFine;
}

/// Adds what is not in the container yet, and saves it where that is anything.
int addItems(LoadedContainer& container, const WantedItems& wanted, const ContainerAddition& asked,
             const SaveTarget& place) {
    const std::string name = nameOf(asked.container);
    CookieVec added;
    CookieVec known;
    for (const Cookie& cookie : wanted.cookies) {
        (container.items.contains(cookie) ? known : added).push_back(cookie);
    }
    tellRepeated(wanted);
    if (!known.empty()) {
        say("{}: {} in it already, not added again{}", name, counted(known.size(), "item"),
            behindColon(known, wanted));
    }
    if (asked.dryRun && !canBeSaved(asked.container)) {
        return exitFailure;
    }
    if (asked.dryRun) {
        say("{}: {} would be added{}", name, counted(added.size(), "item"),
            behindColon(added, wanted));
        return exitCodeOf(wanted);
    }
    if (added.empty() && asked.container != "-") {
        say("{}: nothing was added", name);
        return exitCodeOf(wanted);
    }
    for (const Cookie& cookie : added) {
        appendItem(*container.table, container.cookieCol, cookie);
    }
    const int code = save(*container.table, place, exitCodeOf(wanted));
    if (code != exitFailure) {
        say("{}: {} added, {} in all", name, counted(added.size(), "item"),
            container.table->get_num_records());
    }
    return code;
}

} // namespace

int createContainer(const ContainerCreation& wanted) {
    const SaveTarget place{wanted.container};
    const std::unique_ptr<oledb> table = makeTable(wanted);
    WantedItems items;
    if (!table || !takeArguments(items, wanted.items.cookies) ||
        (!wanted.inPlace && isInTheWay(wanted.container))) {
        return exitUsage;
    }
    if (const auto failed = takeTable(items, wanted.items)) {
        say("{}: not made", nameOf(wanted.container));
        return *failed;
    }
    for (const Cookie& cookie : items.cookies) {
        appendItem(*table, 0, cookie);
    }
    tellRepeated(items);
    const std::string what = fmt::format("container {} with {}", inQuotes(wanted.name),
                                         counted(items.cookies.size(), "item"));
    if (wanted.dryRun && !canBeSaved(wanted.container)) {
        return exitFailure;
    }
    if (wanted.dryRun) {
        say("{}: would be made: {}{}", nameOf(wanted.container), what,
            behindColon({items.cookies.begin(), items.cookies.end()}, items));
        return exitCodeOf(items);
    }
    const int code = save(*table, place, exitCodeOf(items));
    if (code != exitFailure) {
        say("{}: {}", nameOf(wanted.container), what);
    }
    return code;
}

int addToContainer(const ContainerAddition& asked) {
    const SaveTarget place{asked.container};
    WantedItems wanted;
    if (asked.items.cookies.empty() && asked.items.from.empty()) {
        sayLine("nothing to add: name cookies, or a table with --from");
        return exitUsage;
    }
    if (asked.container == "-" && asked.items.from == "-") {
        sayLine("standard input can be read only once");
        return exitUsage;
    }
    if (!takeArguments(wanted, asked.items.cookies)) {
        return exitUsage;
    }
    tellLeftOver(asked.container);
    const auto file = InputFile::open(asked.container);
    LoadedContainer container = file ? loadContainer(*file) : LoadedContainer{};
    std::optional<int> failed;
    if (!container.table || !container.whole) {
        failed = exitCodeOfNone(container);
    } else {
        failed = takeTable(wanted, asked.items);
    }
    if (failed) {
        say("{}: nothing was added", nameOf(asked.container));
        return *failed;
    }
    return addItems(container, wanted, asked, place);
}
