#pragma once

// How many bytes of memory are allocated at the moment, whoever allocated them.

#include <cstddef>

#if defined(__SANITIZE_ADDRESS__)
#define OLE_TEST_ADDRESS_SANITIZER 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define OLE_TEST_ADDRESS_SANITIZER 1
#endif
#endif

#if defined(OLE_TEST_ADDRESS_SANITIZER)

/// Declared here, for not every compiler brings the header.
extern "C" std::size_t __sanitizer_get_current_allocated_bytes();

inline std::size_t liveBytes() {
    return __sanitizer_get_current_allocated_bytes();
}

#else

#include <malloc.h>

/// Blocks that a thread keeps back for its next allocations count as well; there are none under
/// GLIBC_TUNABLES=glibc.malloc.tcache_count=0.
inline std::size_t liveBytes() {
    const struct mallinfo2 info = mallinfo2();
    return info.uordblks + info.hblkhd;
}

#endif
