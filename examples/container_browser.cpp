// Lists the items of a container file beside the takes that a table file has of them, or shows one
// of them whole. usage: container_browser ITEMS.sg TAKES.odb [NUMBER]

#include "ole/oledb/oledb.h"
#include "ole/oledb/TarnContainerFile.h"

#include <climits>
#include <cstdio>
#include <cstdlib>

namespace {

using Container = TarnContainerFile::Reader;

/// Why a table file could not be taken, or was taken in part only, as a person is told.
void tellError(const char* path, const oledb& table) {
    dberror error;
    if (!table.read_error_info(error)) {
        std::fprintf(stderr, "%s: no table file\n", path);
        return;
    }
    switch (error.code) {
    case 1:
        std::fprintf(stderr, "%s: a row does not fit its columns, after %d rows\n", path,
                     error.where);
        break;
    case 2:
        std::fprintf(stderr, "%s: unknown type of column, taken for text\n", path);
        break;
    default:
        std::fprintf(stderr, "%s: line %d of the header is wrong\n", path, error.where);
    }
}

/// A value of the take that an item names: "" where the table has no such take, or no such column.
const char* valueOf(const oledb& takes, const Cookie& cookie, const char* field) {
    const int row = takes.getRowIndexByID(cookie);
    const char* const value =
        row < 0 ? nullptr : takes.get_field(static_cast<unsigned>(row), field);
    return value ? value : "";
}

void list(const Container& container, const oledb& takes) {
    std::printf("%s, %u items%s\n", container.getName().c_str(), container.getNumItems(),
                container.isPermanent() ? ", permanent" : "");
    const int note = container.getItemAttribIndex("Note");
    for (unsigned i = 0; i < container.getNumItems(); ++i) {
        const Container::Item item = container.getItem(i);
        const bool known = takes.getRowIndexByID(item.getCookie()) >= 0;
        // A column of -1 has no values: a container without notes needs no test.
        std::printf("%3u  %-8s %-12s %s\n", i + 1,
                    known ? valueOf(takes, item.getCookie(), "Name") : "(unknown)",
                    valueOf(takes, item.getCookie(), "Start time"),
                    item.getAttrib(static_cast<unsigned>(note)).c_str());
    }
}

/// What a person reads of an item's take: every value beside the name of its column.
bool show(const Container& container, oledb& takes, unsigned number) {
    const Cookie cookie = container.getItem(number - 1).getCookie(); // none for a wrong number
    const int row = takes.getRowIndexByID(cookie);
    if (row < 0) {
        return false;
    }
    const dbrecord& take = *takes.get_record(static_cast<unsigned>(row));
    const int cookieCol = takes.get_fieldnum("Cookie");
    for (int col = 0; col < static_cast<int>(takes.get_num_fields()); ++col) {
        const auto& value = take.getField(static_cast<unsigned short>(col));
        if (!value.empty() && col != cookieCol) {
            std::printf("%-14s %s\n", takes.get_fieldname(static_cast<unsigned>(col)),
                        value.c_str());
        }
    }
    return true;
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 3 && argc != 4) {
        std::fputs("usage: container_browser ITEMS.sg TAKES.odb [NUMBER]\n", stderr);
        return 2;
    }
    const Container container{pathFromBytes(argv[1]), false};
    if (!container.valid()) {
        std::fprintf(stderr, "%s: no container file\n", argv[1]);
        return 1;
    }
    oledb takes{pathFromBytes(argv[2]), INT_MAX, true};
    dberror error;
    if (!takes.get_valid() || takes.read_error_info(error)) {
        tellError(argv[2], takes);
        if (!takes.get_valid()) {
            return 1;
        }
    }
    if (argc == 3) {
        list(container, takes);
    } else if (!show(container, takes, static_cast<unsigned>(std::strtoul(argv[3], nullptr, 10)))) {
        std::fprintf(stderr, "%s: item %s names no take of %s\n", argv[1], argv[3], argv[2]);
        return 1;
    }
    return 0;
}
