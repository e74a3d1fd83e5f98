// With the setting at 0 the five further reel columns are not exported; the main one still is.

#include "misc/config.h"
#include "misc/configb.h"
#include "ole/oledb/oledb.h"
#include "support/SettingsProcess.h"
#include "support/Tables.h"

namespace {

TEST(ReelSetting, WithholdsTheFurtherReels) {
    const auto table = makeTable({"name", "notes", "shot", "reel", "snd reel", "24P reel",
                                  "cam reel", "comp reel", "lab reel"},
                                 {{"n", "1", "2", "3", "4", "5", "6", "7", "8"}});
    config_int_set("dbv_reel_field_editable", 1); // too late
    configb block;
    EXPECT_EQ(table->get_record(0)->update(&block), 3);
    EXPECT_EQ(block.count(), 5U);
    ASSERT_NE(block.get("reelid"), nullptr);
    EXPECT_EQ(block.get("reelid")->string(), "3");
    EXPECT_EQ(block.get("reelid1"), nullptr);
    EXPECT_EQ(block.get("lab_reel"), nullptr);
}

} // namespace

int main(int argc, char** argv) {
    return runWithSetting(argc, argv, "OLE_CONFIG_DBV_REEL_FIELD_EDITABLE", "0");
}
