// Tags and the mode that shows the tagged rows only, with every operation.

#include "ole/oledb/oledb.h"
#include "support/NoticeRecorder.h"
#include "support/Tables.h"

#include <gtest/gtest.h>

namespace {

constexpr unsigned none = 0xFFFFFFFFU;

/// The tags of all rows, whatever is shown.
std::string allTags(oledb& table) {
    table.set_show_tags_only(0);
    return tagsOf(table);
}

TEST(Tags, SetInvertCount) {
    const auto table = numberedTable(4);
    setTags(*table, "0110");
    table->invert_tag(0);
    table->invert_tag(1);
    EXPECT_EQ(tagsOf(*table), "1010");
    EXPECT_EQ(table->get_num_tags(), 2);
    table->invert_all_tags();
    EXPECT_EQ(tagsOf(*table), "0101");
    table->set_all_tags(1);
    EXPECT_EQ(tagsOf(*table), "1111");
    EXPECT_EQ(table->get_changed(), 0) << "tags are no change of the table";
}

TEST(Tags, ShownRowsAreASnapshot) {
    const auto table = numberedTable(4);
    setTags(*table, "0110");
    EXPECT_EQ(table->set_show_tags_only(1), 2);
    EXPECT_EQ(columnOf(*table, 0), (Texts{"1", "2"}));
    table->invert_all_tags();
    EXPECT_EQ(table->get_num_records(), 2U) << "cleared tags stay shown";
    EXPECT_EQ(table->get_num_tags(), 0);
    EXPECT_EQ(allTags(*table), "1001");
}

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

TEST(Tags, NumbersOfShownAndStoredRows) {
    const auto table = numberedTable(5);
    setTags(*table, "01011");
    EXPECT_EQ(table->get_new_row(4), 4U);
    EXPECT_EQ(table->get_raw_row(4), 4U);
    table->set_show_tags_only(1);
    const unsigned shown[] = {none, 0, none, 1, 2};
    const unsigned stored[] = {1, 3, 4};
    for (unsigned i = 0; i < 5; ++i) {
        EXPECT_EQ(table->get_new_row(i), shown[i]);
    }
    for (unsigned i = 0; i < 3; ++i) {
        EXPECT_EQ(table->get_raw_row(i), stored[i]);
    }
    const auto full = numberedTable(500);
    full->set_all_tags(1);
    full->set_show_tags_only(1);
    EXPECT_EQ(full->get_raw_row(499), 499U);
    EXPECT_EQ(full->get_raw_row(500), none) << "the end of the array";
}

TEST(Tags, WhatTheShownModeRefuses) {
    const auto table = numberedTable(3);
    setTags(*table, "011");
    NoticeRecorder notices{*table};
    table->set_show_tags_only(5);
    EXPECT_EQ(table->get_show_tags_only(), 5);
    EXPECT_EQ(table->add_records(1), -1);
    EXPECT_EQ(table->insert_records(0, 1), 0);
    EXPECT_EQ(table->delete_records(0, 1), 0);
    EXPECT_EQ(table->delete_tagged_records(), -1);
    EXPECT_EQ(table->add_oledb(numberedTable(1).get()), -1);
    EXPECT_EQ(notices.taken(), "");
    table->set_show_tags_only(0);
    EXPECT_EQ(columnOf(*table, 0), (Texts{"0", "1", "2"}));
}

TEST(Tags, WhatTheShownModeRenumbers) {
    const auto table = makeTable({"id", "v"}, {{"0", ""}, {"1", ""}, {"2", ""}, {"3", ""}});
    setTags(*table, "0101");
    table->set_show_tags_only(1);
    EXPECT_STREQ(table->get_field(1, 0), "3");
    EXPECT_STREQ(table->get_field(1, "id"), "3");
    EXPECT_EQ(table->set_field(0, 1, "x"), 1);
    int number = 0;
    EXPECT_EQ(table->in_field(1, 0, number), 1);
    EXPECT_EQ(number, 3);
    table->set_tag(0, 0);
    table->invert_tag(1);
    EXPECT_EQ(table->get_tag(0) + table->get_tag(1), 0);
    EXPECT_EQ(table->get_tag(2), -1);
    table->set_all_tags(1);
    EXPECT_EQ(table->get_num_tags(), 2);
    dbrecord own{2};
    own.set_field(0, "own");
    table->copy_record(1, &own);
    EXPECT_EQ(table->findFirst("id", "2", 0), 2) << "searches all rows, by their stored numbers";
    EXPECT_EQ(table->get_fieldsize(0), 3U);
    EXPECT_EQ(table->clear_changed(), 4);
    EXPECT_EQ(allTags(*table), "0101");
    EXPECT_EQ(columnOf(*table, 0), (Texts{"0", "1", "2", "own"}));
    EXPECT_STREQ(table->get_field(1, 1), "x");
}

TEST(Tags, SortingInTheShownModeSortsAllAndShowsAnew) {
    const auto table = makeTable({"id"}, {{"d"}, {"b"}, {"c"}, {"a"}});
    setTags(*table, "1011");
    table->set_show_tags_only(1);
    table->set_tag(0, 0);
    table->sort(1, 0);
    EXPECT_EQ(columnOf(*table, 0), (Texts{"a", "c"}));
    table->set_show_tags_only(0);
    EXPECT_EQ(columnOf(*table, 0), (Texts{"a", "b", "c", "d"}));
    EXPECT_EQ(tagsOf(*table), "1010");
}

/// Numbers beyond the shown rows have no record, which deliberately counts as a match.
TEST(Tags, TaggingMatchesInTheShownMode) {
    const auto table = numberedTable(10);
    setTags(*table, "1110000000");
    table->set_show_tags_only(1);
    dbrecord query{1};
    query.set_field(0, "nothing like it");
    EXPECT_EQ(table->tag_matching_records(0), 0) << "no query yet";
    EXPECT_EQ(table->set_query(&query), 1);
    EXPECT_EQ(table->tag_matching_records(1), 7);
    EXPECT_EQ(table->get_num_tags(), 3);
    EXPECT_EQ(table->tag_matching_records(0), 7);
    EXPECT_EQ(allTags(*table), "0000000000");
}

TEST(Tags, TaggingTheFirstOfEveryValue) {
    struct Case {
        Texts values;
        int tags;
    };
    const Case cases[] = {{{"b", "A", "a", "", "b"}, 3},
                          {{"", "", ""}, 0},
                          {{"", "x", ""}, 2},
                          {{"x"}, 1},
                          {{"B", "b", "B"}, 1},
                          {{std::string(256, 'x'), std::string(256, 'x')}, 2},
                          {{std::string(255, 'x'), std::string(255, 'X')}, 1},
                          {{}, 0}};
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
