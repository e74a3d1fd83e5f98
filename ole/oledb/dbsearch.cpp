// Finding rows by a text or a cookie.

#include "ole/oledb/oledb.h"
#include "ole/oledb/recordValue.h"
#include "ole/oledb/RowsAhead.h"

#include <cstddef>
#include <span>
#include <string_view>
#include <unordered_map>
#include <vector>

int oledb::findFirst(const char* field, const char* value, int n) {
    const char* const wanted = value ? value : "";
    if (compareIgnoringCase(field, "cookie") == 0) {
        const int row = getRowIndexByID(Cookie{wanted, false});
        if (row >= 0) {
            return row;
        }
    }
    const int col = get_fieldnum(field);
    if (col < 0) {
        return -1;
    }
    const std::size_t compared = n > 0 ? static_cast<std::size_t>(n) : std::string_view::npos;
    const std::string_view sought = std::string_view{wanted}.substr(0, compared);
    for (unsigned i = 0; i < rows_.count(); ++i) {
        if (valueAt(*rows_.at(i), col).substr(0, compared) == sought) {
            return static_cast<int>(i);
        }
    }
    return -1;
}

std::vector<int> oledb::findFirstOfEach(const std::vector<Cookie>& cookies) {
    std::vector<int> found;
    found.reserve(cookies.size());
    std::vector<std::size_t> unknown;
    for (const Cookie& cookie : cookies) {
        found.push_back(getRowIndexByID(cookie));
        if (found.back() < 0) {
            unknown.push_back(found.size() - 1);
        }
    }
    if (unknown.empty()) {
        return found;
    }
    std::vector<LightweightString<char>> texts;
    texts.reserve(unknown.size());
    for (const std::size_t i : unknown) {
        texts.push_back(cookies[i].asString(false));
    }
    const std::vector<int> rows = firstRowsOf(texts, get_fieldnum("Cookie"));
    for (std::size_t i = 0; i < unknown.size(); ++i) {
        found[unknown[i]] = rows[i];
    }
    return found;
}

/// The first row of each text in a column, -1 for none: all of them in one pass over the rows.
std::vector<int> oledb::firstRowsOf(const std::vector<LightweightString<char>>& texts,
                                    int col) const {
    std::unordered_map<std::string_view, int> rowOfText;
    rowOfText.reserve(texts.size());
    for (const LightweightString<char>& text : texts) {
        rowOfText.emplace(text.view(), -1);
    }
    const unsigned n = col < 0 ? 0 : rows_.count();
    RowsAhead ahead{n, std::span{&col, 1},
                    [this](std::size_t row) { return rows_.at(static_cast<unsigned>(row)); }};
    for (unsigned row = 0; row < n; ++row) {
        ahead.reach(row);
        const auto sought = rowOfText.find(valueAt(*rows_.at(row), col));
        if (sought != rowOfText.end() && sought->second < 0) {
            sought->second = static_cast<int>(row);
        }
    }
    std::vector<int> rows;
    rows.reserve(texts.size());
    for (const LightweightString<char>& text : texts) {
        rows.push_back(rowOfText.find(text.view())->second);
    }
    return rows;
}
