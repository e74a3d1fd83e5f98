// olelog show: the rows of a table, for people or for other programs.

#include "AlignedTable.h"
#include "Command.h"
#include "dataFormats.h"
#include "messages.h"
#include "ole/oledb/oledb.h"
#include "Output.h"
#include "selection.h"
#include "tableFile.h"
#include "tableValues.h"
#include "tarn/numbers.h"
#include "tarn/StringFunctions.h"
#include "terminal.h"

#include <CLI/CLI.hpp>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace {

constexpr int widestTable = 1000000;

struct ShowOptions {
    std::string file;
    SelectionOptions selection;
    std::string format = "table";
    bool all = false;
    int width = 0; ///< 0: as the terminal has it
};

/// Whether a column tells something. The column of the tags holds a 0 in every row that has none.
bool tellsSomething(ODBBase& table, unsigned col) {
    const bool holdsTags = compareIgnoringCase(table.get_fieldname(col), "Tag") == 0;
    for (unsigned row = 0; row < table.get_num_records(); ++row) {
        const std::string_view value = valueOf(table, row, col);
        if (!value.empty() && !(holdsTags && value == "0")) {
            return true;
        }
    }
    return false;
}

/// Columns that were named are shown in any case.
std::vector<unsigned> columnsToShow(const Selection& selection, bool all) {
    std::vector<unsigned> columns;
    for (const unsigned col : selection.columns) {
        if (all || selection.columnsNamed || tellsSomething(*selection.rows, col)) {
            columns.push_back(col);
        }
    }
    return columns;
}

TableColumn describe(ODBBase& table, unsigned col) {
    const DBFieldTypes::eType type = table.get_field_type(col);
    const bool isNumber =
        type == DBFieldTypes::LONG || type == DBFieldTypes::NUMERIC || type == DBFieldTypes::DOUBLE;
    const bool isTime = type == DBFieldTypes::TIMECODE || type == DBFieldTypes::TIMECODE_S ||
                        type == DBFieldTypes::TIME_OF_DAY || type == DBFieldTypes::DATE;
    return {table.get_fieldname(col), !isNumber && !isTime, isNumber};
}

std::optional<std::size_t> widthToUse(const ShowOptions& options) {
    return options.width > 0 ? std::optional{static_cast<std::size_t>(options.width)}
                             : terminalWidth();
}

/// Prints the table; returns what is to be said about it.
std::string printAligned(const Selection& selection, const ShowOptions& options, Output& out) {
    ODBViewRep& table = *selection.rows;
    const std::vector<unsigned> columns = columnsToShow(selection, options.all);
    if (columns.empty()) {
        return fmt::format("no {} to show", selection.isEmpty() ? "rows" : "values");
    }
    std::vector<TableColumn> descriptions;
    descriptions.reserve(columns.size());
    for (const unsigned col : columns) {
        descriptions.push_back(describe(table, col));
    }
    AlignedTable aligned{descriptions, table.get_num_records(),
                         [&](std::size_t row, std::size_t col) {
                             return valueOf(table, static_cast<unsigned>(row), columns[col]);
                         }};
    const auto width = widthToUse(options);
    const auto leftOut = width ? aligned.fitInto(*width) : std::vector<std::string>{};
    const int tag = table.get_fieldnum("Tag");
    aligned.print(out, mayStyleOutput(), [&](std::size_t row) {
        const char* const number = table.get_field(static_cast<unsigned>(row), tag);
        return tag >= 0 && Tarn::parseInt(number) != 0;
    });
    return leftOut.empty() ? ""
                           : fmt::format("{} not shown for want of room (--fields chooses): {}",
                                         counted(leftOut.size(), "column"), listed(leftOut));
}

/// Prints the rows; returns what is to be said about them.
std::string printAsJson(const Selection& selection, Output& out) {
    const std::size_t changed = printJson(*selection.rows, selection.columns, out);
    return changed == 0 ? ""
                        : counted(changed, "text") +
                              " with bytes that are no UTF-8, which were replaced by U+FFFD";
}

/// Prints what was selected; returns what is to be said about it.
std::string print(const Selection& selection, const ShowOptions& options, Output& out) {
    if (options.format == "csv") {
        printCsv(*selection.rows, selection.columns, out);
        return {};
    }
    return options.format == "json" ? printAsJson(selection, out)
                                    : printAligned(selection, options, out);
}

int runShow(const ShowOptions& options) {
    const auto file = InputFile::open(options.file);
    const LoadedTable loaded = file ? loadTable(*file) : LoadedTable{};
    if (!loaded.table) {
        return exitFailure;
    }
    const auto selection = select(*loaded.table, options.selection);
    if (!selection) {
        return exitUsage;
    }
    const bool nothingFound = selection->foundNothing();
    Output out = options.format == "table" ? Output::forReading() : Output{};
    std::string remark;
    if (!nothingFound || options.format != "table") {
        remark = print(*selection, options, out);
    }
    const bool altered = options.format == "json" && !remark.empty();
    const bool fine = loaded.whole && !altered && !nothingFound;
    const int code = out.finish(fine ? exitFine : exitFindings);
    if (nothingFound || altered) {
        say("{}: {}", file->name(), nothingFound ? "no row is selected" : remark);
    } else if (!remark.empty()) {
        note("{}: {}", file->name(), remark);
    }
    return code;
}

} // namespace

void addShowCommand(CLI::App& app, Task& task) {
    auto options = std::make_shared<ShowOptions>();
    CLI::App* const command = app.add_subcommand("show", "Print the rows of a table file");
    command->add_option("FILE", options->file, "A table file, or - for standard input")
        ->required()
        ->type_name("");
    command
        ->add_option("--format", options->format,
                     "table: aligned, fitting the terminal; csv: RFC 4180; json: an array of "
                     "objects")
        ->check(CLI::IsMember({"table", "csv", "json"}).description(""))
        ->capture_default_str()
        ->type_name("table|csv|json");
    command->add_flag("--all", options->all,
                      "Show the columns without a value too (csv and json always do)");
    command->add_option("--width", options->width, "Make the table so wide, not as the terminal is")
        ->check(CLI::Range(1, widestTable).description(""))
        ->type_name("N");
    addSelectionOptions(*command, options->selection);
    addExample(*command, "olelog show day-12.odb --where Scene=31 --fields Name,Reel,Notes");
    command->callback([options, &task] { task = [options] { return runShow(*options); }; });
}
