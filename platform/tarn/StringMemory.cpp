// Storage of the counted strings: blocks are cut one after the other from chunks (ChunkMemory).
//
// A chunk stands at a multiple of its size, so a block finds its chunk by masking its address.
// While a thread cuts from a chunk, the chunk's count holds a large lead, so blocks that die
// meanwhile, on any thread, cannot bring it to zero; the lead is settled when the thread leaves the
// chunk, and from then on the death of the last block frees it. Texts too long for a chunk go to
// the system's allocator.

#include "tarn/StringMemory.h"

#include "tarn/ChunkMemory.h"
#include "tarn/sanitizer.h"

#include <atomic>
#include <cstdint>
#include <new>

namespace Tarn::StringMemory {
namespace {

using ChunkMemory::chunkBytes;
constexpr std::size_t longestInChunk = 4096;
constexpr int lead = 1 << 24;

struct Chunk {
    int live;
    int given;
    std::size_t used;
    std::size_t bytes;
};

std::atomic<std::size_t> held{0};

std::size_t rounded(std::size_t bytes) noexcept {
    return (bytes + 3) & ~std::size_t{3};
}

void* takeFromSystem(std::size_t bytes) {
    void* const memory = ::operator new(bytes);
    held.fetch_add(bytes, std::memory_order_relaxed);
    return memory;
}

void giveToSystem(void* memory, std::size_t bytes) noexcept {
    held.fetch_sub(bytes, std::memory_order_relaxed);
    ::operator delete(memory);
}

Chunk* open(void* memory, std::size_t bytes) noexcept {
    return ::new (memory) Chunk{lead, 0, sizeof(Chunk), bytes};
}

Chunk* newChunk() {
    void* const memory = ChunkMemory::take();
    held.fetch_add(chunkBytes, std::memory_order_relaxed);
    return open(memory, chunkBytes);
}

/// A chunk that holds one block alone.
Chunk* newChunkFor(std::size_t block) {
    const std::size_t bytes = sizeof(Chunk) + block;
    void* const memory = ::operator new (bytes, std::align_val_t{ChunkMemory::alignment});
    held.fetch_add(bytes, std::memory_order_relaxed);
    return open(memory, bytes);
}

void deleteChunk(Chunk* chunk) noexcept {
    held.fetch_sub(chunk->bytes, std::memory_order_relaxed);
    if (chunk->bytes == chunkBytes) {
        ChunkMemory::give(chunk);
    } else {
        ::operator delete (chunk, std::align_val_t{ChunkMemory::alignment});
    }
}

/// Takes n from the chunk's count; true when nothing is left in it.
bool lower(Chunk* chunk, int n) noexcept {
#if defined(__GLIBCXX__)
    return __gnu_cxx::__exchange_and_add_dispatch(&chunk->live, -n) == n;
#else
    return __atomic_fetch_sub(&chunk->live, n, __ATOMIC_ACQ_REL) == n;
#endif
}

bool allBlocksDied(const Chunk* chunk) noexcept {
    return __atomic_load_n(&chunk->live, __ATOMIC_ACQUIRE) == lead - chunk->given;
}

void leave(Chunk* chunk) noexcept {
    if (lower(chunk, lead - chunk->given)) {
        deleteChunk(chunk);
    }
}

void* cut(Chunk* chunk, std::size_t bytes) noexcept {
    void* const block = reinterpret_cast<unsigned char*>(chunk) + chunk->used;
    chunk->used += bytes;
    ++chunk->given;
    return block;
}

// What a thread cuts from. Both outlive the thread's own objects, whose destructors may still make
// strings.
constinit thread_local Chunk* current = nullptr;
constinit thread_local bool ended = false;

/// Leaves the thread's last chunk when the thread ends.
struct ThreadEnd {
    ThreadEnd() = default;
    ThreadEnd(const ThreadEnd&) = delete;
    ThreadEnd& operator=(const ThreadEnd&) = delete;
    ~ThreadEnd() {
        if (current) {
            leave(current);
        }
        current = nullptr;
        ended = true;
    }
};

void followThreadEnd() {
    thread_local const ThreadEnd end;
}

/// For strings that are made while the thread's own objects die.
void* cutAlone(std::size_t bytes) {
    Chunk* const chunk = newChunkFor(bytes);
    void* const block = cut(chunk, bytes);
    leave(chunk);
    return block;
}

void* cutFromNext(std::size_t bytes) {
    if (ended) {
        return cutAlone(bytes);
    }
    if (current && allBlocksDied(current)) {
        open(current, chunkBytes);
        return cut(current, bytes);
    }
    Chunk* const next = newChunk();
    if (current) {
        leave(current);
    } else {
        followThreadEnd();
    }
    current = next;
    return cut(current, bytes);
}

void* cutFromCurrent(std::size_t bytes) {
    if (current && current->used + bytes <= chunkBytes) {
        return cut(current, bytes);
    }
    return cutFromNext(bytes);
}

bool isLastCut(Chunk* chunk, const void* block, std::size_t bytes) noexcept {
    return static_cast<const unsigned char*>(block) + bytes ==
           reinterpret_cast<unsigned char*>(chunk) + chunk->used;
}

Chunk* chunkOf(void* block) noexcept {
    return reinterpret_cast<Chunk*>(reinterpret_cast<std::uintptr_t>(block) &
                                    ~(ChunkMemory::alignment - 1));
}

} // namespace

void* allocate(std::size_t bytes) {
    const std::size_t size = rounded(bytes);
    return blocksAreCut && size <= longestInChunk ? cutFromCurrent(size) : takeFromSystem(size);
}

void release(void* block, std::size_t bytes) noexcept {
    const std::size_t size = rounded(bytes);
    if (!blocksAreCut || size > longestInChunk) {
        giveToSystem(block, size);
        return;
    }
    Chunk* const chunk = chunkOf(block);
    if (chunk == current && isLastCut(chunk, block, size)) {
        // Most texts that live shortly die in the order opposite to their making.
        chunk->used -= size;
        --chunk->given;
        return;
    }
    if (lower(chunk, 1)) {
        deleteChunk(chunk);
    }
}

std::size_t bytesHeld() noexcept {
    return held.load(std::memory_order_relaxed);
}

} // namespace Tarn::StringMemory
