// Saving where the process is killed at any moment, and where two processes save the same file.

#include "support/LongTests.h"
#include "support/Random.h"
#include "support/SavedFiles.h"
#include "unit/ChildProcess.h"

#include <chrono>
#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <thread>
#include <utility>

namespace {

/// A message without content from a process that is killed to the one that kills it.
class Signal {
public:
    Signal() { EXPECT_EQ(pipe2(ends_, O_NONBLOCK), 0); }
    Signal(const Signal&) = delete;
    Signal& operator=(const Signal&) = delete;
    ~Signal() {
        close(ends_[0]);
        close(ends_[1]);
    }
    void send() { static_cast<void>(write(ends_[1], "", 1) == 1); } // a full pipe has told
    [[nodiscard]] bool wasSent() const {
        char byte = 0;
        return read(ends_[0], &byte, 1) == 1;
    }

private:
    int ends_[2] = {-1, -1};
};

class KilledSave : public SavedFile {};
INSTANTIATE_TEST_SUITE_P(Each, KilledSave, testing::ValuesIn(mainKinds), nameOfKind);

TEST_P(KilledSave, LeavesAWholeFile) {
    unsigned kills = 0;
    unsigned inside = 0;
    unsigned afterASave = 0;
    forSeeds(longTests() ? 200 : 20, [&](Random& random) {
        if (random.oneIn(3)) {
            std::filesystem::remove(folder_.path("f"));
        }
        const Bytes before = at("f");
        const bool flush = random.oneIn(4); // else a kill would hardly fall into the writing
        Signal saved;
        const pid_t child = startChild([&] {
            TextFile::setFlushToDisk(flush);
            for (unsigned version = 0; save(version); version ^= 1U) {
                saved.send();
            }
            return 1;
        });
        std::this_thread::sleep_for(std::chrono::microseconds{random.below(30'000)});
        ASSERT_EQ(kill(child, SIGKILL), 0);
        ASSERT_TRUE(WIFSIGNALED(statusOf(child))) << "a save failed";
        ++kills;
        inside += siblings().empty() ? 0 : 1;
        const bool told = saved.wasSent(); // from then on there is a file
        afterASave += told ? 1 : 0;
        expectWhole(told || holds(0) ? bytes_[0] : before, 1);
        expectUsableBesideSiblings(random.below(2));
    });
    std::printf("[  KILLS   ] %s: %u kills, %u after a save, %u left a sibling\n", GetParam().name,
                kills, afterASave, inside);
    if (kills >= 100) { // a few may all miss, on a busy machine
        EXPECT_GT(inside, 0U);
        EXPECT_GT(afterASave, 0U);
    }
}

// Each save takes its own sibling, but containers share the one of their first step.
TEST_P(KilledSave, TwoProcessesLeaveOneOrTheOther) {
    const int rounds = longTests() ? 600 : 60;
    std::vector<pid_t> running;
    for (unsigned version = 0; version < 2; ++version) {
        running.push_back(startChild([this, version, rounds] {
            TextFile::setFlushToDisk(false);
            int saved = 0;
            while (saved < rounds && save(version)) {
                ++saved;
            }
            return saved == rounds ? 0 : 1;
        }));
    }
    unsigned found[2] = {0, 0};
    unsigned turns = 0;
    unsigned last = 1;
    while (!running.empty()) {
        const std::string bytes = folder_.read("f");
        EXPECT_TRUE(bytes == bytes_[0] || bytes == bytes_[1]) << bytes.size() << " bytes";
        const unsigned version = bytes == bytes_[0] ? 0 : 1;
        ++found[version];
        turns += version != std::exchange(last, version) ? 1 : 0;
        EXPECT_TRUE(GetParam().loads(path()));
        std::erase_if(running, [](pid_t child) {
            int status = 0;
            const pid_t ended = waitpid(child, &status, WNOHANG);
            EXPECT_TRUE(ended == 0 || ended == child);
            EXPECT_EQ(status, 0) << "saves failed";
            return ended != 0;
        });
    }
    std::printf("[  SAVERS  ] %s: read %u times the one, %u times the other, in %u turns\n",
                GetParam().name, found[0], found[1], turns);
    if (longTests()) { // a few of each may be saved in one go, on a busy machine
        EXPECT_GE(turns, 2U) << "the first leaves what stood there before";
    }
    EXPECT_EQ(siblings(), std::set<std::string>{});
}

} // namespace
