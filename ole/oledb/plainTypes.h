#pragma once

#include "ole/oledb/ODBView.h"
#include "ole/oledb/oledb.h"

#include <typeinfo>

// Hosts may derive from tables and views and answer in their own way. What the module works out by
// itself, without asking for each row, it works out for its own classes alone.

inline bool isPlain(const oledb& table) {
    return typeid(table) == typeid(oledb);
}

inline bool isPlain(const ODBViewRep& view) {
    return typeid(view) == typeid(ODBViewRep);
}

/// The table that a view's source asks in the end, where that and every view on the way are the
/// module's own; else null.
inline oledb* plainTableBelow(const ODBViewRep& view) {
    const ODBViewRep* bottom = &view;
    while (const ODBViewRep* const below = bottom->baseView()) {
        if (!isPlain(*below)) {
            return nullptr;
        }
        bottom = below;
    }
    oledb* const table = bottom->table();
    return table && isPlain(*table) ? table : nullptr;
}
