// The lines before the rows.

#include "check/checks.h"
#include "messages.h"
#include "shownText.h"
#include "tableLosses.h"
#include "tarn/StringFunctions.h"
#include "tarn/trimmed.h"

#include <algorithm>
#include <fmt/format.h>
#include <map>

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
    for (const LogHead::OddLine& odd : log.head().oddLines) {
        findings.add(finding::headingLine, log.number(odd.line), odd.what);
    }
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

/// Lines between the names and the rows are passed over.
void checkUnreadLines(const CheckedLog& log, FindingList& findings) {
    for (unsigned line = log.head().namesLine + 1; line < log.head().words.data; ++line) {
        if (!isEssentiallyEmpty(log.text(line))) {
            findings.addToGroup(
                {}, finding::unreadLine, log.number(line),
                fmt::format("{} is not read: it stands between the column names and "
                            "\"Data\"",
                            inQuotes(log.text(line))));
        }
    }
}

void checkWord(const CheckedLog& log, unsigned line, std::string_view word, FindingList& findings) {
    if (Tarn::trimmed(log.text(line)) != word && line != log.head().namesLine) {
        findings.add(finding::sectionLine, log.number(line),
                     fmt::format("{} counts as the line \"{}\", for it begins with that word",
                                 inQuotes(log.text(line)), word));
    }
}

void checkFilmFormat(const CheckedLog& log, FindingList& findings) {
    for (unsigned line = 1; line < log.head().words.data; ++line) {
        const auto pieces = piecesOfHeading(log.text(line));
        if (!pieces.front().starts_with("FILM_FORMAT") || pieces.size() != 2) {
            continue;
        }
        std::string value{pieces[1]};
        std::erase(value, ' ');
        if (value != "16mm" && !value.starts_with("35mm")) {
            findings.add(finding::filmFormat, log.number(line),
                         fmt::format("the film format {} is read as 35 mm (F35); the import knows "
                                     "16mm, 35mm and \"35mm, 3perf\", to the letter",
                                     inQuotes(pieces[1])));
        }
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

/// Names that stand twice, in any case: the last value counts.
void checkRepeated(const CheckedLog& log, FindingList& findings) {
    std::map<LightweightString<char>, std::string, StrCmpCI> values;
    for (unsigned line = 2; line <= log.head().words.column; ++line) {
        const auto pieces = piecesOfHeading(log.text(line));
        if (pieces.size() != 2) {
            continue;
        }
        const auto [known, isNew] =
            values.emplace(LightweightString<char>{pieces[0]}, std::string{pieces[1]});
        if (!isNew && known->second != pieces[1]) {
            findings.add(finding::parameterLost, log.number(line),
                         fmt::format("{} stands twice in the heading; its value {} takes the place "
                                     "of {}",
                                     inQuotes(pieces[0]), inQuotes(pieces[1]),
                                     inQuotes(known->second)));
            known->second = pieces[1];
        }
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
    checkLines(log, findings);
    checkWord(log, log.head().words.column, "Column", findings);
    checkWord(log, log.head().words.data, "Data", findings);
    checkUnreadLines(log, findings);
    checkFilmFormat(log, findings);
    checkDelimiter(log, findings);
    checkRepeated(log, findings);
    checkParameters(log, findings);
}
