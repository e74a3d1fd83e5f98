// The lines before the rows: words, names in their place, pairs of name and value.

#include "check/knownTitles.h"
#include "check/MendedLog.h"
#include "messages.h"
#include "shownText.h"
#include "tarn/StringFunctions.h"
#include "tarn/trimmed.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <fmt/format.h>

namespace {

constexpr std::string_view columnWord = "Column";
constexpr std::string_view dataWord = "Data";

bool isNearWord(std::string_view line, std::string_view word) {
    const std::string_view text = Tarn::trimmed(line);
    return compareIgnoringCase(text, word) == 0;
}

/// The first line in a range (from 1, the end excluded) that is the word, if only nearly; 0 where
/// there is none.
unsigned findWord(const MendedLog& log, std::string_view word, unsigned from, std::size_t end) {
    for (unsigned number = from; number < end; ++number) {
        if (isNearWord(log.lines[number - 1].text, word)) {
            return number;
        }
    }
    return 0;
}

/// The same of a word that is misspelt by one letter.
unsigned findSlip(const MendedLog& log, std::string_view word, unsigned from) {
    for (unsigned number = from; number <= log.lines.size(); ++number) {
        if (isOneSlip(Tarn::trimmed(log.lines[number - 1].text), word)) {
            return number;
        }
    }
    return 0;
}

void insertLine(MendedLog& log, unsigned before, std::string_view text) {
    const unsigned number =
        before <= log.lines.size() ? log.line(before).number : log.lines.back().number + 1;
    log.lines.insert(log.lines.begin() + (before - 1), {std::string{text}, number});
}

/// A line that begins like a word, while the word itself stands behind it, is moved out of the way
/// by a blank before it, which no table keeps.
void stepAside(MendedLog& log, unsigned number, std::string_view word) {
    LogLine& line = log.line(number);
    log.note(finding::sectionLine, line.number,
             fmt::format("a blank put before {}, so that it does not count as \"{}\"",
                         inQuotes(line.text), word));
    line.text.insert(0, 1, ' ');
}

/// The line that only begins like a word and so takes its place; 0 where there is none.
unsigned falseWord(const MendedLog& log, std::string_view word, unsigned found) {
    if (found == 0 || isNearWord(log.lines[found - 1].text, word)) {
        return 0;
    }
    return findWord(log, word, found + 1, log.lines.size() + 1) != 0 ? found : 0;
}

void keepFalseWordsAside(MendedLog& log) {
    for (;;) {
        const LogWords words = log.words();
        const unsigned column = falseWord(log, columnWord, words.column);
        const unsigned data = falseWord(log, dataWord, words.data);
        if (column == 0 && data == 0) {
            return;
        }
        stepAside(log, column != 0 ? column : data, column != 0 ? columnWord : dataWord);
    }
}

void spellWord(MendedLog& log, unsigned number, std::string_view word) {
    if (number != 0) {
        LogLine& line = log.line(number);
        log.note(finding::sectionWord, line.number,
                 fmt::format("{} spelt \"{}\"", inQuotes(line.text), word));
        line.text = word;
    }
}

bool looksLikeNames(std::string_view line) {
    const auto cells = cellsOf(line);
    const auto known = std::count_if(cells.begin(), cells.end(), [](std::string_view cell) {
        const auto& titles = knownTitles();
        return std::find(titles.begin(), titles.end(), Tarn::trimmed(cell)) != titles.end();
    });
    return known >= 2;
}

unsigned findNames(const MendedLog& log, unsigned from) {
    for (unsigned number = std::max(from, 1U); number <= log.lines.size(); ++number) {
        if (looksLikeNames(log.lines[number - 1].text)) {
            return number;
        }
    }
    return 0;
}

void putIn(MendedLog& log, unsigned before, std::string_view word, std::string_view where) {
    insertLine(log, before, word);
    log.note(finding::sectionWord, log.line(before).number,
             fmt::format("\"{}\" put in {} the column names", word, where));
}

/// Words that stand nowhere go around the line that holds titles.
void putInMissingWords(MendedLog& log) {
    if (log.words().column == 0) {
        const unsigned names = findNames(log, 1);
        const unsigned data = log.words().data;
        if (names != 0 && (data == 0 || names < data)) {
            putIn(log, names, columnWord, "before");
        }
    }
    const LogWords words = log.words();
    if (words.column != 0 && words.data == 0) {
        const unsigned names = findNames(log, words.column + 1);
        if (names != 0) {
            putIn(log, names + 1, dataWord, "behind");
        }
    }
}

// -- the heading's lines

bool beginsLikeWord(std::string_view text) {
    return text.starts_with(columnWord) || text.starts_with(dataWord);
}

/// Names and values on one line, name first; nothing where they do not come in pairs.
std::vector<std::string> pairsOf(std::string_view line) {
    std::vector<std::string_view> cells = cellsOf(line);
    while (!cells.empty() && isEssentiallyEmpty(cells.back()) && cells.size() % 2 != 0) {
        cells.pop_back();
    }
    std::vector<std::string> pairs;
    for (std::size_t i = 0; i + 1 < cells.size(); i += 2) {
        if (isEssentiallyEmpty(cells[i]) || beginsLikeWord(cells[i])) {
            return {};
        }
        pairs.push_back(fmt::format("{}\t{}", cells[i], cells[i + 1]));
    }
    return cells.size() % 2 == 0 ? pairs : std::vector<std::string>{};
}

/// Name and value with more than one tab between them; "" for any other line.
std::string withOneTab(std::string_view line) {
    std::vector<std::string_view> cells = cellsOf(line);
    const auto empty = [](std::string_view cell) { return isEssentiallyEmpty(cell); };
    if (cells.size() < 3 || empty(cells.front())) {
        return {};
    }
    std::erase_if(cells, empty);
    return cells.size() == 2 ? fmt::format("{}\t{}", cells[0], cells[1]) : std::string{};
}

/// A known name, blanks and a value; "" for any other line.
std::string withTabForBlank(std::string_view line) {
    constexpr std::array<std::string_view, 6> names{"FIELD_DELIM", "VIDEO_FORMAT", "AUDIO_FORMAT",
                                                    "FILM_FORMAT", "FPS",          "TAPE"};
    const std::size_t blank = line.find(' ');
    const bool isKnown =
        line.find('\t') == std::string_view::npos &&
        std::find(names.begin(), names.end(), line.substr(0, blank)) != names.end();
    return isKnown && blank != std::string_view::npos
               ? fmt::format("{}\t{}", line.substr(0, blank), Tarn::trimmed(line.substr(blank)))
               : std::string{};
}

std::vector<std::string> mendedHeadingLine(std::string_view line) {
    const auto pieces = piecesOfHeading(line);
    if (pieces.size() == 2 && !pieces[1].starts_with('\t')) {
        return {};
    }
    for (const std::string& mended : {withOneTab(line), withTabForBlank(line)}) {
        if (!mended.empty()) {
            return {mended};
        }
    }
    return pieces.size() > 2 ? pairsOf(line) : std::vector<std::string>{};
}

/// The first line is never read as a parameter, so one that could be needs a line before it.
void mendFirstLine(MendedLog& log) {
    if (log.words().column > 1 && piecesOfHeading(log.line(1).text).size() > 1) {
        insertLine(log, 1, "Heading");
        log.note(finding::headingLine, 1, "\"Heading\" put in before the first parameter");
    }
}

} // namespace

