// What a file is made of, before it is a log.

#include "check/checks.h"
#include "LogFile.h"
#include "messages.h"
#include "shownText.h"

#include <algorithm>
#include <cstddef>
#include <fmt/format.h>

namespace {

void checkMark(std::string_view bytes, FindingList& findings) {
    if (bytes.starts_with(byteOrderMark)) {
        findings.add(finding::byteOrderMark, 1,
                     "begins with a byte order mark, which stays in its first line and which other "
                     "programs take for a part of that line; save it as UTF-8 without one");
    }
}

void checkLineEnds(std::string_view bytes, bool crEnds, FindingList& findings) {
    const LineEnds ends = lineEndsOf(bytes, crEnds);
    if (ends.crCrLf != 0) {
        findings.add(finding::mixedLineEnds, 1,
                     fmt::format("{} end in CR CR LF, and one CR stays in the last value or title",
                                 counted(ends.crCrLf, "line")));
    } else if (ends.firstOther != 0) {
        findings.add(finding::mixedLineEnds, ends.firstOther,
                     fmt::format("lines end in different ways: {} in LF, {} in CR LF, {} in CR "
                                 "alone; programs differ in what they make of that",
                                 ends.lf, ends.crLf, ends.cr));
    }
}

/// Where lines end in LF a CR stays in its line.
void checkLoneCrs(std::string_view bytes, const std::vector<LogLine>& lines,
                  FindingList& findings) {
    const LineEnds ends = lineEndsOf(bytes, false);
    std::ptrdiff_t crs = 0;
    for (const LogLine& line : lines) {
        crs += std::count(line.text.begin(), line.text.end(), '\r');
    }
    for (const LogLine& line : lines) {
        if (line.text.find('\r') != std::string::npos) {
            findings.addToGroup({}, finding::mixedLineEnds, line.number,
                                fmt::format("the line holds a CR; what stands behind it may be a "
                                            "row of its own: lines end in different ways, {} in "
                                            "LF, {} in CR LF, {} in CR alone",
                                            ends.lf, ends.crLf, crs));
        }
    }
}

/// A log that was cut in copying ends in the middle of a row.
void checkLastEnd(std::string_view bytes, const std::vector<LogLine>& lines,
                  FindingList& findings) {
    const LogWords words = findLogWords(static_cast<unsigned>(lines.size()), [&](unsigned number) {
        return std::string_view{lines[number - 1].text};
    });
    if (words.data != 0 && lines.size() > words.data && lacksLastEnd(bytes)) {
        findings.add(finding::noLineEnd, lines.back().number,
                     "the last row's line has no line end: the log may be cut here");
    }
}

void checkEncoding(const std::vector<LogLine>& lines, FindingList& findings) {
    for (const LogLine& line : lines) {
        for (const std::string_view cell : cellsOf(line.text)) {
            if (!isUtf8(cell)) {
                findings.addToGroup(
                    {}, finding::encoding, line.number,
                    fmt::format("{} is no UTF-8 text; its bytes are kept, and other "
                                "programs will show other letters",
                                inQuotes(cell)));
            }
        }
    }
}

void checkZeroBytes(const std::vector<LogLine>& lines, FindingList& findings) {
    for (const LogLine& line : lines) {
        if (const std::size_t at = line.text.find('\0'); at != std::string::npos) {
            findings.addToGroup({}, finding::zeroByte, line.number,
                                fmt::format("the rest of the line is lost behind a zero byte, in "
                                            "column {} of its text",
                                            at + 1));
        }
    }
}

} // namespace

void checkBytes(std::string_view bytes, FindingList& findings) {
    if (bytes.empty() || looksLikeUtf16(bytes)) {
        return;
    }
    const bool crEnds = crEndsLines(bytes);
    const std::vector<LogLine> lines = linesOf(bytes, crEnds);
    checkMark(bytes, findings);
    checkLineEnds(bytes, crEnds, findings);
    checkLoneCrs(bytes, lines, findings);
    checkLastEnd(bytes, lines, findings);
    checkEncoding(lines, findings);
    checkZeroBytes(lines, findings);
}
