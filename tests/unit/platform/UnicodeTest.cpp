// Between bytes and wide texts, for texts and for paths.

#include "tarn/StringFunctions.h"

#include <gtest/gtest.h>
#include <random>
#include <string>

namespace {

using Bytes = LightweightString<char>;
using Wide = LightweightString<wchar_t>;

TEST(Unicode, EveryCodePointComesBack) {
    for (char32_t code = 1; code <= 0x10FFFF; ++code) {
        if (code >= 0xD800 && code <= 0xDFFF) {
            continue;
        }
        const wchar_t text[] = {static_cast<wchar_t>(code), L'x', 0};
        const Bytes bytes = toUTF8(text);
        const std::size_t expected = code < 0x80 ? 1 : code < 0x800 ? 2 : code < 0x10000 ? 3 : 4;
        ASSERT_EQ(bytes.size(), expected + 1) << std::hex << static_cast<unsigned>(code);
        ASSERT_EQ(fromUTF8(bytes), Wide{text}) << std::hex << static_cast<unsigned>(code);
    }
}

TEST(Unicode, KnownTexts) {
    EXPECT_EQ(Tarn::WStringFromAscii("caf\xc3\xa9"), L"caf\u00e9");
    EXPECT_TRUE(Tarn::WStringFromAscii(nullptr).isNull());
    EXPECT_TRUE(fromUTF8({}).isNull());
    EXPECT_TRUE(toUTF8({}).isNull());
}

TEST(Unicode, EachBadRunOfBytesBecomesOneReplacement) {
    EXPECT_EQ(fromUTF8("a\xff\xfe\x80z"), L"a\uFFFDz");
    EXPECT_EQ(fromUTF8("\xe2\x82x\xf0\x9f\x8e"), L"\uFFFDx\uFFFD");
    EXPECT_EQ(fromUTF8("\xc0\xaf|\xe0\x80\xaf|\xf0\x80\x80\xaf"), L"\uFFFD|\uFFFD|\uFFFD");
    EXPECT_EQ(fromUTF8("\xed\xa0\x80"), L"\uFFFD");     // a surrogate
    EXPECT_EQ(fromUTF8("\xf4\x90\x80\x80"), L"\uFFFD"); // past the last code point
    EXPECT_EQ(fromUTF8("\xff\xc3\xa9\xff"), L"\uFFFD\u00e9\uFFFD");
}

TEST(Unicode, EachBadRunOfWideUnitsBecomesOneReplacement) {
    const wchar_t surrogates[] = {L'a', static_cast<wchar_t>(0xDC80), static_cast<wchar_t>(0xD800),
                                  L'z', static_cast<wchar_t>(0xDFFF), 0};
    EXPECT_EQ(toUTF8(surrogates), "a\xef\xbf\xbdz\xef\xbf\xbd");
    if (sizeof(wchar_t) == 4) {
        const wchar_t beyond[] = {static_cast<wchar_t>(0x110000), static_cast<wchar_t>(-1), L'z',
                                  0};
        EXPECT_EQ(toUTF8(beyond), "\xef\xbf\xbdz");
    }
}

TEST(Unicode, EveryPathComesBackByteForByte) {
    std::mt19937 random{7};
    // Lead bytes, continuation bytes, surrogates' bytes and plain ones, so that near misses abound.
    const std::string alphabet =
        "a/\x80\x8e\x9f\xa0\xb2\xbf\xc0\xc3\xe0\xe2\xed\xef\xf0\xf4\xf5\xff";
    for (int round = 0; round < 20000; ++round) {
        std::string path(random() % 10, '\0');
        for (char& c : path) {
            c = random() % 3 != 0 ? alphabet[random() % alphabet.size()]
                                  : static_cast<char>(1 + random() % 255);
        }
        const Wide wide = pathFromBytes(path);
        ASSERT_EQ(pathToBytes(wide).view(), path);
        ASSERT_EQ(pathFromBytes(pathToBytes(wide).view()), wide);
    }
}

} // namespace