void mendWords(MendedLog& log) {
    keepFalseWordsAside(log);
    const LogWords words = log.words();
    if (words.column == 0) {
        const unsigned found = findWord(log, columnWord, 1, log.lines.size() + 1);
        spellWord(log, found != 0 ? found : findSlip(log, columnWord, 1), columnWord);
    }
    const LogWords spelt = log.words();
    if (spelt.data == 0) {
        const unsigned found = findWord(log, dataWord, spelt.column + 1, log.lines.size() + 1);
        const unsigned names = spelt.column + 1; // a column may be called "Date"
        spellWord(log, found != 0 ? found : findSlip(log, dataWord, names + 1), dataWord);
    }
    putInMissingWords(log);
}

void mendBlankNames(MendedLog& log) {
    const LogWords words = log.words();
    if (words.column == 0 || words.data == 0) {
        return;
    }
    unsigned names = words.column + 1;
    while (names < words.data && isEssentiallyEmpty(log.line(names).text)) {
        ++names;
    }
    const unsigned blank = names - words.column - 1;
    if (blank != 0 && names < words.data) {
        log.note(finding::blankNames, log.line(words.column + 1).number,
                 fmt::format("{} before the column names removed", counted(blank, "blank line")));
        log.lines.erase(log.lines.begin() + words.column, log.lines.begin() + (names - 1));
    }
}

void mendHeading(MendedLog& log) {
    mendFirstLine(log);
    for (unsigned number = 2; number < log.words().column; ++number) {
        const LogLine line = log.line(number);
        const std::vector<std::string> mended = mendedHeadingLine(line.text);
        if (mended.empty() || isEssentiallyEmpty(line.text)) {
            continue;
        }
        log.note(finding::headingLine, line.number,
                 mended.size() == 1
                     ? fmt::format("one tab between name and value: {}", inQuotes(mended.front()))
                     : fmt::format("parted into {}, a name and a value each",
                                   counted(mended.size(), "line")));
        log.lines.erase(log.lines.begin() + (number - 1));
        for (std::size_t i = mended.size(); i-- > 0;) {
            log.lines.insert(log.lines.begin() + (number - 1), {mended[i], line.number});
        }
        number += static_cast<unsigned>(mended.size()) - 1;
    }
}
