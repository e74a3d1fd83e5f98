#pragma once

#include "tarn/Ascii.h"
#include "tarn/byteWords.h"
#include "tarn/export.h"
#include "tarn/StringMemory.h"

#include <compare>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <new>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

/// A counted, immutable text of bytes or wide characters: one pointer to a shared block.
///
/// Copies share the block, so copying costs one count. The text's address stays the same while any
/// copy of the string lives, wherever the string objects themselves move. A null string (default
/// made, or made from a null pointer) is told apart from an empty one by `isNull` alone; everything
/// else treats the two alike. A text ends at its first zero character.
///
/// Strings may be made on one thread and dropped on another; one string object belongs to one
/// thread at a time. There is no conversion to a pointer or a flag, and none from numbers, so that
/// a string cannot slip into an overload that means something else.
template <class Char>
class TARN_API LightweightString {
public:
    /// A slice of a text of this kind.
    using View = std::basic_string_view<Char>;

    /// A null string.
    constexpr LightweightString() noexcept = default;
    /// A copy of a zero-terminated text; a null pointer gives a null string. Linear in the length.
    LightweightString(const Char* text) : block_{text ? make(View{text}) : nullptr} {}
    /// A null string.
    constexpr LightweightString(std::nullptr_t) noexcept {}
    /// A copy of a text up to its first zero character; never null.
    explicit LightweightString(View text) : block_{make(text.substr(0, text.find(Char{})))} {}
    /// A copy of a text that holds no zero character, which the caller vouches for; never null.
    [[nodiscard]] static LightweightString ofWhole(View text) {
        LightweightString string;
        string.block_ = make(text);
        return string;
    }
    /// A copy of the first `count` characters at `text`; a null pointer gives a null string.
    LightweightString(const Char* text, std::size_t count)
        : LightweightString{text ? LightweightString{View{text, count}} : LightweightString{}} {}
    template <class Number>
    requires std::is_arithmetic_v<Number> LightweightString(Number)
    = delete;

    ///@{
    /// Share the block, or take it over and leave a null string.
    LightweightString(const LightweightString& other) noexcept : block_{other.block_} { hold(); }
    LightweightString(LightweightString&& other) noexcept
        : block_{std::exchange(other.block_, nullptr)} {}
    LightweightString& operator=(const LightweightString& other) noexcept {
        if (this != &other) {
            LightweightString copy{other};
            swap(copy);
        }
        return *this;
    }
    LightweightString& operator=(LightweightString&& other) noexcept {
        LightweightString taken{std::move(other)};
        swap(taken);
        return *this;
    }
    ///@}
    ~LightweightString() { drop(); }

    /// Exchanges two strings, without a copy.
    void swap(LightweightString& other) noexcept { std::swap(block_, other.block_); }

    /// True when the string holds no character data at all; "" holds some.
    [[nodiscard]] bool isNull() const noexcept { return !block_; }
    /// True for null and for "".
    [[nodiscard]] bool empty() const noexcept { return size() == 0; }
    /// Number of characters (bytes of a byte text), without the closing zero.
    [[nodiscard]] std::size_t size() const noexcept { return block_ ? block_->length : 0; }
    /// The zero-terminated text, "" for a null string; never null. Good while a copy of the string
    /// lives.
    [[nodiscard]] const Char* c_str() const noexcept { return block_ ? text(block_) : emptyText(); }
    /// The text as a slice, good as long as `c_str`.
    [[nodiscard]] View view() const noexcept { return View{c_str(), size()}; }
    /// Character i; the zero character at and beyond the end.
    [[nodiscard]] Char operator[](std::size_t i) const noexcept {
        return i < size() ? c_str()[i] : Char{};
    }

    /// True when the text begins with `prefix`; letters are told apart by case only when
    /// `caseSensitive` (ASCII letters otherwise count as equal).
    [[nodiscard]] bool startsWith(View prefix, bool caseSensitive = true) const noexcept {
        return size() >= prefix.size() &&
               same(view().substr(0, prefix.size()), prefix, caseSensitive);
    }
    /// True when the text ends with `suffix`; case as in `startsWith`.
    [[nodiscard]] bool endsWith(View suffix, bool caseSensitive = true) const noexcept {
        return size() >= suffix.size() &&
               same(view().substr(size() - suffix.size()), suffix, caseSensitive);
    }
    /// Position of the first `c` at or after `from`, or `npos`.
    [[nodiscard]] std::size_t find(Char c, std::size_t from = 0) const noexcept {
        return view().find(c, from);
    }
    /// No position.
    static constexpr std::size_t npos = View::npos;

