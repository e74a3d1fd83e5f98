// Saving where the process is killed at any moment, and where two processes save the same file.

#include "support/LongTests.h"
#include "support/Random.h"
#include "support/SavedFiles.h"

#include <chrono>
#include <csignal>
#include <cstdio>
#include <functional>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace {

pid_t inBackground(const std::function<void()>& work) {
    const pid_t child = fork();
    if (child == 0) {
        work();
        _exit(0);
    }
    return child;
}

class KilledSave : public SavedFile {};
INSTANTIATE_TEST_SUITE_P(Each, KilledSave, testing::ValuesIn(mainKinds), nameOfKind);

TEST_P(KilledSave, LeavesAWholeFile) {
    unsigned kills = 0;
    unsigned inside = 0;
    forSeeds(longTests() ? 200 : 20, [&](Random& random) {
        if (random.oneIn(3)) {
            std::filesystem::remove(folder_.path("f"));
        }
        const Bytes before = at("f");
        const bool flush = random.oneIn(4); // else a kill would hardly fall into the writing
        const pid_t child = inBackground([&] {
            TextFile::setFlushToDisk(flush);
            for (unsigned version = 0;; version ^= 1U) {
                save(version);
            }
        });
        std::this_thread::sleep_for(std::chrono::microseconds{random.below(30'000)});
        kill(child, SIGKILL);
        int status = 0;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        ASSERT_TRUE(WIFSIGNALED(status));
        ++kills;
        inside += siblings().empty() ? 0 : 1;
        expectWhole(holds(0) ? bytes_[0] : before, 1);
        expectUsableBesideSiblings(random.below(2));
    });
    std::printf("[  KILLS   ] %s: %u kills, %u left a sibling\n", GetParam().name, kills, inside);
    if (kills >= 100) { // a few may all miss, on a busy machine
        EXPECT_GT(inside, 0U);
    }
}

// Each save takes its own sibling, but containers share the one of their first step.
TEST_P(KilledSave, TwoProcessesLeaveOneOrTheOther) {
    const int rounds = longTests() ? 600 : 60;
    for (unsigned version = 0; version < 2; ++version) {
        inBackground([this, version, rounds] {
            TextFile::setFlushToDisk(false);
            for (int i = 0; i < rounds; ++i) {
                save(version);
            }
        });
    }
    unsigned found[2] = {0, 0};
    unsigned running = 2;
    while (running != 0) {
        const std::string bytes = folder_.read("f");
        ASSERT_TRUE(bytes == bytes_[0] || bytes == bytes_[1]) << bytes.size() << " bytes";
        ++found[bytes == bytes_[0] ? 0 : 1];
        EXPECT_TRUE(GetParam().loads(path()));
        while (running != 0 && waitpid(-1, nullptr, WNOHANG) > 0) {
            --running;
        }
    }
    std::printf("[  SAVERS  ] %s: read %u times the one, %u times the other\n", GetParam().name,
                found[0], found[1]);
    EXPECT_EQ(siblings(), std::set<std::string>{});
}

} // namespace
