// Mistakes on the command line, told by the word that was typed. The parser's own messages name
// what is missing, which helps where nothing was mistyped.

#include "commandLineMistakes.h"

#include "nearest.h"
#include "shownText.h"

#include <algorithm>
#include <CLI/CLI.hpp>
#include <filesystem>
#include <fmt/format.h>
#include <system_error>
#include <vector>

namespace {

std::string didYouMean(const std::string& nearest) {
    return nearest.empty() ? "" : fmt::format("; did you mean {}?", nearest);
}

/// The command that the line leads to.
const CLI::App& chosenOf(const CLI::App& app) {
    const auto chosen = app.get_subcommands();
    return chosen.empty() ? app : chosenOf(*chosen.front());
}

std::vector<std::string> commandsOf(const CLI::App& app) {
    std::vector<std::string> names;
    for (const CLI::App* const command : app.get_subcommands({})) {
        if (!command->get_group().empty()) {
            names.push_back(command->get_name());
        }
    }
    return names;
}

std::vector<std::string> optionsOf(const CLI::App& command) {
    std::vector<std::string> names;
    for (const CLI::Option* const option : command.get_options()) {
        for (const std::string& name : option->get_lnames()) {
            names.push_back("--" + name);
        }
    }
    return names;
}

bool takesList(const CLI::App& command) {
    const auto options = command.get_options();
    return std::any_of(options.begin(), options.end(), [](const CLI::Option* option) {
        return option->count() > 0 && option->get_type_name().find("[,") != std::string::npos;
    });
}

std::string unknownCommand(const CLI::App& command, const std::string& word) {
    const std::vector<std::string> known = commandsOf(command);
    const std::string nearest = nearestOf(word, known);
    return fmt::format("there is no command {}{}", inQuotes(word),
                       nearest.empty() ? fmt::format("; there are {}", fmt::join(known, ", "))
                                       : didYouMean(nearest));
}

std::string unknownOption(const CLI::App& command, const std::string& word) {
    const std::string name = word.substr(0, word.find('='));
    std::error_code failed;
    if (std::filesystem::exists(word, failed)) {
        return fmt::format("{} has no option {}; the file of this name is written ./{}",
                           command.get_name(), name, word);
    }
    const std::vector<std::string> known = optionsOf(command);
    if (name == "--json" && std::count(known.begin(), known.end(), "--format") != 0) {
        return fmt::format("{} has no option --json; it is --format json here", command.get_name());
    }
    return fmt::format("{} has no option {}{}", command.get_name(), name,
                       didYouMean(nearestOf(name, known)));
}

std::string surplusWord(const CLI::App& command, const std::string& word) {
    return fmt::format("{} has no place here{}", inQuotes(word),
                       takesList(command) ? "; names of a list stand with commas and no blanks "
                                            "between them, or in quotes"
                                          : "; a text with blanks stands in quotes");
}

/// "--output is required", with the short name that the option has.
std::string withShortName(const CLI::App& command, const std::string& message) {
    for (const CLI::Option* const option : command.get_options()) {
        const auto& names = option->get_lnames();
        if (!names.empty() && !option->get_snames().empty() &&
            message.starts_with("--" + names.front() + " ")) {
            return fmt::format("-{} {} or {}", option->get_snames().front(),
                               option->get_type_name(), message);
        }
    }
    return message;
}

} // namespace

std::string describeMistake(const CLI::App& app, const CLI::ParseError& reason) {
    const CLI::App& command = chosenOf(app);
    const std::vector<std::string> unknown = app.remaining(true);
    const auto option = std::find_if(unknown.begin(), unknown.end(), [](const std::string& word) {
        return word.size() > 1 && word.front() == '-' && word != "--";
    });
    if (option != unknown.end()) {
        return unknownOption(command, *option);
    }
    const bool wantsCommand = !commandsOf(command).empty();
    if (!unknown.empty() && wantsCommand) {
        return unknownCommand(command, unknown.front());
    }
    if (wantsCommand && dynamic_cast<const CLI::RequiredError*>(&reason)) {
        return fmt::format("a command is needed: {}", fmt::join(commandsOf(command), ", "));
    }
    if (!unknown.empty() && dynamic_cast<const CLI::ExtrasError*>(&reason)) {
        return surplusWord(command, unknown.front());
    }
    const std::string message = reason.what();
    if (const std::size_t at = message.find(": At Most 1 "); at != std::string::npos) {
        return message.substr(0, at) + " is given more than once, and takes one value";
    }
    return withShortName(command, message);
}
