// Open addressing with steps of one. Nothing is ever taken out, so the first free slot ends every
// search.

#include "ole/oledb/CookieIndex.h"

int CookieIndex::rowOf(const Cookie& cookie) const noexcept {
    if (slots_.empty() || !cookie.valid()) {
        return -1;
    }
    const Slot& slot = slots_[placeOf(cookie)];
    return slot.cookie.valid() ? static_cast<int>(slot.row) : -1;
}

void CookieIndex::set(const Cookie& cookie, unsigned row) {
    if (slots_.size() / 3 * 2 <= held_) {
        makeRoomFor(2 * held_ + 8);
    }
    place(cookie, row);
    slots_[placeOf(cookie)].row = row;
}

void CookieIndex::makeRoomFor(std::size_t cookies) {
    LargeVector<Slot> slots(cookies + cookies / 2 + 3, Slot{});
    slots.swap(slots_);
    held_ = 0;
    for (const Slot& slot : slots) {
        if (slot.cookie.valid()) {
            place(slot.cookie, slot.row);
        }
    }
}

/// The slot that a hash falls to when 0 to 2^32 is laid over the slots.
std::size_t CookieIndex::homeOf(const Cookie& cookie) const noexcept {
    const std::uint64_t hash = CookieHash{}(cookie);
    return static_cast<std::size_t>((hash & 0xFFFFFFFF) * slots_.size() >> 32);
}

/// The slot that holds a cookie, or the free one where it belongs.
std::size_t CookieIndex::placeOf(const Cookie& cookie) const noexcept {
    std::size_t at = homeOf(cookie);
    while (slots_[at].cookie.valid() && slots_[at].cookie != cookie) {
        at = at + 1 == slots_.size() ? 0 : at + 1;
    }
    return at;
}

/// Takes a cookie in, unless it is here already.
void CookieIndex::place(const Cookie& cookie, unsigned row) noexcept {
    Slot& slot = slots_[placeOf(cookie)];
    if (!slot.cookie.valid()) {
        slot = {cookie, row};
        ++held_;
    }
}

void CookieIndex::Filler::add(const Cookie& cookie, unsigned row) noexcept {
    if (!cookie.valid()) {
        return;
    }
    __builtin_prefetch(&index_.slots_[index_.homeOf(cookie)]);
    cookies_[waiting_] = cookie;
    rows_[waiting_] = row;
    if (++waiting_ == cookies_.size()) {
        placeAll();
    }
}

void CookieIndex::Filler::placeAll() noexcept {
    for (std::size_t i = 0; i < waiting_; ++i) {
        index_.place(cookies_[i], rows_[i]);
    }
    waiting_ = 0;
}
