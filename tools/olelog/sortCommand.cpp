// olelog sort: the rows of a table file in another order.

#include "Command.h"
#include "fieldNames.h"
#include "messages.h"
#include "ole/oledb/oledb.h"
#include "Progress.h"
#include "TableEdit.h"

#include <CLI/CLI.hpp>
#include <memory>
#include <string>
#include <vector>

namespace {

struct SortOptions {
    EditOptions edit;
    std::string by;
    bool descending = false;
};

std::vector<const dbrecord*> rowsOf(const oledb& table) {
    std::vector<const dbrecord*> rows;
    for (unsigned row = 0; row < table.get_num_records(); ++row) {
        rows.push_back(table.get_record(row));
    }
    return rows;
}

/// By the last key first: the order of equal rows stays, so that every key counts.
void sortBy(oledb& table, const std::vector<unsigned>& keys, bool descending) {
    Progress progress{"sorting"};
    progress.unmeasured(table.get_num_records());
    for (std::size_t left = keys.size(); left > 0; --left) {
        table.set_sortfield(static_cast<int>(keys[left - 1]));
        table.sort(descending ? -1 : 1, 0);
    }
}

EditOutcome sortTable(oledb& table, const SortOptions& options) {
    const auto keys = columnsOf(table, "--by", options.by);
    if (!keys) {
        return {.code = exitUsage};
    }
    const auto before = rowsOf(table);
    sortBy(table, *keys, options.descending);
    const auto after = rowsOf(table);
    std::size_t moved = 0;
    for (std::size_t i = 0; i < before.size(); ++i) {
        moved += before[i] == after[i] ? 0 : 1;
    }
    const std::string rows = counted(before.size(), "row");
    return {.changed = moved != 0,
            .summary = moved == 0 ? rows + ", in this order already"
                                  : fmt::format("{}, {} {}in another place", rows, moved,
                                                wouldBe(options.edit))};
}

} // namespace

void addSortCommand(CLI::App& app, Task& task) {
    auto options = std::make_shared<SortOptions>();
    CLI::App* const command = app.add_subcommand("sort", "Put the rows of a table file in order");
    command
        ->add_option("--by", options->by,
                     "In the order of these fields; rows equal in all keep their order, and empty "
                     "values come last")
        ->required()
        ->type_name("FIELD[,FIELD...]");
    command->add_flag("--descending", options->descending, "From the last to the first");
    addEditOptions(*command, options->edit);
    addExample(*command, "olelog sort day-12.odb --by Scene,Shot");
    command->callback([options, &task] {
        task = [options] {
            return runEdit(options->edit, [&](oledb& table) { return sortTable(table, *options); });
        };
    });
}
