// The nesting of long operations. The state is made at first use and never destroyed: a long
// operation may run while the program loads or ends.

#include "misc/SystemWatchdog.h"

#include <atomic>
#include <memory>
#include <mutex>
#include <utility>

namespace {

using Observer = std::function<void(int)>;

constinit std::atomic<int> openBrackets{0};

struct Watch {
    std::mutex mutex;
    std::shared_ptr<const Observer> observer;
};

Watch& watch() {
    static Watch& theOne = *new Watch;
    return theOne;
}

/// Calls the observer outside the lock: it may open brackets or replace itself.
void tell(int depth) {
    std::shared_ptr<const Observer> observer;
    {
        const std::lock_guard lock{watch().mutex};
        observer = watch().observer;
    }
    if (observer && *observer) {
        (*observer)(depth);
    }
}

} // namespace

void SystemWatchdog::beginLifeSupport() {
    tell(++openBrackets);
}

void SystemWatchdog::endLifeSupport() {
    int before = openBrackets;
    while (before > 0 && !openBrackets.compare_exchange_weak(before, before - 1)) {
    }
    if (before > 0) {
        tell(before - 1);
    }
}

int SystemWatchdog::depth() noexcept {
    return openBrackets;
}

void SystemWatchdog::setObserver(std::function<void(int)> observer) {
    auto held = std::make_shared<const Observer>(std::move(observer));
    const std::lock_guard lock{watch().mutex};
    watch().observer.swap(held);
}
