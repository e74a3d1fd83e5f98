// The text form of a flag, and the forms that people write.

#include "misc/BoolString.h"

#include "tarn/StringFunctions.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace {

using Words = std::array<std::string_view, 6>;
constexpr Words trueWords{"true", "t", "yes", "y", "on", "1"};
constexpr Words falseWords{"false", "f", "no", "n", "off", "0"};

bool isOneOf(const Words& words, std::string_view text) noexcept {
    return std::any_of(words.begin(), words.end(), [text](std::string_view word) {
        return compareIgnoringCase(word, text) == 0;
    });
}

} // namespace

LightweightString<char> BoolAsString(bool value) {
    return value ? "true" : "false";
}

bool BoolFromString(const LightweightString<char>& text, bool& value) {
    const bool isTrue = isOneOf(trueWords, text.view());
    if (!isTrue && !isOneOf(falseWords, text.view())) {
        return false;
    }
    value = isTrue;
    return true;
}
