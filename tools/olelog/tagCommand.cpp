// olelog tag: marks rows of a table file, in its column "Tag".
//
// That column is all that a table file keeps of tags: a number other than 0 is a tag.

#include "Command.h"
#include "messages.h"
#include "ole/oledb/ODBView.h"
#include "ole/oledb/oledb.h"
#include "selection.h"
#include "TableEdit.h"
#include "tableValues.h"
#include "tagColumn.h"

#include <CLI/CLI.hpp>
#include <memory>
#include <string>
#include <vector>

namespace {

struct TagOptions {
    EditOptions edit;
    SelectionOptions rows;
    bool add = false;
    bool clear = false;
    bool invert = false;
    bool all = false;

    /// Rows are named one way or the other, unless all are meant anyway.
    [[nodiscard]] bool meansSomething() const { return all || clear || invert || rows.narrows(); }
};

/// A flag a row of the table.
using Marks = std::vector<bool>;

Marks tagsOf(oledb& table) {
    Marks marks(table.get_num_records());
    if (table.get_fieldnum("Tag") >= 0) {
        const ODBView view = emptyView(table);
        view->setupViewTagsFromOledbTagField();
        for (unsigned row = 0; row < marks.size(); ++row) {
            marks[row] = view->tag(static_cast<int>(row));
        }
    }
    return marks;
}

Marks chosenRows(const oledb& table, const ODBViewRep& view) {
    Marks marks(table.get_num_records());
    for (int i = 0; i < view.count(); ++i) {
        marks[static_cast<unsigned>(view.sourceRow(i))] = true;
    }
    return marks;
}

bool wanted(bool tagged, bool chosen, const TagOptions& options) {
    if (options.invert) {
        return tagged != chosen;
    }
    if (options.clear) {
        return tagged && !chosen;
    }
    return chosen || (options.add && tagged);
}

/// Writes the marks that differ; a tag that stays keeps its number. False where there is no room.
bool writeTags(oledb& table, const Marks& before, const Marks& after) {
    const auto col = tagColumn(table);
    for (unsigned row = 0; col && row < after.size(); ++row) {
        if (before[row] != after[row] || valueOf(table, row, *col).empty()) {
            table.set_field(row, *col, after[row] ? "1" : "0");
        }
    }
    return col.has_value();
}

EditOutcome outcomeOf(const Marks& before, const Marks& after, const EditOptions& edit) {
    std::size_t tagged = 0;
    std::size_t gained = 0;
    std::size_t lost = 0;
    for (std::size_t row = 0; row < after.size(); ++row) {
        tagged += after[row] ? 1 : 0;
        gained += after[row] && !before[row] ? 1 : 0;
        lost += before[row] && !after[row] ? 1 : 0;
    }
    return {.changed = gained + lost != 0,
            .summary = fmt::format("{} of {} {}tagged; {} {} a tag, {} {} it", tagged,
                                   counted(after.size(), "row"), wouldBe(edit), gained,
                                   edit.dryRun ? "would get" : "got", lost,
                                   edit.dryRun ? "would lose" : "lost")};
}

EditOutcome tagRows(oledb& table, const TagOptions& options) {
    const auto selection = select(table, options.rows);
    if (!selection) {
        return {.code = exitUsage};
    }
    if (selection->foundNothing()) {
        return {.code = exitFindings, .summary = "no row is selected; tags stay as they are"};
    }
    const Marks before = tagsOf(table);
    const Marks chosen = chosenRows(table, *selection->rows);
    Marks after(before.size());
    for (std::size_t row = 0; row < after.size(); ++row) {
        after[row] = wanted(before[row], chosen[row], options);
    }
    EditOutcome outcome = outcomeOf(before, after, options.edit);
    if (outcome.changed && !writeTags(table, before, after)) {
        return {.code = exitFailure};
    }
    return outcome;
}

int runTag(const TagOptions& options) {
    if (!options.meansSomething()) {
        sayLine("which rows? --where FIELD=PATTERN names them, --all takes every row");
        return exitUsage;
    }
    return runEdit(options.edit, [&](oledb& table) { return tagRows(table, options); });
}

void addWays(CLI::App& command, TagOptions& options) {
    const std::vector<CLI::Option*> ways{
        command.add_flag("--add", options.add, "Keep the tags of the other rows"),
        command.add_flag("--clear", options.clear, "Take the tags of the chosen rows, or of all"),
        command.add_flag("--invert", options.invert,
                         "Turn the tags of the chosen rows over, or of all rows"),
        command.add_flag("--all", options.all, "Tag every row"),
    };
    for (const char* const choice : {"--where", "--unique", "--tagged", "--limit"}) {
        ways.back()->excludes(command.get_option(choice));
    }
    for (CLI::Option* const way : ways) {
        for (CLI::Option* const other : ways) {
            if (way != other) {
                way->excludes(other);
            }
        }
    }
}

} // namespace

void addTagCommand(CLI::App& app, Task& task) {
    auto options = std::make_shared<TagOptions>();
    CLI::App* const command = app.add_subcommand(
        "tag", "Tag the chosen rows of a table file, in its column Tag, and no others");
    addEditOptions(*command, options->edit);
    addRowOptions(*command, options->rows);
    addWays(*command, *options);
    addExample(*command, "olelog tag day-12.odb --where Notes=print\n"
                         "olelog show day-12.odb --tagged --fields Name,Notes");
    command->callback([options, &task] { task = [options] { return runTag(*options); }; });
}
