#pragma once

namespace Tarn {

/// A list of items that hold its links themselves, as `previous` and `next`, and that somebody else
/// owns. An item is in one list at most.
template <class Item>
class LinkedItems {
public:
    /// The item that came last; null where there is none.
    [[nodiscard]] Item* first() const noexcept { return first_; }

    void add(Item& item) noexcept {
        item.previous = nullptr;
        item.next = first_;
        if (first_) {
            first_->previous = &item;
        }
        first_ = &item;
    }
    void takeOut(Item& item) noexcept {
        (item.previous ? item.previous->next : first_) = item.next;
        if (item.next) {
            item.next->previous = item.previous;
        }
    }

private:
    Item* first_ = nullptr;
};

} // namespace Tarn
