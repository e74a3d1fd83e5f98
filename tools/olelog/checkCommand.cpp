// olelog check: what an import of a log would lose or change, and a copy of the log that imports
// whole.
//
// Findings go to standard output, a line each, as compilers write them. Where the mended log goes
// there, they go to standard error.

#include "check/decodedText.h"
#include "check/logCheck.h"
#include "checkedSave.h"
#include "Command.h"
#include "files.h"
#include "lineNumbers.h"
#include "LogFile.h"
#include "messages.h"
#include "Output.h"
#include "SaveTarget.h"
#include "shownText.h"
#include "terminal.h"

#include <algorithm>
#include <cerrno>
#include <CLI/CLI.hpp>
#include <filesystem>
#include <fmt/color.h>
#include <fmt/format.h>
#include <functional>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

namespace {

constexpr const char* examples =
    "Example:\n"
    "  printf 'Heading\\n\\nColumn\\n\\nName\\tStart\\n\\nData\\n\\t01:00:00:00\\n' |\n"
    "    olelog check - --fix mended.ale\n"
    "tells that the names stand behind a blank line and that the row has no name, and writes a "
    "log\n"
    "that imports whole.";

struct CheckOptions {
    std::vector<std::string> logs;
    std::string fixed; ///< where the mended log goes; "" for nowhere
    std::string encoding;
    std::vector<std::string> ignored;
    bool json = false;
    bool inPlace = false;
};

using Json = nlohmann::ordered_json;

bool holdsSomething(const std::string& path) {
    std::error_code failed;
    return std::filesystem::is_regular_file(path, failed) &&
           std::filesystem::file_size(path, failed) != 0 && !failed;
}

bool targetMakesSense(const CheckOptions& options) {
    const std::string& target = options.fixed;
    if (target.empty() || target == "-") {
        return true;
    }
    const bool overLog = isSameFile(options.logs.front(), target);
    if (overLog && !options.inPlace) {
        say("{} would be replaced by its mended copy; --in-place allows that", target);
        return false;
    }
    if (!overLog && !options.inPlace && holdsSomething(target)) {
        say("{} exists; --in-place allows to replace it", target);
        return false;
    }
    return true;
}

bool usageMakesSense(const CheckOptions& options) {
    if (std::count(options.logs.begin(), options.logs.end(), "-") > 1) {
        sayLine("standard input can be read only once");
        return false;
    }
    if (!options.fixed.empty() && options.logs.size() > 1) {
        sayLine("--fix mends one log at a time");
        return false;
    }
    if (options.json && options.fixed == "-") {
        sayLine("--json and --fix - both need standard output");
        return false;
    }
    if (!options.encoding.empty() && !decodedText("", options.encoding)) {
        say("--encoding: the system knows no encoding {}; iconv -l lists them",
            inQuotes(options.encoding));
        return false;
    }
    return targetMakesSense(options);
}

// -- the report

/// A line of the report: "day.ale:12: End is before Start [end-before-start]".
struct ReportLine {
    std::string place; ///< file and line
    std::string text;
    std::string code;
    fmt::text_style style; ///< of the code, where colours may be used

