// A map file that is missing at the first import is not looked for again.

#include "ole/interchange/ALE.h"
#include "ole/oledb/oledb.h"
#include "support/Tables.h"
#include "unit/TemporaryFolder.h"

#include <gtest/gtest.h>

namespace {

TEST(UserMapMissing, IsNotLookedForAgain) {
    const TemporaryFolder folder;
    setenv("OLE_PREFS_DIR", folder.path().c_str(), 1);
    const auto table = makeTable({"clip name", "reel"});
    EXPECT_EQ(ALE::findODBColumnFor(*table, "Tape"), 1);
    folder.write("ALEFieldMap.txt", "Tape=clip name\n");
    EXPECT_EQ(ALE::findODBColumnFor(*table, "Tape"), 1);
}

} // namespace
