// The user's own map of ALE columns to fields: it wins over the built-in names and is read once.

#include "ole/interchange/ALE.h"
#include "ole/oledb/oledb.h"
#include "support/Tables.h"
#include "unit/TemporaryFolder.h"

#include <gtest/gtest.h>

namespace {

TEST(UserMap, WinsOverTheBuiltInNames) {
    const TemporaryFolder folder;
    setenv("OLE_PREFS_DIR", folder.path().c_str(), 1);
    folder.write("ALEFieldMap.txt", "Tape=clip name\r\n"
                                    "  Note \t=  Who  \r\n"
                                    "Note=reel\r\n"
                                    "Take=no such field\r\n"
                                    "Start=\r\n"
                                    "no separator\r\n"
                                    "=no name\r\n"
                                    "a=b=c\r\n"
                                    "Name=WHO\n");
    const auto table =
        makeTable({"clip name", "reel", "who", "shot", "start time", "b=c", "notes"});
    const auto column = [&](const char* name) { return ALE::findODBColumnFor(*table, name); };
    EXPECT_EQ(column("Tape"), 0);
    EXPECT_EQ(column("tape"), -1) << "names are told apart by case";
    EXPECT_EQ(column("Note"), 2) << "the first line of a name counts";
    EXPECT_EQ(column("Take"), -1) << "a field that is not there takes nothing";
    EXPECT_EQ(column("Start"), -1);
    EXPECT_EQ(column("a"), 5);
    EXPECT_EQ(column("no separator"), -1);
    EXPECT_EQ(column("who"), 2);

    folder.write("ALEFieldMap.txt", "Tape=shot\n");
    EXPECT_EQ(column("Tape"), 0) << "the file is read once";
    setenv("OLE_PREFS_DIR", "/nowhere", 1);
    EXPECT_EQ(column("Tape"), 0);

    folder.write("log", "Heading\nColumn\nTape\tNote\tName\nData\n1\t2\t3\n");
    EXPECT_TRUE(ALE::fillODB(*table, folder.wide("log")));
    EXPECT_EQ(rowsOf(*table), (Rows{{"1", "", "2, 3", "", "", "", ""}}));
}

} // namespace
