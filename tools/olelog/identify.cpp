#include "identify.h"

#include "extraColumns.h"
#include "ole/oledb/oledb.h"
#include "tableValues.h"
#include "tarn/Cookie.h"

int identifyRows(oledb& table) {
    const int col = addFieldWithRoom(table, {"Cookie", DBFieldTypes::TEXT});
    int identified = 0;
    for (unsigned row = 0; col >= 0 && row < table.get_num_records(); ++row) {
        if (valueOf(table, row, static_cast<unsigned>(col)).empty()) {
            table.set_field(row, Cookie::random(CookieType::Unspecified, 0xff));
            ++identified;
        }
    }
    return col < 0 ? -1 : identified;
}
