// The comparisons and the sorting of whole tables.

#include "ole/oledb/dbsort.h"
#include "ole/oledb/oledb.h"
#include "support/CompareModel.h"
#include "support/Random.h"
#include "support/Tables.h"
#include "support/Views.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>

namespace {

using Compare = int (*)(const void*, const void*);

int sign(int n) {
    return (n > 0) - (n < 0);
}

/// Compares two rows of a prepared table.
int compared(Compare compare, const oledb& table, unsigned a, unsigned b) {
    dbrecord* const first = table.get_record(a);
    dbrecord* const second = table.get_record(b);
    return sign(compare(&first, &second));
}

// clang-format off
const Texts values = {
    "", " ", "\t\v", "a", "A", " a", "b", "ab", "aab", "aB", "2", "10", "02", "x2", "x10", "X2",
    "10:00:00:05", "10:00:00;05", "10:00:00:06", "10:00:00", "10:00:0", " 10:00:00;05x", "\xA0" "a",
    "\xE9", "z"};
// clang-format on

struct Setting {
    const char* what;
    std::vector<int> keys;
    DBFieldTypes::eType type;
    int offset;
    int force;

    friend void PrintTo(const Setting& setting, std::ostream* out) { *out << setting.what; }
};

const Setting settings[] = {
    {"natural", {0, 1, -1}, DBFieldTypes::TEXT, 0, 0},
    {"forced", {0, 1, -1}, DBFieldTypes::TEXT, 0, 1},
    {"offset", {0, 1, -1}, DBFieldTypes::TEXT, 2, 0},
    {"offset beyond all", {1, 0, -1}, DBFieldTypes::TEXT, INT_MAX, 0},
    {"from the end", {0, 1, -1}, DBFieldTypes::TEXT, -2, 0},
    {"from before the beginning", {0, -1}, DBFieldTypes::TEXT, INT_MIN, 0},
    {"forced from the end", {0, 1, -1}, DBFieldTypes::TEXT, -2, 1},
    {"timecodes", {0, 1, -1}, DBFieldTypes::TIMECODE, 0, 0},
    {"timecodes with offset", {0, 1, -1}, DBFieldTypes::TIMECODE, 3, 1},
    {"timecodes in database form", {0, 1, -1}, DBFieldTypes::TIMECODE_S, 0, 0},
    {"no key", {-1}, DBFieldTypes::TEXT, 0, 0},
};

/// Rows of all values in the first column and two in the second, and one that is blank.
Rows valueRows() {
    Rows rows;
    for (const std::string& value : values) {
        rows.push_back({value, "1"});
        rows.push_back({value, "2"});
    }
    rows.push_back({"a", ""});
    rows.push_back({"", ""});
    return rows;
}

int expectedSign(Compare compare, const CompareModel& model, const Texts& a, const Texts& b) {
    if (compare == dbr_cmp) {
        return sign(model.ascending(a, b));
    }
    return sign(compare == dbr_backcmp ? model.descending(a, b) : model.simple(a, b));
}

class Comparisons : public testing::TestWithParam<Setting> {};

TEST_P(Comparisons, FollowTheirRules) {
    const Rows rows = valueRows();
    const auto table = makeTable({{"k", GetParam().type}, "second"}, rows);
    std::vector<int> keys = GetParam().keys;
    table->set_sortfields(keys.data());
    table->set_sort_offset(GetParam().offset);
    table->sortPrepare(1, GetParam().force);
    CompareModel model;
    model.keys = {keys.begin(), keys.end() - 1};
    model.offset = GetParam().offset;
    model.force = GetParam().force != 0;
    model.timecodeKey = GetParam().type == DBFieldTypes::TIMECODE ? 0 : -1;
    for (const Compare compare : {dbr_cmp, dbr_backcmp, dbr_cmp_simple}) {
        for (unsigned a = 0; a < rows.size(); ++a) {
            for (unsigned b = 0; b < rows.size(); ++b) {
                ASSERT_EQ(compared(compare, *table, a, b),
                          expectedSign(compare, model, rows[a], rows[b]))
                    << testing::PrintToString(rows[a]) << testing::PrintToString(rows[b]);
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Settings, Comparisons, testing::ValuesIn(settings),
                         [](const auto& setting) {
                             std::string name = setting.param.what;
                             std::replace(name.begin(), name.end(), ' ', '_');
                             return name;
                         });

/// Pieces of texts at which orders go wrong: digit runs and their zeros, also longer than a byte
/// can count, case, blanks, bytes above 127 and below the blank, and a beginning that many texts
/// share.
const Texts pieces = {"",
                      "",
                      " ",
                      "\t",
                      "0",
                      "00",
                      "1",
                      "2",
                      "9",
                      "10",
                      "01",
                      "a",
                      "A",
                      "B",
                      "z",
                      "Z",
                      "[",
                      "@",
                      "-",
                      "/",
                      ":",
                      "\x01",
                      "\x7F",
                      "\x80",
                      "\xE9",
                      "\xFD",
                      "\xFE",
                      "\xFF",
                      "\xFE\xFF\xFF",
                      "12345678",
                      "123456789",
                      std::string(253, '0'),
                      std::string(254, '0'),
                      std::string(255, '0'),
                      std::string(256, '0'),
                      std::string(300, '7'),
                      "shared by many a text, up to where",
                      "Shared by many a text, up to the ",
                      "10:00:00:05",
                      "10:00:00;05",
                      "10:00:00:06",
                      "10:00:00",
                      "10:00:0"};

std::string nastyText(Random& random, const std::string& beginning) {
    std::string text = beginning;
    for (unsigned n = random.below(5); n > 0; --n) {
        text += random.pick(pieces);
    }
    return text;
}

/// Rows of which some are blank and some have no third value.
std::unique_ptr<oledb> nastyTable(Random& random) {
    Texts known(1 + random.below(60)); // values come again, so that further keys have their say
    const std::string beginning(random.oneIn(3) ? random.below(80) : 0, 'x');
    std::generate(known.begin(), known.end(), [&] { return nastyText(random, beginning); });
    const auto type = random.oneIn(2) ? DBFieldTypes::TIMECODE : DBFieldTypes::TEXT;
    auto table = makeTable({"a", "b", {"c", type}});
    dbrecord narrow{2};
    const unsigned sizes[] = {4, 4, 100, 100, 100, 100, 100, 2000};
    for (unsigned rows = random.below(random.pick(sizes)); rows > 0; --rows) {
        addRows(*table, {{random.pick(known), random.pick(known), random.pick(known)}});
        const auto last = static_cast<int>(table->get_num_records()) - 1;
        if (random.oneIn(9)) {
            table->copy_record(last, &narrow); // blank at first
            narrow.set_field(static_cast<int>(random.below(2)), random.pick(known).c_str(), false);
        }
    }
    return table;
}

std::vector<dbrecord*> recordsOf(const ODBBase& rows) {
    std::vector<dbrecord*> records(rows.get_num_records());
    for (unsigned i = 0; i < records.size(); ++i) {
        records[i] = rows.get_record(i);
    }
    return records;
}

/// Tables and views come out as the comparison in force has them, equal rows in their old order.
TEST(Sort, IsTheStableOrderOfTheComparison) {
    forSeeds(1500, [](Random& random) {
        const auto table = nastyTable(random);
        int keys[] = {static_cast<int>(random.below(4)) - 1, static_cast<int>(random.below(3)),
                      static_cast<int>(random.below(5)) - 1, -1};
        table->set_sortfields(keys);
        const int offsets[] = {0, 0, 1, 3, 12, INT_MAX, -1, -2, -12, INT_MIN};
        table->set_sort_offset(random.pick(offsets));
        const int dir = static_cast<int>(random.below(3)) - 1; // 0 is ascending, too
        const int force = random.oneIn(2) ? 1 : 0;
        table->sortPrepare(dir, force);
        const Compare compare = dir < 0 ? dbr_backcmp : dbr_cmp;
        std::vector<dbrecord*> expected = recordsOf(*table);
        std::stable_sort(
            expected.begin(), expected.end(),
            [compare](const dbrecord* a, const dbrecord* b) { return compare(&a, &b) < 0; });
        const ODBView view = viewOfAll(*table);
        view->sort(dir, force);
        ASSERT_EQ(recordsOf(*view.rep()), expected);
        table->sort(dir, force);
        ASSERT_EQ(recordsOf(*table), expected);
        ASSERT_EQ(comco > 0, expected.size() > 1);
        table->sort(dir, force); // in order already
        ASSERT_EQ(recordsOf(*table), expected);
    });
}

/// A missing record equals every other, so there is no one order; but nothing gets lost.
TEST(Sort, ViewsOfMissingRecordsKeepTheirEntries) {
    const auto table = makeTable({"k"}, {{"b"}, {"a"}, {""}, {"c"}});
    const ODBView view = viewOf(*table, {3, 9, 1, 0, 7, 2, 1, 8, 0, 3, 1}, "10100000001");
    table->set_sortfield(0);
    std::vector<std::pair<int, bool>> entries[3];
    for (auto& found : entries) {
        for (int i = 0; i < 11; ++i) {
            found.emplace_back(view->baseIndex(i), view->tag(i));
        }
        std::sort(found.begin(), found.end());
        view->sort(&found == entries ? 1 : -1, 0);
    }
    EXPECT_EQ(entries[1], entries[0]);
    EXPECT_EQ(entries[2], entries[0]);
}

TEST(Sort, KeysOutOfRangeCutTheListForGood) {
    const auto table = makeTable({"a", {"t", DBFieldTypes::TIMECODE}},
                                 {{"b", "10:00:00:01"}, {"a", "10:00:00;01"}, {"", ""}});
    int keys[] = {99, 0, -1};
    table->set_sortfields(keys);
    table->sortPrepare(1, 0);
    EXPECT_EQ(std::vector<int>(keys, keys + 3), (std::vector<int>{-1, 0, -1}));
    EXPECT_EQ(compared(dbr_cmp, *table, 0, 1), 0);
    EXPECT_EQ(compared(dbr_cmp, *table, 2, 1), 1) << "blank rows still come last";
    EXPECT_EQ(cmp_fields, keys);
    int behind[] = {0, 2, 1, -1};
    table->set_sortfields(behind);
    table->sortPrepare(1, 0);
    EXPECT_EQ(std::vector<int>(behind, behind + 4), (std::vector<int>{0, -1, 1, -1}));
    table->set_sortfield(7);
    table->sortPrepare(1, 0);
    EXPECT_EQ(cmp_fields[0], -1);
    EXPECT_EQ(behind[0], 0) << "the table's own list again";
}

TEST(Sort, OnlyTheLastTimecodeKeyIgnoresTheMark) {
    const auto table = makeTable({{"s", DBFieldTypes::TIMECODE}, {"e", DBFieldTypes::TIMECODE}},
                                 {{"10:00:00:01", "10:00:00:01"}, {"10:00:00;01", "10:00:00;01"}});
    int keys[] = {1, 0, -1};
    table->set_sortfields(keys);
    table->sortPrepare(1, 0);
    EXPECT_NE(compared(dbr_cmp, *table, 0, 1), 0) << "column e is compared as text";
    keys[1] = -1;
    table->sortPrepare(1, 0);
    EXPECT_EQ(compared(dbr_cmp, *table, 0, 1), 0);
    int cut[] = {0, 99, 1, 98, -1};
    table->set_sortfields(cut);
    table->sortPrepare(1, 0);
    EXPECT_EQ(std::vector<int>(cut, cut + 5), (std::vector<int>{0, -1, 1, -1, -1}));
    EXPECT_NE(compared(dbr_cmp, *table, 0, 1), 0) << "the last one may stand behind the cut";
}

TEST(Sort, TheTablePreparedLastSetsTheKeysForAll) {
    const auto first = makeTable({"a", "b"}, {{"1", "z"}, {"2", "y"}});
    const auto second = makeTable({"a", "b"});
    first->set_sortfield(0);
    second->set_sortfield(1);
    first->sortPrepare(1, 0);
    EXPECT_EQ(compared(dbr_cmp, *first, 0, 1), -1);
    EXPECT_EQ(comco, 1);
    second->sortPrepare(1, 0);
    EXPECT_EQ(comco, 0);
    EXPECT_EQ(compared(dbr_cmp, *first, 0, 1), 1);
    EXPECT_EQ(compared(dbr_backcmp, *first, 0, 1), -1);
    EXPECT_EQ(comco, 2);
    EXPECT_EQ(compared(dbr_cmp_simple, *first, 0, 1), 1);
    EXPECT_EQ(comco, 2) << "the simple comparison is not counted";
}

TEST(Sort, ValuesThatAreMissingCountAsEmpty) {
    const auto table = makeTable({"a", "b"}, {{"x", "1"}, {"x", "2"}, {"x", "3"}});
    dbrecord single{1};
    single.set_field(0, "x");
    table->copy_record(1, &single);
    table->set_sortfield(1);
    table->sortPrepare(1, 0);
    EXPECT_EQ(compared(dbr_cmp, *table, 1, 0), 1);
    EXPECT_EQ(compared(dbr_backcmp, *table, 1, 0), 1);
    EXPECT_EQ(compared(dbr_cmp_simple, *table, 1, 0), -1);
    table->sort(-1, 0);
    EXPECT_STREQ(table->get_field(0, 1), "3");
}

} // namespace
