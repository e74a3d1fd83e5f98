// Sorting records by keys that are written once.
//
// What is moved are entries of 16 bytes: a record's position and eight bytes of its key. They are
// sorted by those alone; those that agree there get their next eight bytes and are sorted again,
// and so on to the end of the key. Large groups are dealt by the bytes in which they differ, small
// ones are compared.

#include "ole/oledb/RecordOrder.h"

#include "ole/oledb/dbrecord.h"
#include "ole/oledb/dbsort.h"
#include "ole/oledb/RowsAhead.h"
#include "ole/oledb/SortKey.h"
#include "ole/oledb/StableSort.h"

#include <algorithm>
#include <array>
#include <limits>
#include <numeric>
#include <utility>

namespace {

using Compare = int (*)(const void*, const void*);

Compare compareOf(bool descending) noexcept {
    return descending ? dbr_backcmp : dbr_cmp;
}

/// Groups up to this size are compared, larger ones dealt by bytes.
constexpr std::size_t mostCompared = 512;

/// After so many keys the others are taken to be as long.
constexpr std::size_t sample = 1024;

struct Entry {
    std::uint64_t word;
    std::uint32_t position;
    std::uint32_t more; ///< where the further words of the key begin
};

using Entries = std::span<Entry>;

class KeySort {
public:
    KeySort(std::span<dbrecord* const> records, bool descending)
        : records_{records}, compare_{compareOf(descending)}, entries_(records.size()),
          lengths_(records.size()) {
        writeKeys(sortRulesInForce(descending));
    }

    LargeVector<std::uint32_t> order() {
        const Entries all{entries_};
        if (!isInOrder(all)) {
            if (all.size() > mostCompared) {
                dealt_.resize(all.size());
            }
            sort(all, 0);
        }
        LargeVector<std::uint32_t> positions(all.size());
        std::transform(all.begin(), all.end(), positions.begin(),
                       [](const Entry& entry) { return entry.position; });
        comco = static_cast<int>(static_cast<unsigned>(comco) + comparisons_);
        return positions;
    }

private:
    /// A key's length in words, and whether it was cut.
    struct Length {
        std::uint8_t words;
        bool cut;
    };

    void writeKeys(const SortRules& rules);
    [[nodiscard]] Length lengthOf(const Entry& entry) const { return lengths_[entry.position]; }
    int compareRecords(const Entry& a, const Entry& b) const;
    int compare(const Entry& a, const Entry& b);
    bool isInOrder(Entries entries);
    void sort(Entries entries, std::size_t depth);
    void sortByWord(Entries entries);
    void sortEqual(Entries entries, std::size_t depth);
    void deal(Entries entries, std::uint64_t varied);

