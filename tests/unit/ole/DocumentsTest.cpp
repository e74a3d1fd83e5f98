// The examples of the pages on formats hold: each is read from its page.

#include "misc/CurrentProject.h"
#include "ole/interchange/ALE.h"
#include "ole/interchange/CSV.h"
#include "ole/oledb/TarnContainerFile.h"
#include "support/Views.h"
#include "unit/TemporaryFolder.h"

#include <fstream>
#include <gtest/gtest.h>

namespace {

class Documents : public testing::Test {
protected:
    /// Block n of a page, with CR LF, as the file "block" too.
    std::string block(const std::string& page, int n) {
        std::ifstream file{OLE_DOCS "/" + page};
        std::string text;
        int fences = 0;
        for (std::string line; std::getline(file, line);) {
            const bool isFence = line.starts_with("```");
            fences += isFence ? 1 : 0;
            text += !isFence && fences == 2 * n + 1 ? line + "\r\n" : "";
        }
        folder_.write("block", text);
        return text;
    }
    TemporaryFolder folder_;
};

TEST_F(Documents, TableFile) {
    const std::string example = block("format-table.md", 0);
    oledb table{folder_.wide("block"), 100, true};
    EXPECT_EQ(rowsOf(table),
              (Rows{{"Shot \"A\" take 1", "10:00:00:00"}, {"line one\nline two", "10:00:05:00"}}));
    table.set_filename(folder_.wide("saved"));
    EXPECT_EQ(table.save_text(), 2);
    EXPECT_EQ(folder_.read("saved"), example);
}

TEST_F(Documents, Ale) {
    block("format-ale.md", 0);
    const auto table = makeTable({"Name", "reel", "start time", "scene", "shot", "film label_std"});
    EXPECT_TRUE(ALE::fillODB(*table, folder_.wide("block")));
    EXPECT_EQ(rowsOf(*table), (Rows{{"12A-1", "A001", "01:00:00:00", "12A", "1", "F35"}}));
    EXPECT_STREQ(table->get_param_val("FPS"), "24");
}

TEST_F(Documents, FieldMap) {
    const std::string expected = block("format-fieldmap.md", 1);
    block("format-fieldmap.md", 0);
    oledb table{folder_.wide("block"), 100, true};
    const FieldMap map{table};
    std::string entries;
    for (int i = 0; i < map.count(); ++i) {
        std::string name = map[i].c_str();
        name.resize(12, ' ');
        entries += name + (map.isVisible(i) ? "visible" : "hidden") + "\r\n";
    }
    EXPECT_EQ(entries, expected);
    EXPECT_EQ(map.asString(), table.get_param_val(FieldMap::parameterName));
}

TEST_F(Documents, Csv) {
    const std::string expected = block("format-csv.md", 1);
    block("format-csv.md", 0);
    oledb table{folder_.wide("block"), 100, true};
    Tarn::CurrentProject::setFrameRate({24, 1});
    EXPECT_TRUE(CSV{viewOfAll(table)}.writeTo(folder_.wide("out")));
    Tarn::CurrentProject::setFrameRate({});
    EXPECT_EQ(folder_.read("out"), expected);
}

TEST_F(Documents, Container) {
    const std::string example = block("format-container.md", 0);
    const TarnContainerFile::Reader container{folder_.wide("block"), false};
    std::vector<DBFieldDesc> columns = descriptors({"Cookie", "Note"});
    TarnContainerFile::Writer writer{columns.data()};
    writer.setName(container.getName());
    writer.setPermanent(container.isPermanent());
    writer.setAttrib("Editor", container.getAttrib("editor"));
    for (unsigned i = 0; i < container.getNumItems(); ++i) {
        const auto item = container.getItem(i);
        writer.addItem(item.getCookie())->set_field(1, item.getAttrib(1).c_str());
    }
    writer.save(folder_.wide("saved"));
    EXPECT_EQ(folder_.read("saved"), example);
}

} // namespace
