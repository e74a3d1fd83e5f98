#pragma once

#include "tarn/export.h"

#include <cstddef>

// Memory for many small things of few sizes, such as the rows of tables: a block that dies is used
// again for the next of its size, and what all blocks have left goes back to the system.

namespace Tarn::BlockMemory {

/// Storage for at least `bytes` bytes, aligned for pointers. Throws std::bad_alloc when there is
/// none. Constant time. Any thread may call it.
TARN_API void* allocate(std::size_t bytes);

/// Gives back what `allocate(bytes)` returned; null does nothing. Any thread may do so.
TARN_API void release(void* block, std::size_t bytes) noexcept;

} // namespace Tarn::BlockMemory
