#pragma once

#include "Command.h"

#include <functional>
#include <string>
#include <string_view>

namespace CLI {
class App;
}
class oledb;

/// The options of every command that changes a table file.
struct EditOptions {
    std::string file;
    std::string output; ///< empty: the file itself
    bool backup = false;
    bool dryRun = false;
    bool strict = false;
    bool inPlace = false; ///< whether `output` may replace what should stay
};

/// What a command did to a table in memory.
struct EditOutcome {
    int code = exitFine;   ///< wrong usage and failures end the command; findings do not
    bool changed = false;  ///< otherwise the file stays as it is
    std::string summary{}; ///< said at the end; empty where all has been said
};

/// "would be " in a dry run, else "": for "3 removed", which there is no fact.
std::string_view wouldBe(const EditOptions& options);

using Edit = std::function<EditOutcome(oledb& table)>;

void addEditOptions(CLI::App& command, EditOptions& options);

/// Reads the table, changes it, saves it over itself or elsewhere, checked as always, and tells
/// what became of it. Returns the tool's exit code.
int runEdit(const EditOptions& options, const Edit& edit);
