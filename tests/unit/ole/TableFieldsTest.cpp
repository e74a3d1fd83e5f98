// Columns, parameters and error information of a table.

#include "ole/oledb/oledb.h"
#include "support/Captured.h"
#include "support/NoticeRecorder.h"
#include "support/Tables.h"

#include <gtest/gtest.h>

namespace {

TEST(TableFields, OldNamesStillFindTheirColumn) {
    const auto table = makeTable({"A", "B", "C"});
    EXPECT_EQ(table->set_fieldname(1, "New"), 1);
    EXPECT_EQ(table->get_fieldnum("b"), 1);
    EXPECT_EQ(table->get_fieldnum("NEW"), 1);
    EXPECT_EQ(table->set_fieldname(2, nullptr), 1);
    EXPECT_STREQ(table->get_fieldname(2), "");
    EXPECT_EQ(table->get_fieldnum("C"), 2);
    EXPECT_EQ(table->set_fieldname(2, "New"), 1);
    EXPECT_EQ(table->get_fieldnum("new"), 2) << "the column named last";
    EXPECT_EQ(table->addField({"B", DBFieldTypes::DATE}), 1) << "found by its old name";
    EXPECT_EQ(table->get_fieldnum(""), -1);
    oledb copy{*table, 0};
    EXPECT_EQ(copy.get_fieldnum("b"), 1) << "copies know the old names too";
}

TEST(TableFields, AmpersandsAreDropped) {
    const auto table = makeTable({"A&B&", "&"});
    EXPECT_STREQ(table->get_fieldname(0), "AB");
    EXPECT_EQ(table->get_fieldnum("ab"), 0);
    EXPECT_EQ(table->get_fieldnum("A&B&"), -1);
    EXPECT_STREQ(table->get_fieldname(1), "");
    EXPECT_EQ(table->get_fieldnum(""), 1);
    EXPECT_EQ(table->addField({"A&B", DBFieldTypes::TEXT}), 2);
    EXPECT_EQ(table->addField({"A&B", DBFieldTypes::TEXT}), 3);
    EXPECT_EQ(table->addField({"ab", DBFieldTypes::TEXT}), 3);
    EXPECT_STREQ(strip_char_from_string('a', "banana").c_str(), "bnn");
    EXPECT_STREQ(strip_char_from_string('x', nullptr).c_str(), "");
}

TEST(TableFields, AddedColumnsWidenEveryRow) {
    const auto table = makeTable({"a"}, {{"1"}, {"2"}});
    table->set_tag(0, 1);
    table->set_show_tags_only(1);
    EXPECT_EQ(table->addField({"b", DBFieldTypes::TIMECODE}), 1);
    table->set_show_tags_only(0);
    EXPECT_EQ(rowsOf(*table), (Rows{{"1", ""}, {"2", ""}}));
    EXPECT_EQ(table->get_field_type(1), DBFieldTypes::TIMECODE);
    EXPECT_EQ(tagsOf(*table), "10");
    const auto empty = makeTable({});
    EXPECT_EQ(empty->addField({"first", DBFieldTypes::TEXT}), 0);
}

TEST(TableFields, WidthsFollowTheContents) {
    const auto table = makeTable({"a", "b"}, {{"12", "\xC3\xA9"}, {"1234", ""}});
    EXPECT_EQ(table->get_fieldsize(0), 4U);
    EXPECT_EQ(table->get_fieldsize(1), 2U) << "bytes, not letters";
    table->setFieldWidth(0, 50);
    EXPECT_EQ(table->get_fieldsize(0), 4U);
    // clang-format off
    const std::vector<std::pair<const char*, unsigned>> least = {
        {"Name", 32}, {"name", 32}, {"NOTES", 100}, {"chans", 64}, {"Tag", 1}, {"sequence", 2},
        {"start keycode", 17}, {"end inkcode", 15}, {"Mdrive", 4}, {"film duration", 9},
        {"24P reel", 10}, {"start 24p CODE", 12}, {"cam_date", 6}, {"Duration", 16}, {"other", 4},
        {"", 4}, {nullptr, 4}, {"Cookie", 12}, {"Type", 6}, {"Reel Type", 30}
    };
    // clang-format on
    for (const auto& [name, width] : least) {
        EXPECT_EQ(oledb::getMinFieldSize(name), width) << (name ? name : "null");
    }
}

TEST(TableFields, TypeNoneBecomesTextAndIsReported) {
    const auto table = makeTable({"a"});
    EXPECT_EQ(table->set_fieldtype(0, DBFieldTypes::NONE), 1);
    EXPECT_EQ(table->get_field_type(0), DBFieldTypes::TEXT);
    EXPECT_EQ(errorOf(*table), "2 3 0 0");
    EXPECT_EQ(table->get_valid(), 1);
    table->fill_error_info(1, -2, 3, 4);
    EXPECT_EQ(errorOf(*table), "1 -2 3 4");
    EXPECT_EQ(table->set_fieldtype(9, DBFieldTypes::NONE), 0);
    EXPECT_EQ(errorOf(*table), "2 3 0 0") << "reported before the column is looked at";
    EXPECT_EQ(table->set_fieldtype(0, static_cast<DBFieldTypes::eType>('X')), 1);
    EXPECT_EQ(static_cast<int>(table->get_fieldtype(0)), 'X');
}

TEST(TableFields, SameColumnsIsToTheLetter) {
    const auto table = makeTable({"a", "b"});
    EXPECT_TRUE(table->sameColumns(makeTable({"a", {"b", DBFieldTypes::DATE}}).get()));
    for (const Columns& other : {Columns{"a", "B"}, Columns{"b", "a"}, Columns{"a"}}) {
        EXPECT_FALSE(table->sameColumns(makeTable(other).get()));
    }
}

TEST(TableParams, TheFirstIsTheRevision) {
    const auto table = makeTable({"a"});
    EXPECT_EQ(table->add_param("Owner", "suite 2"), 0);
    EXPECT_EQ(paramsOf(*table), (Texts{"OLEDB=Rev 1", "Owner=suite 2"}));
    EXPECT_EQ(table->get_changed(), 1);
    table->clear_changed();
    EXPECT_EQ(table->set_param_val("OWNER", "suite 2"), 0);
    EXPECT_EQ(table->get_changed(), 0) << "the same value changes nothing";
    EXPECT_EQ(table->add_param("owner", "Suite 2"), 0);
    EXPECT_EQ(table->get_changed(), 1) << "values are told apart by case";
    EXPECT_EQ(table->add_param("oledb", "x"), 0);
    EXPECT_EQ(paramsOf(*table), (Texts{"OLEDB=x", "Owner=Suite 2"}));
    EXPECT_STREQ(table->get_param_val("oWNER"), "Suite 2");
    for (const char* const none : {"none", static_cast<const char*>(nullptr)}) {
        EXPECT_EQ(table->find_param(none), -1);
        EXPECT_EQ(table->get_param_val(none), nullptr);
    }
    const auto other = makeTable({"a"});
    EXPECT_EQ(other->add_param("oledb", "x"), 0);
    EXPECT_STREQ(other->get_param_val("oledb"), "Rev 1") << "lookups find the first";
}

TEST(TableParams, WhatIsRefused) {
    const auto table = makeTable({"a"});
    EXPECT_EQ(table->add_param(nullptr, "v"), -1);
    EXPECT_EQ(table->add_param("n", nullptr), -1);
    EXPECT_EQ(table->add_param("", "v"), -1);
    EXPECT_EQ(table->get_num_params(), 0U);
    EXPECT_EQ(table->add_param("OLEDB", "x"), -1);
    EXPECT_EQ(paramsOf(*table), (Texts{"OLEDB=Rev 1"}));
    for (int i = 1; i < 40; ++i) {
        EXPECT_EQ(table->add_param(("p" + std::to_string(i)).c_str(), ""), 0) << i;
    }
    table->clear_changed();
    EXPECT_EQ(table->add_param("p40", "v"), -1) << "forty fit";
    EXPECT_EQ(table->get_changed(), 0);
    EXPECT_EQ(table->add_param("P39", "last one"), 0);
    table->add_param("p39", table->get_param_value(39U) + 5);
    EXPECT_STREQ(table->get_param_value(39U), "one") << "set from its own text";
    EXPECT_EQ(oledb(*table, 0).get_num_params(), 40U);
}

} // namespace
