#pragma once

#include "ole/oledb/DeletedRows.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

/// The entries of a view as plain memory.
///
/// Its size follows fixed rules, because tag bytes that earlier entries left in it come back with
/// entries that are added later. What takes out many entries at once leaves count, capacity and
/// every byte as taking them out one by one does.
///
/// The count may exceed the storage (`sizeFor(0)` keeps the count): the entries in use are then
/// those that the storage holds.
class EntryStorage {
public:
    /// One position: plain data, moved as memory.
    struct Entry {
        std::uint32_t row = 0;
        std::uint8_t tag = 0;

        /// The row as it is compared.
        [[nodiscard]] int signedRow() const noexcept { return static_cast<int>(row); }
    };

    [[nodiscard]] int count() const noexcept { return count_; }
    [[nodiscard]] int capacity() const noexcept { return capacity_; }
    [[nodiscard]] int held() const noexcept { return std::min(count_, capacity_); }
    [[nodiscard]] Entry* data() noexcept { return entries_.get(); }

    void clear() noexcept;
    /// Lets go of the memory without freeing it.
    void abandon() noexcept;
    /// No entries in the same memory.
    void restart() noexcept { count_ = 0; }
    /// Makes room for n entries: at least 20, growing to double, and shrinking to half when not
    /// even half of the room is needed. 0 frees the memory.
    void sizeFor(int n);
    /// Appends an entry and returns its position.
    int put(std::uint32_t row);
    /// Moves the entries from `at` on up by n, for which there is room. Those in the gap keep what
    /// their memory held.
    void openGap(int at, int n) noexcept;
    /// Inserts entries as single insertions at `at`, `at` + 1, ... do, each place brought into
    /// range: linear in the entries.
    void insert(int at, std::vector<std::uint32_t> rows);
    /// Takes n entries out. Nothing is changed where memory runs out.
    void takeOut(int from, int n);
    /// Takes out by runs, in one pass, what is tagged, or what is not; returns how many. Every
    /// entry must have storage.
    int takeOutTagged(bool tagged);
    /// Takes out what shows deleted rows and renumbers the others: one pass. Every entry must have
    /// storage. Nothing is changed where memory runs out.
    void takeOutRows(const DeletedRows& rows);
    /// The same without further memory: one pass a run of rows, and neither capacity nor unused
    /// bytes are as they should be.
    void takeOutRowsPlainly(const DeletedRows& rows) noexcept;

private:
    class Shrinking;
    struct Gone;

    [[nodiscard]] std::unique_ptr<Entry[]> storageFor(int capacity) const;
    void moveInto(std::unique_ptr<Entry[]> storage, int n) noexcept;
    template <class Keep>
    void leave(const Shrinking& size, const std::vector<std::uint8_t>& tags, Keep keep);
    [[nodiscard]] std::vector<Gone> showing(const DeletedRows::Pieces& pieces) const;

    std::unique_ptr<Entry[]> entries_;
    int count_ = 0;
    int capacity_ = 0;
};
