// Rows of a table: adding, inserting, deleting with listeners, copying, capacity, values.

#include "ole/oledb/oledb.h"

#include "support/Captured.h"
#include "support/NoticeRecorder.h"
#include "support/Tables.h"
#include "tarn/TextFile.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

constexpr unsigned none = 0xFFFFFFFFU;
constexpr unsigned wildRows[] = {0xFFFFFFFFU, 0xFFFFFFFEU, 0x80000000U, 0x7FFFFFFFU, 5U, 65536U};

TEST(TableRows, AnEmptyTableAnswers) {
    oledb table;
    EXPECT_EQ(table.get_valid(), 0);
    EXPECT_EQ(table.get_num_records() + table.get_num_fields() + table.get_num_params(), 0U);
    EXPECT_EQ(table.get_capacity(), 0U);
    EXPECT_EQ(table.get_revision(), 1);
    EXPECT_EQ(errorOf(table), "none");
    table.sort(1, 0);
    EXPECT_EQ(table.add_records(3), 0);
    EXPECT_EQ(table.add_records(std::numeric_limits<int>::min()), 3);
    EXPECT_EQ(table.get_capacity(), 500U);
    EXPECT_EQ(rowsOf(table), (Rows{{}, {}, {}}));
    table.sort(-1, 1);
    EXPECT_EQ(oledb{static_cast<const DBFieldDesc*>(nullptr)}.get_num_fields(), 0U);
}

/// Counts and tags are taken anew after each notice.
TEST(TableRows, AListenerThatChangesTheTableBetweenTwoRuns) {
    const auto table = numberedTable(8);
    setTags(*table, "10110010");
    NoticeRecorder notices;
    int round = 0;
    notices.watch(*table, "", [&] {
        ++round;
        if (round == 1) { // rows 1 to 7 are left, tagged 0110010
            table->set_tag(4, 1);
            table->set_tag(6, 1);
            table->set_tag(5, 0);
            table->add_records(1);
            table->set_tag(7, 1);
        }
        if (round == 2) {
            table->delete_records(table->get_num_records() - 1, 1);
        }
    });
    table->delete_tagged_records();
    EXPECT_EQ(columnOf(*table, 0), (Texts{"1", "4", "6"}));
    EXPECT_EQ(notices.taken(),
              "recordsDeleted {0 } recordsDeleted {1 2 } recordsDeleted {5 } recordsDeleted {2 } "
              "recordsDeleted {3 }");
}

TEST(TableRows, AListenerThatEmptiesTheTable) {
    const auto table = numberedTable(6);
    setTags(*table, "101101");
    NoticeRecorder notices;
    notices.watch(*table, "", [&] { table->delete_records(0, none); });
    table->delete_tagged_records();
    EXPECT_EQ(table->get_num_records(), 0U);
    EXPECT_EQ(notices.taken(), "recordsDeleted {0 } recordsDeleted {0 1 2 3 4 }");
}

TEST(TableRows, CopiesOfATable) {
    const auto source = makeTable({"a", "b"}, {{" x", "1"}, {"y", "2"}, {"z", "3"}});
    source->set_filename(LightweightString<wchar_t>{L"somewhere"});
    source->add_param("Owner", "suite 2");
    source->add_param("OLEDB", "Rev 9");
    setTags(*source, "011");

    oledb bare{*source, 0};
    EXPECT_EQ(bare.get_num_records(), 0U);
    EXPECT_EQ(paramsOf(bare), (Texts{"OLEDB=Rev 1", "Owner=suite 2"}));
    EXPECT_EQ(bare.get_filename().size(), 0U);

    oledb whole{*source, 1};
    EXPECT_EQ(rowsOf(whole), (Rows{{" x", "1"}, {"y", "2"}, {"z", "3"}}));
    EXPECT_EQ(tagsOf(whole), "000");
    whole.clear_changed();
    EXPECT_EQ(whole.get_record(0)->get_container(), &whole);
    whole.get_record(0)->set_field(0, "q", true);
    EXPECT_EQ(whole.get_changed(), 1) << "copied rows belong to the copy";

    source->set_show_tags_only(1);
    oledb shown{*source, 1};
    EXPECT_EQ(columnOf(shown, 0), (Texts{"y", "z"}));

    const auto extra = descriptors({"c", {"d", DBFieldTypes::DATE}});
    oledb wider{*source, extra.data()};
    EXPECT_EQ(rowsOf(wider), (Rows{{"y", "2", "", ""}, {"z", "3", "", ""}}));
    EXPECT_EQ(wider.get_fieldnum("D"), 3);
    EXPECT_EQ(wider.get_field_type(3), DBFieldTypes::DATE);
}

