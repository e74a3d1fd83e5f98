// Cutting lines at tabs, in both modes. '>' stands for a tab.

#include "tarn/StringFunctions.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace {

using Pieces = std::vector<std::string>;

Pieces split(std::string_view text, int mode) {
    std::vector<std::string_view> slices;
    Tarn::splitIf(text, Tarn::IsMatchingChar{'>'}, slices, mode);
    return {slices.begin(), slices.end()};
}

TEST(SplitIf, PiecesOfEitherMode) {
    struct Case {
        const char* text;
        Pieces plain;
        Pieces merging;
    };
    const Case cases[] = {
        {"", {""}, {""}},
        {">", {""}, {""}},
        {"a>b", {"a", "b"}, {"a", "b"}},
        {"a>>b", {"a", "", "b"}, {"a", ">b"}},
        {">a", {"a"}, {"a"}},
        {">>a", {"", "a"}, {">a"}},
        {"a>", {"a"}, {"a"}},
        {">a>", {"a"}, {"a"}},
        {"a>>b>c>>", {"a", "", "b", "c", ""}, {"a", ">b", "c", ">"}},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(split(c.text, Tarn::eSplitPlain), c.plain) << c.text;
        EXPECT_EQ(split(c.text, Tarn::eSplitMerging), c.merging) << c.text;
    }
}

TEST(SplitIf, AppendsStringsThatOutliveTheText) {
    std::vector<LightweightString<char>> pieces{"before"};
    Tarn::splitIf(LightweightString<char>{"Name>>Start"}, Tarn::IsMatchingChar{'>'}, pieces,
                  Tarn::eSplitPlain);
    Tarn::splitIf({}, Tarn::IsMatchingChar{'>'}, pieces, Tarn::eSplitPlain);
    EXPECT_EQ(pieces, (std::vector<LightweightString<char>>{"before", "Name", "", "Start", ""}));
    EXPECT_FALSE(pieces[2].isNull());
}

} // namespace
