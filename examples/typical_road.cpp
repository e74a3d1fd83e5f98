// A log into a table, a view on it sorted and tagged, and out again as a table file, as CSV and as
// a container file. usage: typical_road LOG.ale   (writes day.odb, day.csv, day.sg in this folder)

#include "ole/interchange/ALE.h"
#include "ole/interchange/CSV.h"
#include "ole/oledb/ODBView.h"
#include "ole/oledb/oledb.h"
#include "ole/oledb/TarnContainerFile.h"

#include <cstdio>
#include <memory>

int main(int argc, char** argv) {
    // The list of columns ends at an empty one. The log goes to the columns that the table has.
    using enum DBFieldTypes::eType;
    const DBFieldDesc columns[] = {{"Name", TEXT},
                                   {"Scene", TEXT},
                                   {"Shot", TEXT},
                                   {"Notes", TEXT},
                                   {"Start time", TIMECODE},
                                   {"Cookie", TEXT},
                                   {}};
    oledb table{columns};
    ALE::Report report;
    if (argc != 2 || !ALE::fillODB(table, pathFromBytes(argv[1]), report)) {
        std::fputs("usage: typical_road LOG.ale\n", stderr);
        return 1;
    }
    std::printf("%u takes, %zu columns without a field\n", report.recordsAdded,
                report.columnsWithoutField.size());

    // Row numbers change when rows come and go; an identifier stays with its row.
    for (unsigned row = 0; row < table.get_num_records(); ++row) {
        table.set_field(row, Cookie::random(CookieType::Unspecified, 255));
    }

    // A view: some rows, in an order of their own. It shows none until it is filled.
    const ODBView view{&table};
    view->displayAllRecords();
    int keys[] = {table.get_fieldnum("Start time"), table.get_fieldnum("Scene"), -1};
    table.set_sortfields(keys); // which must live as long as they are in use
    view->sort(1, 0);

    // Query by example: the values of a record are patterns, found anywhere and in any case.
    const std::unique_ptr<dbrecord> query{table.make_dummy_record()};
    query->set_field(table.get_fieldnum("Notes"), "print");
    view->set_query(query.get());
    std::printf("%d takes are prints\n", view->tag_matching_records(0));
    view->removeNonTagged(); // from the view; the table keeps them

    // A field map: which columns, in which order. The view keeps its text; the table file holds it.
    FieldMap map{view};
    map.setVisible(map.getFieldIdx("Start time"), false);
    map.setVisible(map.getFieldIdx("Cookie"), false);
    map.swap(map.getFieldIdx("Name"), map.getFieldIdx("Notes"));
    view->set_param_val(FieldMap::parameterName, map.asString().c_str());
    if (view->saveAsText(L"day.odb", false) == 0 || !CSV{view, map}.writeTo(L"day.csv")) {
        std::fputs("typical_road: nothing was written\n", stderr);
        return 1;
    }

    // A container file: a list of items by their identifiers, with attributes of your own.
    DBFieldDesc attributes[] = {{"Cookie", TEXT}, {"Note", TEXT}, {}};
    TarnContainerFile::Writer prints{attributes};
    prints.setName("Prints of the day");
    for (unsigned i = 0; i < view->get_num_records(); ++i) {
        const Cookie cookie{view->get_field(i, "Cookie"), false};
        prints.addItem(cookie)->set_field(1, view->get_field(i, "Notes"));
    }
    prints.save(L"day.sg"); // tells nothing: whoever must be sure reads the file again
    const TarnContainerFile::Reader read{L"day.sg", false};
    std::printf("%s: %u items\n", read.getName().c_str(), read.getNumItems());
    return read.valid() ? 0 : 1;
}
