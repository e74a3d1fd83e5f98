#pragma once

#include "tarn/Ascii.h"
#include "tarn/export.h"
#include "tarn/LightweightString.h"

#include <array>
#include <compare>
#include <cstdint>
#include <functional>
#include <string_view>
#include <vector>

/// The kinds of items that a cookie can name.
namespace CookieType {
inline constexpr char Invalid = 'I';     ///< no item at all
inline constexpr char Unspecified = 'U'; ///< an item of whatever kind
inline constexpr char Group = 'M';       ///< a group of items; container files ending in "sg"
inline constexpr char Rack = 'B';        ///< a rack; container files ending in "rak"
} // namespace CookieType

/// An item identifier: a UUID of 16 bytes, a kind letter and eight flags. All three are its
/// identity.
///
/// Two text forms, both lossless, both read by either parsing mode:
/// short  = letter, 32 hex digits, 2 hex digits of flags            (35 characters)
/// long   = letter "-" 8-4-4-4-12 hex digits "-" 2 hex digits of flags
class TARN_API Cookie {
public:
    /// The bytes of a UUID in the order of its text.
    using Uuid = std::array<std::uint8_t, 16>;

    /// The invalid cookie: kind 'I', zero UUID, flags 255.
    Cookie() noexcept = default;
    /// A kind that is no ASCII letter, or 'I', gives the invalid cookie: every other has text
    /// forms.
    Cookie(const Uuid& uuid, char kind, std::uint8_t flags) noexcept {
        if (Tarn::isLetter(kind) && kind != CookieType::Invalid) {
            uuid_ = uuid;
            kind_ = kind;
            flags_ = flags;
        }
    }
    ///@{
    /// Parses a text. White space around it and hyphens are ignored, hex digits of either case are
    /// read. By the number of characters left: 32 the UUID alone, 33 letter and UUID, 34 UUID and
    /// flags, 35 all three. Missing flags are 255. With `stored` the letter is required; without, a
    /// missing letter means kind 'U'. Anything else gives the invalid cookie. Null reads as "".
    Cookie(const char* text, bool stored) noexcept;
    Cookie(std::string_view text, bool stored) noexcept;
    Cookie(const LightweightString<char>& text, bool stored) noexcept
        : Cookie{text.view(), stored} {}
    Cookie(const LightweightString<wchar_t>& text, bool stored) noexcept;
    ///@}

    /// A new random identifier (UUID version 4) of the given kind and flags.
    static Cookie random(char kind, std::uint8_t flags);

    /// The text form: long with `longForm`, else short; "" for the invalid cookie.
    [[nodiscard]] LightweightString<char> asString(bool longForm) const;

    /// Whether this names an item.
    [[nodiscard]] bool valid() const noexcept { return kind_ != CookieType::Invalid; }
    /// The kind letter, see `CookieType`.
    [[nodiscard]] char kind() const noexcept { return kind_; }
    /// The eight flags.
    [[nodiscard]] std::uint8_t flags() const noexcept { return flags_; }
    /// The UUID; all zero for the invalid cookie.
    [[nodiscard]] const Uuid& uuid() const noexcept { return uuid_; }

    /// Negative, zero or positive: by kind, then UUID bytes, then flags.
    [[nodiscard]] int compare(const Cookie& other) const noexcept;
    ///@{
    /// As `compare`.
    friend bool operator==(const Cookie& a, const Cookie& b) noexcept { return a.compare(b) == 0; }
    friend std::strong_ordering operator<=>(const Cookie& a, const Cookie& b) noexcept {
        return a.compare(b) <=> 0;
    }
    ///@}

private:
    Uuid uuid_{};
    char kind_ = CookieType::Invalid;
    std::uint8_t flags_ = 255;
};

/// A list of cookies, repetitions included.
using CookieVec = std::vector<Cookie>;

/// The same UUID with another kind and flags; an invalid cookie stays invalid.
TARN_API Cookie convertCookie(const Cookie& cookie, char kind, std::uint8_t flags) noexcept;

/// Hash for unordered maps keyed by cookies.
struct TARN_API CookieHash {
    /// The same for equal cookies.
    std::size_t operator()(const Cookie& cookie) const noexcept;
};
