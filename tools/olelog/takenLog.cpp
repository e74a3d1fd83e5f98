// What an import tells of a log.

#include "takenLog.h"

#include "check/FindingList.h"
#include "importedValues.h"
#include "lineNumbers.h"
#include "messages.h"
#include "ole/oledb/oledb.h"
#include "repeatedRows.h"
#include "shownText.h"
#include "tableValues.h"
#include "tarn/TextFile.h"
#include "tarn/trimmed.h"

#include <algorithm>
#include <fmt/format.h>

namespace {

/// Once for all rows, by the first of them.
bool tellShortRows(const OpenLog& log) {
    const std::vector<LogHead::ShortRow>& rows = log.head.shortRows;
    if (rows.empty()) {
        return false;
    }
    std::vector<unsigned> others;
    for (std::size_t i = 1; i < rows.size(); ++i) {
        others.push_back(rows[i].line);
    }
    say("{}:{}: {}{}", log.file.name(), rows.front().line, describeShortRow(log.head, rows.front()),
        andOtherLines(others));
    return true;
}

void tellDifferingParameters(const TakenLog& taken, const ParametersByName& before) {
    std::vector<std::string> differing;
    for (const auto& [name, old] : before) {
        const std::string value = taken.table.get_param_val(name.c_str());
        if (old != value) {
            differing.push_back(
                fmt::format("{} is {}, was {}", name.view(), inQuotes(value), inQuotes(old)));
        }
    }
    if (!differing.empty()) {
        note("{}: heading differs from what came before, and the last value counts: {}",
             taken.log.file.name(), fmt::join(differing, ", "));
    }
}

/// Whether there are parameters for which the table has no room.
bool tellParametersNotTaken(const TakenLog& taken) {
    const std::vector<std::string> notTaken = parametersNotTaken(taken.log.head, taken.table);
    if (!notTaken.empty()) {
        say("{}: heading parameters that do not fit into the table's {}: {}", taken.log.file.name(),
            oledb::maxParams, listed(notTaken));
    }
    return !notTaken.empty();
}

/// Whether rows of the log stand in the table already; `others` is where they came from.
bool tellRepeated(const TakenLog& taken, std::string_view others) {
    const unsigned first = taken.firstRow;
    std::vector<unsigned> lines;
    for (const unsigned row : repeatedRows({taken.table, 0, first},
                                           {taken.table, first, taken.table.get_num_records()})) {
        lines.push_back(taken.report.rowLines[row - first]);
    }
    if (!lines.empty()) {
        say("{}: {} in {} already, with the same values wherever both have some, and added "
            "again: line {}",
            taken.log.file.name(), counted(lines.size(), "row stands", "rows stand"), others,
            runsOf(lines));
    }
    return !lines.empty();
}

/// Tells what of the lines before the rows is not in the table as it stands there.
bool tellHeading(const OpenLog& log) {
    const LogHead& head = log.head;
    bool any = false;
    for (const auto* const lines : {&head.repeated, &head.unknownFilm, &head.unreadLines}) {
        Findings told;
        for (const LogHead::OddLine& odd : *lines) {
            told.tell(fmt::format("{}:{}: {}", log.file.name(), odd.line, odd.what));
        }
        told.close();
        any = any || told.any();
    }
    return any;
}

/// A column of the log of which values do not go into the table as they stand.
struct ChangingColumn {
    std::size_t place;
    unsigned field;
    bool isJoined; ///< whether other columns go to the field as well
};

std::vector<ChangingColumn> changingColumns(const TakenLog& taken) {
    const LogHead& head = taken.log.head;
    std::vector<int> fields;
    for (const std::string& title : head.columns) {
        fields.push_back(ALE::findODBColumnFor(taken.table, title.c_str()));
    }
    std::vector<ChangingColumn> columns;
    for (std::size_t i = 0; i < fields.size(); ++i) {
        if (fields[i] >= 0 && changesValues(head, head.columns[i])) {
            const bool joined = std::count(fields.begin(), fields.end(), fields[i]) > 1;
            columns.push_back({i, static_cast<unsigned>(fields[i]), joined});
        }
    }
    return columns;
}

/// What of a value is not in its field; "" where nothing is lost. Of several columns that are
/// joined there no more can be said than that the field holds something.
std::string whatIsLost(const TakenLog& taken, const ChangingColumn& column, std::string_view cell,
                       unsigned row) {
    if (isEssentiallyEmpty(cell)) {
        return {};
    }
    const LogHead& head = taken.log.head;
    const std::string_view value = valueOf(taken.table, row, column.field);
    const auto imported = importedValue(head, head.columns[column.place], cell, value);
    const bool same = value == Tarn::trimmed(cell) || (column.isJoined && !value.empty());
    return same || !imported || imported->kept ? "" : imported->what;
}

/// Tells values that the import itself did not take as they stand; whether there are any.
bool tellChangedValues(const TakenLog& taken) {
    const std::vector<ChangingColumn> columns = changingColumns(taken);
    Findings changed;
    if (!columns.empty()) {
        forRowsOf(taken, [&](unsigned row, unsigned line, const Cells& cells) {
            for (const ChangingColumn& column : columns) {
                const std::string what = column.place < cells.size()
                                             ? whatIsLost(taken, column, cells[column.place], row)
                                             : "";
                if (!what.empty()) {
                    changed.tell(fmt::format("{}:{}: {}", taken.log.file.name(), line, what));
                }
            }
        });
    }
    changed.close();
    return changed.any();
}

} // namespace

void forRowsOf(const TakenLog& taken,
               const std::function<void(unsigned row, unsigned line, const Cells& cells)>& use) {
    const TextFile text{modulePath(taken.log.file.path()), true};
    const std::vector<unsigned>& lines = taken.report.rowLines;
    for (unsigned i = 0; i < lines.size(); ++i) {
        use(taken.firstRow + i, lines[i], piecesOfRow(text.lineView(lines[i] - 1)));
    }
}

ParametersByName parametersSetBy(const LogHead& head, const oledb& table) {
    ParametersByName values;
    for (const LogHead::Parameter& parameter : head.parameters) {
        if (const char* const value = table.get_param_val(parameter.name.c_str())) {
            values[parameter.name.c_str()] = value;
        }
    }
    return values;
}

LogFindings tellOf(const TakenLog& taken, const std::string& summary, bool dropped,
                   const ParametersByName& before, std::string_view others) {
    const LogHead& head = taken.log.head;
    const bool cutRows =
        !taken.report.skippedLines.empty() || !head.shiftedLines.empty() || !head.zeroLines.empty();
    const std::string text = fmt::format("{}: {}", taken.log.file.name(), summary);
    cutRows || dropped || !head.oddLines.empty() ? sayLine(text) : noteLine(text);
    const bool isShort = tellShortRows(taken.log);
    tellDifferingParameters(taken, before);
    const bool noRoom = tellParametersNotTaken(taken);
    const bool repeated = tellRepeated(taken, others);
    const bool heading = tellHeading(taken.log);
    const bool changed = tellChangedValues(taken);
    return {cutRows || isShort || noRoom || heading || changed, repeated};
}
