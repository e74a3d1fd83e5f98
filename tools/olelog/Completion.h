#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
}

/// What could stand where a person pressed the tabulator key.
struct Completion {
    struct Candidate {
        std::string word;        ///< the whole word
        std::string description; ///< one short line, perhaps empty
    };
    std::vector<Candidate> candidates;
    bool files = false;  ///< the name of a file fits as well
    bool goesOn = false; ///< something is to follow each candidate without a blank
};

/// Completes the last of the words behind the program's name; it may be empty. Commands and options
/// come from the command line's own definition, names of fields from the first file that was named.
Completion complete(CLI::App& app, std::vector<std::string> words);
