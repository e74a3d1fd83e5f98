#pragma once

#include <cstddef>
#include <string>
#include <string_view>

/// A text as it can be printed on any terminal: control characters, line ends, marks that turn the
/// writing direction, and bytes that are no UTF-8 are spelled out (\n, \t, \x1b, \u202e).
/// Everything else stays.
std::string shown(std::string_view text);

/// The same in double quotes, cut where it is long.
std::string inQuotes(std::string_view text);

/// How many places of a terminal's line a shown text takes: two for a wide character, none for a
/// mark that combines with the one before.
std::size_t displayWidth(std::string_view shownText);

/// The width of a text as `shown` gives it.
std::size_t widthWhenShown(std::string_view text);

/// The beginning of a shown text that fits into `width` places, with an ellipsis where something
/// was cut. What belongs together (a letter and its accents) is never cut apart.
std::string cutToWidth(std::string_view shownText, std::size_t width);

/// Whether all of a text is UTF-8.
bool isUtf8(std::string_view text);
