// --quiet, --color and --no-pager, the same for every command.

#include "appearanceOptions.h"

#include "terminal.h"

#include <CLI/CLI.hpp>
#include <map>
#include <string>

namespace {

constexpr const char* group = "Appearance";

const std::map<std::string, Appearance::Colour>& colourWords() {
    static const std::map<std::string, Appearance::Colour> words{
        {"auto", Appearance::Colour::Auto},
        {"always", Appearance::Colour::Always},
        {"never", Appearance::Colour::Never}};
    return words;
}

void addTo(CLI::App& command, Appearance& appearance) {
    command
        .add_flag("-q,--quiet", appearance.quiet,
                  "Tell only what is wrong, and nothing of what was done")
        ->group(group);
    command
        .add_option_function<std::string>(
            "--color",
            [&appearance](const std::string& word) { appearance.colour = colourWords().at(word); },
            "Colours: auto is on a terminal, where NO_COLOR is not set")
        ->check(CLI::IsMember(colourWords()).description(""))
        ->type_name("auto|always|never")
        ->group(group);
    command
        .add_flag_function(
            "--no-pager", [&appearance](std::int64_t) { appearance.pager = false; },
            "Print long tables as they are, not through $PAGER")
        ->group(group);
}

} // namespace

void addAppearanceOptions(CLI::App& command, Appearance& appearance) {
    addTo(command, appearance);
    for (CLI::App* const next : command.get_subcommands({})) {
        addAppearanceOptions(*next, appearance);
    }
}
