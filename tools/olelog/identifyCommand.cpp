// olelog identify: identifiers for the rows of a table file that have none, as containers need
// them.

#include "Command.h"
#include "identify.h"
#include "messages.h"
#include "ole/oledb/oledb.h"
#include "TableEdit.h"

#include <CLI/CLI.hpp>
#include <memory>

namespace {

EditOutcome identifyTable(oledb& table, const EditOptions& options) {
    const int identified = identifyRows(table);
    if (identified < 0) {
        sayLine("the table has no room for a column \"Cookie\"");
        return {.code = exitFailure};
    }
    return {.changed = identified != 0,
            .summary =
                fmt::format("{}, {} {} an identifier", counted(table.get_num_records(), "row"),
                            identified, options.dryRun ? "would get" : "got")};
}

} // namespace

void addIdentifyCommand(CLI::App& app, Task& task) {
    auto options = std::make_shared<EditOptions>();
    CLI::App* const command = app.add_subcommand(
        "identify", "Give every row of a table file without an identifier a new one");
    addEditOptions(*command, *options);
    addExample(*command, "olelog identify day-12.odb");
    command->callback([options, &task] {
        task = [options] {
            return runEdit(*options, [&](oledb& table) { return identifyTable(table, *options); });
        };
    });
}
