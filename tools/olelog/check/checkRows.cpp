// Rows and their values' places.

#include "check/checks.h"
#include "messages.h"
#include "ole/oledb/dbrecord.h"
#include "tableLosses.h"

#include <algorithm>
#include <fmt/format.h>

namespace {

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

void checkShortRows(const CheckedLog& log, FindingList& findings) {
    for (const LogHead::ShortRow& row : log.head().shortRows) {
        findings.addToGroup(std::to_string(row.cells), finding::tooFewValues, log.number(row.line),
                            describeShortRow(log.head(), row));
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
