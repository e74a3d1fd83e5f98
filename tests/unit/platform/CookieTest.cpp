// Identifiers: both text forms with both parsing modes, what does not parse, order, sets.

#include "tarn/Cookie.h"
#include "tarn/CookieSet.h"

#include <algorithm>
#include <cctype>
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <unordered_set>

namespace {

const std::string uuid = "0123456789abcdef0123456789abcdef";

Cookie cookieOf(std::mt19937& random) {
    Cookie::Uuid bytes{};
    std::generate(bytes.begin(), bytes.end(), [&] { return static_cast<std::uint8_t>(random()); });
    const char kinds[] = "MBUabzZ";
    return {bytes, kinds[random() % 7], static_cast<std::uint8_t>(random())};
}

std::string upper(const LightweightString<char>& text) {
    std::string result = text.c_str();
    for (std::size_t i = 1; i < result.size(); ++i) { // the letter stands for itself
        result[i] = static_cast<char>(std::toupper(result[i]));
    }
    return result;
}

TEST(Cookie, EitherFormComesBackInEitherMode) {
    std::mt19937 random{3};
    for (int round = 0; round < 500; ++round) {
        const Cookie cookie = cookieOf(random);
        for (const bool longForm : {false, true}) {
            const LightweightString<char> text = cookie.asString(longForm);
            for (const bool stored : {false, true}) {
                ASSERT_EQ(Cookie(text, stored), cookie) << text.c_str();
                ASSERT_EQ(Cookie((" \t" + upper(text) + "\r\n").c_str(), stored), cookie);
                const std::wstring wide{text.view().begin(), text.view().end()};
                ASSERT_EQ(Cookie(LightweightString<wchar_t>{wide.c_str()}, stored), cookie);
            }
        }
    }
}

TEST(Cookie, TextForms) {
    const Cookie cookie{("M" + uuid + "0a").c_str(), true};
    EXPECT_EQ(cookie.asString(false).view(), "M" + uuid + "0a");
    EXPECT_EQ(cookie.asString(true), "M-01234567-89ab-cdef-0123-456789abcdef-0a");
    EXPECT_EQ(cookie.kind(), CookieType::Group);
    EXPECT_EQ(cookie.flags(), 10);
    EXPECT_EQ(cookie.uuid()[1], 0x23);
    EXPECT_EQ(Cookie{}.asString(false), "");
    EXPECT_EQ(Cookie{}.asString(true), "");
}

TEST(Cookie, LengthTellsWhatIsThere) {
    const Cookie bare{uuid.c_str(), false};
    EXPECT_EQ(bare.kind(), CookieType::Unspecified);
    EXPECT_EQ(bare.flags(), 255);
    EXPECT_EQ(Cookie((uuid + "07").c_str(), false).flags(), 7);
    EXPECT_EQ(Cookie((uuid + "07").c_str(), false).kind(), CookieType::Unspecified);
    // B is a kind and a hex digit.
    EXPECT_EQ(Cookie(("B" + uuid).c_str(), true), convertCookie(bare, 'B', 255));
    EXPECT_EQ(Cookie(("B" + uuid + "bb").c_str(), false), convertCookie(bare, 'B', 0xbb));
    EXPECT_EQ(bare.uuid(), Cookie(("B" + uuid).c_str(), true).uuid());
    EXPECT_EQ(convertCookie(Cookie{"not an identifier", false}, 'M', 255), Cookie{});
    EXPECT_FALSE(Cookie(uuid.c_str(), true).valid());
    EXPECT_FALSE(Cookie((uuid + "07").c_str(), true).valid());
}

TEST(Cookie, OtherTextsGiveTheInvalidCookie) {
    const std::string cookie = "M" + uuid + "ff";
    // clang-format off
    const std::string texts[] = {
        "", " ", "-", "M", uuid.substr(1), cookie + "0", cookie + cookie, "g" + uuid.substr(1),
        "5" + uuid, "5" + uuid + "ff", "\xc3" + uuid, "M" + uuid + "fg", "M" + uuid + "g0",
        "M " + uuid, "M" + uuid + " ff", "M_" + uuid, "I" + uuid + "ff", std::string(10000, 'a')};
    // clang-format on
    for (const std::string& text : texts) {
        for (const bool stored : {false, true}) {
            EXPECT_EQ(Cookie(text.c_str(), stored), Cookie{}) << text;
        }
    }
    EXPECT_EQ(Cookie(static_cast<const char*>(nullptr), false), Cookie{});
    const std::wstring wide = L"M\u0130" + std::wstring(31, L'1'); // low byte '0'
    EXPECT_EQ(Cookie(LightweightString<wchar_t>{wide.c_str()}, false), Cookie{});
}

// A text must never change the meaning of one that was cut anywhere.
TEST(Cookie, EveryCutOfATextIsReadOrRefused) {
    const std::string text = Cookie{("M" + uuid + "0a").c_str(), true}.asString(true).c_str();
    int valid = 0;
    for (std::size_t length = 0; length < text.size(); ++length) {
        const Cookie cut{text.substr(0, length).c_str(), true};
        valid += cut.valid();
        EXPECT_TRUE(!cut.valid() || cut == convertCookie(cut, 'M', 255));
    }
    EXPECT_EQ(valid, 2); // without the flags: with and without the hyphen before them
}

TEST(Cookie, OrderIsByKindThenBytesThenFlags) {
    Cookie::Uuid low{};
    Cookie::Uuid high{};
    low[15] = 255;
    high[0] = 128;
    const Cookie ascending[] = {
        {high, 'B', 9}, {low, 'M', 0}, {low, 'M', 255}, {high, 'M', 0}, {low, 'a', 0}};
    for (const Cookie& a : ascending) {
        for (const Cookie& b : ascending) {
            EXPECT_EQ(a.compare(b) < 0, &a < &b);
            EXPECT_EQ(a < b, &a < &b);
            EXPECT_EQ(a == b, &a == &b);
            EXPECT_EQ(CookieHash{}(a) == CookieHash{}(b), &a == &b);
        }
    }
}

TEST(Cookie, RandomOnesDiffer) {
    std::unordered_set<Cookie, CookieHash> seen;
    for (int i = 0; i < 10000; ++i) {
        const Cookie cookie = Cookie::random('U', 255);
        ASSERT_TRUE(seen.insert(cookie).second);
        ASSERT_EQ(cookie.uuid()[6] >> 4, 4);
        ASSERT_EQ(cookie.uuid()[8] >> 6, 2);
    }
}

TEST(CookieSet, KeepsEachOnceInOrderOfFirstAddition) {
    const Cookie a = Cookie::random('U', 255);
    const Cookie b = Cookie::random('M', 255);
    CookieSet set;
    EXPECT_TRUE(set.empty());
    EXPECT_TRUE(set.add(b) && set.add(a) && set.add(convertCookie(a, 'M', 255)));
    EXPECT_FALSE(set.add(a) || set.add(b));
    EXPECT_EQ(CookieVec(set.begin(), set.end()), (CookieVec{b, a, convertCookie(a, 'M', 255)}));
    EXPECT_EQ(set.size(), 3U);
    EXPECT_TRUE(set.contains(a));
    EXPECT_FALSE(set.contains(Cookie{}));
}

} // namespace
