// olelog save: chosen rows and columns as a table file of their own.
//
// They become a new table, so that tags keep their values (a view's are only on or off) and the
// file's widths are those of the rows that are in it.

#include "checkedSave.h"
#include "Command.h"
#include "files.h"
#include "messages.h"
#include "ole/oledb/oledb.h"
#include "ReplacedFile.h"
#include "SaveTarget.h"
#include "selection.h"
#include "tableFile.h"
#include "tableValues.h"

#include <algorithm>
#include <CLI/CLI.hpp>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace {

struct SaveOptions {
    std::string file;
    std::string output;
    bool inPlace = false;
    bool strict = false;
    SelectionOptions selection;
};

bool isOverInput(const SaveOptions& options) {
    return isSameFile(options.file, options.output);
}

/// A table of the selected columns, with the parameters of the one that they come from.
std::unique_ptr<oledb> makeTable(oledb& source, const std::vector<unsigned>& columns) {
    std::vector<DBFieldDesc> fields;
    fields.reserve(columns.size() + 1);
    for (const unsigned col : columns) {
        fields.emplace_back(source.get_fieldname(col), source.get_field_type(col));
    }
    fields.emplace_back(); // ends the list
    auto table = std::make_unique<oledb>(fields.data());
    for (unsigned i = 0; i < source.get_num_params(); ++i) {
        table->add_param(source.get_param_name(i), source.get_param_value(i));
    }
    return table;
}

void copyRows(const Selection& selection, oledb& table) {
    table.add_records(selection.rows->count());
    for (unsigned row = 0; row < table.get_num_records(); ++row) {
        for (unsigned i = 0; i < selection.columns.size(); ++i) {
            const auto col = static_cast<int>(selection.columns[i]);
            table.set_field(row, i, selection.rows->get_field(row, col));
        }
    }
}

/// Tags and identifiers that stand in columns that are not among the chosen ones.
void tellLeftOut(const oledb& source, const Selection& selection) {
    for (const char* const name : {"Tag", "Cookie"}) {
        const int col = source.get_fieldnum(name);
        const bool chosen = std::count(selection.columns.begin(), selection.columns.end(),
                                       static_cast<unsigned>(col)) != 0;
        std::size_t filled = 0;
        for (int row = 0; col >= 0 && !chosen && row < selection.rows->count(); ++row) {
            const std::string_view value =
                valueOf(*selection.rows, static_cast<unsigned>(row), static_cast<unsigned>(col));
            filled += value.empty() || value == "0" ? 0 : 1;
        }
        if (filled != 0) {
            say("the column {} is left out, which holds values in {}", name,
                counted(filled, "row"));
        }
    }
}

int saveSelection(oledb& source, const Selection& selection, const SaveTarget& place,
                  const ReplacedFile& replaced, const SaveOptions& options) {
    const std::unique_ptr<oledb> table = makeTable(source, selection.columns);
    copyRows(selection, *table);
    if (replaced.losesRowsTo(*table, options.inPlace)) {
        return exitUsage;
    }
    return saveChecked(*table, place, {}, {.strict = options.strict});
}

int runSave(const SaveOptions& options) {
    const SaveTarget place{options.output};
    if (isOverInput(options) && !options.inPlace) {
        say("{} would be replaced by a selection of it; --in-place allows that", options.output);
        return exitUsage;
    }
    const ReplacedFile target{options.output};
    if (!isOverInput(options) && target.standsInTheWay(options.inPlace)) {
        return exitUsage;
    }
    const auto file = InputFile::open(options.file);
    const LoadedTable loaded = file ? loadTable(*file) : LoadedTable{};
    if (!loaded.table) {
        return exitFailure;
    }
    if (isOverInput(options) && !loaded.whole) {
        say("{}: not written, for what could not be read would be lost", options.output);
        return exitFailure;
    }
    const auto selection = select(*loaded.table, options.selection);
    if (!selection) {
        return exitUsage;
    }
    if (selection->foundNothing()) {
        say("{}: no row is selected; nothing was written", file->name());
        return exitFindings;
    }
    tellLeftOut(*loaded.table, *selection);
    const int code = saveSelection(*loaded.table, *selection, place, target, options);
    if (code != exitFailure && code != exitUsage) {
        target.tell();
    }
    return code == exitFine && !loaded.whole ? exitFindings : code;
}

} // namespace

void addSaveCommand(CLI::App& app, Task& task) {
    auto options = std::make_shared<SaveOptions>();
    CLI::App* const command =
        app.add_subcommand("save", "Write chosen rows and columns as a table file");
    command->add_option("FILE", options->file, "A table file, or - for standard input")
        ->required()
        ->type_name("");
    command->add_option("-o,--output", options->output, "The table file, or - for standard output")
        ->required()
        ->type_name("TABLE");
    command->add_flag(
        "--in-place", options->inPlace,
        "Allow the table to replace the one read, a file that is no table, a container, "
        "or a table with tags, identifiers or other rows");
    addStrictOption(*command, options->strict);
    addSelectionOptions(*command, options->selection);
    addExample(*command,
               "olelog save day-12.odb -o prints.odb --where Notes=print --sort Reel,Shot");
    command->callback([options, &task] { task = [options] { return runSave(*options); }; });
}
