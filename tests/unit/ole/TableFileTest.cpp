// Table files: what is written, what is read, what is lost on the way, and how loading fails.

#include "ole/oledb/oledb.h"
#include "support/Captured.h"
#include "support/NoticeRecorder.h"
#include "support/Random.h"
#include "support/TableFileModel.h"
#include "support/Tables.h"
#include "tarn/TextFile.h"
#include "unit/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

constexpr int allRows = std::numeric_limits<int>::max();

std::string joined(const Texts& lines) {
    std::string text;
    for (const std::string& line : lines) {
        text += line + "\r\n";
    }
    return text;
}

class TableFile : public testing::Test {
protected:
    TableFile() { TextFile::setFlushToDisk(false); }
    ~TableFile() override { TextFile::setFlushToDisk(true); }

    std::unique_ptr<oledb> load(const std::string& bytes, bool requireHeader = true,
                                int maxRows = allRows) {
        folder_.write("table", bytes);
        return std::make_unique<oledb>(folder_.wide("table"), maxRows, requireHeader);
    }
    std::string save(oledb& table) {
        table.set_filename(folder_.wide("saved"));
        EXPECT_EQ(table.save_text(), static_cast<int>(table.get_num_records()));
        return folder_.read("saved");
    }
    /// Saves a table and loads it again.
    std::unique_ptr<oledb> roundTrip(oledb& table) { return load(save(table)); }

    TemporaryFolder folder_;
};

const char* const header2 = "\"OLEDB\"\r\n\"4\",\"4\"\r\n\"text\",\"text\"\r\n\"a\",\"b\"\r\n";

TEST_F(TableFile, IsWrittenByteForByte) {
    const auto table =
        makeTable({"Name", {"start", DBFieldTypes::TIMECODE}},
                  {{"Shot \"A\" take 1", "10:00:00:00"}, {"line one\nline two", "10:00:05:00"}});
    table->add_param("Owner", "edit suite 2");
    EXPECT_EQ(save(*table), "\"OLEDB:Rev 1\"\r\n"
                            "\"Owner:edit suite 2\"\r\n"
                            "\"OLEDB\"\r\n"
                            "\"32\",\"11\"\r\n"
                            "\"text\",\"timecode\"\r\n"
                            "\"Name\",\"start\"\r\n"
                            "\"Shot \"\"A\"\" take 1\",\"10:00:00:00\"\r\n"
                            "\"line one\\nline two\",\"10:00:05:00\"\r\n");
}

TEST_F(TableFile, TypeWords) {
    Columns columns;
    for (const char type : {'a', 'A', 't', 'T', 'D', 'd', 'M', 'c', 'n', 'l', 'f', 'X'}) {
        columns.emplace_back("c", static_cast<DBFieldTypes::eType>(type));
    }
    const auto table = makeTable(columns);
    const std::string bytes = save(*table);
    const std::string types =
        "\r\n\"text\",\"text_s\",\"timecode\",\"timecode_s\",\"time_of_day\","
        "\"date\",\"dos_date\",\"c\",\"numeric\",\"long\",\"double\",\"X\"\r\n";
    EXPECT_NE(bytes.find(types), std::string::npos) << bytes;
    const auto back = load(bytes);
    for (unsigned i = 0; i < columns.size(); ++i) {
        EXPECT_EQ(back->get_field_type(i), columns[i].type) << i;
    }
    EXPECT_EQ(errorOf(*back), "none");
    const auto odd = load("OLEDB\n1,1,1,1\nTIMECODE,Char,q,longer\na,b,c,d\n");
    EXPECT_EQ(errorOf(*odd), "2 3 0 0") << "an unknown word is text, and reported";
    for (unsigned i = 0; i < 4; ++i) {
        EXPECT_EQ(static_cast<int>(odd->get_field_type(i)), "tcqa"[i]);
    }
}

