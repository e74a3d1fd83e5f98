#include "tagColumn.h"

#include "extraColumns.h"
#include "messages.h"
#include "ole/oledb/oledb.h"

std::optional<unsigned> tagColumn(oledb& table) {
    const int col = addFieldWithRoom(table, {"Tag", DBFieldTypes::LONG});
    if (col < 0) {
        sayLine("the table has no room for a column \"Tag\"");
        return std::nullopt;
    }
    return static_cast<unsigned>(col);
}
