#pragma once

#include "ole/oledb/LargeVector.h"
#include "tarn/Cookie.h"

#include <array>
#include <cstddef>
#include <cstdint>

/// Rows by cookie: one table of slots, a third of them free. A cookie stands in the slot that its
/// hash names, or in the next free one behind.
class CookieIndex {
public:
    CookieIndex() = default;
    /// With room for so many cookies.
    explicit CookieIndex(std::size_t cookies) { makeRoomFor(cookies); }

    [[nodiscard]] bool empty() const noexcept { return held_ == 0; }
    /// The row of a cookie; -1 for none.
    [[nodiscard]] int rowOf(const Cookie& cookie) const noexcept;
    /// Gives a valid cookie a row, in the place of the one that it had. Amortised constant. When
    /// memory runs out the index is as it was.
    void set(const Cookie& cookie, unsigned row);

    /// Takes many cookies, of which the first with a row keeps it, into an index that has room for
    /// them. Each waits for its slot's memory while others are read.
    class Filler {
    public:
        explicit Filler(CookieIndex& index) noexcept : index_{index} {}
        Filler(const Filler&) = delete;
        Filler& operator=(const Filler&) = delete;
        ~Filler() { placeAll(); }
        /// Invalid cookies are left out.
        void add(const Cookie& cookie, unsigned row) noexcept;

    private:
        void placeAll() noexcept;

        CookieIndex& index_;
        std::array<Cookie, 16> cookies_;
        std::array<unsigned, 16> rows_{};
        std::size_t waiting_ = 0;
    };

private:
    struct Slot {
        Cookie cookie; // invalid in a free slot
        std::uint32_t row = 0;
    };

    void makeRoomFor(std::size_t cookies);
    [[nodiscard]] std::size_t homeOf(const Cookie& cookie) const noexcept;
    [[nodiscard]] std::size_t placeOf(const Cookie& cookie) const noexcept;
    void place(const Cookie& cookie, unsigned row) noexcept;

    LargeVector<Slot> slots_;
    std::size_t held_ = 0;
};
