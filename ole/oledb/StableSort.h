#pragma once

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <vector>

/// Sorts by merging, so that equal elements keep their order. Any comparison is safe, also one that
/// is no consistent order: elements are only ever moved within the range. n log n comparisons, n
/// elements of further memory. `before(a, b)` tells whether a must stand before b.
template <class T, class Before>
void stableSort(T* items, std::size_t count, Before before) {
    constexpr std::size_t shortRun = 8;
    for (std::size_t first = 0; first < count; first += shortRun) {
        const std::size_t end = std::min(first + shortRun, count);
        for (std::size_t i = first + 1; i < end; ++i) {
            const T item = items[i];
            std::size_t at = i;
            for (; at > first && before(item, items[at - 1]); --at) {
                items[at] = items[at - 1];
            }
            items[at] = item;
        }
    }
    std::vector<T> merged(count > shortRun ? count : 0);
    for (std::size_t run = shortRun; run < count; run *= 2) {
        for (std::size_t first = 0; first < count; first += 2 * run) {
            const std::size_t middle = std::min(first + run, count);
            const std::size_t end = std::min(first + 2 * run, count);
            std::size_t left = first;
            std::size_t right = middle;
            for (std::size_t out = first; out < end; ++out) {
                const bool takeRight =
                    left == middle || (right < end && before(items[right], items[left]));
                merged[out] = items[takeRight ? right++ : left++];
            }
        }
        std::copy(merged.begin(), merged.end(), items);
    }
}
