#pragma once

#include "check/FindingList.h"
#include "check/LogText.h"
#include "LogFile.h"

#include <string>
#include <string_view>
#include <vector>

/// A log that is being made ready for an import, and what was changed in it.
struct MendedLog {
    /// One change, and the kind of finding that it answers.
    struct Change {
        FindingKind kind;
        unsigned line;
        std::string what;
    };

    std::vector<LogLine> lines;
    std::string lineEnd = "\n";
    std::vector<Change> changes;
    std::string failure; ///< why nothing can be made of the log; empty where something can

    /// Where the words stand, by lines of this log and not of the file.
    [[nodiscard]] LogWords words() const;
    /// A line by its number in this log, from 1.
    [[nodiscard]] LogLine& line(unsigned number) { return lines[number - 1]; }
    void note(const FindingKind& kind, unsigned line, std::string what);
    /// The whole log; each line ends in the same way.
    [[nodiscard]] std::string text() const;
};

/// Makes a log readable: UTF-8 text in lines, its words and names where the import looks for them.
/// Bytes that are no UTF-8 are read in `encoding`, a name that iconv knows; "" for the likeliest.
MendedLog makeReadable(std::string_view bytes, const std::string& encoding);

/// Makes a readable log one that an import takes whole: a heading of pairs, a title for each
/// column, a value in each first cell.
void makeWhole(MendedLog& log);

// -- the steps

/// Text in UTF-8, without byte order mark and zero bytes, in lines.
MendedLog mendBytes(std::string_view bytes, const std::string& encoding);
/// "Column" and "Data" where they are missing, misspelt or misleading.
void mendWords(MendedLog& log);
/// The names directly behind "Column".
void mendBlankNames(MendedLog& log);
/// Heading lines that become parameters.
void mendHeading(MendedLog& log);
/// Rows behind a lone CR on lines of their own.
void partRows(MendedLog& log);
/// Titles that go to their columns.
void mendTitles(MendedLog& log);
/// Rows that go under their titles.
void mendRows(MendedLog& log);
