#pragma once

#include "tarn/export.h"

#include <cstddef>

// Memory for much at once, straight from the system and straight back to it. Where the system has
// large pages it is asked for them: the first touch of many small ones costs more than what is
// written to them.

namespace Tarn::PageMemory {

/// The size of a large page, and what every piece is aligned to.
inline constexpr std::size_t largePage = std::size_t{2} * 1024 * 1024;

/// Memory that holds zeros, aligned to a large page. Throws std::bad_alloc when there is none.
/// Constant time; pages are filled at their first touch. Any thread may call it.
TARN_API void* take(std::size_t bytes);

/// Gives back what `take(bytes)` returned.
TARN_API void give(void* memory, std::size_t bytes) noexcept;

} // namespace Tarn::PageMemory
