// olelog show: the rows of a table, for people or for other programs.

#include "AlignedTable.h"
#include "Command.h"
#include "dataFormats.h"
#include "messages.h"
#include "ole/oledb/oledb.h"
#include "Output.h"
#include "tableFile.h"
#include "tableValues.h"
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
    std::string format = "table";
    bool all = false;
    int width = 0; ///< 0: as the terminal has it
};

/// Whether a column tells something. The column of the tags holds a 0 in every row that has none.
bool tellsSomething(oledb& table, unsigned col) {
    const bool holdsTags = compareIgnoringCase(table.get_fieldname(col), "Tag") == 0;
    for (unsigned row = 0; row < table.get_num_records(); ++row) {
        const std::string_view value = valueOf(table, row, col);
        if (!value.empty() && !(holdsTags && value == "0")) {
            return true;
        }
    }
    return false;
}

std::vector<unsigned> columnsToShow(oledb& table, bool all) {
    std::vector<unsigned> columns;
    for (unsigned col = 0; col < table.get_num_fields(); ++col) {
        if (all || tellsSomething(table, col)) {
            columns.push_back(col);
        }
    }
    return columns;
}

TableColumn describe(oledb& table, unsigned col) {
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
std::string printAligned(oledb& table, const ShowOptions& options, Output& out) {
    const std::vector<unsigned> columns = columnsToShow(table, options.all);
    if (columns.empty()) {
        return fmt::format("no {} to show", table.get_num_records() == 0 ? "rows" : "values");
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
    aligned.print(out, mayStyleOutput());
    return leftOut.empty() ? ""
                           : fmt::format("{} not shown for want of room: {}",
                                         counted(leftOut.size(), "column"), listed(leftOut));
}

/// Prints the table; returns what is to be said about it.
std::string printAsJson(oledb& table, Output& out) {
    const std::size_t changed = printJson(table, out);
    return changed == 0 ? ""
                        : counted(changed, "text") +
                              " with bytes that are no UTF-8, which were replaced by U+FFFD";
}

int runShow(const ShowOptions& options) {
    const auto file = InputFile::open(options.file);
    const LoadedTable loaded = file ? loadTable(*file) : LoadedTable{};
    if (!loaded.table) {
        return exitFailure;
    }
    Output out;
    std::string remark;
    if (options.format == "csv") {
        printCsv(*loaded.table, out);
    } else if (options.format == "json") {
        remark = printAsJson(*loaded.table, out);
    } else {
        remark = printAligned(*loaded.table, options, out);
    }
    const bool altered = options.format == "json" && !remark.empty();
    const int code = out.finish(loaded.whole && !altered ? exitFine : exitFindings);
    if (!remark.empty()) {
        say("{}: {}", file->name(), remark);
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
        ->type_name("FORMAT");
    command->add_flag("--all", options->all,
                      "Show the columns without a value too (csv and json always do)");
    command->add_option("--width", options->width, "Make the table so wide, not as the terminal is")
        ->check(CLI::Range(1, widestTable).description(""))
        ->type_name("N");
    command->callback([options, &task] { task = [options] { return runShow(*options); }; });
}
