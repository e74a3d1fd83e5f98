// A log as text: its bytes, lines and cells as they stand, before any rule of the import.

#include "check/LogText.h"

#include "LogFile.h"
#include "tarn/StringFunctions.h"

#include <fstream>
#include <functional>
#include <iterator>

namespace {

using LineSeen = std::function<void(std::string_view text, std::string_view end)>;

/// The end of the line that holds or begins at `at`: its place and length.
std::size_t lengthOfEnd(std::string_view text, std::size_t at, bool crEnds) {
    if (text[at] == '\n') {
        return 1;
    }
    std::size_t next = at;
    while (next < text.size() && text[next] == '\r') {
        ++next;
    }
    if (next < text.size() && text[next] == '\n') {
        return next + 1 - at;
    }
    return crEnds || at + 1 == text.size() ? 1 : 0;
}

void forEachLine(std::string_view text, bool crEnds, const LineSeen& seen) {
    std::size_t start = 0;
    for (std::size_t at = text.find_first_of("\r\n"); at != std::string_view::npos;) {
        const std::size_t length = lengthOfEnd(text, at, crEnds);
        if (length != 0) {
            seen(text.substr(start, at - start), text.substr(at, length));
            start = at + length;
        }
        at = text.find_first_of("\r\n", length != 0 ? start : at + 1);
    }
    if (start < text.size()) {
        seen(text.substr(start), {});
    }
}

unsigned& countOf(std::string_view end, LineEnds& ends) {
    if (end == "\n") {
        return ends.lf;
    }
    if (end == "\r") {
        return ends.cr;
    }
    return end == "\r\n" ? ends.crLf : ends.crCrLf;
}

} // namespace

std::vector<LogLine> linesOf(std::string_view text, bool crEnds) {
    std::vector<LogLine> lines;
    forEachLine(text, crEnds, [&](std::string_view line, std::string_view) {
        lines.push_back({std::string{line}, static_cast<unsigned>(lines.size() + 1)});
    });
    return lines;
}

bool crEndsLines(std::string_view text) {
    return text.find('\n') == std::string_view::npos || endsLinesWithCr(text);
}

LineEnds lineEndsOf(std::string_view text, bool crEnds) {
    LineEnds ends;
    std::string_view first;
    unsigned number = 0;
    forEachLine(text, crEnds, [&](std::string_view, std::string_view end) {
        first = ++number == 1 ? end : first;
        if (end.empty()) {
            return;
        }
        ++countOf(end, ends);
        if (end != first && ends.firstOther == 0) {
            ends.firstOther = number;
        }
    });
    return ends;
}

bool lacksLastEnd(std::string_view text) {
    const std::size_t end = text.find_last_of("\r\n");
    return !isEssentiallyEmpty(text.substr(end == std::string_view::npos ? 0 : end + 1));
}

std::vector<std::string_view> partsOf(std::string_view line, char separator) {
    std::vector<std::string_view> parts;
    for (std::size_t at = line.find(separator); at != std::string_view::npos;
         at = line.find(separator)) {
        parts.push_back(line.substr(0, at));
        line.remove_prefix(at + 1);
    }
    parts.push_back(line);
    return parts;
}

std::vector<std::string_view> cellsOf(std::string_view line) {
    return partsOf(line, '\t');
}

std::string bytesOf(const std::string& path) {
    std::ifstream file{path, std::ios::binary};
    return std::string{std::istreambuf_iterator<char>{file}, {}};
}
