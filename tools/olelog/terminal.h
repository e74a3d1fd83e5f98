#pragma once

#include <cstddef>
#include <optional>

/// How a person wants the tool to appear.
struct Appearance {
    enum class Colour { Auto, Always, Never };
    Colour colour = Colour::Auto;
    bool quiet = false; ///< only what is wrong is told
    bool pager = true;  ///< long tables go through the pager
};

/// From now on the tool appears so. At first as a new `Appearance` says.
void setAppearance(const Appearance& wanted);
bool isQuiet();

/// The width of the terminal that standard output goes to: COLUMNS where it is set, else what the
/// terminal says, else 80. Nothing when it goes elsewhere.
std::optional<std::size_t> terminalWidth();

/// The same of the terminal that messages go to.
std::optional<std::size_t> messageWidth();

/// How many lines the terminal of standard output shows: LINES where it is set, else what the
/// terminal says, else 24. Nothing when standard output is no terminal, or may not be paged: the
/// terminal is a dumb one, or no pager is wanted.
std::optional<std::size_t> linesBeforePaging();

///@{
/// Whether colour may be used: on a terminal, unless NO_COLOR is set or the terminal is a dumb one.
/// An `Appearance` with `Always` or `Never` goes before all that.
bool mayStyleOutput();
bool mayStyleMessages();
///@}
