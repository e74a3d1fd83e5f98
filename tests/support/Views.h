#pragma once

// Views from lists of rows, and back.

#include "ole/oledb/ODBView.h"
#include "support/Tables.h"

#include <string>
#include <vector>

/// A view that shows rows, tagged as "0110" tells.
inline ODBView viewOf(oledb& table, const std::vector<int>& rows, const std::string& tags = "") {
    ODBView view{&table};
    for (const int row : rows) {
        view->append(row);
    }
    for (unsigned i = 0; i < tags.size(); ++i) {
        view->set_tag(i, tags[i] - '0');
    }
    return view;
}

inline ODBView viewOfAll(oledb& table) {
    ODBView view{&table};
    view->displayAllRecords();
    return view;
}

/// A view over another, of all its rows.
inline ODBView viewOver(const ODBView& base) {
    ODBView view{base->table()};
    view->baseView(base.rep());
    view->displayAllRecords();
    return view;
}

/// The source rows, "2 3 4".
inline std::string shownBy(const ODBView& view) {
    std::string rows;
    for (int i = 0; i < view->count(); ++i) {
        rows += (i == 0 ? "" : " ") + std::to_string(view->sourceRow(i));
    }
    return rows;
}

inline std::string tagsOf(const ODBView& view) {
    std::string tags;
    for (int i = 0; i < view->count(); ++i) {
        tags += view->tag(i) ? '1' : '0';
    }
    return tags;
}

/// The values of a column, "-" for positions without a record: "a b -".
inline std::string valuesOf(const ODBView& view, int col = 0) {
    std::string values;
    for (unsigned i = 0; i < view->get_num_records(); ++i) {
        const char* const text = view->get_field(i, col);
        values += (i == 0 ? "" : " ") + std::string{text ? text : "-"};
    }
    return values;
}
