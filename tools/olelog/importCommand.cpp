// olelog import: logs into a table file.
//
// Everything is read and checked before anything is written. The table gets the standard columns;
// the module sends the logs' columns to them; with --all-columns the others get columns of their
// own.

#include "checkedSave.h"
#include "Command.h"
#include "extraColumns.h"
#include "files.h"
#include "identify.h"
#include "importSummary.h"
#include "LogColumns.h"
#include "messages.h"
#include "ole/interchange/ALE.h"
#include "ole/oledb/oledb.h"
#include "Progress.h"
#include "ReplacedFile.h"
#include "SaveTarget.h"
#include "standardFields.h"
#include "tableFile.h"
#include "tableValues.h"
#include "takenLog.h"

#include <algorithm>
#include <cerrno>
#include <CLI/CLI.hpp>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <utility>
#include <vector>

namespace {

constexpr std::string_view appendWay = "--append adds to it, ";

struct ImportOptions {
    std::vector<std::string> logs;
    std::string output;
    bool allColumns = false;
    bool identify = false;
    bool append = false;
    bool inPlace = false;
    bool strict = false;
};

bool usageMakesSense(const ImportOptions& options) {
    if (std::count(options.logs.begin(), options.logs.end(), "-") > 1) {
        sayLine("standard input can be read only once");
        return false;
    }
    if (options.append && options.output == "-") {
        sayLine("--append needs a table file, not standard output");
        return false;
    }
    const bool overLog =
        std::any_of(options.logs.begin(), options.logs.end(),
                    [&](const auto& log) { return isSameFile(log, options.output); });
    if (overLog && !options.inPlace) {
        say("{} is a log and would become the table; --in-place allows that", options.output);
        return false;
    }
    return true;
}

/// Whether rows of logs would go where they should not; says so.
bool isKept(const ReplacedFile& target, const ImportOptions& options) {
    if (!options.append) {
        return target.standsInTheWay(options.inPlace, appendWay);
    }
    if (target.isContainer() && !options.inPlace) {
        say("{} is a container, and rows of logs are no items; --in-place allows to append them",
            options.output);
        return true;
    }
    return false;
}

class ImportJob {
public:
    ImportJob(const ImportOptions& options, const SaveTarget& place, const ReplacedFile& target)
        : options_{options}, place_{place}, target_{target} {}

    int run() {
        if (!openLogs() || !prepareTable()) {
            return exitFailure;
        }
        bool taken = true;
        for (const OpenLog& log : logs_) {
            taken = take(log) && taken;
        }
        if (!taken) {
            say("{}: not written", options_.output);
            return exitFailure;
        }
        const bool columnsChanged = columns_.tellChanged();
        findings_ = findings_ || columnsChanged;
        if (options_.strict && (cut_ || columnsChanged)) {
            return refuseLoss(options_.output);
        }
        if (!appending_ && target_.losesRowsTo(*table_, options_.inPlace, appendWay)) {
            return exitUsage;
        }
        if (options_.identify) {
            identifyRows(*table_);
        }
        return save();
    }

private:
    bool openLogs() {
        bool good = true;
        for (const std::string& name : options_.logs) {
            auto file = InputFile::open(name);
            if (!file) {
                good = false;
                continue;
            }
            LogHead head = readLogHead(*file);
            if (!head.refusal.empty()) {
                say("{}: cannot be taken: {}", file->name(), head.refusal);
                good = false;
            }
            logs_.push_back({std::move(*file), std::move(head)});
        }
        return good;
    }

    bool prepareTable() {
        struct stat status {};
        const bool exists = stat(options_.output.c_str(), &status) == 0 || errno != ENOENT;
        appending_ = options_.append && exists;
        if (appending_ && !loadOutput()) {
            return false;
        }
        if (!appending_) {
            table_ = tableWith(standardFields());
        }
        if (options_.identify && !addCookieColumn()) {
            return false;
        }
        if (options_.allColumns) {
            addColumnsOfLogs();
        }
        return true;
    }

    bool loadOutput() {
        const auto file = InputFile::open(options_.output);
        LoadedTable loaded = file ? loadTable(*file) : LoadedTable{};
        if (!loaded.table || !loaded.whole) {
            say("{}: nothing was appended", options_.output);
            return false;
        }
        table_ = std::move(loaded.table);
        return true;
    }

    bool addCookieColumn() {
        if (addFieldWithRoom(*table_, {"Cookie", DBFieldTypes::TEXT}) >= 0) {
            return true;
        }
        say("{}: no room for a column \"Cookie\"", options_.output);
        return false;
    }

    void addColumnsOfLogs() {
        if (appending_) {
            columns_.addTo(*table_, logs_);
        } else {
            std::set<std::string> kept{"Name"};
            if (options_.identify) {
                kept.insert("Cookie");
            }
            columns_.addToNew(table_, logs_, kept);
        }
        oledb probe{*table_, 0};
        if (addFieldWithRoom(probe, {"Tag", DBFieldTypes::LONG}) < 0) {
            say("{}: no room is left for a column \"Tag\": its rows cannot be tagged",
                options_.output);
        }
    }

