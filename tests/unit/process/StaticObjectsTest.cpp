// Tables used before main and after it: static objects of a program may build tables, name columns,
// listen and log while they are made and while they are destroyed.

#include "misc/config.h"
#include "misc/diagnostics.h"
#include "ole/oledb/oledb.h"
#include "support/NoticeRecorder.h"
#include "support/Tables.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>

namespace {

/// Stands before the library's own state is made, so it is destroyed when destructible state would
/// be gone already.
struct BeforeMain {
    BeforeMain() {
        config_int_set("test_resident", 42);
        type = NotifyMsgTypeDictionary::intern("test resident");
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
    BeforeMain(const BeforeMain&) = delete;
    BeforeMain& operator=(const BeforeMain&) = delete;
    ~BeforeMain() {
        std::string logged;
        Tarn::setLogSink([&](std::string_view text) { logged += text; });
        LogBoth("late");
        Tarn::setLogSink({});
        table->set_field(0, 0, "late");
        const std::string name = NotifyMsgTypeDictionary::name(type);
        if (logged != "late" || config_int("test_resident", 0) != 42 || name != "test resident" ||
            table->delete_records(0, 1) != 1) {
            std::fputs("the library forgot its state before the program ended\n", stderr);
            std::_Exit(70);
        }
    }

    int type = 0;
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
