// olelog export: a selection for other programs, in a file that is replaced whole or not at all.

#include "checkedSave.h"
#include "Command.h"
#include "dataFormats.h"
#include "fieldMaps.h"
#include "files.h"
#include "LogFile.h"
#include "messages.h"
#include "moduleCsv.h"
#include "ole/oledb/oledb.h"
#include "Output.h"
#include "ReplacedFile.h"
#include "SaveTarget.h"
#include "selection.h"
#include "shownText.h"
#include "tableFile.h"
#include "tableValues.h"
#include "tarn/StringFunctions.h"

#include <cerrno>
#include <CLI/CLI.hpp>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unistd.h>

namespace {

struct ExportOptions {
    std::string file;
    std::string output;
    std::string format;
    CsvStyle style;
    bool keepFields = false;
    bool allFields = false;
    bool inPlace = false;
    bool strict = false;
    SelectionOptions selection;
};

bool endsWith(const std::string& name, std::string_view ending) {
    return name.size() >= ending.size() &&
           compareIgnoringCase(std::string_view{name}.substr(name.size() - ending.size()),
                               ending) == 0;
}

/// The format asked for, or that of the file's ending; "" where neither tells.
std::string formatOf(const ExportOptions& options) {
    if (!options.format.empty()) {
        return options.format;
    }
    if (endsWith(options.output, ".csv")) {
        return "rfc4180";
    }
    return endsWith(options.output, ".json") ? "json" : "";
}

/// Why the options make no sense together; "" where they do.
std::string whyNonsense(const ExportOptions& options, const std::string& format) {
    if (format.empty()) {
        return "which format? --format csv, rfc4180 or json; a name that ends in .csv (rfc4180) or "
               ".json tells it too";
    }
    if (format != "rfc4180" && (options.style.mark || options.style.guardFormulas)) {
        return "--bom and --guard-formulas are for --format rfc4180";
    }
    if (options.keepFields && options.file == "-") {
        return "--keep-fields needs a table file, not standard input";
    }
    if (options.keepFields && isSameFile(options.file, options.output)) {
        return "--keep-fields would be lost, for " + options.output + " is FILE";
    }
    if (!options.inPlace && options.output != "-" && isTableFile(options.output)) {
        const bool isContainer = ReplacedFile{options.output}.isContainer();
        return options.output + (isContainer ? " is a container" : " is a table") +
               "; --in-place allows to replace it";
    }
    if (!options.inPlace && options.output != "-" && isLogFile(options.output)) {
        return options.output + " is a log; --in-place allows to replace it";
    }
    return {};
}

/// Takes the fields of the table's own field map, where none were named.
bool takeStoredFields(oledb& table, const ExportOptions& options, Selection& selection) {
    const auto stored =
        options.selection.fields || options.allFields ? std::nullopt : columnsOfStoredMap(table);
    if (!stored) {
        return true;
    }
    if (stored->empty()) {
        say("{}: the table's field map shows no field; --all-fields exports all", options.file);
        return false;
    }
    if (*stored != selection.columns) {
        note("{}: {} of {}, as the table's field map has them; --all-fields exports all",
             options.file, stored->size(), counted(table.get_num_fields(), "field"));
    }
    selection.columns = *stored;
    return true;
}

class Export {
public:
    Export(const ExportOptions& options, std::string format)
        : options_{options}, format_{std::move(format)}, place_{options.output},
          replaced_{options.output}, source_{options.file} {}

    int run() {
        const auto file = InputFile::open(options_.file);
        const LoadedTable loaded = file ? loadTable(*file) : LoadedTable{};
        if (!loaded.table) {
            return exitFailure;
        }
        if (options_.keepFields && !loaded.whole) {
            say("{}: keeps no fields, for what could not be read would be lost", file->name());
            return exitFailure;
        }
        auto selection = select(*loaded.table, options_.selection);
        if (!selection) {
            return exitUsage;
        }
        if (!takeStoredFields(*loaded.table, options_, *selection)) {
            return exitFailure;
        }
        if (selection->foundNothing()) {
            say("{}: no row is selected; nothing was written", file->name());
            return exitFindings;
        }
        findings_ = !loaded.whole;
        return write(*loaded.table, *selection);
    }

private:
    int write(oledb& table, const Selection& selection) {
        if (const int error = place_.whyNotWritable()) {
            return cannotWrite(options_.output, error);
        }
        auto written = place_.makeSibling();
        const int failed = written ? fill(*written, table, selection) : errno;
        if (failed != 0) {
            return cannotWrite(options_.output, failed);
        }
        if (options_.keepFields && !keepFields(table, selection)) {
            return exitFailure;
        }
        if (const int error = place_.take(*written)) {
            return cannotWrite(options_.output, error);
        }
        replaced_.tell();
        return findings_ ? exitFindings : exitFine;
    }

