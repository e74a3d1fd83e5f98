// Results are the same in every locale: numbers keep their point, bytes above 127 are no blanks,
// letters or marks. One comparison alone asks the locale, by contract.

#include "ole/interchange/ALE.h"
#include "ole/interchange/CSV.h"
#include "ole/oledb/oledb.h"
#include "support/Views.h"
#include "tarn/TextFile.h"
#include "unit/EnvironmentVariable.h"
#include "unit/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <clocale>
#include <locale>
#include <string>

namespace {

/// A log that is imported, sorted, searched, saved, loaded and exported; all files as one text.
std::string throughFiles() {
    const TemporaryFolder folder;
    folder.write("log", "Heading\nFIELD_DELIM\tTABS\nColumn\nNAME\tTITLE\tStart\tdate\nData\n"
                        "I\t1,5\t01:00:00:00\t0\ni\t1.5\t01:00:00:01\t1711846800\n"
                        "\xC4\xB1\t\xC4\xB0\t\t\nIz\tiZ\t23:59:59:24\t-0.5\n");
    const auto table = makeTable({"name", "title", {"start time", DBFieldTypes::TIMECODE}, "date"});
    EXPECT_TRUE(ALE::fillODB(*table, folder.wide("log")));
    table->sort(1, 1);
    const std::unique_ptr<dbrecord> query{table->make_dummy_record()};
    query->set_field(0, "iz");
    table->set_query(query.get());
    table->tag_matching_records(0);
    table->set_filename(folder.wide("t.odb"));
    EXPECT_EQ(table->save_text(), 4);
    oledb loaded{folder.wide("t.odb"), 100, true};
    const ODBView view{&loaded};
    view->displayAllRecords();
    view->sort(-1, 0);
    EXPECT_TRUE((CSV{view, FieldMap{view}}.writeTo(folder.wide("t.csv"))));
    return tagsOf(*table) + folder.read("t.odb") + folder.read("t.csv") +
           std::to_string(loaded.get_fieldnum("TITLE"));
}

/// All that can depend on the locale, as one text.
std::string results() {
    std::string out = throughFiles();
    const auto table = makeTable({"v", "w"}, {{"", "1"}, {"", "2"}});
    table->set_field(0, 0, 2.5);
    table->set_field(1, 0, -1234567.125);
    double number = 0;
    table->in_field(0, 0, number);
    double cut = 0;
    makeTable({"v"}, {{"2,5"}})->in_field(0, 0, cut);
    out += cut == 2 ? "" : "a decimal comma was read";
    out += std::string{table->get_field(0, 0)} + "|" + table->get_field(1, 0) + "|" +
           (number == 2.5 ? "read" : "not read");
    for (int byte = 128; byte < 256; ++byte) {
        const std::string one(1, static_cast<char>(byte));
        table->set_field(0, 0, (" " + one + " a").c_str());
        out += table->get_field(0, 0);
        TextFile file;
        file.appendLine(std::string_view{one + "a,\"" + one + "\"," + one});
        file.setLine(0);
        dbrecord record{3};
        out += std::to_string(record.read(file));
        for (const std::string& value : valuesOf(record)) {
            out += value + "|";
        }
        table->wholeWordSearch = 1;
        out += std::to_string(table->found_in((one + "a").c_str(), "a", 0));
        out += std::to_string(table->found_in((one + "ab" + one).c_str(), "ab", 0));
        out += std::to_string(table->found_in(("ab" + one + "c").c_str(), "ab;c", 1));
        table->wholeWordSearch = 0;
        for (int other = 128; other < 256; other += 7) {
            const std::string two(1, static_cast<char>(other));
            out += std::to_string(table->found_in(one.c_str(), two.c_str(), 0));
            out += std::to_string(table->set_fieldname(0, one.c_str())) +
                   std::to_string(table->get_fieldnum(two.c_str()));
        }
    }
    return out;
}

/// A locale for the length of a test, the C locale afterwards.
class LocaleTest : public testing::TestWithParam<const char*> {
protected:
    ~LocaleTest() override { std::setlocale(LC_ALL, "C"); }
};

TEST_P(LocaleTest, ChangesNoResult) {
    const std::string plain = results();
    EXPECT_NE(plain.find("2.50000000|-1234567.12500000|read"), std::string::npos);
    EXPECT_NE(plain.find("\"Iz\",\"iZ\",\"23:59:59:24\""), std::string::npos)
        << plain.substr(0, 500);
    if (!std::setlocale(LC_ALL, GetParam())) {
        GTEST_SKIP() << "no locale " << GetParam();
    }
    EXPECT_EQ(results(), plain);
}

INSTANTIATE_TEST_SUITE_P(Names, LocaleTest,
                         testing::Values("", "de_DE.UTF-8", "de_DE.ISO-8859-1", "tr_TR.UTF-8",
                                         "tr_TR.ISO-8859-9"));

/// Dates alone are told in local time, where they are exported as dates.
TEST(TimeZones, ChangeNoResult) {
    EnvironmentVariable zone{"TZ", "UTC0"};
    const std::string plain = results();
    for (const char* const name : {"<+14>-14", "<-12>12", "CET-1CEST,M3.5.0,M10.5.0/3",
                                   "<+1030>-10:30<+11>-11,M10.1.0,M4.1.0"}) {
        zone.set(name);
        EXPECT_EQ(results(), plain) << name;
    }
}

/// The locale of the C++ library may have a decimal comma and groups of thousands, too.
TEST(LocaleOfStreams, ChangesNoResult) {
    struct Comma : std::numpunct<char> {
        char do_decimal_point() const override { return ','; }
        char do_thousands_sep() const override { return '.'; }
        std::string do_grouping() const override { return "\3"; }
    };
    const std::string plain = results();
    const std::locale before = std::locale::global(std::locale{std::locale::classic(), new Comma});
    EXPECT_EQ(results(), plain);
    const auto table = makeTable({"v"}, {{""}});
    table->set_field(0, 0, 1234567);
    EXPECT_STREQ(table->get_field(0, 0), "1234567");
    std::locale::global(before);
}

} // namespace
