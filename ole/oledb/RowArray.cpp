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
    moveGap(count_);
    const std::size_t wanted = std::max(slots, 2 * physical_);
    rows_ = static_cast<dbrecord**>(OS().reallocate(rows_, wanted * sizeof(dbrecord*)));
    physical_ = wanted;
}

void RowArray::moveGap(unsigned to) noexcept {
    const std::size_t size = gapSize();
    if (size == 0) {
        gap_ = to;
        return;
    }
    if (to < gap_) {
        std::copy_backward(rows_ + to, rows_ + gap_, rows_ + gap_ + size);
    } else if (to > gap_) {
        std::copy(rows_ + gap_ + size, rows_ + to + size, rows_ + gap_);
    }
    gap_ = to;
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
    moveGap(count_);
    rows_[gap_++] = row.release();
    raiseCount(1);
}

void RowArray::insert(unsigned at, std::vector<std::unique_ptr<dbrecord>>& rows) noexcept {
    moveGap(at);
    std::transform(rows.begin(), rows.end(), rows_ + at, [](auto& row) { return row.release(); });
    gap_ += static_cast<unsigned>(rows.size());
    raiseCount(static_cast<unsigned>(rows.size()));
}

void RowArray::remove(unsigned from, unsigned n) noexcept {
    moveGap(from + n);
    std::for_each(rows_ + from, rows_ + from + n, [](dbrecord* row) { delete row; });
    gap_ = from;
    count_ -= n;
}

void RowArray::clear() noexcept {
    dbrecord** const rows = data();
    std::for_each(rows, rows + count_, [](dbrecord* row) { delete row; });
    OS().reallocate(rows_, 0);
    abandon();
}

void RowArray::abandon() noexcept {
    rows_ = nullptr;
    count_ = 0;
    capacity_ = 0;
    physical_ = 0;
    gap_ = 0;
}

unsigned RowArray::find(const dbrecord* row) const noexcept {
    for (unsigned i = 0; i < count_; ++i) {
        if (at(i) == row) {
            return i;
        }
    }
    return ~0U;
}
