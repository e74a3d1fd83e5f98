#pragma once

#include "ole/oledb/LargeVector.h"

#include <algorithm>
#include <cstdint>
#include <span>

class dbrecord;

/// The order of records by the comparison in force: for each place the position of the record that
/// comes there. Equal records keep their order. None of the records may be null. Adds the
/// comparisons made to `comco`, at least one for two or more records.
///
/// n log n at worst; some 60 bytes a record of further memory, and never more than 94.
LargeVector<std::uint32_t> orderOf(std::span<dbrecord* const> records, bool descending);

/// Moves items to their places in an order.
template <class T>
void putInOrder(std::span<T> items, const LargeVector<std::uint32_t>& order) {
    LargeVector<T> moved;
    moved.reserve(items.size());
    for (const std::uint32_t position : order) {
        moved.push_back(items[position]);
    }
    std::copy(moved.begin(), moved.end(), items.begin());
}
