// Column names keep their '&' where the setting asks for it; it is read once.

#include "misc/config.h"
#include "ole/oledb/oledb.h"
#include "support/SettingsProcess.h"
#include "support/Tables.h"

namespace {

TEST(Ampersands, StayWhereTheSettingIsZero) {
    const auto table = makeTable({"A&B", "&"});
    EXPECT_STREQ(table->get_fieldname(0), "A&B");
    EXPECT_STREQ(table->get_fieldname(1), "&");
    EXPECT_EQ(table->get_fieldnum("a&b"), 0);
    EXPECT_EQ(table->get_fieldnum("AB"), -1);
    EXPECT_EQ(table->addField({"A&B", DBFieldTypes::TEXT}), 0);
    EXPECT_EQ(config_int("remove_fieldname_ampersands", 1), 0);
    config_int_set("remove_fieldname_ampersands", 1);
    EXPECT_EQ(config_int("remove_fieldname_ampersands", 0), 1);
    EXPECT_EQ(table->addField({"C&D", DBFieldTypes::TEXT}), 2);
    EXPECT_STREQ(table->get_fieldname(2), "C&D") << "later changes come too late";
}

} // namespace

int main(int argc, char** argv) {
    return runWithSetting(argc, argv, "OLE_CONFIG_REMOVE_FIELDNAME_AMPERSANDS", "0");
}
