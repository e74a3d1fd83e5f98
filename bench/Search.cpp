// Query by example, and rows by cookie.

#include "Measure.h"
#include "suites.h"
#include "Tables.h"

#include "ole/oledb/ODBView.h"

#include <algorithm>
#include <string>
#include <vector>

namespace bench {

namespace {

/// Two patterns, one with a wildcard.
std::unique_ptr<dbrecord> patternsFor(oledb& table) {
    std::unique_ptr<dbrecord> patterns{table.make_dummy_record()};
    patterns->set_field(table.get_fieldnum("Note"), "ta?e");
    patterns->set_field(table.get_fieldnum("Description"), "harbour");
    return patterns;
}

void query(benchmark::State& state, unsigned rows) {
    oledb& table = sharedTable(rows);
    const auto patterns = patternsFor(table);
    measure(
        state, rows, [&]() -> oledb& { return table; },
        [&](oledb& searched) {
            searched.set_query(patterns.get());
            return someOf(rows, searched.tag_matching_records(0));
        });
    table.set_query(nullptr);
}

void queryView(benchmark::State& state, unsigned rows) {
    oledb& table = sharedTable(rows);
    const auto patterns = patternsFor(table);
    const auto everything = [&] {
        ODBView view{&table};
        view->displayAllRecords();
        return view;
    };
    measure(state, rows, everything, [&](ODBView& searched) {
        searched->set_query(patterns.get());
        return someOf(rows, searched->tagMatches(0));
    });
    table.set_query(nullptr);
}

void querySqlite(benchmark::State& state, unsigned rows) {
    Sqlite::Statement select =
        sharedDatabase(rows).prepare("SELECT rowid FROM log WHERE Note LIKE '%ta_e%' "
                                     "AND Description LIKE '%harbour%'");
    measure(
        state, rows, [&]() -> Sqlite::Statement& { return select; },
        [=](Sqlite::Statement& matches) {
            unsigned found = 0;
            while (matches.step()) {
                benchmark::DoNotOptimize(matches.number(0));
                ++found;
            }
            return someOf(rows, found);
        });
}

/// Rows all over the table, each once, for 100,000 look-ups at most.
std::vector<unsigned> wantedRows(unsigned rows) {
    constexpr unsigned step = 7919; // prime, so it meets every row
    std::vector<unsigned> wanted(std::min(rows, 100'000U));
    for (unsigned i = 0; i < wanted.size(); ++i) {
        wanted[i] = static_cast<unsigned>(std::uint64_t{i} * step % rows);
    }
    return wanted;
}

void lookUp(benchmark::State& state, unsigned rows) {
    std::vector<std::pair<Cookie, int>> wanted;
    for (const unsigned row : wantedRows(rows)) {
        wanted.emplace_back(Cookie{cookieOfRow(row).c_str(), true}, static_cast<int>(row));
    }
    const auto indexed = [=]() -> oledb& {
        oledb& table = sharedTable(rows, Identifier::Cookie);
        benchmark::DoNotOptimize(table.getRowIndexByID(Cookie{cookieOfRow(0).c_str(), true}));
        return table;
    };
    measure(state, rows, indexed, [&](oledb& table) {
        return std::all_of(wanted.begin(), wanted.end(), [&](const auto& one) {
            return table.getRowIndexByID(one.first) == one.second;
        });
    });
    state.counters["lookups"] = static_cast<double>(wanted.size());
}

constexpr const char* createIndex = "CREATE INDEX IF NOT EXISTS byCookie ON log(cookie)";

void lookUpSqlite(benchmark::State& state, unsigned rows) {
    std::vector<std::pair<std::string, int>> wanted;
    for (const unsigned row : wantedRows(rows)) {
        wanted.emplace_back(cookieOfRow(row), static_cast<int>(row));
    }
    Sqlite& db = sharedDatabase(rows, Identifier::Cookie);
    db.run(createIndex);
    Sqlite::Statement select = db.prepare("SELECT rowid FROM log WHERE cookie = ?");
    measure(
        state, rows, [&]() -> Sqlite::Statement& { return select; },
        [&](Sqlite::Statement& statement) {
            return std::all_of(wanted.begin(), wanted.end(), [&](const auto& one) {
                statement.bind(1, one.first);
                const bool found = statement.step() && statement.number(0) == one.second + 1;
                return found && !statement.step();
            });
        });
    state.counters["lookups"] = static_cast<double>(wanted.size());
}

void buildIndex(benchmark::State& state, unsigned rows) {
    const Cookie last{cookieOfRow(rows - 1).c_str(), true};
    measure(
        state, rows, [=] { return freshTable(rows, Identifier::Cookie); },
        [&](const std::unique_ptr<oledb>& table) {
            return table->getRowIndexByID(last) == static_cast<int>(rows) - 1;
        });
}

void buildIndexSqlite(benchmark::State& state, unsigned rows) {
    const auto unindexed = [=]() -> Sqlite& {
        Sqlite& db = sharedDatabase(rows, Identifier::Cookie);
        db.run("DROP INDEX IF EXISTS byCookie");
        return db;
    };
    measure(state, rows, unindexed, [](Sqlite& db) {
        db.run(createIndex);
        return true;
    });
}

/// The first look-up after a deletion: the index is known to be stale.
void rebuildIndex(benchmark::State& state, unsigned rows) {
    const Cookie last{cookieOfRow(rows - 1).c_str(), true};
    const auto table = freshTable(rows, Identifier::Cookie);
    int expected = static_cast<int>(rows) - 1;
    const auto afterDeletion = [&]() -> oledb& {
        benchmark::DoNotOptimize(table->getRowIndexByID(last));
        table->delete_records(0, 1);
        --expected;
        return *table;
    };
    measure(state, rows, afterDeletion,
            [&](oledb& changed) { return changed.getRowIndexByID(last) == expected; });
}

} // namespace

void addSearch() {
    add("query", "ours", query);
    add("query", "sqlite", querySqlite);
    add("query-view", "ours", queryView);
    add("cookie", "ours", lookUp);
    add("cookie", "sqlite", lookUpSqlite);
    add("cookie-index", "ours", buildIndex);
    add("cookie-index", "sqlite", buildIndexSqlite);
    add("cookie-index-again", "ours", rebuildIndex);
}

} // namespace bench