TEST(TableRows, CopiesOutliveTheirSource) {
    auto source = makeTable({{"a", DBFieldTypes::DATE}}, {{"x"}});
    oledb copy{*source, 1};
    const auto target = makeTable({{"a", DBFieldTypes::DATE}});
    EXPECT_EQ(target->add_oledb(source.get()), 1);
    source.reset();
    EXPECT_EQ(copy.get_record(0)->types()[0], DBFieldTypes::DATE);
    EXPECT_EQ(target->get_record(0)->types()[0], DBFieldTypes::DATE);
    EXPECT_EQ(columnOf(*target, 0), (Texts{"x"}));
    copy.sort(-1, 0);
}

TEST(TableRows, AppendingATable) {
    const auto source = makeTable({"A", "b"}, {{"x", "1"}, {"y", "2"}});
    const auto same = makeTable({"a", "B"}, {{"w", "0"}});
    same->set_tag(0, 1);
    EXPECT_EQ(same->add_oledb(same.get()), 1);
    EXPECT_EQ(tagsOf(*same), "10");
    EXPECT_EQ(same->get_record(1)->get_container(), same.get());
    source->set_tag(1, 1);
    source->set_show_tags_only(1);
    EXPECT_EQ(same->add_oledb(source.get()), 1);
    EXPECT_EQ(rowsOf(*same), (Rows{{"w", "0"}, {"w", "0"}, {"y", "2"}}));
    EXPECT_EQ(makeTable({"a"})->add_oledb(source.get()), -1);
    EXPECT_EQ(makeTable({"a", "c"})->add_oledb(source.get()), -1);
    EXPECT_EQ(makeTable({"a", {"b", DBFieldTypes::DATE}})->add_oledb(source.get()), -1);
}

TEST(TableRows, CopyingSingleRecords) {
    const auto table = makeTable({"a", "b", "c"}, {{"1", "2", "3"}, {"4", "5", "6"}});
    table->copy_record(1, table.get(), 0);
    EXPECT_EQ(rowsOf(*table), (Rows{{"1", "2", "3"}, {"1", "2", "3"}}));
    const auto narrow = makeTable({"x"}, {{" n"}});
    table->copy_record(0, narrow.get(), 0);
    EXPECT_EQ(rowsOf(*table), (Rows{{"n"}, {"1", "2", "3"}}));
    EXPECT_EQ(table->set_field(0, 2, "unseen"), 1);
    EXPECT_EQ(table->get_field(0, 2), nullptr);
    table->copy_record(1, table.get(), 0);
    EXPECT_EQ(valuesOf(*table->get_record(1)), (Texts{"n", "2", "unseen"}))
        << "a copy of a row has all its values in use again";

    dbrecord own{2};
    own.set_field(1, "own");
    table->copy_record(1, &own);
    EXPECT_EQ(valuesOf(*table->get_record(1)), (Texts{"", "own"}));
    table->copy_record(1, static_cast<dbrecord*>(nullptr));
    table->copy_record(0, nullptr, 0);
    EXPECT_EQ(rowsOf(*table), (Rows{{"n"}, {"", "own"}}));
}

