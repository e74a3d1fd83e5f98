// Message types and the tokens of message texts.

#include "tarn/NotifyMsg.h"
#include "tarn/NotifyMsgTokenIterator.h"
#include "tarn/NotifyMsgTypeDictionary.h"

#include <gtest/gtest.h>

#include <climits>
#include <string>
#include <vector>

namespace {

std::vector<std::string> tokens(const NotifyMsg& msg) {
    std::vector<std::string> found;
    for (NotifyMsgTokenIterator it{msg}; it.valid(); ++it) {
        found.emplace_back(it.token());
    }
    return found;
}

std::vector<int> numbers(std::string_view text) {
    std::vector<int> found;
    NotifyMsgTokenIterator it{text};
    for (; it.valid(); ++it) {
        found.push_back(it.number());
    }
    ++it;
    EXPECT_FALSE(it.valid()) << "the end stays the end";
    EXPECT_EQ(it.number(), 0);
    return found;
}

TEST(NotifyMsgTokens, AreSeparatedByAnyRunOfBlanks) {
    using List = std::vector<std::string>;
    EXPECT_EQ(tokens(NotifyMsg{}), List{});
    EXPECT_EQ(tokens(NotifyMsg{"  12   abc a\tb -3 "}), (List{"12", "abc", "a\tb", "-3"}));
}

TEST(NotifyMsgTokens, ReadAsTheNumberTheyBeginWith) {
    EXPECT_EQ(numbers("0 7 -1 2147483647 -2147483648"),
              (std::vector<int>{0, 7, -1, INT_MAX, INT_MIN}));
    EXPECT_EQ(numbers("5x +6 \t7 1.5 x5 - + +-1"), (std::vector<int>{5, 6, 7, 1, 0, 0, 0, 0}));
    EXPECT_EQ(numbers("2147483648 -2147483649"), (std::vector<int>{INT_MAX, INT_MIN}));
}

TEST(NotifyMsgTypes, OneNumberForOneName) {
    const int deleted = NotifyMsgTypeDictionary::intern("recordsDeleted");
    EXPECT_EQ(NotifyMsgTypeDictionary::intern(std::string{"recordsDeleted"}.c_str()), deleted);
    EXPECT_NE(NotifyMsgTypeDictionary::intern("RecordsDeleted"), deleted);
    EXPECT_STREQ(NotifyMsgTypeDictionary::name(deleted), "recordsDeleted");
    EXPECT_EQ(NotifyMsgTypeDictionary::intern(nullptr), NotifyMsgTypeDictionary::intern(""));
    for (const int unknown : {0, -1, INT_MIN, INT_MAX}) {
        EXPECT_STREQ(NotifyMsgTypeDictionary::name(unknown), "");
    }
}

} // namespace
