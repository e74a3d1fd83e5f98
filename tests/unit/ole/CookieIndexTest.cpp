// Rows found by cookie: the index that is built on demand, grows by single writes and is dropped
// when rows come or go.

#include "ole/oledb/oledb.h"
#include "support/NoticeRecorder.h"
#include "support/Tables.h"
#include "tarn/TextFile.h"

#include <gtest/gtest.h>

namespace {

std::unique_ptr<oledb> cookieTable(const Texts& cookies) {
    Rows rows;
    for (const std::string& cookie : cookies) {
        rows.push_back({"row " + std::to_string(rows.size()), cookie});
    }
    return makeTable({"Name", "Cookie"}, rows);
}

/// The row of each of the cookies 0 to n - 1.
std::vector<int> rowsById(const oledb& table, unsigned n) {
    std::vector<int> rows;
    for (unsigned i = 0; i < n; ++i) {
        rows.push_back(table.getRowIndexByID(cookieNo(i)));
    }
    return rows;
}
using Numbers = std::vector<int>;

TEST(CookieIndex, BuiltFromTheColumnOnDemand) {
    const auto table = cookieTable(
        {cookieText(1), "", cookieText(0), "no cookie", cookieText(1), cookieText(2, 'I')});
    EXPECT_EQ(rowsById(*table, 3), (Numbers{2, 0, -1})) << "the first of two rows is kept";
    EXPECT_EQ(table->getRowIndexByID(Cookie{}), -1) << "rows without a cookie are not found";
    EXPECT_EQ(table->getRowIndexByID(cookieNo(1, 'B')), -1) << "the kind belongs to the identity";
    EXPECT_EQ(makeTable({"Name"}, {{cookieText(0)}})->getRowIndexByID(cookieNo(0)), -1);
    EXPECT_EQ(oledb{}.getRowIndexByID(cookieNo(0)), -1);
    const std::string longForm = cookieNo(0).asString(true).c_str();
    EXPECT_EQ(rowsById(*cookieTable({" " + longForm}), 1), (Numbers{0}));
}

TEST(CookieIndex, FollowsInsertionAndDeletion) {
    const auto table = cookieTable({cookieText(0), cookieText(1), cookieText(2)});
    EXPECT_EQ(rowsById(*table, 3), (Numbers{0, 1, 2}));
    table->insert_records(1, 2);
    EXPECT_EQ(rowsById(*table, 3), (Numbers{0, 3, 4}));
    table->delete_records(0, 1);
    EXPECT_EQ(rowsById(*table, 3), (Numbers{-1, 2, 3}));
    EXPECT_EQ(table->set_field(0, cookieNo(0)), 1);
    EXPECT_STREQ(table->get_field(0, 1), cookieText(0).c_str());
    EXPECT_EQ(rowsById(*table, 3), (Numbers{0, 2, 3}));
    table->set_tag(3, 1);
    table->delete_tagged_records();
    EXPECT_EQ(rowsById(*table, 3), (Numbers{0, 2, -1}));
    table->set_sortfield(0);
    table->sort(1, 0); // "row 1" comes before the rows without a name
    EXPECT_EQ(table->getRowIndexByID(cookieNo(1)), 0);
}

/// A single write on a table that was not asked yet makes an index of that row alone.
TEST(CookieIndex, APartialIndexAnswersForItsRowsOnly) {
    const auto table = cookieTable({cookieText(0), cookieText(1), cookieText(2)});
    EXPECT_EQ(table->set_field(1, cookieNo(7)), 1);
    EXPECT_EQ(rowsById(*table, 3), (Numbers{-1, -1, -1}));
    EXPECT_EQ(table->getRowIndexByID(cookieNo(7)), 1);
    EXPECT_EQ(table->findFirst("COOKIE", cookieText(0).c_str(), 0), 0) << "found by scanning";
    EXPECT_EQ(table->findFirst("cookie", cookieText(7).c_str(), 0), 1);
    table->insert_records(0, 1);
    EXPECT_EQ(rowsById(*table, 3), (Numbers{1, -1, 3}));
    EXPECT_EQ(table->getRowIndexByID(cookieNo(7)), 2);
}

TEST(CookieIndex, AppendingRowsKeepsIt) {
    const auto table = cookieTable({});
    for (unsigned i = 0; i < 4; ++i) {
        EXPECT_EQ(table->set_field(static_cast<unsigned>(table->add_records(1)), cookieNo(i)), 1);
    }
    EXPECT_EQ(rowsById(*table, 4), (Numbers{0, 1, 2, 3}));
    EXPECT_EQ(table->set_field(9, cookieNo(9)), 0);
    EXPECT_EQ(table->getRowIndexByID(cookieNo(9)), -1) << "a refused write is not remembered";
    EXPECT_EQ(makeTable({"a"}, {{""}})->set_field(0, cookieNo(9)), 0);
}

/// An index without any entry is built again at the next question.
TEST(CookieIndex, AnIndexThatFoundNothingIsBuiltAgain) {
    using Change = void (*)(oledb&);
    const Change changes[] = {
        [](oledb& t) { t.set_field(1, 1, cookieText(0).c_str()); },
        [](oledb& t) { t.get_record(1)->set_field(1, cookieText(0).c_str(), true); },
        [](oledb& t) {
            dbrecord own{2};
            own.set_field(1, cookieText(0).c_str());
            t.copy_record(1, &own);
        },
        [](oledb& t) {
            TextFile file;
            file.appendLine("x,");
            file.appendLine("x," + cookieText(0));
            file.setLine(1);
            t.get_record(1)->read(file);
        },
        [](oledb& t) {
            t.delete_records(1, 1);
            EXPECT_EQ(t.getRowIndexByID(cookieNo(0)), -1);
            t.add_oledb(cookieTable({cookieText(0)}).get());
        },
        [](oledb& t) {
            t.delete_records(1, 1);
            EXPECT_EQ(t.getRowIndexByID(cookieNo(0)), -1);
            t.merge_all_matching(cookieTable({cookieText(0)}).get());
        },
        [](oledb& t) {
            t.delete_records(1, 1);
            EXPECT_EQ(t.getRowIndexByID(cookieNo(0)), -1);
            TextFile file;
            file.appendLine("x," + cookieText(0));
            file.setLine(0);
            EXPECT_EQ(t.add_text(file, 0, 9), 1);
        },
    };
    for (std::size_t i = 0; i < std::size(changes); ++i) {
        const auto table = cookieTable({"", ""});
        EXPECT_EQ(table->getRowIndexByID(cookieNo(0)), -1);
        changes[i](*table);
        EXPECT_EQ(table->getRowIndexByID(cookieNo(0)), 1) << "change " << i;
    }
    const auto bare = makeTable({"Name"}, {{"x"}, {cookieText(0)}});
    EXPECT_EQ(bare->getRowIndexByID(cookieNo(0)), -1);
    bare->set_fieldname(0, "cookie");
    EXPECT_EQ(bare->getRowIndexByID(cookieNo(0)), 1) << "a column that came later";
    const auto grown = makeTable({"Name"}, {{"x"}});
    EXPECT_EQ(grown->getRowIndexByID(cookieNo(0)), -1);
    grown->addField({"Cookie", DBFieldTypes::TEXT});
    grown->set_field(0, 1, cookieText(0).c_str());
    EXPECT_EQ(grown->getRowIndexByID(cookieNo(0)), 0);
}

TEST(CookieIndex, BuiltInTheShownModeItHoldsShownNumbers) {
    const auto table = cookieTable({cookieText(0), cookieText(1), cookieText(2)});
    setTags(*table, "011");
    table->set_show_tags_only(1);
    EXPECT_EQ(rowsById(*table, 3), (Numbers{-1, 0, 1}));
    EXPECT_EQ(table->findFirst("cookie", cookieText(2).c_str(), 0), 1)
        << "the index is asked first";
    EXPECT_EQ(table->findFirst("cookie", cookieText(0).c_str(), 0), 0) << "then all rows scanned";
}

TEST(CookieIndex, ListenersAskAfterADeletion) {
    const auto table = cookieTable({cookieText(0), cookieText(1), cookieText(2)});
    EXPECT_EQ(rowsById(*table, 3), (Numbers{0, 1, 2}));
    Numbers seen;
    NoticeRecorder notices;
    notices.watch(*table, "", [&] { seen = rowsById(*table, 3); });
    table->delete_records(1, 1);
    EXPECT_EQ(seen, (Numbers{0, -1, 1}));
    EXPECT_EQ(notices.taken(), "recordsDeleted {1 }");
}

TEST(FindFirst, ComparesAsManyBytesAsAsked) {
    const auto table =
        makeTable({"Scene", "cookie"}, {{"2", ""}, {"", ""}, {"12", ""}, {"1", "x"}});
    const auto find = [&](const char* value, int n) { return table->findFirst("scene", value, n); };
    EXPECT_EQ(find("12", 1), 2);
    EXPECT_EQ(find("1", 0), 3);
    EXPECT_EQ(find("1", 1), 2);
    EXPECT_EQ(find("12xxx", 2), 2);
    EXPECT_EQ(find("12xxx", 3), -1);
    EXPECT_EQ(find("1", -1), 3) << "a negative length compares whole texts";
    EXPECT_EQ(find("", 0), 1);
    EXPECT_EQ(find("1", 100), 3);
    EXPECT_EQ(table->findFirst("Cookie", "x", 0), 3);
    EXPECT_EQ(table->findFirst("cookie", "X", 0), -1) << "case counts";
    EXPECT_EQ(table->findFirst("none", "1", 0), -1);
    EXPECT_EQ(table->findFirst(nullptr, "1", 0), -1);
    EXPECT_EQ(table->findFirst("scene", nullptr, 0), 1);
    EXPECT_EQ(makeTable({"a"})->findFirst("a", "", 0), -1);
}

} // namespace
