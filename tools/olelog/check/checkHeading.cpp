// The lines before the rows.

#include "check/checks.h"
#include "messages.h"
#include "shownText.h"
#include "tableLosses.h"
#include "tarn/StringFunctions.h"
#include "tarn/trimmed.h"

#include <fmt/format.h>
#include <vector>

namespace {

void checkFirstLine(const CheckedLog& log, FindingList& findings) {
    if (log.head().words.column > 1 && piecesOfHeading(log.text(1)).size() > 1) {
        findings.add(finding::headingLine, log.number(1),
                     fmt::format("{} is not taken: the first line is never read as a parameter; a "
                                 "line \"Heading\" should stand before it",
                                 inQuotes(log.text(1))));
    }
}

void checkLines(const CheckedLog& log, FindingList& findings) {
    for (unsigned line = 2; line < log.head().words.column; ++line) {
        const std::string_view text = Tarn::trimmed(log.text(line));
        if (piecesOfHeading(log.text(line)).size() == 1 &&
            text.find(' ') != std::string_view::npos) {
            findings.add(finding::headingLine, log.number(line),
                         fmt::format("{} is not taken: there is no tab between a name and a value",
                                     inQuotes(text)));
        }
    }
}

void addAll(const CheckedLog& log, const std::vector<LogHead::OddLine>& lines,
            const FindingKind& kind, FindingList& findings) {
    for (const LogHead::OddLine& odd : lines) {
        findings.add(kind, log.number(odd.line), odd.what);
    }
}

void checkUnreadLines(const CheckedLog& log, FindingList& findings) {
    for (const LogHead::OddLine& odd : log.head().unreadLines) {
        findings.addToGroup({}, finding::unreadLine, log.number(odd.line), odd.what);
    }
}

void checkWord(const CheckedLog& log, unsigned line, std::string_view word, FindingList& findings) {
    if (Tarn::trimmed(log.text(line)) != word && line != log.head().namesLine) {
        findings.add(finding::sectionLine, log.number(line),
                     fmt::format("{} counts as the line \"{}\", for it begins with that word",
                                 inQuotes(log.text(line)), word));
    }
}

void checkDelimiter(const CheckedLog& log, FindingList& findings) {
    const bool oneTitle = log.head().columns.size() == 1 &&
                          log.head().columns.front().find_first_of(",;|") != std::string::npos;
    if (oneTitle) {
        findings.add(finding::emptyTitle, log.namesNumber(),
                     "the column names stand in one title: they should have tabs between them");
    }
}

/// The line of the heading that sets a parameter.
unsigned lineOf(const CheckedLog& log, std::string_view name) {
    for (unsigned line = 2; line <= log.head().words.column; ++line) {
        if (piecesOfHeading(log.text(line)).front() == name) {
            return line;
        }
    }
    return 1;
}

void checkParameters(const CheckedLog& log, FindingList& findings) {
    for (const std::string& name : parametersNotTaken(log.head(), log.imported())) {
        findings.addToGroup({}, finding::parameterLost, log.number(lineOf(log, name)),
                            fmt::format("{} does not fit into the table's {} parameters",
                                        inQuotes(name), oledb::maxParams));
    }
    forChangedParameters(log.imported(), log.kept(), [&](const ChangedParameter& change) {
        if (!change.onlyBlanks) {
            findings.add(finding::parameterChanged, log.number(lineOf(log, change.name)),
                         change.what);
        }
    });
}

} // namespace

void checkHeading(const CheckedLog& log, FindingList& findings) {
    checkFirstLine(log, findings);
    addAll(log, log.head().oddLines, finding::headingLine, findings);
    checkLines(log, findings);
    checkWord(log, log.head().words.column, "Column", findings);
    checkWord(log, log.head().words.data, "Data", findings);
    checkUnreadLines(log, findings);
    addAll(log, log.head().unknownFilm, finding::filmFormat, findings);
    checkDelimiter(log, findings);
    addAll(log, log.head().repeated, finding::parameterLost, findings);
    checkParameters(log, findings);
}
