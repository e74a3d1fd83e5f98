// Findings as they come, in groups.

#include "check/FindingList.h"

#include <algorithm>
#include <fmt/format.h>
#include <utility>

const std::vector<FindingKind>& findingKinds() {
    using namespace finding;
    static const std::vector<FindingKind> kinds{
        emptyFile,        tableFile,          utf16,         crLineEnds,
        sectionWord,      blankNames,         noNames,       noRowFits,
        rowTooLong,       columnWithoutField, titleSpelling, tooManyValues,
        headingLine,      unreadLine,         parameterLost, zeroByte,
        keyNumberCut,     leadingTab,         emptyTitle,    joinedColumns,
        keyNumber,        trimmedValue,       changedValue,  parameterChanged,
        byteOrderMark,    encoding,           mixedLineEnds, sectionLine,
        filmFormat,       duplicateTitle,     tooFewValues,  noTimecode,
        mixedPunctuation, endBeforeStart,     overlap,       noLineEnd,
    };
    return kinds;
}

std::string_view nameOf(Severity severity) {
    switch (severity) {
    case Severity::Refused:
        return "refused";
    case Severity::Lost:
        return "lost";
    case Severity::Changed:
        return "changed";
    default:
        return "doubtful";
    }
}

void FindingList::add(const FindingKind& kind, unsigned line, std::string message,
                      std::vector<std::string> columns) {
    findings_.push_back({kind, std::move(message), {line}, std::move(columns)});
}

void FindingList::addToGroup(std::string_view group, const FindingKind& kind, unsigned line,
                             std::string message, std::vector<std::string> columns) {
    const std::string key = fmt::format("{}:{}", kind.code, group);
    const auto [known, isNew] = groups_.emplace(key, findings_.size());
    if (isNew) {
        add(kind, line, std::move(message), std::move(columns));
    } else if (findings_[known->second].lines.back() != line) {
        findings_[known->second].lines.push_back(line);
    }
}

void FindingList::ignore(const std::vector<std::string>& codes) {
    std::erase_if(findings_, [&](const Finding& finding) {
        return std::find(codes.begin(), codes.end(), finding.kind.code) != codes.end();
    });
    groups_.clear();
}

void FindingList::sortByLine() {
    std::stable_sort(findings_.begin(), findings_.end(), [](const Finding& a, const Finding& b) {
        return a.lines.front() < b.lines.front();
    });
    groups_.clear();
}
