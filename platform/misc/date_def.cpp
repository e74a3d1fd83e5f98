// Dates as people read them, in local time and always in English: the host's locale must not change
// what a search finds or a file holds.

#include "misc/date_def.h"

#include "tarn/Ascii.h"
#include "tarn/trimmed.h"

#include <array>
#include <charconv>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <limits>
#include <optional>
#include <string_view>
#include <system_error>
#include <utility>

namespace {

using Names = std::string_view;
constexpr Names weekdays = "SunMonTueWedThuFriSat";
constexpr Names months = "JanFebMarAprMayJunJulAugSepOctNovDec";

const char* nameAt(Names names, int i) noexcept {
    return names.data() + 3 * static_cast<std::ptrdiff_t>(i);
}

/// The local calendar time; none when its year has no number. Follows changes of TZ.
std::optional<std::tm> localTime(long long seconds) noexcept {
    if (!std::in_range<std::time_t>(seconds)) {
        return std::nullopt;
    }
    const auto time = static_cast<std::time_t>(seconds);
    std::tm parts{};
#if defined(_WIN32)
    const bool known = localtime_s(&parts, &time) == 0;
#else
    tzset();
    const bool known = localtime_r(&time, &parts) != nullptr;
#endif
    return known ? std::optional{parts} : std::nullopt;
}

long long yearOf(const std::tm& parts) noexcept {
    return 1900LL + parts.tm_year;
}

bool isFraction(std::string_view text) noexcept {
    return text.size() > 1 && text[0] == '.' &&
           text.find_first_not_of("0123456789", 1) == std::string_view::npos;
}

/// Reads a decimal number as whole seconds, towards the past; none for any other text.
std::optional<long long> wholeSeconds(std::string_view text) noexcept {
    const char* const end = text.data() + text.size();
    long long seconds = 0;
    const auto result = std::from_chars(text.data(), end, seconds);
    if (result.ec != std::errc{}) {
        return std::nullopt;
    }
    const std::string_view rest{result.ptr, static_cast<std::size_t>(end - result.ptr)};
    if (!rest.empty() && !isFraction(rest)) {
        return std::nullopt;
    }
    const bool between = rest.find_first_not_of(".0") != std::string_view::npos;
    const bool down = text[0] == '-' && between && seconds != std::numeric_limits<long long>::min();
    return down ? seconds - 1 : seconds;
}

} // namespace

date_def::date_def(const char* text) {
    const auto seconds = wholeSeconds(Tarn::trimmed(text ? text : ""));
    seconds_ = seconds.value_or(0);
    valid_ = seconds.has_value();
}

LightweightString<char> date_def::get_all(int /*form*/) const {
    const auto parts = valid_ ? localTime(seconds_) : std::nullopt;
    if (!parts) {
        return "";
    }
    std::array<char, 96> text{};
    std::snprintf(text.data(), text.size(), "%04lld-%02d-%02d %02d:%02d:%02d", yearOf(*parts),
                  parts->tm_mon + 1, parts->tm_mday, parts->tm_hour, parts->tm_min, parts->tm_sec);
    return text.data();
}

namespace Tarn {

LightweightString<char> ctimeText(long long secondsSince1970) {
    const auto parts = localTime(secondsSince1970);
    if (!parts) {
        return "";
    }
    std::array<char, 96> text{};
    std::snprintf(text.data(), text.size(), "%.3s %.3s %2d %02d:%02d:%02d %lld\n",
                  nameAt(weekdays, parts->tm_wday), nameAt(months, parts->tm_mon), parts->tm_mday,
                  parts->tm_hour, parts->tm_min, parts->tm_sec, yearOf(*parts));
    return text.data();
}

long long now() noexcept {
    const auto sinceEpoch = std::chrono::system_clock::now().time_since_epoch();
    return std::chrono::floor<std::chrono::seconds>(sinceEpoch).count();
}

} // namespace Tarn
