// Settings, the block that rows export into, and the small text forms of settings files.

#include "misc/AttribValuePair.h"
#include "misc/BoolString.h"
#include "misc/config.h"
#include "misc/configb.h"
#include "unit/EnvironmentVariable.h"

#include <gtest/gtest.h>

#include <climits>
#include <string>

namespace {

TEST(Config, HostThenEnvironmentThenDefault) {
    static int run = 0; // what a host has set stays, so a repeated test takes another key
    const std::string number = std::to_string(++run);
    const std::string key = "test_Host_key" + number;
    const std::string mixed = "OLE_CONFIG_TEST_HOST_key" + number;
    const std::string capitals = "OLE_CONFIG_TEST_HOST_KEY" + number;
    const EnvironmentVariable wrong{mixed.c_str(), "1"};
    EXPECT_EQ(config_int(key.c_str(), 5), 5);
    const EnvironmentVariable right{capitals.c_str(), "12"};
    EXPECT_EQ(config_int(key.c_str(), 5), 12);
    config_int_set(key.c_str(), 0);
    EXPECT_EQ(config_int(key.c_str(), 5), 0);
    config_int_set(key.c_str(), -7);
    EXPECT_EQ(config_int(key.c_str(), 5), -7);
    EXPECT_EQ(config_int(nullptr, 3), 3);
    config_int_set(nullptr, 4);
    EXPECT_EQ(config_int(nullptr, 3), 3);
}

TEST(Config, WholeNumbersOnly) {
    EnvironmentVariable variable{"OLE_CONFIG_TEST_NUMBER", nullptr};
    const auto read = [&variable](const char* text) {
        variable.set(text);
        return config_int("test_number", 99);
    };
    EXPECT_EQ(read("0"), 0);
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

TEST(ConfigBlock, LaterValuesReplaceEarlierOnes) {
    configb block;
    block.set("b", strp_field{"1"});
    block.set("a", strp_field{"2"});
    block.set("b", strp_field{"3"});
    block.set("B", strp_field{LightweightString<char>{}});
    std::string seen;
    for (const auto& [key, value] : block) {
        seen += std::string{key.c_str()} + "=" + value.string().c_str() + " ";
    }
    EXPECT_EQ(seen, "B= a=2 b=3 ");
    EXPECT_EQ(block.count(), 3U);
    EXPECT_EQ(block.get("c"), nullptr);
    ASSERT_NE(block.get("B"), nullptr);
    EXPECT_TRUE(block.get("B")->string().isNull());
    EXPECT_EQ(block.get(nullptr), nullptr);
}

TEST(AttribValuePair, CutsAtTheFirstSeparatorAndTrims) {
    const auto pair = [](std::string_view line, std::string_view separator = "=") {
        const Tarn::AttribValuePair found{line, separator};
        return std::string{found.valid() ? "[" : "("} + found.attribute().c_str() + "|" +
               found.value().c_str();
    };
    EXPECT_EQ(pair("Tape=reel"), "[Tape|reel");
    EXPECT_EQ(pair(" \tCam Roll = a = b \r"), "[Cam Roll|a = b");
    EXPECT_EQ(pair("Tape="), "[Tape|");
    EXPECT_EQ(pair("= x"), "(|x");
    EXPECT_EQ(pair("   =x"), "(|x");
    EXPECT_EQ(pair("no separator"), "(|");
    EXPECT_EQ(pair(""), "(|");
    EXPECT_EQ(pair("a::b:c", "::"), "[a|b:c");
    EXPECT_EQ(pair("\xa0"
                   "a=b"),
              "[\xa0"
              "a|b");
    EXPECT_FALSE((Tarn::AttribValuePair{LightweightString<char>{}, "="}.valid()));
}

TEST(BoolString, ReadsWhatPeopleWrite) {
    for (const bool expected : {true, false}) {
        bool value = !expected;
        EXPECT_TRUE(BoolFromString(BoolAsString(expected), value));
        EXPECT_EQ(value, expected);
    }
    const auto read = [](const char* text) {
        bool value = false;
        const bool atFalse = BoolFromString(text, value);
        const bool seen = value;
        value = true;
        const bool atTrue = BoolFromString(text, value);
        EXPECT_EQ(atFalse, atTrue);
        EXPECT_EQ(atTrue ? seen : !seen, value) << "a text that is no flag leaves the value";
        return atTrue ? (value ? 1 : 0) : -1;
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
