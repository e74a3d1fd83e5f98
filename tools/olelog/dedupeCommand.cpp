// olelog dedupe: of rows that are equal in a field the first stays.
//
// Equal values need not stand side by side. A row without a value is equal to no other, unless that
// is asked for.

#include "Command.h"
#include "fieldNames.h"
#include "messages.h"
#include "ole/oledb/oledb.h"
#include "rowKey.h"
#include "rowNames.h"
#include "TableEdit.h"
#include "tableValues.h"
#include "tagColumn.h"

#include <CLI/CLI.hpp>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace {

struct DedupeOptions {
    EditOptions edit;
    std::string by;
    bool empty = false;
    bool tagOnly = false;
};

struct Repeat {
    unsigned row;
    unsigned first; ///< the row that it is equal to
};

struct Repeats {
    std::vector<Repeat> rows;
    unsigned withoutValue = 0; ///< rows that were not looked at
};

Repeats findRepeats(const oledb& table, const std::vector<unsigned>& columns, bool takeEmpty) {
    Repeats repeats;
    std::map<std::string, unsigned> firsts;
    for (unsigned row = 0; row < table.get_num_records(); ++row) {
        const std::string key = rowKey(table, row, columns);
        if (key.empty() && !takeEmpty) {
            ++repeats.withoutValue;
            continue;
        }
        const auto [place, isFirst] = firsts.emplace(key, row);
        if (!isFirst) {
            repeats.rows.push_back({row, place->second});
        }
    }
    return repeats;
}

void tell(oledb& table, const Repeats& repeats) {
    Findings lines;
    for (const Repeat& repeat : repeats.rows) {
        lines.tell(fmt::format("{}: equals {}", rowAndName(table, repeat.row),
                               rowAndName(table, repeat.first)));
    }
    lines.close();
}

void remove(oledb& table, const Repeats& repeats) {
    table.set_all_tags(0);
    for (const Repeat& repeat : repeats.rows) {
        table.set_tag(repeat.row, 1);
    }
    table.delete_tagged_records();
}

/// Leaves these rows tagged and no others; false where there is no room for tags.
bool tag(oledb& table, const Repeats& repeats) {
    const auto col = tagColumn(table);
    if (!col) {
        return false;
    }
    for (unsigned row = 0; row < table.get_num_records(); ++row) {
        table.set_field(row, *col, "0");
    }
    for (const Repeat& repeat : repeats.rows) {
        table.set_field(repeat.row, *col, "1");
    }
    return true;
}

EditOutcome dedupe(oledb& table, const DedupeOptions& options) {
    const auto columns = columnsOf(table, "--by", options.by);
    if (!columns) {
        return {.code = exitUsage};
    }
    const Repeats repeats = findRepeats(table, *columns, options.empty);
    tell(table, repeats);
    const std::string rows = counted(table.get_num_records(), "row");
    if (!repeats.rows.empty() && !options.tagOnly) {
        remove(table, repeats);
    } else if (!repeats.rows.empty() && !tag(table, repeats)) {
        return {.code = exitFailure};
    }
    return {.changed = !repeats.rows.empty(),
            .summary = fmt::format(
                "{}, {} {}{}{}", rows, repeats.rows.size(), wouldBe(options.edit),
                options.tagOnly ? "tagged" : "removed",
                repeats.withoutValue == 0
                    ? ""
                    : fmt::format("; {} without a value, not compared", repeats.withoutValue))};
}

} // namespace

void addDedupeCommand(CLI::App& app, Task& task) {
    auto options = std::make_shared<DedupeOptions>();
    CLI::App* const command =
        app.add_subcommand("dedupe", "Remove rows that are equal in a field, but for the first");
    command
        ->add_option("--by", options->by,
                     "The field that is compared, ignoring case; of several, all must be equal")
        ->required()
        ->type_name("FIELD[,FIELD...]");
    command->add_flag("--empty", options->empty,
                      "Rows without a value are equal too (they are all kept otherwise)");
    command->add_flag("--tag-only", options->tagOnly,
                      "Remove nothing: tag the rows that would go, and no others");
    addEditOptions(*command, options->edit);
    addExample(*command, "olelog dedupe day-12.odb --by Name --dry-run");
    command->callback([options, &task] {
        task = [options] {
            return runEdit(options->edit, [&](oledb& table) { return dedupe(table, *options); });
        };
    });
}
