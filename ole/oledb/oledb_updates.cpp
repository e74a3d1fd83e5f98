// Batches of updates, which end in one message with the cookies of the changed rows.

#include "misc/configb.h"
#include "ole/oledb/messageTypes.h"
#include "ole/oledb/oledb.h"
#include "tarn/NotifyMsg.h"

#include <utility>

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
