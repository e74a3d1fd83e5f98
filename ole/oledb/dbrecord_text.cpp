// A row as a line of a table file.
//
//   row    = [ field { "," field } ]
//   field  = quote { any byte | quote quote | backslash "n" } quote
//
// The writer doubles quotes, writes line feeds as backslash n and drops carriage returns; it does
// not escape backslashes. The reader also takes fields without quotes; see `FieldScanner`.

#include "ole/oledb/dbrecord.h"
#include "ole/oledb/oledb.h"
#include "ole/oledb/rowText.h"

#include "misc/diagnostics.h"
#include "tarn/Ascii.h"
#include "tarn/StringFunctions.h"
#include "tarn/TextFile.h"
#include "tarn/trimmed.h"

#include <array>
#include <cstring>
#include <string_view>

namespace {

constexpr std::size_t longestLine = 4095;
constexpr std::size_t longestValue = 4096;

bool holdsBackslash(std::string_view text) {
    return text.find('\\') != std::string_view::npos;
}

/// Cuts a line into its fields.
///
/// A quote as the first byte of a field opens quoted text, in which commas are ordinary; a doubled
/// quote is one quote, any other quote closes (and is dropped, wherever it stands). Blanks around a
/// field go, inside quotes too. A control character where a field begins is passed over and counts
/// as a field.
class FieldScanner {
public:
    // Clearing the text first would cost more than reading a row.
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init)
    explicit FieldScanner(std::string_view line) : rest_{line} {}

    [[nodiscard]] bool atEnd() const { return rest_.empty(); }
    /// Whether the field read last was ended by a comma.
    [[nodiscard]] bool endedByComma() const { return endedByComma_; }

    /// The next field's text, good until the next call.
    std::string_view next() {
        endedByComma_ = false;
        if (Tarn::isControl(rest_.front())) {
            rest_.remove_prefix(1);
            return {};
        }
        std::string_view field;
        return plainlyQuoted(field) ? field : decoded();
    }

private:
    /// Takes a field that stands in quotes and holds nothing to decode: by far the most common
    /// form.
    bool plainlyQuoted(std::string_view& field) {
        if (rest_.front() != '"') {
            return false;
        }
        const std::size_t close = rest_.find('"', 1);
        if (close == std::string_view::npos ||
            (close + 1 < rest_.size() && rest_[close + 1] != ',')) {
            return false;
        }
        const std::string_view text = rest_.substr(1, close - 1);
        if (holdsBackslash(text)) {
            return false;
        }
        field = Tarn::trimmed(text);
        rest_.remove_prefix(close + 1);
        passComma();
        return true;
    }

    std::string_view decoded() {
        bool quoted = rest_.front() == '"';
        rest_.remove_prefix(quoted ? 1 : 0);
        rest_ = Tarn::trimmedFront(rest_);
        std::size_t length = 0;
        while (!rest_.empty() && (quoted || rest_.front() != ',')) {
            length += decodeOne(length, quoted);
        }
        passComma();
        return Tarn::trimmedBack({text_.data(), length});
    }

    /// Decodes what stands next to position `at`; returns how many bytes that gave.
    std::size_t decodeOne(std::size_t at, bool& quoted) {
        const char c = rest_.front();
        const char following = rest_.size() > 1 ? rest_[1] : '\0';
        if (c == '"' && following != '"') {
            quoted = false;
            rest_.remove_prefix(1);
            return 0;
        }
        const bool pair = c == '"' || (c == '\\' && following == 'n');
        text_[at] = c == '\\' && pair ? '\n' : c;
        rest_.remove_prefix(pair ? 2 : 1);
        return 1;
    }

    void passComma() {
        endedByComma_ = !rest_.empty() && rest_.front() == ',';
        rest_.remove_prefix(endedByComma_ ? 1 : 0);
    }

    std::string_view rest_;
    bool endedByComma_ = false;
    std::array<char, longestLine> text_; // no field is longer than its line
};

std::string_view lineToParse(TextFile& file) {
    const std::string_view line = file.nextLine();
    const std::string_view text = line.substr(0, line.find('\0'));
    return isEssentiallyEmpty(text) ? std::string_view{} : text.substr(0, longestLine);
}

std::string_view valueToStore(std::string_view text) {
    if (text.size() <= longestValue) {
        return text;
    }
    LogBoth("ERROR: truncatins dbrecord length, check project odb now\n");
    return text.substr(0, longestValue);
}

} // namespace

void appendQuotedValue(std::string& line, std::string_view text) {
    line += '"';
    while (!text.empty()) {
        const std::size_t plain = std::min(text.find_first_of("\"\n\r"), text.size());
        line.append(text, 0, plain);
        if (plain == text.size()) {
            break;
        }
        switch (text[plain]) {
        case '"':
            line += "\"\"";
            break;
        case '\n':
            line += "\\n";
            break;
        default: // a carriage return is dropped
            break;
        }
        text.remove_prefix(plain + 1);
    }
    line += '"';
}

int dbrecord::read(TextFile& file) {
    const std::string_view line = lineToParse(file);
    if (line.empty()) {
        return 0;
    }
    FieldScanner fields{line};
    unsigned found = 0;
    while (!fields.atEnd() && found < size_) {
        const std::string_view text = fields.next();
        if (!text.empty()) {
            values_[found] = LightweightString<char>{valueToStore(text)};
        }
        ++found;
    }
    nfields_ = static_cast<unsigned short>(found + (fields.endedByComma() ? 1 : 0));
    changed_ = 1;
    if (container_) {
        container_->rowRead();
    }
    return nfields_;
}

int dbrecord::write(TextFile& file) const {
    std::string line;
    return writeLine(file, line);
}

int dbrecord::writeLine(TextFile& file, std::string& line) const {
    line.clear();
    for (unsigned short i = 0; i < nfields_; ++i) {
        if (i != 0) {
            line += ',';
        }
        appendQuotedValue(line, getField(i).view());
    }
    file.appendLine(line);
    changed_ = 0;
    return 1;
}
