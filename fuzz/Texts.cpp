// Texts of cookies, timecodes and dates: each is taken exactly when it has the form, and what it is
// written as is read as the same.

#include "misc/date_def.h"
#include "misc/time_def.h"
#include "tarn/Cookie.h"

#include "Fuzz.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <regex>

namespace {

// Each is read in place and written into a short text. Fixed: the C library reads the time zone.
constexpr Bounds reading{.live = {8'000, 2}, .sum = {8'000, 4}, .blocks = {16, 0}};

void checkMemory(const std::string& text) {
    const char* const s = text.c_str();
    within(reading, text.size(), [=] { return Cookie{s, false}.asString(true); });
    within(reading, text.size(), [=] { return time_def{s, LABEL_TIMECODE}.get_database_str(); });
    within(reading, text.size(), [=] { return date_def{s}.get_all(0); });
}

bool isHex(char c) {
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}
bool isAsciiLetter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

/// Whether a text is a cookie's, hyphens and outer white space aside.
bool spellsCookie(std::string text, bool stored) {
    const char* const white = " \t\n\v\f\r";
    text.erase(text.find_last_not_of(white) + 1);
    text.erase(0, std::min(text.find_first_not_of(white), text.size()));
    std::erase(text, '-');
    const bool letter = text.size() == 33 || text.size() == 35;
    if (!letter && (stored || (text.size() != 32 && text.size() != 34))) {
        return false;
    }
    return std::all_of(text.begin() + (letter ? 1 : 0), text.end(), isHex) &&
           (!letter || (isAsciiLetter(text[0]) && text[0] != CookieType::Invalid));
}

void checkCookie(const std::string& text) {
    for (const bool stored : {true, false}) {
        const Cookie cookie{text.c_str(), stored};
        ASSERT_EQ(cookie.valid(), spellsCookie(text, stored));
        for (const bool longForm : {true, false}) {
            const auto written = cookie.asString(longForm);
            ASSERT_EQ(written.size(), cookie.valid() ? (longForm ? 41U : 35U) : 0U);
            ASSERT_EQ(Cookie(written, true), cookie) << written.c_str();
        }
    }
}

void checkTime(const std::string& text) {
    static const std::regex form{"[0-9]{8}d?|[0-9]{2}([!-/:-@\\[-`{-~][0-9]{2}){3}d?"};
    const time_def time{text.c_str(), LABEL_TIMECODE};
    ASSERT_EQ(time.valid(), std::regex_match(text, form));
    const auto punctuated = time.get_punctuated_str();
    const auto digits = time.get_database_str();
    const time_def again{digits.c_str(), LABEL_TIMECODE};
    ASSERT_EQ(again.get_punctuated_str(), punctuated);
    ASSERT_EQ(time_def(punctuated.c_str(), LABEL_TIMECODE).get_database_str(), digits);
    ASSERT_EQ(punctuated.size(), time.valid() ? 11U : 0U);
}

/// Whole seconds towards the past of a decimal number of few digits.
long long wholeSeconds(const std::string& number) {
    const long long seconds = std::strtoll(number.c_str(), nullptr, 10);
    const std::size_t point = number.find('.');
    const bool between =
        point != std::string::npos && number.find_first_of("123456789", point) != std::string::npos;
    return between && number.find('-') != std::string::npos ? seconds - 1 : seconds;
}

/// The calendar's own reckoning, in universal time.
std::string dateOf(long long seconds) {
    using namespace std::chrono;
    const sys_seconds time{std::chrono::seconds{seconds}};
    const year_month_day day{floor<days>(time)};
    const hh_mm_ss clock{time - floor<days>(time)};
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "%04d-%02u-%02u %02d:%02d:%02d",
                  static_cast<int>(day.year()), static_cast<unsigned>(day.month()),
                  static_cast<unsigned>(day.day()), static_cast<int>(clock.hours().count()),
                  static_cast<int>(clock.minutes().count()),
                  static_cast<int>(clock.seconds().count()));
    return text.data();
}

void checkDate(const std::string& text) {
    static const std::regex count{"[ \\t\\n\\v\\f\\r]*(-?[0-9]+(\\.[0-9]+)?)[ \\t\\n\\v\\f\\r]*"};
    setenv("TZ", "UTC0", 1);
    const date_def date{text.c_str()};
    const std::string written = date.get_all(0).c_str();
    std::smatch found;
    if (!std::regex_match(text, found, count)) {
        ASSERT_EQ(written, "");
        return;
    }
    const std::string number = found[1];
    const std::size_t digits = number.find_first_not_of("-0");
    const std::size_t point = std::min(number.find('.'), number.size());
    const std::size_t length = digits < point ? point - digits : 0;
    if (length <= 11) { // years of four digits or little more
        ASSERT_EQ(written, dateOf(wholeSeconds(number))) << text;
    } else if (length <= 16) { // the years of time_t
        ASSERT_NE(written, "") << text;
    } else if (length > 17) { // more seconds than the years of a date can hold
        ASSERT_EQ(written, "") << text;
    }
}

} // namespace

void fuzz(std::string_view input) {
    const std::string text{input.substr(0, std::min<std::size_t>(input.find('\0'), 200))};
    checkMemory(text);
    checkCookie(text);
    checkTime(text);
    checkDate(text);
}
