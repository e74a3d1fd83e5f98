// ALE logs into tables: heading, column names, values, key numbers, film labels, real logs.

#include "ole/interchange/ALE.h"
#include "ole/oledb/oledb.h"
#include "support/Captured.h"
#include "support/KeyNumberModel.h"
#include "support/Random.h"
#include "support/Tables.h"
#include "unit/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <sstream>

namespace {

using Refusal = ALE::Report::Refusal;

/// A log of heading lines, column names and data lines; '>' stands for a tab.
std::string logOf(const Texts& heading, const std::string& names, const Texts& data,
                  const std::string& lineEnd = "\n") {
    std::string text = "Heading\n";
    for (const std::string& line : heading) {
        text += line + "\n";
    }
    text += "Column\n" + names + "\nData\n";
    for (const std::string& line : data) {
        text += line + "\n";
    }
    std::string log;
    for (const char c : text) {
        log += c == '>' ? "\t" : (c == '\n' ? lineEnd : std::string(1, c));
    }
    return log;
}

class Ale : public testing::Test {
protected:
    Ale() { setenv("OLE_PREFS_DIR", folder_.path("no preferences").c_str(), 1); }

    /// Imports a log into a table and returns the result; the report is kept.
    bool import(oledb& table, const std::string& log) {
        folder_.write("log", log);
        report_ = {};
        const unsigned before = table.get_num_records();
        const bool result = ALE::fillODB(table, folder_.wide("log"), report_);
        EXPECT_EQ(report_.recordsAdded, table.get_num_records() - before);
        EXPECT_EQ(report_.rowLines.size(), report_.recordsAdded);
        return result;
    }
    /// The rows that data lines give in a table of the named columns.
    Rows rowsFrom(const Columns& columns, const std::string& names, const Texts& data) {
        const auto table = makeTable(columns);
        const bool result = import(*table, logOf({}, names, data));
        EXPECT_EQ(result, table->get_num_records() != 0);
        return rowsOf(*table);
    }
    /// What becomes of a key number; '#' where no row was made of it.
    std::string keyNumber(const std::string& value) {
        const Rows rows = rowsFrom({"start keycode", "Name"}, "Name>KN Start", {"x>" + value});
        return rows.empty() ? "#" : rows[0][0];
    }
    /// The film label that a heading gives.
    std::string filmLabel(const Texts& heading) {
        const auto table = makeTable({"Name", "film label_std"});
        import(*table, logOf(heading, "Name", {"x"}));
        return table->get_field(0, 1);
    }