    /// At most `count` characters from `from` on, clipped at the end; never an error.
    [[nodiscard]] LightweightString substr(std::size_t from, std::size_t count = npos) const {
        return from >= size() ? LightweightString{View{}}
                              : LightweightString{view().substr(from, count)};
    }
    /// The text with ASCII capitals made small.
    [[nodiscard]] LightweightString toLower() const {
        std::basic_string<Char> lowered{view()};
        for (Char& c : lowered) {
            c = lowerOf(c);
        }
        return isNull() ? LightweightString{} : LightweightString{View{lowered}};
    }
    /// Removes blanks (code 32 only) from the end of this string.
    void trimTrailingSpaces() {
        const std::size_t last = view().find_last_not_of(Char{' '});
        const std::size_t kept = last == npos ? 0 : last + 1;
        if (kept != size()) {
            *this = LightweightString{view().substr(0, kept)};
        }
    }

    ///@{
    /// Appends by making a new text: linear in the sum of the lengths. Build long texts in a
    /// GrowString. A null pointer appends nothing.
    LightweightString& operator+=(View more) {
        std::basic_string<Char> joined{view()};
        joined += more;
        return *this = LightweightString{View{joined}};
    }
    LightweightString& operator+=(const LightweightString& more) { return *this += more.view(); }
    LightweightString& operator+=(const Char* more) { return *this += more ? View{more} : View{}; }
    LightweightString& operator+=(Char c) { return *this += View{&c, 1}; }
    ///@}
    /// Appends a whole number in decimal.
    void appendDecimal(std::int64_t number) {
        Char digits[24];
        Char* const end = digits + 24;
        Char* at = end;
        auto rest = number < 0 ? 0 - static_cast<std::uint64_t>(number)
                               : static_cast<std::uint64_t>(number);
        do {
            *--at = static_cast<Char>(Char{'0'} + static_cast<Char>(rest % 10));
            rest /= 10;
        } while (rest != 0);
        if (number < 0) {
            *--at = Char{'-'};
        }
        *this += View{at, static_cast<std::size_t>(end - at)};
    }

    ///@{
    /// Byte-wise (unsigned) and case-sensitive; a null string equals "".
    friend bool operator==(const LightweightString& a, const LightweightString& b) noexcept {
        return a.block_ == b.block_ || a.view() == b.view();
    }
    friend bool operator==(const LightweightString& a, const Char* b) noexcept {
        return a.view() == (b ? View{b} : View{});
    }
    friend std::strong_ordering operator<=>(const LightweightString& a,
                                            const LightweightString& b) noexcept {
        return a.view() <=> b.view();
    }
    ///@}
    ///@{
    /// Both texts in a new one.
    friend LightweightString operator+(LightweightString a, const LightweightString& b) {
        return a += b.view();
    }
    friend LightweightString operator+(LightweightString a, const Char* b) {
        return a += (b ? View{b} : View{});
    }
    ///@}

private:
    static constexpr std::size_t shortest = 64; // texts for which a call of the C library pays

    struct Block {
        int count;
        std::uint32_t length;
    };
    /// All empty texts share one block a library. Blocks of length 0 are never counted nor
    /// released.
    struct EmptyBlock {
        Block head{1, 0};
        Char end{};
    };
    static inline constinit EmptyBlock empty_{};

    static const Char* emptyText() noexcept { return &empty_.end; }
    static const Char* text(const Block* block) noexcept {
        return reinterpret_cast<const Char*>(reinterpret_cast<const unsigned char*>(block) +
                                             sizeof(Block));
    }
    static std::size_t bytesFor(std::size_t length) noexcept {
        return sizeof(Block) + (length + 1) * sizeof(Char);
    }

    static Block* make(View source) {
        if (source.empty()) {
            return &empty_.head;
        }
        if (source.size() >= std::numeric_limits<std::uint32_t>::max() / sizeof(Char)) {
            throw std::bad_alloc{};
        }
        auto* const block =
            static_cast<Block*>(Tarn::StringMemory::allocate(bytesFor(source.size())));
        ::new (block) Block{1, static_cast<std::uint32_t>(source.size())};
        auto* const out =
            reinterpret_cast<Char*>(reinterpret_cast<unsigned char*>(block) + sizeof(Block));
        copyTo(out, source);
        out[source.size()] = Char{};
        return block;
    }
    static void copyTo(Char* out, View source) noexcept {
        if constexpr (std::is_same_v<Char, char>) {
            if (source.size() <= shortest) {
                Tarn::copyShort(out, source);
                return;
            }
        }
        source.copy(out, source.size());
    }
    void hold() const noexcept {
        if (block_ && block_->length != 0) {
            Tarn::StringMemory::countUp(block_->count);
        }
    }
    void drop() noexcept {
        if (block_ && block_->length != 0 && Tarn::StringMemory::countDown(block_->count)) {
            Tarn::StringMemory::release(block_, bytesFor(block_->length));
        }
    }

    static Char lowerOf(Char c) noexcept {
        return c >= Char{'A'} && c <= Char{'Z'} ? static_cast<Char>(c + ('a' - 'A')) : c;
    }
    static bool same(View a, View b, bool caseSensitive) noexcept {
        if (caseSensitive) {
            return a == b;
        }
        for (std::size_t i = 0; i < a.size(); ++i) {
            if (lowerOf(a[i]) != lowerOf(b[i])) {
                return false;
            }
        }
        return true;
    }

    Block* block_ = nullptr;
};
