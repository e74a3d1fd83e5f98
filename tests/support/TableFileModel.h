#pragma once

// The table file read and written the slow way, straight from the rules of the format: one
// character at a time, texts copied, nothing shared with the module.

#include <string>
#include <vector>

namespace FileModel {

using Texts = std::vector<std::string>;

inline bool isWhite(char c) {
    return c == ' ' || (c >= 9 && c <= 13);
}

/// A line of nothing but blanks, tabs and line ends.
inline bool isBlankLine(const std::string& line) {
    return line.find_first_not_of(" \t\r\n") == std::string::npos;
}

struct ReadRow {
    int result = 0;
    int nfields = 0; ///< the record's count, unchanged for a blank line
    Texts slots;
};

/// One field from `at` on, which stands behind it afterwards. Tells whether a comma ended it.
inline std::string readField(const std::string& line, std::size_t& at, bool& endedByComma) {
    std::string value;
    bool quoted = false;
    if (line[at] == '"') {
        quoted = true;
        ++at;
    }
    while (at < line.size() && isWhite(line[at])) {
        ++at;
    }
    endedByComma = false;
    while (at < line.size()) {
        const char c = line[at];
        const char next = at + 1 < line.size() ? line[at + 1] : '\0';
        if (c == '\\' && next == 'n') {
            value += '\n';
            at += 2;
        } else if (c == '"' && next == '"') {
            value += '"';
            at += 2;
        } else if (c == '"') {
            quoted = false;
            ++at;
        } else if (c == ',' && !quoted) {
            endedByComma = true;
            ++at;
            break;
        } else {
            value += c;
            ++at;
        }
    }
    while (!value.empty() && isWhite(value.back())) {
        value.pop_back();
    }
    return value;
}

/// A line read into a record that holds `slots`, with `nfields` of them in use.
inline ReadRow readRow(const std::string& wholeLine, Texts slots, int nfields) {
    const std::string text{wholeLine.c_str()}; // up to the first zero byte
    if (isBlankLine(text)) {
        return {0, nfields, slots};
    }
    const std::string line = text.substr(0, 4095);
    std::size_t at = 0;
    std::size_t position = 0;
    bool endedByComma = false;
    while (at < line.size() && position < slots.size()) {
        const auto byte = static_cast<unsigned char>(line[at]);
        if (byte < 32 || byte == 127) {
            ++at;
            endedByComma = false;
        } else {
            const std::string value = readField(line, at, endedByComma);
            if (!value.empty()) {
                slots[position] = value;
            }
        }
        ++position;
    }
    const int found = static_cast<int>(position) + (endedByComma ? 1 : 0);
    return {found, found, slots};
}

inline std::string writeRow(const Texts& values) {
    std::string line;
    for (std::size_t i = 0; i < values.size(); ++i) {
        line += i == 0 ? "\"" : ",\"";
        for (const char c : values[i]) {
            if (c == '\n') {
                line += "\\n";
            } else if (c == '"') {
                line += "\"\"";
            } else if (c != '\r') {
                line += c;
            }
        }
        line += '"';
    }
    return line;
}

struct LoadedRows {
    std::vector<Texts> rows;
    std::string error = "none"; ///< "code where aux1 aux2"
};

/// The data lines of a file for a table of `columns` columns. No first value is "OLEDB".
inline LoadedRows readRows(const Texts& lines, std::size_t columns, std::size_t maxRows) {
    LoadedRows loaded;
    for (const std::string& line : lines) {
        if (loaded.rows.size() >= maxRows) {
            break;
        }
        const ReadRow row = readRow(line, Texts(columns), static_cast<int>(columns));
        if (row.result == 0) {
            break;
        }
        if (row.nfields != static_cast<int>(columns)) {
            loaded.error = "1 " + std::to_string(loaded.rows.size()) + " 0 0";
            break;
        }
        loaded.rows.push_back(row.slots);
    }
    return loaded;
}

} // namespace FileModel
