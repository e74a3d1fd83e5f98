// Views saved as table files: which rows, whose tags, whose parameters, and what is returned.

#include "support/Captured.h"
#include "support/Views.h"
#include "unit/TemporaryFolder.h"

#include <gtest/gtest.h>

namespace {

const std::string heading = "\"OLEDB:Rev 1\"\r\n\"Owner:view\"\r\n\"OLEDB\"\r\n\"32\",\"1\"\r\n"
                            "\"text\",\"text\"\r\n\"Name\",\"Tag\"\r\n";

struct Saved {
    Saved() {
        table->add_param("Owner", "table");
        setTags(*table, "100");
        view = viewOf(*table, {2, 0, 1}, "100");
        view->add_param("Owner", "view");
        table->clear_changed();
    }
    std::unique_ptr<oledb> table =
        makeTable({"Name", "Tag"}, {{"a", "7"}, {"b", ""}, {"c\"", "1"}});
    ODBView view;
    TemporaryFolder folder;
};

TEST(ViewSave, RowsShownWithTheViewsTags) {
    const Saved given;
    EXPECT_EQ(given.view->saveAsText(given.folder.wide("v.odb"), false), 3);
    EXPECT_EQ(given.folder.read("v.odb"),
              heading + "\"c\"\"\",\"1\"\r\n\"a\",\"0\"\r\n\"b\",\"0\"\r\n");
    EXPECT_EQ(columnOf(*given.table, 1), (Texts{"7", "", "1"})) << "copies were written";
    EXPECT_EQ(given.table->get_changed(), 0);
    oledb loaded{given.folder.wide("v.odb"), 100, true};
    EXPECT_EQ(rowsOf(loaded), (Rows{{"c\"", "1"}, {"a", "0"}, {"b", "0"}}));
}

TEST(ViewSave, HeadingAlone) {
    const Saved given;
    EXPECT_EQ(given.view->saveAsText(given.folder.path("v.odb").c_str(), true), 0);
    EXPECT_EQ(given.folder.read("v.odb"), heading);
}

TEST(ViewSave, OnlyTheTablesTaggedRows) {
    const Saved given;
    Captured said;
    given.table->set_field(0, 0, "A");
    EXPECT_EQ(given.view->saveOnlyTagged(LightweightString<wchar_t>{}), 0);
    EXPECT_EQ(said.output, "");
    EXPECT_EQ(given.view->saveOnlyTagged(given.folder.path("t.odb").c_str()), 3)
        << "the position reached";
    EXPECT_EQ(said.output, "assertion failed false at ole/oledb/ODBView line 1043\n");
    EXPECT_EQ(given.folder.read("t.odb"), heading + "\"A\",\"7\"\r\n");
    EXPECT_EQ(given.table->get_record(0)->changed(), 0);
}

TEST(ViewSave, ByItsOwnFileName) {
    const Saved given;
    EXPECT_EQ(given.view->save_text(), 0) << "no name";
    given.view->set_filename(given.folder.wide("own.odb"));
    EXPECT_TRUE(given.table->get_filename().empty());
    EXPECT_EQ(given.view->save_text(), 3);
    given.view->set_filename(given.folder.wide("missing/own.odb"));
    EXPECT_EQ(given.view->save_text(), 0);
    EXPECT_EQ(given.folder.names(), (std::set<std::string>{"own.odb"}));
}

TEST(ViewSave, StopsAtAPositionWithoutARecord) {
    const Saved given;
    given.view->append(9);
    given.view->append(0);
    EXPECT_EQ(given.view->saveAsText(given.folder.wide("v.odb"), false), 3);
    EXPECT_EQ(oledb(given.folder.wide("v.odb"), 100, true).get_num_records(), 3U);
}

} // namespace
