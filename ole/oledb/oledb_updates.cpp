// The index of rows by cookie, and the batches of updates that end in one message.

#include "misc/configb.h"
#include "ole/oledb/messageTypes.h"
#include "ole/oledb/oledb.h"
#include "tarn/NotifyMsg.h"

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
        cookieMap_[cookie] = row;
    } catch (...) {
        forgetCookies(); // better none than one that lacks this row
        throw;
    }
}

void oledb::forgetCookies() const noexcept {
    if (!cookieMap_.empty()) {
        CookieMap{}.swap(
            cookieMap_); // an emptied map would keep its size, and clearing it again its cost
    }
    noCookieFound_ = false;
}

void oledb::buildCookieMap() const {
    const int col = get_fieldnum(cookieField);
    const unsigned n = col < 0 ? 0 : get_num_records();
    CookieMap found;
    for (unsigned row = 0; row < n; ++row) {
        const Cookie cookie{get_field(row, col), false};
        if (cookie.valid()) {
            found.emplace(cookie, row); // the first of several rows is kept
        }
    }
    cookieMap_.swap(found);
    noCookieFound_ = cookieMap_.empty() && n != 0;
}

int oledb::getRowIndexByID(const Cookie& cookie) const {
    if (!cookie.valid()) {
        return -1;
    }
    if (cookieMap_.empty() && !noCookieFound_) {
        buildCookieMap();
    }
    const auto found = cookieMap_.find(cookie);
    return found == cookieMap_.end() ? -1 : static_cast<int>(found->second);
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
