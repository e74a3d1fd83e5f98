// olelog container add and remove: items into a container, each once, and out of it. What else the
// container holds stays as it stands in the file; new items come behind.

#include "checkedSave.h"
#include "Command.h"
#include "ContainerTable.h"
#include "containerTasks.h"
#include "messages.h"
#include "SaveTarget.h"
#include "WantedItems.h"

#include <fmt/format.h>
#include <optional>
#include <string_view>

namespace {

/// What is to be done with the items that were asked for: those that it is done with, and those
/// with which there is nothing to do.
struct Plan {
    CookieVec done;
    CookieVec others;
};

/// A way of changing a container, and the words for it.
struct Way {
    std::string_view doing;  ///< "add"
    std::string_view done;   ///< "added"
    std::string_view others; ///< what is told of items with which there is nothing to do
    bool othersAreFindings;
    bool ofItemsInIt; ///< done with items that are in the container, or with those that are not
    void (*change)(LoadedContainer& container, const CookieVec& items);
};

void addItems(LoadedContainer& container, const CookieVec& items) {
    for (const Cookie& cookie : items) {
        appendItem(*container.table, container.cookieCol, cookie);
    }
}

/// Removes every row of the items: a container may name one twice. A view's tags choose them, for
/// those of the rows are saved.
void removeItems(LoadedContainer& container, const CookieVec& items) {
    CookieSet gone;
    for (const Cookie& item : items) {
        gone.add(item);
    }
    const ODBView rows = emptyView(*container.table);
    rows->displayAllRecords();
    for (unsigned row = 0; row < rows->get_num_records(); ++row) {
        const char* const text = rows->get_field(row, static_cast<int>(container.cookieCol));
        rows->set_tag(row, gone.contains(Cookie{text, true}) ? 1 : 0);
    }
    rows->deleteTagged();
}

constexpr Way adding{"add", "added", "in it already, not added again", false, false, addItems};
constexpr Way removing{"remove", "removed", "not in it", true, true, removeItems};

Plan planOf(const LoadedContainer& container, const WantedItems& wanted, const Way& way) {
    Plan plan;
    for (const Cookie& cookie : wanted.cookies()) {
        const bool fits = container.items.contains(cookie) == way.ofItemsInIt;
        (fits ? plan.done : plan.others).push_back(cookie);
    }
    return plan;
}

void tellOthers(const std::string& name, const Plan& plan, const WantedItems& wanted,
                const Way& way) {
    if (!plan.others.empty()) {
        const std::string text =
            fmt::format("{}: {} {}{}", name, counted(plan.others.size(), "item"), way.others,
                        wanted.behindColon(plan.others));
        way.othersAreFindings ? sayLine(text) : noteLine(text);
    }
}

int change(LoadedContainer& container, const WantedItems& wanted, const ContainerChange& asked,
           const SaveTarget& place, const Way& way) {
    const std::string name = shownName(asked.container);
    const Plan plan = planOf(container, wanted, way);
    const int code =
        way.othersAreFindings && !plan.others.empty() ? exitFindings : wanted.exitCode();
    wanted.tellRepeated();
    tellOthers(name, plan, wanted, way);
    if (asked.dryRun && !canBeSaved(asked.container)) {
        return exitFailure;
    }
    if (asked.dryRun) {
        say("{}: {} would be {}{}", name, counted(plan.done.size(), "item"), way.done,
            wanted.behindColon(plan.done));
        return code;
    }
    if (plan.done.empty() && asked.container != "-") {
        note("{}: nothing was {}", name, way.done);
        return code;
    }
    way.change(container, plan.done);
    const int saved = saveChecked(*container.table, place, {});
    if (saved != exitFailure) {
        note("{}: {} {}, {} in all", name, counted(plan.done.size(), "item"), way.done,
             container.table->get_num_records());
    }
    return saved == exitFine ? code : saved;
}

int runChange(const ContainerChange& asked, const Way& way) {
    const SaveTarget place{asked.container};
    WantedItems wanted;
    if (!asksForItems(asked.container, asked.items, way.doing) ||
        !wanted.takeArguments(asked.items.cookies)) {
        return exitUsage;
    }
    tellLeftOver(asked.container);
    const auto file = InputFile::open(asked.container);
    LoadedContainer container = file ? loadContainer(*file) : LoadedContainer{};
    const std::optional<int> failed = container.table && container.whole
                                          ? wanted.takeTable(asked.items)
                                          : exitCodeOfNone(container);
    if (failed) {
        say("{}: nothing was {}", shownName(asked.container), way.done);
        return *failed;
    }
    return change(container, wanted, asked, place, way);
}

} // namespace

int addToContainer(const ContainerChange& asked) {
    return runChange(asked, adding);
}

int removeFromContainer(const ContainerChange& asked) {
    if (!asked.items.from.empty() && !asked.all && !asked.items.selection.narrows()) {
        sayLine("which rows? --where FIELD=PATTERN names them, --all takes every row of the table");
        return exitUsage;
    }
    return runChange(asked, removing);
}
