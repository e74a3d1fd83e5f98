// Settings from the environment, and flags as people write them.

#include "misc/BoolString.h"
#include "misc/config.h"
#include "unit/EnvironmentVariable.h"

#include <gtest/gtest.h>

#include <climits>

namespace {

TEST(Config, WholeNumbersOnly) {
    EnvironmentVariable variable{"OLE_CONFIG_TEST_NUMBER", nullptr};
    const auto read = [&variable](const char* text) {
        variable.set(text);
        return config_int("test_number", 99);
    };
    EXPECT_EQ(config_int(nullptr, 3), 3);
    EXPECT_EQ(read("-3"), -3);
    EXPECT_EQ(read("+3"), 3);
    EXPECT_EQ(read(" \t12 \n"), 12);
    EXPECT_EQ(read("2147483647"), INT_MAX);
    EXPECT_EQ(read("-2147483648"), INT_MIN);
    for (const char* text :
         {"", " ", "1x", "x1", "1.0", "0x1", "1 2", "+", "-", "+-3", "--3", "2147483648", "true"}) {
        EXPECT_EQ(read(text), 99) << text;
    }
}

TEST(BoolString, ReadsWhatPeopleWrite) {
    EXPECT_EQ(BoolAsString(true) + BoolAsString(false), "truefalse");
    /// The flag, or -1 where the text is none and leaves the value as it was.
    const auto read = [](const char* text) {
        bool fromFalse = false;
        bool fromTrue = true;
        const bool known = BoolFromString(text, fromFalse);
        EXPECT_EQ(BoolFromString(text, fromTrue), known);
        EXPECT_EQ(fromFalse == fromTrue, known) << text;
        return known ? static_cast<int>(fromTrue) : -1;
    };
    for (const char* text : {"true", "T", "Yes", "y", "ON", "1"}) {
        EXPECT_EQ(read(text), 1) << text;
    }
    for (const char* text : {"FALSE", "f", "nO", "N", "off", "0"}) {
        EXPECT_EQ(read(text), 0) << text;
    }
    for (const char* text : {"", "2", "tr", "truee", " true", "of", "10"}) {
        EXPECT_EQ(read(text), -1) << text;
    }
}

} // namespace
