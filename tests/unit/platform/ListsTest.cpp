// The small containers of texts.

#include "tarn/AssocList.h"
#include "tarn/GrowString.h"
#include "tarn/StringFunctions.h"
#include "tarn/StringList.h"

#include <gtest/gtest.h>
#include <limits>
#include <map>

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

TEST(Array, OwnsItsElements) {
    int alive = 0;
    {
        Array array;
        array.append(nullptr);
        array.append(new Number{alive});
        array.append(new Number{alive});
        EXPECT_EQ(array.count(), 2U);
        EXPECT_EQ(alive, 2);
        EXPECT_EQ(array.at(2), nullptr);
        EXPECT_EQ(array.at(0xFFFFFFFF), nullptr);
        array.clear();
        EXPECT_EQ(alive, 0);
        array.append(new Number{alive});
    }
    EXPECT_EQ(alive, 0);
}

TEST(StringList, TextsAndOtherElements) {
    int alive = 0;
    StringList list;
    list.append(new StringRec{LightweightString<char>{"a"}});
    list.append(new StringRec{});
    list.append(new Number{alive});
    EXPECT_STREQ(list.text(0), "a");
    EXPECT_STREQ(list.text(1), "");
    EXPECT_STREQ(list.text(2), "");
    EXPECT_STREQ(list.text(3), "");
    GrowString out;
    list.at(0)->printOn(out);
    list.at(2)->printOn(out);
    EXPECT_STREQ(out.c_str(), "a7");
}

TEST(StringRec, ComparesTextsByUnsignedBytesAndOthersByAddress) {
    const StringRec small{LightweightString<char>{"Z"}};
    const StringRec large{LightweightString<char>{"\xc3"}};
    EXPECT_LT(small.compare(large), 0);
    EXPECT_GT(large.compare(small), 0);
    EXPECT_TRUE(StringRec{} == StringRec{LightweightString<char>{""}});
    EXPECT_TRUE(small != large);
    int alive = 0;
    const Number number{alive};
    EXPECT_EQ(small.compare(number) < 0, number.compare(small) > 0);
    EXPECT_NE(small.compare(number), 0);
    EXPECT_EQ(number.compare(number), 0);
}

TEST(AssocList, KeepsOrderAndFirstSpelling) {
    AssocList list;
    list.set("OLEDB", "Rev 1");
    list.set("Tape", {});
    list.set("oledb", "Rev 2");
    ASSERT_EQ(list.size(), 2U);
    EXPECT_EQ(list[0].first, "OLEDB");
    EXPECT_EQ(list[0].second, "Rev 2");
    ASSERT_NE(list.find("TAPE"), nullptr);
    EXPECT_TRUE(list.find("TAPE")->isNull());
    EXPECT_EQ(list.find("tap"), nullptr);
    EXPECT_EQ(list.find("missing"), nullptr);
    EXPECT_EQ(list.size(), 2U); // looking up adds nothing
}

TEST(StrCmpCI, FindsByPointerSliceAndString) {
    std::map<LightweightString<char>, int, StrCmpCI> fields;
    fields["Scene"] = 1;
    fields["Tape"] = 2;
    fields["SCENE"] = 3;
    EXPECT_EQ(fields.size(), 2U);
    EXPECT_EQ(fields.find("scene")->second, 3);
    EXPECT_EQ(fields.find(std::string_view{"tAPE, take"}.substr(0, 4))->second, 2);
    EXPECT_EQ(fields.find(LightweightString<char>{"tape"})->second, 2);
    EXPECT_EQ(fields.find(static_cast<const char*>(nullptr)), fields.end());
}

TEST(GrowString, Appends) {
    GrowString text;
    text.append("take ").append(12).append(' ').append(std::numeric_limits<int>::min());
    text.append(static_cast<const char*>(nullptr)).append(LightweightString<char>{});
    text.append(std::numeric_limits<unsigned>::max()).append(LightweightString<char>{"x"});
    EXPECT_STREQ(text.c_str(), "take 12 -21474836484294967295x");
    EXPECT_EQ(text.length(), 30U);
    EXPECT_EQ(text.string(), "take 12 -21474836484294967295x");
    text.clear();
    EXPECT_EQ(text.view(), "");
}

} // namespace
