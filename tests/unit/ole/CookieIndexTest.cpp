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

std::unique_ptr<TextFile> fileOf(const std::string& line) {
    auto file = std::make_unique<TextFile>();
    file->appendLine(line);
    file->setLine(0);
    return file;
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

/// Many cookies at once are found as one after the other: by an index that knows too little, by the
/// text of a row, and, for no cookie, by the first row without one.
TEST(CookieIndex, ManyAreFoundAsOneByOne) {
    const auto table = cookieTable({cookieText(3), cookieText(0), "", "", cookieText(0)});
    EXPECT_EQ(table->set_field(1, cookieNo(7)), 1);
    const std::vector<Cookie> sought{cookieNo(9), cookieNo(0), Cookie{}, cookieNo(7), cookieNo(3)};
    Numbers oneByOne;
    for (const Cookie& cookie : sought) {
        oneByOne.push_back(table->findFirst("Cookie", cookie.asString(false).c_str(), 0));
    }
    EXPECT_EQ(table->findFirstOfEach(sought), oneByOne);
    EXPECT_EQ(oneByOne, (Numbers{-1, 4, 2, 1, 0}));
    EXPECT_EQ(makeTable({"Name"}, {{"a"}})->findFirstOfEach(sought), Numbers(5, -1));
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
}

TEST(CookieIndex, IsForgottenWhenRowsGetOtherNumbers) {
    using Change = void (*)(oledb&);
    const std::pair<Change, Numbers> changes[] = {
        {[](oledb& t) { t.insert_records(1, 2); }, {0, 3, 4}},
        {[](oledb& t) { t.delete_records(0, 1); }, {-1, 0, 1}},
        {[](oledb& t) { t.delete_tagged_records(); }, {0, -1, 1}},
        {[](oledb& t) { t.sort(-1, 0); }, {2, 1, 0}},
        {[](oledb& t) { t.set_show_tags_only(1); }, {-1, 0, -1}},
        {[](oledb& t) { t.free(); }, {-1, -1, -1}},
    };
    for (const auto& [change, rows] : changes) {
        const auto table = cookieTable({cookieText(0), cookieText(1), cookieText(2)});
        table->set_tag(1, 1);
        table->set_sortfield(0);
        EXPECT_EQ(rowsById(*table, 3), (Numbers{0, 1, 2}));
        change(*table);
        EXPECT_EQ(rowsById(*table, 3), rows);
    }
}

/// An index without any entry is built again at the next question.
TEST(CookieIndex, AnIndexThatFoundNothingIsBuiltAgain) {
    using Change = void (*)(oledb&);
    const Change changes[] = {
        [](oledb& t) { t.set_field(1, 1, cookieText(0).c_str()); },
        [](oledb& t) { t.get_record(1)->set_field(1, cookieText(0).c_str(), true); },
        [](oledb& t) { t.copy_record(1, cookieTable({cookieText(0)}).get(), 0); },
        [](oledb& t) { t.get_record(1)->read(*fileOf("x," + cookieText(0))); },
        [](oledb& t) { t.add_oledb(cookieTable({cookieText(0)}).get()); },
        [](oledb& t) { t.merge_all_matching(cookieTable({cookieText(0)}).get()); },
        [](oledb& t) { t.add_text(*fileOf("x," + cookieText(0)), 0, 9); },
    };
    for (const Change& change : changes) {
        const auto table = cookieTable({"", ""});
        EXPECT_EQ(table->getRowIndexByID(cookieNo(0)), -1);
        change(*table);
        EXPECT_EQ(table->getRowIndexByID(cookieNo(0)), table->get_num_records() == 2 ? 1 : 2)
            << "change " << &change - changes;
    }
    const auto bare = makeTable({"Name"}, {{"x"}, {cookieText(0)}});
    EXPECT_EQ(bare->getRowIndexByID(cookieNo(0)), -1);
    bare->set_fieldname(0, "cookie");
    EXPECT_EQ(bare->getRowIndexByID(cookieNo(0)), 1) << "a column that came later";
}

TEST(CookieIndex, InTheShownModeTheIndexIsAskedFirst) {
    const auto table = cookieTable({cookieText(0), cookieText(1), cookieText(2)});
    setTags(*table, "011");
    table->set_show_tags_only(1);
    EXPECT_EQ(table->findFirst("cookie", cookieText(2).c_str(), 0), 1);
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
    struct Case {
        const char* field;
        const char* value;
        int length;
        int row;
    };
    const Case cases[] = {
        {"scene", "12", 1, 2},     {"scene", "1", 0, 3},   {"scene", "12xxx", 2, 2},
        {"scene", "12xxx", 3, -1}, {"scene", "1", -1, 3},  {"scene", "", 0, 1},
        {"scene", nullptr, 0, 1},  {"scene", "1", 100, 3}, {"Cookie", "x", 0, 3},
        {"cookie", "X", 0, -1},    {"none", "1", 0, -1},   {nullptr, "1", 0, -1}};
    for (const Case& c : cases) {
        EXPECT_EQ(table->findFirst(c.field, c.value, c.length), c.row) << &c - cases;
    }
}

} // namespace