    TemporaryFolder folder_;
    ALE::Report report_;
};

TEST_F(Ale, ColumnsGoToTheirFields) {
    // clang-format off
    const std::vector<std::pair<const char*, const char*>> names = {
        {"Tracks", "chans"}, {"Start", "start time"}, {"End", "end time"}, {"Tape", "reel"},
        {"Note", "notes"}, {"Take", "shot"}, {"DailyRoll", "lab reel"}, {"Labroll", "comp reel"},
        {"Camroll", "cam reel"}, {"Soundroll", "snd reel"}, {"Sound TC", "snd start"},
        {"Film TC", "Start camcode"}, {"Ink Number", "start inkcode"},
        {"KN Start", "start keycode"}, {"Shoot Date", "cam_date"}, {"TC 24", "start 24p code"},
        {"Perf", "start perf"}, {"SoundFile", "orig soundfile"}, {"own name", "Own Name"}
    };
    // clang-format on
    Columns columns;
    for (const auto& [column, field] : names) {
        columns.emplace_back(field);
    }
    columns.emplace_back("Start");
    const auto table = makeTable(columns);
    for (std::size_t i = 0; i < names.size(); ++i) {
        EXPECT_EQ(ALE::findODBColumnFor(*table, names[i].first), static_cast<int>(i));
    }
    for (const char* const none : {"TRACKS", "tape", "", static_cast<const char*>(nullptr)}) {
        EXPECT_EQ(ALE::findODBColumnFor(*table, none), -1);
    }
    EXPECT_EQ(ALE::findODBColumnFor(*makeTable({"Start"}), "Start"), -1)
        << "a built-in name never falls back on the field of its own name";
}

TEST_F(Ale, WhatIsNoLog) {
    struct Case {
        const char* what;
        std::string log;
        Refusal refusal;
    };
    const Case cases[] = {
        {"empty", "", Refusal::NoDataLine},
        {"no Data", "Heading\nA\tb\nColumn\nName\nx\n", Refusal::NoDataLine},
        {"small data", "Heading\nA\tb\nColumn\nName\ndata\nx\n", Refusal::NoDataLine},
        {"no Column", "Heading\nA\tb\nName\nData\nx\n", Refusal::NoColumnLine},
        {"Column behind Data", "Heading\nA\tb\nData\nColumn\nName\n", Refusal::NoColumnLine},
        {"CR only", "Heading\rA\tb\rColumn\rName\rData\rx\r", Refusal::NoDataLine},
        {"two bytes a letter", std::string("\xFF\xFE\nD\0a\0t\0a\0", 11), Refusal::NoDataLine},
    };
    for (const Case& c : cases) {
        const auto table = makeTable({"Name"});
        EXPECT_FALSE(import(*table, c.log)) << c.what;
        EXPECT_EQ(report_.refusal, c.refusal) << c.what;
        EXPECT_EQ(table->get_num_params() + table->get_num_records(), 0U) << c.what;
    }
    const auto table = makeTable({"Name"}, {{"x"}});
    EXPECT_FALSE(ALE::fillODB(*table, folder_.wide("log"))) << "no log, though the table has rows";
    for (const char* const name : {"missing", ""}) {
        ALE::Report report;
        EXPECT_FALSE(ALE::fillODB(*table, folder_.wide(name), report));
        EXPECT_EQ(report.refusal, Refusal::Unreadable);
    }
}

TEST_F(Ale, HeadingLinesOfTwoPiecesBecomeParameters) {
    const auto table = makeTable({"Name"});
    EXPECT_TRUE(import(*table,
                       "FIRST\tline\nFIELD_DELIM\tTABS\nthree\tpieces\there\nalone\n\n"
                       "TAPE\t\t0123456789\nFPS\t25\nfps\t24\n\tlead\tx\nColumn\nName\nData\nx\n"));
    EXPECT_EQ(paramsOf(*table),
              (Texts{"OLEDB=Rev 1", "FIELD_DELIM=TABS", "TAPE=\t0123456789", "FPS=24", "lead=x"}));
    const auto noRows = makeTable({"Name"});
    EXPECT_FALSE(import(*noRows, logOf({"FPS>25"}, "Name", {})));
    EXPECT_EQ(report_.refusal, Refusal::None);
    EXPECT_EQ(paramsOf(*noRows), (Texts{"OLEDB=Rev 1", "FPS=25"}));
    const auto direct = makeTable({"Name"});
    EXPECT_TRUE(import(*direct, "Column\nName\nData\nx\n")) << "a log without heading";
    EXPECT_EQ(rowsOf(*direct), (Rows{{"x"}}));
}

TEST_F(Ale, WordsAreTakenAtTheBeginningOfLines) {
    EXPECT_EQ(rowsFrom({"Name"}, "Name", {"x", "Data", "Column"}),
              (Rows{{"x"}, {"Data"}, {"Column"}}));
    const auto table = makeTable({"Name", "B"});
    EXPECT_TRUE(
        import(*table, "Heading\nColumns, the first counts\nName\nColumn\nB\nDatabase\nx\n"));
    EXPECT_EQ(rowsOf(*table), (Rows{{"x", ""}}));
    const auto early = makeTable({"Name"});
    EXPECT_FALSE(import(*early, "Heading\nData rate\t5\nColumn\nName\nData\nx\n"));
    EXPECT_EQ(report_.refusal, Refusal::NoColumnLine);
}

TEST_F(Ale, LinesAreCutAtTabs) {
    const Columns columns = {"a", "b", "c"};
    EXPECT_EQ(
        rowsFrom(columns, "a>b>c", {"1>>3", "1>2>", ">2>3", ">>3", "\"1>2\">3"}),
        (Rows{{"1", "", "3"}, {"1", "2", ""}, {"2", "3", ""}, {"", "3", ""}, {"\"1", "2\"", "3"}}));
    EXPECT_EQ(rowsFrom(columns, "a>b>c", {"", "  >  ", "\v", "1"}).size(), 2U)
        << "lines of blanks and tabs are no data";
    EXPECT_EQ(rowsFrom(columns, "a>b>c", {"1>2>3>4", "x"}), (Rows{{"x", "", ""}}));
    ASSERT_EQ(report_.skippedLines.size(), 1U);
    EXPECT_EQ(report_.skippedLines[0].line, 5U);
    EXPECT_EQ(report_.skippedLines[0].fields, 4U);
    EXPECT_EQ(report_.skippedLines[0].reason, ALE::Report::SkipReason::TooManyFields);
    EXPECT_EQ(report_.rowLines, (std::vector<unsigned>{6}));
}

TEST_F(Ale, AnEmptyTitleMergesIntoTheNext) {
    EXPECT_EQ(rowsFrom({"a", "b"}, "a>>b", {"1>2", "1>2>3"}), (Rows{{"1", ""}}));
    EXPECT_EQ(report_.columns.size(), 2U);
    EXPECT_EQ(report_.columnsWithoutField, (std::vector<LightweightString<char>>{"\tb"}));
    EXPECT_EQ(rowsFrom({"a"}, ">a", {"1"}), (Rows{{"1"}}));
    const auto table = makeTable({"Name"});
    EXPECT_FALSE(import(*table, "Heading\nFPS\t25\nColumn\n\nName\n\nData\na\tb\n"));
    EXPECT_STREQ(table->get_param_val("FPS"), "25");
    EXPECT_EQ(report_.skippedLines.size(), 1U) << "a blank line where the names should stand";
}

TEST_F(Ale, ValuesAreJoinedAndTrimmed) {
    const Columns columns = {"notes", "Name"};
    EXPECT_EQ(rowsFrom(columns, "Note>notes", {"a>b", "NG>", "NG> >", ">b", "  a  >  b  ", "a>\t"}),
              (Rows{{"a, b", ""}, {"NG", ""}, {"NG,", ""}, {"b", ""}, {"a,   b", ""}, {"a,", ""}}));
    EXPECT_EQ(rowsFrom(columns, "Note>notes>Name>NOTES", {"1>2>n>3", "1>>n>", "1>>n>3"}),
              (Rows{{"1, 2, 3", "n"}, {"1,", "n"}, {"1,, 3", "n"}}));
    ASSERT_EQ(report_.sharedFields.size(), 1U);
    EXPECT_EQ(report_.sharedFields[0].field, "notes");
    EXPECT_EQ(report_.sharedFields[0].columns,
              (std::vector<LightweightString<char>>{"Note", "notes", "NOTES"}));
    EXPECT_EQ(rowsFrom(columns, "Name>dropped", {"x>y", "  >  x"}), (Rows{{"", "x"}, {"", ""}}));
    EXPECT_EQ(report_.columnsWithoutField, (std::vector<LightweightString<char>>{"dropped"}));
}

// Joining them one to the next would take minutes here.
TEST_F(Ale, ManyColumnsOfOneField) {
    constexpr std::size_t n = 1'000'000;
    std::string names = "Note";
    std::string values = "x";
    for (std::size_t i = 1; i < n; ++i) {
        names += ">Note";
        values += ">x";
    }
    const auto table = makeTable({"notes"});
    EXPECT_TRUE(import(*table, logOf({}, names, {values})));
    EXPECT_EQ(std::string{table->get_field(0, 0)}.size(), 3 * n - 2);
}

TEST_F(Ale, FilmFormats) {
    // clang-format off
    const std::vector<std::pair<const char*, const char*>> formats = {
        {"FILM_FORMAT>16mm", "F16"}, {"FILM_FORMAT>1 6 m m", "F16"},
        {"FILM_FORMAT>35mm, 3perf", "F353"}, {"FILM_FORMAT>35mm (3perf)", "F353"},
        {"FILM_FORMAT>35MM, 3PERF", "F35"}, {"FILM_FORMAT>35mm,4perf", "F35"},
        {"FILM_FORMAT>>16mm", "F35"}, {"FILM_FORMAT 16mm", "F35"}, {"FILM_FORMATS>16mm", "F16"},
        {"FILM_FORMAT>", "F35"}, {" FILM_FORMAT>16mm", ""}, {"film_format>16mm", ""}
    };
    // clang-format on
    for (const auto& [line, label] : formats) {
        EXPECT_EQ(filmLabel({line}), label) << line;
    }
    EXPECT_EQ(filmLabel({}), "");
    EXPECT_EQ(filmLabel({"FILM_FORMAT>16mm", "FILM_FORMAT>35mm(3perf)"}), "F353")
        << "the last counts";
    const auto own = makeTable({"film label_std"});
    import(*own, logOf({"FILM_FORMAT>16mm"}, "film label_std", {"own"}));
    EXPECT_EQ(rowsOf(*own), (Rows{{"F16"}})) << "written over an imported value";
}

TEST_F(Ale, KeyNumbers) {
    // clang-format off
    const std::vector<std::pair<const char*, const char*>> numbers = {
        {"KJ 12 3456 7890+12", "KJ1234567890+12"}, {"123-4567+08", "____123-4567+08"},
        {"KX654321-0000+00", "KX6543210000+00"}, {"??", "??"}, {"???", "____________???"},
        {"1234567890&12345", "__1234567890+12"}, {"1234567890123456", ""}, {"12345678901234+5", ""},
        {"AB-CD EF GH IJ KL+123456", "ABCDEFGHIJKL+12"}, {"                KX 1+23", "_________KX1+23"}
    };
    // clang-format on
    for (const auto& [value, stored] : numbers) {
        EXPECT_EQ(keyNumber(value), stored) << value;
    }
    EXPECT_EQ(rowsFrom({"start keycode"}, "KN Start>start keycode", {"1234567>x"}),
              (Rows{{"________1234567, x"}}))
        << "only the column of this name is normalised";
    EXPECT_EQ(rowsFrom({"start keycode"}, "start keycode>KN Start", {"ab>1234"}),
              (Rows{{"_______ab, 1234"}}))
        << "after joining";
    EXPECT_EQ(rowsFrom({"start keycode", "x"}, "KN Start>KN Start", {"12>34"}),
              (Rows{{"_________12, 34", ""}}))
        << "of two columns with the name the later";
    EXPECT_EQ(rowsFrom({"kn start"}, "kn start", {"12"}), (Rows{{"12"}}));
}

TEST_F(Ale, RandomKeyNumbersFollowTheRule) {
    forSeeds(20, [this](Random& random) {
        Texts data;
        Texts expected;
        for (int i = 0; i < 50; ++i) {
            std::string value = random.text("KX0123456-+& ", 30);
            value.erase(value.find_last_not_of(' ') + 1);
            data.push_back("x>" + value);
            std::string stored = value.empty() ? "" : keyNumberByTheRule(value);
            stored.erase(0, std::min(stored.find_first_not_of(' '), stored.size()));
            expected.push_back(stored);
        }
        const auto table = makeTable({"Name", "start keycode"});
        ASSERT_TRUE(import(*table, logOf({}, "Name>KN Start", data)));
        ASSERT_EQ(columnOf(*table, 1), expected);
    });
}

TEST_F(Ale, LineEndsZerosAndHighBytes) {
    const auto crlf = makeTable({"Name", "notes"});
    EXPECT_TRUE(import(
        *crlf, logOf({"FILM_FORMAT>16mm", "FPS>25"}, "Name>notes", {"x>y", "", "z"}, "\r\n")));
    EXPECT_EQ(rowsOf(*crlf), (Rows{{"x", "y"}, {"z", ""}}));
    EXPECT_STREQ(crlf->get_param_val("FPS"), "25");
    const auto bytes = makeTable({"Name", "notes"});
    EXPECT_TRUE(import(
        *bytes, logOf({}, "Name>notes", {"\xFF\x80>\xC2\xA0 \xA0", std::string("a\0b>c", 5)})));
    EXPECT_STREQ(bytes->get_field(0, 0), "\xFF\x80");
    EXPECT_STREQ(bytes->get_field(0, 1), "\xC2\xA0 \xA0");
    EXPECT_STREQ(bytes->get_field(1, 0), "a");
    const std::string uncut = logOf({}, "Name", {"x", "y"});
    const auto noEnd = makeTable({"Name"});
    EXPECT_TRUE(import(*noEnd, uncut.substr(0, uncut.size() - 1)));
    EXPECT_EQ(columnOf(*noEnd, 0), (Texts{"x", "y"}));
}

TEST_F(Ale, ATableThatTakesNoRows) {
    const auto table = makeTable({"Name", "film label_std"}, {{"x", ""}, {"y", ""}});
    table->set_tag(0, 1);
    table->set_show_tags_only(1);
    EXPECT_TRUE(import(*table, logOf({"FILM_FORMAT>16mm"}, "Name", {"1", "2"})));
    EXPECT_EQ(report_.skippedLines.size(), 2U);
    table->set_show_tags_only(0);
    EXPECT_EQ(rowsOf(*table), (Rows{{"x", ""}, {"y", ""}}));
}

TEST_F(Ale, CutAndGarbledLogsDoNoHarm) {
    const std::string whole = logOf({"FILM_FORMAT>16mm", "FPS>25"}, "Name>KN Start>Note>notes",
                                    {"a>KJ 12 3456 7890+12>b>c", "d>>>e"}, "\r\n");
    for (std::size_t cut = 0; cut <= whole.size(); ++cut) {
        const auto table = makeTable({"Name", "start keycode", "notes", "film label_std"});
        import(*table, whole.substr(0, cut));
        ASSERT_LE(table->get_num_records(), 2U);
    }
    forSeeds(500, [&](Random& random) {
        std::string log = whole;
        for (int i = 0; i < 4; ++i) {
            const unsigned at = random.below(static_cast<unsigned>(log.size()));
            log.replace(at, random.below(4), random.text(std::string_view{"\t\n\r\0\xFF+x", 7}, 4));
        }
        const auto table = makeTable({"Name", "start keycode", "notes", "film label_std"});
        const bool result = import(*table, log);
        ASSERT_EQ(result, table->get_num_records() != 0);
    });
}

/// Logs that other people's programs wrote: the number of rows, and cells of the first or last row.
TEST_F(Ale, RealLogs) {
    const char* const logs = std::getenv("OLE_REAL_LOGS");
    if (!logs) {
        GTEST_SKIP() << "OLE_REAL_LOGS names no folder of real logs";
    }
    struct Case {
        const char* file;
        unsigned rows;
        bool first;
        const char* cells;
    };
    // clang-format off
    const Case cases[] = {
        {"wide-129-columns.ale", 4, false, "Name=Something|end time=01:00:04:06"},
        {"one-line-heading-crlf.ale", 2, true, "Name=19A-1xa|chans=VA1|start time=04:00:00:00|"
         "reel=3NY004|shot=1xa|start keycode=KX6543210000+00|Start camcode=13:18:25:14|"
         "start 24p code=04:00:00:00|comp reel=A007C001_140720_R2E4|cam reel=XA007|cam_date=07/21/14"},
        {"custom-raster.ale", 1, true, "Name=A118_C029_1102JR|start time=14:40:02:11|reel=|chans="},
        {"pal-cdl.ale", 4, true, "Name=A005_C010_0501J0|cam_date=20190501|film label_std=F35"},
        {"dailies-245-columns.ale", 6, false, "Name=469C-4-6|chans=VA1A2A3A4A5"},
        {"film-24p-ntsc.ale", 5, true, "Name=01|start keycode=_______-0003+00|start perf=3"},
        {"minimal-ntsc.ale", 1, true, "Name=CU Josh & Mary|end time=01:15:05:00|reel="},
        {"scene-take-rolls.ale", 28, false, "Name=101D-6b|cam reel=B096|reel=B096C015_111215_R1XE"},
        {"blank-lines.ale", 0, true, ""}, {"cr-only.ale", 0, true, ""},
    };
    // clang-format on
    const Columns columns = {"Name",          "chans",         "start time", "end time",
                             "reel",          "shot",          "comp reel",  "cam reel",
                             "Start camcode", "start keycode", "cam_date",   "start 24p code",
                             "start perf",    "film label_std"};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.file);
        const auto table = makeTable(columns);
        const auto path = std::filesystem::path{logs} / c.file;
        EXPECT_EQ(ALE::fillODB(*table, pathFromBytes(path.string())), c.rows != 0);
        ASSERT_EQ(table->get_num_records(), c.rows);
        std::istringstream cells{c.cells};
        for (std::string cell; std::getline(cells, cell, '|');) {
            const std::string field = cell.substr(0, cell.find('='));
            const char* const value = table->get_field(c.first ? 0 : c.rows - 1, field.c_str());
            EXPECT_EQ(field + "=" + value, cell);
        }
    }
}

} // namespace
