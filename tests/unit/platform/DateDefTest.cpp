// Dates under several time zones: against the standard `ctime`, and against a calendar computed by
// walking through the years.

#include "misc/date_def.h"
#include "unit/EnvironmentVariable.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <ctime>
#include <limits>
#include <random>
#include <string>
#include <thread>
#include <vector>

namespace {

std::string full(const std::string& text) {
    return date_def{text.c_str()}.get_all(0).c_str();
}

std::string spoken(long long seconds) {
    return Tarn::ctimeText(seconds).c_str();
}

bool isLeap(long long year) {
    return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
}

/// The date of a count of seconds in a zone without summer time, one year and month at a time.
std::string walkedDate(long long seconds) {
    long long days = seconds / 86400 - (seconds % 86400 < 0 ? 1 : 0);
    const long long time = seconds - days * 86400;
    long long year = 1970;
    for (; days < 0; days += isLeap(year) ? 366 : 365) {
        --year;
    }
    for (; days >= (isLeap(year) ? 366 : 365); ++year) {
        days -= isLeap(year) ? 366 : 365;
    }
    const std::array<int, 12> lengths{
        31, isLeap(year) ? 29 : 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    std::size_t month = 0;
    for (; days >= lengths[month]; ++month) {
        days -= lengths[month];
    }
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "%04lld-%02d-%02d %02d:%02d:%02d", year,
                  static_cast<int>(month) + 1, static_cast<int>(days) + 1,
                  static_cast<int>(time / 3600), static_cast<int>(time / 60 % 60),
                  static_cast<int>(time % 60));
    return text.data();
}

struct Zone {
    const char* name;
    long long east;
};

TEST(DateDef, IsTheCalendarOfTheZone) {
    EnvironmentVariable variable{"TZ", "UTC0"};
    std::mt19937_64 random{20240305};
    std::uniform_int_distribution<long long> seconds{-70'000'000'000, 300'000'000'000};
    for (const Zone& zone : {Zone{"UTC0", 0}, Zone{"XXX-5:30", 19800}, Zone{"YYY11", -39600},
                             Zone{"<+14>-14", 50400}}) {
        variable.set(zone.name); // a change of the zone is seen at once
        for (int i = 0; i < 500; ++i) {
            const long long at = seconds(random);
            ASSERT_EQ(full(std::to_string(at)), walkedDate(at + zone.east)) << zone.name << at;
        }
    }
}

TEST(DateDef, SpeaksAsTheStandardDoes) {
    EnvironmentVariable variable{"TZ", "UTC0"};
    std::mt19937_64 random{7};
    std::uniform_int_distribution<long long> seconds{-30'000'000'000, 250'000'000'000};
    for (const char* zone : {"UTC0", "CET-1CEST,M3.5.0,M10.5.0/3", "EST5EDT,M3.2.0,M11.1.0"}) {
        variable.set(zone);
        for (int i = 0; i < 500; ++i) {
            const auto at = static_cast<std::time_t>(seconds(random));
            tzset();
            ASSERT_EQ(spoken(at), std::ctime(&at)) << zone << " " << at;
        }
    }
}

TEST(DateDef, FollowsSummerTime) {
    const EnvironmentVariable variable{"TZ", "CET-1CEST,M3.5.0,M10.5.0/3"};
    EXPECT_EQ(full("1709647629"), "2024-03-05 15:07:09");
    EXPECT_EQ(full("1711846799"), "2024-03-31 01:59:59");
    EXPECT_EQ(full("1711846800"), "2024-03-31 03:00:00");
    EXPECT_EQ(spoken(1711846800), "Sun Mar 31 03:00:00 2024\n");
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

TEST(DateDef, ThreadsDoNotShareTheirText) {
    const EnvironmentVariable variable{"TZ", "UTC0"};
    std::vector<int> wrong(4);
    std::vector<std::thread> threads;
    for (std::size_t n = 0; n < wrong.size(); ++n) {
        threads.emplace_back([&wrong, n] {
            const auto day = static_cast<long long>(n) * 86400;
            const std::string expected = spoken(day);
            for (int i = 0; i < 2000; ++i) {
                wrong[n] += spoken(day) == expected ? 0 : 1;
            }
        });
    }
    for (auto& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(wrong, std::vector<int>(4));
}

TEST(DateDef, NowIsTheClock) {
    const long long before = std::time(nullptr);
    const long long now = Tarn::now();
    EXPECT_LE(before - 1, now);
    EXPECT_LE(now, static_cast<long long>(std::time(nullptr)) + 1);
}

} // namespace
