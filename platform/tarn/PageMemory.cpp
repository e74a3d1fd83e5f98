// The system gives small pages at any address. To stand at a large page, more is taken than was
// asked for, and what lies in front and behind goes back at once.

#include "tarn/PageMemory.h"

#include <cstdint>
#include <limits>
#include <new>
#include <sys/mman.h>

namespace Tarn::PageMemory {
namespace {

constexpr std::size_t smallPage = 4096;

std::size_t roundedUp(std::size_t bytes, std::size_t unit) noexcept {
    return (bytes + unit - 1) / unit * unit;
}

void unmap(std::uintptr_t from, std::uintptr_t to) noexcept {
    if (from != to) {
        munmap(reinterpret_cast<void*>(from), to - from);
    }
}

} // namespace

void* take(std::size_t bytes) {
    if (bytes > std::numeric_limits<std::size_t>::max() / 2) {
        throw std::bad_alloc{};
    }
    const std::size_t size = roundedUp(bytes, smallPage);
    const std::size_t mapped = size + largePage; // what lies beside the aligned part goes back
    void* const memory =
        mmap(nullptr, mapped, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED) {
        throw std::bad_alloc{};
    }
    const auto start = reinterpret_cast<std::uintptr_t>(memory);
    const std::uintptr_t aligned = roundedUp(start, largePage);
    unmap(start, aligned);
    unmap(aligned + size, start + mapped);
    auto* const piece = reinterpret_cast<void*>(aligned);
#if defined(MADV_HUGEPAGE)
    madvise(piece, size, MADV_HUGEPAGE); // a wish: small pages do as well
#endif
    return piece;
}

void give(void* memory, std::size_t bytes) noexcept {
    munmap(memory, roundedUp(bytes, smallPage));
}

} // namespace Tarn::PageMemory
