#pragma once

// The commands of the tool, each in a source of its own: XCommand.cpp. A new one is declared here
// and listed in main.cpp.

#include <functional>
#include <string>

namespace CLI {
class App;
}

/// What the tool's exit code tells.
enum ExitCode : int {
    exitFine = 0,
    exitFindings = 1, ///< done, with something that a person should look at, or no row was found
    exitUsage = 2,    ///< the command line makes no sense; nothing was done
    exitFailure = 3,  ///< something could not be read or written; no file was changed
};

/// The work of the command that was asked for; run when the whole command line was understood.
using Task = std::function<int()>;

/// Ends the help of a command with an example: one line a command, each of which works where
/// samples/day-12.ale and a table day-12.odb of it stand in the folder.
void addExample(CLI::App& command, const std::string& lines);

/// Each adds its command to the command line; where it is asked for, `task` becomes its work.
void addCheckCommand(CLI::App& app, Task& task);
void addCompletionCommand(CLI::App& app, Task& task);
void addContainerCommand(CLI::App& app, Task& task);
void addDedupeCommand(CLI::App& app, Task& task);
void addExportCommand(CLI::App& app, Task& task);
void addIdentifyCommand(CLI::App& app, Task& task);
void addImportCommand(CLI::App& app, Task& task);
void addInfoCommand(CLI::App& app, Task& task);
void addMergeCommand(CLI::App& app, Task& task);
void addSaveCommand(CLI::App& app, Task& task);
void addShowCommand(CLI::App& app, Task& task);
void addSortCommand(CLI::App& app, Task& task);
void addTagCommand(CLI::App& app, Task& task);
