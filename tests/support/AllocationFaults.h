#pragma once

// Allocations that fail at a chosen place, and a count of the blocks that live. The operators of
// the whole program are replaced, and so are the module's own sources of memory, whose texts and
// rows otherwise share large blocks: one source of a program includes this.

#include "misc/OS.h"
#include "tarn/BlockMemory.h"
#include "tarn/PageMemory.h"
#include "tarn/StringMemory.h"

#include <cstdlib>
#include <dlfcn.h>
#include <new>

namespace allocations {

struct State {
    unsigned long seen = 0;
    unsigned long failing = 0; ///< the number of the one that fails, from 1; 0 for none
    bool armed = false;
    bool struck = false;
    bool inside = false;    ///< a source of memory: its blocks are counted, not the chunks below
    unsigned long rows = 0; ///< of those seen: blocks of rows
    unsigned long pages = 0;
    unsigned long failingPage = 0; ///< the same among large pages
    long live = 0;
};
inline State state;

inline void arm(unsigned long failing, unsigned long failingPage = 0) {
    state.seen = state.rows = state.pages = 0;
    state.failing = failing;
    state.failingPage = failingPage;
    state.struck = false;
    state.armed = true;
}
inline void pause() {
    state.armed = false;
}
inline void resume() {
    state.armed = true;
}

/// Counts an allocation; whether it is the one that fails.
inline bool strikes(bool page = false) {
    const bool pageChosen = page && state.armed && ++state.pages == state.failingPage;
    const bool chosen = pageChosen || (state.armed && ++state.seen == state.failing);
    state.struck = state.struck || chosen;
    return chosen;
}

inline void* take(std::size_t bytes, std::size_t alignment) noexcept {
    if (strikes()) {
        return nullptr;
    }
    const std::size_t size = (bytes + alignment) / alignment * alignment; // never 0
    void* const block = alignment == 1 ? std::malloc(size) : std::aligned_alloc(alignment, size);
    state.live += block && !state.inside ? 1 : 0;
    return block;
}
inline void* takeOrThrow(std::size_t bytes, std::size_t alignment) {
    void* const block = take(bytes, alignment);
    return block ? block : throw std::bad_alloc{};
}
inline void giveBack(void* block) noexcept {
    state.live -= block && !state.inside ? 1 : 0;
    std::free(block);
}

/// The library's own function of a name that its compiler made.
template <class Function>
Function* original(const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

/// While a source of memory works.
class Inside {
public:
    Inside() { state.inside = true; }
    Inside(const Inside&) = delete;
    Inside& operator=(const Inside&) = delete;
    ~Inside() { state.inside = outer_; }

private:
    bool outer_ = state.inside;
};

template <class Source>
void* takeFrom(Source source, std::size_t bytes, bool page = false) {
    if (strikes(page)) {
        throw std::bad_alloc{};
    }
    const bool counts = !state.inside;
    const Inside inside;
    void* const block = source(bytes);
    state.live += counts ? 1 : 0;
    return block;
}
template <class Source>
void giveTo(Source source, void* block, std::size_t bytes) noexcept {
    state.live -= block && !state.inside ? 1 : 0;
    const Inside inside;
    source(block, bytes);
}

} // namespace allocations

// clang-format off
void* operator new(std::size_t n) { return allocations::takeOrThrow(n, 1); }
void* operator new[](std::size_t n) { return allocations::takeOrThrow(n, 1); }
void* operator new(std::size_t n, const std::nothrow_t&) noexcept { return allocations::take(n, 1); }
void* operator new[](std::size_t n, const std::nothrow_t&) noexcept { return allocations::take(n, 1); }
void* operator new(std::size_t n, std::align_val_t a) { return allocations::takeOrThrow(n, std::size_t(a)); }
void* operator new[](std::size_t n, std::align_val_t a) { return allocations::takeOrThrow(n, std::size_t(a)); }
void operator delete(void* p) noexcept { allocations::giveBack(p); }
void operator delete[](void* p) noexcept { allocations::giveBack(p); }
void operator delete(void* p, std::size_t) noexcept { allocations::giveBack(p); }
void operator delete[](void* p, std::size_t) noexcept { allocations::giveBack(p); }
void operator delete(void* p, const std::nothrow_t&) noexcept { allocations::giveBack(p); }
void operator delete[](void* p, const std::nothrow_t&) noexcept { allocations::giveBack(p); }
void operator delete(void* p, std::align_val_t) noexcept { allocations::giveBack(p); }
void operator delete[](void* p, std::align_val_t) noexcept { allocations::giveBack(p); }
void operator delete(void* p, std::size_t, std::align_val_t) noexcept { allocations::giveBack(p); }
void operator delete[](void* p, std::size_t, std::align_val_t) noexcept { allocations::giveBack(p); }
// clang-format on

void* Tarn::StringMemory::allocate(std::size_t bytes) {
    static auto* const system =
        allocations::original<void*(std::size_t)>("_ZN4Tarn12StringMemory8allocateEm");
    return allocations::takeFrom(system, bytes);
}
void Tarn::StringMemory::release(void* block, std::size_t bytes) noexcept {
    static auto* const system =
        allocations::original<void(void*, std::size_t)>("_ZN4Tarn12StringMemory7releaseEPvm");
    allocations::giveTo(system, block, bytes);
}

void* Tarn::BlockMemory::allocate(std::size_t bytes) {
    static auto* const system =
        allocations::original<void*(std::size_t)>("_ZN4Tarn11BlockMemory8allocateEm");
    allocations::state.rows += allocations::state.armed ? 1 : 0;
    return allocations::takeFrom(system, bytes);
}
void Tarn::BlockMemory::release(void* block, std::size_t bytes) noexcept {
    static auto* const system =
        allocations::original<void(void*, std::size_t)>("_ZN4Tarn11BlockMemory7releaseEPvm");
    allocations::giveTo(system, block, bytes);
}

void* Tarn::PageMemory::take(std::size_t bytes) {
    static auto* const system =
        allocations::original<void*(std::size_t)>("_ZN4Tarn10PageMemory4takeEm");
    return allocations::takeFrom(system, bytes, true);
}
void Tarn::PageMemory::give(void* block, std::size_t bytes) noexcept {
    static auto* const system =
        allocations::original<void(void*, std::size_t)>("_ZN4Tarn10PageMemory4giveEPvm");
    allocations::giveTo(system, block, bytes);
}

void* Tarn::OperatingSystem::reallocate(void* block, std::size_t bytes) {
    static auto* const system = allocations::original<void*(void*, void*, std::size_t)>(
        "_ZN4Tarn15OperatingSystem10reallocateEPvm");
    if (bytes != 0 && allocations::strikes()) {
        throw std::bad_alloc{};
    }
    allocations::state.live += (bytes != 0 ? 1 : 0) - (block ? 1 : 0);
    return system(this, block, bytes);
}
