// olelog completion: what makes the tabulator key know the tool's commands, options and fields.
//
// The scripts for the shells are a few lines each: they hand the words to `olelog completion words`
// and offer what it prints, a line for each word: the word, a tab, its description; ":files" where
// names of files fit, ":go-on" where no blank is to follow.

#include "Command.h"
#include "Completion.h"
#include "Output.h"

#include <CLI/CLI.hpp>
#include <memory>
#include <string>
#include <vector>

namespace {

constexpr const char* bashScript = R"bash(# bash completion for olelog. Read it in with
#   source <(olelog completion bash)
_olelog() {
    local line cur=${COMP_WORDS[COMP_CWORD]} typed=() word glued=
    COMPREPLY=()
    for word in "${COMP_WORDS[@]:1:COMP_CWORD}"; do
        word=${word//\\/}           # Start\ time, "Start time
        word=${word#[\"\']}
        word=${word%[\"\']}
        if [[ $glued || ( $word == '=' && ${typed[-1]-} != -* ) ]]; then
            typed[-1]+=$word        # Scene=1 comes in three
            [[ $word == '=' ]] && glued=yes || glued=
            continue
        fi
        typed+=("$word")
    done
    [[ $cur == '=' ]] && cur=
    while IFS= read -r line; do
        case $line in
            :files) mapfile -t -O "${#COMPREPLY[@]}" COMPREPLY < <(compgen -f -- "${cur#[\"\']}")
                    compopt -o filenames ;;
            :go-on) compopt -o nospace ;;
            *) word=${line%%$'\t'*}
               [[ $cur != [\"\']* && $word == *[!A-Za-z0-9_,=./+-]* ]] && printf -v word %q "$word"
               word=${word//\\,/,}
               COMPREPLY+=("$word") ;;
        esac
    done < <(olelog completion words -- "${typed[@]}" 2>/dev/null)
}
complete -F _olelog olelog
)bash";

constexpr const char* zshScript = R"zsh(#compdef olelog
# zsh completion for olelog. Save it as _olelog in a folder of $fpath, or read it in with
#   source <(olelog completion zsh)
_olelog() {
    local line
    local -a typed offered described more
    typed=("${(@Q)words[2,CURRENT]}")
    while IFS= read -r line; do
        case $line in
            :files) _files ;;
            :go-on) more=(-S '') ;;
            *) offered+=("${line%%$'\t'*}")
               described+=("${line/$'\t'/  -- }") ;;
        esac
    done < <(olelog completion words -- "${typed[@]}" 2>/dev/null)
    (( ${#offered} )) && compadd "${more[@]}" -l -d described -a offered
}
compdef _olelog olelog
)zsh";

int print(const std::string& text) {
    Output out;
    out.write(text);
    return out.finish(exitFine);
}

int printWords(CLI::App& app, const std::vector<std::string>& words) {
    const Completion completion = complete(app, words);
    std::string text;
    for (const Completion::Candidate& candidate : completion.candidates) {
        text += candidate.word + '\t' + candidate.description + '\n';
    }
    text += completion.goesOn ? ":go-on\n" : "";
    text += completion.files ? ":files\n" : "";
    return print(text);
}

} // namespace

void addCompletionCommand(CLI::App& app, Task& task) {
    CLI::App* const command =
        app.add_subcommand("completion", "Print what makes a shell complete this tool's words");
    command->require_subcommand(1);
    addExample(*command, "source <(olelog completion bash)");
    command->add_subcommand("bash", "The script for bash")->callback([&task] {
        task = [] { return print(bashScript); };
    });
    command->add_subcommand("zsh", "The script for zsh")->callback([&task] {
        task = [] { return print(zshScript); };
    });
    auto words = std::make_shared<std::vector<std::string>>();
    CLI::App* const answer = command->add_subcommand("words", "What the scripts ask");
    answer->group(""); // hidden
    answer->add_option("WORD", *words)->type_name("");
    answer->callback(
        [words, &app, &task] { task = [words, &app] { return printWords(app, *words); }; });
}
