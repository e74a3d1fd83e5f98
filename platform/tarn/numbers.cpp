// Numbers to text and back. Nothing here asks the process's locale.

#include "tarn/numbers.h"

#include "tarn/Ascii.h"

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

const char* skipSpace(const char* text) noexcept {
    while (isSpace(*text)) {
        ++text;
    }
    return text;
}

template <class Number>
Number parseWhole(const char* text) noexcept {
    const char* digits = skipSpace(text ? text : "");
    const bool negative = *digits == '-';
    digits += negative || *digits == '+' ? 1 : 0;
    const char* end = digits;
    while (isDigit(*end)) {
        ++end;
    }
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
    return parseWhole<int>(text);
}

long long parseLongLong(const char* text) noexcept {
    return parseWhole<long long>(text);
}

double parseDouble(const char* text) noexcept {
    return text ? strtod_l(text, nullptr, plainLocale()) : 0;
}

} // namespace Tarn
