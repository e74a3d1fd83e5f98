// A road through the module on which every allocation fails once: nothing but std::bad_alloc comes
// out, a table is as it was before the step, and whatever is left is whole, goes on, and is given
// back at the end.

#include "misc/configb.h"
#include "ole/interchange/ALE.h"
#include "ole/interchange/CSV.h"
#include "ole/interchange/KeyNumber.h"
#include "ole/interchange/ODBFieldView.h"
#include "ole/oledb/TarnContainerFile.h"
#include "support/AllocationFaults.h"
#include "support/Captured.h"
#include "support/LiveBytes.h"
#include "support/LongTests.h"
#include "support/Views.h"
#include "tarn/NotifyMsgTypeDictionary.h"
#include "tarn/TextFile.h"
#include "unit/ChildProcess.h"
#include "unit/TemporaryFolder.h"

#include <climits>
#include <cstdio>
#include <optional>
#include <sys/mman.h>

namespace {

const std::string longText(300, 'x');

const TemporaryFolder& folder() {
    static const TemporaryFolder made;
    return made;
}

/// What a table holds for callers.
struct Contents {
    Rows rows;
    Texts params;
    Texts names;
    std::string tags;
    bool operator==(const Contents&) const = default;
};
Contents contentsOf(oledb& table) {
    Contents contents{rowsOf(table), paramsOf(table), {}, tagsOf(table)};
    for (unsigned i = 0; i < table.get_num_fields(); ++i) {
        contents.names.emplace_back(table.get_fieldname(i));
    }
    return contents;
}

/// Everything that the steps work on; each step takes what is there.
struct Road {
    std::unique_ptr<oledb> table;
    std::unique_ptr<oledb> other;
    std::unique_ptr<dbrecord> query;
    ODBView view;
    ODBView upper;
    ODBView third;
    std::unique_ptr<FieldMap> map;
    Tarn::Ptr<Tarn::Guard> guard;
    LightweightString<char> heard;
};

/// What a step promises where memory runs out: the table is as it was, or it is at least whole.
/// Behind: views may have missed what was taken out below them and must be filled again.
enum Promise { Unchanged, UnchangedBehind, Whole, WholeBehind };

struct Step {
    const char* name;
    Promise promise;
    void (*run)(Road&);
    bool saves = false; // a file stands there as before or whole
};

using enum DBFieldTypes::eType;

void save(oledb& table, const char* name) {
    table.set_filename(folder().wide(name));
    table.save_text();
}

void fill(Road& road) {
    for (const ODBView* const view : {&road.view, &road.third, &road.upper}) {
        (*view)->displayAllRecords();
    }
}

// clang-format off
const Step steps[] = {
    {"import", Whole, [](Road& r) { ALE::fillODB(*r.table, folder().wide("log.ale")); }},
    {"add rows", Unchanged, [](Road& r) { r.table->add_records(3); }},
    {"insert rows", Unchanged, [](Road& r) { r.table->insert_records(1, 2); }},
    {"a long text", Unchanged, [](Road& r) { r.table->set_field(2, 0U, longText.c_str()); }},
    {"a number", Unchanged, [](Road& r) { r.table->set_field(1, 1U, -1234567); }},
    {"seconds", Unchanged, [](Road& r) { r.table->set_field(1, 2U, 1234.5); }},
    {"a cookie", Unchanged, [](Road& r) { r.table->set_field(3, cookieNo(3)); }},
    {"find a cookie", Unchanged, [](Road& r) { static_cast<void>(r.table->getRowIndexByID(cookieNo(3))); }},
    {"a cookie that is indexed", Unchanged, [](Road& r) { r.table->set_field(4, cookieNo(4)); }},
    {"a column", Unchanged, [](Road& r) { r.table->addField({"Lens and filter of the camera", TEXT}); }},
    {"a column's name", Unchanged, [](Road& r) { r.table->set_fieldname(1, "Scene of the &script"); }},
    {"a parameter", Unchanged, [](Road& r) { r.table->set_param_val("Parameter of the test", longText.c_str()); }},
    {"a parameter again", Unchanged, [](Road& r) { r.table->set_param_val("Parameter of the test", "a value of other length"); }},
    {"a record", Unchanged, [](Road& r) { dbrecord row{*r.table->get_record(0)}; row.set_field(0, "a name that is new to it"); r.table->copy_record(2, &row); }},
    {"a row copied", Unchanged, [](Road& r) { r.table->copy_record(1, r.table.get(), 0); }},
    {"updates", Unchanged, [](Road& r) { r.table->beginUpdate(); r.table->addToUpdate(cookieNo(1)); r.table->endUpdate(); }},

    {"a view", Unchanged, [](Road& r) { r.view = viewOfAll(*r.table); }},
    {"a view that shares", Unchanged, [](Road& r) { r.third = r.view.copy(); }},
    {"a listener", Unchanged, [](Road& r) {
        r.guard = r.table->registerInterest(NotifyCallback{[&r](const NotifyMsg& msg) { r.heard = msg.text(); return 0; }},
                                            NotifyMsgTypeDictionary::intern("recordsDeleted")); }},
    {"tags", Unchanged, [](Road& r) { r.view->tagAll(true); r.view->set_tag(1, 0); }},
    {"a chain", Unchanged, [](Road& r) { r.upper = ODBView{r.view->newTagSubview()}; }},
    {"show cookies", Unchanged, [](Road& r) { r.view->displayRecordsAt(std::vector<Cookie>{cookieNo(3), cookieNo(9)}, 1); }},
    {"show a match", Unchanged, [](Road& r) { r.view->displayMatchAt("Name", "31A-2", 0); }},
    {"show another's", Unchanged, [](Road& r) { r.third->displayAllFromAt(r.view.rep(), 0); }},
    {"show tagged ones", Unchanged, [](Road& r) { r.table->set_tag(1, 1); r.third->displayTaggedRecordsAt(0); }},
    {"show all with tags", UnchangedBehind, [](Road& r) { r.third->displayAllRecordsWithBaseTagStatus(); }},
    {"tags of a column", Unchanged, [](Road& r) { r.third->setupViewTagsFromOledbTagField(); }},
    {"rows through a view", Whole, [](Road& r) { r.view->insert_records(1, 2); r.view->add_records(2); }},
    {"take entries out", UnchangedBehind, [](Road& r) { r.view->remove(0, 2); }},
    {"take entries out below", UnchangedBehind, [](Road& r) { r.upper->removeRecordsFromBaseView(0, 1); }},
    {"take tagged ones out", UnchangedBehind, [](Road& r) { r.third->set_tag(0, 1); r.third->removeTagged(); }},
    {"blank records", Whole, [](Road& r) { r.view->insertBlankRecords(1, 25); }},
    {"delete rows", WholeBehind, [](Road& r) { r.table->delete_records(4, 5); }},
    {"delete records", WholeBehind, [](Road& r) { r.view->deleteRecords(0, 2); }},
    {"delete tagged", WholeBehind, [](Road& r) { r.table->set_tag(0, 1); r.table->set_tag(2, 1); r.table->delete_tagged_records(); }},
    {"fill again", UnchangedBehind, [](Road& r) { fill(r); }},
    {"specification", Unchanged, [](Road& r) { r.view->fieldSpec("Name,Scene of the script,No such field"); }},
    {"view parameters", Unchanged, [](Road& r) { r.view->set_param_val("Parameter of the view", longText.c_str()); }},
    {"duplicates", Unchanged, [](Road& r) { r.view->tagDuplicates(1); }},
    {"sort a view", Unchanged, [](Road& r) { r.table->set_sortfield(0); r.view->sort(1, 0); }},
    {"new base", Unchanged, [](Road& r) { const ODBView made = r.view.copyWithNewBaseView(); r.other.reset(made->table()); }},

    {"sort", Whole, [](Road& r) { r.table->set_sortfield(1); r.table->sort(-1, 0); }},
    {"query", Unchanged, [](Road& r) { r.query.reset(r.table->make_dummy_record()); r.query->set_field(0, "31a"); r.table->set_query(r.query.get()); }},
    {"tag matches", Whole, [](Road& r) { r.table->tag_matching_records(0); r.view->tag_matching_records(0); }},
    {"tag all different", Whole, [](Road& r) { r.table->tag_all_different(1); }},
    {"search", Unchanged, [](Road& r) { static_cast<void>(r.table->findFirst("Name", longText.c_str(), 0)); }},
    {"search of many", Unchanged, [](Road& r) { static_cast<void>(r.table->findFirstOfEach({cookieNo(1), cookieNo(3)})); }},
    {"tagged only", Whole, [](Road& r) { r.table->set_tag(1, 1); r.table->set_show_tags_only(1); r.table->set_show_tags_only(0); }},
    {"copy", Unchanged, [](Road& r) { r.other = std::make_unique<oledb>(*r.table, 1); }},
    {"add a table", Unchanged, [](Road& r) { r.table->add_oledb(r.other.get()); }},
    {"merge a table", Unchanged, [](Road& r) { r.table->merge_all_matching(r.other.get()); }},
    {"wider copy", Unchanged, [](Road& r) { const DBFieldDesc extra[] = {{"A further column of its own", TEXT}, {}}; r.other = std::make_unique<oledb>(*r.table, extra); }},
    {"conversion", Unchanged, [](Road& r) { r.other.reset(Convert_ODBView_to_oledb(r.view)); }},

    {"save", Whole, [](Road& r) { save(*r.table, "table"); }, true},
    {"load", Unchanged, [](Road& r) { r.other = std::make_unique<oledb>(folder().wide("table"), INT_MAX, true); }},
    {"load again", Unchanged, [](Road& r) { r.other->loadFromFile(INT_MAX, true); }},
    {"save a view", Unchanged, [](Road& r) { r.view->saveAsText(folder().wide("view"), false); }, true},
    {"save tagged rows", Whole, [](Road& r) { r.table->set_filename(folder().wide("tags")); r.table->save_tags(); }, true},
    {"save tagged entries", Unchanged, [](Road& r) { r.view->saveOnlyTagged(folder().wide("entries")); }, true},
    {"save without a heading", Whole, [](Road& r) { r.table->set_filename(folder().wide("bare")); r.table->save_text_without_header(); }, true},
    {"load without a heading", Unchanged, [](Road& r) { r.other = std::make_unique<oledb>(folder().wide("plain"), INT_MAX, false); }},
    {"settings of a row", Unchanged, [](Road& r) { configb block; r.table->get_record(0)->update(&block); }},
    {"field map", Unchanged, [](Road& r) {
        r.view->set_param_val(FieldMap::parameterName, "2 -1 3");
        r.map = std::make_unique<FieldMap>(r.view);
        r.map->append("A name that no field has in this table", true);
        r.map->swap(0, 1);
        r.view->set_param_val(FieldMap::parameterName, r.map->asString().c_str()); }},
    {"CSV", Unchanged, [](Road& r) { CSV{r.view, *r.map}.writeTo(folder().wide("csv")); }, true},
    {"CSV by lines", Unchanged, [](Road& r) {
        TextFile file;
        const CSV csv{r.view, *r.map};
        csv.writeHeader(file);
        csv.writeRecord(file, 0); }},
    {"the map of another view", Unchanged, [](Road& r) { FieldMap map{r.view}; map.setSourceDb(r.third); }},
    {"selected fields", UnchangedBehind, [](Road& r) {
        const char* const names[] = {"Name", "Date", nullptr};
        ODBFieldView fields{r.view, names};
        fields.setFileName(folder().wide("fields"));
        fields.exportNewOleDb(false); }, true},
    {"container", Unchanged, [](Road& r) {
        DBFieldDesc columns[] = {{"Cookie", TEXT}, {"Note", TEXT}, {}};
        TarnContainerFile::Writer writer{columns};
        writer.setName("Prints of the whole day, and of the night");
        writer.setPermanent(true);
        writer.addItem(cookieNo(1))->set_field(1, r.table->get_field(0, 0));
        writer.save(folder().wide("container")); }, true},
    {"read a container", Unchanged, [](Road&) {
        const TarnContainerFile::Reader reader{folder().wide("container"), false};
        static_cast<void>(reader.getContents());
        static_cast<void>(reader.getNameW());
        static_cast<void>(reader.getItem(0).getAttrib(1)); }},
};
// clang-format on

const DBFieldDesc columns[] = {{"Name", TEXT},
                               {"Scene", TEXT},
                               {"Start time", TIMECODE},
                               {"End time", TIMECODE},
                               {"Date", DOS_DATE},
                               {"Length", DOUBLE},
                               {"start keycode", TEXT},
                               {"film label_std", TEXT},
                               {"Notes", TEXT},
                               {"cookie", TEXT},
                               {"Tag", TEXT},
                               {}};

const std::string log = [] {
    std::string text =
        "Heading\nFIELD_DELIM\tTABS\nFILM_FORMAT\t16mm\nVIDEO_FORMAT\tNTSC and "
        "more than fits into a short text\n\nColumn\nName\tScene\tStart\tNote\tNotes\t"
        "KN Start\tNo field\n\nData\n";
    for (int i = 0; i < 6; ++i) {
        text += "31A-" + std::to_string(i) + "\t31A, with a long name of its own " +
                std::to_string(i % 2) + "\t01:00:00:0" + std::to_string(i) +
                "\ta first note\ta second note\tKJ 23 1234-5678+0" + std::to_string(i) + "\tx\n";
    }
    return text + "more\tvalues\tthan\tthere\tare\tcolumns\tin\tthis\n";
}();

// -- what holds after every fault --

void expectWholeView(const ODBView& view, bool behind) {
    if (!view.rep() || !view->source()) {
        return;
    }
    EXPECT_LE(view->count(), view->capacity());
    for (int i = 0; i < view->count(); ++i) {
        const auto row = static_cast<unsigned>(view->sourceRow(i));
        EXPECT_TRUE(behind || row < view->source()->get_num_records()) << "shows row " << row;
        EXPECT_EQ((*view)[i], view->source()->get_record(row));
    }
}
void expectWholeViews(const Road& road, bool behind) {
    for (const ODBView* const view : {&road.view, &road.upper, &road.third}) {
        expectWholeView(*view, behind);
    }
}

void expectWholeTable(oledb& table) {
    for (unsigned i = 0; i < table.get_num_records(); ++i) {
        const dbrecord* const row = table.get_record(i);
        ASSERT_TRUE(row && row->get_container() == &table && row->size() == table.get_num_fields());
    }
    for (unsigned i = 0; i < table.get_num_fields(); ++i) {
        EXPECT_EQ(table.get_fieldnum(table.get_fieldname(i)), static_cast<int>(i));
    }
    EXPECT_GE(table.get_capacity(), table.get_num_records());
}

/// The table goes through its file.
void expectSavable(oledb& table) {
    save(table, "last");
    oledb loaded{folder().wide("last"), INT_MAX, true};
    EXPECT_EQ(loaded.get_valid(), 1);
    EXPECT_EQ(rowsOf(loaded), rowsOf(table));
    EXPECT_EQ(contentsOf(loaded).names, contentsOf(table).names);
}

/// What stands at the paths that steps save to.
using Files = std::vector<std::optional<std::string>>;
Files savedFiles() {
    Files files;
    for (const char* const name :
         {"table", "tags", "bare", "view", "entries", "csv", "fields", "container"}) {
        const bool stands = std::filesystem::exists(folder().path(name));
        files.push_back(stands ? std::optional{folder().read(name)} : std::nullopt);
    }
    return files;
}

// -- the walk --

class AllocationFault : public testing::Test {
protected:
    AllocationFault() {
        TextFile::setFlushToDisk(false);
        folder().write("log.ale", log);
        folder().write("plain", "Name,Start time\nA001,01:00:00:00\n");
        folder().write("ALEFieldMap.txt",
                       "No field=a field that the table does not have\nNote=Notes\n");
        setenv("OLE_PREFS_DIR", folder().path().c_str(), 1);
    }
    ~AllocationFault() override { TextFile::setFlushToDisk(true); }

