// The limits of docs/limits.md, each tried one below it, at it and one beyond it. The figures are
// the page's, so that page and code cannot part.

#include "misc/config.h"
#include "misc/date_def.h"
#include "misc/time_def.h"
#include "ole/fieldspec/SExpr.h"
#include "ole/interchange/ALE.h"
#include "ole/interchange/CSV.h"
#include "ole/interchange/ODBFieldView.h"
#include "ole/oledb/dbsort.h"
#include "ole/oledb/TarnContainerFile.h"
#include "support/Captured.h"
#include "support/NoticeRecorder.h"
#include "support/Views.h"
#include "tarn/NotifyMsg.h"
#include "tarn/NotifyMsgTokenIterator.h"
#include "tarn/TextFile.h"
#include "unit/EnvironmentVariable.h"
#include "unit/TemporaryFolder.h"

#include <algorithm>
#include <climits>
#include <gtest/gtest.h>
#include <iterator>
#include <map>

namespace {

using std::to_string;
using Size = std::size_t;

/// Puts n of a thing in; "" where all of it is kept, else what became of it.
using Lost = std::string (*)(Size n);

constexpr auto text = DBFieldTypes::TEXT;

std::string filled(Size n) {
    return std::string(n, 'x');
}

std::string cutFrom(Size n, std::string_view kept) {
    return kept.size() == n ? "" : to_string(n - kept.size()) + " cut";
}

std::string repeated(const std::string& part, Size n) {
    std::string all;
    for (; n > 0; --n) {
        all += part;
    }
    return all;
}

Columns numberedColumns(Size n) {
    Columns columns;
    for (Size i = 1; i <= n; ++i) {
        columns.emplace_back("c" + to_string(i), text);
    }
    return columns;
}

/// A table of what a file holds, and what was told of it.
struct Loaded {
    explicit Loaded(const std::string& bytes, bool requireHeader = true) {
        folder.write("t", bytes);
        load(requireHeader);
    }
    explicit Loaded(oledb& saved) {
        saved.set_filename(folder.wide("t"));
        saved.save_text();
        load(true);
    }
    void load(bool requireHeader) {
        const Captured said;
        table.set_filename(folder.wide("t"));
        table.loadFromFile(INT_MAX, requireHeader);
        told = errorOf(table) + "; " + said.console;
    }
    [[nodiscard]] bool tellsOfColumns() const {
        const std::string file = folder.path("t");
        return told.find("****WARNING:  OLEDB " + file + " has too many fields") != told.npos;
    }
    TemporaryFolder folder;
    oledb table;
    std::string told;
};

/// What an import makes of a log: `heading`, then one row with a value of its own in front.
std::string importInto(oledb& table, const std::string& heading, const std::string& names,
                       const std::string& values) {
    const TemporaryFolder folder;
    folder.write("log", "Heading\n" + heading + "\nColumn\n~\t" + names + "\n\nData\n~\t" + values);
    ALE::fillODB(table, folder.wide("log"));
    return table.get_num_records() == 1 ? table.get_field(0, 0) : "no row";
}

// -- tables --

std::string columns(Size n) {
    const auto grown = makeTable(numberedColumns(n - 1), {Texts(n - 1, "v")});
    const auto more = descriptors({{"more", text}});
    const oledb wider{*grown, more.data()};
    EXPECT_EQ(rowsOf(wider)[0].size(), wider.get_num_fields());
    const int added = grown->addField(more[0]);
    const Size made = makeTable(numberedColumns(n))->get_num_fields();
    EXPECT_TRUE(made == grown->get_num_fields() && made == wider.get_num_fields());
    return made == n ? "" : "addField gives " + to_string(added);
}

std::string parameters(Size n) {
    const auto table = makeTable({"Cookie"});
    table->add_param("p1", "v"); // a view has no revision where its table has none
    ODBView view{table.get()};
    std::vector<DBFieldDesc> items = descriptors({"Cookie"});
    TarnContainerFile::Writer writer{items.data()};
    std::string lines = "\"OLEDB:Rev 1\"\n";
    int result = 0;
    for (Size i = 1; i < n; ++i) {
        const std::string name = "p" + to_string(i);
        result = table->add_param(name.c_str(), "v");
        view->add_param(name.c_str(), "v");
        writer.setAttrib(name.c_str(), "v");
        lines += name + ":v\n";
    }
    const TemporaryFolder folder;
    view->saveAsText(folder.wide("view"), true);
    writer.save(folder.wide("container"));
    const Loaded loaded{lines + "OLEDB\n4\ntext\na\n"};
    for (const unsigned kept :
         {loaded.table.get_num_params(), oledb(folder.wide("view"), 0, true).get_num_params(),
          oledb(folder.wide("container"), 0, true).get_num_params()}) {
        EXPECT_EQ(kept, table->get_num_params());
    }
    return table->get_num_params() == n ? "" : "add_param gives " + to_string(result);
}

std::string slots(Size n) {
    dbrecord row{1};
    int widths = 0;
    row.resizeRecord(static_cast<int>(n), &widths, true);
    return row.nfields() == n ? "" : "the row stays";
}

std::string columnAskedOfView(Size n) {
    const auto table = makeTable({"a"}, {{"column 0"}});
    EXPECT_EQ(table->get_field(0, static_cast<int>(n)), nullptr);
    const char* const value = viewOfAll(*table)->get_field(0, static_cast<int>(n));
    return value ? value : "";
}

std::string numberRead(Size n) {
    const auto table = makeTable({"a"}, {{to_string(n)}});
    int number = 0;
    table->in_field(0, 0, number);
    const NotifyMsg msg{LightweightString<char>{to_string(n).c_str()}};
    EXPECT_EQ(NotifyMsgTokenIterator{msg}.number(), number);
    int negative = 0;
    makeTable({"a"}, {{"-" + to_string(n + 1)}})->in_field(0, 0, negative);
    EXPECT_EQ(negative, -static_cast<long long>(std::min<Size>(n + 1, 2'147'483'648)));
    return static_cast<Size>(number) == n ? "" : to_string(number);
}

std::string tag(Size n) {
    const auto table = makeTable({"a"}, {{"x"}});
    table->set_tag(0, static_cast<int>(n));
    const int kept = table->get_tag(0);
    return static_cast<Size>(kept) == n ? "" : "tag " + to_string(kept);
}

std::string rowsBeforeAddedText(Size n) {
    TextFile file;
    file.appendLine("x");
    file.setLine(0);
    const int added = numberedTable(static_cast<unsigned>(n))->add_text(file, 0, 9);
    return added == 1 ? "" : to_string(added) + " added, at line " + to_string(file.line());
}

std::string comparedForDifference(Size n) {
    const auto table = makeTable({"v", "w"}, {{filled(n), "-"}, {filled(n), "-"}});
    const int tags = table->tag_all_different(0);
    return tags == 1 ? "" : to_string(tags) + " tags";
}

std::string comparisons(Size n) {
    const auto table = makeTable({"a"}, {{"x"}});
    const dbrecord* const row = table->get_record(0);
    table->sortPrepare(1, 0);
    for (const auto compare : {dbr_cmp, dbr_backcmp}) {
        comco = static_cast<int>(n - 1);
        compare(&row, &row);
    }
    return static_cast<Size>(comco) == n ? "" : to_string(std::exchange(comco, 0));
}

std::string rows(Size n) {
    const auto table = makeTable({"a"}, {{"x"}});
    try {
        table->insert_records(0, static_cast<unsigned>(n - 1));
    } catch (const std::bad_alloc&) {
        return rowsOf(*table) == Rows{{"x"}} ? "bad_alloc" : "changed";
    }
    return "";
}

std::string viewEntries(Size n) {
    const auto table = makeTable({"a"}, {{"x"}});
    const ODBView view = viewOfAll(*table);
    const int more = static_cast<int>(n - 1);
    EXPECT_EQ(view->insert_records(1, static_cast<unsigned>(more)), 0);
    return view->displayRecordsAt(0, more, 0) == 0 && view->count() == 1 &&
                   table->get_num_records() == 1
               ? "unchanged"
               : "";
}

// -- table files --

std::string columnsOfFile(Size n) {
    const Loaded loaded{*makeTable(numberedColumns(n))};
    const bool whole = loaded.table.get_valid() != 0 && loaded.table.get_num_fields() == n;
    return whole ? "" : errorOf(loaded.table) + (loaded.tellsOfColumns() ? ", told" : "");
}

std::string columnsWithoutHeading(Size n) {
    const std::string line = repeated("v,", n - 1) + "v\n";
    const Loaded loaded{line + line, false};
    const oledb& table = loaded.table;
    const std::string told = loaded.tellsOfColumns() ? ", told" : "";
    return table.get_num_fields() == n && table.get_num_records() == 1
               ? told
               : to_string(n - table.get_num_fields()) + " cut, " + errorOf(table) + told;
}

std::string lineInLastValue(Size n) {
    const Loaded loaded{"OLEDB\n4\ntext\na\n" + filled(n) + "\n"};
    return cutFrom(n, loaded.table.get_field(0, 0));
}

std::string lineBeforeLastValue(Size n) {
    Loaded loaded{"OLEDB\n4,4\ntext,text\na,b\n" + filled(n - 1) + ",\nnext,row\n"};
    return loaded.table.get_num_records() == 2 ? "" : errorOf(loaded.table);
}

std::string lineOfNames(Size n) {
    Loaded loaded{"OLEDB\n4\ntext\n" + filled(n) + "\nv\n"};
    EXPECT_EQ(loaded.table.get_num_records(), 1U);
    return cutFrom(n, loaded.table.get_fieldname(0));
}

std::string lineBeforeLastName(Size n) {
    const Loaded loaded{"OLEDB\n4,4\ntext,text\n" + filled(n - 1) + ",\nv,w\n"};
    return loaded.table.get_valid() != 0 ? "" : errorOf(loaded.table);
}

std::string lineOfTypes(Size n) {
    const Loaded loaded{"OLEDB\n4,4\n" + filled(n - 1) + ",\na,b\nv,w\n"};
    return loaded.table.get_valid() != 0 ? "" : errorOf(loaded.table);
}

std::string savedValue(Size n) {
    return cutFrom(n, Loaded{*makeTable({"a"}, {{filled(n)}})}.table.get_field(0, 0));
}

std::string savedParameter(Size n) {
    const auto table = makeTable({"a"});
    table->add_param("p", filled(n - 1).c_str());
    return cutFrom(n - 1, Loaded{*table}.table.get_param_val("p"));
}

std::string savedContainer(Size nameBytes, Size attributes) {
    std::vector<DBFieldDesc> items = descriptors({"Cookie"});
    TarnContainerFile::Writer writer{items.data()};
    writer.setName(filled(nameBytes).c_str());
    writer.setPermanent(true);
    for (Size i = 1; i <= attributes; ++i) {
        writer.setAttrib(("k" + to_string(i)).c_str(), "v");
    }
    const TemporaryFolder folder;
    writer.save(folder.wide("c"));
    const TarnContainerFile::Reader read{folder.wide("c"), false};
    EXPECT_TRUE(read.isPermanent());
    const bool kept =
        attributes == 0 || read.getAttrib(("k" + to_string(attributes)).c_str()) == "v";
    return cutFrom(nameBytes, read.getName().view()) + (kept ? "" : "not kept");
}

/// Its first step writes a file whose name is four bytes longer.
std::string containerFileName(Size n) {
    std::vector<DBFieldDesc> items = descriptors({"Cookie"});
    const TemporaryFolder folder;
    for (const char* const name : {"first", "second"}) {
        TarnContainerFile::Writer writer{items.data()};
        writer.setName(name);
        writer.save(folder.wide(filled(n)));
    }
    const TarnContainerFile::Reader read{folder.wide(filled(n)), true};
    return read.getName() == "second" ? "" : read.getName().c_str();
}

// -- logs --

std::string logParameters(Size n) {
    const auto table = makeTable({"a"});
    std::string heading;
    for (Size i = 1; i <= n; ++i) {
        heading += "P" + to_string(i) + "\tv\n";
    }
    importInto(*table, heading, "a", "x");
    return table->get_param_val(("P" + to_string(n)).c_str()) ? "" : "not kept";
}

std::string keyNumber(const std::string& value, const std::string& end) {
    const auto table = makeTable({"start keycode"});
    const std::string stored = importInto(*table, "", "KN Start", value);
    return stored.ends_with(end) ? "" : "stored as \"" + stored + "\"";
}

std::string filmFormat(Size n) {
    const auto table = makeTable({"film label_std"});
    const std::string value = "35mm," + std::string(n - 10, ' ') + "3perf";
    const std::string label = importInto(*table, "FILM_FORMAT\t" + value, "a", "x");
    return label == "F353" ? "" : label;
}

// -- field maps and field views --

std::string mapEntries(Size n) {
    FieldMap map{*makeTable({"c1"})};
    for (Size i = 2; i <= n; ++i) {
        map.append(("c" + to_string(i)).c_str(), true);
    }
    const bool kept = map.containsField(("c" + to_string(n)).c_str());
    return kept && static_cast<Size>(map.count()) == n ? "" : "not appended";
}

std::string mappedColumn(Size n) {
    const auto table = makeTable(numberedColumns(256));
    table->set_param_val(FieldMap::parameterName, ("1 " + to_string(n)).c_str());
    return FieldMap{*table}.containsField(("c" + to_string(n)).c_str()) ? "" : "passed over";
}

std::string hiddenColumn(Size n) {
    const auto table = makeTable(numberedColumns(256));
    FieldMap map{*table};
    map.clear();
    map.append(("c" + to_string(n)).c_str(), false);
    table->set_param_val(FieldMap::parameterName, map.asString().c_str());
    const FieldMap read{*table};
    EXPECT_EQ(read.count() - read.numVisible(), 1);
    return read.getName(0) == map.getName(0) ? "" : "hides " + std::string{read.getName(0).view()};
}

std::string fieldsOfView(Size n) {
    const auto table = makeTable({"a"}, {{"x"}});
    std::vector<int> numbers(n, 0);
    numbers.push_back(-1);
    std::vector<const char*> names(n, "a");
    names.push_back(nullptr);
    const int count = ODBFieldView{viewOfAll(*table), numbers.data()}.count();
    EXPECT_EQ((ODBFieldView{viewOfAll(*table), names.data()}.count()), count);
    return static_cast<Size>(count) == n ? "" : to_string(count) + " fields";
}

// -- texts --

std::string cookieCharacters(Size n) {
    const std::string hyphens = std::string(n, 'a') + "--";
    return Cookie{hyphens.c_str(), false}.valid() ? "" : "no cookie";
}

std::string hours(Size n) {
    const auto label = [n](double sign) -> std::string {
        const time_def time{sign * 3600.0 * static_cast<double>(n), TCInf{25, 1, false}};
        return time.get_punctuated_str().c_str();
    };
    EXPECT_EQ(label(-1), label(1).empty() ? "" : "-" + label(1));
    return label(1) == to_string(n) + ":00:00:00" ? "" : "\"" + label(1) + "\"";
}

std::string secondsOfDate(Size n) {
    const EnvironmentVariable zone{"TZ", "UTC0"};
    EXPECT_STREQ(date_def{"-67768040609740800"}.get_all(0).c_str(), "-2147481748-01-01 00:00:00");
    EXPECT_STREQ(date_def{"-67768040609740801"}.get_all(0).c_str(), "");
    return date_def{to_string(n).c_str()}.get_all(0).empty() ? "no date" : "";
}

std::string setting(Size n) {
    const EnvironmentVariable variable{"OLE_CONFIG_A_LIMIT", to_string(n).c_str()};
    return static_cast<Size>(config_int("a_limit", 7)) == n ? "" : "default";
}

std::string links(Size n) {
    const TemporaryFolder folder;
    std::filesystem::create_symlink("file", folder.path("1"));
    for (Size i = 2; i <= n; ++i) {
        std::filesystem::create_symlink(to_string(i - 1), folder.path(to_string(i)));
    }
    TextFile file;
    file.appendLine("new");
    const auto save = [&] { return file.save(folder.wide(to_string(n)), TextFile::eEOLStyleLF); };
    const bool made = save(); // where nothing was
    EXPECT_EQ(save(), made);
    return made && folder.read("file") == "new\n" ? "" : "not saved";
}

// -- nothing but memory --

/// A value, a column's name and a parameter; the value is sorted, searched and exported.
std::string textInMemory(Size n) {
    const auto table = makeTable({{filled(n), text}}, {{filled(n) + "y"}, {"b"}});
    table->add_param("p", filled(n).c_str());
    table->sort(1, 0);
    const std::unique_ptr<dbrecord> query{table->make_dummy_record()};
    query->set_field(0, "xy", true);
    table->set_query(query.get());
    const bool found = table->match_record(1) == 1 && table->get_fieldnum(filled(n).c_str()) == 0 &&
                       table->get_fieldnum(filled(n - 1).c_str()) < 0;
    const TemporaryFolder folder;
    CSV{viewOfAll(*table)}.writeTo(folder.wide("csv"));
    const bool written = folder.read("csv").ends_with("\nb\r\n" + filled(n) + "y\r\n");
    return found && written ? cutFrom(n, table->get_param_val("p")) : "lost";
}

std::string logLine(Size n) {
    const auto table = makeTable({"a"});
    return cutFrom(n - 2, importInto(*table, "", "a", filled(n - 2)));
}

std::string logColumns(Size n) {
    const auto table = makeTable({"last"});
    return cutFrom(4, importInto(*table, "", repeated("c\t", n - 2) + "last",
                                 repeated("v\t", n - 2) + "read"));
}

std::string joinedColumns(Size n) {
    const auto table = makeTable({"a"});
    const std::string value =
        importInto(*table, "", repeated("a\t", n - 1) + "a", repeated("v\t", n - 1) + "v");
    return cutFrom(3 * n - 2, value);
}

std::string pattern(Size n) {
    const auto table = makeTable({"a"}, {{filled(n)}, {filled(n - 1)}});
    const std::unique_ptr<dbrecord> query{table->make_dummy_record()};
    query->set_field(0, filled(n).c_str(), true);
    table->set_query(query.get());
    table->tag_matching_records(0);
    return tagsOf(*table) == "10" ? "" : tagsOf(*table);
}

std::string sortKeys(Size n) {
    const auto table = makeTable({"a", "b"}, {{"x", "2"}, {"x", "1"}});
    std::vector<int> keys(n - 1, 0);
    keys.insert(keys.end(), {1, -1});
    table->set_sortfields(keys.data());
    table->sort(1, 0);
    return columnOf(*table, 1) == Texts{"1", "2"} ? "" : "not sorted";
}

std::string specification(Size n) {
    const auto table = makeTable({"a"});
    const Captured said;
    const ODBViewRep view{table.get(), repeated("a,", n).c_str()};
    Size held = 0;
    for (const SExpr* node = view.fieldList(); node; node = node->next) {
        ++held;
    }
    return held == n && said.silent() ? "" : to_string(held) + " held";
}

std::string siblings(Size n) {
    const auto table = makeTable({"a"}, {{"x"}, {"y"}});
    std::vector<ODBView> views;
    for (Size i = 0; i < n; ++i) {
        views.push_back(viewOfAll(*table));
    }
    table->delete_records(0, 1);
    const auto right = [](const ODBView& view) { return valuesOf(view) == "y"; };
    return std::all_of(views.begin(), views.end(), right) ? "" : "wrong";
}

std::string chain(Size n) {
    const auto table = makeTable({"a"}, {{"x"}, {"y"}});
    ODBView top = viewOfAll(*table);
    for (Size i = 1; i < n; ++i) {
        top = viewOver(top);
    }
    const std::string before = valuesOf(top);
    top->removeRecordsFromBaseView(0, 1);
    return before == "x y" && top->count() == 1 ? "" : before;
}

std::string batches(Size depth, Size cookies) {
    const auto table = makeTable({"a"});
    NoticeRecorder notices{*table};
    for (Size i = 0; i < depth; ++i) {
        table->beginUpdate();
    }
    for (Size i = 0; i < cookies; ++i) {
        table->addToUpdate(cookieNo(1));
    }
    for (Size i = 1; i < depth; ++i) {
        table->endUpdate();
    }
    const std::string early = notices.taken();
    table->endUpdate();
    const std::string sent = notices.taken();
    const auto blanks = static_cast<Size>(std::count(sent.begin(), sent.end(), ' '));
    return early.empty() && blanks == cookies ? "" : "not sent";
}

// -- the page --

enum Tried { AroundTheFigure, BeyondAlone, AtTheFigure }; // at or below, some need too much memory

struct Limit {
    const char* name;
    Lost lost;
    const char* beyond = nullptr;
    Tried tried = AroundTheFigure;
};

// clang-format off
const Limit limits[] = {
    {"columns of a table", columns, "addField gives -1"},
    {"parameters of a table, the revision `OLEDB` among them", parameters, "add_param gives -1"},
    {"slots of a row", slots, "the row stays"},
    {"column number that a view is asked for", columnAskedOfView, "column 0"},
    {"number that a value is read as", numberRead, "2147483647"},
    {"tag", tag, "tag 0"},
    {"rows of a table whose first chunk has room for `add_text`", rowsBeforeAddedText, "0 added, at line 0"},
    {"bytes of a value that `tag_all_different` compares", comparedForDifference, "2 tags"},
    {"comparisons that `comco` counts", comparisons, "-2147483648"},
    {"rows of a table", rows, "bad_alloc", BeyondAlone},
    {"entries of a view", viewEntries, "unchanged", BeyondAlone},
    {"columns of a table file", columnsOfFile, "3 3 0 0, told"},
    {"columns of a file without a heading", columnsWithoutHeading, "1 cut, 1 0 0 0, told"},
    {"bytes of a line that are read", lineInLastValue, "1 cut"},
    {"bytes of a line that are read", lineBeforeLastValue, "1 0 0 0"},
    {"bytes of a line that are read", lineOfNames, "1 cut"},
    {"bytes of a line that are read", lineBeforeLastName, "3 4 0 0"},
    {"bytes of a line that are read", lineOfTypes, "3 3 0 0"},
    {"bytes of a value in a saved table of one column", savedValue, "1 cut"},
    {"bytes of a parameter in a saved table, name and value", savedParameter, "1 cut"},
    {"bytes of a container's name", [](Size n) { return savedContainer(n, 0); }, "1 cut"},
    {"bytes of a container's file name", containerFileName, "first"},
    {"attributes of a container besides its name and permanence", [](Size n) { return savedContainer(1, n); }, "not kept"},
    {"parameters that an empty table takes from a log", logParameters, "not kept"},
    {"characters of a key number without a mark", [](Size n) { return keyNumber(filled(n), filled(n)); }, "stored as \"\""},
    {"characters of a key number that are looked at", [](Size n) { return keyNumber(filled(n - 3) + "+12", "x+12"); }, "stored as \"\""},
    {"characters of a film format that are looked at", filmFormat, "F35"},
    {"entries of a field map", mapEntries, "not appended"},
    {"column that a field map's text names", mappedColumn, "passed over"},
    {"hidden column that a field map's text names", hiddenColumn, "hides c10"},
    {"fields of a field view", fieldsOfView, "0 fields"},
    {"characters of a cookie that count, without hyphens and outer white space", cookieCharacters, "no cookie"},
    {"hours of a time", hours, "\"\""},
    {"seconds of a date in UTC", secondsOfDate, "no date"},
    {"setting from the environment", setting, "default"},
    {"symbolic links to a file that is saved", links, "not saved"},
    {"bytes of a value, of a column's name and of a parameter in memory", textInMemory, nullptr, AtTheFigure},
    {"bytes of a log's line", logLine, nullptr, AtTheFigure},
    {"columns of a log", logColumns, nullptr, AtTheFigure},
    {"columns of a log that go to one field", joinedColumns, nullptr, AtTheFigure},
    {"bytes of a query's pattern", pattern, nullptr, AtTheFigure},
    {"sort keys", sortKeys, nullptr, AtTheFigure},
    {"names in a field specification", specification, nullptr, AtTheFigure},
    {"views on one table", siblings, nullptr, AtTheFigure},
    {"views over views", chain, nullptr, AtTheFigure},
    {"open batches of updates", [](Size n) { return batches(n, 1); }, nullptr, AtTheFigure},
    {"cookies of a batch", [](Size n) { return batches(1, n); }, nullptr, AtTheFigure},
};
// clang-format on

/// The figures of the page's tables, by name, up to those of the tool.
std::map<std::string, Size> figuresOfThePage() {
    std::map<std::string, Size> figures;
    std::ifstream page{OLE_DOCS "/limits.md"};
    for (std::string line; std::getline(page, line) && line != "## The tool";) {
        const Size bar = line.find(" | ", 2);
        if (line.starts_with("| ") && bar != line.npos && std::isdigit(line[bar + 3])) {
            EXPECT_TRUE(
                figures.emplace(line.substr(2, bar - 2), std::stoull(line.substr(bar + 3))).second)
                << line;
        }
    }
    return figures;
}

TEST(Limits, AreThoseOfThePage) {
    const EnvironmentVariable preferences{"OLE_PREFS_DIR", "/nowhere"};
    const std::map<std::string, Size> figures = figuresOfThePage();
    std::set<std::string> untried;
    for (const auto& [name, figure] : figures) {
        untried.insert(name);
    }
    for (const Limit& limit : limits) {
        SCOPED_TRACE(limit.name);
        untried.erase(limit.name);
        ASSERT_TRUE(figures.contains(limit.name)) << "the page does not name it";
        const Size figure = figures.at(limit.name);
        if (limit.tried != BeyondAlone) {
            EXPECT_EQ(limit.lost(figure - 1), "") << "one below";
            EXPECT_EQ(limit.lost(figure), "") << "at it";
        }
        if (limit.tried != AtTheFigure) {
            EXPECT_EQ(limit.lost(figure + 1), limit.beyond) << "one beyond";
        }
    }
    EXPECT_EQ(untried, std::set<std::string>{});
}

} // namespace
