// An ALE log to a CSV file, end to end, and the same by Miller, which starts at the line of names.

#include "Measure.h"
#include "suites.h"
#include "Tables.h"

#include "ole/interchange/ALE.h"
#include "ole/interchange/CSV.h"
#include "ole/oledb/ODBView.h"

#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <spawn.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

extern char** environ;

namespace bench {

namespace {

std::vector<DBFieldDesc> importFields() {
    std::vector<DBFieldDesc> fields;
    for (const Column& column : columns) {
        fields.emplace_back(column.field, column.type);
    }
    fields.emplace_back();
    return fields;
}

std::unique_ptr<oledb> import(const std::string& log) {
    auto table = std::make_unique<oledb>(importFields().data());
    ALE::fillODB(*table, pathOf(log));
    return table;
}

void importLog(benchmark::State& state, unsigned rows) {
    const std::string log = workloadFile(Form::Ale, rows);
    measure(
        state, rows, [] { return std::unique_ptr<oledb>{}; },
        [&](std::unique_ptr<oledb>& table) {
            table = import(log);
            return table->get_num_records() == rows;
        });
}

/// With the freeing of the table, as a program that does nothing else pays for it.
void logToCsv(benchmark::State& state, unsigned rows) {
    const std::string log = workloadFile(Form::Ale, rows);
    const std::string out = outputFile("log.csv");
    measure(
        state, rows, [] { return 0; },
        [&](int) {
            const auto table = import(log);
            ODBView view{table.get()};
            view->displayAllRecords();
            return view->get_num_records() == rows && CSV{view}.writeTo(pathOf(out));
        });
}

off_t namesOf(const std::string& log) {
    std::ifstream file{log};
    std::string line;
    while (std::getline(file, line) && line != "Column") {
    }
    return file.tellg();
}

/// Runs mlr from the log's line of names on; its exit status, -1 where it cannot be run.
int runMiller(const std::string& log, off_t from, const std::string& out) {
    const int in = open(log.c_str(), O_RDONLY | O_CLOEXEC);
    lseek(in, from, SEEK_SET);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, in, STDIN_FILENO);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, out.c_str(),
                                     O_WRONLY | O_CREAT | O_TRUNC, 0600);
    // The word between names and rows is passed over as a comment.
    std::array<std::string, 6> words{"mlr",  "--itsv", "--ocsv", "--skip-comments-with",
                                     "Data", "cat"};
    std::vector<char*> arguments;
    for (std::string& word : words) {
        arguments.push_back(word.data());
    }
    arguments.push_back(nullptr);
    pid_t child = 0;
    const int failed = posix_spawnp(&child, "mlr", &actions, nullptr, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    close(in);
    int status = -1;
    while (failed == 0 && waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    return failed == 0 ? status : -1;
}

void millerToCsv(benchmark::State& state, unsigned rows) {
    const std::string log = workloadFile(Form::Ale, rows);
    const std::string out = outputFile("miller.csv");
    const off_t names = namesOf(log);
    measure(
        state, rows, [] { return 0; },
        [&](int) {
            return runMiller(log, names, out) == 0 && std::filesystem::file_size(out) > rows;
        });
}

} // namespace

void addAle() {
    add("ale-csv", "ours", logToCsv);
    add("ale-csv", "miller", millerToCsv);
    add("ale-import", "ours", importLog);
}

} // namespace bench
