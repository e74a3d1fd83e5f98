#pragma once

#include "ole/oledb/LargeVector.h"

#include <algorithm>
#include <cstdint>
#include <span>

class dbrecord;

/// The order of records by the comparison in force: for each place the position of the record that
/// comes there. Equal records keep their order; a null, for a record that is missing, equals every
/// other. Adds the comparisons made to `comco`: at least one for two or more records of which none
/// is missing.
///
/// n log n at worst; 38 bytes a record of further memory, and those of its key behind the first
/// eight, 56 at most.
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
