// A large page holds 32 chunks. Pages that have free ones form a list; a chunk knows its page by a
// pointer behind its usable part.

#include "tarn/ChunkMemory.h"

#include "tarn/LinkedItems.h"
#include "tarn/PageMemory.h"

#include <bit>
#include <cstdint>
#include <memory>
#include <mutex>
#include <new>
#include <utility>

namespace Tarn::ChunkMemory {
namespace {

constexpr unsigned chunksOfPage = PageMemory::largePage / alignment;
constexpr std::uint32_t allFree = ~std::uint32_t{0};
static_assert(chunksOfPage == 32);

/// Chunks from the ordinary allocator at most: as many as a large page would hold.
constexpr unsigned mostOrdinary = chunksOfPage;
// The ordinary allocator's own header then fits before the next chunk.
constexpr std::size_t ordinaryBytes = alignment - 16;

struct Page {
    unsigned char* memory;
    std::uint32_t freeChunks; // a bit each
    Page* previous;
    Page* next;
};

/// The page of a chunk, null for one from the ordinary allocator.
Page*& pageOf(void* chunk) noexcept {
    return *reinterpret_cast<Page**>(static_cast<unsigned char*>(chunk) + chunkBytes);
}

class Chunks {
public:
    void* take() {
        const std::lock_guard lock{mutex_};
        if (ordinary_ < mostOrdinary) {
            return takeOrdinary();
        }
        if (!withRoom_.first()) {
            addPage();
        }
        return takeFrom(*withRoom_.first());
    }

    void give(void* chunk) noexcept {
        const std::lock_guard lock{mutex_};
        if (Page* const page = pageOf(chunk)) {
            giveTo(*page, chunk);
            return;
        }
        ::operator delete (chunk, std::align_val_t{alignment});
        --ordinary_;
    }

private:
    void* takeOrdinary() {
        void* const chunk = ::operator new (ordinaryBytes, std::align_val_t{alignment});
        ::new (&pageOf(chunk)) Page* {nullptr};
        ++ordinary_;
        return chunk;
    }

    void addPage() {
        auto page = std::make_unique<Page>();
        page->memory = static_cast<unsigned char*>(PageMemory::take(PageMemory::largePage));
        page->freeChunks = allFree;
        withRoom_.add(*page.release());
    }

    void* takeFrom(Page& page) noexcept {
        const auto i = static_cast<unsigned>(std::countr_zero(page.freeChunks));
        page.freeChunks &= page.freeChunks - 1;
        if (page.freeChunks == 0) {
            withRoom_.takeOut(page);
        }
        void* const chunk = page.memory + i * alignment;
        ::new (&pageOf(chunk)) Page* {&page};
        return chunk;
    }

    void giveTo(Page& page, void* chunk) noexcept {
        if (page.freeChunks == 0) {
            withRoom_.add(page);
        }
        const auto offset = static_cast<unsigned char*>(chunk) - page.memory;
        page.freeChunks |= std::uint32_t{1} << (static_cast<std::size_t>(offset) / alignment);
        // The last page with room stays, though nothing of it is in use: else a chunk that comes
        // and goes would take and give a page each time.
        if (page.freeChunks == allFree && (page.previous || page.next)) {
            withRoom_.takeOut(page);
            PageMemory::give(page.memory, PageMemory::largePage);
            delete &page;
        }
    }

    std::mutex mutex_;
    unsigned ordinary_ = 0;
    LinkedItems<Page> withRoom_;
};

// Never destroyed: strings of a host's static objects come back late.
constinit Chunks chunks;

} // namespace

void* take() {
    return chunks.take();
}

void give(void* chunk) noexcept {
    chunks.give(chunk);
}

} // namespace Tarn::ChunkMemory
