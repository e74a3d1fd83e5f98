// Lines of a table file into a record and out again, compared with the slow reader and writer.

#include "ole/oledb/dbrecord.h"
#include "support/Captured.h"
#include "support/Random.h"
#include "support/TableFileModel.h"
#include "support/Tables.h"
#include "tarn/TextFile.h"

#include <gtest/gtest.h>

namespace {

TextFile fileOf(const Texts& lines) {
    TextFile file;
    for (const std::string& line : lines) {
        file.appendLine(line);
    }
    file.setLine(0);
    return file;
}

/// A line read into a record of `size` slots: "result nfields: slot|slot|..."; empty fields leave
/// the slots' dots.
std::string readInto(int size, const std::string& line) {
    dbrecord record{static_cast<unsigned short>(size)};
    for (int i = 0; i < size; ++i) {
        record.set_field(i, ".", true);
    }
    TextFile file = fileOf({line});
    const int result = record.read(file);
    EXPECT_TRUE(file.atEnd());
    std::string shown = std::to_string(result) + " " + std::to_string(record.nfields()) + ":";
    for (int i = 0; i < size; ++i) {
        char text[64] = {};
        record.in_field(i, text, 60);
        shown += (i == 0 ? " " : "|") + std::string{text};
    }
    return shown;
}

TEST(RecordText, OneLine) {
    struct Case {
        int size;
        const char* line;
        const char* expected;
    };
    // clang-format off
    const Case cases[] = {
        {3, "a,b,c", "3 3: a|b|c"}, {3, "\"a\",\"\",\"c\"", "3 3: a|.|c"},
        {2, "\"a\",\"b\",", "3 3: a|b"}, {1, "a,b,c,d", "2 2: a"},
        {2, "\"a \"\"quoted\"\" b\",x", "2 2: a \"quoted\" b|x"}, {2, "\"a, b\",c", "2 2: a, b|c"},
        {3, " \"a, b\"", "2 2: a|b|."}, {2, "\"  a  \",  b  ", "2 2: a|b"},
        {2, "\"a\"b\",c\"", "2 2: ab|c"}, {1, "C:\\new\\old\\", "1 1: C:\new\\old\\"},
        {1, "\"\\nabc\\n\"", "1 1: \nabc"}, {2, "\t\"a\",\"b\"", "3 3: .|a"},
        {3, "a,\x01", "2 2: a|.|."}, {2, "\"open, end", "1 1: open, end|."},
        {2, "\xFF\xA0,\x80", "2 2: \xFF\xA0|\x80"}, {2, ",,", "3 3: .|."}, {2, " \t\r ", "0 2: .|."},
    };
    // clang-format on
    for (const Case& c : cases) {
        EXPECT_EQ(readInto(c.size, c.line), c.expected) << c.line;
    }
}

/// Random lines full of everything that means something, and lines around the length that is used.
std::string randomLine(Random& random) {
    struct Piece {
        std::string_view alphabet;
        unsigned most;
    };
    static constexpr Piece kinds[] = {
        {"ab", 3}, {"ab,\" \\n\"", 7},      {"\"\",", 3},           {" \t\v\r", 3}, {"\\n", 4},
        {",", 1},  {"\x01\x1f\x7f\t\n", 2}, {"\x80\xA0\xE9\xFF", 3}};
    std::string line;
    const unsigned pieces = random.below(12);
    for (unsigned i = 0; i < pieces; ++i) {
        const Piece& piece = random.pick(kinds);
        const std::string mark = random.oneIn(4) ? "\"" : random.oneIn(4) ? "," : "";
        line += mark + random.text(piece.alphabet, piece.most) + mark;
    }
    if (random.oneIn(20)) {
        line.insert(random.below(static_cast<unsigned>(line.size()) + 1),
                    std::string(4080 + random.below(30), random.oneIn(3) ? ' ' : 'x'));
    }
    if (random.oneIn(40)) {
        line.insert(random.below(static_cast<unsigned>(line.size()) + 1), 1, '\0');
    }
    return line;
}

TEST(RecordText, ReadsAsTheSlowReaderDoes) {
    forSeeds(6000, [](Random& random) {
        const auto size = static_cast<unsigned short>(1 + random.below(6));
        dbrecord record{size};
        Texts slots(size);
        for (int i = 0; i < size; ++i) {
            slots[static_cast<std::size_t>(i)] = random.text("old ", 2);
            record.set_field(i, slots[static_cast<std::size_t>(i)].c_str(), false);
        }
        const Texts lines = {randomLine(random), randomLine(random)};
        TextFile file = fileOf(lines);
        FileModel::ReadRow model{0, size, slots};
        for (const std::string& line : lines) {
            model = FileModel::readRow(line, model.slots, model.nfields);
            ASSERT_EQ(record.read(file), model.result) << line;
            ASSERT_EQ(record.nfields(), model.nfields) << line;
            for (int i = 0; i < size; ++i) {
                std::string text(5000, '#');
                ASSERT_EQ(record.in_field(i, text.data(), 4999), 1);
                ASSERT_EQ(text.c_str(), model.slots[static_cast<std::size_t>(i)]) << line;
            }
        }
        ASSERT_TRUE(file.atEnd());
    });
}

TEST(RecordText, MoreFieldsThanSlotsAreCountedButNotThere) {
    dbrecord record{2};
    TextFile file = fileOf({"a,b,c"});
    ASSERT_EQ(record.read(file), 3);
    EXPECT_STREQ(record.get_field(2), "");
    EXPECT_EQ(record.getField(2), "");
    EXPECT_EQ(record.is_blank(), 0);
    TextFile out;
    record.write(out);
    EXPECT_EQ(out.lineView(0), "\"a\",\"b\",\"\"");
    EXPECT_EQ(valuesOf(dbrecord{record, 0}), (Texts{"a", "b"}));
    dbrecord target{5};
    target = record;
    EXPECT_EQ(valuesOf(target), (Texts{"a", "b", ""}));
}

TEST(RecordText, ABlankLineIsPassedOverAndMarksNothing) {
    const auto table = makeTable({"a"}, {{"old"}});
    dbrecord& row = *table->get_record(0);
    TextFile file = fileOf({"", "b"});
    EXPECT_EQ(row.read(file), 0);
    EXPECT_EQ(row.changed() + table->get_changed(), 0);
    EXPECT_STREQ(row.get_field(0), "old");
    EXPECT_EQ(row.read(file), 1);
    EXPECT_EQ(row.changed() + table->get_changed(), 2);
    EXPECT_STREQ(row.get_field(0), "b");
    EXPECT_EQ(row.read(file), 0) << "the end";
}

} // namespace
