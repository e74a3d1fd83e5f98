// The order in which a log is mended: each step relies on those before it.

#include "check/MendedLog.h"

#include <utility>

LogWords MendedLog::words() const {
    return findLogWords(static_cast<unsigned>(lines.size()), [this](unsigned number) {
        return std::string_view{lines[number - 1].text};
    });
}

void MendedLog::note(const FindingKind& kind, unsigned line, std::string what) {
    changes.push_back({kind, line, std::move(what)});
}

std::string MendedLog::text() const {
    std::string all;
    for (const LogLine& line : lines) {
        all += line.text;
        all += lineEnd;
    }
    return all;
}

MendedLog makeReadable(std::string_view bytes, const std::string& encoding) {
    MendedLog log = mendBytes(bytes, encoding);
    if (log.failure.empty()) {
        mendWords(log);
        mendBlankNames(log);
    }
    return log;
}

void makeWhole(MendedLog& log) {
    mendHeading(log);
    partRows(log);
    mendTitles(log);
    mendRows(log);
}
