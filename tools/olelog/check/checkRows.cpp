// Rows and their values' places.

#include "check/checks.h"
#include "messages.h"
#include "ole/oledb/dbrecord.h"
#include "shownText.h"
#include "tableLosses.h"

#include <algorithm>
#include <fmt/format.h>

namespace {

/// The columns that a short row leaves empty, a few of them by name.
std::string missingColumns(const std::vector<std::string>& columns, std::size_t from) {
    constexpr std::size_t mostNamed = 5;
    return listed({columns.begin() + static_cast<std::ptrdiff_t>(from), columns.end()}, mostNamed);
}

void checkLongRows(const CheckedLog& log, FindingList& findings) {
    const std::size_t columns = log.head().columns.size();
    for (const ALE::Report::SkippedLine& line : log.report().skippedLines) {
        findings.addToGroup(
            std::to_string(line.fields), finding::tooManyValues, log.number(line.line),
            fmt::format("the row is left out: it has {} for {}; look for a tab in a "
                        "value, or for a title that is missing",
                        counted(line.fields, "value"), counted(columns, "column name")));
    }
}

/// Tabs at the end are values, if empty ones: a row that lacks them was cut or filled in by hand.
void checkShortRows(const CheckedLog& log, FindingList& findings) {
    const std::vector<std::string>& columns = log.head().columns;
    for (const unsigned line : log.report().rowLines) {
        const std::size_t cells = cellsOf(log.text(line)).size();
        if (cells < columns.size()) {
            findings.addToGroup(std::to_string(cells), finding::tooFewValues, log.number(line),
                                fmt::format("the row has {} for {}; without a value: {}",
                                            counted(cells, "value"),
                                            counted(columns.size(), "column name"),
                                            missingColumns(columns, cells)));
        }
    }
}

void checkShiftedRows(const CheckedLog& log, FindingList& findings) {
    for (const unsigned line : log.head().shiftedLines) {
        findings.addToGroup({}, finding::leadingTab, log.number(line),
                            "the row begins with a tab, and all its values move one column to the "
                            "left; put a value or a blank into its first cell");
    }
}

void checkSavableRows(const CheckedLog& log, FindingList& findings) {
    bool any = false;
    for (unsigned row = 0; row < log.report().rowLines.size(); ++row) {
        const std::string why = whyUnsavable(log.imported(), row);
        if (!why.empty()) {
            findings.add(finding::rowTooLong, log.number(log.report().rowLines[row]),
                         "no table can be saved: " + why);
            any = true;
        }
    }
    if (!any && !log.whyNotKept().empty()) {
        findings.add(finding::rowTooLong, 1, "no table can be saved: " + log.whyNotKept());
    }
}

} // namespace

void checkRows(const CheckedLog& log, FindingList& findings) {
    checkLongRows(log, findings);
    checkShortRows(log, findings);
    checkShiftedRows(log, findings);
    checkSavableRows(log, findings);
}
