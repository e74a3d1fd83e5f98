#pragma once

#include "ole/oledb/dbrecord.h"

#include <string_view>

/// A record's value as a slice; empty where the record has no such value.
inline std::string_view valueAt(const dbrecord& record, int col) {
    return col < 0 || col > 0xFFFF ? std::string_view{}
                                   : record.getField(static_cast<unsigned short>(col)).view();
}
