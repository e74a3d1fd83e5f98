// The index of rows by cookie, and the batches of updates that end in one message.

#include "misc/configb.h"
#include "ole/oledb/messageTypes.h"
#include "ole/oledb/oledb.h"
#include "ole/oledb/RowsAhead.h"
#include "tarn/NotifyMsg.h"

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

void oledb::beginUpdate() {
    if (updateDepth_ == 0) {
        pendingCookies_.clear();
    }
    ++updateDepth_;
}

void oledb::addToUpdate(const Cookie& cookie) {
    pendingCookies_.push_back(cookie);
}

void oledb::endUpdate() {
    if (updateDepth_ == 0 || --updateDepth_ != 0 || pendingCookies_.empty()) {
        return;
    }
    // Taken out first: a listener may begin the next batch.
    const Tarn::Ptr<WrappedData<CookieVec>> changed{
        new WrappedData<CookieVec>{std::exchange(pendingCookies_, {})}};
    issueNotification(NotifyMsg{changed}, recordsChangedType());
}

bool oledb::update(configb* cfg, int row) {
    const dbrecord* const record = get_record(static_cast<unsigned>(row));
    if (!record || record->update(cfg) == 0) {
        return false;
    }
    const Cookie cookie{get_field(static_cast<unsigned>(row), cookieField), false};
    if (cookie.valid()) {
        addToUpdate(cookie);
    }
    return true;
}
