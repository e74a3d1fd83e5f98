// olelog info: what a file is, and what stands in its heading.

#include "AlignedTable.h"
#include "Command.h"
#include "ContainerTable.h"
#include "messages.h"
#include "ole/oledb/oledb.h"
#include "ole/oledb/TarnContainerFile.h"
#include "Output.h"
#include "shownText.h"
#include "tableFile.h"
#include "tableValues.h"

#include <algorithm>
#include <CLI/CLI.hpp>
#include <fmt/format.h>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace {

struct InfoOptions {
    std::string file;
    bool json = false;
};

struct ColumnFacts {
    std::string name;
    std::string type;
    unsigned width;
    unsigned filled; ///< rows that have a value
};

std::vector<ColumnFacts> columnFacts(oledb& table) {
    std::vector<ColumnFacts> facts;
    for (unsigned col = 0; col < table.get_num_fields(); ++col) {
        const char* const name = table.get_fieldname(col);
        facts.push_back({name, oledb_fieldtype_to_string(table.get_field_type(col)).c_str(),
                         std::max(table.get_fieldsize(col), oledb::getMinFieldSize(name)),
                         countFilled(table, col)});
    }
    return facts;
}

/// The name of a container, "" for one that has none.
std::string containerName(const oledb& table) {
    const char* const name = table.get_param_val(TarnContainerFile::getNameParamKey());
    return name ? name : "";
}

std::string asJson(const oledb& table, const std::vector<ColumnFacts>& columns) {
    nlohmann::ordered_json object{{"kind", "table"}};
    if (isContainer(table)) {
        object = {{"kind", "container"},
                  {"name", containerName(table)},
                  {"items", table.get_num_records()}};
    }
    object["rows"] = table.get_num_records();
    auto& parameters = object["parameters"] = nlohmann::ordered_json::array();
    for (unsigned i = 0; i < table.get_num_params(); ++i) {
        parameters.push_back(
            {{"name", table.get_param_name(i)}, {"value", table.get_param_value(i)}});
    }
    auto& list = object["columns"] = nlohmann::ordered_json::array();
    for (const ColumnFacts& column : columns) {
        list.push_back({{"name", column.name},
                        {"type", column.type},
                        {"width", column.width},
                        {"filled", column.filled}});
    }
    return object.dump(2, ' ', false, nlohmann::json::error_handler_t::replace) + "\n";
}

std::string kindAndSize(const oledb& table) {
    return isContainer(table) ? fmt::format("container {}, {}", inQuotes(containerName(table)),
                                            counted(table.get_num_records(), "item"))
                              : "table, " + counted(table.get_num_records(), "row");
}

void printParameters(Output& out, const oledb& table) {
    std::vector<std::vector<std::string>> rows;
    for (unsigned i = 0; i < table.get_num_params(); ++i) {
        rows.push_back({table.get_param_name(i), table.get_param_value(i)});
    }
    if (!rows.empty()) {
        out.write("\n");
        printTexts(out, {{"parameter"}, {"value"}}, rows);
    }
}

void printColumns(Output& out, const std::vector<ColumnFacts>& columns) {
    std::vector<std::vector<std::string>> rows;
    rows.reserve(columns.size());
    for (const ColumnFacts& column : columns) {
        rows.push_back({column.name, column.type, std::to_string(column.width),
                        std::to_string(column.filled)});
    }
    out.write("\n");
    printTexts(out,
               {{"column"}, {"type", false}, {"width", false, true}, {"rows filled", false, true}},
               rows);
}

bool holdsOnlyUtf8(const oledb& table, const std::vector<ColumnFacts>& columns) {
    for (unsigned i = 0; i < table.get_num_params(); ++i) {
        if (!isUtf8(table.get_param_name(i)) || !isUtf8(table.get_param_value(i))) {
            return false;
        }
    }
    return std::all_of(columns.begin(), columns.end(),
                       [](const ColumnFacts& column) { return isUtf8(column.name); });
}

int runInfo(const InfoOptions& options) {
    const auto file = InputFile::open(options.file);
    const LoadedTable loaded = file ? loadTable(*file) : LoadedTable{};
    if (!loaded.table) {
        return exitFailure;
    }
    oledb& table = *loaded.table;
    const std::vector<ColumnFacts> columns = columnFacts(table);
    Output out = options.json ? Output{} : Output::forReading();
    int code = loaded.whole ? exitFine : exitFindings;
    if (options.json) {
        out.write(asJson(table, columns));
        if (!holdsOnlyUtf8(table, columns)) {
            say("{}: bytes that are no UTF-8 are replaced by U+FFFD", file->name());
            code = exitFindings;
        }
        return out.finish(code);
    }
    out.write(fmt::format("{}: {}, {}\n", shown(file->name()), kindAndSize(table),
                          counted(table.get_num_fields(), "column")));
    printParameters(out, table);
    printColumns(out, columns);
    return out.finish(code);
}

} // namespace

void addInfoCommand(CLI::App& app, Task& task) {
    auto options = std::make_shared<InfoOptions>();
    CLI::App* const command =
        app.add_subcommand("info", "Tell what a file is: its parameters and columns");
    command->add_option("FILE", options->file, "A table file, or - for standard input")
        ->required()
        ->type_name("");
    command->add_flag("--json", options->json, "Print one JSON object");
    addExample(*command, "olelog info day-12.odb");
    command->callback([options, &task] { task = [options] { return runInfo(*options); }; });
}
