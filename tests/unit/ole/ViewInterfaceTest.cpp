// What a view does behind an operation that it shares with tables, where the two differ; views
// without a source; positions that are none.

#include "support/NoticeRecorder.h"
#include "support/Views.h"

#include <gtest/gtest.h>

namespace {

constexpr unsigned none = 0xFFFFFFFFU;

struct TableAndView {
    TableAndView() { table->set_query(&query); }
    ODBView fresh(const std::string& tags = "0110") const {
        return viewOf(*table, {3, 1, 2}, tags);
    }

    std::unique_ptr<oledb> table = makeTable({"v"}, {{"a"}, {"b"}, {"c"}, {"b"}});
    dbrecord query{1};
};

TEST(ViewInterface, TaggedEntriesGoAndRowsStay) {
    const TableAndView given;
    ODBView view = given.fresh("101");
    EXPECT_EQ(view->delete_tagged_records(), 0);
    EXPECT_EQ(shownBy(view), "1");
    view = given.fresh("101");
    EXPECT_EQ(view->set_show_tags_only(0), 1) << "for good, whatever the argument";
    EXPECT_EQ(shownBy(view), "3 2");
    EXPECT_EQ(view->get_show_tags_only(), 0);
    EXPECT_EQ(given.table->get_num_records(), 4U);
}

TEST(ViewInterface, TagsAndQueries) {
    TableAndView given;
    const ODBView view = given.fresh("011");
    given.query.set_field(0, "b");
    EXPECT_EQ(view->tag_matching_records(1), 2);
    EXPECT_EQ(tagsOf(view), "110") << "tags of others go, whatever the argument";
    EXPECT_EQ(view->get_tag(7), 0);
    EXPECT_EQ(given.table->get_tag(7), -1);
    EXPECT_EQ(view->match_record(0), 0) << "asks about the table's row 0";
    EXPECT_EQ(view->match_record(3), 1);
    EXPECT_EQ(view->findFirst("v", "bee", 1), -1) << "no prefix: the length is not passed on";
    EXPECT_EQ(view->findFirst("v", "a", 3), 0) << "a row of the table that is not even shown";
    EXPECT_EQ(given.table->findFirst("v", "bee", 1), 1);
}

TEST(ViewInterface, SomeEmptyValueIsTaggedAmongAllEmpty) {
    const auto table = makeTable({"v", "w"}, {{"", "1"}, {"", "2"}});
    EXPECT_EQ(viewOfAll(*table)->tag_all_different(0), 1);
    EXPECT_EQ(table->tag_all_different(0), 0);
}

TEST(ViewInterface, AllOnesAsPositionOrCount) {
    const TableAndView given;
    const ODBView view = given.fresh();
    NoticeRecorder notices{*given.table};
    EXPECT_EQ(view->delete_records(0, none), 0);
    view->delete_records(none, 1);
    EXPECT_EQ(notices.taken(), "");
    EXPECT_EQ(view->insert_records(none, 1), 1);
    EXPECT_EQ(shownBy(view), "3 4 2 3") << "at the front";
    given.table->insert_records(none, 1);
    EXPECT_EQ(columnOf(*given.table, 0), (Texts{"a", "b", "c", "", "b", ""}));
    EXPECT_EQ(view->add_records(0), 4);
}

TEST(ViewInterface, ParametersAreCopiedOnce) {
    const auto table = numberedTable(1);
    table->add_param("p", "old");
    const ODBView view{table.get()};
    EXPECT_STREQ(view->get_param_val("OLEDB"), "Rev 1");
    table->add_param("p", "new");
    EXPECT_STREQ(view->get_param_val("P"), "old");
    EXPECT_STREQ(view->get_param_val("q"), "");
    EXPECT_EQ(table->get_param_val("q"), nullptr);
    EXPECT_EQ(view->set_param_val("q", "mine"), 0);
    EXPECT_EQ(table->get_param_val("q"), nullptr);
    const ODBView upper{table.get()};
    upper->baseView(view.rep());
    EXPECT_STREQ(upper->get_param_val("p"), "old");
    EXPECT_STREQ(upper->get_param_val("q"), "mine");
    upper->baseView(nullptr);
    EXPECT_STREQ(upper->get_param_val("p"), "") << "the table's are not read again";
}

TEST(ViewInterface, FieldsAreTranslatedThroughAChain) {
    const auto table = makeTable({"v", {"n", DBFieldTypes::LONG}}, {{"a", "1"}, {"b", "2"}});
    const ODBView base = viewOf(*table, {1, 0});
    const ODBView view = viewOver(base);
    EXPECT_EQ(view->set_field(0, 0, "B"), 1);
    EXPECT_EQ(view->set_field(1, 1, 7), 1);
    EXPECT_EQ(valuesOf(view) + "|" + valuesOf(view, 1), "B a|2 7");
    EXPECT_STREQ(view->get_field(0, "V"), "B");
    EXPECT_EQ(view->get_field(0, "none"), nullptr);
    EXPECT_STREQ(view->get_field(0, 65536), "B") << "field numbers have 16 bits";
    int number = 0;
    EXPECT_EQ(view->in_field(1, 1, number), 1);
    EXPECT_EQ(number, 7);
    for (const unsigned outside : {2U, none, 0x7FFFFFFFU, 0x80000000U}) {
        char text[2] = "x";
        double seconds = 0;
        bool flag = false;
        EXPECT_EQ(view->set_field(outside, 0, "x") + view->set_field(outside, 1, 1) +
                      view->set_field(outside, 1, 1.0) + view->set_field(outside, 1, true) +
                      view->set_field(outside, cookieNo(1)) + view->in_field(outside, 0, text, 1) +
                      view->in_field(outside, 1, number) + view->in_field(outside, 1, seconds) +
                      view->in_field(outside, 1, flag),
                  0);
        EXPECT_EQ(view->get_record(outside), nullptr);
        EXPECT_EQ(view->baseIndex(static_cast<int>(outside)), 0);
    }
    EXPECT_EQ(view->find(nullptr), -1);
    view->append(-1);
    EXPECT_EQ(view->findViewIndexForBaseRow(~0UL), 2);
    EXPECT_EQ(view->findViewIndexForBaseRow(0xFFFFFFFFUL), -1);
}

TEST(ViewInterface, WithoutASourceNothingHappens) {
    ODBViewRep view{nullptr};
    view.append(0);
    dbrecord query{1};
    EXPECT_EQ(view.get_record(0), nullptr);
    EXPECT_EQ(view.make_dummy_record(), nullptr);
    EXPECT_EQ(view.get_field(0, 0), nullptr);
    EXPECT_EQ(view.get_field(0, "v"), nullptr);
    EXPECT_EQ(view.get_fieldname(0), nullptr);
    EXPECT_EQ(view.get_fieldnum("v"), 0);
    EXPECT_EQ(view.findFirst("v", "", 0), 0);
    EXPECT_EQ(view.find(&query), -1);
    EXPECT_EQ(view.copy(), nullptr);
    EXPECT_EQ(view.copyWithNewBaseView(), nullptr);
    EXPECT_EQ(view.newTagSubview(), nullptr);
    EXPECT_FALSE(view.displayMatchAt("v", "", 0));
    EXPECT_EQ(static_cast<int>(view.get_num_fields()) + view.get_valid() + view.baseIndex(0) +
                  view.set_field(0, 0, "x") + view.tagAll(true) + view.invertAllTags() +
                  view.countTags() + view.tagMatches(0) + view.tagDuplicates(0) +
                  view.insertBlankRecords(0, 1) + view.deleteRecords(0, 1) + view.match_record(0) +
                  view.saveAsText("/nowhere", false) + view.saveOnlyTagged("/nowhere") +
                  view.displayAllFromAt(&view, 0) + view.displayRecordsAt(3, 2, 0) +
                  view.add_records(1) + view.removeTagged() + view.removeNonTagged() +
                  view.deleteTagged() + view.tagDuplicatesOrdered(0),
              0);
    view.displayAllRecords();
    view.removeRecordsFromBaseView(0, 1);
    EXPECT_EQ(view.count(), 0);
    oledb unusable;
    EXPECT_EQ(ODBViewRep{&unusable}.get_valid(), 0);
    EXPECT_EQ(ODBViewRep{TableAndView{}.table.get()}.get_num_records(), 0U);
}

} // namespace
