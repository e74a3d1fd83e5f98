#include "MemoryCheck.h"

#include "support/LiveBytes.h"

#include <gtest/gtest.h>

#include <algorithm>

#if defined(OLE_TEST_ADDRESS_SANITIZER)

/// Declared here, for not every compiler brings the header.
extern "C" int __sanitizer_install_malloc_and_free_hooks(void (*)(const volatile void*,
                                                                  std::size_t),
                                                         void (*)(const volatile void*));
extern "C" std::size_t __sanitizer_get_allocated_size(const volatile void*);

namespace {

struct Counts {
    bool counting = false;
    std::ptrdiff_t live = 0; // below 0 where older blocks are given back
    std::ptrdiff_t peak = 0;
    std::size_t sum = 0;
    std::size_t blocks = 0;
};
thread_local constinit Counts counts;

void allocated(const volatile void*, std::size_t bytes) {
    if (counts.counting) {
        counts.live += static_cast<std::ptrdiff_t>(bytes);
        counts.peak = std::max(counts.peak, counts.live);
        counts.sum += bytes;
        ++counts.blocks;
    }
}

void released(const volatile void* block) {
    if (counts.counting && block) {
        counts.live -= static_cast<std::ptrdiff_t>(__sanitizer_get_allocated_size(block));
    }
}

} // namespace

MemoryCheck::MemoryCheck(const Bounds& bounds, std::size_t inputBytes)
    : bounds_{bounds}, inputBytes_{inputBytes} {
    static const bool hooked = __sanitizer_install_malloc_and_free_hooks(allocated, released) != 0;
    EXPECT_TRUE(hooked);
    counts = {};
    counts.counting = true;
}

MemoryCheck::~MemoryCheck() {
    const Counts taken = counts;
    counts.counting = false;
    const auto most = [this](const Line& line) { return line.fixed + line.perByte * inputBytes_; };
    EXPECT_LE(static_cast<std::size_t>(taken.peak), most(bounds_.live)) << inputBytes_ << " bytes";
    EXPECT_LE(taken.sum, most(bounds_.sum)) << inputBytes_ << " bytes";
    EXPECT_LE(taken.blocks, most(bounds_.blocks)) << inputBytes_ << " bytes";
}

#else

MemoryCheck::MemoryCheck(const Bounds& bounds, std::size_t inputBytes)
    : bounds_{bounds}, inputBytes_{inputBytes} {}
MemoryCheck::~MemoryCheck() = default;

#endif
