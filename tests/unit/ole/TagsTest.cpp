// Tags and the mode that shows the tagged rows only: what random tables do not meet.

#include "ole/oledb/oledb.h"
#include "support/Tables.h"

#include <gtest/gtest.h>

namespace {

constexpr unsigned none = 0xFFFFFFFFU;

TEST(Tags, StaleEntriesBehindTheShownRows) {
    const auto table = numberedTable(4);
    setTags(*table, "1110");
    table->set_show_tags_only(1);
    table->set_tag(2, 0);
    EXPECT_EQ(table->get_num_records(), 3U);
    EXPECT_EQ(table->set_show_tags_only(1), 2);
    EXPECT_EQ(table->get_num_records(), 2U);
    EXPECT_EQ(table->get_raw_row(1), 1U);
    EXPECT_EQ(table->get_raw_row(2), 2U) << "the entry behind the last is deliberately answered";
    EXPECT_EQ(table->get_raw_row(3), none);
    EXPECT_EQ(table->get_record(2), nullptr);
}

TEST(Tags, TaggingTheFirstOfEveryValue) {
    struct Case {
        Texts values;
        int tags;
    };
    const Case cases[] = {
        {{"b", "A", "a", "", "b"}, 3}, {{"", "", ""}, 0}, {{"", "x", ""}, 2}, {{}, 0}};
    for (const Case& c : cases) {
        Rows rows;
        for (const std::string& value : c.values) {
            rows.push_back({value, "not blank"});
        }
        const auto table = makeTable({"v", "w"}, rows);
        table->set_all_tags(1);
        EXPECT_EQ(table->tag_all_different(0), c.tags) << testing::PrintToString(c.values);
        EXPECT_EQ(table->get_num_tags(), c.tags);
    }
}

/// Tags are cleared among the shown rows, before the mode is switched off.
TEST(Tags, TaggingTheFirstOfEveryValueKeepsTagsOfRowsNotShown) {
    const auto table = makeTable({"v"}, {{"x"}, {"y"}, {"y"}});
    setTags(*table, "100");
    table->set_show_tags_only(1);
    table->invert_all_tags();
    EXPECT_EQ(table->tag_all_different(0), 3);
    EXPECT_EQ(table->get_show_tags_only(), 0);
    EXPECT_EQ(tagsOf(*table), "111");
}

} // namespace
