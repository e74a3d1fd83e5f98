// The index of rows by cookie, and the batches of updates that end in one message.

#include "misc/configb.h"
#include "ole/oledb/oledb.h"
#include "tarn/NotifyMsg.h"
#include "tarn/NotifyMsgTypeDictionary.h"

#include <utility>

namespace {

constexpr const char* cookieField = "cookie";

int recordsChanged() {
    static const int type = NotifyMsgTypeDictionary::intern("recordsChanged");
    return type;
}

} // namespace

int oledb::set_field(unsigned row, const Cookie& cookie) {
    dbrecord* const record = get_record(row);
    const int col = get_fieldnum(cookieField);
    if (!record || col < 0) {
        return 0;
    }
    const int result = record->set_field(col, cookie.asString(false).c_str(), true);
    if (cookie.valid()) {
        cookieMap_[cookie] = row;
    }
    return result;
}

void oledb::forgetCookies() const noexcept {
    cookieMap_.clear();
    noCookieFound_ = false;
}

void oledb::buildCookieMap() const {
    const int col = get_fieldnum(cookieField);
    const unsigned n = col < 0 ? 0 : get_num_records();
    for (unsigned row = 0; row < n; ++row) {
        const Cookie cookie{get_field(row, col), false};
        if (cookie.valid()) {
            cookieMap_.emplace(cookie, row);
        }
    }
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
    issueNotification(NotifyMsg{changed}, recordsChanged());
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
