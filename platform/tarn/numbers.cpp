// Numbers to text and back. Nothing here asks the process's locale.

#include "tarn/numbers.h"

#include "tarn/Ascii.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <locale.h> // NOLINT(modernize-deprecated-headers): newlocale is not in <clocale>

#if defined(__APPLE__)
#include <xlocale.h>
#endif

namespace Tarn {
namespace {

// Sign, 309 digits, the point and eight decimals.
constexpr std::size_t longestFixed8 = 1 + std::numeric_limits<double>::max_exponent10 + 1 + 1 + 8;

LightweightString<char> textOf(const char* first, const char* last) {
    return {first, static_cast<std::size_t>(last - first)};
}

template <class Number>
Number parseWhole(std::string_view text) noexcept {
    const char* const last = text.data() + text.size();
    const char* const first = std::find_if_not(text.data(), last, isSpace);
    const bool negative = first != last && *first == '-';
    const char* const digits = first + (negative || (first != last && *first == '+') ? 1 : 0);
    const char* const end = std::find_if_not(digits, last, isDigit);
    if (end == digits) {
        return 0;
    }
    Number number = 0;
    const auto result = std::from_chars(negative ? digits - 1 : digits, end, number);
    if (result.ec != std::errc{}) {
        return negative ? std::numeric_limits<Number>::min() : std::numeric_limits<Number>::max();
    }
    return number;
}

std::string_view textOrNone(const char* text) noexcept {
    return text ? std::string_view{text} : std::string_view{};
}

locale_t plainLocale() noexcept {
    static const locale_t plain = newlocale(LC_ALL_MASK, "C", nullptr);
    return plain;
}

} // namespace

LightweightString<char> decimal(long long number) {
    char text[24];
    return textOf(text, std::to_chars(text, text + sizeof(text), number).ptr);
}

LightweightString<char> fixed8(double number) {
    if (std::isnan(number)) {
        return "nan";
    }
    char text[longestFixed8];
    constexpr auto form = std::chars_format::fixed;
    return textOf(text, std::to_chars(text, text + sizeof(text), number, form, 8).ptr);
}

int parseInt(const char* text) noexcept {
    return parseInt(textOrNone(text));
}

int parseInt(std::string_view text) noexcept {
    return parseWhole<int>(text);
}

long long parseLongLong(const char* text) noexcept {
    return parseWhole<long long>(textOrNone(text));
}

double parseDouble(const char* text) noexcept {
    return text ? strtod_l(text, nullptr, plainLocale()) : 0;
}

} // namespace Tarn
