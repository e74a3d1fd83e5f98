#pragma once

#include <cstddef>
#include <optional>

/// The width of the terminal that standard output goes to: COLUMNS where it is set, else what the
/// terminal says, else 80. Nothing when it goes elsewhere.
std::optional<std::size_t> terminalWidth();

/// Whether bold and the like may be used on standard output: on a terminal, unless NO_COLOR is set
/// or the terminal is a dumb one.
bool mayStyleOutput();
