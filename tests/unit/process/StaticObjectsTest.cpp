// Tables used before main: static objects of a program may build tables, name columns and listen.

#include "ole/oledb/oledb.h"
#include "support/NoticeRecorder.h"
#include "support/Tables.h"

#include <gtest/gtest.h>

namespace {

struct BeforeMain {
    BeforeMain() {
        table = makeTable({"A&B"}, {{"1"}, {"2"}});
        NoticeRecorder recorder{*table};
        added = table->addField({"C&D", DBFieldTypes::TEXT});
        table->delete_records(0, 1);
        table->beginUpdate();
        table->addToUpdate(cookieNo(1));
        table->endUpdate();
        notices = recorder.taken();
        outOfRange = dbrecord{1}.getField(9).c_str();
        defaultType = dbrecord{1}.types()[0];
    }
    std::unique_ptr<oledb> table;
    std::string notices;
    std::string outOfRange = "unset";
    int added = -1;
    DBFieldTypes::eType defaultType = DBFieldTypes::TEXT;
};

const BeforeMain beforeMain;

TEST(StaticObjects, MayUseTables) {
    EXPECT_STREQ(beforeMain.table->get_fieldname(0), "AB");
    EXPECT_STREQ(beforeMain.table->get_fieldname(1), "CD");
    EXPECT_EQ(beforeMain.added, 1);
    EXPECT_EQ(beforeMain.notices, "recordsDeleted {0 } recordsChanged {" + cookieText(1) + "}");
    EXPECT_EQ(beforeMain.outOfRange, "");
    EXPECT_EQ(beforeMain.defaultType, DBFieldTypes::NONE);
    EXPECT_STREQ(beforeMain.table->get_field(0, 0), "2");
}

TEST(StaticObjects, MessageNamesAndVersion) {
    EXPECT_STREQ(StartBatchMsg, "StartBatch");
    EXPECT_STREQ(EndBatchMsg, "EndBatch");
    EXPECT_STREQ(oledbDllVersionStr(), "14.0.0.0");
}

} // namespace
