// Key numbers of film logs.

#include "ole/interchange/KeyNumber.h"

#include <cstddef>

namespace {

constexpr std::size_t length = 15;
constexpr std::size_t prefixLength = 12;
constexpr std::size_t offsetDigits = 2;
constexpr std::size_t longestRead = 24;
constexpr char filler = '_';

std::string filledUp(std::string_view text, std::size_t width) {
    return std::string(width - text.size(), filler).append(text);
}

/// The last characters that fit before the offset, without blanks and hyphens.
std::string compactPrefix(std::string_view text) {
    std::string kept;
    for (const char c : text) {
        if (c == '&') {
            kept += '+';
        } else if (c != ' ' && c != '-') {
            kept += c;
        }
    }
    return kept.size() > prefixLength ? kept.substr(kept.size() - prefixLength) : kept;
}

} // namespace

std::string normalisedKeyNumber(std::string_view keyNumber) {
    if (keyNumber.size() < length) {
        return filledUp(keyNumber, length);
    }
    if (keyNumber.size() == length) {
        return std::string{keyNumber};
    }
    const std::string_view text = keyNumber.substr(0, longestRead);
    const std::size_t mark = text.find_last_of("+&");
    if (mark == std::string_view::npos || mark + offsetDigits >= text.size()) {
        return {};
    }
    std::string result = filledUp(compactPrefix(text.substr(0, mark)), prefixLength);
    result += '+';
    return result.append(text.substr(mark + 1, offsetDigits));
}
