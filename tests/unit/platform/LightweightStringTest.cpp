// The counted string: shared blocks, addresses that stay, null and empty, use by two threads.

#include "tarn/LightweightString.h"

#include <cstring>
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
    EXPECT_FALSE(empty.isNull());
    EXPECT_FALSE(String{std::string_view{}}.isNull());
    EXPECT_STREQ(null.c_str(), "");
    EXPECT_EQ(null, empty);
    EXPECT_EQ(null, "");
    EXPECT_EQ(null, static_cast<const char*>(nullptr));
    EXPECT_FALSE(null < empty || empty < null);
    EXPECT_TRUE(null.empty() && empty.empty());
    EXPECT_TRUE(null.toLower().isNull());
    EXPECT_FALSE(empty.toLower().isNull());
    EXPECT_EQ(null[0], '\0');
    EXPECT_EQ(null + "x", "x");
    EXPECT_TRUE(String(null).isNull());
}

TEST(LightweightString, AddressStaysWhileAVectorGrowsAndCopiesDie) {
    std::vector<String> values;
    std::vector<const char*> addresses;
    for (int i = 0; i < 2000; ++i) {
        values.emplace_back(std::to_string(i).c_str());
        addresses.push_back(values.back().c_str());
    }
    {
        const std::vector<String> copies{values};
        EXPECT_EQ(copies[7].c_str(), addresses[7]); // shared
        values.insert(values.begin() + 1000, String{"between"});
    }
    values.erase(values.begin() + 1000);
    for (std::size_t i = 0; i < values.size(); ++i) {
        ASSERT_EQ(values[i].c_str(), addresses[i]);
        ASSERT_EQ(values[i].view(), std::to_string(i));
    }
}

TEST(LightweightString, ACopyDoesNotSeeChangesOfTheOther) {
    String a{"Scene 1  "};
    const String b{a};
    a.trimTrailingSpaces();
    a += "A";
    a.appendDecimal(-20);
    EXPECT_EQ(a, "Scene 1A-20");
    EXPECT_EQ(b, "Scene 1  ");
    const String& same = a;
    a = same;
    a = std::move(a += a);
    EXPECT_EQ(a, "Scene 1A-20Scene 1A-20");
}

TEST(LightweightString, TextsEndAtTheirFirstZero) {
    const String text{std::string_view{"ab\0cd", 5}};
    EXPECT_EQ(text.size(), 2U);
    EXPECT_EQ(String("abc", 2), "ab");
    EXPECT_TRUE(String(static_cast<const char*>(nullptr), 5).isNull());
    EXPECT_TRUE(String(std::string_view{"\0a", 2}).empty());
}

TEST(LightweightString, OrderIsByUnsignedBytes) {
    EXPECT_LT(String{"z"}, String{"\xc3\xa9"});
    EXPECT_LT(String{"Z"}, String{"a"});
    EXPECT_LT(String{"a"}, String{"ab"});
    EXPECT_NE(String{"a"}, String{"A"});
}

TEST(LightweightString, PartsOfATextAreClipped) {
    const String text{"Heading\tX"};
    EXPECT_EQ(text.substr(8, 100), "X");
    EXPECT_EQ(text.substr(9), "");
    EXPECT_EQ(text.substr(1000, String::npos), "");
    EXPECT_EQ(text.substr(0, 3), "Hea");
    EXPECT_EQ(text.find('\t'), 7U);
    EXPECT_EQ(text.find('\t', 8), String::npos);
    EXPECT_EQ(text.find('H', 1000), String::npos);
    EXPECT_EQ(text[8], 'X');
    EXPECT_EQ(text[9], '\0');
}

TEST(LightweightString, StartsAndEnds) {
    const String text{"Column"};
    EXPECT_TRUE(text.startsWith("Col"));
    EXPECT_FALSE(text.startsWith("col"));
    EXPECT_TRUE(text.startsWith("COL", false));
    EXPECT_FALSE(text.startsWith("Columns", false));
    EXPECT_FALSE(String{}.startsWith("C"));
    EXPECT_TRUE(Wide{L"project.SG"}.endsWith(L"sg", false));
    EXPECT_FALSE(Wide{L"project.SG"}.endsWith(L"sg"));
    EXPECT_FALSE(Wide{L"g"}.endsWith(L"sg", false));
    EXPECT_FALSE(String{"["}.startsWith("{", false)); // neighbours of the letters do not fold
}

TEST(LightweightString, BlanksGoFromTheEndAlone) {
    String text{" a\t  "};
    text.trimTrailingSpaces();
    EXPECT_EQ(text, " a\t");
    String blanks{"   "};
    blanks.trimTrailingSpaces();
    EXPECT_EQ(blanks, "");
    EXPECT_EQ(String{"\xc3\x89"
                     "AZ[@"}
                  .toLower(),
              "\xc3\x89"
              "az[@");
}

TEST(LightweightString, DecimalNumbers) {
    for (const std::int64_t number :
         {std::int64_t{0}, std::int64_t{-1}, std::int64_t{1234567890123},
          std::numeric_limits<std::int64_t>::min(), std::numeric_limits<std::int64_t>::max()}) {
        String text{"n"};
        text.appendDecimal(number);
        EXPECT_EQ(text.view(), "n" + std::to_string(number));
        Wide wide;
        wide.appendDecimal(number);
        EXPECT_EQ(wide.view(), std::to_wstring(number));
    }
}

// A random run of makes, copies, changes and drops against plain texts.
TEST(LightweightString, ManyStringsOfAllLengthsAgreeWithPlainTexts) {
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
    for (std::size_t i = 0; i < strings.size(); ++i) {
        ASSERT_EQ(strings[i].view(), plain[i]);
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

TEST(LightweightString, StringsOfAThreadOutliveIt) {
    std::vector<String> made;
    std::thread{[&] {
        for (int i = 0; i < 5000; ++i) {
            made.emplace_back(std::to_string(i).c_str());
        }
    }}.join();
    for (int i = 0; i < 5000; ++i) {
        ASSERT_EQ(made[static_cast<std::size_t>(i)].view(), std::to_string(i));
    }
}

TEST(LightweightString, MemoryGoesBackWhenTheLastStringDies) {
    const std::size_t before = Tarn::StringMemory::bytesHeld();
    {
        std::vector<String> strings;
        for (int i = 0; i < 100'000; ++i) {
            strings.emplace_back("some take of some scene");
        }
        EXPECT_GT(Tarn::StringMemory::bytesHeld(), before + 2'000'000);
    }
    EXPECT_LT(Tarn::StringMemory::bytesHeld(), before + 200'000);
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
