// Blocks of one size stand side by side in a chunk (ChunkMemory). A chunk keeps a list of the
// blocks that died in it; chunks that have room form a list for each size. Large blocks go to the
// system's allocator.

#include "tarn/BlockMemory.h"

#include "tarn/ChunkMemory.h"
#include "tarn/LinkedItems.h"
#include "tarn/sanitizer.h"

#include <array>
#include <cstdint>
#include <mutex>
#include <new>

namespace Tarn::BlockMemory {
namespace {

constexpr std::size_t step = 16; // sizes are multiples of this
constexpr std::size_t largest = 2304;
constexpr std::size_t sizes = largest / step + 1;

struct FreeBlock {
    FreeBlock* next;
};

struct Chunk {
    FreeBlock* died;  // blocks that may be used again
    std::size_t used; // bytes from the start on that were given at least once
    unsigned live;
    Chunk* previous;
    Chunk* next;
};

std::size_t roundedUp(std::size_t bytes) noexcept {
    return (bytes + step - 1) / step * step;
}

Chunk& chunkOf(void* block) noexcept {
    return *reinterpret_cast<Chunk*>(reinterpret_cast<std::uintptr_t>(block) &
                                     ~(ChunkMemory::alignment - 1));
}

bool hasRoom(const Chunk& chunk, std::size_t size) noexcept {
    return chunk.died || chunk.used + size <= ChunkMemory::chunkBytes;
}

/// The blocks of all sizes.
class Blocks {
public:
    void* allocate(std::size_t size) {
        const std::lock_guard lock{mutex_};
        LinkedItems<Chunk>& withRoom = withRoom_[size / step];
        if (!withRoom.first()) {
            withRoom.add(*newChunk());
        }
        Chunk& chunk = *withRoom.first();
        void* const block = takeFrom(chunk, size);
        if (!hasRoom(chunk, size)) {
            withRoom.takeOut(chunk);
        }
        return block;
    }

    void release(void* block, std::size_t size) noexcept {
        const std::lock_guard lock{mutex_};
        LinkedItems<Chunk>& withRoom = withRoom_[size / step];
        Chunk& chunk = chunkOf(block);
        if (!hasRoom(chunk, size)) {
            withRoom.add(chunk);
        }
        chunk.died = ::new (block) FreeBlock{chunk.died};
        if (--chunk.live == 0) {
            withRoom.takeOut(chunk);
            ChunkMemory::give(&chunk);
        }
    }

private:
    static Chunk* newChunk() {
        return ::new (ChunkMemory::take())
            Chunk{nullptr, roundedUp(sizeof(Chunk)), 0, nullptr, nullptr};
    }

    static void* takeFrom(Chunk& chunk, std::size_t size) noexcept {
        ++chunk.live;
        if (FreeBlock* const block = chunk.died) {
            chunk.died = block->next;
            return block;
        }
        void* const block = reinterpret_cast<unsigned char*>(&chunk) + chunk.used;
        chunk.used += size;
        return block;
    }

    std::mutex mutex_;
    std::array<LinkedItems<Chunk>, sizes> withRoom_{};
};

// Never destroyed: a host's static objects give their blocks back late.
constinit Blocks blocks;

bool isCut(std::size_t size) noexcept {
    return blocksAreCut && size <= largest;
}

} // namespace

void* allocate(std::size_t bytes) {
    const std::size_t size = roundedUp(bytes == 0 ? 1 : bytes);
    return isCut(size) ? blocks.allocate(size) : ::operator new(bytes);
}

void release(void* block, std::size_t bytes) noexcept {
    const std::size_t size = roundedUp(bytes == 0 ? 1 : bytes);
    if (!block || !isCut(size)) {
        ::operator delete(block);
        return;
    }
    blocks.release(block, size);
}

} // namespace Tarn::BlockMemory
