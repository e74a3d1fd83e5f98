#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

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

/// Not 0 where one of the bytes of a word is below `bound`, which is 1 to 128. Source: the same.
inline std::uint64_t hasByteBelow(std::uint64_t word, unsigned char bound) noexcept {
    constexpr std::uint64_t ones = 0x0101010101010101;
    return (word - ones * bound) & ~word & (ones << 7);
}

/// Copies a text to a place with room for it and returns, taken together, what `marks` gives for
/// its words: not 0 where the text holds a byte that `marks` looks for, which is not 255.
template <class Marks>
std::uint64_t copyMarking(char* to, std::string_view text, Marks marks) noexcept {
    const char* const from = text.data();
    const std::size_t n = text.size();
    if (n >= 8) {
        std::uint64_t found = 0;
        for (std::size_t i = 0; i + 8 < n; i += 8) {
            const std::uint64_t word = eightBytes(from + i);
            std::memcpy(to + i, &word, sizeof(word));
            found |= marks(word);
        }
        const std::uint64_t last = eightBytes(from + n - 8);
        std::memcpy(to + n - 8, &last, sizeof(last));
        return found | marks(last);
    }
    if (n >= 4) {
        const std::uint32_t front = fourBytes(from);
        const std::uint32_t back = fourBytes(from + n - 4);
        std::memcpy(to, &front, sizeof(front));
        std::memcpy(to + n - 4, &back, sizeof(back));
        return marks(std::uint64_t{front} << 32 | back);
    }
    std::uint64_t few = ~std::uint64_t{0};
    for (std::size_t i = 0; i < n; ++i) {
        to[i] = from[i];
        few = few << 8 | static_cast<unsigned char>(from[i]);
    }
    return marks(few);
}

/// Copies a short text to a place with room for it.
inline void copyShort(char* to, std::string_view text) noexcept {
    copyMarking(to, text, [](std::uint64_t) noexcept { return std::uint64_t{0}; });
}

} // namespace Tarn
