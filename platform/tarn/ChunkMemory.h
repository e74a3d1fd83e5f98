#pragma once

#include <cstddef>

// Chunks of 64 KiB, from which others cut small blocks. The first ones of a process come from the
// ordinary allocator, so that little use costs little; further ones come by the large page
// (PageMemory), and go back to the system with the last of their page, but for one page in reserve.

namespace Tarn::ChunkMemory {

/// Chunks stand at multiples of this, so that a block finds its chunk by its address.
inline constexpr std::size_t alignment = std::size_t{64} * 1024;
/// What of a chunk is for use.
inline constexpr std::size_t chunkBytes = alignment - 64;

/// A chunk. Throws std::bad_alloc when there is none. Any thread may call it.
void* take();
/// Gives back what `take` returned; any thread may do so.
void give(void* chunk) noexcept;

} // namespace Tarn::ChunkMemory
