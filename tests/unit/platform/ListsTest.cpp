// The small containers of texts.

#include "tarn/GrowString.h"
#include "tarn/StringList.h"

#include <gtest/gtest.h>
#include <limits>

namespace {

/// Another kind of element, which tells when it dies.
class Number : public ArrayRec {
public:
    explicit Number(int& alive) : alive_{alive} { ++alive_; }
    Number(const Number&) = delete;
    Number& operator=(const Number&) = delete;
    ~Number() override { --alive_; }
    void printOn(GrowString& out) const override { out.append(7); }

private:
    int& alive_;
};

TEST(StringList, OwnsItsElementsOfAnyKind) {
    int alive = 0;
    {
        StringList list;
        list.append(nullptr);
        list.append(new StringRec{LightweightString<char>{"a"}});
        list.append(new Number{alive});
        EXPECT_EQ(list.count(), 2U);
        EXPECT_EQ(list.at(2), nullptr);
        EXPECT_EQ(list.at(0xFFFFFFFF), nullptr);
        EXPECT_STREQ(list.text(0), "a");
        EXPECT_STREQ(list.text(1), "");
        EXPECT_STREQ(list.text(2), "");
        GrowString out;
        list.at(0)->printOn(out);
        list.at(1)->printOn(out);
        EXPECT_STREQ(out.c_str(), "a7");
        list.clear();
        EXPECT_EQ(alive, 0);
        list.append(new Number{alive});
    }
    EXPECT_EQ(alive, 0);
}

TEST(GrowString, Appends) {
    GrowString text;
    text.append("take ").append(12).append(' ').append(std::numeric_limits<int>::min());
    text.append(static_cast<const char*>(nullptr)).append(LightweightString<char>{});
    text.append(std::numeric_limits<unsigned>::max()).append(LightweightString<char>{"x"});
    EXPECT_STREQ(text.c_str(), "take 12 -21474836484294967295x");
    EXPECT_EQ(text.length(), 30U);
    text.clear();
    EXPECT_EQ(text.view(), "");
}

} // namespace
