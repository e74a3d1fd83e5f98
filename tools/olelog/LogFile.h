#pragma once

#include "files.h"

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

class oledb;

/// The lines that part a log, from 1; 0 where there is none.
struct LogWords {
    unsigned column = 0; ///< the first that begins with "Column"; the names stand behind it
    unsigned data = 0;   ///< the first that begins with "Data"; the rows stand behind it
};

/// Finds them among `lines` lines as the import does; `line` gives one by its number.
LogWords findLogWords(unsigned lines, const std::function<std::string_view(unsigned)>& line);

/// A log as far as its data, read by the rules of the import.
struct LogHead {
    struct Parameter {
        std::string name;
        std::string value;
    };

    struct OddLine {
        unsigned line;
        std::string what; ///< for people
    };

    struct ShortRow {
        unsigned line;
        std::size_t cells; ///< those that it has, empty ones included
    };

    /// A heading line that sets the film format; it goes into the label of every row.
    struct FilmFormat {
        unsigned line = 0; ///< 0 where there is none
        std::string text;
    };

    std::string refusal;     ///< why the log cannot be taken; empty when it can
    std::string refusalCode; ///< the same in a word that does not change, for scripts
    unsigned refusalLine = 1;
    LogWords words;                     ///< where the heading ends and the rows begin
    std::vector<Parameter> parameters;  ///< the heading lines that hold a name and a value
    std::vector<OddLine> oddLines;      ///< heading lines that are not taken
    std::vector<OddLine> repeated;      ///< parameters whose value takes the place of another
    std::vector<OddLine> unreadLines;   ///< between the names and the rows
    std::vector<OddLine> unknownFilm;   ///< film formats that the import does not know
    FilmFormat filmFormat;              ///< the last of them, which counts
    std::vector<unsigned> shiftedLines; ///< rows of which a leading tab moves the values left
    std::vector<ShortRow> shortRows;    ///< rows with fewer values than there are column names
    std::vector<unsigned> zeroLines;    ///< lines of which the part behind a zero byte is lost
    std::vector<std::string> columns;   ///< the column names, in order
    unsigned namesLine = 0;             ///< where they stand, from 1
};

/// Reads the head of a log; finds out why it cannot be taken, where it cannot.
LogHead readLogHead(const InputFile& log);

/// Whether a path leads to a log, or to a file that begins as one, in whatever encoding.
bool isLogFile(const std::string& path);

/// What is to be said of a row with fewer values than names: how many, and what that may mean.
std::string describeShortRow(const LogHead& head, const LogHead::ShortRow& row);

/// Names of the heading's parameters that the table did not take, as it holds no more.
std::vector<std::string> parametersNotTaken(const LogHead& head, const oledb& table);

/// The start of a log that is UTF-16 text, by its mark or by its zero bytes.
bool looksLikeUtf16(std::string_view text);

/// Whether carriage returns alone stand where lines of a log end.
bool endsLinesWithCr(std::string_view text);

/// The pieces of a line of the heading, or of the names, by the rules of the import.
std::vector<std::string_view> piecesOfHeading(std::string_view line);

/// The pieces of a row's line, by the rules of the import.
std::vector<std::string_view> piecesOfRow(std::string_view line);
