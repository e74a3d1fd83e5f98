// Cutting lines at tabs, in both modes. '>' stands for a tab.

#include "tarn/StringFunctions.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <vector>

namespace {

using Pieces = std::vector<std::string>;

Pieces split(std::string_view text, int mode) {
    std::vector<std::string_view> slices;
    Tarn::splitIf(text, Tarn::IsMatchingChar{'>'}, slices, mode);
    return {slices.begin(), slices.end()};
}

struct Case {
    const char* text;
    Pieces plain;
    Pieces merging;
};

TEST(SplitIf, PiecesOfEitherMode) {
    const Case cases[] = {
        {"", {""}, {""}},
        {"a", {"a"}, {"a"}},
        {">", {""}, {""}},
        {"a>b", {"a", "b"}, {"a", "b"}},
        {"a>>b", {"a", "", "b"}, {"a", ">b"}},
        {"a>>>b", {"a", "", "", "b"}, {"a", ">>b"}},
        {">a", {"a"}, {"a"}},
        {">>a", {"", "a"}, {">a"}},
        {"a>", {"a"}, {"a"}},
        {">a>", {"a"}, {"a"}},
        {"a>>b>c>>", {"a", "", "b", "c", ""}, {"a", ">b", "c", ">"}},
        {"\"a>b\"", {"\"a", "b\""}, {"\"a", "b\""}},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(split(c.text, Tarn::eSplitPlain), c.plain) << c.text;
        EXPECT_EQ(split(c.text, Tarn::eSplitMerging), c.merging) << c.text;
    }
    EXPECT_EQ(split("a>>", Tarn::eSplitPlain), (Pieces{"a", ""}));
    EXPECT_EQ(split(">>", Tarn::eSplitPlain), (Pieces{""}));
}

std::string joined(const Pieces& pieces) {
    std::string text;
    for (const std::string& piece : pieces) {
        text += (&piece == pieces.data() ? "" : ">") + piece;
    }
    return text;
}

// Nothing is lost but one separator at either end.
TEST(SplitIf, PiecesJoinToTheTextAgain) {
    std::mt19937 random{20240305};
    for (int round = 0; round < 3000; ++round) {
        std::string text(random() % 12, ' ');
        std::generate(text.begin(), text.end(), [&] { return ">>ab"[random() % 4]; });
        for (const int mode : {Tarn::eSplitPlain, Tarn::eSplitMerging}) {
            const std::string again = joined(split(text, mode));
            EXPECT_TRUE(text == again || text == ">" + again || text == again + ">" ||
                        text == ">" + again + ">")
                << text << " mode " << mode << " gave " << again;
        }
    }
}

TEST(SplitIf, AppendsStringsThatOutliveTheText) {
    std::vector<LightweightString<char>> pieces{"before"};
    {
        const LightweightString<char> text{"Name\tTracks\t\tStart"};
        Tarn::splitIf(text, Tarn::IsMatchingChar{'\t'}, pieces, Tarn::eSplitPlain);
    }
    ASSERT_EQ(pieces.size(), 5U);
    EXPECT_STREQ(pieces[1].c_str(), "Name");
    EXPECT_FALSE(pieces[3].isNull());
    EXPECT_STREQ(pieces[4].c_str(), "Start");
    Tarn::splitIf({}, Tarn::IsMatchingChar{'\t'}, pieces, Tarn::eSplitPlain);
    ASSERT_EQ(pieces.size(), 6U); // an empty text is a piece, also behind others
    EXPECT_TRUE(pieces[5].empty());
}

} // namespace