TEST_F(TableFile, HowLoadingEnds) {
    struct Case {
        const char* what;
        std::string bytes;
        bool requireHeader;
        int valid;
        unsigned rows;
        const char* error;
    };
    const std::string head = header2;
    const Case cases[] = {
        {"line feeds alone, none at the end", "OLEDB\n1,1\ntext,text\na,b\n1,2\n3,4", true, 1, 2,
         "none"},
        {"short row", head + "1,2\r\n3\r\n5,6\r\n", true, 1, 1, "1 1 0 0"},
        {"trailing comma", head + "1,2\r\n3,4\r\n5,6,\r\n", true, 1, 2, "1 2 0 0"},
        {"types line too short", "OLEDB\n1,1\ntext\na,b\n1,2\n", true, 0, 0, "3 3 0 0"},
        {"names line too short", "OLEDB\n1,1\ntext,text\na\n1,2\n", true, 0, 0, "3 4 0 0"},
        {"no header where one is needed", "a,b\n1,2\n", true, 0, 0, "none"},
        {"empty", "", true, 0, 0, "none"},
        {"blank lines alone", "\r\n\r\n", true, 0, 0, "none"},
        {"parameters alone", "\"OLEDB:Rev 1\"\r\n\"p:v\"\r\n", true, 0, 0, "none"},
        {"parameters alone, header optional", "OLEDB:Rev 1\np:v\n1,2\n", false, 0, 0, "none"},
        {"ends behind the word", "OLEDB\n", true, 1, 0, "none"},
        {"ends behind the widths", "OLEDB\n1,1\n", true, 0, 0, "3 3 0 0"},
        {"ends behind the types", "OLEDB\n1,1\ntext,text\n", true, 0, 0, "3 4 0 0"},
    };
    const std::string message = "oledb::add_text: returning because not all fields filled\n";
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        Captured said;
        const auto table = load(c.bytes, c.requireHeader);
        EXPECT_EQ(table->get_valid(), c.valid);
        EXPECT_EQ(table->get_num_records(), c.rows);
        EXPECT_EQ(errorOf(*table), c.error);
        if (std::string{c.error}.rfind("1 ", 0) == 0) {
            EXPECT_EQ(said.console, message);
            EXPECT_EQ(said.output, message);
        }
        EXPECT_EQ(said.log, "");
    }
}

TEST_F(TableFile, FilesThatCannotBeRead) {
    Captured said;
    for (const std::string name : {"missing", ""}) {
        const oledb table{folder_.wide(name), allRows, false};
        EXPECT_EQ(table.get_valid(), 0) << name << " (the second is a folder)";
        EXPECT_EQ(table.get_num_fields(), 0U);
    }
    EXPECT_EQ(oledb(LightweightString<wchar_t>{}, allRows, false).get_valid(), 0);
    EXPECT_TRUE(said.silent());
}

TEST_F(TableFile, LoadingReplacesTheTableAndKeepsItsListeners) {
    folder_.write("table", std::string{header2} + "1,2\r\n3,4\r\n");
    const auto table = makeTable({"x"}, {{"old"}});
    table->add_param("p", "v");
    table->set_tag(0, 1);
    table->set_show_tags_only(1);
    NoticeRecorder notices{*table};
    table->set_filename(folder_.wide("table"));
    table->loadFromFile(1, true);
    EXPECT_EQ(rowsOf(*table), (Rows{{"1", "2"}}));
    EXPECT_EQ(table->get_changed() + table->get_record(0)->changed(), 0);
    EXPECT_EQ(table->get_num_params(), 0U);
    EXPECT_EQ(table->get_fieldnum("x"), -1);
    table->delete_records(0, 1);
    EXPECT_EQ(notices.taken(), "recordsDeleted {0 }");
    table->loadFromFile(0, true);
    EXPECT_EQ(table->get_valid(), 1);
    EXPECT_EQ(table->get_num_records(), 0U);
    table->set_filename(folder_.wide("missing"));
    table->loadFromFile(allRows, true);
    EXPECT_EQ(table->get_valid(), 0);
    EXPECT_EQ(table->get_num_fields(), 0U);
}

TEST_F(TableFile, WithoutHeaderNamesMakeTimecodes) {
    const auto table = load("Start TC,\"Legend\",Name,WEEKEND,restart\n1,2,3,4,5\n", false);
    const int types[] = {116, 116, 97, 116, 116};
    for (unsigned i = 0; i < 5; ++i) {
        EXPECT_EQ(static_cast<int>(table->get_field_type(i)), types[i]) << i;
    }
    EXPECT_EQ(table->get_timecode_columns(), (std::vector<unsigned>{0, 1, 3, 4, 0xFFFFFFFFU}));
    EXPECT_EQ(table->get_fieldnum("start tc"), 0);
    EXPECT_EQ(load(std::string{header2})->get_timecode_columns(),
              (std::vector<unsigned>{0xFFFFFFFFU}));
}

