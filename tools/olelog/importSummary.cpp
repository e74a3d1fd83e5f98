// The line of figures that an import prints for each log.

#include "importSummary.h"

#include "messages.h"

#include <algorithm>
#include <fmt/format.h>

namespace {

using SkippedLine = ALE::Report::SkippedLine;

constexpr std::size_t mostRunsTold = 50;
constexpr std::size_t mostLinesTold = 20;

std::string describeRun(const SkippedLine& first, const SkippedLine& last, std::size_t columns) {
    const std::string lines = first.line == last.line ? std::to_string(first.line)
                                                      : fmt::format("{}-{}", first.line, last.line);
    if (first.reason == ALE::Report::SkipReason::TableRefused) {
        return lines + " (the table takes no rows)";
    }
    return fmt::format("{} ({} values for {})", lines, first.fields,
                       counted(columns, "column name"));
}

bool continues(const SkippedLine& before, const SkippedLine& line) {
    return line.line == before.line + 1 && line.reason == before.reason &&
           line.fields == before.fields;
}

/// 3 (7 values for 6 column names), 5-7 (...): skipped lines in runs, each with its reason.
std::string describeSkipped(const std::vector<SkippedLine>& lines, std::size_t columns) {
    std::string text;
    std::size_t runs = 0;
    for (std::size_t i = 0; i < lines.size() && runs <= mostRunsTold; ++runs) {
        std::size_t end = i + 1;
        while (end < lines.size() && continues(lines[end - 1], lines[end])) {
            ++end;
        }
        text += runs == 0 ? "" : ", ";
        text += runs < mostRunsTold ? describeRun(lines[i], lines[end - 1], columns) : "and more";
        i = end;
    }
    return text;
}

std::string describeShared(const ALE::Report::SharedField& shared) {
    std::vector<std::string> columns;
    for (const LightweightString<char>& column : shared.columns) {
        columns.emplace_back(column.view());
    }
    return fmt::format("; joined in {}: {}", shared.field.view(), listed(columns));
}

std::string describeLines(const std::string& what, const std::vector<unsigned>& lines) {
    std::vector<std::string> numbers(lines.size());
    std::transform(lines.begin(), lines.end(), numbers.begin(),
                   [](unsigned line) { return std::to_string(line); });
    return lines.empty() ? "" : "; " + what + " in line " + listed(numbers, mostLinesTold);
}

} // namespace

std::string summaryOf(const LogHead& head, const ALE::Report& report,
                      const std::vector<std::string>& dropped, const std::string& whyDropped) {
    std::string text = counted(report.recordsAdded, "row");
    if (!report.skippedLines.empty()) {
        text += fmt::format("; {} skipped: {}", counted(report.skippedLines.size(), "line"),
                            describeSkipped(report.skippedLines, report.columns.size()));
    }
    if (!dropped.empty()) {
        text += fmt::format("; {} {}: {}", counted(dropped.size(), "column"), whyDropped,
                            listed(dropped));
    }
    for (const ALE::Report::SharedField& shared : report.sharedFields) {
        text += describeShared(shared);
    }
    for (const LogHead::OddLine& odd : head.oddLines) {
        text += "; " + odd.what;
    }
    text +=
        describeLines("values moved one column to the left by a leading tab", head.shiftedLines);
    text += describeLines("the rest lost behind a zero byte", head.zeroLines);
    return text;
}
