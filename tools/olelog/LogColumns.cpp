// Columns of logs that get a column of their own.

#include "LogColumns.h"

#include "messages.h"
#include "ole/oledb/oledb.h"
#include "shownText.h"
#include "standardFields.h"
#include "tableValues.h"

#include <algorithm>
#include <utility>

namespace {

bool hasField(oledb& table, const std::string& title) {
    return ALE::findODBColumnFor(table, title.c_str()) >= 0;
}

struct Titles {
    std::vector<std::string> withField;
    std::vector<std::string> others;
};

/// The titles of the logs' columns, each once, in order.
Titles titlesOf(const std::vector<OpenLog>& logs, oledb& table) {
    Titles titles;
    std::set<std::string> known;
    for (const OpenLog& log : logs) {
        for (const std::string& title : log.head.columns) {
            if (known.insert(title).second) {
                (hasField(table, title) ? titles.withField : titles.others).push_back(title);
            }
        }
    }
    return titles;
}

/// A table of the standard columns that a log fills, or that are to be kept. Says which are not.
std::unique_ptr<oledb> tableOfFilledFields(const std::vector<OpenLog>& logs,
                                           const std::set<std::string>& kept) {
    const std::unique_ptr<oledb> trial = tableWith(standardFields());
    for (const OpenLog& log : logs) {
        ALE::fillODB(*trial, modulePath(log.file.path()));
    }
    std::vector<DBFieldDesc> fields;
    std::vector<std::string> leftOut;
    for (const DBFieldDesc& field : standardFields()) {
        const std::string name{field.name.view()};
        const auto col = static_cast<unsigned>(trial->get_fieldnum(name.c_str()));
        if (kept.contains(name) || countFilled(*trial, col) != 0) {
            fields.push_back(field);
        } else {
            leftOut.push_back(name);
        }
    }
    note("left out to make room, as no log fills them: {}", listed(leftOut));
    return tableWith(std::move(fields));
}

/// Puts a value behind those that the cell holds.
void joinValue(oledb& table, unsigned row, unsigned col, std::string_view piece) {
    std::string value{valueOf(table, row, col)};
    value += value.empty() ? "" : ", ";
    value += piece;
    value.erase(value.find_last_not_of(' ') + 1);
    table.set_field(row, col, value.c_str());
}

} // namespace

void LogColumns::addTo(oledb& table, const std::vector<OpenLog>& logs) {
    extra_ = addExtraColumns(table, titlesOf(logs, table).others);
}

void LogColumns::addToNew(std::unique_ptr<oledb>& table, const std::vector<OpenLog>& logs,
                          const std::set<std::string>& kept) {
    const Titles titles = titlesOf(logs, *table);
    oledb trial{*table, 0};
    if (!addExtraColumns(trial, titles.others).noRoom.empty()) {
        table = tableOfFilledFields(logs, kept);
        for (const std::string& title : titles.withField) {
            if (!hasField(*table, title)) {
                emptyTitles_.insert(title);
            }
        }
    }
    extra_ = addExtraColumns(*table, titles.others);
}

bool LogColumns::tellChanged() const {
    for (const auto& [title, name] : extra_.renamed) {
        say("column {} is called {} in the table: a table file cannot hold its name",
            inQuotes(title), inQuotes(name));
    }
    return !extra_.noRoom.empty() || !extra_.renamed.empty();
}

std::vector<std::string> LogColumns::droppedOf(const ALE::Report& report) const {
    std::vector<std::string> dropped;
    for (const LightweightString<char>& column : report.columnsWithoutField) {
        const std::string title{column.view()};
        if (!extra_.filledByHand.contains(title) && !emptyTitles_.contains(title)) {
            dropped.push_back(title);
        }
    }
    return dropped;
}

void LogColumns::fill(const TakenLog& taken) const {
    std::vector<std::pair<std::size_t, unsigned>> places;
    const std::vector<std::string>& titles = taken.log.head.columns;
    for (std::size_t i = 0; i < titles.size(); ++i) {
        const auto found = extra_.filledByHand.find(titles[i]);
        if (found != extra_.filledByHand.end()) {
            places.emplace_back(i, found->second);
        }
    }
    if (places.empty()) {
        return;
    }
    forRowsOf(taken, [&](unsigned row, unsigned, const Cells& cells) {
        for (const auto& [place, col] : places) {
            if (place < cells.size()) {
                joinValue(taken.table, row, col, cells[place]);
            }
        }
    });
}
