// The nesting of long operations, and their progress. The state is made at first use and never
// destroyed: a long operation may run while the program loads or ends.

#include "misc/SystemWatchdog.h"

#include <atomic>
#include <memory>
#include <mutex>
#include <utility>

namespace {

constinit std::atomic<int> openBrackets{0};

/// An observer that may be replaced while it runs, on any thread.
template <class... Values>
class Observed {
public:
    using Observer = std::function<void(Values...)>;

    void observeBy(Observer observer) {
        const bool any = static_cast<bool>(observer);
        auto held = std::make_shared<const Observer>(std::move(observer));
        const std::lock_guard lock{mutex_};
        observer_.swap(held);
        isObserved_.store(any, std::memory_order_relaxed);
    }

    /// Calls the observer outside the lock: it may open brackets or replace itself.
    void tell(Values... values) {
        if (!isObserved_.load(std::memory_order_relaxed)) {
            return;
        }
        std::shared_ptr<const Observer> observer;
        {
            const std::lock_guard lock{mutex_};
            observer = observer_;
        }
        if (observer && *observer) {
            (*observer)(values...);
        }
    }

private:
    std::atomic<bool> isObserved_{false};
    std::mutex mutex_;
    std::shared_ptr<const Observer> observer_;
};

Observed<int>& depths() {
    static auto& theOne = *new Observed<int>;
    return theOne;
}

Observed<std::uint64_t, std::uint64_t>& progress() {
    static auto& theOne = *new Observed<std::uint64_t, std::uint64_t>;
    return theOne;
}

} // namespace

void SystemWatchdog::beginLifeSupport() {
    depths().tell(++openBrackets);
}

void SystemWatchdog::endLifeSupport() {
    int before = openBrackets;
    while (before > 0 && !openBrackets.compare_exchange_weak(before, before - 1)) {
    }
    if (before > 0) {
        depths().tell(before - 1);
    }
}

int SystemWatchdog::depth() noexcept {
    return openBrackets;
}

void SystemWatchdog::setObserver(std::function<void(int)> observer) {
    depths().observeBy(std::move(observer));
}

void SystemWatchdog::reportProgress(std::uint64_t done, std::uint64_t total) {
    progress().tell(done, total);
}

void SystemWatchdog::setProgressObserver(
    std::function<void(std::uint64_t, std::uint64_t)> observer) {
    progress().observeBy(std::move(observer));
}
