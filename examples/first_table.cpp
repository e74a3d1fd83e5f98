// The prints of a log, in the order of their timecodes, as CSV. usage: first_table LOG.ale
#include "ole/interchange/ALE.h"
#include "ole/interchange/CSV.h"
#include "ole/oledb/oledb.h"

#include <cstdio>
#include <memory>

int main(int argc, char** argv) {
    using enum DBFieldTypes::eType;
    const DBFieldDesc columns[] = {
        {"Name", TEXT}, {"Scene", TEXT}, {"Start time", TIMECODE}, {"Notes", TEXT}, {}};
    oledb table{columns};
    if (argc != 2 || !ALE::fillODB(table, pathFromBytes(argv[1]))) {
        return 1;
    }
    const ODBView view{&table}; // rows of the table, in an order of their own
    view->displayAllRecords();
    view->set_sortfield(table.get_fieldnum("Start time"));
    view->sort(1, 0);
    const std::unique_ptr<dbrecord> query{table.make_dummy_record()}; // its values are patterns
    query->set_field(table.get_fieldnum("Notes"), "print");
    view->set_query(query.get());
    std::printf("%d takes are prints\n", view->tag_matching_records(0));
    view->removeNonTagged();                         // from the view; the table keeps them
    return CSV{view}.writeTo(L"prints.csv") ? 0 : 1; // false: nothing to write
}
