// Tables and views that a host derives, and that answer in their own way: what the module works out
// at once for rows of its own, it asks them row by row.

#include "support/Views.h"
#include "tarn/Cookie.h"

#include <gtest/gtest.h>

namespace {

class OwnTable : public oledb {
public:
    using oledb::oledb;
    [[nodiscard]] int match_record(int row) const override { return row == 2 ? 1 : 0; }
    [[nodiscard]] int findFirst(const char*, const char*, int) override { return 1; }
};

class OwnView : public ODBViewRep {
public:
    using ODBViewRep::ODBViewRep;
    [[nodiscard]] int match_record(int row) const override { return row == 0 ? 1 : 0; }
    [[nodiscard]] int findFirst(const char*, const char*, int) override { return 2; }
};

/// What a view of everything finds: tags by the query, then what it shows for an unknown cookie.
std::string foundThrough(const ODBView& view) {
    view->tagMatches(0);
    const std::string tags = tagsOf(view);
    view->clear();
    view->displayRecordsAt(std::vector<Cookie>{cookieNo(9)}, 0);
    return tags + " " + shownBy(view);
}

} // namespace

TEST(HostsOwn, TablesAndViewsAreAskedForEachRow) {
    const std::vector<DBFieldDesc> columns = descriptors({"Cookie"});
    oledb plain{columns.data()};
    OwnTable own{columns.data()};
    dbrecord query{1};
    query.set_field(0, "b");
    for (oledb* const table : {&plain, static_cast<oledb*>(&own)}) {
        addRows(*table, {{"a"}, {"b"}, {"c"}});
        table->set_query(&query);
        table->tag_matching_records(0);
    }
    EXPECT_EQ(tagsOf(plain) + " " + tagsOf(own), "010 001");
    EXPECT_EQ(foundThrough(viewOver(viewOfAll(plain))), "010 ");
    EXPECT_EQ(foundThrough(viewOver(viewOfAll(own))), "001 1");
    const ODBView ownView{new OwnView{&plain}};
    ownView->displayAllRecords();
    EXPECT_EQ(foundThrough(viewOver(viewOver(ownView))), "100 2");
    EXPECT_EQ(foundThrough(ownView), "010 ") << "its own answers are for those above";
}
