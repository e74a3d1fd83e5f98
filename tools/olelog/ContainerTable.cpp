// Containers as tables, for commands that change them or tell of them. The module reads what it can
// and answers with less; here every cookie that cannot be read is named.

#include "ContainerTable.h"

#include "Command.h"
#include "messages.h"
#include "ole/oledb/TarnContainerFile.h"
#include "shownText.h"
#include "tableFile.h"
#include "tableValues.h"
#include "tarn/Ascii.h"
#include "tarn/trimmed.h"

#include <algorithm>
#include <filesystem>
#include <fmt/format.h>
#include <optional>

namespace {

constexpr const char* cookieColumn = "Cookie";

/// A file beside that holds the new container until it is whole.
std::string besidePath(const std::string& container) {
    return container + ".tmp";
}

/// A word that the shell takes for one, whatever it holds.
std::string shellWord(const std::string& text) {
    const auto isPlain = [](char c) {
        return Tarn::isLetter(c) || Tarn::isDigit(c) ||
               std::string_view{"./_-+,:@%="}.find(c) != std::string_view::npos;
    };
    if (!text.empty() && text.front() != '-' && std::all_of(text.begin(), text.end(), isPlain)) {
        return text;
    }
    std::string word = text.starts_with('-') ? "./'" : "'";
    for (const char c : text) {
        word += c == '\'' ? std::string{"'\\''"} : std::string{c};
    }
    return word + "'";
}

/// How many items a container holds that can be read; nothing where it is none.
std::optional<std::size_t> countItems(const std::string& path) {
    const ModuleSilence silence;
    const TarnContainerFile::Reader left{modulePath(path), false};
    return left.valid() ? std::optional<std::size_t>{left.getNumItems()} : std::nullopt;
}

/// What an interrupted save left, compared with the container; says what is damaged of it.
std::string whatIsLeft(const std::string& path, const std::string& container) {
    const auto items = countItems(path);
    const auto file = items ? InputFile::open(path) : std::nullopt;
    if (!file) {
        return "no container that can be read";
    }
    const bool whole = loadTable(*file).whole;
    const auto held = countItems(container);
    return counted(*items, "item") + (whole ? "" : ", and it is damaged") +
           (held && *held > *items ? fmt::format("; {} holds {}", container, *held) : "");
}

std::string whyUnreadable(const std::string& text) {
    if (text.empty()) {
        return ": the item has no cookie";
    }
    const bool lacksKind = Cookie{text.c_str(), false}.valid();
    return fmt::format(": the item's cookie cannot be read: {}{}", inQuotes(text),
                       lacksKind ? "; the letter of its kind is missing" : "");
}

/// Takes the items of a table; says which of its rows have a cookie that cannot be read.
bool takeItems(const LoadedTable& loaded, const InputFile& file, LoadedContainer& container) {
    Findings findings;
    for (unsigned row = 0; row < loaded.table->get_num_records(); ++row) {
        const std::string text{valueOf(*loaded.table, row, container.cookieCol)};
        const Cookie cookie{text.c_str(), true};
        if (cookie.valid()) {
            container.items.add(cookie);
            continue;
        }
        findings.tell(placeOf(loaded, file, row) + whyUnreadable(text));
    }
    findings.close();
    return !findings.any();
}

void sayPlainTable(const InputFile& file, const oledb& table) {
    say("{}: is a table, but no container: it has no {}; olelog show prints its rows", file.name(),
        table.get_fieldnum(cookieColumn) < 0 ? "column Cookie" : "parameter Name or Permanent");
}

} // namespace

LoadedContainer loadContainer(const InputFile& file) {
    LoadedTable loaded = loadTable(file);
    LoadedContainer container;
    if (!loaded.table) {
        return container;
    }
    if (!isContainer(*loaded.table)) {
        sayPlainTable(file, *loaded.table);
        container.isPlainTable = true;
        return container;
    }
    container.cookieCol = static_cast<unsigned>(loaded.table->get_fieldnum(cookieColumn));
    container.whole = takeItems(loaded, file, container) && loaded.whole;
    container.table = std::move(loaded.table);
    return container;
}

std::string shownName(const std::string& container) {
    return container == "-" ? "standard output" : container;
}

void appendItem(oledb& table, unsigned cookieCol, const Cookie& cookie) {
    const auto row = static_cast<unsigned>(table.add_records(1));
    table.set_field(row, cookieCol, cookie.asString(true).c_str());
}

bool isContainer(const oledb& table) {
    return table.get_fieldnum(cookieColumn) >= 0 &&
           (table.get_param_val(TarnContainerFile::getNameParamKey()) ||
            table.get_param_val(TarnContainerFile::getPermanentParamKey()));
}

int exitCodeOfNone(const LoadedContainer& none) {
    return none.isPlainTable ? exitUsage : exitFailure;
}

bool standsForNoItem(std::string text) {
    text = Tarn::trimmed(text);
    if (!text.starts_with(CookieType::Invalid)) {
        return false;
    }
    text.front() = CookieType::Unspecified;
    return Cookie{text.c_str(), true}.valid();
}

bool hasLeftOver(const std::string& container) {
    std::error_code failed;
    return container != "-" && std::filesystem::is_regular_file(besidePath(container), failed);
}

void tellLeftOver(const std::string& container) {
    if (!hasLeftOver(container)) {
        return;
    }
    const std::string beside = besidePath(container);
    std::error_code failed;
    const std::string why = std::filesystem::exists(container, failed)
                                ? "; to restore it in place of " + container
                                : ", perhaps the only copy of " + container + "; to restore it";
    say("{}: left over from an interrupted save ({}){}: mv {} {}", beside,
        whatIsLeft(beside, container), why, shellWord(beside), shellWord(container));
}
