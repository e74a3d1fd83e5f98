#pragma once

namespace Tarn {

/// Whether many blocks are cut from one piece of memory. Under AddressSanitizer, and in builds for
/// valgrind, every block is allocated on its own, so that a stale pointer is seen.
#if defined(__SANITIZE_ADDRESS__) || defined(TARN_BLOCKS_ALONE)
inline constexpr bool blocksAreCut = false;
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
inline constexpr bool blocksAreCut = false;
#else
inline constexpr bool blocksAreCut = true;
#endif
#else
inline constexpr bool blocksAreCut = true;
#endif

} // namespace Tarn
