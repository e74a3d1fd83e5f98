// Views made into tables: slots, the exported file, the conversion.

#include "ole/interchange/ODBFieldView.h"
#include "support/Views.h"
#include "unit/TemporaryFolder.h"

#include <gtest/gtest.h>

namespace {

struct FieldView : testing::Test {
    [[nodiscard]] Rows exported(ODBFieldView& fields, bool onlyTagged, int result) const {
        fields.setFileName(folder.wide("out.odb"));
        EXPECT_EQ(fields.exportNewOleDb(onlyTagged), result);
        return rowsOf(oledb{folder.wide("out.odb"), 100, true});
    }
    TemporaryFolder folder;
    std::unique_ptr<oledb> table =
        makeTable({"a", {"b", DBFieldTypes::NUMERIC}, "Tag"},
                  {{"a0", "b0", "t0"}, {" a1", "b1", "t1"}, {"a2", "b2", "t2"}});
    ODBView view = viewOf(*table, {2, 1, 9}, "011");
};

TEST_F(FieldView, ByNumber) {
    ODBFieldView fields{view, std::data({2, 0, 5, -1, 1})};
    EXPECT_EQ(fields.count(), 3);
    EXPECT_STREQ(fields.get_modified_field(0, 0), "t2");
    EXPECT_STREQ(fields.get_modified_field(1, 1), " a1");
    for (const auto& [row, slot] : {std::pair{0, -1}, {0, 3}, {0, 2}, {2, 0}, {-1, 0}, {3, 0}}) {
        EXPECT_EQ(fields.get_modified_field(row, slot), nullptr) << row << " " << slot;
    }
    const std::unique_ptr<DBFieldDesc> header{
        ODBFieldView{view, std::data({1, -1})}.get_modified_field_header(0)};
    EXPECT_EQ(header->name, "b");
    EXPECT_EQ(header->type, DBFieldTypes::NUMERIC);
    EXPECT_EQ(fields.exportNewOleDb(false), 0) << "no file name";
    EXPECT_EQ(exported(fields, false, 3), (Rows{{"0", "a2"}, {"0", "a1"}, {"0", ""}}))
        << "own tags, no leading blanks, no column for a field that is not there";
    EXPECT_EQ(exported(fields, true, 2), (Rows{{"0", "a1"}, {"0", ""}}));
    EXPECT_EQ(rowsOf(*table)[1], (Texts{" a1", "b1", "t1"}));
}

TEST_F(FieldView, ByNameFillsTheViewAgain) {
    const char* const names[] = {"B", "nobody", "a", nullptr};
    ODBFieldView fields{view, names};
    EXPECT_EQ(shownBy(view), "0 1 2");
    EXPECT_EQ(fields.get_modified_field(0, 1), nullptr);
    EXPECT_STREQ(fields.get_modified_field(0, 2), "a0");
    EXPECT_EQ(exported(fields, true, 0), Rows{});
    EXPECT_TRUE(folder.names().empty()) << "its tags are gone";
    view->set_tag(1, 1);
    EXPECT_EQ(exported(fields, true, 1), (Rows{{"b1"}})) << "cut at the unknown name";
    ODBFieldView unknown{view, names + 1};
    EXPECT_EQ(exported(unknown, false, 3), Rows{}) << "rows of a table without columns";
}

TEST_F(FieldView, TooManyFieldsAreNone) {
    std::vector<int> list(257, 1); // nothing behind them that ends the list
    EXPECT_EQ((ODBFieldView{view, list.data()}.count()), 0);
    list.back() = -1;
    ODBFieldView fields{view, list.data()};
    EXPECT_EQ(fields.count(), 256);
    fields.setFileName(folder.wide("out.odb"));
    EXPECT_EQ(fields.exportNewOleDb(false), 3);
    EXPECT_EQ((ODBFieldView{ODBView{}, list.data()}.exportNewOleDb(false)), 0);
    oledb invalid;
    invalid.add_records(1);
    fields = ODBFieldView{viewOfAll(invalid), list.data()};
    fields.setFileName(folder.wide("out.odb"));
    EXPECT_EQ(fields.exportNewOleDb(false), 0);
}

TEST_F(FieldView, DerivedClassesPresentTheirOwnValues) {
    struct Loud : ODBFieldView {
        using ODBFieldView::ODBFieldView;
        const char* get_modified_field(int, int) override { return "!"; }
        DBFieldDesc* get_modified_field_header(int) override {
            return new DBFieldDesc{"!", DBFieldTypes::TEXT};
        }
    };
    Loud fields{view, std::data({0, -1})};
    EXPECT_EQ(exported(fields, false, 3), (Rows{{"!"}, {"!"}, {"!"}}));
}

TEST_F(FieldView, ConvertCopiesWhatTheViewShows) {
    table->set_param_val("Owner", "me");
    table->set_filename(L"own.odb");
    table->set_tag(1, 1);
    const std::unique_ptr<oledb> made{Convert_ODBView_to_oledb(view)};
    EXPECT_EQ(rowsOf(*made), (Rows{{"a2", "b2", "t2"}, {"a1", "b1", "t1"}, {"", "", ""}}));
    EXPECT_TRUE(made->sameColumns(table.get()));
    EXPECT_EQ(made->get_fieldtype(1), DBFieldTypes::NUMERIC);
    EXPECT_EQ(paramsOf(*made), (Texts{"OLEDB=Rev 1", "Owner=me"}));
    EXPECT_TRUE(made->get_filename().empty());
    EXPECT_EQ(made->get_num_tags(), 0);
    const std::unique_ptr<oledb> empty{Convert_ODBView_to_oledb(ODBView{table.get()})};
    EXPECT_EQ(empty->get_num_fields() + empty->get_num_records(), 3U);
    EXPECT_EQ(Convert_ODBView_to_oledb(ODBView{}), nullptr);
    EXPECT_EQ(Convert_ODBView_to_oledb(ODBView{static_cast<oledb*>(nullptr)}), nullptr);
}

} // namespace
