// Messages and where they go, and the watchdog's bracket.

#include "misc/diagnostics.h"
#include "misc/SystemWatchdog.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace {

/// Records what reaches the three outlets, a letter before each message.
class DiagnosticsTest : public testing::Test {
protected:
    DiagnosticsTest() {
        Tarn::setLogSink([this](std::string_view text) { add('L', text); });
        Tarn::setConsoleSink([this](std::string_view text) { add('C', text); });
        Tarn::setOutputSink([this](std::string_view text) { add('O', text); });
    }
    ~DiagnosticsTest() override { restore(); }
    static void restore() {
        Tarn::setLogSink({});
        Tarn::setConsoleSink({});
        Tarn::setOutputSink({});
    }
    void add(char outlet, std::string_view text) { (record += outlet) += text; }

    std::string record;
};

TEST_F(DiagnosticsTest, EachMessageReachesItsOutlet) {
    LogBoth("%s is %d\n", "revision", 7);
    console_printf("100%%");
    ole_splat("not implemented\n");
    Tarn::putLine("line");
    Tarn::reportFailedCheck("i < size_", "ole/Tarn/Vector line 61");
    Tarn::reportFailedCheckOnConsole("false", "here");
    EXPECT_EQ(record, "Lrevision is 7\nC100%Cnot implemented\nOline\n"
                      "Oassertion failed i < size_ at ole/Tarn/Vector line 61\n"
                      "Cassertion failed false at here\n");
}

TEST_F(DiagnosticsTest, MessagesOfAnyLength) {
    for (const std::size_t length : {0U, 1U, 255U, 256U, 1023U, 1024U, 300000U}) {
        record.clear();
        const std::string text(length, 'x');
        LogBoth("<%s>", text.c_str());
        EXPECT_EQ(record, "L<" + text + ">");
    }
}

TEST_F(DiagnosticsTest, ASinkMayLogAndReplaceItself) {
    int depth = 0;
    Tarn::setLogSink([&](std::string_view text) {
        add('l', text);
        if (++depth < 3) {
            LogBoth("again %d ", depth);
            console_printf("too ");
        }
    });
    LogBoth("first ");
    EXPECT_EQ(record, "lfirst lagain 1 lagain 2 Ctoo Ctoo ");

    record.clear();
    const auto kept = std::make_shared<std::string>("still there ");
    Tarn::setLogSink([this, kept](std::string_view) {
        Tarn::setLogSink([this](std::string_view text) { add('n', text); });
        add('o', *kept);
    });
    LogBoth("one ");
    LogBoth("two ");
    EXPECT_EQ(record, "ostill there ntwo ");
    EXPECT_EQ(kept.use_count(), 1);
}

TEST_F(DiagnosticsTest, DefaultsAreTheStandardStreams) {
    restore();
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    LogBoth("log ");
    Tarn::putLine("out");
    console_printf("console ");
    Tarn::reportFailedCheck("d != invalid_time", "ole/oledb/dbrecord line 172");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "log console ");
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "out\nassertion failed d != invalid_time at ole/oledb/dbrecord line 172\n");
    EXPECT_EQ(record, "");
}

class WatchdogTest : public testing::Test {
protected:
    WatchdogTest() {
        SystemWatchdog::setObserver([this](int depth) { seen.push_back(depth); });
    }
    ~WatchdogTest() override { SystemWatchdog::setObserver({}); }
    std::vector<int> seen;
};

TEST_F(WatchdogTest, BracketsNestAndNeverGoBelowNone) {
    SystemWatchdog::beginLifeSupport();
    SystemWatchdog::beginLifeSupport();
    EXPECT_EQ(SystemWatchdog::depth(), 2);
    SystemWatchdog::endLifeSupport();
    SystemWatchdog::endLifeSupport();
    SystemWatchdog::endLifeSupport();
    EXPECT_EQ(SystemWatchdog::depth(), 0);
    SystemWatchdog::beginLifeSupport();
    SystemWatchdog::setObserver({});
    SystemWatchdog::endLifeSupport();
    EXPECT_EQ(seen, (std::vector<int>{1, 2, 1, 0, 1}));
}

TEST_F(WatchdogTest, ThreadsShareTheCount) {
    SystemWatchdog::setObserver({});
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([] {
            for (int n = 0; n < 5000; ++n) {
                SystemWatchdog::beginLifeSupport();
                SystemWatchdog::endLifeSupport();
            }
        });
    }
    for (auto& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(SystemWatchdog::depth(), 0);
}

} // namespace
