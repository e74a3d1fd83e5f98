// Batches of updates: what is gathered, what is sent, and listeners that begin batches themselves.

#include "misc/configb.h"
#include "ole/oledb/oledb.h"
#include "support/NoticeRecorder.h"
#include "support/Tables.h"

#include <gtest/gtest.h>

namespace {

std::string changed(const Texts& cookies) {
    std::string text;
    for (const std::string& cookie : cookies) {
        text += (text.empty() ? "" : " ") + cookie;
    }
    return "recordsChanged {" + text + "}";
}

TEST(UpdateBatch, AListenerMayBeginTheNextBatch) {
    oledb table;
    NoticeRecorder notices;
    unsigned round = 0;
    notices.watch(table, "first", [&] {
        if (++round <= 2) {
            table.beginUpdate();
            table.addToUpdate(cookieNo(round));
            table.endUpdate();
        }
    });
    notices.watch(table, "second");
    table.beginUpdate();
    table.addToUpdate(cookieNo(9));
    table.endUpdate();
    const std::string nine = changed({cookieText(9)});
    const std::string one = changed({cookieText(1)});
    const std::string two = changed({cookieText(2)});
    EXPECT_EQ(notices.taken(), "first " + nine + " second " + nine + " first " + one + " second " +
                                   one + " first " + two + " second " + two);
}

TEST(UpdateBatch, ABatchLeftOpenByAListenerGoesOn) {
    oledb table;
    NoticeRecorder notices;
    notices.watch(table, "", [&] {
        table.beginUpdate();
        table.addToUpdate(cookieNo(5));
    });
    table.beginUpdate();
    table.addToUpdate(cookieNo(1));
    table.endUpdate();
    EXPECT_EQ(notices.taken(), changed({cookieText(1)}));
    table.addToUpdate(cookieNo(6));
    table.endUpdate();
    EXPECT_EQ(notices.taken(), changed({cookieText(5), cookieText(6)}));
}

TEST(UpdateBatch, UpdateNotesTheRowsCookie) {
    const auto table = makeTable({"name", "notes", "Cookie"}, {{"a", "n", cookieText(1)},
                                                               {"b", "n", cookieText(2, 'I')},
                                                               {"c", "n", ""},
                                                               {"d", "n", cookieText(4)}});
    NoticeRecorder notices{*table};
    configb block;
    table->beginUpdate();
    EXPECT_TRUE(table->update(&block, 3));
    EXPECT_STREQ(block.get("name")->string().c_str(), "d");
    EXPECT_TRUE(table->update(&block, 0));
    EXPECT_TRUE(table->update(&block, 1));
    EXPECT_TRUE(table->update(&block, 2));
    EXPECT_FALSE(table->update(&block, 4));
    EXPECT_FALSE(table->update(&block, -1));
    EXPECT_STREQ(block.get("slate/take")->string().c_str(), "c");
    table->endUpdate();
    EXPECT_EQ(notices.taken(), changed({cookieText(4), cookieText(1)}));
    const auto unnamed = makeTable({"notes"}, {{"n"}});
    EXPECT_FALSE(unnamed->update(&block, 0));
    const auto noCookies = makeTable({"name", "notes"}, {{"a", "n"}});
    EXPECT_TRUE(noCookies->update(&block, 0));
}

} // namespace