    bool take(const OpenLog& log) {
        const Progress progress{"reading " + log.file.name()};
        const ParametersByName before = parametersSetBy(log.head, *table_);
        TakenLog taken{log, *table_, table_->get_num_records(), {}};
        const ALE::Report& report = taken.report;
        ALE::fillODB(*table_, modulePath(log.file.path()), taken.report);
        if (report.refusal != ALE::Report::Refusal::None) {
            say("{}: cannot be taken any more; it has changed", log.file.name());
            return false;
        }
        columns_.fill(taken);
        origins_.add(taken.firstRow, log.file.name(), report.rowLines);
        const std::vector<std::string> dropped = columns_.droppedOf(report);
        const std::string summary =
            summaryOf(log.head, report, dropped, options_.allColumns ? "without room" : "dropped");
        const LogFindings found = tellOf(taken, summary, !dropped.empty(), before,
                                         appending_ ? "the table" : "another log");
        const bool empty = dropped.size() == report.columns.size() && tellNoField(log);
        cut_ = cut_ || found.cut || empty;
        findings_ = findings_ || found.cut || found.repeated || empty;
        if (report.recordsAdded == 0 && !report.skippedLines.empty()) {
            say("{}: cannot be taken: every line has more values than line {} has column names",
                log.file.name(), log.head.namesLine);
            return false;
        }
        return true;
    }

    /// Says that the rows of a log hold nothing; returns true.
    bool tellNoField(const OpenLog& log) const {
        const std::vector<std::string>& titles = log.head.columns;
        const bool hasCommas = titles.size() == 1 && titles[0].find(',') != std::string::npos;
        say("{}:{}: the table has no field for any of these columns, so the rows are empty; {}",
            log.file.name(), log.head.namesLine,
            hasCommas ? "the columns of a log stand between tabs, not commas"
                      : "--all-columns makes a column for each");
        return true;
    }

    int save() {
        const int code = saveChecked(*table_, place_, origins_, {.strict = options_.strict});
        if (code == exitFailure) {
            return code;
        }
        tellUnidentified();
        if (logs_.size() > 1 || appending_) {
            note("{}: {}, {}", options_.output == "-" ? "standard output" : options_.output,
                 counted(table_->get_num_records(), "row"),
                 counted(table_->get_num_fields(), "column"));
        }
        if (!appending_) {
            target_.tell();
        }
        return findings_ ? exitFindings : code;
    }

    /// Rows that are added to identified ones, and have no identifier themselves.
    void tellUnidentified() const {
        const int col = table_->get_fieldnum("Cookie");
        const unsigned rows = table_->get_num_records();
        const unsigned identified = col < 0 ? 0 : countFilled(*table_, static_cast<unsigned>(col));
        if (identified != 0 && identified != rows) {
            say("{}: {} of {} without an identifier; olelog identify gives them one",
                options_.output, rows - identified, counted(rows, "row is", "rows are"));
        }
    }

    const ImportOptions& options_;
    const SaveTarget& place_;
    const ReplacedFile& target_;
    std::vector<OpenLog> logs_;
    std::unique_ptr<oledb> table_;
    bool appending_ = false;
    LogColumns columns_;
    RowOrigins origins_;
    bool findings_ = false;
    bool cut_ = false; // something of the logs is not in the table
};

int runImport(const ImportOptions& options) {
    if (!usageMakesSense(options)) {
        return exitUsage;
    }
    const SaveTarget place{options.output};
    const ReplacedFile target{options.output};
    if (isKept(target, options)) {
        return exitUsage;
    }
    return canBeSaved(options.output) ? ImportJob{options, place, target}.run() : exitFailure;
}

} // namespace

void addImportCommand(CLI::App& app, Task& task) {
    auto options = std::make_shared<ImportOptions>();
    CLI::App* const command = app.add_subcommand("import", "Make a table file of ALE logs");
    command->add_option("LOG", options->logs, "ALE logs, or - for standard input")
        ->required()
        ->type_name("");
    command->add_option("-o,--output", options->output, "The table file, or - for standard output")
        ->required()
        ->type_name("TABLE");
    command->add_flag("--all-columns", options->allColumns,
                      "Add a column for every log column that has no field");
    command->add_flag("--identify", options->identify,
                      "Give every row without an identifier a new one, in the column Cookie");
    command->add_flag("--append", options->append, "Add the rows to the table where it exists");
    command->add_flag(
        "--in-place", options->inPlace,
        "Allow the table to replace a log, another file that is no table, a container, "
        "or a table with tags, identifiers or other rows");
    addStrictOption(*command, options->strict);
    addExample(*command, "olelog import day-12.ale -o day-12.odb");
    command->callback([options, &task] { task = [options] { return runImport(*options); }; });
}
