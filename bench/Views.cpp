// Filling views by cookies, copying them, finding duplicates.

#include "Measure.h"
#include "suites.h"
#include "Tables.h"

#include "ole/oledb/dbsort.h"
#include "ole/oledb/ODBView.h"

#include <vector>

namespace bench {

namespace {

/// Cookies of every tenth row, or of rows that the table does not have.
std::vector<Cookie> cookies(unsigned rows, bool known) {
    std::vector<Cookie> list;
    for (unsigned row = 0; row < rows; row += 10) {
        list.emplace_back(cookieOfRow(known ? row : rows + row).c_str(), true);
    }
    return list;
}

/// Displays them before the only entry of a view, each in the middle of what is there.
void display(benchmark::State& state, unsigned rows, bool known) {
    const std::vector<Cookie> wanted = cookies(rows, known);
    const auto oneEntry = [=] {
        oledb& table = sharedTable(rows, Identifier::Cookie);
        benchmark::DoNotOptimize(table.getRowIndexByID(cookies(1, true).front())); // indexed
        ODBView view{&table};
        view->append(0);
        return view;
    };
    measure(state, rows, oneEntry, [&](ODBView& view) {
        const auto found = static_cast<std::size_t>(view->displayRecordsAt(wanted, 0));
        return found == (known ? wanted.size() : 0);
    });
}

ODBView everything(unsigned rows) {
    ODBView view{&sharedTable(rows)};
    view->displayAllRecords();
    return view;
}

void copyView(benchmark::State& state, unsigned rows) {
    measure(
        state, rows, [=] { return everything(rows); },
        [=](ODBView& view) { return view.copy()->get_num_records() == rows; });
}

void tagDuplicates(benchmark::State& state, unsigned rows) {
    const int scene = sharedTable(rows).get_fieldnum("Scene");
    measure(
        state, rows, [=] { return everything(rows); },
        [=](ODBView& view) { return someOf(rows, view->tagDuplicates(scene)); });
    state.counters["comparisons"] = comco;
}

} // namespace

void addViews() {
    add("display-found", "ours",
        [](benchmark::State& state, unsigned rows) { display(state, rows, true); });
    add("display-missing", "ours",
        [](benchmark::State& state, unsigned rows) { display(state, rows, false); });
    add("copy-view", "ours", copyView);
    add("tag-duplicates", "ours", tagDuplicates);
}

} // namespace bench
