// Field maps: their text against a plain reader, names and numbers, what the slots keep.

#include "ole/interchange/FieldMap.h"
#include "support/FieldMapModel.h"
#include "support/Random.h"
#include "support/Views.h"

#include <climits>
#include <gtest/gtest.h>

namespace {

TEST(FieldMap, TextsAreReadAsThePlainReaderDoes) {
    forSeeds(400, [](Random& random) {
        Texts fields;
        Columns columns;
        const unsigned n = random.oneIn(2) ? random.below(8) : random.below(257);
        for (unsigned i = 0; i < n; ++i) {
            fields.push_back((random.oneIn(2) ? "f" : "F") +
                             std::to_string(random.oneIn(9) ? random.below(n) : i));
            columns.emplace_back(fields.back().c_str());
        }
        std::string text = random.text("0123456789-- \t+,\v\xA0", 12);
        for (unsigned i = random.below(30); i > 0; --i) {
            text.insert(0, std::to_string(static_cast<int>(random.below(600)) - 300) +
                               (random.oneIn(9) ? "  " : " "));
        }
        const auto table = makeTable(columns);
        table->set_param_val(FieldMap::parameterName, text.c_str());
        FieldMap map{*table};
        Texts expected = readInto({}, text, fields);
        ASSERT_EQ(entriesOf(map), expected) << text;
        const LightweightString<char> written = map.asString();
        for (const char* const more : {"7 -1 3 8", "", written.c_str()}) {
            ODBView view{table.get()};
            view->set_param_val(FieldMap::parameterName, more);
            map.setSourceDb(view);
            expected = readInto(expected, more, fields);
            ASSERT_EQ(entriesOf(map), expected) << "added to what the map held: " << more;
        }
    });
}

TEST(FieldMap, NumbersThatTheTextDoesNotCarry) {
    const auto table = makeTable(Columns(256, "x"));
    for (unsigned i = 0; i < 256; ++i) {
        table->set_fieldname(i, ("f" + std::to_string(i + 1)).c_str());
    }
    table->set_param_val(FieldMap::parameterName, "-100 1  200 +7 8");
    EXPECT_EQ(entriesOf(FieldMap{*table}), (Texts{"-f10", "+f1", "+f20", "+f200", "+f7"}));
    table->set_param_val(FieldMap::parameterName, "256");
    FieldMap all{*table};
    EXPECT_EQ(all.numVisible(), 256);
    all.set(1, "f256", false);
    all.set(2, "gone", false);
    table->set_fieldname(4, "F4");
    EXPECT_TRUE(all.asString().startsWith("1 -256 -0 5 5 6 ")) << "names count, also former ones";
    EXPECT_EQ(all.getVisibleFieldIndex(1), 4);
    EXPECT_EQ(all.getVisibleFieldIndex(253), 255);
    EXPECT_EQ(all.getVisibleFieldIndex(254), -1);
    EXPECT_EQ(all.getVisibleFieldIndex(INT_MIN), -1);
    all.setVisible(2, true);
    EXPECT_EQ(all.getVisibleFieldIndex(1), -1) << "the view has no field of the name";
}

TEST(FieldMap, SlotsBehindTheLastEntryKeepWhatTheyHeld) {
    const auto table = makeTable({"a", "b", "c"});
    FieldMap map{*table};
    map.setVisible(1, false);
    EXPECT_TRUE(map.remove("A") && !map.remove("a"));
    EXPECT_EQ(entriesOf(map), (Texts{"-b", "+c"}));
    EXPECT_TRUE(map.isVisible(2)) << "the entry that moved up is still here";
    EXPECT_FALSE(FieldMap{map}.isVisible(2));
    map.set(2, "x", false);
    map.setName(3, "behind");
    map.invertVisible(255);
    for (const int none : {-1, 256}) { // outside all slots
        map.setVisible(none, true);
        map.invertVisible(none);
        map.setName(none, "x");
        map.swap(none, 0);
        map.swap(0, none);
        EXPECT_FALSE(map.isVisible(none));
    }
    map.swap(2, 0);
    map.swap(3, 1);
    EXPECT_EQ(entriesOf(map), (Texts{"+c", "-behind"})) << "c is the old entry of slot 2";
    EXPECT_EQ(map.numVisible(), 1);
    EXPECT_TRUE(map.isVisible(255) && map.isVisible("C") && !map.isVisible("BEHIND"));
    FieldMap other{*table};
    other = map;
    EXPECT_EQ(entriesOf(other), entriesOf(map));
    EXPECT_TRUE(other.isVisible(2) && !other.isVisible(255)) << "its own slots";
    map.clear();
    EXPECT_TRUE(map.isVisible(0) && !map.isVisible("c") && map.getName(0).isNull());
    map.init();
    EXPECT_FALSE(map.isVisible(255));
}

TEST(FieldMap, WithoutAViewNumbersAreUnknown) {
    FieldMap map;
    map.append(nullptr, true);
    map.append("", false);
    map.append("a", false);
    EXPECT_EQ(entriesOf(map), (Texts{"+", "-a"})) << "a null name is the empty one";
    EXPECT_EQ(map.asString(), "0 -0");
    auto table = makeTable({"a"});
    const ODBView view{table.get()};
    map.setSourceDb(view);
    EXPECT_EQ(map.asString(), "0 -1");
    table.reset();
    EXPECT_EQ(map.asString(), "0 -0") << "a table that is gone has no fields";
    EXPECT_EQ(map.getVisibleFieldIndex(0), -1);
}

} // namespace
