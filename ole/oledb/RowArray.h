#pragma once

#include <algorithm>
#include <cstddef>
#include <memory>
#include <vector>

class dbrecord;

/// The rows of a table: an array of owned record pointers.
///
/// Callers see a capacity that starts at `chunk` slots and grows by `chunk`; it is kept as a
/// number, while the array itself grows by doubling, so that adding rows one by one stays linear.
///
/// Its free slots are a gap that stays where rows were inserted or deleted last: doing so from row
/// to row through the whole table moves each row once.
class RowArray {
public:
    static constexpr unsigned chunk = 500;

    RowArray() = default;
    RowArray(const RowArray&) = delete;
    RowArray& operator=(const RowArray&) = delete;
    ~RowArray();

    [[nodiscard]] unsigned count() const noexcept { return count_; }
    [[nodiscard]] unsigned capacity() const noexcept { return capacity_; }
    /// Row i; null out of range.
    [[nodiscard]] dbrecord* at(unsigned i) const noexcept {
        return i < count_ ? rows_[i < gap_ ? i : i + gapSize()] : nullptr;
    }
    /// The rows side by side, for sorting; null where none was ever held. Linear in the rows behind
    /// the gap.
    [[nodiscard]] dbrecord** data() noexcept {
        moveGap(count_);
        return rows_;
    }

    /// Gives the array room for `rows` more rows. The capacity follows when the rows come.
    void makeRoomFor(unsigned rows);
    /// Gives a table that has no capacity yet one chunk of it.
    void startChunk();
    /// Appends a row; there must be room.
    void append(std::unique_ptr<dbrecord> row) noexcept;
    /// Puts rows before row `at`, which is at most the count; there must be room. Linear in the
    /// rows between it and the gap.
    void insert(unsigned at, std::vector<std::unique_ptr<dbrecord>>& rows) noexcept;
    /// Deletes n rows from `from` on; both lie within the count. Linear in the rows between them
    /// and the gap.
    void remove(unsigned from, unsigned n) noexcept;
    /// Deletes the rows that a test selects, in one pass, and returns how many.
    template <class Selects>
    unsigned removeIf(Selects selects) {
        dbrecord** const rows = data();
        dbrecord** const kept = std::stable_partition(
            rows, rows + count_, [&selects](const dbrecord* row) { return !selects(*row); });
        const auto first = static_cast<unsigned>(kept - rows);
        const unsigned removed = count_ - first;
        remove(first, removed);
        return removed;
    }
    /// Deletes all rows and the array; the capacity is 0 again.
    void clear() noexcept;
    /// Lets go of rows and array without deleting them.
    void abandon() noexcept;
    /// The position of a record, or all ones. Linear in the rows.
    [[nodiscard]] unsigned find(const dbrecord* row) const noexcept;

private:
    [[nodiscard]] std::size_t gapSize() const noexcept { return physical_ - count_; }
    void moveGap(unsigned to) noexcept;
    void reserve(std::size_t slots);
    void add_chunk() noexcept { capacity_ += chunk; }
    void raiseCount(unsigned rows) noexcept;

    dbrecord** rows_ = nullptr;
    unsigned count_ = 0;
    unsigned capacity_ = 0;
    std::size_t physical_ = 0;
    unsigned gap_ = 0; ///< rows in front of the gap
};