TEST_F(TableFile, ParametersAsTheyStandInTheFile) {
    Captured said;
    const auto table =
        load("\"oledb: Rev 12b\"\r\n\" a: b:c \"\r\nno colon\r\n\":no name\"\r\n\"a:again\"\r\n" +
             std::string{header2});
    EXPECT_EQ(table->get_valid(), 1);
    EXPECT_EQ(table->get_revision(), 12);
    EXPECT_EQ(said.console,
              "oledb::read_text:  Warning: oledb is revision 12, current level is 1\n");
    EXPECT_EQ(paramsOf(*table), (Texts{"oledb=Rev 12b", "a=b:c", "a=again"}));
    EXPECT_EQ(table->add_oledb(makeTable({"a", "b"}).get()), -1) << "another revision";
    EXPECT_EQ(table->get_changed(), 0);
    EXPECT_EQ(load("OLEDB:none\n" + std::string{header2})->get_revision(), 0);
}

TEST_F(TableFile, ParameterAndColumnTextsAreNotEscaped) {
    const auto table = makeTable({"The \"Best\" set", " blank "}, {{"1", "2"}});
    table->add_param("p", "a \"b\", c");
    table->add_param("q", "x\"\"y");
    table->add_param("r", "first\nsecond");
    table->add_param("s", " v\\nw ");
    const std::string bytes = save(*table);
    EXPECT_NE(bytes.find("\r\n\"p:a \"b\", c\"\r\n\"q:x\"\"y\"\r\n"), std::string::npos) << bytes;
    const auto params = load(bytes);
    EXPECT_EQ(params->get_valid(), 1);
    EXPECT_EQ(paramsOf(*params), (Texts{"OLEDB=Rev 1", "p=a b", "q=x\"y", "r=first", "s=v\nw"}));
    EXPECT_STREQ(params->get_fieldname(0), "The Best set");
    EXPECT_STREQ(params->get_fieldname(1), "blank");
}

TEST_F(TableFile, ASecondHeaderSwallowsRows) {
    const std::string head = header2;
    const auto table = load(head + "a,1\nOLEDB,x\nb,2\nc,3\nd,\"\"\ne,5\n");
    EXPECT_EQ(rowsOf(*table), (Rows{{"a", "1"}, {"d", "3"}, {"e", "5"}}))
        << "an empty value keeps what the reused row held";
    Captured said;
    EXPECT_EQ(rowsOf(*load(head + "a,1\nOLEDB,x\nb,2\nc,3\n")), (Rows{{"a", "1"}}));
    EXPECT_EQ(said.console, "oledb::add_text: returning because no more lines\n");
    EXPECT_EQ(said.output, "");
}

TEST_F(TableFile, AppendingRowsFromATextFile) {
    const auto table = makeTable({"a"});
    TextFile file;
    for (const char* const line : {"skipped", "1", "2", "", "3", "4"}) {
        file.appendLine(std::string_view{line});
    }
    file.setLine(0);
    EXPECT_EQ(table->add_text(file, 0, 0), 0);
    EXPECT_EQ(table->add_text(file, 0, -5), 0);
    EXPECT_EQ(table->add_text(file, 1, 1), 1);
    EXPECT_EQ(table->add_text(file, 0, 9), 1) << "up to the blank line, which is passed over";
    EXPECT_EQ(table->add_text(file, 0, 1), 1);
    EXPECT_EQ(columnOf(*table, 0), (Texts{"1", "2", "3"}));
    EXPECT_EQ(table->get_record(0)->get_container(), table.get());
    EXPECT_EQ(table->get_changed(), 1);
    Captured said;
    EXPECT_EQ(table->add_text(file, 1, 9), 0) << "nothing behind the skipped line";
    EXPECT_EQ(said.console, "oledb::add_text: returning because no more lines\n");

    oledb columnless{static_cast<const DBFieldDesc*>(nullptr)};
    columnless.clear_changed();
    file.setLine(0);
    EXPECT_EQ(columnless.add_text(file, 0, 9), 0);
    EXPECT_EQ(columnless.get_changed(), 1) << "a line was read";
}

TEST_F(TableFile, AppendingStopsAtAFullChunk) {
    TextFile file;
    for (unsigned i = 0; i < 1700; ++i) {
        file.appendLine(std::string_view{"x"});
    }
    file.setLine(0);
    EXPECT_EQ(numberedTable(500)->add_text(file, 0, 9), 0);
    EXPECT_EQ(oledb{}.add_text(file, 0, 9), 0);
    EXPECT_EQ(file.line(), 0U);
    const auto table = makeTable({"a"});
    EXPECT_EQ(table->add_text(file, 0, allRows), 1700);
    EXPECT_EQ(table->get_capacity(), 2000U);
}

