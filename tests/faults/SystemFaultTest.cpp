// Saving where each system call on its way fails once, where the process is killed at each of them,
// and where the disk is full after any number of bytes.

#include "support/LongTests.h"
#include "support/SavedFiles.h"
#include "support/SystemFaults.h"
#include "unit/ChildProcess.h"

#include <algorithm>
#include <cstdio>
#include <sys/stat.h>

namespace {

using namespace faults;

constexpr mode_t rights = 0640;
constexpr uid_t nobody = 65534;

/// Whether a save must tell. What is closed after the renaming was only read.
bool mustTell(const State& state) {
    const Call call = state.fault.call;
    return state.fault.how <= How::FailsAndStays && call != Call::Owner && call != Call::Status &&
           call != Call::Unlink && !(call == Call::Close && state.struckAfterRename);
}

/// In how many ways a call can go wrong.
std::vector<How> waysOf(Call call) {
    switch (call) {
    case Call::Write:
        return {How::Fails, How::FailsAndStays, How::IsInterrupted, How::DoesPart, How::Kills};
    case Call::Open:
    case Call::Flush:
    case Call::Close:
        return {How::Fails, How::FailsAndStays, How::IsInterrupted, How::Kills};
    default:
        return {How::Fails, How::FailsAndStays, How::Kills};
    }
}

class SystemFault : public SavedFile {
protected:
    /// Version 0 with rights, and where possible an owner, of its own; or nothing.
    void prepare(bool exists) {
        removeSiblings();
        std::filesystem::remove(folder_.path("f"));
        before_ = exists ? bytes_[0] : Bytes{};
        if (exists) {
            folder_.write("f", *bytes_[0]);
            if (geteuid() == 0) {
                EXPECT_EQ(chown(folder_.path("f").c_str(), nobody, nobody), 0);
            }
            EXPECT_EQ(chmod(folder_.path("f").c_str(), rights), 0);
        }
    }
    State saveWith(const Fault& fault) {
        arm(fault);
        told_ = save(1);
        return disarm();
    }
    /// Every way in the long form; of kinds that differ only in telling, else the plain failures.
    unsigned tryWays(Call call, unsigned nth, bool exists) {
        const auto same = [](const FileKind& kind) { return kind.save == GetParam().save; };
        const bool whole =
            longTests() || std::any_of(std::begin(mainKinds), std::end(mainKinds), same);
        const std::vector<How> ways = whole ? waysOf(call) : std::vector<How>{How::Fails};
        for (const How how : ways) {
            SCOPED_TRACE(std::string{callNames[static_cast<std::size_t>(call)]} + " number " +
                         std::to_string(nth) + ", way " + std::to_string(static_cast<int>(how)) +
                         (exists ? ", over a file" : ", no file"));
            prepare(exists);
            tryPlace({call, nth, how});
        }
        return static_cast<unsigned>(ways.size());
    }
    void tryPlace(const Fault& fault) {
        if (fault.how == How::Kills) {
            killAt(fault);
        } else {
            const State state = saveWith(fault);
            ASSERT_TRUE(state.struck);
            expectTold(state);
            if (fault.how != How::FailsAndStays && fault.call != Call::Unlink) {
                EXPECT_EQ(siblings(), std::set<std::string>{});
            }
        }
        expectWhole(before_, 1);
        if (before_) {
            struct stat found {};
            EXPECT_EQ(stat(folder_.path("f").c_str(), &found), 0);
            EXPECT_EQ(found.st_mode & 07777, rights);
        }
        expectUsableBesideSiblings(1);
    }
    void expectTold(const State& state) const {
        const bool saved = holds(1);
        if (GetParam().tells) {
            EXPECT_EQ(told_, saved && !mustTell(state));
        }
        if (!state.struckAfterRename) {
            EXPECT_FALSE(saved && mustTell(state));
        }
        // Bytes are written, and the disk holds them, before they stand at the path.
        if (state.fault.call == Call::Write ||
            (state.fault.call == Call::Flush && state.fault.nth == 1)) {
            EXPECT_FALSE(state.struckAfterRename);
        }
        if (state.fault.how == How::IsInterrupted || state.fault.how == How::DoesPart) {
            EXPECT_TRUE(saved);
        }
    }
    /// What makes a save safe: the bytes and then the new name reach the disk, and a file keeps its
    /// rights and, where another may be given, its owner.
    static void expectAllSafetyIn(const State& calm, bool exists) {
        const auto seen = [&](Call call) { return calm.calls[static_cast<std::size_t>(call)]; };
        for (const Call call : {Call::Open, Call::Write, Call::Close, Call::Rename}) {
            EXPECT_GE(seen(call), 1U) << callNames[static_cast<std::size_t>(call)];
        }
        EXPECT_GE(seen(Call::Flush), 2U) << "the file and its folder";
        EXPECT_GE(seen(Call::Mode), exists ? 1U : 0U);
        EXPECT_GE(seen(Call::Owner), exists && geteuid() == 0 ? 1U : 0U);
    }
    void killAt(const Fault& fault) {
        const int status = statusOf(startChild([&] {
            saveWith(fault);
            return 0;
        }));
        EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL);
    }

