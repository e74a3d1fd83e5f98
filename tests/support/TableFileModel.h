#pragma once

// The table file read and written the slow way, straight from the rules of the format: one
// character at a time, texts copied, nothing shared with the module.

#include <algorithm>
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

struct LoadedFile : LoadedRows {
    bool valid = false;
    Texts params; ///< "name=value"
    Texts names;
    std::vector<bool> timecodes; ///< of columns without a heading, by their names
    std::vector<int> counts;     ///< of values, for each row
};

/// A whole file. Lines are read into one heading record: an empty field keeps what stood there.
class FileReader {
public:
    FileReader(const std::string& bytes, bool requireHeader) : lines_{linesOf(bytes)} {
        int found = readHeading();
        if (lower(first()).rfind("oledb:", 0) == 0 && found != 0) {
            do {
                takeParam(withoutLead(first()));
                found = readHeading();
            } while (found != 0 && lower(first()) != "oledb");
        }
        if (found == 0 || !readNames(found, requireHeader)) {
            return;
        }
        for (std::size_t i = 0; i < columns_; ++i) {
            file.names.push_back(heading_[i]);
            std::erase(file.names.back(), '&');
        }
        file.valid = true;
        while (readOneRow()) {
        }
    }

    LoadedFile file;

private:
    static Texts linesOf(const std::string& bytes) {
        Texts lines;
        for (std::size_t at = 0; at < bytes.size();) {
            const std::size_t end = std::min(bytes.find('\n', at), bytes.size());
            lines.push_back(bytes.substr(at, end - at));
            if (!lines.back().empty() && lines.back().back() == '\r') {
                lines.back().pop_back();
            }
            at = end + 1;
        }
        return lines;
    }
    static std::string lower(std::string text) {
        for (char& c : text) {
            c = c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
        }
        return text;
    }
    static std::string withoutLead(const std::string& text) {
        const auto white = std::find_if_not(text.begin(), text.end(), isWhite);
        return {white, text.end()};
    }
    const std::string& first() { return heading_[0]; }
    int read(Texts& slots, int nfields) {
        if (next_ >= lines_.size()) {
            return 0;
        }
        const ReadRow row = readRow(lines_[next_++], slots, nfields);
        slots = row.slots;
        return row.result;
    }
    int readHeading() { return read(heading_, 0); }
    void takeParam(const std::string& text) {
        const std::size_t colon = text.find(':');
        if (colon != 0 && colon != std::string::npos && file.params.size() < 40) {
            file.params.push_back(text.substr(0, colon) + "=" +
                                  withoutLead(text.substr(colon + 1)));
        }
    }
    bool readNames(int found, bool requireHeader) {
        const bool header = lower(first()) == "oledb";
        columns_ = static_cast<std::size_t>(std::min(header ? readHeading() : found, 255));
        if (!header) {
            for (std::size_t i = 0; i < columns_; ++i) {
                const std::string name = lower(heading_[i]);
                file.timecodes.push_back(name.find("start") != std::string::npos ||
                                         name.find("end") != std::string::npos);
            }
            return !requireHeader;
        }
        for (const char* const line : {"3", "4"}) {
            if (static_cast<std::size_t>(readHeading()) != columns_) {
                file.error = std::string{"3 "} + line + " 0 0";
                return false;
            }
        }
        return true;
    }
    bool readOneRow() {
        Texts slots(columns_);
        const int found = read(slots, 0);
        if (found != 0 && found != static_cast<int>(columns_)) {
            file.error = "1 " + std::to_string(file.rows.size()) + " 0 0";
            return false;
        }
        int count = found;
        for (int skip = found != 0 && slots[0] == "OLEDB" ? 3 : 0; skip > 0; --skip) {
            count = count == 0 ? 0 : read(slots, 0);
        }
        if (count != 0) {
            file.rows.push_back(slots);
            file.counts.push_back(count);
        }
        return count != 0;
    }

    Texts lines_;
    std::size_t next_ = 0;
    Texts heading_ = Texts(256);
    std::size_t columns_ = 0;
};

} // namespace FileModel
