// The row array of tables. Only this file moves row pointers.

#include "ole/oledb/RowArray.h"

#include "misc/OS.h"
#include "ole/oledb/dbrecord.h"

#include <algorithm>
#include <new>

namespace {

constexpr std::size_t mostRows =
    0xFFFFF000; // the capacity, a multiple of the chunk, stays a 32-bit number

} // namespace

RowArray::~RowArray() {
    clear();
}

void RowArray::reserve(std::size_t slots) {
    if (slots <= physical_) {
        return;
    }
    const std::size_t wanted = std::max(slots, 2 * physical_);
    rows_ = static_cast<dbrecord**>(OS().reallocate(rows_, wanted * sizeof(dbrecord*)));
    physical_ = wanted;
}

void RowArray::makeRoomFor(unsigned rows) {
    const std::size_t needed = std::size_t{count_} + rows;
    if (needed > mostRows) {
        throw std::bad_alloc{};
    }
    reserve(needed);
}

void RowArray::startChunk() {
    reserve(chunk);
    if (capacity_ == 0) {
        add_chunk();
    }
}

void RowArray::raiseCount(unsigned rows) noexcept {
    count_ += rows;
    while (capacity_ < count_) {
        add_chunk();
    }
}

void RowArray::append(std::unique_ptr<dbrecord> row) noexcept {
    rows_[count_] = row.release();
    raiseCount(1);
}

void RowArray::insert(unsigned at, std::vector<std::unique_ptr<dbrecord>>& rows) noexcept {
    std::copy_backward(rows_ + at, rows_ + count_, rows_ + count_ + rows.size());
    std::transform(rows.begin(), rows.end(), rows_ + at, [](auto& row) { return row.release(); });
    raiseCount(static_cast<unsigned>(rows.size()));
}

void RowArray::remove(unsigned from, unsigned n) noexcept {
    std::for_each(rows_ + from, rows_ + from + n, [](dbrecord* row) { delete row; });
    std::copy(rows_ + from + n, rows_ + count_, rows_ + from);
    count_ -= n;
}

void RowArray::clear() noexcept {
    std::for_each(rows_, rows_ + count_, [](dbrecord* row) { delete row; });
    OS().reallocate(rows_, 0);
    abandon();
}

void RowArray::abandon() noexcept {
    rows_ = nullptr;
    count_ = 0;
    capacity_ = 0;
    physical_ = 0;
}

unsigned RowArray::find(const dbrecord* row) const noexcept {
    const auto* const found = std::find(rows_, rows_ + count_, row);
    return found == rows_ + count_ ? ~0U : static_cast<unsigned>(found - rows_);
}
