#pragma once

#include "ole/ole.h"
#include "ole/oledb/EntryStorage.h"

#include <span>

class NotifyMsg;

/// The index of a view. Deletions below may be put off: whoever reads or changes the index finds
/// them done, in one pass however many they were.
class ViewIndex {
public:
    using Entry = EntryStorage::Entry;

    /// The entries, which may be more than there is storage for.
    [[nodiscard]] int numIndex() const noexcept { return settled().count(); }
    /// The entries that are allocated.
    [[nodiscard]] int indexSize() const noexcept { return settled().capacity(); }
    [[nodiscard]] int held() const noexcept { return settled().held(); }
    /// The entries that there is storage for.
    [[nodiscard]] std::span<Entry> entries() noexcept {
        return {settled().data(), static_cast<std::size_t>(held())};
    }
    [[nodiscard]] std::span<const Entry> entries() const noexcept {
        return {settled().data(), static_cast<std::size_t>(held())};
    }
    [[nodiscard]] Entry& operator[](int i) noexcept { return settled().data()[i]; }
    [[nodiscard]] const Entry& operator[](int i) const noexcept { return settled().data()[i]; }
    /// For changes; see there.
    [[nodiscard]] EntryStorage* operator->() noexcept { return &settled(); }

    void clear() noexcept {
        putOff_ = {};
        waits_ = false;
        ++looks_;
        storage_.clear();
    }
    /// Takes over a message of deleted rows, to be followed when somebody looks. False, and nothing
    /// taken over, where it must be followed step by step.
    bool putOff(const NotifyMsg& msg);
    /// What was put off and is still to be done, in the order in which it came.
    [[nodiscard]] const std::vector<DeletedRows::Run>& pending() const noexcept {
        return putOff_.runs();
    }
    /// Has the next look noticed; the number of those that were.
    unsigned watch() noexcept {
        waits_ = true;
        return looks_;
    }
    /// The same number: another one where somebody has looked since `watch`.
    [[nodiscard]] unsigned looks() const noexcept { return looks_; }

private:
    EntryStorage& settled() const noexcept {
        if (waits_) {
            settle();
        }
        return storage_;
    }
    OLE_API void settle() const noexcept; // hosts read counts inline

    mutable EntryStorage storage_;
    mutable DeletedRows putOff_;
    mutable bool waits_ = false; // something is put off, or who looks is to be noticed
    mutable unsigned looks_ = 0;
};
