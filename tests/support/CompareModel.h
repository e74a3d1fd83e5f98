#pragma once

// The three comparisons of rows, written down from their rules one after the other.

#include "tarn/StringFunctions.h"

#include <algorithm>
#include <string>
#include <vector>

struct CompareModel {
    using Texts = std::vector<std::string>;

    std::vector<int> keys;
    int timecodeKey = -1;
    int offset = 0;
    bool force = false;

    [[nodiscard]] int ascending(const Texts& a, const Texts& b) const { return rowOrder(a, b, 1); }
    [[nodiscard]] int descending(const Texts& a, const Texts& b) const {
        for (const int key : keys) {
            if (const int result =
                    compareIgnoringCase(value(a, key).c_str(), value(b, key).c_str())) {
                return -result;
            }
        }
        return 0;
    }
    /// Blank and empty come first, and nothing but case is ignored.
    [[nodiscard]] int simple(const Texts& a, const Texts& b) const {
        CompareModel plain = *this;
        plain.timecodeKey = -1;
        plain.offset = 0;
        plain.force = true;
        return plain.rowOrder(a, b, -1);
    }

private:
    /// `emptyOrder` 1 puts blank rows and empty values last, -1 first.
    [[nodiscard]] int rowOrder(const Texts& a, const Texts& b, int emptyOrder) const {
        if (isBlank(a) || isBlank(b)) {
            return emptyOrder * (isBlank(a) - isBlank(b));
        }
        for (const int key : keys) {
            const std::string x = withoutLead(value(a, key));
            const std::string y = withoutLead(value(b, key));
            if (x.empty() || y.empty()) {
                return emptyOrder * (x.empty() - y.empty());
            }
            if (key == timecodeKey) {
                return oneKey(key, x, y);
            }
            if (const int result = oneKey(key, x, y)) {
                return result;
            }
        }
        return 0;
    }
    static bool isBlank(const Texts& row) {
        return std::all_of(row.begin(), row.end(), [](const auto& text) { return text.empty(); });
    }
    static std::string value(const Texts& row, int key) {
        const auto i = static_cast<std::size_t>(key);
        return i < row.size() ? row[i] : "";
    }
    static std::string withoutLead(const std::string& text) {
        const std::size_t first = text.find_first_not_of(" \t\n\v\f\r");
        return first == std::string::npos ? "" : text.substr(first);
    }
    /// The text from a position on, which may lie before its beginning or behind its end.
    static std::string from(const std::string& text, long position) {
        const long length = static_cast<long>(text.size());
        return text.substr(static_cast<std::size_t>(std::clamp(position, 0L, length)));
    }
    [[nodiscard]] int oneKey(int key, const std::string& x, const std::string& y) const {
        if (key == timecodeKey) {
            const int head = compareIgnoringCase(x.substr(0, 8).c_str(), y.substr(0, 8).c_str());
            return head != 0 ? head : compareIgnoringCase(from(x, 9).c_str(), from(y, 9).c_str());
        }
        if (offset > 0 || force) {
            return compareIgnoringCase(from(x, offset).c_str(), from(y, offset).c_str());
        }
        if (offset < 0) {
            return compareIgnoringCase(from(x, static_cast<long>(x.size()) + offset).c_str(),
                                       from(y, static_cast<long>(y.size()) + offset).c_str());
        }
        return strxcmp(x.c_str(), y.c_str());
    }
};
