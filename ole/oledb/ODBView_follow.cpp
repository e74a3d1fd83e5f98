// What a view does when rows are deleted below it.
//
// A view that has listeners follows a deletion step by step, for they may look at it between the
// steps (`Following`). Where there are none the index does it in one pass, when somebody looks.

#include "ole/oledb/messageTypes.h"
#include "ole/oledb/ODBView.h"
#include "ole/oledb/oledb.h"
#include "ole/oledb/ViewKeepAlive.h"
#include "tarn/NotifyMsg.h"
#include "tarn/NotifyMsgTokenIterator.h"

#include <algorithm>
#include <exception>
#include <span>
#include <string>
#include <utility>

/// One message of deleted rows, which a view follows row by row: entries behind a row sink by one,
/// entries for it go. Each entry that goes is told to listeners, who may change this view, so
/// nothing of the index is kept across that. They may delete further rows, too, which the view
/// hears of at once: it follows the earlier message to the end first, as the numbers of the later
/// one ask for. What listeners throw is thrown on at the end.
class ODBViewRep::Following {
public:
    Following(ODBViewRep& view, const NotifyMsg& msg)
        : view_{view}, outer_{view.following_}, token_{msg} {
        view_.following_ = this;
    }
    Following(const Following&) = delete;
    Following& operator=(const Following&) = delete;
    ~Following() { view_.following_ = outer_; }

    void finish() {
        if (outer_) {
            outer_->finish();
        }
        while (token_.valid()) {
            if (reachesDeleted()) {
                drop(position_);
            } else {
                ++token_;
                ++earlier_;
                position_ = 0;
            }
        }
        if (!collected_.empty()) {
            const std::string all = std::exchange(collected_, {});
            tell(NotifyMsg{LightweightString<char>{std::string_view{all}}}, recordsDeletedType());
            tell(NotifyMsg{}, recordsChangedType());
        }
    }
    void passOn() const {
        if (thrown_) {
            std::rethrow_exception(thrown_);
        }
    }
    /// Entries in front of the one that is looked at were taken out: no other is passed over.
    void takenOut(int from, int n) noexcept {
        if (outer_) {
            outer_->takenOut(from, n);
        }
        position_ -= std::clamp(position_ - from, 0, n);
    }

private:
    /// Lowers rows behind the deleted one up to the next entry that shows it, if there is one.
    bool reachesDeleted() noexcept {
        const long long deleted = static_cast<long long>(token_.number()) - earlier_;
        const std::span entries = view_.index.entries();
        for (; static_cast<std::size_t>(position_) < entries.size(); ++position_) {
            ViewIndex::Entry& entry = entries[static_cast<std::size_t>(position_)];
            if (entry.signedRow() == deleted) {
                return true;
            }
            entry.row -= entry.signedRow() > deleted ? 1 : 0;
        }
        return false;
    }
    /// The collected numbers are not the removed positions but lie one less than the number of
    /// earlier rows above them: views built on this one rely on hearing exactly that.
    void drop(int i) {
        const NotifyMsg removed = view_.takeOut(i, 1);
        collected_ += std::to_string(i + earlier_ - 1);
        collected_ += ' ';
        tell(removed, recordsDeletedType());
    }
    void tell(const NotifyMsg& msg, int type) noexcept {
        try {
            view_.issueNotification(msg, type);
        } catch (...) {
            thrown_ = thrown_ ? thrown_ : std::current_exception();
        }
    }

    ODBViewRep& view_;
    Following* outer_;
    NotifyMsgTokenIterator token_;
    int earlier_ = 0; ///< rows of the message that were followed
    int position_ = 0;
    std::string collected_;
    std::exception_ptr thrown_;
};

bool ODBViewRep::isHeard() const noexcept {
    return hasListeners(recordsDeletedType()) || hasListeners(recordsChangedType());
}

int ODBViewRep::recordsDeletedNotify(const NotifyMsg& msg) {
    if (!following_ && !isHeard() && index.putOff(msg)) {
        return 0;
    }
    const KeepAlive alive{*this};
    Following following{*this, msg};
    following.finish();
    following.passOn();
    return 0;
}

void ODBViewRep::noteTakenOut(int from, int n) noexcept {
    if (following_) {
        following_->takenOut(from, n);
    }
}

/// Before entries come that are numbered as the source is now: whoever adds them may have heard of
/// a deletion before this view, or in the middle of its following one. The caller keeps the view
/// alive.
void ODBViewRep::followToTheEnd() {
    if (oledb* const below = table()) {
        below->tellTheRest(recordsDeletedType());
    }
    if (const ODBView below{base}; below) {
        below->followToTheEnd();
        below->tellTheRest(recordsDeletedType());
    }
    if (following_) {
        following_->finish();
    }
}
