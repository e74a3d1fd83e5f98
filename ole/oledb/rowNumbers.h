#pragma once

#include "tarn/LightweightString.h"

#include <string>
#include <string_view>

/// The text of a "recordsDeleted" message for n rows from `first` on: each number followed by a
/// blank.
inline LightweightString<char> rowNumbers(unsigned first, unsigned n) {
    std::string text;
    for (unsigned i = 0; i < n; ++i) {
        text += std::to_string(first + i);
        text += ' ';
    }
    return LightweightString<char>{std::string_view{text}};
}
