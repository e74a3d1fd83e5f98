// A host in small, for every way to link the module: a table, its file, and a view on what was
// loaded. Exit status 0 where all is as it should be. usage: day TABLE-FILE

#include "misc/paths.h"
#include "ole/ole.h"
#include "ole/oledb/ODBView.h"
#include "ole/oledb/oledb.h"

#include <cstdio>
#include <string_view>

namespace {

bool holds(bool truth, const char* what) {
    if (!truth) {
        std::fprintf(stderr, "day: %s\n", what);
    }
    return truth;
}

bool save(const LightweightString<wchar_t>& path) {
    const DBFieldDesc columns[] = {{"Name", DBFieldTypes::TEXT}, {"Shot", DBFieldTypes::LONG}, {}};
    oledb table{columns};
    table.set_filename(path);
    table.add_records(3);
    const char* const names[] = {"31A-3", "31A-1", "31A-2"};
    for (unsigned row = 0; row < 3; ++row) {
        table.set_field(row, 0, names[row]);
        table.set_field(row, 1, names[row] + 4);
    }
    return holds(table.save_text() == 3, "the table was not saved");
}

bool load(const LightweightString<wchar_t>& path) {
    oledb table{path, 100, true};
    const ODBView view{&table};
    view->displayAllRecords();
    int keys[] = {table.get_fieldnum("Shot"), -1};
    table.set_sortfields(keys);
    view->sort(1, 0);
    return holds(view->get_num_records() == 3, "not every row came back") &&
           holds(std::string_view{view->get_field(0, "Name")} == "31A-1",
                 "the view is not sorted") &&
           holds(std::string_view{view->get_field(2, "Name")} == "31A-3", "the view is not sorted");
}

} // namespace

int main(int argc, char** argv) {
    const std::string_view version = oledbDllVersionStr();
    const bool done = holds(argc == 2, "usage: day TABLE-FILE") &&
                      holds(version.starts_with("14."), "another version of the module") &&
                      save(pathFromBytes(argv[1])) && load(pathFromBytes(argv[1]));
    return done ? 0 : 1;
}
