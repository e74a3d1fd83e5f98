// One log through all checks.

#include "check/logCheck.h"

#include "check/CheckedLog.h"
#include "check/checks.h"
#include "messages.h"
#include "TemporaryFile.h"

#include <algorithm>
#include <cerrno>
#include <fmt/format.h>
#include <utility>

namespace {

FindingKind kindOf(std::string_view code) {
    const auto& kinds = findingKinds();
    return *std::find_if(kinds.begin(), kinds.end(),
                         [&](const FindingKind& kind) { return kind.code == code; });
}

bool runChecks(const CheckedLog& log, FindingList& findings) {
    if (log.error() != 0) {
        say("the table cannot be tried out: {}", reasonText(log.error()));
        return false;
    }
    if (log.report().recordsAdded == 0 && !log.report().skippedLines.empty()) {
        findings.add(finding::noRowFits, log.namesNumber(),
                     "the log cannot be taken: every row has more values than there are column "
                     "names");
    }
    checkHeading(log, findings);
    checkTitles(log, findings);
    checkRows(log, findings);
    checkValues(log, findings);
    checkTimecodes(log, findings);
    return true;
}

/// The log as it stands, by the line numbers of the import.
std::optional<CheckedLog> asItIs(const InputFile& log, std::string_view bytes) {
    return CheckedLog{log, linesOf(bytes, false)};
}

/// Does something with a log in a file of its own; false where there is no room for that.
template <class Use>
bool withFileOf(const MendedLog& log, Use use) {
    auto file = TemporaryFile::anywhere();
    if (!file || writeAll(file->file(), log.text()) != 0) {
        return false;
    }
    file->close();
    const auto input = InputFile::open(file->path());
    if (input) {
        use(*input);
    }
    return input.has_value();
}

/// The log after `readable`; nothing where not even that can be taken.
std::optional<CheckedLog> asReadable(const MendedLog& readable) {
    std::optional<CheckedLog> checked;
    withFileOf(readable, [&](const InputFile& file) {
        if (readLogHead(file).refusal.empty()) {
            checked.emplace(file, readable.lines);
        }
    });
    return checked;
}

void addRefusal(const LogHead& head, unsigned line, FindingList& findings) {
    findings.add(kindOf(head.refusalCode), line, "the log cannot be taken: " + head.refusal);
}

/// One reason to refuse a log hides the next: they show one after the other as it is made readable.
void addHiddenRefusals(std::string_view bytes, std::string told, FindingList& findings) {
    MendedLog log = mendBytes(bytes, "");
    for (const bool words : {false, true}) {
        if (words) {
            mendWords(log);
        }
        withFileOf(log, [&](const InputFile& file) {
            const LogHead head = readLogHead(file);
            if (!head.refusal.empty() && head.refusalCode != told) {
                told = head.refusalCode;
                addRefusal(head, log.line(head.refusalLine).number, findings);
            }
        });
    }
}

} // namespace

std::optional<LogVerdict> checkLog(const InputFile& log, const std::string& encoding) {
    const std::string bytes = bytesOf(log.path());
    const LogHead head = readLogHead(log);
    LogVerdict verdict;
    verdict.name = log.name();
    verdict.mended = makeReadable(bytes, encoding);
    verdict.taken = head.refusal.empty();
    std::optional<CheckedLog> checked =
        verdict.taken ? asItIs(log, bytes) : asReadable(verdict.mended);
    if (!verdict.taken) {
        addRefusal(head, head.refusalLine, verdict.findings);
        if (checked) {
            addHiddenRefusals(bytes, head.refusalCode, verdict.findings);
        }
    }
    checkBytes(bytes, verdict.findings);
    if (checked && !runChecks(*checked, verdict.findings)) {
        return std::nullopt;
    }
    verdict.rows = checked && verdict.taken ? checked->report().recordsAdded : 0;
    verdict.findings.sortByLine();
    makeWhole(verdict.mended);
    return verdict;
}

std::optional<FindingList> findingsLeft(const MendedLog& mended) {
    const std::string bytes = mended.text();
    std::optional<FindingList> left;
    withFileOf(mended, [&](const InputFile& file) {
        const CheckedLog checked{file, linesOf(bytes, false)};
        FindingList findings;
        checkBytes(bytes, findings);
        if (readLogHead(file).refusal.empty() && runChecks(checked, findings)) {
            findings.sortByLine();
            left = std::move(findings);
        }
    });
    return left;
}
