#pragma once

#include "tarn/Ascii.h"

#include <string_view>

namespace Tarn {

/// The slice of `text` without the white space (codes 9 to 13 and 32) at either end.
constexpr std::string_view trimmed(std::string_view text) noexcept {
    while (!text.empty() && isSpace(text.front())) {
        text.remove_prefix(1);
    }
    while (!text.empty() && isSpace(text.back())) {
        text.remove_suffix(1);
    }
    return text;
}

} // namespace Tarn
