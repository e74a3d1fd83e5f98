// Numbers to text and back, also where the process writes a decimal comma.

#include "tarn/numbers.h"

#include <clocale>
#include <cmath>
#include <cstdio>
#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <string>

namespace {

using Tarn::decimal;
using Tarn::fixed8;
using Tarn::parseDouble;
using Tarn::parseInt;
using Tarn::parseLongLong;

/// What the C library prints, in the C locale that tests start with.
std::string printed(double number) {
    char text[400];
    std::snprintf(text, sizeof(text), "%.8lf", number);
    return text;
}

TEST(Numbers, FixedFormPrintsWhatTheCLibraryPrints) {
    const double infinity = std::numeric_limits<double>::infinity();
    const double largest = std::numeric_limits<double>::max();
    for (const double number :
         {0.0, -0.0, 2.5, -2.5, 0.000000005, 0.000000015, 1e99, 1.0 / 3, 123456789.987654321,
          largest, -largest, 5e-324, infinity, -infinity}) {
        EXPECT_EQ(fixed8(number).view(), printed(number));
    }
    EXPECT_EQ(fixed8(std::nan("")), "nan");
    EXPECT_EQ(fixed8(-std::nan("")), "nan");
    EXPECT_EQ(fixed8(2.5), "2.50000000");
    EXPECT_EQ(fixed8(largest).size(), 309U + 9);
}

TEST(Numbers, WholeNumbersAreReadLeniently) {
    EXPECT_EQ(parseInt("42"), 42);
    EXPECT_EQ(parseInt(" \t\n\v\f\r-7 frames"), -7);
    EXPECT_EQ(parseInt("+8"), 8);
    EXPECT_EQ(parseInt("0x10"), 0);
    EXPECT_EQ(parseInt("007"), 7);
    for (const char* const none : {"", " ", "-", "+", "+-5", "-+5", "--5", "- 5", "abc", "\xb2",
                                   "\xa0"
                                   "5"}) {
        EXPECT_EQ(parseInt(none), 0) << none;
        EXPECT_EQ(parseDouble(none), 0) << none;
    }
    EXPECT_EQ(parseInt(nullptr), 0);
    EXPECT_EQ(parseLongLong(nullptr), 0);
    EXPECT_EQ(parseDouble(nullptr), 0);
}

TEST(Numbers, WholeNumbersBeyondTheTypeAreClamped) {
    EXPECT_EQ(parseInt("2147483647"), std::numeric_limits<int>::max());
    EXPECT_EQ(parseInt("2147483648"), std::numeric_limits<int>::max());
    EXPECT_EQ(parseInt("-2147483648"), std::numeric_limits<int>::min());
    EXPECT_EQ(parseInt("-2147483649"), std::numeric_limits<int>::min());
    const std::string huge(5000, '9');
    EXPECT_EQ(parseInt(huge.c_str()), std::numeric_limits<int>::max());
    EXPECT_EQ(parseLongLong(("-" + huge).c_str()), std::numeric_limits<long long>::min());
    EXPECT_EQ(parseLongLong("9223372036854775807"), std::numeric_limits<long long>::max());
}

TEST(Numbers, WholeNumbersComeBack) {
    std::mt19937_64 random{11};
    for (int round = 0; round < 5000; ++round) {
        const auto number = static_cast<long long>(random()) >> (random() % 64);
        EXPECT_EQ(parseLongLong(decimal(number).c_str()), number);
    }
    EXPECT_EQ(decimal(std::numeric_limits<long long>::min()), "-9223372036854775808");
    EXPECT_EQ(decimal(0), "0");
}

TEST(Numbers, FractionsAreReadLeniently) {
    EXPECT_EQ(parseDouble("2.5"), 2.5);
    EXPECT_EQ(parseDouble("  -1e3x"), -1000);
    EXPECT_EQ(parseDouble(".5."), 0.5);
    EXPECT_EQ(parseDouble("2,5"), 2);
    EXPECT_EQ(parseDouble("1e"), 1);
    EXPECT_EQ(parseDouble("1e999"), std::numeric_limits<double>::infinity());
    EXPECT_EQ(parseDouble(fixed8(1e99).c_str()), 1e99);
}

/// The process's locale for the length of a test.
class DecimalComma : public testing::Test {
protected:
    void SetUp() override {
        for (const char* const name :
             {"de_DE.utf8", "de_DE.UTF-8", "fr_FR.utf8", "nl_NL.utf8", "de_DE"}) {
            if (std::setlocale(LC_ALL, name)) {
                return;
            }
        }
        GTEST_SKIP() << "no locale with a decimal comma is installed";
    }
    void TearDown() override { std::setlocale(LC_ALL, "C"); }
};

TEST_F(DecimalComma, NumbersKeepThePoint) {
    ASSERT_EQ(printed(2.5), "2,50000000") << "the locale has no decimal comma";
    EXPECT_EQ(fixed8(2.5), "2.50000000");
    EXPECT_EQ(parseDouble("2.5"), 2.5);
    EXPECT_EQ(parseDouble("2,5"), 2);
    EXPECT_EQ(decimal(1234567), "1234567");
    EXPECT_EQ(parseInt("1.234"), 1);
}

} // namespace
