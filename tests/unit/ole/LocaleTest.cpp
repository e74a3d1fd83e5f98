// Results are the same in every locale: numbers keep their point, bytes above 127 are no blanks,
// letters or marks. One comparison alone asks the locale, by contract.

#include "ole/oledb/oledb.h"
#include "support/Tables.h"
#include "tarn/TextFile.h"

#include <gtest/gtest.h>

#include <clocale>
#include <locale>
#include <string>

namespace {

/// All that can depend on the locale, as one text.
std::string results() {
    std::string out;
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
    EXPECT_EQ(plain.rfind("2.50000000|-1234567.12500000|read", 0), 0U);
    if (!std::setlocale(LC_ALL, GetParam())) {
        GTEST_SKIP() << "no locale " << GetParam();
    }
    EXPECT_EQ(results(), plain);
}

INSTANTIATE_TEST_SUITE_P(Names, LocaleTest, testing::Values("", "de_DE.UTF-8", "de_DE.ISO-8859-1"));

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
