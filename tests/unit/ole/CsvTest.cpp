// CSV export: random tables against a plain writer, conversions, and what is not written.

#include "ole/interchange/CSV.h"
#include "misc/CurrentProject.h"
#include "misc/date_def.h"
#include "support/Random.h"
#include "support/Views.h"
#include "tarn/TextFile.h"
#include "unit/ChildProcess.h"
#include "unit/TemporaryFolder.h"

#include <gtest/gtest.h>
#include <limits>

namespace {

using Type = DBFieldTypes;

std::string written(const CSV& csv) {
    const TemporaryFolder folder;
    EXPECT_TRUE(csv.writeTo(folder.wide("out.csv")));
    return folder.read("out.csv");
}

std::string valueOf(const std::string& text, Type::eType type) {
    const std::string value = CSV::convertField(text.c_str(), type).c_str();
    return text.find(',') == std::string::npos ? value : '"' + value + '"';
}

TEST(Csv, RandomTablesAreWrittenAsThePlainWriterDoes) {
    forSeeds(100, [](Random& random) {
        Columns columns = {{"a 1", Type::TEXT}, {"\xC3\xA9", Type::DOUBLE}, {"1b", Type::DOS_DATE}};
        columns.resize(1 + random.below(3), "");
        Rows rows(1 + random.below(30), Texts(columns.size()));
        for (Texts& row : rows) {
            for (std::string& value : row) {
                value = random.text(random.oneIn(2) ? "0123456789.-" : "a, \"\n\r\t\xC3\xA9", 20);
            }
        }
        const auto table = makeTable(columns, rows);
        ODBView view{table.get()};
        CSV csv{view};
        for (int i = 0; i < csv.count(); ++i) {
            csv.swap(i, static_cast<int>(random.below(static_cast<unsigned>(csv.count()))));
            csv.setVisible(i, i == 0 || !random.oneIn(3));
        }
        const auto line = [&csv](auto valueAt) {
            std::string text;
            for (int i = 0; i < csv.numVisible(); ++i) {
                text += i > 0 ? "," : "";
                text += valueAt(static_cast<unsigned>(csv.getVisibleFieldIndex(i)));
            }
            return text + "\r\n";
        };
        std::string expected =
            line([&table](unsigned col) { return col == 0 ? "A 1" : table->get_fieldname(col); });
        expected += line([](unsigned) { return ""; });
        for (unsigned n = random.below(40); n > 0; --n) {
            const unsigned row = random.below(static_cast<unsigned>(rows.size()));
            view->append(static_cast<int>(row));
            expected +=
                line([&](unsigned col) { return valueOf(rows[row][col], columns[col].type); });
        }
        ASSERT_EQ(written(csv), expected);
    });
}

TEST(Csv, SecondsAndDates) {
    const auto seconds = [](const char* text) {
        return std::string{CSV::convertField(text, Type::DOUBLE).c_str()};
    };
    EXPECT_EQ(seconds("3599.96"), "00:59:59:24");
    EXPECT_EQ(seconds("no number"), "00:00:00:00");
    for (const char* const none : {"1e99", "-1e99", "1e999", "nan", "-inf", "360000", "1e18"}) {
        EXPECT_EQ(seconds(none), "") << none;
    }
    const unsigned long before = Tarn::CurrentProject::readCount();
    Tarn::CurrentProject::setFrameRate({30000, 1001});
    Tarn::CurrentProject::setUseDropFrameTimecode(true);
    EXPECT_EQ(seconds("60.06"), "00:01:00;02");
    Tarn::CurrentProject::setFrameRate({std::numeric_limits<int>::max(), 1});
    EXPECT_EQ(seconds("359999"), "99:59:59:00");
    Tarn::CurrentProject::setFrameRate({});
    Tarn::CurrentProject::setUseDropFrameTimecode(false);
    EXPECT_EQ(Tarn::CurrentProject::readCount() - before, 4U) << "asked for each value";
    EXPECT_EQ(CSV::convertField("86400", Type::DOS_DATE), date_def{"86400"}.get_all(0));
    EXPECT_EQ(CSV::convertField("some day", Type::DOS_DATE), "");
    EXPECT_TRUE(CSV::convertField(nullptr, Type::TEXT).isNull());
}

TEST(Csv, WhatTheMapAndTheViewHaveNot) {
    const auto table = makeTable({"reel", "notes", {"", Type::TEXT}}, {{"A,B", "say \"hi\"", "x"}});
    FieldMap map{*table};
    map.append("gone", true);
    EXPECT_EQ(written(CSV{viewOfAll(*table), map}), "Reel,Notes,,\r\n,,,\r\n")
        << "the map's own view is exported, which shows nothing";
    const ODBView view = viewOf(*table, {0, 7});
    map.setSourceDb(view);
    EXPECT_EQ(written(CSV{ODBView{}, map}),
              "Reel,Notes,,\r\n,,,\r\n\"A,B\",say \"hi\",,\r\n,,,\r\n")
        << "no value for a column without a name, a lost name, a row that is not there";
    view->set_param_val(FieldMap::parameterName, "2 -1");
    CSV one{view};
    EXPECT_EQ(written(one), "Notes\r\n\r\nsay \"hi\"\r\n\r\n");
    const TemporaryFolder folder;
    EXPECT_TRUE(one.writeTo(folder.wide("missing/out.csv"))) << "the save is not looked at";
    folder.write("out.csv", "before");
    EXPECT_TRUE(inChildWithFullDisk(9, [&] { return one.writeTo(folder.wide("out.csv")); }));
    TextFile file;
    one.setName(0, "gone");
    EXPECT_FALSE(one.writeHeader(file)) << "no name at all";
    one.setVisible(0, false);
    EXPECT_FALSE(one.writeTo(folder.wide("out.csv")));
    EXPECT_EQ(folder.read("out.csv"), "before") << "neither a failed save nor an empty one";
    EXPECT_EQ(folder.names(), (std::set<std::string>{"out.csv"}));
    one.writeRecord(file, 0);
    EXPECT_EQ(file.numLines(), 1U) << "an empty line";
    FieldMap noView;
    noView.append("reel", true);
    EXPECT_FALSE((CSV{view, noView}.writeTo(folder.wide("out.csv"))));
}

} // namespace
