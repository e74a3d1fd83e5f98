// olelog container list and info: what stands in a container. What can be read is printed also
// where something cannot; the exit code tells that it is not all.

#include "AlignedTable.h"
#include "Command.h"
#include "ContainerTable.h"
#include "containerTasks.h"
#include "dataFormats.h"
#include "messages.h"
#include "ole/oledb/TarnContainerFile.h"
#include "Output.h"
#include "shownText.h"
#include "tableValues.h"
#include "tarn/StringFunctions.h"

#include <algorithm>
#include <fmt/format.h>
#include <nlohmann/json.hpp>
#include <numeric>
#include <optional>
#include <utility>

namespace {

using Texts = std::vector<std::string>;
using Json = nlohmann::ordered_json;

struct OpenContainer {
    std::optional<InputFile> file;
    LoadedContainer container;

    explicit operator bool() const { return container.table != nullptr; }
    [[nodiscard]] int exitCode() const {
        return container.whole ? exitFine : exitCodeOfNone(container);
    }
    [[nodiscard]] oledb& table() const { return *container.table; }
};

/// Opens a container; says why where there is none.
OpenContainer openContainer(const std::string& name) {
    tellLeftOver(name);
    auto file = InputFile::open(name);
    LoadedContainer container = file ? loadContainer(*file) : LoadedContainer{};
    return {std::move(file), std::move(container)};
}

int tellReplacedBytes(const OpenContainer& open, int code) {
    say("{}: bytes that are no UTF-8 are replaced by U+FFFD", open.file->name());
    return std::max<int>(code, exitFindings);
}

// -- list

/// Gives every cookie that can be read the form in which containers are written.
void spellCookiesAlike(const OpenContainer& open) {
    const unsigned col = open.container.cookieCol;
    for (unsigned row = 0; row < open.table().get_num_records(); ++row) {
        const Cookie cookie{open.table().get_field(row, static_cast<int>(col)), true};
        if (cookie.valid()) {
            open.table().set_field(row, col, cookie.asString(true).c_str());
        }
    }
}

/// Prints the items; returns the titles of the columns that were left out for want of room.
Texts printItems(const OpenContainer& open, Output& out) {
    std::vector<TableColumn> titles;
    for (unsigned col = 0; col < open.table().get_num_fields(); ++col) {
        titles.push_back({open.table().get_fieldname(col), col != open.container.cookieCol});
    }
    std::vector<Texts> rows(open.table().get_num_records());
    for (unsigned row = 0; row < rows.size(); ++row) {
        for (unsigned col = 0; col < titles.size(); ++col) {
            rows[row].emplace_back(valueOf(open.table(), row, col));
        }
    }
    return printTexts(out, titles, rows);
}

// -- info

struct Fact {
    std::string name;
    std::string value;
};

struct ContainerFacts {
    std::string name;
    bool permanent;
    Cookie cookie;             ///< as the file's name spells it
    Cookie cookieFromFilename; ///< with the kind that the name's ending tells
    std::vector<Fact> attributes;
    Texts itemAttributes;
    unsigned items;
};

bool isAttribute(std::string_view key) {
    return compareIgnoringCase(key, "OLEDB") != 0 &&
           compareIgnoringCase(key, TarnContainerFile::getNameParamKey()) != 0 &&
           compareIgnoringCase(key, TarnContainerFile::getPermanentParamKey()) != 0;
}

ContainerFacts factsOf(const OpenContainer& open, const std::string& path) {
    oledb& table = open.table();
    const ModuleSilence silence;
    const TarnContainerFile::Reader reader{modulePath(open.file->path()), true};
    ContainerFacts facts{reader.getName().c_str(),
                         reader.isPermanent(),
                         path == "-" ? Cookie{} : reader.getCookie(),
                         TarnContainerFile::getCookieFromFilename(modulePath(path)),
                         {},
                         {},
                         table.get_num_records()};
    for (unsigned i = 0; i < table.get_num_params(); ++i) {
        if (isAttribute(table.get_param_name(i))) {
            facts.attributes.push_back({table.get_param_name(i), table.get_param_value(i)});
        }
    }
    for (unsigned col = 0; col < table.get_num_fields(); ++col) {
        if (col != open.container.cookieCol) {
            facts.itemAttributes.emplace_back(table.get_fieldname(col));
        }
    }
    return facts;
}

bool holdsOnlyUtf8(const ContainerFacts& facts) {
    return isUtf8(facts.name) &&
           std::all_of(facts.attributes.begin(), facts.attributes.end(),
                       [](const Fact& each) { return isUtf8(each.name) && isUtf8(each.value); }) &&
           std::all_of(facts.itemAttributes.begin(), facts.itemAttributes.end(), isUtf8);
}

std::string longText(const Cookie& cookie) {
    return cookie.asString(true).c_str();
}

Json cookieJson(const Cookie& cookie) {
    return cookie.valid() ? Json(longText(cookie)) : Json(nullptr);
}

std::string asJson(const ContainerFacts& facts) {
    Json object{{"kind", "container"},
                {"name", facts.name},
                {"permanent", facts.permanent},
                {"items", facts.items},
                {"cookie", cookieJson(facts.cookie)},
                {"cookieFromFilename", cookieJson(facts.cookieFromFilename)},
                {"attributes", Json::array()},
                {"itemAttributes", facts.itemAttributes}};
    for (const Fact& each : facts.attributes) {
        object["attributes"].push_back({{"name", each.name}, {"value", each.value}});
    }
    return object.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

std::string cookieLine(const ContainerFacts& facts) {
    if (!facts.cookie.valid()) {
        return "own cookie: none, for the file is not named by one\n";
    }
    const bool endingTellsMore = facts.cookie != facts.cookieFromFilename;
    return fmt::format("own cookie: {}{}\n", longText(facts.cookie),
                       endingTellsMore ? ", by the ending of its file name " +
                                             longText(facts.cookieFromFilename)
                                       : "");
}

void printFacts(const OpenContainer& open, const ContainerFacts& facts, Output& out) {
    out.write(fmt::format("{}: container {}, {}permanent, {}\n", shown(open.file->name()),
                          inQuotes(facts.name), facts.permanent ? "" : "not ",
                          counted(facts.items, "item")));
    out.write(cookieLine(facts));
    if (!facts.itemAttributes.empty()) {
        out.write(fmt::format("attributes of items: {}\n", shown(listed(facts.itemAttributes))));
    }
    std::vector<Texts> rows;
    for (const Fact& each : facts.attributes) {
        rows.push_back({each.name, each.value});
    }
    if (!rows.empty()) {
        out.write("\n");
        printTexts(out, {{"attribute"}, {"value"}}, rows);
    }
}

} // namespace

int listContainer(const ContainerQuestion& question) {
    if (question.container == "-" && question.with.table == "-") {
        sayLine("standard input can be read only once");
        return exitUsage;
    }
    OpenContainer open = openContainer(question.container);
    if (!open) {
        return open.exitCode();
    }
    int code =
        question.with.table.empty() ? exitFine : addItemFields(open.container, question.with);
    if (code != exitFine && code != exitFindings) {
        return code;
    }
    code = std::max(code, open.exitCode());
    spellCookiesAlike(open);
    Output out = question.json ? Output{} : Output::forReading();
    if (!question.json) {
        const Texts leftOut = printItems(open, out);
        code = out.finish(code);
        if (!leftOut.empty()) {
            note("{}: {} not shown for want of room (--fields chooses): {}", open.file->name(),
                 counted(leftOut.size(), "column"), listed(leftOut));
        }
        return code;
    }
    std::vector<unsigned> columns(open.table().get_num_fields());
    std::iota(columns.begin(), columns.end(), 0U);
    if (printJson(open.table(), columns, out) != 0) {
        code = tellReplacedBytes(open, code);
    }
    return out.finish(code);
}

int tellOfContainer(const ContainerQuestion& question) {
    const OpenContainer open = openContainer(question.container);
    if (!open) {
        return open.exitCode();
    }
    const ContainerFacts facts = factsOf(open, question.container);
    Output out = question.json ? Output{} : Output::forReading();
    int code = open.exitCode();
    if (!question.json) {
        printFacts(open, facts, out);
        return out.finish(code);
    }
    out.write(asJson(facts));
    if (!holdsOnlyUtf8(facts)) {
        code = tellReplacedBytes(open, code);
    }
    return out.finish(code);
}
