#pragma once

#include <string>

namespace CLI {
class App;
class ParseError;
} // namespace CLI

/// What is wrong with a command line, for the person who typed it: the word that is not known, and
/// the one that was probably meant.
std::string describeMistake(const CLI::App& app, const CLI::ParseError& reason);
