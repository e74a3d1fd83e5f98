// Views: the index and its tag bytes, what deletions below do, display, copies. The random runs of
// tests/model cover the combinations; these are the cases that a reader wants to see.

#include "misc/SystemWatchdog.h"
#include "support/Captured.h"
#include "support/NoticeRecorder.h"
#include "support/Views.h"
#include "tarn/Cookie.h"
#include "tarn/CookieSet.h"
#include "tarn/NotifyMsg.h"

#include <gtest/gtest.h>

namespace {

NotifyMsg message(const char* text) {
    return NotifyMsg{LightweightString<char>{text}};
}

TEST(View, CapacityFollowsFixedRules) {
    const auto table = numberedTable(1);
    const ODBView view{table.get()};
    const std::pair<int, int> steps[] = {{1, 20}, {21, 40},   {41, 80},  {5, 40},  {5, 40},
                                         {0, 0},  {100, 100}, {60, 100}, {30, 50}, {5, 25},
                                         {5, 25}, {-7, 25},   {0, 0}};
    for (const auto& [n, capacity] : steps) {
        view->sizeIndexFor(n);
        EXPECT_EQ(view->capacity(), capacity) << n;
    }
}

TEST(View, NewEntriesKeepTheTagByteOfTheirStorage) {
    const auto table = numberedTable(100);
    ODBView view = viewOf(*table, {0, 1, 2, 3, 4}, "00001");
    view->remove(0, 1);
    view->append(9);
    EXPECT_EQ(tagsOf(view), "00011");
    view = viewOf(*table, {0, 1, 2}, "100");
    EXPECT_EQ(view->displayRecordsAt(5, 1, 0), 1);
    EXPECT_EQ(tagsOf(view), "1100");
    view = viewOf(*table, {0, 1, 2}, "100");
    view->displayRecordsAt(5, 2, -7);
    EXPECT_EQ(shownBy(view) + " " + tagsOf(view), "5 6 0 1 2 10100");
    for (const auto& [entries, kept] : {std::pair{40, 40}, {41, 0}, {100, 0}}) {
        const auto all = numberedTable(static_cast<unsigned>(entries));
        view = ODBView{all.get()};
        view->sizeIndexFor(entries == 100 ? 100 : 1);
        view->buildIndex();
        view->tagAll(true);
        view->buildIndex();
        EXPECT_EQ(view->countTags(), kept) << entries;
        view->tagAll(true);
        view->displayAllRecords();
        EXPECT_EQ(view->countTags(), 0) << "storage was freed";
    }
    for (const auto& [removed, stale] : {std::pair{40, true}, {51, false}}) {
        view = viewOfAll(*table);
        view->tagAll(true);
        view->remove(0, removed);
        EXPECT_EQ(view->tag(view->append(0)), stale) << removed;
    }
}

TEST(View, CollectedNumbersAreNoPositions) {
    const auto table = numberedTable(9);
    const ODBView view = viewOf(*table, {2, 3, 4, 5, 6});
    NoticeRecorder notices{*view};
    EXPECT_EQ(view->recordsDeletedNotify(message("3 5 ")), 0);
    EXPECT_EQ(shownBy(view), "2 3 4");
    EXPECT_EQ(notices.taken(), "recordsDeleted {1 } recordsDeleted {2 } recordsDeleted {0 2 } "
                               "recordsChanged {}");
    view->recordsDeletedNotify(message("7 8 "));
    EXPECT_EQ(notices.taken(), "") << "nothing shown went";
}

TEST(View, ChainsLoseFurtherEntries) {
    struct Case {
        const char* what;
        std::vector<int> base;
        std::vector<int> upper;
        unsigned deleted;
        std::string baseRows;
        std::string upperRows; ///< of the table
    };
    const std::vector<int> all{0, 1, 2, 3, 4, 5, 6, 7, 8, 9};
    const Case cases[] = {
        {"middle", all, all, 3, "0 1 2 3 4 5 6 7 8", "0 1 2 4 5 6 7"},
        {"first", all, all, 0, "0 1 2 3 4 5 6 7 8", "- 1 2 3 4 5 6 7"},
        {"last", all, all, 9, "0 1 2 3 4 5 6 7 8", "0 1 2 3 4 5 6 7"},
        {"order", {6, 4, 2, 0}, {1, 3}, 4, "5 2 0", "2"},
    };
    for (const Case& c : cases) {
        const auto table = numberedTable(10);
        const ODBView base = viewOf(*table, c.base);
        const ODBView upper{table.get()};
        upper->baseView(base.rep());
        for (const int row : c.upper) {
            upper->append(row);
        }
        table->delete_records(c.deleted, 1);
        EXPECT_EQ(shownBy(base), c.baseRows) << c.what;
        EXPECT_EQ(valuesOf(upper), c.upperRows) << c.what;
    }
}

TEST(View, RemovalThroughAChainTakesMoreThanItSays) {
    const auto table = numberedTable(8);
    const ODBView a = viewOfAll(*table);
    const ODBView b = viewOver(a);
    const ODBView s = viewOver(b);
    s->set_tag(2, 1);
    s->set_tag(5, 1);
    EXPECT_EQ(s->removeTagged(), 2);
    EXPECT_EQ(a->count(), 6);
    EXPECT_EQ(b->count(), 6);
    EXPECT_EQ(s->count(), 4);
    EXPECT_EQ(table->get_num_records(), 8U);
}

TEST(View, DeletesInRunsWithAnOddBound) {
    const auto table = numberedTable(12);
    const ODBView view = viewOf(*table, {2, 3, 4, 5, 6, 7});
    NoticeRecorder notices{*table};
    EXPECT_EQ(view->deleteRecords(1, 4), 4);
    EXPECT_EQ(notices.taken(), "recordsDeleted {3 4 5 } recordsDeleted {3 }");
    view->deleteRecords(0, 2);
    EXPECT_EQ(notices.taken(), "recordsDeleted {2 3 }");
    EXPECT_EQ(columnOf(*table, 0), (Texts{"0", "1", "8", "9", "10", "11"}));
}

TEST(View, InsertionTrustsTheOrder) {
    const auto table = numberedTable(3);
    const ODBView view = viewOf(*table, {2, 0, 1});
    const ODBView sibling = viewOfAll(*table);
    view->insertBlankRecords(1, 1);
    EXPECT_EQ(shownBy(view), "2 0 1 2");
    EXPECT_EQ(valuesOf(view), "1  0 1") << "position 0 shows another row than before";
    EXPECT_EQ(valuesOf(sibling), " 0 1") << "siblings are not told";
    table->set_show_tags_only(1);
    view->insertBlankRecords(4, 2);
    EXPECT_EQ(view->count(), 6) << "the table refused";
    EXPECT_EQ(table->get_num_records(), 0U);
}

TEST(View, MatchesThroughAChainStandForTheTablesRows) {
    const auto table = makeTable({"v"}, {{"0"}, {"x"}, {"2"}, {"3"}, {"4"}, {"x5"}});
    const ODBView base = viewOf(*table, {5, 3, 1});
    const ODBView view{table.get()};
    view->baseView(base.rep());
    EXPECT_TRUE(view->displayMatchAt("v", "3", 0));
    EXPECT_FALSE(view->displayMatchAt("v", "none", 0));
    EXPECT_EQ(shownBy(view), "3");
    EXPECT_EQ((*view)[0], nullptr);
    EXPECT_EQ(view->baseIndex(0), 0);
    view->displayAllRecords();
    dbrecord query{1};
    query.set_field(0, "x");
    table->set_query(&query);
    EXPECT_EQ(base->tagMatches(0), 2);
    EXPECT_EQ(view->tagMatches(0), 1);
    EXPECT_EQ(tagsOf(base) + " " + tagsOf(view), "101 010");
}

TEST(View, CookiesBeforeTheFrontTurnRound) {
    const auto table =
        makeTable({"Cookie"}, {{cookieText(0)}, {cookieText(1)}, {cookieText(2)}, {cookieText(3)}});
    const std::vector<Cookie> four{cookieNo(0), cookieNo(1), cookieNo(2), cookieNo(3)};
    const ODBView view{table.get()};
    EXPECT_EQ(view->displayRecordsAt(four, -2), 4);
    EXPECT_EQ(shownBy(view), "2 3 1 0");
    CookieSet set;
    set.add(cookieNo(3));
    set.add(cookieNo(7));
    set.add(cookieNo(1));
    EXPECT_EQ(view->displayRecordsAt(set, INT_MAX), 2);
    EXPECT_EQ(shownBy(view), "2 3 1 0 3 1");
}

TEST(View, DuplicatesLeaveTheTablesKeyBehind) {
    const auto table =
        makeTable({"n", "v"}, {{"1", "b"}, {"2", "A"}, {"3", "a"}, {"4", ""}, {"5", ""}});
    Captured said;
    const ODBView view{new ODBViewRep{table.get(), "v,Bogus"}};
    view->displayAllRecords();
    EXPECT_EQ(view->tagDuplicates(1), 2);
    EXPECT_EQ(tagsOf(view), "00101");
    const std::string warning = "Warning: ODBView::fieldSpec, non-existant fieldname \"Bogus\".\n";
    EXPECT_EQ(said.console, warning + warning) << "the view sorted inside has the same fields";
    table->sort(1, 0);
    EXPECT_EQ(columnOf(*table, 1), (Texts{"A", "a", "b", "", ""}));
    EXPECT_EQ(view->tag_all_different(1), 3);
}

TEST(View, CopiesShareTheTable) {
    const auto table = numberedTable(4);
    table->add_param("p", "table's");
    table->set_filename(LightweightString<wchar_t>{L"/t.odb"});
    const ODBView view = viewOf(*table, {3, 3, 9, 1}, "0010");
    view->add_param("p", "view's");
    view->set_filename({});
    const ODBView copy = view.copy();
    EXPECT_EQ(shownBy(copy) + " " + tagsOf(copy), "3 1 00") << "tags go by position";
    EXPECT_STREQ(copy->get_param_val("p"), "table's");
    EXPECT_EQ(copy->get_filename(), table->get_filename());
    EXPECT_EQ(copy->references(), 1U);
    const ODBView upper = viewOver(viewOf(*table, {2, 0}));
    upper->remove(0, 1);
    EXPECT_EQ(valuesOf(upper.copy()), "2 0") << "all that the base shows";
    const ODBView apart = view.copyWithNewBaseView();
    const std::unique_ptr<oledb> owned{apart->table()};
    EXPECT_NE(owned, table);
    EXPECT_EQ(shownBy(apart) + " " + tagsOf(apart), "3 3 1 001");
    EXPECT_STREQ(apart->get_param_val("p"), "view's");
    EXPECT_EQ(apart->save_text(), 0) << "no file name";
    EXPECT_FALSE(ODBView{}.copy());
    EXPECT_FALSE(ODBView{}.copyWithNewBaseView());
}

TEST(View, LongOperationsTellTheWatchdog) {
    const auto table = numberedTable(2);
    const ODBView view = viewOfAll(*table);
    std::string depths;
    SystemWatchdog::setObserver([&](int depth) { depths += std::to_string(depth); });
    view->sort(1, 0);
    ODBViewRep{nullptr}.sort(1, 0);
    view->displayRecordsAt(std::vector<Cookie>{}, 0);
    view->displayTaggedRecordsAt(0);
    ODBView {
        table.get()
        } -> displayAllFromAt(view.rep(), 0);
    view->displayAllRecords();
    SystemWatchdog::setObserver({});
    EXPECT_EQ(depths, "101010101010");
}

} // namespace