    [[nodiscard]] std::string plain() const {
        return fmt::format("{}: {} [{}]", place, text, code);
    }
    [[nodiscard]] std::string styled() const {
        return fmt::format("{} {} {}", fmt::format(fmt::emphasis::bold, "{}:", shown(place)),
                           shown(text), fmt::format(style, "[{}]", code));
    }
};

fmt::text_style styleOf(Severity severity) {
    switch (severity) {
    case Severity::Refused:
    case Severity::Lost:
        return fmt::emphasis::bold | fmt::fg(fmt::terminal_color::red);
    case Severity::Changed:
        return fmt::fg(fmt::terminal_color::yellow);
    default:
        return fmt::fg(fmt::terminal_color::cyan);
    }
}

ReportLine lineOf(const LogVerdict& log, const Finding& finding) {
    return {fmt::format("{}:{}", log.name, finding.lines.front()),
            finding.message + andOtherLines({finding.lines.begin() + 1, finding.lines.end()}),
            std::string{finding.kind.code}, styleOf(finding.kind.severity)};
}

ReportLine lineOf(const LogVerdict& log, const MendedLog::Change& change) {
    return {fmt::format("{}:{}", log.name, change.line), "mended: " + change.what,
            std::string{change.kind.code}, fmt::fg(fmt::terminal_color::green)};
}

Json jsonOf(const LogVerdict& log, const Finding& finding) {
    return {{"file", log.name},           {"line", finding.lines.front()},
            {"code", finding.kind.code},  {"severity", nameOf(finding.kind.severity)},
            {"message", finding.message}, {"lines", finding.lines},
            {"columns", finding.columns}};
}

Json jsonOf(const LogVerdict& log, const MendedLog::Change& change) {
    return {{"file", log.name},
            {"line", change.line},
            {"code", change.kind.code},
            {"message", change.what}};
}

/// "2 findings: 1 lost, 1 changed".
std::string figuresOf(const LogVerdict& log) {
    const auto& findings = log.findings.all();
    std::string text = findings.empty() ? "nothing found" : counted(findings.size(), "finding");
    std::string_view separator = ": ";
    for (const Severity severity :
         {Severity::Refused, Severity::Lost, Severity::Changed, Severity::Doubtful}) {
        const auto count =
            std::count_if(findings.begin(), findings.end(), [&](const Finding& finding) {
                return finding.kind.severity == severity;
            });
        if (count != 0) {
            text += fmt::format("{}{} {}", separator, count, nameOf(severity));
            separator = ", ";
        }
    }
    return text;
}

/// Columns aside, which --all-columns keeps.
bool losesNothing(const FindingList& findings) {
    return std::none_of(findings.all().begin(), findings.all().end(), [](const Finding& finding) {
        return finding.kind.severity == Severity::Lost &&
               finding.kind.code != finding::columnWithoutField.code;
    });
}

/// "2 findings are left for you: lines 10 (overlap), 12 (end-before-start)".
std::string describeLeft(const FindingList& left) {
    constexpr std::size_t mostTold = 20;
    std::vector<std::string> places;
    for (const Finding& finding : left.all()) {
        places.push_back(fmt::format("{} ({})", finding.lines.front(), finding.kind.code));
    }
    return places.empty()
               ? "no finding is left"
               : fmt::format("{} left for you: {} {}",
                             counted(places.size(), "finding is", "findings are"),
                             places.size() == 1 ? "line" : "lines", listed(places, mostTold));
}

/// A finding is mended where the copy has none of its kind in any of its lines.
std::size_t countMended(const LogVerdict& log, const FindingList& left) {
    std::set<std::pair<std::string_view, unsigned>> stays;
    for (const Finding& finding : left.all()) {
        for (const unsigned line : finding.lines) {
            const auto& lines = log.mended.lines;
            stays.emplace(finding.kind.code, line <= lines.size() ? lines[line - 1].number : line);
        }
    }
    const auto isMended = [&](const Finding& finding) {
        return std::none_of(finding.lines.begin(), finding.lines.end(), [&](unsigned line) {
            return stays.contains({finding.kind.code, line});
        });
    };
    const auto& all = log.findings.all();
    return static_cast<std::size_t>(std::count_if(all.begin(), all.end(), isMended));
}

class CheckJob {
public:
    explicit CheckJob(const CheckOptions& options) : options_{options}, target_{options.fixed} {}

    int run() {
        int code = exitFine;
        for (const std::string& name : options_.logs) {
            code = std::max(code, runOne(name));
        }
        if (options_.json) {
            out_.write(Json{{"findings", findings_}, {"changes", changes_}}.dump(
                           2, ' ', false, Json::error_handler_t::replace) +
                       "\n");
        }
        return out_.finish(code);
    }

private:
    int runOne(const std::string& name) {
        const auto file = InputFile::open(name);
        auto log = file ? checkLog(*file, options_.encoding) : std::nullopt;
        if (!log) {
            return exitFailure;
        }
        log->findings.ignore(options_.ignored);
        for (const Finding& finding : log->findings.all()) {
            tell(lineOf(*log, finding), findings_, jsonOf(*log, finding));
        }
        out_.flush();
        note("{}: {}; {}", log->name, log->taken ? counted(log->rows, "row") : "cannot be taken",
             figuresOf(*log));
        if (options_.fixed.empty()) {
            tellMendable(*log);
        }
        const bool written = options_.fixed.empty() || write(*log);
        return !written ? exitFailure : log->findings.all().empty() ? exitFine : exitFindings;
    }

    void tell(const ReportLine& line, Json& list, Json entry) {
        if (options_.json) {
            list.push_back(std::move(entry));
        } else if (options_.fixed == "-") {
            sayLine(line.plain());
        } else {
            out_.write((mayStyleOutput() ? line.styled() : shown(line.plain())) + "\n");
        }
    }

    /// What an import would make of the mended log.
    struct Copy {
        std::string refusal; ///< why it would not take it; empty where it would
        FindingList left;    ///< without those that are not asked for
    };

    [[nodiscard]] Copy copyOf(const MendedLog& log) const {
        Copy copy{whyNotMended(log), {}};
        auto left = copy.refusal.empty() ? findingsLeft(log) : std::nullopt;
        if (!left) {
            copy.refusal += copy.refusal.empty() ? reasonText(EIO) : "";
            return copy;
        }
        for (const Finding& finding : left->all()) {
            if (finding.kind.severity == Severity::Refused && copy.refusal.empty()) {
                copy.refusal = finding.message;
            }
        }
        left->ignore(options_.ignored);
        copy.left = std::move(*left);
        return copy;
    }

