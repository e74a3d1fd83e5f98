// The search language, queries by example, ranges of start and end, merging.

#include "ole/oledb/oledb.h"
#include "support/Captured.h"
#include "support/Random.h"
#include "support/SearchModel.h"
#include "support/Tables.h"

#include <gtest/gtest.h>

namespace {

TEST(Search, Patterns) {
    struct Case {
        const char* text;
        const char* pattern;
        char flag;
        int found;
    };
    constexpr char plain = 0;
    constexpr char cased = 1;
    constexpr char word = 2;
    constexpr char tc = 4;
    // clang-format off
    const Case cases[] = {
        {"cab", "AB", plain, 1}, {"cab", "AB", cased, 0}, 
        {"", "", plain, 1}, {nullptr, "", plain, 1}, {nullptr, "a", plain, 0}, {"", "?", plain, 0},
        {"x", nullptr, plain, 1}, {"\xC3\x89", "\xC3\xA9", plain, 0},
        {"10:00:00;05", "00:05", tc, 0}, {"10:00:00:00", "10.00", tc, 1}, {"1:00", "1;00", tc, 0},
        {"10:00:00:00", "10.00", plain, 0}, {"one two", "two", word, 1}, {"one_two", "two", word, 0},
        {"one-two", "one", word, 1}, {"\xC3\xA9" "two", "two", word, 0}, {"two2", "two", word, 0},
        {&"xone two"[1], "one", word, 1},
    };
    // clang-format on
    for (const Case& c : cases) {
        oledb table;
        table.caseSensitiveSearch = c.flag & 1;
        table.wholeWordSearch = c.flag & 2;
        EXPECT_EQ(table.found_in(c.text, c.pattern, c.flag & 4), c.found)
            << (c.text ? c.text : "null") << " " << (c.pattern ? c.pattern : "null");
    }
}

/// All texts of an alphabet up to a length.
Texts allTexts(const std::string& alphabet, std::size_t longest) {
    Texts texts = {""};
    for (std::size_t i = 0; i < texts.size(); ++i) {
        if (texts[i].size() < longest) {
            for (const char c : alphabet) {
                texts.push_back(texts[i] + c);
            }
        }
    }
    return texts;
}

TEST(Search, FindsWhatTheSlowSearchFinds) {
    const Texts texts = allTexts("abB:", 5);
    const Texts patterns = allTexts("ab?;", 4);
    oledb table;
    long open = 0;
    long seen = 0;
    for (int flags = 0; flags < 8; ++flags) {
        SearchModel model;
        model.caseSensitive = (flags & 1) != 0;
        model.wholeWord = (flags & 2) != 0;
        model.timecode = (flags & 4) != 0;
        table.caseSensitiveSearch = flags & 1;
        table.wholeWordSearch = flags & 2;
        for (const std::string& text : texts) {
            for (const std::string& pattern : patterns) {
                const int expected = agreed(model, text, pattern);
                open += expected < 0 ? 1 : 0;
                ++seen;
                if (expected >= 0) {
                    ASSERT_EQ(table.found_in(text.c_str(), pattern.c_str(), flags & 4), expected)
                        << "'" << text << "' '" << pattern << "' flags " << flags;
                }
            }
        }
    }
    EXPECT_LT(open * 100, seen) << "the model settles nearly everything";
}

/// A stretch of a text with one character changed, which the search may or may not find in it.
std::string nearlyIn(const std::string& text, Random& random) {
    const auto length = static_cast<unsigned>(text.size());
    std::string stretch = text.substr(random.below(length), 1 + random.below(12));
    stretch[random.below(static_cast<unsigned>(stretch.size()))] = random.oneIn(2) ? '?' : 'b';
    return stretch;
}

// Texts of eight characters and more are first looked through for two characters of the pattern.
TEST(Search, FindsInLongTextsWhatTheSlowSearchFinds) {
    int found = 0;
    forSeeds(200, [&](Random& random) {
        SearchModel model;
        model.caseSensitive = random.oneIn(3);
        model.wholeWord = random.oneIn(3);
        model.timecode = random.oneIn(3);
        oledb table;
        table.caseSensitiveSearch = model.caseSensitive ? 1 : 0;
        table.wholeWordSearch = model.wholeWord ? 1 : 0;
        for (int i = 0; i < 200; ++i) {
            const std::string text = random.text("aAbB:`\xC1\xE1 ", 40) + 'b';
            const std::string pattern =
                random.oneIn(2) ? nearlyIn(text, random) : random.text("aAb?;@\xC1", 4);
            const int expected = agreed(model, text, pattern);
            if (expected >= 0) {
                ASSERT_EQ(table.found_in(text.c_str(), pattern.c_str(), model.timecode), expected)
                    << "'" << text << "' '" << pattern << "'";
                found += expected;
            }
        }
    });
    EXPECT_GT(found, 8000);
}

/// The rows of a table that match a query, "0 2".
std::string matches(oledb& table, const Texts& query) {
    dbrecord record{static_cast<unsigned short>(query.size())};
    for (std::size_t i = 0; i < query.size(); ++i) {
        record.set_field(static_cast<int>(i), query[i].c_str(), false);
    }
    EXPECT_EQ(table.set_query(&record), static_cast<int>(query.size()));
    std::string rows;
    for (unsigned i = 0; i < table.get_num_records(); ++i) {
        if (table.match_record(static_cast<int>(i)) == 1) {
            rows += (rows.empty() ? "" : " ") + std::to_string(i);
        }
    }
    table.set_all_tags(1);
    const int tagged = table.tag_matching_records(0);
    EXPECT_EQ(tagged, table.get_num_tags());
    for (unsigned i = 0; i < table.get_num_records(); ++i) {
        EXPECT_EQ(table.get_tag(i), table.match_record(static_cast<int>(i))) << "row " << i;
    }
    table.set_query(nullptr);
    return rows;
}

TEST(Query, EveryColumnMustMatch) {
    const auto table = makeTable(
        {"a", {"t", DBFieldTypes::TIMECODE}, {"s", DBFieldTypes::TIMECODE_S}},
        {{"Alpha", "10:00:00:00", "10000005d"}, {"beta", "11:00:00;00", ""}, {"", "", "rubbish"}});
    EXPECT_EQ(matches(*table, {"", "", ""}), "0 1 2");
    EXPECT_EQ(matches(*table, {"a", "", ""}), "0 1");
    EXPECT_EQ(matches(*table, {"a", "10;00", ""}), "0");
    EXPECT_EQ(matches(*table, {"", "00:00:00", ""}), "0 1");
    EXPECT_EQ(matches(*table, {"10:00", "", ""}), "");
    EXPECT_EQ(matches(*table, {"", "", "10.00"}), "0") << "searched in its punctuated form";
    EXPECT_EQ(matches(*table, {"", "", "1000"}), "");
    EXPECT_EQ(matches(*table, {"", "", "rub"}), "") << "no timecode, no text";
    EXPECT_EQ(matches(*table, {"a", "", "", "more than the columns"}), "0 1");
    EXPECT_EQ(matches(*makeTable({}, {{}, {}}), {}), "0 1");
}

TEST(Query, DatesAreSearchedAsText) {
    const auto table = makeTable({{"d", DBFieldTypes::DOS_DATE}}, {{"1700000000"}, {""}, {"-1e9"}});
    EXPECT_EQ(matches(*table, {"nov"}), "0") << "14 November 2023";
    EXPECT_EQ(matches(*table, {"17000"}), "") << "not as the number";
    EXPECT_NE(matches(*table, {"19"}).find('1'), std::string::npos) << "empty is second 0";
}

TEST(Query, ShortQueriesAreNotTaken) {
    const auto table = makeTable({"a", "b"}, {{"x", "y"}, {"z", ""}});
    EXPECT_EQ(table->match_record(0), -1);
    dbrecord query{2};
    query.set_field(0, "x");
    EXPECT_EQ(table->set_query(&query), 2);
    dbrecord tooShort{1};
    EXPECT_EQ(table->set_query(&tooShort), 1);
    EXPECT_EQ(table->match_record(0), 1);
    EXPECT_EQ(table->match_record(1), 0);
    table->addField({"c", DBFieldTypes::TEXT});
    EXPECT_EQ(table->match_record(0), 1) << "a column without a pattern matches";
    EXPECT_EQ(table->set_query(nullptr), 0);
    EXPECT_EQ(table->match_record(0), -1);
    EXPECT_EQ(table->tag_matching_records(0), 0);
}

TEST(Query, StartAndEndAreSearchedAsARange) {
    EXPECT_FALSE(makeTable({"start time"})->isSpecialLabelField(0)) << "exact names only";
    const auto ranges = makeTable({"Start time", "end TIME"}, {{"09:59:00:00", "10:01:00:00"},
                                                               {"10:00:30:00", "10:02:00:00"},
                                                               {"10:00", ""},
                                                               {"", "10:05:00:00"}});
    EXPECT_EQ(matches(*ranges, {"10:00", ""}), "0 1 2");
    EXPECT_EQ(matches(*ranges, {"10:00:00:00", ""}), "0");
    EXPECT_EQ(matches(*ranges, {"10:01:00:00", ""}), "0 1");
    EXPECT_EQ(matches(*ranges, {"10:01:00:01", ""}), "1");
    EXPECT_EQ(matches(*ranges, {"09:58", ""}), "");
    EXPECT_EQ(matches(*ranges, {"10?00", ""}), "") << "no wildcard here";
    EXPECT_EQ(matches(*ranges, {"1", ""}), "0 1 2");

    const auto ends =
        makeTable({"START KEYCODE", "end keycode"}, {{"Ka10", "Ka30"}, {"KA10", "KA30"}});
    EXPECT_EQ(matches(*ends, {"", "Ka20"}), "0")
        << "case counts; the pair is the same from either side";
    const auto lonely = makeTable({"snd end"}, {{"10"}});
    EXPECT_EQ(matches(*lonely, {"10"}), "") << "no start column";
    const auto noEnd = makeTable({"snd start"}, {{"10"}, {"20"}});
    EXPECT_EQ(matches(*noEnd, {"1"}), "0");
    for (const char* const name : {"snd start", "start 24P code", "end 24P code", "start camcode",
                                   "end camcode", "start inkcode", "end inkcode", "End time"}) {
        EXPECT_TRUE(makeTable({name})->isSpecialLabelField(0)) << name;
    }
}

TEST(Merge, SharedColumnsAreFilledAndTimecodesConverted) {
    using T = DBFieldTypes;
    const auto target =
        makeTable({"b", {"p", T::TIMECODE}, {"d", T::TIMECODE_S}, "own"}, {{"old"}});
    const auto source =
        makeTable({"x", "B", {"P", T::TIMECODE_S}, {"D", T::TIMECODE}},
                  {{"1", "b1", "10000005d", "10:00:00:05"}, {"2", "b2", "no", "11:00:00;05"}});
    EXPECT_EQ(target->merge_all_matching(source.get()), 1);
    EXPECT_EQ(rowsOf(*target), (Rows{{"old", "", "", ""},
                                     {"b1", "10:00:00;05", "10000005", ""},
                                     {"b2", "", "11000005d", ""}}));
    EXPECT_EQ(target->merge_all_matching(makeTable({"none"}, {{"x"}}).get()), 0);
    EXPECT_EQ(target->merge_all_matching(makeTable({"b"}).get()), 1);
    EXPECT_EQ(target->get_num_records(), 3U);
    EXPECT_EQ(source->merge_all_matching(source.get()), 1);
    EXPECT_EQ(columnOf(*source, 1), (Texts{"b1", "b2", "b1", "b2"}));
    source->set_show_tags_only(1);
    EXPECT_EQ(source->merge_all_matching(target.get()), 1);
    source->set_show_tags_only(0);
    EXPECT_EQ(source->get_num_records(), 4U);
}

} // namespace
