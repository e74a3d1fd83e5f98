#pragma once

#include <string>
#include <string_view>
#include <vector>

/// A line of a log, and where it stands in the file that a person has.
struct LogLine {
    std::string text; ///< without its end
    unsigned number;  ///< from 1; a line that was put in has that of the line it stands before
};

/// How often lines end in which way.
struct LineEnds {
    unsigned lf = 0;
    unsigned crLf = 0;
    unsigned cr = 0;         ///< CR alone
    unsigned crCrLf = 0;     ///< of which the import leaves a CR in the line's last value
    unsigned firstOther = 0; ///< the first line that ends in another way than the first line
};

constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

/// Lines that end in LF or CR LF; with `crEnds` also those that end in CR alone. Where not, a CR
/// stays in its line, except before LF and at the end of the text.
std::vector<LogLine> linesOf(std::string_view text, bool crEnds);

/// Whether CR alone ends lines of a text: it holds no other line end, or its words stand so.
bool crEndsLines(std::string_view text);

/// How the lines end that `linesOf` gives.
LineEnds lineEndsOf(std::string_view text, bool crEnds);

/// Whether a text ends without a line end, in a line that holds something.
bool lacksLastEnd(std::string_view text);

/// What stands between the separators of a line: one part more than there are separators.
std::vector<std::string_view> partsOf(std::string_view line, char separator);

/// All cells of a line, cut at every tab, empty ones at the ends included.
std::vector<std::string_view> cellsOf(std::string_view line);

/// All bytes of a file; "" where it cannot be read.
std::string bytesOf(const std::string& path);
