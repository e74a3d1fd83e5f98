// The cursor: walking, removing, finding, and the search that does not come back.

#include "ole/oledb/ODBViewCursor.h"
#include "support/Views.h"

#include <gtest/gtest.h>

#include <unistd.h>

namespace {

/// Walks with "+" and "-" and lists the positions.
std::string walked(ODBViewCursor cursor, const std::string& steps) {
    std::string positions;
    for (const char step : steps) {
        positions += std::to_string((step == '+' ? ++cursor : --cursor).position()) + " ";
    }
    return positions;
}

TEST(ViewCursor, Walks) {
    const auto table = numberedTable(5);
    const ODBView view = viewOfAll(*table);
    view->set_tag(1, 1);
    view->set_tag(3, 1);
    EXPECT_EQ(walked(ODBViewCursor{view}, "+++++++"), "0 1 2 3 4 -1 0 ");
    EXPECT_EQ(walked(ODBViewCursor{view}, "------"), "4 3 2 1 0 -1 ");
    EXPECT_EQ(walked(ODBViewCursor(view, -1, true), "++++"), "1 3 -1 1 ");
    EXPECT_EQ(walked(ODBViewCursor(view, -1, true), "----"), "3 1 -1 3 ");
    EXPECT_EQ(walked(ODBViewCursor{ODBView{table.get()}}, "+-"), "-1 -1 ");
    EXPECT_EQ(walked(ODBViewCursor{ODBView{}}, "+-"), "-1 -1 ");
    ODBViewCursor cursor{view};
    for (const int i : {5, -1, INT_MIN, INT_MAX}) {
        EXPECT_EQ(cursor.set_index(4).set_index(i).position(), -1) << i;
    }
}

TEST(ViewCursor, Removes) {
    const auto table = numberedTable(3);
    const ODBView view = viewOfAll(*table);
    ODBViewCursor cursor{view, 1};
    cursor.remove();
    EXPECT_EQ(cursor.position(), 1);
    EXPECT_EQ(shownBy(view), "0 2");
    cursor.remove();
    EXPECT_EQ(cursor.position(), -1);
    cursor.remove();
    EXPECT_EQ(shownBy(view), "0");
}

TEST(ViewCursor, StalePositions) {
    const auto table = numberedTable(9);
    const ODBView view = viewOfAll(*table);
    view->set_tag(0, 1);
    ODBViewCursor cursor{view, 8, true};
    view->tagAll(true);
    view->remove(1, 8);
    EXPECT_EQ((--cursor).position(), 0);
    view->displayAllRecords();
    cursor.set_index(8);
    view->remove(1, 8);
    EXPECT_EQ(cursor.findField("id", "nothing"), -1);
    view->displayAllRecords();
    cursor.set_index(8).setTaggedOnly(false);
    view->clear();
    EXPECT_EQ(walked(cursor, "-"), "7 ");
    EXPECT_EQ(walked(cursor, "+"), "-1 ");
}

TEST(ViewCursor, FindsRecordsUpToTheFirstThatIsMissing) {
    const auto table = numberedTable(4);
    const ODBView view = viewOf(*table, {3, 1, 9, 2}, "1000");
    ODBViewCursor cursor{view, 1, true};
    EXPECT_EQ(cursor.find(table->get_record(1)), 1) << "tagged or not";
    EXPECT_EQ(cursor.position(), 1);
    for (dbrecord* const record :
         {table->get_record(2), table->get_record(0), table->get_record(7)}) {
        cursor.set_index(1);
        EXPECT_EQ(cursor.find(record), -1);
        EXPECT_EQ(cursor.position(), -1);
    }
}

TEST(ViewCursor, FindsValues) {
    const auto table = makeTable({"v"}, {{"a"}, {"B"}, {"a"}, {"b"}});
    const ODBView view = viewOfAll(*table);
    view->set_tag(3, 1);
    ODBViewCursor cursor{view};
    EXPECT_EQ(cursor.findField("V", "a"), -1) << "from -1 nothing is found";
    EXPECT_EQ(cursor.set_index(0).findField("V", "b"), 1);
    EXPECT_EQ(cursor.findField("V", "b"), 1) << "where it stands";
    cursor.setTaggedOnly(true);
    EXPECT_EQ(cursor.findField("V", "b"), 1) << "tagged or not";
    EXPECT_EQ((++cursor).findField("V", "b"), 3);
    EXPECT_EQ(cursor.set_index(0).findField("V", "c"), -1);
    EXPECT_EQ(cursor.set_index(0).findField("none", "a"), -1);
    EXPECT_EQ(cursor.position(), -1);
}

TEST(ViewCursor, TheSortedSearchNeverFinds) {
    const auto table = makeTable({"v"}, {{"a"}, {"c"}, {"e"}, {"g"}});
    const ODBView view = viewOfAll(*table);
    const auto searched = [&](int from, const char* value) {
        ODBViewCursor cursor{view, from};
        const int found = cursor.findFieldSorted("v", value);
        return found + cursor.position();
    };
    EXPECT_EQ(searched(-1, "d"), -2);
    EXPECT_EQ(searched(-1, "z"), -2);
    EXPECT_EQ(searched(0, "a"), -2) << "its own row is left out";
    EXPECT_EQ(searched(3, "g"), -2) << "nothing is left";
    EXPECT_EQ((ODBViewCursor{view, 0}.findFieldSorted("none", "a")), -1);
    for (const auto& [from, value] : {std::pair{-1, "e"}, {-1, "a"}, {1, "E"}}) {
        EXPECT_EXIT((ualarm(200000, 0), searched(from, value), exit(0)),
                    testing::KilledBySignal(SIGALRM), "");
    }
}

} // namespace
