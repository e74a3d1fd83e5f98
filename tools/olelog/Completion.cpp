// What the tabulator key offers: read off the definition of the command line, so that a new command
// or option is completed without a word more. What an option's value is, its type name tells:
//
//   FIELD, FIELD[,FIELD...], A,B,-C   names of fields, of which the last after a comma is completed
//   FIELD=PATTERN                     the name of a field and "="
//   a|b|c                             one of these words
//   CODE                              one of the findings of "check"
//   N, TEXT, NAME, COOKIE, KEY=VALUE
//                                     nothing that could be known
//   anything else                     a file

#include "Completion.h"

#include "check/FindingList.h"
#include "files.h"
#include "messages.h"
#include "ole/oledb/oledb.h"
#include "tarn/StringFunctions.h"

#include <algorithm>
#include <array>
#include <CLI/CLI.hpp>
#include <filesystem>
#include <string_view>

namespace {

using Words = std::vector<std::string>;

bool isOption(std::string_view word) {
    return word.size() > 1 && word.front() == '-';
}

bool takesValue(const CLI::Option& option) {
    return option.get_items_expected_max() > 0;
}

const CLI::Option* optionOf(const CLI::App& command, const std::string& word) {
    return isOption(word) ? command.get_option_no_throw(word) : nullptr;
}

std::string firstLine(const std::string& text) {
    const std::size_t end = std::min(text.find_first_of(";.\n"), text.size());
    return text.substr(0, end);
}

/// The command that the words lead to, and what of the line belongs to it.
struct Place {
    CLI::App* command = nullptr;
    const CLI::Option* valueOf = nullptr; ///< the option that the last word is a value of
    std::string file;                     ///< the first file that was named
    bool optionsEnded = false;            ///< whether "--" stood before
};

CLI::App* subcommand(const CLI::App& command, const std::string& word) {
    const auto all = command.get_subcommands([&word](const CLI::App* candidate) {
        return candidate->get_name() == word && !candidate->get_group().empty();
    });
    return all.empty() ? nullptr : const_cast<CLI::App*>(all.front());
}

/// Passes a word that stands where an option's value is expected.
void passValue(Place& place, const CLI::Option& option, const std::string& word) {
    if (word == "=") { // some shells part --option=value in three
        place.valueOf = &option;
    } else if (option.check_lname("from") || option.check_lname("with")) {
        place.file = word; // the table that is chosen from
    }
}

void passWord(Place& place, const std::string& word) {
    if (const CLI::Option* const waiting = std::exchange(place.valueOf, nullptr)) {
        passValue(place, *waiting, word);
    } else if (word == "--") {
        place.optionsEnded = true;
    } else if (isOption(word) && !place.optionsEnded) {
        const CLI::Option* const option = optionOf(*place.command, word);
        place.valueOf = option && takesValue(*option) ? option : nullptr;
    } else if (CLI::App* const next = subcommand(*place.command, word)) {
        place.command = next;
    } else if (place.file.empty() && std::filesystem::is_regular_file(word)) {
        place.file = word;
    }
}

Place placeOfLast(CLI::App& app, const Words& words) {
    Place place;
    place.command = &app;
    for (std::size_t i = 0; i + 1 < words.size(); ++i) {
        passWord(place, words[i]);
    }
    return place;
}

Words fieldsOf(const std::string& file) {
    const ModuleSilence silence;
    oledb table{modulePath(file), 0, true};
    Words names;
    for (unsigned i = 0; table.get_valid() != 0 && i < table.get_num_fields(); ++i) {
        names.emplace_back(table.get_fieldname(i));
    }
    return names;
}

bool beginsWith(std::string_view text, std::string_view start) {
    return text.size() >= start.size() &&
           compareIgnoringCase(text.substr(0, start.size()), start) == 0;
}

/// Whether a name can be written in a list whose parts stand between commas.
bool isListable(std::string_view name) {
    return !name.empty() && name.find(',') == std::string_view::npos;
}

void offerFields(Completion& completion, const std::string& file, std::string_view typed, bool list,
                 std::string_view end) {
    const std::size_t comma = list ? typed.rfind(',') : std::string_view::npos;
    std::size_t begin = comma == std::string_view::npos ? 0 : comma + 1;
    begin += list && typed.substr(begin, 1) == "-" ? 1 : 0; // -C leaves C out
    for (const std::string& name : fieldsOf(file)) {
        if (isListable(name) && beginsWith(name, typed.substr(begin))) {
            // What was typed stays as it is, in whatever case: shells put the common beginning of
            // all that is offered in its place.
            std::string word{typed};
            word.append(name, typed.size() - begin).append(end);
            completion.candidates.push_back({word, ""});
        }
    }
    completion.goesOn = !end.empty();
}

void offerChoices(Completion& completion, std::string_view choices, std::string_view typed) {
    while (!choices.empty()) {
        const std::string_view choice = choices.substr(0, choices.find('|'));
        choices.remove_prefix(std::min(choice.size() + 1, choices.size()));
        if (beginsWith(choice, typed)) {
            completion.candidates.push_back({std::string{choice}, ""});
        }
    }
}

/// The last of a list of codes.
void offerCodes(Completion& completion, std::string_view typed) {
    const std::size_t begin = typed.rfind(',') + 1; // 0 where there is no comma
    for (const FindingKind& kind : findingKinds()) {
        if (beginsWith(kind.code, typed.substr(begin))) {
            std::string word{typed.substr(0, begin)};
            completion.candidates.push_back({word.append(kind.code), ""});
        }
    }
}

void offerValues(Completion& completion, const CLI::Option& option, const Place& place,
                 const std::string& typed) {
    static constexpr std::array<std::string_view, 5> unknowable{"N", "TEXT", "NAME", "COOKIE",
                                                                "KEY=VALUE"};
    const std::string type = option.get_type_name();
    if (type.find('|') != std::string::npos) {
        offerChoices(completion, type, typed);
    } else if (type == "CODE") {
        offerCodes(completion, typed);
    } else if (type == "FIELD=PATTERN") {
        if (typed.find('=') == std::string::npos) {
            offerFields(completion, place.file, typed, false, "=");
        }
    } else if (type.find("FIELD") == 0 || type.find("A,B") == 0) {
        offerFields(completion, place.file, typed, type != "FIELD", "");
    } else {
        completion.files =
            std::find(unknowable.begin(), unknowable.end(), type) == unknowable.end();
    }
}

void offerOptions(Completion& completion, const CLI::App& command, std::string_view typed) {
    for (const CLI::Option* const option : command.get_options()) {
        for (const std::string& name : option->get_lnames()) {
            if (beginsWith("--" + name, typed) && !option->get_group().empty()) {
                completion.candidates.push_back(
                    {"--" + name, firstLine(option->get_description())});
            }
        }
    }
}

void offerCommands(Completion& completion, const CLI::App& command, std::string_view typed) {
    for (const CLI::App* const next : command.get_subcommands({})) {
        if (!next->get_group().empty() && beginsWith(next->get_name(), typed)) {
            completion.candidates.push_back({next->get_name(), firstLine(next->get_description())});
        }
    }
}

bool takesPositional(const CLI::App& command) {
    const auto options = command.get_options();
    return std::any_of(options.begin(), options.end(),
                       [](const CLI::Option* option) { return option->get_positional(); });
}

} // namespace

Completion complete(CLI::App& app, std::vector<std::string> words) {
    Completion completion;
    if (words.size() > 1 && words.front() == "help") {
        words.erase(words.begin());
    }
    const std::string typed = words.empty() ? "" : words.back();
    const Place place = placeOfLast(app, words);
    const std::size_t equals = isOption(typed) ? typed.find('=') : std::string::npos;
    const CLI::Option* const glued =
        equals == std::string::npos ? nullptr : optionOf(*place.command, typed.substr(0, equals));
    if (glued) {
        offerValues(completion, *glued, place, typed.substr(equals + 1));
        for (Completion::Candidate& candidate : completion.candidates) {
            candidate.word.insert(0, typed, 0, equals + 1);
        }
    } else if (place.valueOf) {
        offerValues(completion, *place.valueOf, place, typed == "=" ? "" : typed);
    } else if (typed.rfind('-', 0) == 0 && !place.optionsEnded) {
        offerOptions(completion, *place.command, typed);
    } else {
        offerCommands(completion, *place.command, typed);
        completion.files = takesPositional(*place.command);
    }
    return completion;
}
