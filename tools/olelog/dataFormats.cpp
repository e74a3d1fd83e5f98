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

/// The lines of a CSV text, cell by cell.
class CsvLines {
public:
    CsvLines(Output& out, const CsvStyle& style) : out_{out}, style_{style} {
        out_.write(style.mark ? "\xef\xbb\xbf" : "");
    }

    void add(std::string_view value) {
        line_ += first_ ? "" : ",";
        first_ = false;
        if (style_.guardFormulas && !value.empty() &&
            formulaStarts.find(value.front()) != std::string_view::npos) {
            ++guarded_;
            appendCsvValue(line_, "'" + std::string{value});
            return;
        }
        appendCsvValue(line_, value);
    }

    /// A line that is empty would be taken for none, so its only value gets quotes.
    void endLine() {
        line_ += line_.empty() ? "\"\"\r\n" : "\r\n";
        out_.write(line_);
        line_.clear();
        first_ = true;
    }

    [[nodiscard]] std::size_t guarded() const { return guarded_; }

private:
    static constexpr std::string_view formulaStarts = "=+-@\t\r";

    Output& out_;
    const CsvStyle& style_;
    std::string line_;
    bool first_ = true;
    std::size_t guarded_ = 0;
};

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

std::size_t printCsv(ODBBase& table, const std::vector<unsigned>& columns, Output& out,
                     const CsvStyle& style) {
    CsvLines lines{out, style};
    for (const unsigned col : columns) {
        lines.add(table.get_fieldname(col));
    }
    lines.endLine();
    for (unsigned row = 0; row < table.get_num_records() && !out.isClosed(); ++row) {
        for (const unsigned col : columns) {
            lines.add(valueOf(table, row, col));
        }
        lines.endLine();
    }
    return lines.guarded();
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
