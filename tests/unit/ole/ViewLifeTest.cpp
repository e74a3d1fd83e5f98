// Who keeps a view alive, and listeners that take views away in the middle of a notice. Most of
// these cases speak up only under a sanitizer.

#include "ole/oledb/messageTypes.h"
#include "support/NoticeRecorder.h"
#include "support/Views.h"

#include <gtest/gtest.h>

#include <optional>

namespace {

TEST(ViewLife, HandlesCount) {
    const auto table = numberedTable(2);
    ODBView view{table.get()};
    ODBView& same = view;
    view = same;
    EXPECT_EQ(view->references(), 1U);
    const ODBView second = view;
    EXPECT_EQ(view->references(), 2U);
    view = ODBView{};
    EXPECT_EQ(second->references(), 1U);
    ODBView moved{viewOfAll(*table)};
    moved = std::move(view);
    EXPECT_FALSE(moved);
    EXPECT_EQ(second.copy()->references(), 1U);
}

TEST(ViewLife, ABaseLivesUnderItsViews) {
    const auto table = numberedTable(3);
    ODBView base = viewOf(*table, {2, 1});
    ODBView upper = viewOver(base);
    base = ODBView{};
    EXPECT_EQ(valuesOf(upper), "2 1");
    EXPECT_EQ(upper->baseView()->references(), 1U);
    ODBView top = viewOver(upper);
    upper = ODBView{};
    ODBViewRep* const lowest = top->baseView()->baseView();
    top->baseView(lowest); // lives only through the base view that is left
    EXPECT_EQ(lowest->references(), 1U);
    top->displayAllRecords();
    EXPECT_EQ(valuesOf(top), "2 1");
    top->odb(nullptr);
    EXPECT_EQ(top->source(), nullptr);
}

TEST(ViewLife, CirclesAreNotTaken) {
    const auto table = numberedTable(2);
    const ODBView base = viewOfAll(*table);
    const ODBView upper = viewOver(base);
    base->baseView(base.rep());
    base->baseView(upper.rep());
    EXPECT_EQ(base->baseView(), nullptr);
    EXPECT_EQ(base->count(), 2);
}

TEST(ViewLife, AnUncountedViewIsGoodForDuplicates) {
    const auto table = makeTable({"v"}, {{"a"}, {"A"}});
    const ODBView view = viewOfAll(*table);
    ODBViewRep* const raw = view->copy();
    EXPECT_EQ(raw->references(), 0U);
    EXPECT_EQ(raw->tagDuplicates(0), 1);
    EXPECT_EQ(raw->tag_all_different(0), 1);
    EXPECT_EQ(raw->references(), 0U);
    EXPECT_EQ(tagsOf(ODBView{raw}), "10");
    ODBViewRep onStack{table.get()};
    onStack.displayAllRecords();
    EXPECT_EQ(onStack.tagDuplicates(0), 1);
}

TEST(ViewLife, AnotherTableStartsOver) {
    const auto first = numberedTable(3);
    auto second = makeTable({"w"}, {{"x"}, {"y"}});
    second->add_param("p", "v");
    const ODBView view = viewOver(viewOfAll(*first));
    view->odb(second.get());
    EXPECT_EQ(view->count(), 0);
    EXPECT_EQ(view->baseView(), nullptr);
    EXPECT_STREQ(view->get_param_val("p"), "v");
    view->displayAllRecords();
    first->delete_records(0, 3);
    EXPECT_EQ(valuesOf(view), "x y") << "the first table is no longer heard";
    second->delete_records(0, 1);
    EXPECT_EQ(valuesOf(view), "y");
}

TEST(ViewLife, TheTableDiesFirst) {
    auto table = numberedTable(3);
    const ODBView view = viewOver(viewOfAll(*table));
    const ODBView sibling = viewOfAll(*table);
    NoticeRecorder notices{*view};
    oledb* const place = table.get();
    table.reset();
    EXPECT_EQ(sibling->table(), nullptr);
    EXPECT_EQ(sibling->baseIndex(2) + sibling->tagAll(true) + sibling->tagDuplicates(0), 0);
    EXPECT_EQ(sibling->deleteRecords(0, 3) + sibling->insertBlankRecords(0, 1), 0);
    EXPECT_EQ(sibling->saveAsText(L"/dev/null", false), 0);
    EXPECT_EQ(sibling->newTagSubview(), nullptr);
    for (const ODBView& left : {sibling, view}) {
        left->displayAllRecords();
        EXPECT_EQ(left->get_num_records(), 0U);
        EXPECT_EQ((*left)[0], nullptr);
        EXPECT_EQ(left->set_tag(0, 1) + left->get_tag(0), 0);
        EXPECT_EQ(left->findViewIndexForBaseRow(1), -1);
        EXPECT_EQ(left->deleteRecords(0, 3) + left->add_records(2) + left->removeTagged(), 0);
        EXPECT_EQ(left->get_num_records() + left->get_num_fields(), 0U);
        EXPECT_EQ(left->tag_all_different(0), 0) << "and prints nothing";
        left->remove(0, 1);
        left->sort(1, 0);
    }
    EXPECT_STREQ(sibling->fieldSpecText(), "id") << "what is the view's own stays";
    table = numberedTable(2);
    sibling->odb(table.get());
    EXPECT_EQ(sibling->count(), 0)
        << "another table" << (place == table.get() ? ", same place" : "");
}

TEST(ViewLife, ATableThatDiesDuringItsNotices) {
    using Way = void (*)(ODBViewRep&);
    const Way ways[] = {
        [](ODBViewRep& view) { view.deleteRecords(0, 4); },
        [](ODBViewRep& view) { view.deleteTagged(); },
    };
    for (const Way way : ways) {
        auto table = numberedTable(6);
        const ODBView view = viewOf(*table, {0, 2, 4, 5});
        view->tagAll(true);
        const auto guard = table->registerInterest(
            [&table](const NotifyMsg&) { return table.reset(), 0; }, recordsDeletedType());
        way(*view);
        EXPECT_EQ(view->source(), nullptr);
    }
}

TEST(ViewLife, LongChainsEndWithoutRecursion) {
    const auto table = numberedTable(1);
    ODBView top{table.get()};
    for (int i = 0; i < 20000; ++i) {
        const ODBView next{table.get()};
        next->baseView(top.rep());
        top = next;
    }
    EXPECT_EQ(top->baseView()->references(), 1U);
    top = ODBView{};
}

/// Every way to a notice, while the listener drops the last handle of the view that sends it.
TEST(ViewLife, TheLastHandleGoesDuringANotice) {
    using Way = void (*)(ODBViewRep&, oledb&);
    const Way ways[] = {
        [](ODBViewRep& view, oledb&) { view.remove(1, 1); },
        [](ODBViewRep& view, oledb&) { view.removeRecordsFromBaseView(1, 3); },
        [](ODBViewRep& view, oledb&) { view.removeTagged(); },
        [](ODBViewRep& view, oledb&) { view.deleteRecords(0, 4); },
        [](ODBViewRep& view, oledb&) { view.deleteTagged(); },
        [](ODBViewRep& view, oledb&) { view.displayAllRecords(); },
        [](ODBViewRep& view, oledb&) { view.displayAllRecordsWithBaseTagStatus(); },
        [](ODBViewRep& view, oledb&) { view.setupViewTagsFromOledbTagField(); },
        [](ODBViewRep&, oledb& table) { table.delete_records(1, 3); },
    };
    for (const bool chained : {false, true}) {
        for (const Way way : ways) {
            const auto table = makeTable({"Tag"}, {{"0"}, {"1"}, {"0"}, {"1"}, {"1"}, {"0"}});
            ODBView view = viewOf(*table, {0, 2, 3, 5, 1}, "10110");
            if (chained) {
                view = viewOver(view);
                view->set_tag(1, 1);
                view->set_tag(3, 1);
            }
            const ODBView sibling = viewOfAll(*table);
            NoticeRecorder notices;
            notices.watch(*view, "", [&] { view = ODBView{}; });
            way(*view, *table);
            EXPECT_FALSE(view);
            EXPECT_NE(notices.taken(), "");
            table->delete_records(0, 1);
            EXPECT_EQ(sibling->get_num_records(), table->get_num_records());
        }
    }
}

TEST(ViewLife, ListenersTakeOthersAway) {
    const auto table = numberedTable(6);
    ODBView first = viewOfAll(*table);
    ODBView second = viewOfAll(*table);
    ODBView upper = viewOver(second);
    NoticeRecorder notices;
    std::optional<NoticeRecorder> leaving{std::in_place};
    leaving->watch(*first, "", [&] {
        EXPECT_NE(leaving->taken(), "");
        leaving.reset(); // drops its own registration
    });
    notices.watch(*first, "", [&] {
        second = ODBView{}; // would be told next by the table
        upper = ODBView{};
    });
    table->delete_records(2, 1);
    EXPECT_EQ(notices.taken(), "recordsDeleted {2 } recordsDeleted {1 } recordsChanged {}");
    EXPECT_EQ(valuesOf(first), "0 1 3 4 5");
    EXPECT_FALSE(second || upper);
}

} // namespace
