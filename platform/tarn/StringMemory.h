#pragma once

#include "tarn/export.h"

#include <cstddef>

#if defined(__GLIBCXX__)
#include <ext/atomicity.h>
#endif

// Memory and counts of the counted strings. Tables hold millions of short texts that are made in
// one go and dropped in one go, so blocks are cut one after the other from chunks, and a chunk goes
// back when its last block has died.

namespace Tarn::StringMemory {

/// Returns storage for at least `bytes` bytes, aligned for 32-bit integers. Throws std::bad_alloc
/// when there is none. Constant time. Any thread may call it.
TARN_API void* allocate(std::size_t bytes);

/// Gives back what `allocate(bytes)` returned; any thread may do so, not only the allocating one.
TARN_API void release(void* block, std::size_t bytes) noexcept;

/// Number of bytes that chunks and large blocks take from the system at the moment, for memory
/// tests.
TARN_API std::size_t bytesHeld() noexcept;

#if defined(__GLIBCXX__)
/// Adds to a count: atomically only in a process that has started a thread.
inline void countUp(int& count) noexcept {
    __gnu_cxx::__atomic_add_dispatch(&count, 1);
}
/// Takes one from a count; true when it was the last.
inline bool countDown(int& count) noexcept {
    return __gnu_cxx::__exchange_and_add_dispatch(&count, -1) == 1;
}
#else
inline void countUp(int& count) noexcept {
    __atomic_fetch_add(&count, 1, __ATOMIC_RELAXED);
}
inline bool countDown(int& count) noexcept {
    return __atomic_fetch_sub(&count, 1, __ATOMIC_ACQ_REL) == 1;
}
#endif

} // namespace Tarn::StringMemory
