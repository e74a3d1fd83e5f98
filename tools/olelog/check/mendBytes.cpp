// From the bytes of a file to lines of UTF-8 text.
//
// A file in UTF-16 is converted whole. In any other, only the lines that are no UTF-8 are
// converted: logs that were put together from several often hold both.

#include "check/decodedText.h"
#include "check/MendedLog.h"
#include "LogFile.h"
#include "messages.h"
#include "shownText.h"

#include <algorithm>
#include <fmt/format.h>
#include <optional>

namespace {

/// The byte order by the mark, else by the zero bytes of letters.
std::string utf16Name(std::string_view bytes) {
    if (bytes.starts_with("\xFF\xFE")) {
        return "UTF-16LE";
    }
    return bytes.starts_with("\xFE\xFF") || bytes.front() == '\0' ? "UTF-16BE" : "UTF-16LE";
}

std::string takeUtf16(std::string_view bytes, MendedLog& log) {
    const std::string name = utf16Name(bytes);
    bytes.remove_suffix(bytes.size() % 2);
    const std::optional<std::string> text = decodedText(bytes, name);
    if (!text) {
        log.failure = "it cannot be read as UTF-16";
        return {};
    }
    log.note(finding::utf16, 1, fmt::format("converted from {} to UTF-8", name));
    return *text;
}

/// Old Macintosh programs ended lines with CR; nearly all others wrote Windows-1252.
std::string likelyEncoding(bool crEnds) {
    return crEnds ? "MACINTOSH" : "WINDOWS-1252";
}

void noteConverted(MendedLog& log, const LogLine& line, std::string_view text,
                   std::string_view encoding) {
    const auto before = cellsOf(line.text);
    const auto after = cellsOf(text);
    for (std::size_t i = 0; i < std::min(before.size(), after.size()); ++i) {
        if (before[i] != after[i]) {
            log.note(finding::encoding, line.number,
                     fmt::format("{} read as {}: now {}", inQuotes(before[i]), encoding,
                                 inQuotes(after[i])));
        }
    }
}

void convertLines(MendedLog& log, const std::string& encoding) {
    for (LogLine& line : log.lines) {
        if (isUtf8(line.text)) {
            continue;
        }
        auto text = decodedText(line.text, encoding);
        const bool fits = text.has_value();
        if (!fits) { // every byte has a meaning in this one
            text = decodedText(line.text, "ISO-8859-1");
        }
        if (!text) {
            log.failure = "this system cannot convert text to UTF-8";
            return;
        }
        noteConverted(log, line, *text, fits ? encoding : "ISO-8859-1");
        line.text = *text;
    }
}

void removeZeroBytes(MendedLog& log) {
    for (LogLine& line : log.lines) {
        if (const auto zeros = std::erase(line.text, '\0'); zeros != 0) {
            log.note(finding::zeroByte, line.number,
                     counted(static_cast<std::size_t>(zeros), "zero byte") + " removed");
        }
    }
}

void mendLineEnds(std::string_view text, bool crEnds, MendedLog& log) {
    const LineEnds ends = lineEndsOf(text, crEnds);
    log.lineEnd = ends.crLf + ends.crCrLf > ends.lf ? "\r\n" : "\n";
    const std::string_view name = log.lineEnd == "\n" ? "LF" : "CR LF";
    if (ends.cr != 0) {
        log.note(
            finding::crLineEnds, 1,
            fmt::format("{} end in {} and no longer in CR alone", counted(ends.cr, "line"), name));
    } else if (ends.firstOther != 0 || ends.crCrLf != 0) {
        log.note(finding::mixedLineEnds, std::max(ends.firstOther, 1U),
                 fmt::format("all lines end in {}", name));
    }
}

} // namespace

MendedLog mendBytes(std::string_view bytes, const std::string& encoding) {
    MendedLog log;
    std::string converted;
    if (!bytes.empty() && looksLikeUtf16(bytes)) {
        converted = takeUtf16(bytes, log);
        bytes = converted;
    }
    if (bytes.starts_with(byteOrderMark)) {
        bytes.remove_prefix(byteOrderMark.size());
        log.note(finding::byteOrderMark, 1, "byte order mark removed");
    }
    const bool crEnds = crEndsLines(bytes);
    log.lines = linesOf(bytes, crEnds);
    mendLineEnds(bytes, crEnds, log);
    if (lacksLastEnd(bytes)) {
        log.note(finding::noLineEnd, log.lines.back().number,
                 "a line end put behind the last line");
    }
    removeZeroBytes(log);
    convertLines(log, encoding.empty() ? likelyEncoding(crEnds) : encoding);
    return log;
}
