// A long session delivers millions of notifications: what listeners that come and go leave behind
// must not grow. A program of its own, because it counts every block of memory.

#include "tarn/Notifier.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

std::atomic<long> blocks{0};

} // namespace

void* operator new(std::size_t bytes) {
    void* const block = std::malloc(bytes);
    if (!block) {
        throw std::bad_alloc{};
    }
    ++blocks;
    return block;
}

void operator delete(void* block) noexcept {
    if (block) {
        --blocks;
        std::free(block);
    }
}

void operator delete(void* block, std::size_t /*bytes*/) noexcept {
    operator delete(block);
}

namespace {

TEST(NotifierMemory, StaysTheSameWhileListenersComeAndGo) {
    Notifier notifier;
    Tarn::Ptr<Tarn::Guard> guard;
    long calls = 0;
    NotifyCallback listener = [&](const NotifyMsg&) {
        guard.reset();
        guard = notifier.registerInterest(listener, 1);
        notifier.issueNotification(NotifyMsg{}, 2);
        return static_cast<int>(++calls);
    };
    guard = notifier.registerInterest(listener, 1);
    const auto play = [&notifier](int rounds) {
        for (int i = 0; i < rounds; ++i) {
            notifier.issueNotification(NotifyMsg{}, 1);
            notifier.registerInterest([](const NotifyMsg&) { return 0; }, 1).reset();
        }
        return blocks.load();
    };
    const long before = play(3);
    EXPECT_GT(before, 0);
    EXPECT_EQ(play(1000), before);
    EXPECT_EQ(calls, 1003);
}

} // namespace
