// Tables for other programs. Written piece by piece: no copy of the table is made.

#include "dataFormats.h"

#include "ole/oledb/ODBBase.h"
#include "Output.h"
#include "shownText.h"
#include "tableValues.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace {

void appendCsvValue(std::string& line, std::string_view value) {
    if (value.find_first_of("\",\r\n") == std::string_view::npos) {
        line += value;
        return;
    }
    line += '"';
    for (const char c : value) {
        line += c;
        if (c == '"') {
            line += c;
        }
    }
    line += '"';
}

/// Ends a line. One that is empty would be taken for none, so its only value gets quotes.
void endCsvLine(std::string& line, Output& out) {
    line += line.empty() ? "\"\"\r\n" : "\r\n";
    out.write(line);
    line.clear();
}

bool isPlainJson(std::string_view text) {
    return std::all_of(text.begin(), text.end(),
                       [](char c) { return c >= ' ' && c <= '~' && c != '"' && c != '\\'; });
}

std::string jsonText(std::string_view text) {
    if (isPlainJson(text)) {
        return '"' + std::string{text} + '"';
    }
    return nlohmann::json(text).dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

/// The field names as keys, all different.
std::vector<std::string> jsonKeys(ODBBase& table, const std::vector<unsigned>& columns) {
    std::set<std::string> taken;
    std::vector<std::string> keys;
    for (const unsigned col : columns) {
        const std::string name = table.get_fieldname(col);
        std::string key = name;
        for (int n = 2; !taken.insert(key).second; ++n) {
            key = name + " " + std::to_string(n);
        }
        keys.push_back(jsonText(key));
    }
    return keys;
}

} // namespace

void printCsv(ODBBase& table, const std::vector<unsigned>& columns, Output& out) {
    std::string line;
    std::string_view separator;
    for (const unsigned col : columns) {
        line += separator;
        appendCsvValue(line, table.get_fieldname(col));
        separator = ",";
    }
    endCsvLine(line, out);
    for (unsigned row = 0; row < table.get_num_records() && !out.isClosed(); ++row) {
        separator = "";
        for (const unsigned col : columns) {
            line += separator;
            appendCsvValue(line, valueOf(table, row, col));
            separator = ",";
        }
        endCsvLine(line, out);
    }
}

std::size_t printJson(ODBBase& table, const std::vector<unsigned>& columns, Output& out) {
    const std::vector<std::string> keys = jsonKeys(table, columns);
    std::size_t changed = 0;
    for (const unsigned col : columns) {
        changed += isUtf8(table.get_fieldname(col)) ? 0 : 1;
    }
    std::string line;
    out.write("[");
    for (unsigned row = 0; row < table.get_num_records() && !out.isClosed(); ++row) {
        line = row == 0 ? "\n  {" : ",\n  {";
        for (std::size_t i = 0; i < columns.size(); ++i) {
            const std::string_view value = valueOf(table, row, columns[i]);
            changed += isUtf8(value) ? 0 : 1;
            line += (i == 0 ? "" : ", ") + keys[i] + ": " + jsonText(value);
        }
        out.write(line + "}");
    }
    out.write("\n]\n");
    return changed;
}
