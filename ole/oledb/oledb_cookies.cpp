// Rows by cookie. The index is made when it is first asked for, and forgotten with every change of
// row numbers; cookies that are set meanwhile are noted in it.

#include "ole/oledb/oledb.h"
#include "ole/oledb/RowsAhead.h"

#include <span>
#include <utility>

int oledb::set_field(unsigned row, const Cookie& cookie) {
    dbrecord* const record = get_record(row);
    const int col = get_fieldnum(cookieField);
    if (!record || col < 0) {
        return 0;
    }
    const LightweightString<char> text = cookie.asString(false);
    if (cookie.valid()) {
        noteCookie(cookie, row); // first, for it may fail with nothing changed
    }
    try {
        return record->set_field(col, text.c_str(), true);
    } catch (...) {
        forgetCookies();
        throw;
    }
}

void oledb::noteCookie(const Cookie& cookie, unsigned row) {
    try {
        cookieIndex_.set(cookie, row);
    } catch (...) {
        forgetCookies(); // better none than one that lacks this row
        throw;
    }
}

void oledb::forgetCookies() const noexcept {
    cookieIndex_ = {};
    noCookieFound_ = false;
}

void oledb::buildCookieIndex() const {
    const int col = get_fieldnum(cookieField);
    const unsigned n = col < 0 ? 0 : get_num_records();
    CookieIndex found{n};
    fillCookieIndex(found, col, n);
    cookieIndex_ = std::move(found);
    noCookieFound_ = cookieIndex_.empty() && n != 0;
}

/// The first of several rows is kept.
void oledb::fillCookieIndex(CookieIndex& index, int col, unsigned n) const {
    RowsAhead ahead{n, std::span{&col, 1},
                    [this](std::size_t row) { return get_record(static_cast<unsigned>(row)); }};
    CookieIndex::Filler filler{index};
    for (unsigned row = 0; row < n; ++row) {
        ahead.reach(row);
        filler.add(Cookie{get_field(row, col), false}, row);
    }
}

int oledb::getRowIndexByID(const Cookie& cookie) const {
    if (!cookie.valid()) {
        return -1;
    }
    if (cookieIndex_.empty() && !noCookieFound_) {
        buildCookieIndex();
    }
    return cookieIndex_.rowOf(cookie);
}
