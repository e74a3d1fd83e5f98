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
#include "shownText.h"
#include "TableEdit.h"
#include "tableValues.h"
#include "tagColumn.h"
#include "tarn/numbers.h"

#include <algorithm>
#include <CLI/CLI.hpp>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
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

int tagIn(std::string_view value) {
    return Tarn::parseInt(std::string{value}.c_str());
}

/// Whether a removed row's value is lost: the one that stays has none, or another.
bool isLost(const oledb& table, unsigned col, std::string_view gone, std::string_view kept) {
    if (static_cast<int>(col) == table.get_fieldnum("Tag")) {
        return tagIn(gone) != 0 && tagIn(gone) != tagIn(kept);
    }
    return !gone.empty() && gone != kept;
}

/// Tells the values that go with the removed rows, and returns how many they are. Those that are
/// compared are equal but for their case.
std::size_t tellLost(oledb& table, const Repeats& repeats, const std::vector<unsigned>& keys,
                     const EditOptions& edit) {
    Findings lost;
    for (const Repeat& repeat : repeats.rows) {
        for (unsigned col = 0; col < table.get_num_fields(); ++col) {
            const std::string_view gone = valueOf(table, repeat.row, col);
            const std::string_view kept = valueOf(table, repeat.first, col);
            if (std::find(keys.begin(), keys.end(), col) == keys.end() &&
                isLost(table, col, gone, kept)) {
                lost.tell(fmt::format(
                    "{}: {}: {} {}; {} has {}", rowAndName(table, repeat.row),
                    table.get_fieldname(col), inQuotes(gone), edit.dryRun ? "would go" : "goes",
                    rowAndName(table, repeat.first), kept.empty() ? "none" : inQuotes(kept)));
            }
        }
    }
    lost.close();
    return lost.count();
}

void remove(oledb& table, const Repeats& repeats) {
    table.set_all_tags(0);
    for (const Repeat& repeat : repeats.rows) {
        table.set_tag(repeat.row, 1);
    }
    table.delete_tagged_records();
}

/// Leaves these rows tagged and no others. Returns how many other rows lost their tag; nothing
/// where there is no room for tags.
std::optional<std::size_t> tag(oledb& table, const Repeats& repeats) {
    const auto col = tagColumn(table);
    if (!col) {
        return std::nullopt;
    }
    std::vector<const char*> tags(table.get_num_records(), "0");
    for (const Repeat& repeat : repeats.rows) {
        tags[repeat.row] = "1";
    }
    std::size_t lost = 0;
    for (unsigned row = 0; row < tags.size(); ++row) {
        lost += tagIn(valueOf(table, row, *col)) != 0 && *tags[row] == '0' ? 1 : 0;
        table.set_field(row, *col, tags[row]);
    }
    return lost;
}

std::string summaryOf(const std::string& rows, const Repeats& repeats, const std::string& what) {
    return fmt::format("{}, {} {}{}", rows, repeats.rows.size(), what,
                       repeats.withoutValue == 0 ? ""
                                                 : fmt::format("; {} without a value, not compared",
                                                               repeats.withoutValue));
}

EditOutcome tagRepeats(oledb& table, const Repeats& repeats, const EditOptions& edit) {
    const auto lost = repeats.rows.empty() ? std::size_t{0} : tag(table, repeats);
    if (!lost) {
        return {.code = exitFailure};
    }
    const std::string others =
        *lost == 0 ? ""
                   : fmt::format("; {} other {} {} its tag", *lost, *lost == 1 ? "row" : "rows",
                                 edit.dryRun ? "would lose" : "lost");
    return {.changed = !repeats.rows.empty(),
            .summary = summaryOf(counted(table.get_num_records(), "row"), repeats,
                                 fmt::format("{}tagged{}", wouldBe(edit), others))};
}

EditOutcome removeRepeats(oledb& table, const Repeats& repeats, const std::vector<unsigned>& keys,
                          const EditOptions& edit) {
    const std::string rows = counted(table.get_num_records(), "row");
    const std::size_t lost = tellLost(table, repeats, keys, edit);
    if (!repeats.rows.empty()) {
        remove(table, repeats);
    }
    const std::string values = lost == 0 ? ""
                                         : fmt::format(", and with them {} that the kept rows lack",
                                                       counted(lost, "value"));
    return {.code = lost == 0 ? exitFine : exitFindings,
            .changed = !repeats.rows.empty(),
            .summary = summaryOf(rows, repeats, fmt::format("{}removed{}", wouldBe(edit), values))};
}

EditOutcome dedupe(oledb& table, const DedupeOptions& options) {
    const auto columns = columnsOf(table, "--by", options.by);
    if (!columns) {
        return {.code = exitUsage};
    }
    const Repeats repeats = findRepeats(table, *columns, options.empty);
    tell(table, repeats);
    return options.tagOnly ? tagRepeats(table, repeats, options.edit)
                           : removeRepeats(table, repeats, *columns, options.edit);
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
