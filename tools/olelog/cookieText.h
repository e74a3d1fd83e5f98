#pragma once

#include "tarn/Ascii.h"
#include "tarn/trimmed.h"

#include <string>
#include <string_view>

/// A cookie's text in the form in which texts of it can be compared: it is written with hyphens and
/// without, in any case.
inline std::string plainCookie(std::string_view text) {
    std::string plain;
    for (const char c : Tarn::trimmed(text)) {
        if (c != '-') {
            plain += Tarn::toLower(c);
        }
    }
    return plain;
}
