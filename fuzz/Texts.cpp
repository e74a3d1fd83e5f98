// Texts of cookies, timecodes and dates: each is taken exactly when it has the form, and what it is
// written as is read as the same.

#include "misc/date_def.h"
#include "misc/time_def.h"
#include "tarn/Cookie.h"

#include "Fuzz.h"

#include <algorithm>
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
    if (time.valid()) {
        ASSERT_TRUE(std::regex_match(text, form));
    }
    const auto punctuated = time.get_punctuated_str();
    const auto digits = time.get_database_str();
    const time_def again{digits.c_str(), LABEL_TIMECODE};
    ASSERT_EQ(again.get_punctuated_str(), punctuated);
    ASSERT_EQ(time_def(punctuated.c_str(), LABEL_TIMECODE).get_database_str(), digits);
    ASSERT_EQ(punctuated.size(), time.valid() ? 11U : 0U);
}

void checkDate(const std::string& text) {
    static const std::regex count{"[ \\t\\n\\v\\f\\r]*-?[0-9]+(\\.[0-9]+)?[ \\t\\n\\v\\f\\r]*"};
    static const std::regex form{
        "(-[0-9]{3,}|[0-9]{4,})-[0-9]{2}-[0-9]{2} [0-9]{2}:[0-9]{2}:[0-9]{2}"};
    const std::string date = date_def{text.c_str()}.get_all(0).c_str();
    ASSERT_TRUE(date.empty() || std::regex_match(text, count)) << date;
    ASSERT_TRUE(date.empty() || std::regex_match(date, form)) << date;
}

} // namespace

void fuzz(std::string_view input) {
    const std::string text{input.substr(0, std::min<std::size_t>(input.find('\0'), 200))};
    checkMemory(text);
    checkCookie(text);
    checkTime(text);
    checkDate(text);
}
