#pragma once

#include <algorithm>
#include <cstddef>
#include <string_view>

// The parts of a value that are compared: for the comparisons themselves, and for the keys that
// stand in their order.

inline constexpr std::size_t timeOfTimecode = 8;   // hours, minutes, seconds and their marks
inline constexpr std::size_t framesOfTimecode = 9; // behind the mark that tells drop frame

/// What stands from a position on; empty behind the end.
inline std::string_view textFrom(std::string_view text, std::size_t start) noexcept {
    return text.substr(std::min(start, text.size()));
}

/// What a table's sort offset leaves to be compared: the text from a position on, or with a
/// negative offset the last characters.
inline std::string_view partAt(std::string_view text, int offset) noexcept {
    if (offset >= 0) {
        return textFrom(text, static_cast<std::size_t>(offset));
    }
    const auto count = static_cast<std::size_t>(-static_cast<long long>(offset));
    return text.substr(text.size() - std::min(text.size(), count));
}
