// Message types and the tokens of message texts.

#include "tarn/NotifyMsg.h"
#include "tarn/NotifyMsgTokenIterator.h"
#include "tarn/NotifyMsgTypeDictionary.h"

#include <gtest/gtest.h>

#include <climits>
#include <set>
#include <string>
#include <thread>
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
    for (NotifyMsgTokenIterator it{text}; it.valid(); ++it) {
        found.push_back(it.number());
    }
    return found;
}

TEST(NotifyMsgTokens, AreSeparatedByAnyRunOfBlanks) {
    using List = std::vector<std::string>;
    EXPECT_EQ(tokens(NotifyMsg{}), List{});
    EXPECT_EQ(tokens(NotifyMsg{"   "}), List{});
    EXPECT_EQ(tokens(NotifyMsg{"-1 "}), List{"-1"});
    EXPECT_EQ(tokens(NotifyMsg{"  12   abc -3"}), (List{"12", "abc", "-3"}));
    EXPECT_EQ(tokens(NotifyMsg{"a\tb c"}), (List{"a\tb", "c"}));
}

TEST(NotifyMsgTokens, StayAtTheEnd) {
    NotifyMsgTokenIterator it{std::string_view{"1"}};
    ++it;
    ++it;
    EXPECT_FALSE(it.valid());
    EXPECT_EQ(it.number(), 0);
}

TEST(NotifyMsgTokens, ReadAsWholeNumbersOnly) {
    EXPECT_EQ(numbers("0 7 -1 2147483647 -2147483648"),
              (std::vector<int>{0, 7, -1, INT_MAX, INT_MIN}));
    EXPECT_EQ(numbers("2147483648 5x x5 - 1.5 +"), (std::vector<int>{0, 0, 0, 0, 0, 0}));
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

TEST(NotifyMsgTypes, NamesStayWhileOthersComeFromManyThreads) {
    const int first = NotifyMsgTypeDictionary::intern("first");
    const char* const name = NotifyMsgTypeDictionary::name(first);
    std::vector<std::vector<int>> seen(4);
    std::vector<std::thread> threads;
    for (auto& mine : seen) {
        threads.emplace_back([&mine] {
            for (int i = 0; i < 500; ++i) {
                mine.push_back(
                    NotifyMsgTypeDictionary::intern(("type " + std::to_string(i)).c_str()));
            }
        });
    }
    for (auto& thread : threads) {
        thread.join();
    }
    for (const auto& mine : seen) {
        EXPECT_EQ(mine, seen[0]);
    }
    EXPECT_EQ(std::set<int>(seen[0].begin(), seen[0].end()).size(), 500U);
    EXPECT_EQ(NotifyMsgTypeDictionary::name(first), name);
    EXPECT_STREQ(name, "first");
}

} // namespace
