// The counted string: shared blocks, addresses that stay, null and empty, use by two threads.

#include "tarn/LightweightString.h"

#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <string>
#include <thread>
#include <type_traits>
#include <vector>

namespace {

using String = LightweightString<char>;
using Wide = LightweightString<wchar_t>;

// A string must not slip into an overload for flags or numbers, nor the other way.
static_assert(!std::is_convertible_v<String, bool>);
static_assert(!std::is_constructible_v<bool, String>);
static_assert(!std::is_convertible_v<String, const char*>);
static_assert(!std::is_constructible_v<String, bool>);
static_assert(!std::is_constructible_v<String, int>);
static_assert(!std::is_constructible_v<String, char>);
static_assert(!std::is_constructible_v<String, double>);
static_assert(std::is_nothrow_move_constructible_v<String>);
static_assert(sizeof(String) == sizeof(void*));

TEST(LightweightString, NullAndEmptyDifferInIsNullAlone) {
    const String null;
    const String empty{""};
    EXPECT_TRUE(null.isNull());
    EXPECT_TRUE(String{static_cast<const char*>(nullptr)}.isNull());
    EXPECT_TRUE(null.toLower().isNull());
    EXPECT_TRUE(String(null).isNull());
    EXPECT_FALSE(empty.isNull());
    EXPECT_FALSE(String{std::string_view{}}.isNull());
    EXPECT_FALSE(empty.toLower().isNull());
    EXPECT_STREQ(null.c_str(), "");
    EXPECT_EQ(null, empty);
    EXPECT_EQ(null, static_cast<const char*>(nullptr));
    EXPECT_EQ(null[0], '\0');
    EXPECT_EQ(null + "x", "x");
}

TEST(LightweightString, ACopyDoesNotSeeChangesOfTheOther) {
    String a{"Scene 1  "};
    const String b{a};
    a.trimTrailingSpaces();
    a += "A";
    a.appendDecimal(std::numeric_limits<std::int64_t>::min());
    EXPECT_EQ(a, "Scene 1A-9223372036854775808");
    EXPECT_EQ(b, "Scene 1  ");
    const String& same = a;
    a = same;
    a = std::move(a += a);
    EXPECT_EQ(a, "Scene 1A-9223372036854775808Scene 1A-9223372036854775808");
}

TEST(LightweightString, TextsEndAtTheirFirstZero) {
    const String text{std::string_view{"ab\0cd", 5}};
    EXPECT_EQ(text.size(), 2U);
    EXPECT_EQ(String("abc", 2), "ab");
    EXPECT_TRUE(String(static_cast<const char*>(nullptr), 5).isNull());
    EXPECT_TRUE(String(std::string_view{"\0a", 2}).empty());
}

TEST(LightweightString, StartsAndEnds) {
    const String text{"Column"};
    EXPECT_TRUE(text.startsWith("COL", false));
    EXPECT_FALSE(text.startsWith("Columns", false));
    EXPECT_TRUE(Wide{L"project.SG"}.endsWith(L"sg", false));
    EXPECT_FALSE(Wide{L"g"}.endsWith(L"sg", false));
    EXPECT_FALSE(String{"["}.startsWith("{", false)); // neighbours of the letters do not fold
}

TEST(LightweightString, PartsAndCase) {
    const String text{"Heading\tX"};
    EXPECT_EQ(text.substr(8, 100), "X");
    EXPECT_EQ(text.substr(1000, String::npos), "");
    EXPECT_EQ(text.find('\t', 8), String::npos);
    EXPECT_EQ(text.find('H', 1000), String::npos);
    EXPECT_EQ(text[9], '\0');
    EXPECT_EQ(String{"\xc3\x89 AZ[@"}.toLower(), "\xc3\x89 az[@");
    EXPECT_LT(String{"z"}, String{"\xc3\xa9"});
    EXPECT_LT(String{"Z"}, String{"a"});
}

TEST(LightweightString, RandomMakesCopiesAndDropsAgreeWithPlainTexts) {
    std::mt19937 random{17};
    std::vector<String> strings(200);
    std::vector<std::string> plain(200);
    for (int round = 0; round < 20'000; ++round) {
        const std::size_t to = random() % 200;
        const std::size_t from = random() % 200;
        switch (random() % 4) {
        case 0:
            plain[to] = std::string(random() % (random() % 50 == 0 ? 9000 : 40),
                                    static_cast<char>('a' + random() % 26));
            strings[to] = plain[to].c_str();
            break;
        case 1:
            plain[to] = plain[from];
            strings[to] = strings[from];
            break;
        case 2:
            plain[to] = plain[from].substr(0, 20) + "-";
            strings[to] = strings[from].substr(0, 20) + "-";
            break;
        default:
            plain[to].clear();
            strings[to] = {};
        }
        ASSERT_EQ(strings[from].view(), plain[from]);
    }
}

TEST(LightweightString, StringsMayBeDroppedOnAnotherThread) {
    constexpr int count = 20'000;
    std::vector<String> kept;
    for (int round = 0; round < 4; ++round) {
        std::vector<String> made;
        for (int i = 0; i < count; ++i) {
            made.emplace_back(("take " + std::to_string(i)).c_str());
        }
        kept.assign(made.begin(), made.end());
        std::thread dropper{[strings = std::move(made)]() mutable { strings.clear(); }};
        const std::vector<String> copies{kept}; // counts up and down meanwhile
        kept[5] = "changed";
        dropper.join();
        EXPECT_EQ(copies[5], "take 5");
        EXPECT_EQ(copies[count - 1].view(), "take " + std::to_string(count - 1));
    }
}

TEST(StringMemory, KeptStringsAmongTemporariesPinLittle) {
    const std::size_t before = Tarn::StringMemory::bytesHeld();
    std::vector<LightweightString<char>> kept;
    for (int i = 0; i < 2000; ++i) {
        for (int k = 0; k < 100; ++k) {
            const LightweightString<char> shown{"a timecode that was shown for a moment"};
            EXPECT_FALSE(shown.empty());
        }
        kept.emplace_back("kept");
    }
    EXPECT_LT(Tarn::StringMemory::bytesHeld(), before + 300'000);
}

} // namespace
