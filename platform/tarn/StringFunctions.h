#pragma once

#include "tarn/export.h"
#include "tarn/LightweightString.h"

#include <cstddef>
#include <string_view>
#include <vector>

/// @file
/// Functions over texts. Null pointers read as "".

///@{
/// True when a text holds nothing but blanks, tabs, CR and LF; "" and null too. Vertical tab and
/// form feed count as text.
TARN_API bool isEssentiallyEmpty(std::string_view text) noexcept;
inline bool isEssentiallyEmpty(const LightweightString<char>& text) noexcept {
    return isEssentiallyEmpty(text.view());
}
inline bool isEssentiallyEmpty(const char* text) noexcept {
    return isEssentiallyEmpty(text ? std::string_view{text} : std::string_view{});
}
///@}

///@{
/// Orders case-insensitively (ASCII): compares byte by byte, capitals as small letters, bytes
/// unsigned, the shorter text first. Returns negative, zero or positive.
TARN_API int compareIgnoringCase(std::string_view a, std::string_view b) noexcept;
inline int compareIgnoringCase(const char* a, const char* b) noexcept {
    return compareIgnoringCase(a ? std::string_view{a} : std::string_view{},
                               b ? std::string_view{b} : std::string_view{});
}
///@}

/// The same for the first `count` bytes of each text.
inline int compareIgnoringCase(std::string_view a, std::string_view b, std::size_t count) noexcept {
    return compareIgnoringCase(a.substr(0, count), b.substr(0, count));
}

/// Case-insensitive order for maps keyed by strings; looks up by pointer or slice without making a
/// string.
struct StrCmpCI {
    /// Lets maps look up what is no string.
    using is_transparent = void;
    ///@{
    /// Whether the first text stands before the second.
    bool operator()(const LightweightString<char>& a,
                    const LightweightString<char>& b) const noexcept {
        return compareIgnoringCase(a.view(), b.view()) < 0;
    }
    bool operator()(const LightweightString<char>& a, std::string_view b) const noexcept {
        return compareIgnoringCase(a.view(), b) < 0;
    }
    bool operator()(std::string_view a, const LightweightString<char>& b) const noexcept {
        return compareIgnoringCase(a, b.view()) < 0;
    }
    bool operator()(const LightweightString<char>& a, const char* b) const noexcept {
        return compareIgnoringCase(a.c_str(), b) < 0;
    }
    bool operator()(const char* a, const LightweightString<char>& b) const noexcept {
        return compareIgnoringCase(a, b.c_str()) < 0;
    }
    ///@}
};

///@{
/// The default order of texts for people: natural and case-insensitive. Digit runs compare by value
/// (take 2 before take 10), other characters as `compareIgnoringCase` does; texts that tie so far
/// are told apart by the first digit run whose number of leading zeros differs, fewer first. So 0
/// comes back exactly for texts that are equal ignoring case. A strict weak order; allocates
/// nothing.
TARN_API int strxcmp(std::string_view a, std::string_view b) noexcept;
inline int strxcmp(const char* a, const char* b) noexcept {
    return strxcmp(a ? std::string_view{a} : std::string_view{},
                   b ? std::string_view{b} : std::string_view{});
}
///@}

/// True for characters that end a word in a search: ASCII characters other than letters, digits and
/// '_'.
TARN_API bool isfindbreak(char c) noexcept;

/// Wide to UTF-8. Malformed input becomes U+FFFD, one for each maximal bad run; null stays null.
TARN_API LightweightString<char> toUTF8(const LightweightString<wchar_t>& text);
/// UTF-8 to wide (UTF-32 where wchar_t has 32 bits, UTF-16 otherwise). Malformed input as in
/// `toUTF8`.
TARN_API LightweightString<wchar_t> fromUTF8(const LightweightString<char>& text);

/// A path as the wide text the module works with, from the bytes that the system uses. Bytes that
/// are no UTF-8 become lone surrogates U+DC80 to U+DCFF, so every existing file has a name.
TARN_API LightweightString<wchar_t> pathFromBytes(std::string_view path);
/// The way back: exact for every result of `pathFromBytes`.
TARN_API LightweightString<char> pathToBytes(const LightweightString<wchar_t>& path);

namespace Tarn {

/// Whether a byte is white space in the C locale in force, which may count bytes above 127. The one
/// test that asks the locale: everything else uses tarn/Ascii.h.
TARN_API bool isLocaleSpace(char c) noexcept;

/// Wide text of a byte text: bytes below 128 one to one, the others decoded as UTF-8. Null gives
/// null.
TARN_API LightweightString<wchar_t> WStringFromAscii(const char* text);

/// Predicate for `splitIf`: one separator character.
class IsMatchingChar {
public:
    /// Cuts at this character.
    explicit constexpr IsMatchingChar(char separator) noexcept : separator_{separator} {}
    /// Whether a character is the separator.
    constexpr bool operator()(char c) const noexcept { return c == separator_; }
    /// The separator.
    [[nodiscard]] constexpr char character() const noexcept { return separator_; }

private:
    char separator_;
};

/// How `splitIf` treats a separator that directly follows another separator.
enum SplitMode : int {
    eSplitPlain = 0,   ///< It cuts too, giving an empty piece.
    eSplitMerging = 1, ///< It does not cut; it stays as the first character of the following piece.
};

/// Cuts `text` at separators and appends the pieces, slices of `text`, to `pieces`.
/// A separator at the very start gives no empty first piece and one at the very end no empty last
/// piece, unless the text is that one separator, which gives one empty piece. A text without
/// separators is one piece; an empty text is one empty piece. Quotes mean nothing. Linear in the
/// length.
TARN_API void splitIf(std::string_view text, IsMatchingChar separator,
                      std::vector<std::string_view>& pieces, int mode);
/// The same with pieces as strings of their own.
TARN_API void splitIf(const LightweightString<char>& text, IsMatchingChar separator,
                      std::vector<LightweightString<char>>& pieces, int mode);

} // namespace Tarn
