// Delivery of notifications: who is called, and in which order, while listeners come and go.
//
// Each message type has a list of slots in the order of registration. A round walks from the first
// slot to the one that was last when it began, so listeners that register meanwhile wait. While any
// round walks a list its slots stay in place: dropping a guard only empties the slot, and the
// outermost round takes the empty slots out when it ends. Otherwise the slot goes at once. Either
// way dropping a guard costs the same however many listeners there are.
//
// The registry is shared by the notifier (which owns it), the rounds (which keep it alive when the
// notifier dies under them) and, weakly, the guards.
//
// A listener is any callable, so destroying it may run code that comes back here. Every function
// puts the list in order before it lets go of a listener.

#include "tarn/Notifier.h"

#include <cstddef>
#include <iterator>
#include <list>
#include <map>
#include <memory>
#include <utility>

namespace {

/// A listener, held by its slot and by the rounds that are calling it; null once deregistered.
using Slot = std::shared_ptr<const NotifyCallback>;

struct Listeners {
    std::list<Slot> slots;
    std::size_t live = 0;
    int rounds = 0;
};

} // namespace

struct Notifier::Registry {
    std::map<int, Listeners> lists; // a list stays where it is once made; the guards point at it
    bool ended = false;
};

namespace {

class Registration : public Tarn::Guard {
public:
    Registration(std::weak_ptr<Notifier::Registry> registry, Listeners& list,
                 std::list<Slot>::iterator slot) noexcept
        : registry_{std::move(registry)}, list_{list}, slot_{slot} {}
    ~Registration() override {
        if (const auto registry = registry_.lock()) {
            deregister();
        }
    }

private:
    void deregister() noexcept {
        const Slot dying = std::move(*slot_);
        --list_.live;
        if (list_.rounds == 0) {
            list_.slots.erase(slot_);
        }
    }

    std::weak_ptr<Notifier::Registry> registry_;
    Listeners& list_; // good while the registry is
    std::list<Slot>::iterator slot_;
};

/// One walk over a list, ended by its destructor however it is left.
class Round {
public:
    explicit Round(Listeners& list) noexcept : list_{list} { ++list_.rounds; }
    Round(const Round&) = delete;
    Round& operator=(const Round&) = delete;
    ~Round() {
        if (--list_.rounds == 0 && list_.slots.size() != list_.live) {
            list_.slots.remove(nullptr);
        }
    }

private:
    Listeners& list_;
};

} // namespace

NotifierBase::~NotifierBase() = default;

Notifier::Notifier() = default;

Notifier::~Notifier() {
    if (registry_) {
        registry_->ended = true;
    }
}

void Notifier::issueNotification(const NotifyMsg& msg, int type) {
    if (!hasListeners(type)) {
        return;
    }
    const std::shared_ptr<Registry> registry = registry_;
    Listeners& list = registry->lists.find(type)->second;
    const Round round{list};
    const auto last = std::prev(list.slots.end());
    for (auto slot = list.slots.begin();; ++slot) {
        // A share of its own, because a listener may drop its own guard while it is being called.
        if (const Slot listener = *slot) {
            (*listener)(msg);
        }
        if (registry->ended || slot == last) {
            return;
        }
    }
}

Tarn::Ptr<Tarn::Guard> Notifier::registerInterest(NotifyCallback listener, int type) {
    if (!listener) {
        return {};
    }
    if (!registry_) {
        registry_ = std::make_shared<Registry>();
    }
    Listeners& list = registry_->lists[type];
    // The slot joins the list when nothing can fail any more, or it would have no guard.
    std::list<Slot> fresh{std::make_shared<const NotifyCallback>(std::move(listener))};
    Tarn::Ptr<Tarn::Guard> guard{new Registration{registry_, list, fresh.begin()}};
    list.slots.splice(list.slots.end(), fresh);
    ++list.live;
    return guard;
}

bool Notifier::hasListeners(int type) const noexcept {
    if (!registry_) {
        return false;
    }
    const auto found = registry_->lists.find(type);
    return found != registry_->lists.end() && found->second.live != 0;
}
