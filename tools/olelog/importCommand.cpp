// olelog import: logs into a table file.
//
// Everything is read and checked before anything is written. The table gets the standard columns;
// the module sends the logs' columns to them; with --all-columns the others get columns of their
// own.

#include "check/FindingList.h"
#include "checkedSave.h"
#include "Command.h"
#include "extraColumns.h"
#include "files.h"
#include "identify.h"
#include "importedValues.h"
#include "importSummary.h"
#include "lineNumbers.h"
#include "LogFile.h"
#include "messages.h"
#include "ole/interchange/ALE.h"
#include "ole/oledb/oledb.h"
#include "repeatedRows.h"
#include "ReplacedFile.h"
#include "SaveTarget.h"
#include "shownText.h"
#include "standardFields.h"
#include "tableFile.h"
#include "tableValues.h"
#include "tarn/StringFunctions.h"
#include "tarn/TextFile.h"
#include "tarn/trimmed.h"

#include <algorithm>
#include <cerrno>
#include <CLI/CLI.hpp>
#include <fmt/format.h>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <sys/stat.h>
#include <utility>
#include <vector>

namespace {

struct ImportOptions {
    std::vector<std::string> logs;
    std::string output;
    bool allColumns = false;
    bool identify = false;
    bool append = false;
    bool inPlace = false;
    bool strict = false;
};

struct Log {
    InputFile file;
    LogHead head;
};

using ByName = std::map<LightweightString<char>, std::string, StrCmpCI>;

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
        return target.standsInTheWay(options.inPlace);
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
        for (const Log& log : logs_) {
            taken = take(log) && taken;
        }
        if (!taken) {
            say("{}: not written", options_.output);
            return exitFailure;
        }
        tellRenamed();
        if (options_.strict && (cut_ || !extra_.noRoom.empty() || !extra_.renamed.empty())) {
            return refuseLoss(options_.output);
        }
        if (wouldLoseRows()) {
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

    // -- the table and its columns

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

    [[nodiscard]] bool hasField(oledb& table, const std::string& title) const {
        return ALE::findODBColumnFor(table, title.c_str()) >= 0;
    }

    /// The titles of the logs' columns, each once, in order.
    [[nodiscard]] std::vector<std::string> allTitles() const {
        std::vector<std::string> titles;
        std::set<std::string> known;
        for (const Log& log : logs_) {
            for (const std::string& title : log.head.columns) {
                if (known.insert(title).second) {
                    titles.push_back(title);
                }
            }
        }
        return titles;
    }

    void addColumnsOfLogs() {
        std::vector<std::string> titles = allTitles();
        const auto withField =
            std::stable_partition(titles.begin(), titles.end(), [this](const std::string& title) {
                return !hasField(*table_, title);
            });
        const std::vector<std::string> standard{withField, titles.end()};
        titles.erase(withField, titles.end());
        oledb trial{*table_, 0};
        if (!appending_ && !addExtraColumns(trial, titles).noRoom.empty()) {
            leaveOutEmptyFields(standard);
        }
        extra_ = addExtraColumns(*table_, titles);
        findings_ = findings_ || !extra_.noRoom.empty() || !extra_.renamed.empty();
        oledb probe{*table_, 0};
        if (addFieldWithRoom(probe, {"Tag", DBFieldTypes::LONG}) < 0) {
            say("{}: no room is left for a column \"Tag\": its rows cannot be tagged",
                options_.output);
        }
    }

    /// Makes room: takes away the standard columns that no log fills.
    void leaveOutEmptyFields(const std::vector<std::string>& titles) {
        oledb trial{*table_, 0};
        for (const Log& log : logs_) {
            ALE::fillODB(trial, modulePath(log.file.path()));
        }
        std::vector<DBFieldDesc> kept;
        std::vector<std::string> leftOut;
        for (const DBFieldDesc& field : standardFields()) {
            const auto col = static_cast<unsigned>(trial.get_fieldnum(field.name.c_str()));
            const bool needed =
                field.name == "Name" || (options_.identify && field.name == "Cookie");
            if (needed || countFilled(trial, col) != 0) {
                kept.push_back(field);
            } else {
                leftOut.emplace_back(field.name.c_str());
            }
        }
        table_ = tableWith(kept);
        for (const std::string& title : titles) {
            if (!hasField(*table_, title)) {
                emptyTitles_.insert(title);
            }
        }
        say("left out to make room, as no log fills them: {}", listed(leftOut));
    }

    void tellRenamed() const {
        for (const auto& [title, name] : extra_.renamed) {
            say("column {} is called {} in the table: a table file cannot hold its name",
                inQuotes(title), inQuotes(name));
        }
    }

    // -- one log

    bool take(const Log& log) {
        showProgress(fmt::format("reading {} ...", log.file.name()));
        const unsigned firstRow = table_->get_num_records();
        const ByName before = parametersBefore(log.head);
        ALE::Report report;
        ALE::fillODB(*table_, modulePath(log.file.path()), report);
        clearProgress();
        if (report.refusal != ALE::Report::Refusal::None) {
            say("{}: cannot be taken any more; it has changed", log.file.name());
            return false;
        }
        fillByHand(log, firstRow, report);
        origins_.add(firstRow, log.file.name(), report.rowLines);
        say("{}: {}", log.file.name(),
            summaryOf(log.head, report, droppedColumns(report),
                      options_.allColumns ? "without room" : "dropped"));
        tellShortRows(log);
        tellParameters(log, before);
        tellRepeated(log, firstRow, report);
        tellHeading(log);
        const bool changed = tellChangedValues(log, firstRow, report);
        cut_ = cut_ || changed || !log.head.shortRows.empty() || !report.skippedLines.empty() ||
               !log.head.shiftedLines.empty() || !log.head.zeroLines.empty();
        findings_ = findings_ || cut_;
        if (report.recordsAdded == 0 && !report.skippedLines.empty()) {
            say("{}: cannot be taken: every line has more values than line {} has column names",
                log.file.name(), log.head.namesLine);
            return false;
        }
        return true;
    }

    void tellRepeated(const Log& log, unsigned firstRow, const ALE::Report& report) {
        std::vector<unsigned> lines;
        for (const unsigned row :
             repeatedRows({*table_, 0, firstRow}, {*table_, firstRow, table_->get_num_records()})) {
            lines.push_back(report.rowLines[row - firstRow]);
        }
        if (!lines.empty()) {
            say("{}: {} in {} already, with the same values wherever both have some, and added "
                "again: line {}",
                log.file.name(), counted(lines.size(), "row stands", "rows stand"),
                appending_ ? "the table" : "another log", runsOf(lines));
            findings_ = true;
        }
    }

    /// Tells what of the lines before the rows is not in the table as it stands there.
    void tellHeading(const Log& log) {
        const LogHead& head = log.head;
        for (const auto* const lines : {&head.repeated, &head.unknownFilm, &head.unreadLines}) {
            Findings told;
            for (const LogHead::OddLine& odd : *lines) {
                told.tell(fmt::format("{}:{}: {}", log.file.name(), odd.line, odd.what));
            }
            told.close();
            cut_ = cut_ || told.any();
        }
    }

    /// Tells values that the import itself did not take as they stand; whether there are any.
    bool tellChangedValues(const Log& log, unsigned firstRow, const ALE::Report& report) const {
        std::vector<std::size_t> places;
        for (std::size_t i = 0; i < log.head.columns.size(); ++i) {
            if (changesValues(log.head, log.head.columns[i])) {
                places.push_back(i);
            }
        }
        if (places.empty()) {
            return false;
        }
        const TextFile text{modulePath(log.file.path()), true};
        Findings changed;
        for (unsigned i = 0; i < report.rowLines.size(); ++i) {
            const auto pieces = piecesOfRow(text.lineView(report.rowLines[i] - 1));
            for (const std::size_t place : places) {
                const std::string what = place < pieces.size()
                                             ? whatIsLost(log, place, pieces[place], firstRow + i)
                                             : "";
                if (!what.empty()) {
                    changed.tell(
                        fmt::format("{}:{}: {}", log.file.name(), report.rowLines[i], what));
                }
            }
        }
        changed.close();
        return changed.any();
    }

    /// What of a value is not in its field; "" where nothing is lost. Of several columns that are
    /// joined there no more can be said than that the field holds something.
    [[nodiscard]] std::string whatIsLost(const Log& log, std::size_t place, std::string_view piece,
                                         unsigned row) const {
        const std::string& title = log.head.columns[place];
        const int field = ALE::findODBColumnFor(*table_, title.c_str());
        if (field < 0 || isEssentiallyEmpty(piece)) {
            return {};
        }
        const std::string_view value = valueOf(*table_, row, static_cast<unsigned>(field));
        const auto goesThere = [&](const std::string& other) {
            return ALE::findODBColumnFor(*table_, other.c_str()) == field;
        };
        const bool joined =
            std::count_if(log.head.columns.begin(), log.head.columns.end(), goesThere) > 1;
        const auto imported = importedValue(log.head, title, piece, value);
        const bool same = value == Tarn::trimmed(piece) || (joined && !value.empty());
        return same || !imported || imported->kept ? "" : imported->what;
    }

    /// Fills the columns that the module does not find by the logs' titles, as it fills others.
    void fillByHand(const Log& log, unsigned firstRow, const ALE::Report& report) {
        std::vector<std::pair<std::size_t, unsigned>> places;
        for (std::size_t i = 0; i < log.head.columns.size(); ++i) {
            const auto found = extra_.filledByHand.find(log.head.columns[i]);
            if (found != extra_.filledByHand.end()) {
                places.emplace_back(i, found->second);
            }
        }
        if (places.empty()) {
            return;
        }
        const TextFile text{modulePath(log.file.path()), true};
        for (unsigned i = 0; i < report.rowLines.size(); ++i) {
            const auto pieces = piecesOfRow(text.lineView(report.rowLines[i] - 1));
            for (const auto& [piece, col] : places) {
                if (piece < pieces.size()) {
                    join(firstRow + i, col, pieces[piece]);
                }
            }
        }
    }

    void join(unsigned row, unsigned col, std::string_view piece) {
        std::string value = table_->get_field(row, static_cast<int>(col));
        value += value.empty() ? "" : ", ";
        value += piece;
        value.erase(value.find_last_not_of(' ') + 1);
        table_->set_field(row, col, value.c_str());
    }

    [[nodiscard]] std::vector<std::string> droppedColumns(const ALE::Report& report) const {
        std::vector<std::string> dropped;
        for (const LightweightString<char>& column : report.columnsWithoutField) {
            const std::string title{column.view()};
            if (!extra_.filledByHand.contains(title) && !emptyTitles_.contains(title)) {
                dropped.push_back(title);
            }
        }
        return dropped;
    }

    /// Once for all rows, by the first of them.
    static void tellShortRows(const Log& log) {
        const std::vector<LogHead::ShortRow>& rows = log.head.shortRows;
        if (rows.empty()) {
            return;
        }
        std::vector<unsigned> others;
        for (std::size_t i = 1; i < rows.size(); ++i) {
            others.push_back(rows[i].line);
        }
        say("{}:{}: {}{}", log.file.name(), rows.front().line,
            describeShortRow(log.head, rows.front()), andOtherLines(others));
    }

    // -- heading parameters

    [[nodiscard]] ByName parametersBefore(const LogHead& head) const {
        ByName before;
        for (const LogHead::Parameter& parameter : head.parameters) {
            if (const char* const value = table_->get_param_val(parameter.name.c_str())) {
                before[parameter.name.c_str()] = value;
            }
        }
        return before;
    }

    void tellParameters(const Log& log, const ByName& before) {
        std::vector<std::string> differing;
        for (const auto& [name, old] : before) {
            const std::string value = table_->get_param_val(name.c_str());
            if (old != value) {
                differing.push_back(
                    fmt::format("{} is {}, was {}", name.view(), inQuotes(value), inQuotes(old)));
            }
        }
        const std::vector<std::string> notTaken = parametersNotTaken(log.head, *table_);
        if (!differing.empty()) {
            say("{}: heading differs from what came before, and the last value counts: {}",
                log.file.name(), fmt::join(differing, ", "));
        }
        if (!notTaken.empty()) {
            say("{}: heading parameters that do not fit into the table's {}: {}", log.file.name(),
                oledb::maxParams, listed(notTaken));
            findings_ = cut_ = true;
        }
    }

    // -- the end

    /// A table that is replaced may hold rows that no log brings back; says how many.
    [[nodiscard]] bool wouldLoseRows() const {
        if (appending_ || options_.inPlace || !target_.isTable()) {
            return false;
        }
        const std::unique_ptr<oledb> old = loadTableQuietly(options_.output);
        const unsigned missing = countMissing({*old, 0, old->get_num_records()},
                                              {*table_, 0, table_->get_num_records()});
        if (missing != 0) {
            say("{} holds {}, {} of which {} not among those of the logs and would go; --append "
                "adds to it, --in-place allows to replace it",
                options_.output, counted(old->get_num_records(), "row"), missing,
                missing == 1 ? "is" : "are");
        }
        return missing != 0;
    }

    int save() {
        showProgress(fmt::format("writing {} ...", options_.output));
        const int code = saveChecked(*table_, place_, origins_, {.strict = options_.strict});
        clearProgress();
        if (code == exitFailure) {
            return code;
        }
        if (logs_.size() > 1 || appending_) {
            say("{}: {}, {}", options_.output == "-" ? "standard output" : options_.output,
                counted(table_->get_num_records(), "row"),
                counted(table_->get_num_fields(), "column"));
        }
        if (!appending_) {
            target_.tell();
        }
        return findings_ ? exitFindings : code;
    }

    const ImportOptions& options_;
    const SaveTarget& place_;
    const ReplacedFile& target_;
    std::vector<Log> logs_;
    std::unique_ptr<oledb> table_;
    bool appending_ = false;
    ExtraColumns extra_;
    std::set<std::string> emptyTitles_; // their fields were left out for want of values
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
        "or a table with tags or identifiers");
    addStrictOption(*command, options->strict);
    addExample(*command, "olelog import day-12.ale -o day-12.odb");
    command->callback([options, &task] { task = [options] { return runImport(*options); }; });
}
