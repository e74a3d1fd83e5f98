#pragma once

// What the module takes for an input stays in proportion to it: bytes at once, bytes in all, and
// allocations, whose number tells of work done over and over without asking a clock; work that
// allocates nothing is not seen. Counted under AddressSanitizer, where every block of the module is
// an allocation of its own; in other builds nothing is checked.

#include <cstddef>

/// So much for any input, and so much more for every byte of it.
struct Line {
    std::size_t fixed;
    std::size_t perByte;
};

struct Bounds {
    Line live;   ///< bytes at once, beyond what was there before
    Line sum;    ///< bytes in all, given back or not
    Line blocks; ///< allocations
};

/// Counts what this thread allocates while it lives, and at its end expects that to be within
/// bounds. One at a time.
class MemoryCheck {
public:
    MemoryCheck(const Bounds& bounds, std::size_t inputBytes);
    MemoryCheck(const MemoryCheck&) = delete;
    MemoryCheck& operator=(const MemoryCheck&) = delete;
    ~MemoryCheck();

private:
    Bounds bounds_;
    std::size_t inputBytes_;
};

/// What `work` returns; what it takes is checked. The models, which are free to waste, stay
/// outside.
template <class Work>
auto within(const Bounds& bounds, std::size_t inputBytes, Work work) {
    const MemoryCheck check{bounds, inputBytes};
    return work();
}