    Bytes before_;
    bool told_ = false;
};
INSTANTIATE_TEST_SUITE_P(Each, SystemFault, testing::ValuesIn(fileKinds), nameOfKind);

TEST_P(SystemFault, AtEachCall) {
    for (const bool exists : {true, false}) {
        prepare(exists);
        const State calm = saveWith({});
        ASSERT_TRUE(told_ && holds(1));
        expectAllSafetyIn(calm, exists);
        unsigned tried = 0;
        std::printf("[  FAULTS  ] %s, %s:", GetParam().name, exists ? "over a file" : "no file");
        for (std::size_t i = 0; i < calm.calls.size(); ++i) {
            std::printf(" %s %u", callNames[i], calm.calls[i]);
            for (unsigned nth = 1; nth <= calm.calls[i]; ++nth) {
                tried += tryWays(static_cast<Call>(i), nth, exists);
            }
        }
        std::printf("; %u faults\n", tried);
    }
}

/// A file that cannot be read to its end is no table at all, not a shorter one.
class FailingRead : public SystemFault {};
INSTANTIATE_TEST_SUITE_P(Each, FailingRead, testing::Values(fileKinds[0]), nameOfKind);

TEST_P(FailingRead, LeavesNoPartOfATable) {
    oledb whole{path(), INT_MAX, true};
    ASSERT_EQ(whole.get_num_records(), Version::rows);
    oledb table{path(), 0, true};
    arm({});
    table.loadFromFile(INT_MAX, true);
    const State calm = disarm();
    const unsigned reads = calm.calls[static_cast<std::size_t>(Call::Read)];
    EXPECT_GE(reads, 3U);
    for (unsigned nth = 1; nth <= reads; ++nth) {
        for (const How how : {How::Fails, How::IsInterrupted, How::DoesPart}) {
            SCOPED_TRACE("read " + std::to_string(nth) + ", way " +
                         std::to_string(static_cast<int>(how)));
            arm({Call::Read, nth, how});
            table.loadFromFile(INT_MAX, true);
            EXPECT_TRUE(disarm().struck);
            EXPECT_EQ(table.get_valid(), how == How::Fails ? 0 : 1);
            EXPECT_EQ(rowsOf(table), how == How::Fails ? Rows{} : rowsOf(whole));
            EXPECT_EQ(table.get_num_fields(), how == How::Fails ? 0U : 2U);
        }
    }
}

/// The system sees one save as the other, so one kind for each way of saving is enough.
class FullDisk : public SystemFault {};
INSTANTIATE_TEST_SUITE_P(Each, FullDisk, testing::ValuesIn(mainKinds), nameOfKind);

TEST_P(FullDisk, AfterSoManyBytes) {
    const std::size_t whole = bytes_[1]->size();
    std::vector<std::size_t> sizes{0, 1, 100, 262'143, 262'144, 262'145, whole - 1, whole};
    for (std::size_t size = 50'021; size < whole; size += 50'021) {
        sizes.push_back(size);
    }
    for (const bool exists : {true, false}) {
        for (const std::size_t size : sizes) {
            SCOPED_TRACE("full after " + std::to_string(size) + " bytes" +
                         (exists ? ", over a file" : ", no file"));
            prepare(exists);
            const bool told = inChildWithFullDisk(size, [this] { return save(1); });
            EXPECT_TRUE(at("f") == (size == whole ? bytes_[1] : before_));
            EXPECT_EQ(siblings(), std::set<std::string>{});
            if (GetParam().tells) {
                EXPECT_EQ(told, size == whole);
            }
        }
    }
}

} // namespace
