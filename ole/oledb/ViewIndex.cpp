// When a view follows the deletions that it has put off.

#include "ole/oledb/ViewIndex.h"

#include <new>
#include <utility>

namespace {

constexpr std::size_t fewest = 64; // runs that even a small view may put off

} // namespace

/// An entry of memory is paid with a run at most: a view that nobody looks at stays small, and
/// settling costs no more than the messages did.
bool ViewIndex::putOff(const NotifyMsg& msg) {
    if (storage_.count() > storage_.capacity()) {
        return false;
    }
    if (storage_.count() == 0) {
        return true;
    }
    const bool taken = putOff_.add(msg);
    waits_ = waits_ || !putOff_.empty();
    if (putOff_.size() > fewest + static_cast<std::size_t>(storage_.count())) {
        settle();
    }
    return taken;
}

void ViewIndex::settle() const noexcept {
    waits_ = false;
    ++looks_;
    if (putOff_.empty()) {
        return;
    }
    const DeletedRows rows = std::exchange(putOff_, {});
    try {
        storage_.takeOutRows(rows);
    } catch (const std::bad_alloc&) {
        storage_.takeOutRowsPlainly(rows);
    }
}