    /// Writes the selection; 0, or an error number.
    int fill(TemporaryFile& file, oledb& table, const Selection& selection) {
        if (format_ == "csv") {
            file.close();
            const int error = writeModuleCsv(table, selection, file.path());
            findings_ = (error == 0 && tellCsvLosses(table, selection)) || findings_;
            return error;
        }
        Output out{file.file(), options_.output};
        if (format_ == "json") {
            tellReplaced(printJson(*selection.rows, selection.columns, out));
        } else {
            tellGuarded(printCsv(*selection.rows, selection.columns, out, options_.style));
            tellForeignBytes(selection);
        }
        int error = out.end();
        if (error == 0 && fsync(file.file()) != 0) {
            error = errno;
        }
        file.close();
        return error;
    }

    /// A CSV text keeps the bytes as they are.
    void tellForeignBytes(const Selection& selection) {
        const std::size_t texts = countForeign(selection);
        if (texts != 0) {
            say("{} with bytes that are no UTF-8; olelog check --fix converts those of a log",
                counted(texts, "text"));
            findings_ = true;
        }
    }

    static std::size_t countForeign(const Selection& selection) {
        std::size_t texts = 0;
        for (int row = 0; row < selection.rows->count(); ++row) {
            for (const unsigned col : selection.columns) {
                texts += isUtf8(valueOf(*selection.rows, static_cast<unsigned>(row), col)) ? 0 : 1;
            }
        }
        return texts;
    }

    void tellReplaced(std::size_t texts) {
        if (texts != 0) {
            say("{} with bytes that are no UTF-8, which were replaced by U+FFFD",
                counted(texts, "text"));
            findings_ = true;
        }
    }

    void tellGuarded(std::size_t cells) {
        if (cells != 0) {
            note("{} an apostrophe, as --guard-formulas asks",
                 counted(cells, "cell got", "cells got"));
        }
    }

    bool keepFields(oledb& table, const Selection& selection) {
        if (!keepMap(table, selection.columns, selection.leftOut)) {
            say("{}: nothing was written", options_.file);
            return false;
        }
        const int code = saveChecked(table, source_, {}, {.strict = options_.strict});
        findings_ = findings_ || code == exitFindings;
        return code != exitFailure;
    }

    const ExportOptions& options_;
    std::string format_;
    const SaveTarget place_;
    const ReplacedFile replaced_;
    const SaveTarget source_; // for --keep-fields
    bool findings_ = false;
};

int runExport(const ExportOptions& options) {
    const std::string format = formatOf(options);
    if (const std::string why = whyNonsense(options, format); !why.empty()) {
        sayLine(why);
        return exitUsage;
    }
    return Export{options, format}.run();
}

void addFormatOptions(CLI::App& command, ExportOptions& options) {
    command
        .add_option("--format", options.format,
                    "rfc4180: CSV for spreadsheets and databases, quotes doubled; csv: the simpler "
                    "form that editors read, with two header lines; json: an array of objects. "
                    "Without it the ending of OUT tells: .csv is rfc4180, .json is json")
        ->check(CLI::IsMember({"csv", "rfc4180", "json"}).description(""))
        ->type_name("rfc4180|csv|json");
    command.add_flag(
        "--bom", options.style.mark,
        "Begin with the mark that tells spreadsheets that the text is UTF-8 (rfc4180)");
    command.add_flag("--guard-formulas", options.style.guardFormulas,
                     "Put an apostrophe before cells that a spreadsheet would take for a formula: "
                     "those that begin with = + - @, a tab or a CR (rfc4180)");
}

} // namespace

void addExportCommand(CLI::App& app, Task& task) {
    auto options = std::make_shared<ExportOptions>();
    CLI::App* const command =
        app.add_subcommand("export", "Write chosen rows and columns for other programs");
    command->add_option("FILE", options->file, "A table file, or - for standard input")
        ->required()
        ->type_name("");
    command->add_option("-o,--output", options->output, "The file, or - for standard output")
        ->required()
        ->type_name("OUT");
    addFormatOptions(*command, *options);
    addSelectionOptions(*command, options->selection);
    CLI::Option* const fields = command->get_option("--fields");
    command
        ->add_flag("--keep-fields", options->keepFields,
                   "Store the fields in FILE as the table's field map (V5_FIELD_MAP): exports "
                   "without --fields follow it from then on")
        ->needs(fields);
    command->add_flag("--all-fields", options->allFields, "Pass over the field map that FILE has")
        ->excludes(fields);
    command->add_flag("--in-place", options->inPlace, "Allow OUT to replace a table file or a log");
    addStrictOption(*command, options->strict);
    addExample(*command, "olelog export day-12.odb -o prints.csv --where Notes=print --fields "
                         "Name,Reel,Notes");
    command->callback([options, &task] { task = [options] { return runExport(*options); }; });
}
