// Records as bytes that stand in the order of the comparisons of dbsort.cpp: each rule there has
// its counterpart here. Texts hold no zero byte, so a zero ends each: the shorter one comes first.

#include "ole/oledb/SortKey.h"

#include "ole/oledb/recordValue.h"
#include "ole/oledb/sortParts.h"
#include "tarn/Ascii.h"
#include "tarn/trimmed.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr unsigned char endOfText = 0;
/// An empty value, which comes last and ends the key. A text whose first byte is this or `escape`
/// has `escape` before it.
constexpr unsigned char empty = 0xFF;
constexpr unsigned char escape = 0xFE;
/// A count that does not fit into a byte follows in four.
constexpr unsigned char longCount = 0xFF;
/// Digit runs of at most so many digits tell the count in their first byte.
constexpr std::size_t shortRun = 8;

constexpr std::array<unsigned char, 256> foldedBytes = [] {
    std::array<unsigned char, 256> table{};
    for (unsigned i = 0; i < table.size(); ++i) {
        table[i] = static_cast<unsigned char>(Tarn::toLower(static_cast<char>(i)));
    }
    return table;
}();

unsigned char folded(char c) noexcept {
    return foldedBytes[static_cast<unsigned char>(c)];
}

std::size_t endOf(std::string_view text, std::size_t at, bool (*belongs)(char)) noexcept {
    while (at < text.size() && belongs(text[at])) {
        ++at;
    }
    return at;
}

bool isZero(char c) noexcept {
    return c == '0';
}

} // namespace

void SortKey::put(unsigned char byte) noexcept {
    if (size_ < mostBytes) {
        bytes_[size_++] = byte;
    } else {
        cut_ = true;
    }
}

void SortKey::putCount(std::size_t count) noexcept {
    if (count < longCount) {
        put(static_cast<unsigned char>(count));
        return;
    }
    put(longCount);
    for (int shift = 24; shift >= 0; shift -= 8) {
        put(static_cast<unsigned char>(count >> shift));
    }
}

void SortKey::putFolded(std::string_view text) noexcept {
    const std::size_t taken = std::min(text.size(), room());
    for (std::size_t i = 0; i < taken; ++i) {
        bytes_[size_ + i] = folded(text[i]);
    }
    size_ += taken; // where room was missing, what follows finds none: it notices the cut
}

void SortKey::putText(std::string_view text) noexcept {
    putFolded(text);
    put(endOfText);
}

/// The digits of a run without its leading zeros: first their count. Its byte is a digit whatever
/// the count, because beside anything but digits a run counts as its first one.
void SortKey::putDigits(std::string_view digits) noexcept {
    if (digits.size() <= shortRun) {
        put(static_cast<unsigned char>('0' + digits.size()));
    } else {
        put('9');
        putCount(digits.size());
    }
    putFolded(digits);
}

/// The natural order: digit runs by their value. Leading zeros decide where all else is equal, and
/// then there are as many runs on either side: so their counts stand behind the text.
void SortKey::putNatural(std::string_view text) noexcept {
    // Each run takes a byte, so there is room for all; each is written before it is read.
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init)
    std::array<std::size_t, mostBytes> zeros;
    std::size_t runs = 0;
    for (std::size_t at = 0; at < text.size() && !cut_;) {
        if (!Tarn::isDigit(text[at])) {
            put(folded(text[at++]));
            continue;
        }
        const std::size_t first = endOf(text, at, isZero);
        const std::size_t end = endOf(text, first, Tarn::isDigit);
        putDigits(text.substr(first, end - first));
        if (!cut_) {
            zeros[runs++] = first - at;
        }
        at = end;
    }
    put(endOfText);
    for (std::size_t i = 0; i < runs; ++i) {
        putCount(zeros[i]);
    }
}

void SortKey::putTimecode(std::string_view text) noexcept {
    putText(text.substr(0, timeOfTimecode));
    putText(textFrom(text, framesOfTimecode));
}

void SortKey::putValue(std::string_view text, bool timecode) noexcept {
    const std::string_view part = timecode ? text : partAt(text, rules_.offset);
    if (!part.empty() && folded(part.front()) >= escape) {
        put(escape);
    }
    if (timecode) {
        putTimecode(part);
    } else if (rules_.ignoringCase) {
        putText(part);
    } else {
        putNatural(part);
    }
}

/// A row that has a value in its first key is not blank, so that few are asked.
bool SortKey::isBlank(const dbrecord& record) const noexcept {
    const bool mayBe = rules_.fields.empty() || valueAt(record, rules_.fields.front()).empty();
    return mayBe && record.is_blank() != 0;
}

void SortKey::putAscending(const dbrecord& record) noexcept {
    if (isBlank(record)) {
        put(empty);
        put(empty); // behind the rows whose first key is empty
        return;
    }
    for (const int field : rules_.fields) {
        const std::string_view text = Tarn::trimmedFront(valueAt(record, field));
        if (text.empty()) {
            put(empty);
            return;
        }
        const bool timecode = field == rules_.timecodeField;
        putValue(text, timecode);
        if (cut_ || timecode) {
            return;
        }
    }
}

void SortKey::putDescending(const dbrecord& record) noexcept {
    for (const int field : rules_.fields) {
        putText(valueAt(record, field));
        if (cut_) {
            return;
        }
    }
}

void SortKey::write(const dbrecord& record) noexcept {
    size_ = 0;
    cut_ = false;
    if (rules_.descending) {
        putDescending(record);
    } else {
        putAscending(record);
    }
    words_ = std::max<std::size_t>((size_ + 7) / 8, 1);
    std::fill(bytes_.begin() + size_, bytes_.begin() + words_ * 8, endOfText);
}

std::uint64_t SortKey::word(std::size_t i) const noexcept {
    std::uint64_t word = 0;
    for (std::size_t at = 8 * i; at < 8 * i + 8; ++at) {
        word = word << 8 | bytes_[at];
    }
    return rules_.descending ? ~word : word;
}