    std::span<dbrecord* const> records_;
    Compare compare_;
    LargeVector<Entry> entries_;
    LargeVector<Entry> dealt_;
    LargeVector<Length> lengths_;
    LargeVector<std::uint64_t> moreWords_;
    unsigned comparisons_ = 0; // goes round, as `comco` does
};

void KeySort::writeKeys(const SortRules& rules) {
    RowsAhead ahead{records_.size(), rules.fields, [this](std::size_t at) { return records_[at]; }};
    SortKey key{rules};
    moreWords_.reserve(3 * std::min(sample, records_.size()));
    for (std::uint32_t i = 0; i < records_.size(); ++i) {
        if (i == sample) {
            moreWords_.reserve((moreWords_.size() + sample / 8) * records_.size() / sample);
        }
        ahead.reach(i);
        key.write(*records_[i]);
        entries_[i] = {key.word(0), i, static_cast<std::uint32_t>(moreWords_.size())};
        lengths_[i] = {static_cast<std::uint8_t>(key.words()), key.cut()};
        for (std::size_t word = 1; word < key.words(); ++word) {
            moreWords_.push_back(key.word(word));
        }
    }
}

int KeySort::compareRecords(const Entry& a, const Entry& b) const {
    return compare_(&records_[a.position], &records_[b.position]);
}

/// Compares entries that hold the first words of their keys.
int KeySort::compare(const Entry& a, const Entry& b) {
    ++comparisons_;
    if (a.word != b.word) {
        return a.word < b.word ? -1 : 1;
    }
    const Length length = lengthOf(a); // b's as well, where they agree so far
    for (std::size_t i = 0; i + 1U < length.words; ++i) {
        const std::uint64_t wordOfA = moreWords_[a.more + i];
        const std::uint64_t wordOfB = moreWords_[b.more + i];
        if (wordOfA != wordOfB) {
            return wordOfA < wordOfB ? -1 : 1;
        }
    }
    return length.cut ? compareRecords(a, b) : 0;
}

/// Tables are often sorted as they stand already.
bool KeySort::isInOrder(Entries entries) {
    return std::adjacent_find(entries.begin(), entries.end(),
                              [this](const Entry& a, const Entry& b) {
                                  return compare(a, b) > 0;
                              }) == entries.end();
}

void KeySort::sort(Entries entries, std::size_t depth) {
    sortByWord(entries);
    for (auto first = entries.begin(); first != entries.end();) {
        const auto end = std::find_if(first + 1, entries.end(), [first](const Entry& entry) {
            return entry.word != first->word;
        });
        if (end - first > 1) {
            sortEqual({first, end}, depth);
        }
        first = end;
    }
}

/// Sorts entries whose keys agree up to and including a depth, and so are as long as one another
/// where they end here.
void KeySort::sortEqual(Entries entries, std::size_t depth) {
    const Length length = lengthOf(entries.front());
    if (depth + 1 < length.words) {
        for (Entry& entry : entries) {
            entry.word = moreWords_[entry.more + depth];
        }
        sort(entries, depth + 1);
    } else if (length.cut) {
        stableSort(entries.data(), entries.size(),
                   [this](const Entry& a, const Entry& b) { return compareRecords(a, b) < 0; });
    }
}

void KeySort::sortByWord(Entries entries) {
    if (entries.size() <= mostCompared) {
        // Entries that agree so far stand by their positions, which keeps the order of equal ones.
        std::sort(entries.begin(), entries.end(), [this](const Entry& a, const Entry& b) {
            ++comparisons_;
            return a.word != b.word ? a.word < b.word : a.position < b.position;
        });
        return;
    }
    std::uint64_t varied = 0;
    for (const Entry& entry : entries) {
        varied |= entry.word ^ entries.front().word;
    }
    deal(entries, varied);
}

/// Deals entries into 256 heaps by each byte in which they differ, the least one first.
void KeySort::deal(Entries entries, std::uint64_t varied) {
    Entry* from = entries.data();
    Entry* to = dealt_.data();
    for (unsigned shift = 0; shift < 64; shift += 8) {
        if ((varied >> shift & 0xFF) == 0) {
            continue;
        }
        std::array<std::size_t, 256> ends{};
        const std::span dealing{from, entries.size()};
        for (const Entry& entry : dealing) {
            ++ends[entry.word >> shift & 0xFF];
        }
        std::exclusive_scan(ends.begin(), ends.end(), ends.begin(), std::size_t{0});
        for (const Entry& entry : dealing) {
            to[ends[entry.word >> shift & 0xFF]++] = entry;
        }
        std::swap(from, to);
    }
    if (from != entries.data()) {
        std::copy_n(from, entries.size(), entries.data());
    }
}

/// The same by the comparison alone, which is no consistent order where records are missing: the
/// sort is safe with that.
LargeVector<std::uint32_t> plainOrderOf(std::span<dbrecord* const> records, bool descending) {
    const Compare compare = compareOf(descending);
    LargeVector<std::uint32_t> positions(records.size());
    std::iota(positions.begin(), positions.end(), 0U);
    stableSort(positions.data(), positions.size(), [&](std::uint32_t a, std::uint32_t b) {
        return records[a] && records[b] && compare(&records[a], &records[b]) < 0;
    });
    return positions;
}

/// Whether each record can have a key, and the entries can number what the keys hold.
bool canHaveKeys(std::span<dbrecord* const> records) {
    constexpr std::size_t most = std::numeric_limits<std::uint32_t>::max() / SortKey::mostWords;
    return records.size() <= most &&
           std::find(records.begin(), records.end(), nullptr) == records.end();
}

} // namespace

LargeVector<std::uint32_t> orderOf(std::span<dbrecord* const> records, bool descending) {
    return canHaveKeys(records) ? KeySort{records, descending}.order()
                                : plainOrderOf(records, descending);
}
