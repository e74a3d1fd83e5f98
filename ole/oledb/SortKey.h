#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

class dbrecord;

/// What the comparison in force asks of records: what `sortPrepare` has set, for one direction.
struct SortRules {
    std::vector<int> fields;
    int offset = 0;            ///< not 0 only where case is ignored
    bool ignoringCase = false; ///< instead of the natural order
    int timecodeField = -1;
    bool descending = false; ///< by `dbr_backcmp`, otherwise by `dbr_cmp`
};

/// The rules that the comparison of a direction follows now.
SortRules sortRulesInForce(bool descending);

/// A record as a row of bytes: two records stand to each other as their bytes do, taken as numbers
/// without a sign from the first on. Written once a record, so that a sort compares numbers.
///
/// A key ends where the comparison has no more to ask, and no key is the beginning of another, so
/// what stands behind its end does not matter; it is filled with zeros. Long keys are cut: where
/// two that were cut are equal, the comparison itself has the word. So a key takes 64 bytes at
/// most, however long the texts.
class SortKey {
public:
    static constexpr std::size_t mostWords = 8;

    /// Keeps a reference to the rules.
    explicit SortKey(const SortRules& rules) noexcept : rules_{rules} {}

    /// Makes this the key of a record.
    void write(const dbrecord& record) noexcept;

    /// How many words of eight bytes the key takes, at least one.
    [[nodiscard]] std::size_t words() const noexcept { return words_; }
    /// Eight bytes as a number whose order is theirs.
    [[nodiscard]] std::uint64_t word(std::size_t i) const noexcept;
    /// Whether bytes are missing at the end.
    [[nodiscard]] bool cut() const noexcept { return cut_; }

private:
    static constexpr std::size_t mostBytes = mostWords * 8;

    [[nodiscard]] std::size_t room() const noexcept { return mostBytes - size_; }
    void put(unsigned char byte) noexcept;
    void putCount(std::size_t count) noexcept;
    void putFolded(std::string_view text) noexcept;
    void putText(std::string_view text) noexcept;
    void putDigits(std::string_view digits) noexcept;
    void putNatural(std::string_view text) noexcept;
    void putTimecode(std::string_view text) noexcept;
    void putValue(std::string_view text, bool timecode) noexcept;
    [[nodiscard]] bool isBlank(const dbrecord& record) const noexcept;
    void putAscending(const dbrecord& record) noexcept;
    void putDescending(const dbrecord& record) noexcept;

    const SortRules& rules_;
    std::array<unsigned char, mostBytes> bytes_{};
    std::size_t size_ = 0;
    std::size_t words_ = 0;
    bool cut_ = false;
};
