// Dates under several time zones against those of the C library.

#include "misc/date_def.h"
#include "unit/EnvironmentVariable.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <ctime>
#include <limits>
#include <random>
#include <string>

namespace {

std::string full(const std::string& text) {
    return date_def{text.c_str()}.get_all(0).c_str();
}

std::string spoken(long long seconds) {
    return Tarn::ctimeText(seconds).c_str();
}

/// What the C library makes of a count of seconds in the zone that is set.
std::string standardDate(std::time_t seconds) {
    tzset();
    std::tm date{};
    localtime_r(&seconds, &date);
    char text[64];
    std::snprintf(text, sizeof(text), "%04d-%02d-%02d %02d:%02d:%02d", date.tm_year + 1900,
                  date.tm_mon + 1, date.tm_mday, date.tm_hour, date.tm_min, date.tm_sec);
    return text;
}

TEST(DateDef, IsTheStandardCalendarInEveryZone) {
    EnvironmentVariable variable{"TZ", "UTC0"};
    std::mt19937_64 random{20240305};
    std::uniform_int_distribution<long long> seconds{-30'000'000'000, 250'000'000'000};
    for (const char* zone :
         {"UTC0", "XXX-5:30", "<+14>-14", "CET-1CEST,M3.5.0,M10.5.0/3", "EST5EDT,M3.2.0,M11.1.0"}) {
        variable.set(zone); // a change of the zone is seen at once
        for (int i = 0; i < 500; ++i) {
            const auto at = static_cast<std::time_t>(seconds(random));
            const std::string found = full(std::to_string(at));
            ASSERT_EQ(found, standardDate(at)) << zone << " " << at;
            ASSERT_EQ(spoken(at), std::ctime(&at)) << zone << " " << at;
        }
    }
    variable.set("CET-1CEST,M3.5.0,M10.5.0/3");
    EXPECT_EQ(full("1711846799"), "2024-03-31 01:59:59");
    EXPECT_EQ(full("1711846800"), "2024-03-31 03:00:00");
}

TEST(DateDef, ReadsCountsOnly) {
    const EnvironmentVariable variable{"TZ", "UTC0"};
    EXPECT_EQ(full("1709647629"), "2024-03-05 14:07:09");
    EXPECT_EQ(full(" 0\t"), "1970-01-01 00:00:00");
    EXPECT_EQ(full("-1"), "1969-12-31 23:59:59");
    EXPECT_EQ(full("1.99000000"), "1970-01-01 00:00:01");
    EXPECT_EQ(full("-0.5"), "1969-12-31 23:59:59");
    EXPECT_EQ(full("-2.0"), "1969-12-31 23:59:58");
    for (const char* text : {"", " ", "-", "today", "12x", "1 2", "1.", ".5", "1.5.5", "1e3",
                             "0x10", "--1", "9223372036854775808"}) {
        EXPECT_EQ(full(text), "") << text;
    }
    EXPECT_EQ(date_def{nullptr}.get_all(0), "");
}

TEST(DateDef, YearsThatCannotBeExpressedGiveNoText) {
    const EnvironmentVariable variable{"TZ", "UTC0"};
    for (const long long at :
         {std::numeric_limits<long long>::max(), std::numeric_limits<long long>::min()}) {
        EXPECT_EQ(spoken(at), "");
        EXPECT_EQ(full(std::to_string(at)), "");
    }
    EXPECT_EQ(spoken(253402300800), "Sat Jan  1 00:00:00 10000\n");
}

} // namespace
