#pragma once

#include <cstdint>
#include <cstring>

// Looking at eight bytes at a time. Texts of tables are short, so a call of the C library for each
// would cost more than the look itself.

namespace Tarn {

/// Eight bytes from any address.
inline std::uint64_t eightBytes(const char* text) noexcept {
    std::uint64_t word = 0;
    std::memcpy(&word, text, sizeof(word));
    return word;
}

/// Four bytes from any address.
inline std::uint32_t fourBytes(const char* text) noexcept {
    std::uint32_t word = 0;
    std::memcpy(&word, text, sizeof(word));
    return word;
}

/// Not 0 where one of the bytes of a word is `byte`. Source: the well-known test for a zero byte,
/// (x - 01..01) & ~x & 80..80, on the word's difference from that byte.
inline std::uint64_t hasByte(std::uint64_t word, char byte) noexcept {
    constexpr std::uint64_t ones = 0x0101010101010101;
    const std::uint64_t rest = word ^ (ones * static_cast<unsigned char>(byte));
    return (rest - ones) & ~rest & (ones << 7);
}

} // namespace Tarn
