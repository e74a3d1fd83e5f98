#pragma once

#include "tarn/Ascii.h"

#include <string_view>

namespace Tarn {

// Slices of a text without its white space (codes 9 to 13 and 32) at the front, at the back, or at
// either end.

constexpr std::string_view trimmedFront(std::string_view text) noexcept {
    while (!text.empty() && isSpace(text.front())) {
        text.remove_prefix(1);
    }
    return text;
}

constexpr std::string_view trimmedBack(std::string_view text) noexcept {
    while (!text.empty() && isSpace(text.back())) {
        text.remove_suffix(1);
    }
    return text;
}

constexpr std::string_view trimmed(std::string_view text) noexcept {
    return trimmedBack(trimmedFront(text));
}

} // namespace Tarn
