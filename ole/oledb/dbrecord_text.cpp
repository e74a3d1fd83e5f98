// A row as a line of a table file.
//
//   row    = [ field { "," field } ]
//   field  = quote { any byte | quote quote | backslash "n" } quote
//
// The writer doubles quotes, writes line feeds as backslash n and drops carriage returns; it does
// not escape backslashes. The reader also takes fields without quotes; see `FieldScanner`.

#include "ole/oledb/dbrecord.h"
#include "ole/oledb/oledb.h"
#include "ole/oledb/RecentValues.h"
#include "ole/oledb/rowText.h"

#include "misc/diagnostics.h"
#include "tarn/Ascii.h"
#include "tarn/byteWords.h"
#include "tarn/StringFunctions.h"
#include "tarn/TextFile.h"
#include "tarn/trimmed.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace {

constexpr std::size_t longestLine = 4095;
constexpr std::size_t longestValue = 4096;

/// Where the first quote or backslash stands at or behind `at`; the text's length where none does.
std::size_t findQuoteOrBackslash(std::string_view text, std::size_t at) {
    while (at + 8 <= text.size()) {
        const std::uint64_t word = Tarn::eightBytes(text.data() + at);
        if ((Tarn::hasByte(word, '"') | Tarn::hasByte(word, '\\')) != 0) {
            break;
        }
        at += 8;
    }
    while (at < text.size() && text[at] != '"' && text[at] != '\\') {
        ++at;
    }
    return at;
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
        const std::size_t close = findQuoteOrBackslash(rest_, 1);
        if (close == rest_.size() || rest_[close] != '"' ||
            (close + 1 < rest_.size() && rest_[close + 1] != ',')) {
            return false;
        }
        field = Tarn::trimmed(rest_.substr(1, close - 1));
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

// -- writing --

/// Marks quotes and all control characters at once: with its second bit turned round a quote is the
/// byte behind the control characters, which stay among themselves.
std::uint64_t holdsEscaped(std::uint64_t word) {
    constexpr std::uint64_t secondBits = 0x0202020202020202;
    return Tarn::hasByteBelow(word ^ secondBits, ('"' ^ 2) + 1);
}

/// Writes a text escaped, at most twice its length; returns the end.
char* copyEscaped(char* to, std::string_view text) {
    for (const char c : text) {
        switch (c) {
        case '"':
            *to++ = '"';
            *to++ = '"';
            break;
        case '\n':
            *to++ = '\\';
            *to++ = 'n';
            break;
        case '\r':
            break;
        default:
            *to++ = c;
        }
    }
    return to;
}

/// Writes a value in quotes, at most twice its length and two bytes; returns the end.
char* writeQuoted(char* to, std::string_view text) {
    *to++ = '"';
    const bool isPlain = Tarn::copyMarking(to, text, holdsEscaped) == 0;
    to = isPlain ? to + text.size() : copyEscaped(to, text);
    *to++ = '"';
    return to;
}

} // namespace

void appendQuotedValue(Tarn::LineBuffer& line, std::string_view text) {
    line.takeUpTo(writeQuoted(line.roomFor(2 * text.size() + 2), text));
}

int dbrecord::read(TextFile& file) {
    const bool lineThere = readLine(
        file, [](std::size_t, std::string_view text) { return LightweightString<char>{text}; });
    if (lineThere && container_) {
        container_->rowRead();
    }
    return lineThere ? nfields_ : 0;
}

bool dbrecord::readOneOfMany(TextFile& file, RecentValues& recent) {
    return readLine(file, [&recent](std::size_t slot, std::string_view text) {
        return recent.stringOf(slot, text);
    });
}

/// Reads a line; `stringOf` makes the string of a slot's text. False where there is none.
template <class StringOf>
bool dbrecord::readLine(TextFile& file, StringOf stringOf) {
    const std::string_view line = lineToParse(file);
    if (line.empty()) {
        return false;
    }
    FieldScanner fields{line};
    unsigned found = 0;
    while (!fields.atEnd() && found < size_) {
        const std::string_view text = fields.next();
        if (!text.empty()) {
            values_[found] = stringOf(found, valueToStore(text));
        }
        ++found;
    }
    nfields_ = static_cast<unsigned short>(found + (fields.endedByComma() ? 1 : 0));
    changed_ = 1;
    return true;
}

int dbrecord::write(TextFile& file) const {
    Tarn::LineBuffer line;
    return writeLine(file, line);
}

int dbrecord::writeLine(TextFile& file, Tarn::LineBuffer& line) const {
    line.clear();
    for (unsigned short i = 0; i < nfields_; ++i) {
        const std::string_view text = i < values_.size() ? values_[i].view() : std::string_view{};
        char* to = line.roomFor(2 * text.size() + 3);
        if (i != 0) {
            *to++ = ',';
        }
        line.takeUpTo(writeQuoted(to, text));
    }
    file.appendLine(line.view());
    changed_ = 0;
    return 1;
}