    /// Runs a step; false when memory ran out.
    static bool run(const Step& step, Road& road) {
        allocations::resume();
        try {
            step.run(road);
        } catch (const std::bad_alloc&) {
            allocations::pause();
            return false;
        }
        allocations::pause();
        return true;
    }
    static void check(const Step& step, Road& road, const Contents& before) {
        if (step.promise <= UnchangedBehind) {
            EXPECT_TRUE(contentsOf(*road.table) == before);
        }
        expectWholeTable(*road.table);
        expectWholeViews(road, step.promise == UnchangedBehind || step.promise == WholeBehind);
        if (road.other) { // a load that broke off is not taken for the whole file
            EXPECT_EQ(road.other->get_valid(), std::string{step.name} == "load again" ? 0 : 1);
        }
        for (const std::string& name : folder().names()) {
            EXPECT_EQ(name.find(".save-"), std::string::npos) << name;
        }
    }
    /// Walks the road with one failing allocation. What was missed is done again where the step
    /// promises that nothing has happened.
    static void walk(unsigned long failing) {
        Road road;
        allocations::arm(failing);
        try {
            road.table = std::make_unique<oledb>(columns);
        } catch (const std::bad_alloc&) {
            road.table = std::make_unique<oledb>(columns);
        }
        allocations::pause();
        for (const Step& step : steps) {
            SCOPED_TRACE(step.name);
            const bool before = allocations::state.struck;
            const Contents was = before ? Contents{} : contentsOf(*road.table);
            const Files stood = before || !step.saves ? Files{} : savedFiles();
            if (!run(step, road)) {
                check(step, road, was);
                const Files found = step.saves ? savedFiles() : Files{};
                if (step.promise <= UnchangedBehind || step.saves) {
                    EXPECT_TRUE(run(step, road));
                }
                if (step.saves) {
                    EXPECT_TRUE(found == stood || found == savedFiles()) << "a file is torn";
                }
            } else if (!before && allocations::state.struck) {
                expectWholeTable(*road.table);
            }
            if (testing::Test::HasFailure()) {
                return;
            }
        }
        fill(road);
        expectWholeTable(*road.table);
        expectWholeViews(road, false);
        expectSavable(*road.table);
    }
};

// How many allocations lie between two that fail.
#if defined(OLE_TEST_ADDRESS_SANITIZER)
constexpr unsigned long between = 7, betweenFresh = 61;
#else
constexpr unsigned long between = 1, betweenFresh = 17;
#endif

constexpr unsigned long leastOnARoad = 2600;

// What a process makes once fails here too: settings, message types, the user's map of columns. The
// parent has made nothing of it, so every child makes all.
TEST_F(AllocationFault, InAFreshProcess) {
    const Captured quiet;
    struct Shared {
        long madeOnce;
        bool struck;
    };
    auto* const shared = static_cast<Shared*>(
        mmap(nullptr, sizeof(Shared), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0));
    ASSERT_NE(shared, MAP_FAILED);
    const auto walkTwice = [shared](unsigned long failing) {
        const long before = allocations::state.live;
        walk(failing);
        shared->struck = allocations::state.struck;
        walk(0);
        return allocations::state.live - before;
    };
    ASSERT_TRUE(inChild([&] {
        shared->madeOnce = walkTwice(0);
        return !HasFailure();
    }));
    unsigned long failed = 0;
    for (unsigned long n = 1; !HasFailure(); n += longTests() ? 1 : betweenFresh, ++failed) {
        const auto walked = [&] { return walkTwice(n) == shared->madeOnce && !HasFailure(); };
        EXPECT_TRUE(inChild(walked)) << "allocation " << n;
        if (!shared->struck) {
            break;
        }
    }
    EXPECT_GT(failed * (longTests() ? 1 : betweenFresh), leastOnARoad);
    std::printf("[  MEMORY  ] %lu allocations failed, each in a process of its own\n", failed);
}

TEST_F(AllocationFault, EachOnceOnARoad) {
    const Captured quiet;
    walk(0);
    unsigned long failed = 0;
    for (unsigned long n = 1; !HasFailure(); n += longTests() ? 1 : between, ++failed) {
        SCOPED_TRACE("allocation " + std::to_string(n));
        const long before = allocations::state.live;
        walk(n);
        EXPECT_EQ(allocations::state.live, before);
        if (!allocations::state.struck) {
            break;
        }
    }
    EXPECT_GT(failed * (longTests() ? 1 : between), leastOnARoad);
    EXPECT_GT(allocations::state.rows, 1000U);
    std::printf("[  MEMORY  ] %lu allocations failed\n", failed);
}

/// Rows are deleted while nobody looks at a view, and there is no memory when somebody does.
TEST_F(AllocationFault, AViewFollowsAllTheSame) {
    unsigned long failing = 1;
    for (;; ++failing) {
        const auto table = numberedTable(100);
        const ODBView view = viewOfAll(*table);
        for (const unsigned row : {60U, 20U, 21U, 3U}) {
            table->delete_records(row, 9);
        }
        allocations::arm(failing);
        const int shown = view->count();
        allocations::pause();
        ASSERT_EQ(shown, 64) << "allocation " << failing;
        for (int i = 0; i < shown; ++i) {
            ASSERT_EQ(view->sourceRow(i), i) << "allocation " << failing;
        }
        if (!allocations::state.struck) {
            break;
        }
    }
    EXPECT_GT(failing, 5U);
}

/// The most rows and entries are far more than memory holds: up to the limit they are asked for,
/// and beyond it they are not.
TEST_F(AllocationFault, LimitsBeyondMemory) {
    constexpr long long mostRows = 4'294'963'200; // docs/limits.md
    constexpr long long mostEntries = INT_MAX;
    const auto asksForMemory = [](const auto& step) {
        allocations::arm(1);
        try {
            step();
        } catch (const std::bad_alloc&) {
        }
        allocations::pause();
        return allocations::state.struck;
    };
    for (const long long past : {-1, 0, 1}) {
        const auto table = makeTable({"a"}, {{"x"}});
        const auto rows = static_cast<unsigned>(mostRows - 1 + past);
        EXPECT_EQ(asksForMemory([&] { table->insert_records(0, rows); }), past < 1) << rows;
        EXPECT_EQ(rowsOf(*table), (Rows{{"x"}}));
        const ODBView view = viewOfAll(*table);
        const auto entries = static_cast<int>(mostEntries - 1 + past);
        EXPECT_EQ(asksForMemory([&] { view->displayRecordsAt(0, entries, 0); }), past < 1);
        EXPECT_EQ(view->count(), 1);
    }
}

/// What is long enough for large pages: each of them fails once, and what it was for is done again.
TEST_F(AllocationFault, EachLargePage) {
    const Captured quiet;
    const auto table = numberedTable(270'000);
    save(*table, "large");
    const auto tryEach = [](const auto& step) {
        unsigned long page = 1;
        for (; !HasFailure(); ++page) {
            SCOPED_TRACE("page " + std::to_string(page));
            const long before = allocations::state.live;
            allocations::arm(0, page);
            try {
                step();
            } catch (const std::bad_alloc&) {
                EXPECT_TRUE(allocations::state.struck);
            }
            allocations::pause();
            EXPECT_EQ(allocations::state.live, before);
            step();
            if (!allocations::state.struck) {
                break;
            }
        }
        return page - 1;
    };
    table->set_sortfield(0);
    bool descending = true;
    const unsigned long sorting = tryEach([&] {
        table->sort(descending ? -1 : 1, 0);
        EXPECT_STREQ(table->get_field(0, 0), descending ? "99999" : "0"); // by text; by number
        descending = !descending;
    });
    const unsigned long loading = tryEach([] {
        const TextFile text{folder().wide("large"), true};
        EXPECT_EQ(text.numLines(), 270'004U);
        const oledb loaded{folder().wide("large"), INT_MAX, true};
        EXPECT_EQ(loaded.get_num_records(), 270'000U);
    });
    EXPECT_GE(sorting, 3U);
    EXPECT_GE(loading, 1U);
    std::printf("[  MEMORY  ] %lu large pages failed in sorting, %lu in loading\n", sorting,
                loading);
}

} // namespace
