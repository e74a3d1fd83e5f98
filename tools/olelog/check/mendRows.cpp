// Titles and rows, so that each cell goes under its title.
//
// In the names a second tab does not cut, and a tab at the start of a line makes no cell: empty
// titles and empty first cells are lost there, and what follows them goes astray.

#include "check/knownTitles.h"
#include "check/MendedLog.h"
#include "messages.h"
#include "ole/interchange/ALE.h"
#include "ole/oledb/oledb.h"
#include "shownText.h"
#include "standardFields.h"
#include "tarn/StringFunctions.h"
#include "tarn/trimmed.h"

#include <algorithm>
#include <cstddef>
#include <fmt/format.h>
#include <set>

namespace {

using Titles = std::vector<std::string>;

/// How many cells of a line count: up to the last one that holds anything.
std::size_t usedCells(std::string_view line) {
    const auto cells = cellsOf(line);
    std::size_t used = cells.size();
    while (used != 0 && isEssentiallyEmpty(cells[used - 1])) {
        --used;
    }
    return used;
}

std::string freeTitle(const std::set<std::string>& taken, const std::string& wanted) {
    std::string title = wanted;
    for (int n = 2; taken.contains(title); ++n) {
        title = fmt::format("{} {}", wanted, n);
    }
    return title;
}

void nameEmptyTitles(MendedLog& log, unsigned line, Titles& titles) {
    std::set<std::string> taken{titles.begin(), titles.end()};
    for (std::size_t i = 0; i < titles.size(); ++i) {
        if (isEssentiallyEmpty(titles[i])) {
            titles[i] = freeTitle(taken, fmt::format("Column {}", i + 1));
            taken.insert(titles[i]);
            log.note(finding::emptyTitle, line,
                     fmt::format("the empty title of column {} is {}", i + 1, inQuotes(titles[i])));
        }
    }
}

void spellTitles(MendedLog& log, unsigned line, Titles& titles) {
    std::set<std::string> taken{titles.begin(), titles.end()};
    for (std::string& title : titles) {
        const std::string known = nearKnownTitle(title);
        if (!known.empty() && taken.insert(known).second) {
            log.note(finding::titleSpelling, line,
                     fmt::format("the title {} spelt {}", inQuotes(title), inQuotes(known)));
            title = known;
        }
    }
}

/// Titles that stand twice: values of columns without a field would be joined in one.
void partEqualTitles(MendedLog& log, unsigned line, Titles& titles) {
    const auto table = tableWith(standardFields());
    std::set<std::string> taken{titles.begin(), titles.end()};
    std::set<std::string> seen;
    for (std::string& title : titles) {
        if (!seen.insert(title).second && ALE::findODBColumnFor(*table, title.c_str()) < 0) {
            const std::string parted = freeTitle(taken, title);
            log.note(finding::duplicateTitle, line,
                     fmt::format("another column {} is {}", inQuotes(title), inQuotes(parted)));
            title = parted;
            taken.insert(parted);
        }
    }
}

/// Rows that were whole before titles were put in behind the last one stay whole.
void fillRows(MendedLog& log, unsigned dataLine, std::size_t cells, std::size_t needed) {
    for (std::size_t number = dataLine + std::size_t{1}; number <= log.lines.size(); ++number) {
        std::string& text = log.lines[number - 1].text;
        if (!isEssentiallyEmpty(text) && cellsOf(text).size() == cells) {
            text.append(needed - cells, '\t');
        }
    }
}

/// A CR that could not be told from a line end: what stands in the line is left to a person.
bool holdsCr(std::string_view line) {
    return line.find('\r') != std::string_view::npos;
}

/// Whether a line has a cell for each column, and perhaps a tab at its end.
bool isWholeRow(std::string_view line, std::size_t columns) {
    const auto cells = cellsOf(line);
    return cells.size() == columns || (cells.size() == columns + 1 && cells.back().empty());
}

void mendRow(MendedLog& log, LogLine& line, std::size_t columns) {
    if (line.text.front() == '\t') {
        line.text.insert(0, 1, ' ');
        log.note(finding::leadingTab, line.number,
                 "a blank put into the empty first cell; an import takes it away again");
    }
    const auto cells = cellsOf(line.text);
    const bool endsWithTab = cells.back().empty();
    const std::size_t surplus = cells.size() - (endsWithTab ? 1U : 0U);
    if (surplus > columns &&
        !holdsCr(line.text)) { // all of them are empty: there is a title for each that is not
        line.text.resize(static_cast<std::size_t>(cells[columns - 1].data() - line.text.data()) +
                         cells[columns - 1].size());
        log.note(finding::tooManyValues, line.number,
                 fmt::format("{} behind the last column removed",
                             counted(surplus - columns, "empty value")));
    }
}

} // namespace

void partRows(MendedLog& log) {
    const LogWords words = log.words();
    const std::size_t columns =
        words.column == 0 || words.data == 0 ? 0 : usedCells(log.line(words.column + 1).text);
    if (columns <= 1) {
        return;
    }
    std::vector<LogLine> lines; // anew: room made for each row in turn would move all behind it
    lines.reserve(log.lines.size());
    for (std::size_t i = 0; i < log.lines.size(); ++i) {
        LogLine& line = log.lines[i];
        const auto parts = partsOf(line.text, '\r');
        const auto isRow = [columns](std::string_view part) { return isWholeRow(part, columns); };
        if (i < words.data || parts.size() < 2 || !std::all_of(parts.begin(), parts.end(), isRow)) {
            lines.push_back(std::move(line));
            continue;
        }
        for (const std::string_view part : parts) {
            lines.push_back({std::string{part}, line.number});
        }
        log.note(finding::mixedLineEnds, line.number,
                 fmt::format("parted at its CR into {}", counted(parts.size(), "row")));
    }
    log.lines = std::move(lines);
}

void mendTitles(MendedLog& log) {
    const LogWords words = log.words();
    if (words.column == 0 || words.data <= words.column + 1) {
        return;
    }
    LogLine& line = log.line(words.column + 1);
    std::size_t needed = usedCells(line.text);
    for (std::size_t number = words.data + std::size_t{1}; number <= log.lines.size(); ++number) {
        const std::string& text = log.lines[number - 1].text;
        needed = std::max(needed, holdsCr(text) ? std::size_t{0} : usedCells(text));
    }
    const auto cells = cellsOf(line.text);
    Titles titles{cells.begin(), cells.end()};
    if (needed > cells.size()) {
        fillRows(log, words.data, cells.size(), needed);
    }
    titles.resize(needed);
    nameEmptyTitles(log, line.number, titles);
    spellTitles(log, line.number, titles);
    partEqualTitles(log, line.number, titles);
    if (cells.size() > needed + 1) {
        log.note(finding::emptyTitle, line.number, "empty titles behind the last one removed");
    }
    const std::string mended = fmt::format("{}", fmt::join(titles, "\t"));
    if (mended + "\t" != line.text) {
        line.text = mended;
    }
}

void mendRows(MendedLog& log) {
    const LogWords words = log.words();
    if (words.column == 0 || words.data <= words.column + 1) {
        return;
    }
    const std::size_t columns = piecesOfHeading(log.line(words.column + 1).text).size();
    for (std::size_t number = words.data + std::size_t{1}; number <= log.lines.size(); ++number) {
        if (LogLine& line = log.lines[number - 1]; !isEssentiallyEmpty(line.text)) {
            mendRow(log, line, columns);
        }
    }
}
