// Load, save and CSV export; the memory of a loaded table.

#include "Measure.h"
#include "suites.h"
#include "Tables.h"

#include "ole/interchange/CSV.h"
#include "ole/oledb/ODBView.h"
#include "tarn/StringMemory.h"
#include "tarn/TextFile.h"

#include <filesystem>
#include <string>
#include <unistd.h>

namespace bench {

namespace {

void load(benchmark::State& state, unsigned rows) {
    const auto path = pathOf(workloadFile(Form::Table, rows));
    measure(
        state, rows, [] { return std::unique_ptr<oledb>{}; },
        [&](std::unique_ptr<oledb>& table) {
            table = std::make_unique<oledb>(path, static_cast<int>(rows), true);
            return table->get_num_records() == rows;
        });
}

void loadSqlite(benchmark::State& state, unsigned rows) {
    const std::string path = workloadFile(Form::Csv, rows);
    measure(
        state, rows, [] { return std::unique_ptr<Sqlite>{}; },
        [&](std::unique_ptr<Sqlite>& db) {
            db = std::make_unique<Sqlite>(Sqlite::withCsv(path));
            return db->rows() == rows;
        });
}

void save(benchmark::State& state, unsigned rows, const std::string& path) {
    measure(
        state, rows, [=]() -> oledb& { return sharedTable(rows); },
        [&](oledb& table) {
            table.set_filename(pathOf(path));
            return table.save_text() == static_cast<int>(rows);
        });
}

void saveSqlite(benchmark::State& state, unsigned rows) {
    const std::string path = outputFile("sqlite.odb");
    measure(
        state, rows, [=]() -> Sqlite& { return sharedDatabase(rows); },
        [&](Sqlite& db) {
            db.writeTable(path);
            return std::filesystem::file_size(path) > rows;
        });
}

void csv(benchmark::State& state, unsigned rows, const std::string& path) {
    ODBView view{&sharedTable(rows)};
    view->displayAllRecords();
    measure(
        state, rows, [&]() -> ODBView& { return view; },
        [&](ODBView& shown) {
            return CSV{shown}.writeTo(pathOf(path)) && std::filesystem::file_size(path) > rows;
        });
}

void csvSqlite(benchmark::State& state, unsigned rows) {
    const std::string path = outputFile("sqlite.csv");
    measure(
        state, rows, [=]() -> Sqlite& { return sharedDatabase(rows); },
        [&](Sqlite& db) {
            db.writeCsv(path);
            return std::filesystem::file_size(path) > rows;
        });
}

/// Registers a step that writes a file: to memory, and as hosts save who leave the setting alone,
/// to the disk, waiting until that holds the file.
template <class Write>
void addWriting(const std::string& step, Write writeTo) {
    add(step, "ours", [=](benchmark::State& state, unsigned rows) {
        writeTo(state, rows, outputFile(step + ".out"));
    });
    add(step + "-flushed", "ours", [=](benchmark::State& state, unsigned rows) {
        const auto folder = std::filesystem::temp_directory_path();
        const auto path = folder / ("ole-bench-" + std::to_string(getpid()) + ".out");
        TextFile::setFlushToDisk(true);
        writeTo(state, rows, path.string());
        TextFile::setFlushToDisk(false);
        std::filesystem::remove(path);
    });
}

/// Means something in a process that did nothing before.
template <class Load>
void memory(benchmark::State& state, unsigned rows, Form form, Load loadOne) {
    const auto bytes = std::filesystem::file_size(workloadFile(form, rows));
    forgetPeak();
    const double before = residentMiB();
    auto loaded = loadOne();
    for ([[maybe_unused]] auto _ : state) {
        state.SetIterationTime(0.001); // nothing is timed here
    }
    const double held = residentMiB();
    state.counters["held_MiB"] = held;
    state.counters["peak_MiB"] = peakMiB();
    state.counters["bytes/row"] = (held - before) * 1024 * 1024 / rows;
    state.counters["strings/row"] = static_cast<double>(Tarn::StringMemory::bytesHeld()) / rows;
    loaded.reset();
    state.counters["released_MiB"] = residentMiB();
    state.counters["before_MiB"] = before;
    state.counters["file_MiB"] = static_cast<double>(bytes) / 1024 / 1024;
}

} // namespace

void addFiles() {
    add("load", "ours", load);
    add("load", "sqlite", loadSqlite);
    addWriting("save", save);
    add("save", "sqlite", saveSqlite);
    addWriting("csv", csv);
    add("csv", "sqlite", csvSqlite);
    add("memory", "ours", [](benchmark::State& state, unsigned rows) {
        memory(state, rows, Form::Table, [=] { return freshTable(rows); });
    });
    add("memory", "sqlite", [](benchmark::State& state, unsigned rows) {
        memory(state, rows, Form::Csv, [=] {
            const std::string path = workloadFile(Form::Csv, rows);
            return std::make_unique<Sqlite>(Sqlite::withCsv(path));
        });
    });
}

} // namespace bench
