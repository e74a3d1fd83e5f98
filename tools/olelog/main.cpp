// The tool's entry: understands the command line, then runs one command.
//
// Data goes to standard output, messages to standard error. Every way out gives one of the exit
// codes of Command.h.

#include "appearanceOptions.h"
#include "Command.h"
#include "commandLineMistakes.h"
#include "messages.h"
#include "ole/ole.h"
#include "Output.h"
#include "TemporaryFile.h"
#include "terminal.h"

#include <algorithm>
#include <CLI/CLI.hpp>
#include <exception>
#include <new>
#include <string>

namespace {

constexpr const char* description =
    "olelog keeps the logs of a shoot in tables: it imports ALE logs, shows what stands in a "
    "table file, and sorts, tags, joins and exports it.";
constexpr const char* footer =
    "Exit codes: 0 fine, 1 done with findings, 2 wrong usage, 3 cannot read or write.\n"
    "A file name of - means standard input or output. \"olelog help COMMAND\" tells more.";

int printOnOutput(const std::string& text) {
    Output out;
    out.write(text);
    return out.finish(exitFine);
}

/// The command that was asked for, with its subcommand where it has one.
std::string commandPath(const CLI::App& app) {
    const auto chosen = app.get_subcommands();
    return chosen.empty() ? app.get_name() : app.get_name() + " " + commandPath(*chosen.front());
}

/// Tells what is wrong with the command line, or prints the help that it asked for.
int endEarly(const CLI::App& app, const CLI::ParseError& reason) {
    const bool knowsAllWords = app.remaining(true).empty();
    if (dynamic_cast<const CLI::CallForHelp*>(&reason) && knowsAllWords) {
        return printOnOutput(app.help());
    }
    if (dynamic_cast<const CLI::CallForVersion*>(&reason)) {
        return printOnOutput(std::string{reason.what()} + "\n");
    }
    say("{}", describeMistake(app, reason));
    say("\"{} --help\" tells how it is used", commandPath(app));
    return exitUsage;
}

/// `olelog help COMMAND` is `olelog COMMAND --help`.
void replaceHelpWord(std::vector<std::string>& words) {
    if (!words.empty() && words.front() == "help") {
        words.erase(words.begin());
        words.emplace_back("--help");
    }
}

/// `-o=day.odb` is `-o day.odb`: nobody means a file whose name begins with "=".
void partShortOptions(std::vector<std::string>& words) {
    const auto end = std::find(words.begin(), words.end(), "--");
    std::for_each(words.begin(), end, [](std::string& word) {
        if (word.size() > 3 && word[0] == '-' && word[1] != '-' && word[2] == '=') {
            word.erase(2, 1);
        }
    });
}

/// The words behind the program's name, last first, as the parser wants them.
std::vector<std::string> wordsOf(int argc, char** argv) {
    std::vector<std::string> words{argv + std::min(argc, 1), argv + argc};
    replaceHelpWord(words);
    partShortOptions(words);
    std::reverse(words.begin(), words.end());
    return words;
}

int run(int argc, char** argv) {
    CLI::App app{description, "olelog"};
    app.footer(footer);
    app.set_version_flag("--version", std::string{"olelog "} + oledbDllVersionStr(),
                         "Print the version and exit");
    app.get_formatter()->column_width(28);
    app.require_subcommand(1);
    Task task;
    addImportCommand(app, task);
    addCheckCommand(app, task);
    addInfoCommand(app, task);
    addShowCommand(app, task);
    addSaveCommand(app, task);
    addExportCommand(app, task);
    addSortCommand(app, task);
    addTagCommand(app, task);
    addDedupeCommand(app, task);
    addMergeCommand(app, task);
    addIdentifyCommand(app, task);
    addContainerCommand(app, task);
    Appearance appearance;
    addAppearanceOptions(app, appearance);
    addCompletionCommand(app, task);
    try {
        app.parse(wordsOf(argc, argv));
    } catch (const CLI::ParseError& reason) {
        return endEarly(app, reason);
    }
    setAppearance(appearance);
    return task();
}

} // namespace

void addExample(CLI::App& command, const std::string& lines) {
    std::string text = command.get_footer() + "\n\nExample:";
    for (std::size_t start = 0; start < lines.size();) {
        const std::size_t end = std::min(lines.find('\n', start), lines.size());
        text += "\n  " + lines.substr(start, end - start);
        start = end + 1;
    }
    command.footer(text);
}

int main(int argc, char** argv) {
    occupyStandardFiles();
    removeTemporaryFilesOnSignals();
    ignoreClosedPipes();
    redirectModuleMessages();
    try {
        return run(argc, argv);
    } catch (const std::bad_alloc&) {
        sayLine("out of memory");
    } catch (const std::exception& unforeseen) {
        sayLine(unforeseen.what());
    }
    return exitFailure;
}
