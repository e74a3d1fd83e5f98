// Field specifications of views: the text, the parsed list, and what is warned about.

#include "ole/fieldspec/SExpr.h"
#include "support/Captured.h"
#include "support/Views.h"
#include "tarn/GrowString.h"

#include <gtest/gtest.h>

#include <cstring>

namespace {

std::string warning(const std::string& name) {
    return "Warning: ODBView::fieldSpec, non-existant fieldname \"" + name + "\".\n";
}

std::string listOf(const ODBViewRep& view) {
    GrowString out;
    if (view.fieldList()) {
        view.fieldList()->asString(out);
    }
    return out.c_str();
}

std::string identityOf(const ODBViewRep& view) {
    GrowString out;
    view.identityFieldSpec(out);
    return out.c_str();
}

TEST(ViewFieldSpec, NamesInOrder) {
    const auto table = makeTable({"Name", "Start", "End"});
    struct Case {
        const char* spec;
        const char* list;
        std::string warnings;
    };
    const Case cases[] = {
        {nullptr, "(Name Start End)", ""},
        {"Start\tName", "(Start Name)", ""},
        {"Start,,Name,\t", "(Start Name)", ""},
        {"Name,Bogus", "(Name)", warning("Bogus")},
        {"name,Start, End", "(Start)", warning("name") + warning(" End")},
        {"Bogus", "", warning("Bogus")},
        {"End,End", "(End End)", ""},
        {"", "", ""},
    };
    for (const Case& c : cases) {
        Captured said;
        const ODBViewRep view{table.get(), c.spec};
        EXPECT_EQ(listOf(view), c.list);
        EXPECT_EQ(said.console, c.warnings);
        EXPECT_STREQ(view.fieldSpecText(), c.spec ? c.spec : "Name,Start,End");
        GrowString text;
        view.asString(text);
        const std::string list = *c.list ? "fields: " + std::string{c.list} + "\n" : "";
        EXPECT_EQ(text.view(), "fieldSpec: " + std::string{view.fieldSpecText()} + "\n" + list);
    }
}

TEST(ViewFieldSpec, ListsOfNames) {
    const auto table = makeTable({"Name", "Start"});
    const char* names[] = {"Start", "Name", nullptr};
    const ODBViewRep view{table.get(), names};
    EXPECT_STREQ(view.fieldSpecText(), "Start,Name,");
    EXPECT_EQ(listOf(view), "(Start Name)");
    EXPECT_EQ(listOf(ODBViewRep{table.get(), static_cast<const char**>(nullptr)}), "(Name Start)");
}

TEST(ViewFieldSpec, AFurtherCallReverses) {
    const auto table = makeTable({"A", "B", "C", "D", "E"});
    ODBViewRep view{table.get(), "A,B"};
    const std::pair<const char*, const char*> calls[] = {
        {"C,D", "(B A C D)"}, {"E", "(D C A B E)"}, {"", "(E B A C D)"}, {nullptr, "(E B A C D)"}};
    for (const auto& [spec, list] : calls) {
        view.fieldSpec(spec);
        EXPECT_EQ(listOf(view), list);
    }
    EXPECT_EQ(view.fieldSpecText(), nullptr);
    view.fieldSpec("A,B");
    view.fieldSpec(view.fieldSpecText());
    EXPECT_STREQ(view.fieldSpecText(), "A,B") << "the text from itself";
}

TEST(ViewFieldSpec, HardNames) {
    Captured said;
    EXPECT_EQ(identityOf(ODBViewRep{makeTable({"Only"}).get()}), "Only");
    const auto odd = makeTable({"A,B", "twice", "twice"});
    const ODBViewRep view{odd.get()};
    EXPECT_EQ(said.console, warning("A") + warning("B"));
    EXPECT_EQ(view.dbFieldIndex("twice"), 1);
    EXPECT_EQ(view.dbFieldIndex(nullptr), -1);
    ODBViewRep nothing{nullptr};
    nothing.fieldSpec("A");
    EXPECT_EQ(said.console, warning("A") + warning("B") + warning("A"));
    EXPECT_EQ(identityOf(nothing) + listOf(nothing), "");
}

TEST(ViewFieldSpec, LeavesTheHostsTokenizerAlone) {
    const auto table = makeTable({"A", "B"});
    char text[] = "one two";
    std::strtok(text, " ");
    const ODBViewRep view{table.get(), "A,B"};
    EXPECT_STREQ(std::strtok(nullptr, " "), "two");
}

TEST(ViewFieldSpec, LongListsDoNotRecurse) {
    const auto table = makeTable({"A"});
    std::string spec;
    for (int i = 0; i < 100000; ++i) {
        spec += "A,";
    }
    ODBViewRep view{table.get(), spec.c_str()};
    view.fieldSpec("");
    EXPECT_EQ(listOf(view).size(), 200001U);
}

TEST(ViewFieldSpec, ReferencesFollowTheSource) {
    auto table = makeTable({"A"});
    const auto second = makeTable({"B"});
    const ODBView view{table.get()};
    view->baseView(ODBView{second.get()}.rep());
    view->fieldSpec("B");
    EXPECT_EQ(listOf(*view), "(A B)");
    view->baseView(nullptr); // the base view dies
    EXPECT_EQ(listOf(*view), "(A A)");
    view->odb(second.get());
    EXPECT_EQ(listOf(*view), "(A A)") << "as long as the table lives";
    table.reset();
    EXPECT_EQ(listOf(*view), "(voidref voidref)");
}

TEST(ViewFieldSpec, Elements) {
    GrowString out;
    SExpr list{new SExprOperator, new SExpr{new SExprRef{0, nullptr}, nullptr}};
    list.asString(out);
    EXPECT_STREQ(out.c_str(), "(op  voidref)");
    EXPECT_EQ(SExpr::reverse(nullptr), nullptr);
    SExprIterator at{&list};
    ++at;
    EXPECT_EQ(*at, list.next);
    EXPECT_EQ((*++at), nullptr);
    EXPECT_EQ((*++at), &list) << "from the end to the front";
}

} // namespace
