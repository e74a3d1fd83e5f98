// Sorts. Each starts from the rows in load order; a table gets that back, untimed, by a sort by its
// rising identifier, a view by being filled again.

#include "Measure.h"
#include "suites.h"
#include "Tables.h"

#include "ole/oledb/dbsort.h"
#include "ole/oledb/ODBView.h"

#include <array>

namespace bench {

namespace {

/// What to sort by: up to two columns of the log.
struct Order {
    std::array<const char*, 2> columns;
    int direction;
};

constexpr Order byTwo{{"Scene", "Name"}, 1};
constexpr Order descending{{"Description", nullptr}, -1};
constexpr Order byTimecode{{"Sound TC", nullptr}, 1};

std::array<int, 3> keysOf(const oledb& table, const Order& order) {
    std::array<int, 3> keys{-1, -1, -1};
    for (std::size_t i = 0; i < 2 && order.columns[i]; ++i) {
        keys[i] = table.get_fieldnum(order.columns[i]);
    }
    return keys;
}

oledb& inLoadOrder(unsigned rows) {
    oledb& table = sharedTable(rows);
    table.set_sortfield(static_cast<int>(identifierColumn));
    table.sort(1, 0);
    return table;
}

void sortTable(benchmark::State& state, unsigned rows, const Order& order) {
    std::array<int, 3> keys = keysOf(sharedTable(rows), order);
    measure(
        state, rows, [=]() -> oledb& { return inLoadOrder(rows); },
        [&](oledb& table) {
            table.set_sortfields(keys.data());
            table.sort(order.direction, 0);
            return comco > 0;
        });
    state.counters["comparisons"] = comco;
    inLoadOrder(rows);
}

void sortView(benchmark::State& state, unsigned rows, const Order& order) {
    oledb& table = inLoadOrder(rows);
    ODBView view{&table};
    std::array<int, 3> keys = keysOf(table, order);
    table.set_sortfields(keys.data());
    const auto filled = [&]() -> ODBView& {
        view->clear();
        view->buildIndex();
        return view;
    };
    measure(state, rows, filled, [&](ODBView& shown) {
        shown->sort(order.direction, 0);
        return comco > 0;
    });
    state.counters["comparisons"] = comco;
    table.set_sortfields(nullptr);
}

std::string query(const Order& order) {
    std::string sql{"SELECT rowid FROM log ORDER BY "};
    for (const char* const column : order.columns) {
        if (column) {
            sql += '"' + std::string{column} + "\" COLLATE NOCASE";
            sql += order.direction < 0 ? " DESC," : ",";
        }
    }
    sql.pop_back();
    return sql;
}

void sortSqlite(benchmark::State& state, unsigned rows, const Order& order) {
    Sqlite::Statement select = sharedDatabase(rows).prepare(query(order).c_str());
    measure(
        state, rows, [&]() -> Sqlite::Statement& { return select; },
        [=](Sqlite::Statement& sorted) {
            unsigned seen = 0;
            while (sorted.step()) {
                benchmark::DoNotOptimize(sorted.number(0));
                ++seen;
            }
            return seen == rows;
        });
}

void addOrder(const std::string& name, const Order& order) {
    add(name, "ours", [=](benchmark::State& s, unsigned rows) { sortTable(s, rows, order); });
    add(name, "sqlite", [=](benchmark::State& s, unsigned rows) { sortSqlite(s, rows, order); });
}

} // namespace

void addSorting() {
    addOrder("sort2", byTwo);
    addOrder("sort-descending", descending);
    addOrder("sort-timecode", byTimecode);
    add("sort-view", "ours", [](benchmark::State& s, unsigned rows) { sortView(s, rows, byTwo); });
    add("sort-view", "sqlite",
        [](benchmark::State& s, unsigned rows) { sortSqlite(s, rows, byTwo); });
}

} // namespace bench