TEST_F(TableFile, TheRetiredEntryReadsTheHeadingAsRows) {
    Captured said;
    const auto one = load("OLEDB\n4\ntext\na\nv\nw\n");
    EXPECT_EQ(one->load_text(allRows), 5);
    EXPECT_EQ(columnOf(*one, 0), (Texts{"v", "w", "4", "text", "a", "v", "w"}));
    EXPECT_EQ(said.output, "assertion failed false at ole/oledb/oledb line 385\n");
    const auto two = load(std::string{header2} + "1,2\r\n");
    EXPECT_EQ(two->load_text(allRows), 0);
    EXPECT_EQ(errorOf(*two), "1 0 0 0");
}

TEST_F(TableFile, TagsAreWrittenIntoTheirColumn) {
    const auto table = makeTable({"id", "TAG"}, {{"a", "7"}, {"b", "7"}, {"c", "7"}});
    setTags(*table, "010");
    table->set_filename(folder_.wide("tags"));
    EXPECT_EQ(table->save_tags(), 1);
    EXPECT_EQ(folder_.read("tags"), joined({"\"OLEDB\"", "\"4\",\"1\"", "\"text\",\"text\"",
                                            "\"id\",\"TAG\"", "\"b\",\"7\""}))
        << "the column is left alone";
    const auto back = roundTrip(*table);
    EXPECT_EQ(columnOf(*back, 1), (Texts{"0", "1", "0"}));
    EXPECT_EQ(tagsOf(*back), "000") << "loaded rows start untagged";
    table->set_show_tags_only(1);
    table->set_filename(folder_.wide("all"));
    EXPECT_EQ(table->save_text(), 3) << "all rows are saved, whatever is shown";
    EXPECT_EQ(columnOf(oledb{folder_.wide("all"), allRows, true}, 0), (Texts{"a", "b", "c"}));
}

TEST_F(TableFile, SavingWithoutHeader) {
    const auto table = makeTable({"x", "y"}, {{"1", "2"}});
    table->set_filename(folder_.wide("bare"));
    EXPECT_EQ(table->save_text_without_header(), 1);
    EXPECT_EQ(folder_.read("bare"), "\"x\",\"y\"\r\n\"1\",\"2\"\r\n");
    EXPECT_EQ(rowsOf(oledb{folder_.wide("bare"), allRows, false}), (Rows{{"1", "2"}}));
    table->add_param("p", "v");
    table->save_text_without_header();
    EXPECT_EQ(folder_.read("bare"), "\"OLEDB:Rev 1\"\r\n\"p:v\"\r\n\"x\",\"y\"\r\n\"1\",\"2\"\r\n");
}

TEST_F(TableFile, SavesThatFailLeaveNothing) {
    const auto table = makeTable({"a"}, {{"new"}});
    for (const LightweightString<wchar_t>& path :
         {LightweightString<wchar_t>{}, folder_.wide("no folder/file"), folder_.wide()}) {
        table->set_filename(path);
        EXPECT_EQ(table->save_text() + table->save_tags() + table->save_text_without_header(), 0);
    }
    EXPECT_EQ(folder_.names(), (std::set<std::string>{}));
    EXPECT_EQ(save(*makeTable({"a"})), "\"OLEDB\"\r\n\"4\"\r\n\"text\"\r\n\"a\"\r\n");
}

/// A row that lost values is written short, or as a blank line, and ends the next load.
TEST_F(TableFile, ShrunkenRowsEndTheNextLoad) {
    Captured said;
    const auto table = makeTable({"a", "b"}, {{"1", "2"}, {"3", "4"}, {"5", "6"}});
    dbrecord nothing{0};
    dbrecord single{1};
    single.set_field(0, "x");
    table->copy_record(1, &single);
    const auto shortRow = roundTrip(*table);
    EXPECT_EQ(rowsOf(*shortRow), (Rows{{"1", "2"}}));
    EXPECT_EQ(errorOf(*shortRow), "1 1 0 0");
    table->copy_record(1, &nothing);
    const auto blankLine = roundTrip(*table);
    EXPECT_EQ(rowsOf(*blankLine), (Rows{{"1", "2"}}));
    EXPECT_EQ(errorOf(*blankLine), "none");
}

