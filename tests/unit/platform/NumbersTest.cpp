// Numbers to text and back.

#include "tarn/numbers.h"

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

TEST(Numbers, FixedFormPrintsWhatTheCLibraryPrints) {
    const double infinity = std::numeric_limits<double>::infinity();
    const double largest = std::numeric_limits<double>::max();
    for (const double number : {-0.0, 2.5, 0.000000005, 0.000000015, 1e99, 1.0 / 3, -largest,
                                123456789.987654321, 5e-324, infinity, -infinity}) {
        char printed[400]; // in the C locale that tests start with
        std::snprintf(printed, sizeof(printed), "%.8lf", number);
        EXPECT_EQ(fixed8(number), printed);
    }
    EXPECT_EQ(fixed8(-std::nan("")), "nan");
}

TEST(Numbers, WholeNumbersAreReadLeniently) {
    EXPECT_EQ(parseInt(" \t\n\v\f\r-7 frames"), -7);
    EXPECT_EQ(parseInt("+8"), 8);
    EXPECT_EQ(parseInt("0x10"), 0);
    EXPECT_EQ(parseInt("007"), 7);
    for (const char* const none : {"", " ", "-", "+-5", "--5", "- 5", "abc", "\xb2", "\xa0 5"}) {
        EXPECT_EQ(parseInt(none), 0) << none;
        EXPECT_EQ(parseDouble(none), 0) << none;
    }
    EXPECT_EQ(parseInt(nullptr), 0);
    EXPECT_EQ(parseLongLong(nullptr), 0);
    EXPECT_EQ(parseDouble(nullptr), 0);
}

TEST(Numbers, WholeNumbersBeyondTheTypeAreClamped) {
    EXPECT_EQ(parseInt("2147483648"), std::numeric_limits<int>::max());
    EXPECT_EQ(parseInt("-2147483649"), std::numeric_limits<int>::min());
    const std::string huge(5000, '9');
    EXPECT_EQ(parseInt(huge.c_str()), std::numeric_limits<int>::max());
    EXPECT_EQ(parseLongLong(("-" + huge).c_str()), std::numeric_limits<long long>::min());
}

TEST(Numbers, WholeNumbersComeBack) {
    std::mt19937_64 random{11};
    for (int round = 0; round < 5000; ++round) {
        const auto number = static_cast<long long>(random()) >> (random() % 64);
        EXPECT_EQ(parseLongLong(decimal(number).c_str()), number);
    }
    EXPECT_EQ(decimal(std::numeric_limits<long long>::min()), "-9223372036854775808");
}

TEST(Numbers, FractionsAreReadLeniently) {
    EXPECT_EQ(parseDouble("  -1e3x"), -1000);
    EXPECT_EQ(parseDouble(".5."), 0.5);
    EXPECT_EQ(parseDouble("2,5"), 2);
    EXPECT_EQ(parseDouble("1e"), 1);
    EXPECT_EQ(parseDouble("1e999"), std::numeric_limits<double>::infinity());
}

} // namespace