/// Every operation with numbers that are no row or no column, signed ones in unsigned clothes.
TEST(TableRows, NumbersOutsideAreRefusedEverywhere) {
    Captured said;
    const auto table = makeTable({"a", "cookie"}, {{"1", ""}, {"2", ""}, {"3", ""}});
    NoticeRecorder notices{*table};
    char text[8] = "kept";
    int number = 7;
    double seconds = 7;
    bool flag = true;
    for (const bool showTagged : {false, true}) {
        table->set_show_tags_only(showTagged ? 1 : 0);
        for (const unsigned row : wildRows) {
            const auto col = static_cast<int>(row);
            EXPECT_EQ(table->get_record(row), nullptr) << row;
            EXPECT_EQ(table->get_field(row, 0), nullptr);
            EXPECT_EQ(table->get_field(row, "a"), nullptr);
            EXPECT_EQ(table->get_field(0, col), nullptr) << col;
            EXPECT_EQ(table->set_field(row, 0, "x") + table->set_field(row, 0, 1) +
                          table->set_field(row, 0, 1.0) + table->set_field(row, 0, true) +
                          table->set_field(row, cookieNo(1)),
                      0);
            EXPECT_EQ(table->set_field(0, row, "x") + table->set_field(0, row, 1), 0);
            EXPECT_EQ(table->in_field(row, 0, text, 3) + table->in_field(row, 0, number) +
                          table->in_field(row, 0, seconds) + table->in_field(row, 0, flag),
                      0);
            EXPECT_EQ(table->in_field(0, row, text, 3) + table->in_field(0, row, number) +
                          table->in_field(0, row, seconds) + table->in_field(0, row, flag),
                      0);
            EXPECT_EQ(table->get_tag(row), -1);
            table->set_tag(row, 1);
            table->invert_tag(row);
            EXPECT_EQ(table->match_record(col), -1);
            EXPECT_STREQ(table->get_fieldname(row), "");
            EXPECT_EQ(table->set_fieldname(row, "x"), 0);
            EXPECT_EQ(table->get_fieldsize(row), 0U);
            EXPECT_EQ(table->get_field_type(row), DBFieldTypes::NONE);
            EXPECT_EQ(table->get_fieldtype(row), DBFieldTypes::NONE);
            EXPECT_EQ(table->set_fieldtype(row, DBFieldTypes::DATE), 0);
            EXPECT_FALSE(table->isSpecialLabelField(row));
            EXPECT_EQ(table->get_new_row(row), showTagged ? none : row);
            EXPECT_EQ(table->get_raw_row(row), showTagged ? none : row);
            EXPECT_EQ(table->delete_records(row, row), 0);
            EXPECT_FALSE(table->update(nullptr, col));
            EXPECT_EQ(table->get_param_name(row), nullptr);
            EXPECT_EQ(table->get_param_value(row), nullptr);
            EXPECT_EQ(table->baseIndex(col), col);
            table->setFieldWidth(row, 5);
            dbrecord own{2};
            table->copy_record(col, &own);
            table->copy_record(col, table.get(), 0);
            table->copy_record(0, table.get(), col);
            table->set_sortfield(col);
            table->sort(1, 0);
        }
    }
    EXPECT_EQ(table->get_field(0, nullptr), nullptr);
    EXPECT_EQ(table->get_fieldnum(nullptr), -1);
    EXPECT_STREQ(text, "kept");
    EXPECT_EQ(number + seconds, 14);
    EXPECT_TRUE(flag);
    table->set_show_tags_only(0);
    EXPECT_EQ(columnOf(*table, 0), (Texts{"1", "2", "3"}));
    EXPECT_TRUE(said.silent());
}

TEST(TableRows, InFieldReadsTheTextOfACell) {
    struct Case {
        const char* text;
        int number;
        double seconds;
        bool flag;
    };
    for (const Case& c :
         {Case{"12abc", 12, 12, false}, Case{" -3.75e1x", -3, -37.5, false},
          Case{"true", 0, 0, true}, Case{"T", 0, 0, false}, Case{"", 0, 0, false}}) {
        const auto table = makeTable({"v"}, {{c.text}});
        int number = 99;
        double seconds = 99;
        bool flag = !c.flag;
        EXPECT_EQ(table->in_field(0, 0, number) + table->in_field(0, 0, seconds) +
                      table->in_field(0, 0, flag),
                  3);
        EXPECT_EQ(number, c.number) << c.text;
        EXPECT_EQ(seconds, c.seconds) << c.text;
        EXPECT_EQ(flag, c.flag) << c.text;
    }
}

TEST(TableRows, FreeKeepsListenersAndFileName) {
    const auto table = makeTable({"a", "b"}, {{"1", "2"}});
    table->set_filename(LightweightString<wchar_t>{L"name"});
    table->add_param("p", "v");
    int keys[] = {1, -1};
    table->set_sortfields(keys);
    dbrecord query{2};
    table->set_query(&query);
    NoticeRecorder notices{*table};
    for (int twice = 0; twice < 2; ++twice) {
        table->free();
    }
    EXPECT_EQ(table->get_num_records() + table->get_num_fields() + table->get_num_params(), 0U);
    EXPECT_EQ(table->get_valid(), 0);
    EXPECT_EQ(table->get_capacity(), 0U);
    EXPECT_EQ(table->get_filename(), L"name");
    table->add_records(2);
    EXPECT_EQ(table->match_record(0), -1) << "the query is forgotten";
    table->sort(1, 0);
    table->delete_records(0, 1);
    EXPECT_EQ(notices.taken(), "recordsDeleted {0 }");
}

} // namespace
