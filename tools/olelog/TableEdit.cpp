// Changing a table file: read, change, save beside, rename. Nothing is written where nothing
// changed, or where part of the file could not be read and would be lost.

#include "TableEdit.h"

#include "checkedSave.h"
#include "ContainerTable.h"
#include "files.h"
#include "messages.h"
#include "ReplacedFile.h"
#include "SaveTarget.h"
#include "tableFile.h"

#include <CLI/CLI.hpp>
#include <filesystem>
#include <string_view>
#include <system_error>

namespace {

bool isOverInput(const EditOptions& options) {
    return options.output.empty() || isSameFile(options.file, options.output);
}

const std::string& targetOf(const EditOptions& options) {
    return options.output.empty() ? options.file : options.output;
}

std::string_view nameOf(const std::string& target) {
    return target == "-" ? std::string_view{"standard output"} : target;
}

bool stops(const EditOutcome& outcome) {
    return outcome.code != exitFine && outcome.code != exitFindings;
}

/// A table elsewhere, or on standard output, is wanted also where nothing changed.
bool leavesFileAlone(const EditOptions& options, const EditOutcome& outcome) {
    return !outcome.changed && isOverInput(options) && targetOf(options) != "-";
}

int save(oledb& table, const EditOptions& options, const SaveTarget& place) {
    return saveChecked(table, place, {}, {.strict = options.strict, .dryRun = options.dryRun});
}

/// Keeps the table that is there beside it; false, saying why, where that cannot be done.
bool keepBackup(const SaveTarget& place) {
    std::error_code failed;
    if (!std::filesystem::is_regular_file(place.name(), failed)) {
        return true;
    }
    const std::string backup = place.name() + "~";
    std::filesystem::copy_file(place.name(), backup,
                               std::filesystem::copy_options::overwrite_existing, failed);
    if (failed) {
        say("{}: the backup cannot be written: {}; nothing was changed", backup,
            reasonText(failed.value()));
    }
    return !failed;
}

int finish(oledb& table, const EditOptions& options, const SaveTarget& place,
           const ReplacedFile& replaced, const EditOutcome& outcome) {
    const bool alone = leavesFileAlone(options, outcome);
    if (replaced.losesRowsTo(table, options.inPlace)) {
        return exitUsage;
    }
    if (!alone && options.backup && !options.dryRun && !keepBackup(place)) {
        return exitFailure;
    }
    const int code = alone ? exitFine : save(table, options, place);
    if (code == exitFailure) {
        return code;
    }
    if (!outcome.summary.empty()) {
        const bool said = options.dryRun && !alone;
        const bool elsewhere = !options.dryRun && !isOverInput(options) && options.output != "-";
        const std::string text =
            fmt::format("{}: {}{}{}", nameOf(targetOf(options)), elsewhere ? "written; " : "",
                        outcome.summary, said ? "; nothing was written (--dry-run)" : "");
        options.dryRun ? sayLine(text) : noteLine(text); // what a trial would do was asked for
    }
    return outcome.code == exitFine ? code : outcome.code;
}

} // namespace

void addEditOptions(CLI::App& command, EditOptions& options) {
    command
        .add_option("TABLE", options.file,
                    "A table file; - is standard input, and the result goes to "
                    "standard output")
        ->required()
        ->type_name("");
    command
        .add_option("-o,--output", options.output,
                    "Write the result here and leave TABLE as it is; - is standard output")
        ->type_name("OUT");
    command.add_flag("--dry-run", options.dryRun, "Tell what would change, and change nothing");
    command.add_flag("--backup", options.backup,
                     "Keep the table that is replaced beside it, as TABLE~");
    command.add_flag("--in-place", options.inPlace,
                     "Allow OUT to replace a file that is no table, a container, or a table with "
                     "tags, identifiers or other rows");
    addStrictOption(command, options.strict);
}

std::string_view wouldBe(const EditOptions& options) {
    return options.dryRun ? "would be " : "";
}

int runEdit(const EditOptions& options, const Edit& edit) {
    const SaveTarget place{targetOf(options)};
    const ReplacedFile target{isOverInput(options) ? "-" : options.output};
    if (target.standsInTheWay(options.inPlace)) {
        return exitUsage;
    }
    const auto file = InputFile::open(options.file);
    const LoadedTable loaded = file ? loadTable(*file) : LoadedTable{};
    if (!loaded.table) {
        return exitFailure;
    }
    if (isContainer(*loaded.table)) {
        say("{} is a container, not a table of takes; \"olelog container\" adds items to it",
            file->name());
        return exitUsage;
    }
    if (isOverInput(options) && !loaded.whole) {
        say("{}: not written, for what could not be read would be lost; -o OUT takes the rest",
            file->name());
        return exitFailure;
    }
    const EditOutcome outcome = edit(*loaded.table);
    if (stops(outcome)) {
        return outcome.code;
    }
    const int code = finish(*loaded.table, options, place, target, outcome);
    if (code != exitFailure && code != exitUsage && !options.dryRun) {
        target.tell();
    }
    return code == exitFine && !loaded.whole ? exitFindings : code;
}
