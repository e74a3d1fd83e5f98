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

/// The log after `readable`; nothing where not even that can be taken.
std::optional<CheckedLog> asReadable(const MendedLog& readable) {
    auto file = TemporaryFile::anywhere();
    if (!file || writeAll(file->file(), readable.text()) != 0) {
        return std::nullopt;
    }
    file->close();
    const auto input = InputFile::open(file->path());
    return input && readLogHead(*input).refusal.empty()
               ? std::optional<CheckedLog>{CheckedLog{*input, readable.lines}}
               : std::nullopt;
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
        verdict.findings.add(kindOf(head.refusalCode), head.refusalLine,
                             "the log cannot be taken: " + head.refusal);
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
