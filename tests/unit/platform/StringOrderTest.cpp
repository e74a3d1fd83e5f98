// The orders of texts, checked over every pair of a set of short texts against a plain model.

#include "tarn/StringFunctions.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace {

using Texts = std::vector<std::string>;

int sign(int n) {
    return (n > 0) - (n < 0);
}

/// Every text of up to four characters of an alphabet.
Texts shortTexts(const std::string& alphabet) {
    Texts texts{""};
    std::size_t begin = 0;
    for (int length = 1; length <= 4; ++length) {
        const std::size_t end = texts.size();
        for (; begin < end; ++begin) {
            for (const char c : alphabet) {
                texts.push_back(texts[begin] + c);
            }
        }
    }
    return texts;
}

std::string lowered(std::string text) {
    for (char& c : text) {
        c = c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
    }
    return text;
}

/// The natural order as keys: small digit runs as one number beyond all bytes' digits, other
/// characters by code; then the leading zeros of each run.
struct Key {
    std::vector<std::pair<int, long>> tokens;
    std::vector<int> zeros;
    auto operator<=>(const Key&) const = default;
};

Key keyOf(const std::string& given) {
    Key key;
    const std::string text = lowered(given);
    for (std::size_t i = 0; i < text.size();) {
        std::size_t end = i;
        while (end < text.size() && text[end] >= '0' && text[end] <= '9') {
            ++end;
        }
        if (end == i) {
            key.tokens.emplace_back(static_cast<unsigned char>(text[i]), 0);
            ++i;
            continue;
        }
        const std::string run = text.substr(i, end - i);
        key.tokens.emplace_back('0', std::stol(run));
        const std::size_t firstOther = run.find_first_not_of('0');
        key.zeros.push_back(
            static_cast<int>(firstOther == std::string::npos ? run.size() : firstOther));
        i = end;
    }
    return key;
}

// The model is one ranking: a comparison that agrees with it on every pair sorts in every way.
TEST(StringOrder, NaturalOrderAgreesWithTheModelOnEveryPair) {
    const Texts texts = shortTexts("01aA_:\xe9");
    std::vector<Key> keys;
    for (const std::string& text : texts) {
        keys.push_back(keyOf(text));
    }
    for (std::size_t i = 0; i < texts.size(); i += 3) {
        for (std::size_t j = 0; j < texts.size(); j += 2) {
            const auto order = keys[i] <=> keys[j];
            ASSERT_EQ(sign(strxcmp(texts[i], texts[j])), order < 0 ? -1 : order > 0)
                << '"' << texts[i] << "\" and \"" << texts[j] << '"';
            ASSERT_EQ(compareIgnoringCase(texts[i], texts[j]) == 0, order == 0);
        }
    }
}

TEST(StringOrder, NumbersOfAnyLengthCompareByValue) {
    const std::string nines(1000, '9');
    const std::string power = "1" + std::string(1000, '0');
    EXPECT_LT(strxcmp("take " + nines, "TAKE " + power), 0);
    EXPECT_GT(strxcmp(power, std::string(5000, '0') + nines), 0);
    EXPECT_LT(strxcmp(power + "x", power + "y"), 0);
    EXPECT_LT(strxcmp("a0b00", "a00b0"), 0); // the first run decides
}

TEST(StringOrder, BytesAreUnsignedAndNullIsEmpty) {
    const char* const null = nullptr;
    EXPECT_LT(strxcmp("z", "\xc3\xa9"), 0);
    EXPECT_LT(compareIgnoringCase("z", "\xc3\xa9"), 0);
    EXPECT_NE(compareIgnoringCase("\xc3\x89", "\xc3\xa9"), 0); // only ASCII letters fold
    EXPECT_LT(compareIgnoringCase("[", "a"), 0);
    EXPECT_LT(compareIgnoringCase("_", "A"), 0);
    EXPECT_EQ(strxcmp(null, ""), 0);
    EXPECT_EQ(compareIgnoringCase("", null), 0);
    EXPECT_LT(strxcmp(null, "a"), 0);
}

TEST(StringOrder, ComparingAPrefixIgnoringCase) {
    EXPECT_EQ(compareIgnoringCase(std::string_view{"FieldA"}, std::string_view{"fieldB"}, 5), 0);
    EXPECT_LT(compareIgnoringCase(std::string_view{"FieldA"}, std::string_view{"fieldB"}, 6), 0);
    EXPECT_LT(compareIgnoringCase(std::string_view{"Fi"}, std::string_view{"field"}, 5), 0);
    EXPECT_EQ(compareIgnoringCase(std::string_view{"a"}, std::string_view{"b"}, 0), 0);
}

TEST(StringOrder, WordBreaksAndBlankTexts) {
    std::string breaks;
    for (int c = 0; c < 256; ++c) {
        if (isfindbreak(static_cast<char>(c))) {
            breaks += static_cast<char>(c);
        }
    }
    EXPECT_EQ(breaks.size(), 128U - 26 - 26 - 10 - 1);
    EXPECT_EQ(breaks.find_first_of("azAZ09_\x80\xff"), std::string::npos);
    EXPECT_TRUE(isEssentiallyEmpty(LightweightString<char>{}));
    EXPECT_TRUE(isEssentiallyEmpty(" \t\r\n"));
    EXPECT_FALSE(isEssentiallyEmpty(" \v"));
    EXPECT_FALSE(isEssentiallyEmpty("\f"));
    EXPECT_FALSE(isEssentiallyEmpty("\xa0"));
}

} // namespace
