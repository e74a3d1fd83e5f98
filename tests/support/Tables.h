#pragma once

// Tables from lists of texts, and back.

#include "ole/oledb/oledb.h"

#include <memory>
#include <string>
#include <utility>
#include <vector>

using Texts = std::vector<std::string>;
using Rows = std::vector<Texts>;

struct Column {
    Column(const char* columnName) : name{columnName} {}
    Column(std::string columnName, DBFieldTypes::eType columnType)
        : name{std::move(columnName)}, type{columnType} {}
    std::string name;
    DBFieldTypes::eType type = DBFieldTypes::TEXT;
};
using Columns = std::vector<Column>;

inline std::vector<DBFieldDesc> descriptors(const Columns& columns) {
    std::vector<DBFieldDesc> list;
    for (const Column& column : columns) {
        list.emplace_back(column.name.c_str(), column.type);
    }
    list.emplace_back();
    return list;
}

/// Appends rows; each text is stored as it is, leading blanks included.
inline void addRows(oledb& table, const Rows& rows) {
    for (const Texts& row : rows) {
        dbrecord* const record = table.get_record(static_cast<unsigned>(table.add_records(1)));
        for (std::size_t i = 0; i < row.size(); ++i) {
            record->set_field(static_cast<int>(i), row[i].c_str(), false);
        }
    }
    table.clear_changed();
}

inline std::unique_ptr<oledb> makeTable(const Columns& columns, const Rows& rows = {}) {
    auto table = std::make_unique<oledb>(descriptors(columns).data());
    addRows(*table, rows);
    return table;
}

/// A table of one column "id" with the values 0 to n - 1.
inline std::unique_ptr<oledb> numberedTable(unsigned n) {
    Rows rows;
    for (unsigned i = 0; i < n; ++i) {
        rows.push_back({std::to_string(i)});
    }
    return makeTable({"id"}, rows);
}

inline Texts valuesOf(const dbrecord& record) {
    Texts values;
    for (unsigned short i = 0; i < record.nfields(); ++i) {
        values.emplace_back(record.get_field(i));
    }
    return values;
}

/// The rows that the table shows, each with the values in use.
inline Rows rowsOf(const oledb& table) {
    Rows rows;
    for (unsigned i = 0; i < table.get_num_records(); ++i) {
        rows.push_back(valuesOf(*table.get_record(i)));
    }
    return rows;
}

inline Texts columnOf(const oledb& table, int col) {
    Texts values;
    for (unsigned i = 0; i < table.get_num_records(); ++i) {
        const char* const text = table.get_field(i, col);
        values.emplace_back(text ? text : "(null)");
    }
    return values;
}

/// The tags of all rows, "0110".
inline std::string tagsOf(oledb& table) {
    std::string tags;
    for (unsigned i = 0; i < table.get_num_records(); ++i) {
        tags += std::to_string(table.get_tag(i));
    }
    return tags;
}

inline void setTags(oledb& table, const std::string& tags) {
    for (unsigned i = 0; i < tags.size(); ++i) {
        table.set_tag(i, tags[i] - '0');
    }
}

/// Parameters as "name=value" lines.
inline Texts paramsOf(const oledb& table) {
    Texts params;
    for (unsigned i = 0; i < table.get_num_params(); ++i) {
        params.push_back(std::string{table.get_param_name(i)} + "=" + table.get_param_value(i));
    }
    return params;
}

/// The error as "code where aux1 aux2", "none" without one.
inline std::string errorOf(const oledb& table) {
    dberror e;
    if (!table.read_error_info(e)) {
        return "none";
    }
    return std::to_string(e.code) + " " + std::to_string(e.where) + " " + std::to_string(e.aux1) +
           " " + std::to_string(e.aux2);
}

/// Cookie number n of a test.
inline Cookie cookieNo(unsigned n, char kind = 'M') {
    Cookie::Uuid uuid{};
    uuid[15] = static_cast<std::uint8_t>(n);
    return Cookie{uuid, kind, 255};
}
inline std::string cookieText(unsigned n, char kind = 'M') {
    return cookieNo(n, kind).asString(false).c_str();
}
