// The row alone: slots and values in use, the text forms of numbers and flags, copies, lists.

#include "ole/oledb/dbrecord.h"

#include "misc/configb.h"
#include "support/Captured.h"
#include "support/Tables.h"
#include "tarn/StringList.h"

#include <gtest/gtest.h>

#include <limits>
#include <type_traits>

namespace {

static_assert(!std::is_copy_constructible_v<oledb> && !std::is_copy_assignable_v<oledb>);
static_assert(!std::is_move_constructible_v<oledb> && !std::is_move_assignable_v<oledb>);
static_assert(!std::is_convertible_v<LightweightString<char>, bool>);
static_assert(!std::is_convertible_v<LightweightString<char>, const char*>);
static_assert(!std::is_convertible_v<unsigned short, dbrecord>);

dbrecord recordOf(const Texts& values) {
    dbrecord record{static_cast<unsigned short>(values.size())};
    for (std::size_t i = 0; i < values.size(); ++i) {
        record.set_field(static_cast<int>(i), values[i].c_str(), false);
    }
    return record;
}

/// Slot i, also where it is not in use.
std::string slot(const dbrecord& record, int i) {
    char text[64];
    return record.in_field(i, text, 60) ? text : "(no slot)";
}

TEST(Record, TypeWords) {
    // clang-format off
    const std::vector<std::pair<const char*, int>> words = {
        {"text", 97}, {"TIMECODE", 116}, {"Timecode_S", 84}, {"char", 99}, {"T", 84}, {"t", 116},
        {"X", 88}, {"q", 113}, {"xy", 0}, {"", 0}, {"text ", 0}, {"\xE9", -23}, {nullptr, 0}
    };
    // clang-format on
    for (const auto& [word, type] : words) {
        EXPECT_EQ(static_cast<int>(oledb_string_to_fieldtype(word)), type) << (word ? word : "");
    }
    for (const DBFieldTypes::eType type : dbrecord::def_types) {
        ASSERT_EQ(type, DBFieldTypes::NONE);
    }
}

TEST(Record, LeadingBlanksGoTrailingOnesStay) {
    dbrecord record{1};
    const std::vector<std::pair<const char*, const char*>> stored = {
        {"   abc  ", "abc  "},     {"\t\n\v\f\r x", "x"}, {"\xA0 a", "\xA0 a"},
        {" \xC2\xA0", "\xC2\xA0"}, {"\x01 a", "\x01 a"},  {"a\n b", "a\n b"}};
    for (const auto& [text, kept] : stored) {
        EXPECT_EQ(record.set_field(0, text, true), 1);
        EXPECT_STREQ(record.get_field(0), kept);
        EXPECT_EQ(record.set_field(0, text, false), 1);
        EXPECT_STREQ(record.get_field(0), text);
    }
}

TEST(Record, EmptyTextKeepsANullSlotNull) {
    for (const char* const empty : {"   ", "", static_cast<const char*>(nullptr)}) {
        dbrecord record{1};
        EXPECT_EQ(record.set_field(0, empty, true), 1);
        EXPECT_TRUE(record.getField(0).isNull());
        EXPECT_EQ(record.changed(), 1);
        record.set_field(0, "x", true);
        record.set_field(0, empty, true);
        EXPECT_FALSE(record.getField(0).isNull());
        EXPECT_EQ(record.is_blank(), 1);
    }
}

TEST(Record, ASlotSetFromItsOwnText) {
    dbrecord record{1};
    record.set_field(0, "  abc", false);
    EXPECT_EQ(record.set_field(0, record.get_field(0), true), 1);
    record.set_field(0, record.get_field(0) + 2, true);
    EXPECT_STREQ(record.get_field(0), "c");
    const dbrecord& self = record;
    record = self;
    EXPECT_STREQ(record.get_field(0), "c");
}

TEST(Record, TextsStayWhereTheyAreWhileOthersChange) {
    dbrecord record = recordOf({"kept", "other"});
    const char* const kept = record.get_field(0);
    int widths = 0;
    record.resizeRecord(200, &widths, false);
    EXPECT_EQ(dbrecord(record, 0).get_field(0), kept) << "copies share their texts";
    EXPECT_STREQ(kept, "kept");
}

/// Every way a value can be handed over keeps its meaning; none slips into the form for flags.
TEST(Record, OverloadsTakeWhatTheyAreGiven) {
    const LightweightString<char> text{"abc"};
    const auto storedByRecord = [](const auto& value) {
        dbrecord record{1};
        EXPECT_EQ(record.set_field(0, value), 1);
        return std::string{record.get_field(0)};
    };
    const auto storedByTable = [](const auto& value) {
        const auto table = makeTable({"a"}, {{"old"}});
        EXPECT_EQ(table->set_field(0, 0, value), 1);
        ODBBase& base = *table;
        EXPECT_EQ(base.set_field(0U, 0U, value), 1);
        return std::string{table->get_field(0, 0)};
    };
    const auto check = [&](const auto& value, const char* expected) {
        EXPECT_EQ(storedByRecord(value), expected);
        EXPECT_EQ(storedByTable(value), expected);
    };
    check(text.c_str(), "abc");
    check(static_cast<const char*>(nullptr), "");
    check(0, "0");
    check(std::numeric_limits<int>::min(), "-2147483648");
    check(4294967295U, "4294967295");
    check(-5L, "-5");
    check(2.5, "2.50000000");
    check(1.5F, "1.50000000");
    check(true, "t");
    check(false, "f");
}

TEST(Record, NumbersOfAnySize) {
    Captured said;
    dbrecord record{1};
    const std::string invalid = "999999999999999967336168804116691273849533185806555472917961779471"
                                "29584592172786260873986845"
                                "5469056.00000000";
    record.set_field(0, 1e99);
    EXPECT_EQ(record.get_field(0), invalid);
    EXPECT_EQ(said.output, "assertion failed d != invalid_time at ole/oledb/dbrecord line 172\n");
    EXPECT_EQ(said.log + said.console, "");
    said.output.clear();
    record.set_field(0, std::numeric_limits<double>::max());
    EXPECT_EQ(std::strtod(record.get_field(0), nullptr), std::numeric_limits<double>::max());
    record.set_field(0, std::numeric_limits<double>::infinity());
    EXPECT_STREQ(record.get_field(0), "inf");
    EXPECT_TRUE(said.silent());
    const auto table = makeTable({"a"}, {{invalid}, {"DBL"}});
    double number = 0;
    EXPECT_EQ(table->in_field(0, 0, number), 1);
    EXPECT_EQ(number, 1e99);
}

TEST(Record, IndicesOutsideAnswerNothing) {
    dbrecord record = recordOf({"a", "b"});
    char untouched[] = "untouched";
    for (const int i :
         {-1, 2, 65535, 65536, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()}) {
        EXPECT_EQ(record.set_field(i, "x", true), 0) << i;
        EXPECT_EQ(record.set_field(i, 1) + record.set_field(i, 1.0) + record.set_field(i, true), 0);
        EXPECT_EQ(record.in_field(i, untouched, 3), 0) << i;
    }
    EXPECT_EQ(record.in_field(0, untouched, -1), 0);
    EXPECT_EQ(record.in_field(0, nullptr, 3), 0);
    EXPECT_STREQ(untouched, "untouched");
    EXPECT_EQ(record.get_field(2), nullptr);
    EXPECT_EQ(&record.getField(2), &dbrecord{1}.getField(700));
    EXPECT_EQ(valuesOf(record), (Texts{"a", "b"}));
}

TEST(Record, InFieldPadsAndEndsBehindItsLength) {
    struct Case {
        const char* value;
        int length;
        std::string after;
    };
    const Case cases[] = {{"abcdef", 4, {"abcd\0##", 7}},
                          {"ab", 4, {"ab\0\0\0##", 7}},
                          {"abcdef", 0, {"\0######", 7}}};
    for (const Case& c : cases) {
        std::string text(7, '#');
        EXPECT_EQ(recordOf({c.value}).in_field(0, text.data(), c.length), 1);
        EXPECT_EQ(text, c.after);
    }
}

TEST(Record, AssignmentShrinksWhatIsReadNotWhatIsWritten) {
    dbrecord record = recordOf({"1", "2", "3", "4", "5"});
    record = recordOf({"  a", "b ", ""});
    EXPECT_EQ(valuesOf(record), (Texts{"a", "b ", ""}));
    EXPECT_EQ(record.size(), 5);
    EXPECT_EQ(slot(record, 3), "4");
    EXPECT_EQ(record.set_field(4, "x", true), 1);
    EXPECT_EQ(record.get_field(4), nullptr);
    EXPECT_EQ(record.getField(4), "");
    EXPECT_EQ(slot(record, 4), "x");

    EXPECT_EQ(valuesOf(dbrecord{record, 0}), (Texts{"a", "b ", "", "4", "x"})) << "copies use all";
    record = recordOf({"1", "2", "3", "4", "5", "6", "7"});
    EXPECT_EQ(valuesOf(record), (Texts{"1", "2", "3", "4", "5"}));
    record = recordOf({});
    EXPECT_EQ(record.nfields(), 0);
    EXPECT_EQ(slot(record, 0), "1");
}

TEST(Record, CopiesHaveNeitherTableNorTag) {
    const auto table = makeTable({"a", "b"}, {{"1", "2"}});
    table->set_tag(0, 1);
    const dbrecord& row = *table->get_record(0);
    ASSERT_EQ(row.tag(), 1);
    ASSERT_EQ(row.get_container(), table.get());
    for (const dbrecord& copy : {dbrecord{row}, dbrecord{row, 0}, dbrecord{row, 4}}) {
        EXPECT_EQ(copy.tag(), 0);
        EXPECT_EQ(copy.get_container(), nullptr);
        EXPECT_EQ(copy.changed(), 0);
        EXPECT_STREQ(copy.get_field(1), "2");
    }
    EXPECT_EQ(valuesOf(dbrecord{row, 4}), (Texts{"1", "2", "", ""}));
    dbrecord narrowed{row, 1}; // not asked for by any caller; must only stay within its memory
    EXPECT_STREQ(narrowed.get_field(0), "1");
    EXPECT_EQ(narrowed.set_field(0, "x", true), 1);
}

TEST(Record, ResizeClearAndSpace) {
    dbrecord record = recordOf({"ab", ""});
    EXPECT_EQ(record.get_space_used(), 8U);
    EXPECT_EQ(dbrecord{65535}.get_space_used(), 65535U * 65535U) << "wraps at 32 bits";

    int widths[4] = {};
    record.resizeRecord(4, nullptr, true);
    record.resizeRecord(-1, widths, true);
    record.resizeRecord(65536, widths, true);
    record.resizeField(0, 5);
    EXPECT_EQ(record.size(), 2);
    record.resizeRecord(4, widths, true);
    EXPECT_EQ(valuesOf(record), (Texts{"ab", "", "", ""}));
    record.set_field(3, "d", true);
    record.resizeRecord(2, widths, true);
    record.resizeRecord(4, widths, false);
    EXPECT_EQ(valuesOf(record), (Texts{"ab", "", "", ""})) << "dropped slots come back empty";
    record.clear();
    EXPECT_TRUE(record.getField(0).isNull());
    EXPECT_EQ(record.nfields(), 4);
}

TEST(Record, ListsOfTexts) {
    dbrecord record = recordOf({"1", "2", "3"});
    StringList list;
    list.append(new StringRec{" a"});
    record.setFromStringList(list);
    record.asStringList(list);
    ASSERT_EQ(list.count(), 4U);
    EXPECT_EQ(std::string{list.text(1)} + list.text(2) + list.text(3), "a");
}

TEST(Record, WritingMarksRecordAndTable) {
    const auto table = makeTable({"a"}, {{"x"}});
    dbrecord& row = *table->get_record(0);
    ASSERT_EQ(row.changed() + table->get_changed(), 0);
    row.set_field(3, "no such slot", true);
    EXPECT_EQ(row.changed() + table->get_changed(), 0);
    row.set_field(0, "x", true);
    EXPECT_EQ(row.changed(), 1);
    EXPECT_EQ(table->get_changed(), 1);
    EXPECT_EQ(table->clear_changed(), 1);
    EXPECT_EQ(row.changed() + table->get_changed(), 0);
    row = recordOf({"y"});
    EXPECT_EQ(row.changed() + table->get_changed(), 2);
}

TEST(Record, UpdateExportsTheNameAndKnownColumns) {
    struct Case {
        Columns columns;
        Texts row;
        Texts block;
        int count;
    };
    const Case cases[] = {
        {{"notes"}, {"n"}, {}, 0},
        {{"NAME", "other"}, {"clip", "x"}, {"name=clip", "slate/take=clip"}, 0},
        {{"lab reel", "Comp Reel", "cam reel", "24p reel", "snd reel", "REEL", "shot",
          "description", "scene", "who", "notes", "name", "x"},
         {"1", "2", "3", "4", "5", "6", "7", "8", "9", "10", "11", "12"},
         {"24P_reel=4", "camreel=3", "comp_reel=2", "description=8", "lab_reel=1", "name=12",
          "notes=11", "reelid=6", "reelid1=5", "scene=9", "shot=7", "slate/take=12", "who=10"},
         11}};
    for (const Case& c : cases) {
        configb block;
        EXPECT_EQ(makeTable(c.columns, {c.row})->get_record(0)->update(&block), c.count);
        Texts exported;
        for (const auto& [key, value] : block) {
            exported.push_back(std::string{key.c_str()} + "=" + value.string().c_str());
        }
        EXPECT_EQ(exported, c.block);
    }
    configb block;
    EXPECT_EQ(dbrecord{3}.update(&block), 0);
    EXPECT_EQ(block.count(), 0U);
}

} // namespace
