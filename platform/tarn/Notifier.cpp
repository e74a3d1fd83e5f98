// Delivery of notifications: who is called, and in which order, while listeners come and go.
//
// Each message type has a list of slots in the order of registration. A round walks from the first
// slot to the one that was last when it began, so listeners that register meanwhile wait. While any
// round walks a list its slots stay in place: dropping a guard only empties the slot, and the
// outermost round takes the empty slots out when it ends. Otherwise the slot goes at once. Either
// way dropping a guard costs the same however many listeners there are.
//
// A listener may issue the next message of its type while the round of the first has not come to
// the listeners behind it. They are told of the first before anybody hears of the next: who keeps
// row numbers must hear of deletions in the order in which they were made. For the same reason a
// listener that throws keeps the message from nobody.
//
// The registry is shared by the notifier (which owns it), the rounds (which keep it alive when the
// notifier dies under them) and, weakly, the guards.
//
// A listener is any callable, so destroying it may run code that comes back here. Every function
// puts the list in order before it lets go of a listener.

#include "tarn/Notifier.h"

#include <cstddef>
#include <exception>
#include <iterator>
#include <list>
#include <map>
#include <memory>
#include <utility>

namespace {

/// A listener, held by its slot and by the rounds that are calling it; null once deregistered.
using Slot = std::shared_ptr<const NotifyCallback>;

class Round;

struct Listeners {
    std::list<Slot> slots;
    std::size_t live = 0;
    Round* innermost = nullptr; // of the rounds that walk the list
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
        if (!list_.innermost) {
            list_.slots.erase(slot_);
        }
    }

    std::weak_ptr<Notifier::Registry> registry_;
    Listeners& list_; // good while the registry is
    std::list<Slot>::iterator slot_;
};

/// One walk over a list that has listeners, ended by its destructor however it is left.
class Round {
public:
    Round(const Notifier::Registry& registry, Listeners& list, const NotifyMsg& msg) noexcept
        : registry_{registry}, list_{list}, msg_{msg}, outer_{std::exchange(list.innermost, this)},
          next_{list.slots.begin()}, last_{std::prev(list.slots.end())} {}
    Round(const Round&) = delete;
    Round& operator=(const Round&) = delete;
    ~Round() {
        list_.innermost = outer_;
        if (!outer_ && list_.slots.size() != list_.live) {
            list_.slots.remove(nullptr);
        }
    }

    /// Tells everybody who was not told yet, the listeners of earlier messages first.
    void deliver() noexcept {
        if (outer_ && !outer_->told_) {
            outer_->deliver();
        }
        while (!told_ && !registry_.ended) {
            // A share of its own, because a listener may drop its own guard while it is called.
            const Slot listener = *next_;
            told_ = next_ == last_;
            ++next_;
            call(listener);
        }
    }
    /// Throws what the first listener threw that threw anything.
    void passOn() const {
        if (thrown_) {
            std::rethrow_exception(thrown_);
        }
    }

private:
    void call(const Slot& listener) noexcept {
        try {
            if (listener) {
                (*listener)(msg_);
            }
        } catch (...) {
            thrown_ = thrown_ ? thrown_ : std::current_exception();
        }
    }

    const Notifier::Registry& registry_;
    Listeners& list_;
    const NotifyMsg& msg_;
    Round* outer_;
    std::list<Slot>::iterator next_;
    std::list<Slot>::iterator last_;
    bool told_ = false; // everybody, or the last is being told
    std::exception_ptr thrown_;
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
    Round round{*registry, registry->lists.find(type)->second, msg};
    round.deliver();
    round.passOn();
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

void Notifier::tellTheRest(int type) {
    const std::shared_ptr<Registry> registry = registry_;
    if (!registry) {
        return;
    }
    const auto found = registry->lists.find(type);
    if (found != registry->lists.end() && found->second.innermost) {
        found->second.innermost->deliver();
    }
}