/// Random values, written and read as the slow writer and reader do; the second save is the first.
TEST_F(TableFile, RandomTablesAgreeWithTheSlowWriterAndReader) {
    forSeeds(150, [this](Random& random) {
        const unsigned columns = 1 + random.below(5);
        Columns names;
        for (unsigned i = 0; i < columns; ++i) {
            names.emplace_back("c" + std::to_string(i), DBFieldTypes::TEXT);
        }
        Rows rows(random.below(6));
        Texts lines;
        for (Texts& row : rows) {
            for (unsigned i = 0; i < columns; ++i) {
                row.push_back(random.text("aB\",\\n\n\r\t \x01\xE9", 9));
            }
            lines.push_back(FileModel::writeRow(row));
        }
        const auto table = makeTable(names, rows);
        const std::string bytes = save(*table);
        ASSERT_TRUE(bytes.ends_with(names.back().name + "\"\r\n" + joined(lines))) << bytes;
        const FileModel::LoadedRows model = FileModel::readRows(lines, columns, lines.size());
        const auto first = load(bytes);
        ASSERT_EQ(rowsOf(*first), model.rows);
        ASSERT_EQ(errorOf(*first), model.error);
        const std::string again = save(*first);
        const auto second = load(again);
        ASSERT_EQ(save(*second), again);
    });
}

/// Random row lines, most of them broken.
TEST_F(TableFile, RandomRowLinesLoadAsTheSlowReaderReads) {
    forSeeds(400, [this](Random& random) {
        Captured said;
        Texts lines;
        const unsigned count = random.below(6);
        for (unsigned i = 0; i < count; ++i) {
            lines.push_back(random.oneIn(3) ? random.text("ab,\" \\n\t\x01", 12)
                                            : "\"" + random.text("ab\\n ", 3) + "\"," +
                                                  random.text("ab\" ", 3));
        }
        const auto maxRows = static_cast<int>(random.below(7));
        const auto table = load(header2 + joined(lines), true, maxRows);
        const auto model = FileModel::readRows(lines, 2, static_cast<std::size_t>(maxRows));
        ASSERT_EQ(table->get_valid(), 1);
        ASSERT_EQ(rowsOf(*table), model.rows);
        ASSERT_EQ(errorOf(*table), model.error);
    });
}

/// A file cut after any byte gives the whole rows before the cut, and never hangs.
TEST_F(TableFile, CutAfterEveryByte) {
    Captured said;
    const auto table = makeTable(
        {"Name", {"start", DBFieldTypes::TIMECODE}, "c"},
        {{"one", "10:00:00:00", "x"}, {"two \"2\"", "", "y,z"}, {"three\nlines", "1", ""}});
    table->add_param("Owner", "edit suite 2");
    const std::string whole = save(*table);
    const Rows rows = rowsOf(*load(whole));
    for (std::size_t cut = 0; cut < whole.size(); ++cut) {
        const std::string bytes = whole.substr(0, cut);
        const auto wholeLines =
            static_cast<std::size_t>(std::count(bytes.begin(), bytes.end(), '\n'));
        for (const bool requireHeader : {true, false}) {
            const Rows loaded = rowsOf(*load(bytes, requireHeader));
            const std::size_t wholeRows = wholeLines < 6 ? 0 : wholeLines - 6;
            ASSERT_TRUE(loaded.size() == wholeRows || loaded.size() == wholeRows + 1) << cut;
            ASSERT_TRUE(std::equal(rows.begin(), rows.begin() + static_cast<long>(wholeRows),
                                   loaded.begin()))
                << cut;
        }
    }
}

TEST_F(TableFile, GarbledFilesDoNoHarm) {
    Captured said;
    const std::string whole =
        "\"OLEDB:Rev 1\"\r\n\"p:v\"\r\n" + std::string{header2} + "\"1\",\"2\"\r\n\"3\",\"4\"\r\n";
    forSeeds(300, [&](Random& random) {
        std::string bytes = whole;
        for (unsigned n = 1 + random.below(4); n > 0 && !bytes.empty(); --n) {
            const std::size_t at = random.below(static_cast<unsigned>(bytes.size()));
            switch (random.below(4)) {
            case 0:
                bytes[at] = static_cast<char>(random.below(256));
                break;
            case 1:
                bytes.erase(at, 1 + random.below(20));
                break;
            case 2:
                bytes.insert(at, random.text(std::string_view{"\",\n\0\xFF:O", 7}, 5));
                break;
            default:
                bytes += bytes.substr(at);
                break;
            }
        }
        const auto table = load(bytes, random.oneIn(2));
        const unsigned columns = table->get_num_fields();
        ASSERT_LE(columns, 255U);
        for (unsigned i = 0; i < table->get_num_records(); ++i) {
            ASSERT_EQ(table->get_record(i)->size(), columns);
        }
        if (table->get_valid() == 0) {
            ASSERT_EQ(table->get_num_records(), 0U);
        }
        save(*table);
    });
}

} // namespace
