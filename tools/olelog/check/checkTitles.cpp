// The line of column names.

#include "check/checks.h"
#include "check/knownTitles.h"
#include "messages.h"
#include "shownText.h"
#include "tarn/StringFunctions.h"

#include <algorithm>
#include <fmt/format.h>
#include <map>

namespace {

/// A tab at the start makes no title, and one behind another stays in the next title.
void checkEmptyTitles(const CheckedLog& log, FindingList& findings) {
    const std::string_view names = log.text(log.head().namesLine);
    if (names.starts_with('\t')) {
        findings.add(
            finding::emptyTitle, log.namesNumber(),
            "the title of the first column is empty and is passed over, so that the values "
            "go under the titles to their left; put a title there");
    }
    for (const std::string& title : log.head().columns) {
        if (title.starts_with('\t')) {
            findings.add(finding::emptyTitle, log.namesNumber(),
                         fmt::format("an empty title merges with the next into {}, so that the "
                                     "values go under the titles to their left; put a title there",
                                     inQuotes(title)),
                         {title});
        }
    }
}

/// How many values each column holds in the rows that were taken.
std::vector<unsigned> countValues(const CheckedLog& log) {
    std::vector<unsigned> counts(log.head().columns.size());
    for (const unsigned line : log.report().rowLines) {
        const auto pieces = piecesOfRow(log.text(line));
        for (std::size_t i = 0; i < pieces.size() && i < counts.size(); ++i) {
            counts[i] += isEssentiallyEmpty(pieces[i]) ? 0 : 1;
        }
    }
    return counts;
}

bool has(const std::vector<std::string>& titles, const std::string& title) {
    return std::find(titles.begin(), titles.end(), title) != titles.end();
}

/// "; did you mean "Take" by "Tkae"?", for each title that one slip makes out of one that is not
/// there.
std::string suggestions(const std::vector<std::string>& lost,
                        const std::vector<std::string>& titles) {
    std::string text;
    for (const std::string& title : lost) {
        const std::string meant = misspeltTitle(title);
        if (!meant.empty() && !has(titles, meant)) {
            text += fmt::format("; did you mean {} by {}?", inQuotes(meant), inQuotes(title));
        }
    }
    return text;
}

/// Columns without a value lose nothing.
void checkFields(const CheckedLog& log, FindingList& findings) {
    constexpr std::size_t mostNamed = 25;
    const std::vector<std::string>& titles = log.head().columns;
    const std::vector<unsigned> counts = countValues(log);
    std::vector<std::string> lost;
    for (std::size_t i = 0; i < counts.size(); ++i) {
        if (counts[i] == 0 || log.fieldOf(titles[i]) >= 0) {
            continue;
        }
        const std::string known = nearKnownTitle(titles[i]);
        if (known.empty() || has(titles, known)) {
            lost.push_back(titles[i]);
            continue;
        }
        findings.add(
            finding::titleSpelling, log.namesNumber(),
            fmt::format("{} has no field in the table, so its values are dropped; spelt {} "
                        "it has one",
                        inQuotes(titles[i]), inQuotes(known)),
            {titles[i]});
    }
    if (!lost.empty()) {
        findings.add(finding::columnWithoutField, log.namesNumber(),
                     fmt::format("{} no field in the table, so the values are dropped: {}; import "
                                 "with --all-columns to keep them{}",
                                 counted(lost.size(), "column has", "columns have"),
                                 listed(lost, mostNamed), suggestions(lost, titles)),
                     lost);
    }
}

/// Columns of one title that has a field are found joined there.
void checkRepeated(const CheckedLog& log, FindingList& findings) {
    std::map<std::string, unsigned> times;
    for (const std::string& title : log.head().columns) {
        if (++times[title] == 2 && log.fieldOf(title) < 0) {
            findings.add(finding::duplicateTitle, log.namesNumber(),
                         fmt::format("more than one column is called {}; --all-columns joins their "
                                     "values in one",
                                     inQuotes(title)),
                         {title});
        }
    }
}

} // namespace

void checkTitles(const CheckedLog& log, FindingList& findings) {
    checkEmptyTitles(log, findings);
    checkFields(log, findings);
    checkRepeated(log, findings);
}
