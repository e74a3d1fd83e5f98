#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

/// A pattern of a search, made ready to be looked for in many texts; see `oledb::found_in`.
///
/// Most texts do not hold it, and that is found out eight bytes at a time: wherever the pattern is
/// found, two characters that it holds stand at their distance. Only texts that hold these two are
/// searched character by character.
class TextPattern {
public:
    struct Rules {
        bool caseSensitive;
        bool wholeWord;
        bool timecode;
    };

    /// The pattern's text must stay where it is.
    TextPattern(const char* pattern, Rules rules) noexcept;

    /// Whether the pattern occurs in a text that ends with a zero byte.
    [[nodiscard]] bool occursIn(std::string_view text) const noexcept {
        return *pattern_ == '\0' || (mayOccurIn(text) && isFoundIn(text.data()));
    }

private:
    /// A character of the pattern in all places of a word, and the bits that tell its two cases
    /// apart.
    struct Literal {
        std::uint64_t bytes = 0;
        std::uint64_t caseBits = 0;
    };

    [[nodiscard]] Literal literalOf(char c) const noexcept;
    [[nodiscard]] bool mayOccurIn(std::string_view text) const noexcept;
    [[nodiscard]] bool pairStandsIn(const char* text) const noexcept;
    [[nodiscard]] bool isFoundIn(const char* text) const noexcept;
    [[nodiscard]] bool equal(char inText, char inPattern) const noexcept;
    [[nodiscard]] bool wordEndsAround(const char* text, const char* first,
                                      const char* behind) const noexcept;

    const char* pattern_;
    Rules rules_;
    bool hasPair_ = false;
    Literal first_;
    Literal second_;
    std::size_t distance_ = 0; // from the first character of the pair to the second
};
