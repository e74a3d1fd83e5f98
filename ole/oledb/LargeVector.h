#pragma once

#include "tarn/PageMemory.h"

#include <cstddef>
#include <new>
#include <utility>
#include <vector>

/// Takes much at once by the large page, whose first touch costs less, and little as usual.
/// Elements that are given no value are not written.
template <class T>
struct LargeAllocator {
    using value_type = T;

    LargeAllocator() = default;
    template <class Other>
    LargeAllocator(const LargeAllocator<Other>&) noexcept {}

    [[nodiscard]] static T* allocate(std::size_t n) {
        return static_cast<T*>(isLarge(n) ? Tarn::PageMemory::take(n * sizeof(T))
                                          : ::operator new(n * sizeof(T)));
    }
    static void deallocate(T* memory, std::size_t n) noexcept {
        if (isLarge(n)) {
            Tarn::PageMemory::give(memory, n * sizeof(T));
        } else {
            ::operator delete(memory);
        }
    }
    template <class Element>
    static void construct(Element* at) noexcept {
        ::new (static_cast<void*>(at)) Element;
    }
    template <class Element, class Value>
    static void construct(Element* at, Value&& value) noexcept {
        ::new (static_cast<void*>(at)) Element(std::forward<Value>(value));
    }

    friend bool operator==(const LargeAllocator&, const LargeAllocator&) noexcept { return true; }

private:
    static bool isLarge(std::size_t n) noexcept {
        return n >= Tarn::PageMemory::largePage / sizeof(T);
    }
};

/// A list of plain data that may be long.
template <class T>
using LargeVector = std::vector<T, LargeAllocator<T>>;
