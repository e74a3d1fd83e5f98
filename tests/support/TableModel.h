#pragma once

// A table as plain vectors: rows with tags, the snapshot of shown rows, capacity, parameters aside,
// the cookie index with its partial states, batches, and the notices that each step sends.

#include "support/Tables.h"

#include <algorithm>
#include <map>
#include <optional>
#include <string>
#include <vector>

/// Columns: "id" and "cookie".
struct TableModel {
    struct Row {
        unsigned id; ///< never given twice
        std::string value;
        std::string cookie;
        int tag = 0;
    };

    std::vector<Row> rows;
    std::vector<unsigned> shown; ///< ids of the rows shown
    bool tagsOnly = false;
    unsigned capacity = 500;
    std::map<std::string, unsigned> cookies; ///< from text to row
    bool cookiesStale = false;               ///< texts changed under an index that has entries
    unsigned depth = 0;
    Texts pending;
    std::string notices;

    [[nodiscard]] unsigned count() const {
        return static_cast<unsigned>(tagsOnly ? shown.size() : rows.size());
    }
    [[nodiscard]] std::optional<unsigned> position(unsigned id) const {
        for (unsigned i = 0; i < rows.size(); ++i) {
            if (rows[i].id == id) {
                return i;
            }
        }
        return std::nullopt;
    }
    [[nodiscard]] Row* at(unsigned row) {
        if (row >= count()) {
            return nullptr;
        }
        return &rows[tagsOnly ? *position(shown[row]) : row];
    }

    int addRows(int n) {
        if (tagsOnly) {
            return -1;
        }
        const auto first = static_cast<int>(rows.size());
        makeRows(static_cast<unsigned>(first), static_cast<unsigned>(std::max(n, 0)));
        return first;
    }
    int insertRows(unsigned at, unsigned n) {
        if (tagsOnly) {
            return 0;
        }
        makeRows(std::min(at, static_cast<unsigned>(rows.size())), n);
        dropCookies();
        return static_cast<int>(n);
    }
    int deleteRows(unsigned from, unsigned n) {
        if (tagsOnly || from >= rows.size() || n == 0) {
            return 0;
        }
        n = std::min(n, static_cast<unsigned>(rows.size()) - from);
        std::string text;
        for (unsigned i = from; i < from + n; ++i) {
            text += std::to_string(i) + " ";
        }
        rows.erase(rows.begin() + from, rows.begin() + from + n);
        dropCookies();
        notice("recordsDeleted {" + text + "}");
        return static_cast<int>(n);
    }
    int deleteTagged() {
        if (tagsOnly) {
            return -1;
        }
        int deleted = 0;
        for (unsigned row = 0; row < rows.size(); ++row) {
            unsigned end = row;
            while (end < rows.size() && rows[end].tag == 1) {
                ++end;
            }
            deleted += deleteRows(row, end - row);
        }
        return deleted;
    }
    void show(bool on) {
        tagsOnly = on;
        if (on) {
            snapshot();
        }
        touchCookies();
    }
    void snapshot() {
        shown.clear();
        for (const Row& row : rows) {
            if (row.tag != 0) {
                shown.push_back(row.id);
            }
        }
    }
    /// Ascending, rows without a value come behind the others and blank rows last of all.
    void sortByValue(bool up) {
        const auto key = [up](const Row& row) {
            const int late = row.value.empty() ? 1 + (row.cookie.empty() ? 1 : 0) : 0;
            return std::pair{up ? late : 0, row.value};
        };
        std::stable_sort(rows.begin(), rows.end(), [&](const Row& a, const Row& b) {
            return up ? key(a) < key(b) : key(b) < key(a);
        });
        if (tagsOnly) {
            snapshot();
        }
        touchCookies();
    }
    /// Tags row by row of the interface, as `tag_matching_records` does.
    int tagValue(const std::string& value, bool keep) {
        int matches = 0;
        for (unsigned i = 0; i < rows.size(); ++i) {
            Row* const row = at(i);
            const bool match = !row || row->value.find(value) != std::string::npos;
            matches += match ? 1 : 0;
            if (row && (match || !keep)) {
                row->tag = match ? 1 : 0;
            }
        }
        return matches;
    }
    int setCookie(unsigned row, const std::string& cookie) {
        Row* const found = at(row);
        if (!found) {
            return 0;
        }
        cookiesStale = cookiesStale || cookies.count(found->cookie) != 0;
        found->cookie = cookie;
        cookies[cookie] = row;
        return 1;
    }
    void setCookieText(Row& row, const std::string& cookie) {
        row.cookie = cookie;
        touchCookies();
    }
    /// The row of a cookie; nothing where the index may hold what was true before.
    std::optional<int> rowOf(const std::string& cookie) {
        if (cookiesStale) {
            return std::nullopt;
        }
        if (cookies.empty()) {
            for (unsigned i = 0; i < count(); ++i) {
                if (!at(i)->cookie.empty()) {
                    cookies.emplace(at(i)->cookie, i);
                }
            }
        }
        const auto found = cookies.find(cookie);
        return found == cookies.end() ? -1 : static_cast<int>(found->second);
    }
    [[nodiscard]] unsigned newRow(unsigned raw) const {
        if (!tagsOnly || raw >= rows.size()) {
            return tagsOnly ? 0xFFFFFFFFU : raw;
        }
        const auto found = std::find(shown.begin(), shown.end(), rows[raw].id);
        return found == shown.end() ? 0xFFFFFFFFU : static_cast<unsigned>(found - shown.begin());
    }
    void begin() {
        if (depth++ == 0) {
            pending.clear();
        }
    }
    void end() {
        if (depth == 0 || --depth > 0 || pending.empty()) {
            return;
        }
        std::string text;
        for (const std::string& cookie : pending) {
            text += (text.empty() ? "" : " ") + cookie;
        }
        pending.clear();
        notice("recordsChanged {" + text + "}");
    }

private:
    void makeRows(unsigned at, unsigned n) {
        while (rows.size() + n > capacity) {
            capacity += 500;
        }
        for (unsigned i = 0; i < n; ++i) {
            rows.insert(rows.begin() + at + i, Row{nextId_++, "", "", 0});
        }
    }
    void notice(const std::string& text) { notices += (notices.empty() ? "" : " ") + text; }
    void dropCookies() {
        cookies.clear();
        cookiesStale = false;
    }
    /// An index without entries is built again; one with entries may now be wrong.
    void touchCookies() { cookiesStale = cookiesStale || !cookies.empty(); }

    unsigned nextId_ = 0;
};