    /// How many of the findings a mended copy would not have.
    void tellMendable(const LogVerdict& log) const {
        if (log.findings.all().empty() || log.mended.changes.empty()) {
            return;
        }
        const Copy copy = copyOf(log.mended);
        const std::size_t mended = copy.refusal.empty() ? countMended(log, copy.left) : 0;
        if (mended != 0) {
            note("{}: --fix OUT mends {} of these", log.name, mended);
        }
    }

    /// The last word: whether the copy can be imported, and what a person still has to decide.
    void tellLeft(const LogVerdict& log, const FindingList& left) const {
        const auto& changes = log.mended.changes;
        const bool guessed = std::any_of(changes.begin(), changes.end(), [](const auto& change) {
            return change.kind.code == finding::encoding.code;
        });
        if (guessed && options_.encoding.empty()) {
            say("{}: the encoding of bytes that were no UTF-8 is guessed; --encoding NAME changes "
                "the guess",
                targetName());
        }
        note("{} can be imported{}; {}", targetName(), losesNothing(left) ? "" : ", but not whole",
             describeLeft(left));
    }

    bool write(const LogVerdict& log) {
        const Copy copy = copyOf(log.mended);
        if (!copy.refusal.empty()) {
            say("{}: not written: {} cannot be mended: {}", targetName(), log.name, copy.refusal);
            return false;
        }
        if (const int error = writeFile(log.mended.text())) {
            cannotWrite(options_.fixed, error);
            return false;
        }
        for (const MendedLog::Change& change : log.mended.changes) {
            tell(lineOf(log, change), changes_, jsonOf(log, change));
        }
        out_.flush();
        note("{}: {}", targetName(),
             log.mended.changes.empty() ? "a copy without a change"
                                        : counted(log.mended.changes.size(), "change"));
        tellLeft(log, copy.left);
        return true;
    }

    [[nodiscard]] std::string targetName() const {
        return options_.fixed == "-" ? "standard output" : options_.fixed;
    }

    /// Why an import would not take the mended log; empty where it would.
    static std::string whyNotMended(const MendedLog& log) {
        if (!log.failure.empty()) {
            return log.failure;
        }
        auto trial = TemporaryFile::anywhere();
        const int error = trial ? writeAll(trial->file(), log.text()) : errno;
        if (error != 0) {
            return reasonText(error);
        }
        trial->close();
        const auto input = InputFile::open(trial->path());
        return input ? readLogHead(*input).refusal : reasonText(EIO);
    }

    /// 0, or an error number.
    [[nodiscard]] int writeFile(std::string_view text) const {
        if (const int error = target_.whyNotWritable()) {
            return error;
        }
        auto written = target_.makeSibling();
        if (!written) {
            return errno;
        }
        const int error = writeAll(written->file(), text);
        written->close();
        return error != 0 ? error : target_.take(*written);
    }

    const CheckOptions& options_;
    const SaveTarget target_;
    Output out_;
    Json findings_ = Json::array();
    Json changes_ = Json::array();
};

int runCheck(const CheckOptions& options) {
    return usageMakesSense(options) ? CheckJob{options}.run() : exitUsage;
}

std::vector<std::string> allCodes() {
    std::vector<std::string> codes;
    for (const FindingKind& kind : findingKinds()) {
        codes.emplace_back(kind.code);
    }
    return codes;
}

} // namespace

void addCheckCommand(CLI::App& app, Task& task) {
    auto options = std::make_shared<CheckOptions>();
    CLI::App* const command =
        app.add_subcommand("check", "Tell what an import of logs would lose or change");
    command->footer(examples);
    command->add_option("LOG", options->logs, "ALE logs, or - for standard input")
        ->required()
        ->type_name("");
    command
        ->add_option("--fix", options->fixed,
                     "Write a copy of the log that imports whole, and list what was changed")
        ->type_name("OUT");
    command
        ->add_option("--encoding", options->encoding,
                     "How --fix reads bytes that are no UTF-8 (WINDOWS-1252, or MACINTOSH "
                     "where lines end in CR)")
        ->type_name("NAME");
    command
        ->add_option("--ignore", options->ignored,
                     "Leave out findings of this code, as column-without-field; repeatable")
        ->delimiter(',')
        ->check(CLI::IsMember(allCodes()).description(""))
        ->type_name("CODE")
        ->allow_extra_args(false);
    command->add_flag("--json", options->json, "Print the findings and changes as JSON");
    command->add_flag("--in-place", options->inPlace,
                      "Allow the copy to replace the log, or another file");
    command->callback([options, &task] { task = [options] { return runCheck(*options); }; });
}
