// Messages and where they go, and the watchdog's bracket.

#include "misc/diagnostics.h"
#include "misc/SystemWatchdog.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <string_view>
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
    ~DiagnosticsTest() override {
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
    const auto kept = std::make_shared<std::string>("still there ");
    Tarn::setLogSink([this, kept](std::string_view) {
        console_printf("meanwhile ");
        Tarn::setLogSink([this](std::string_view text) { add('n', text); });
        LogBoth("again ");
        add('o', *kept);
    });
    LogBoth("one ");
    LogBoth("two ");
    EXPECT_EQ(record, "Cmeanwhile nagain ostill there ntwo ");
}

TEST(Watchdog, BracketsNestAndNeverGoBelowNone) {
    std::vector<int> seen;
    SystemWatchdog::setObserver([&](int depth) { seen.push_back(depth); });
    SystemWatchdog::beginLifeSupport();
    SystemWatchdog::beginLifeSupport();
    for (int i = 0; i < 3; ++i) {
        SystemWatchdog::endLifeSupport();
    }
    EXPECT_EQ(SystemWatchdog::depth(), 0);
    SystemWatchdog::beginLifeSupport();
    SystemWatchdog::setObserver({});
    SystemWatchdog::endLifeSupport();
    EXPECT_EQ(seen, (std::vector<int>{1, 2, 1, 0, 1}));
}

} // namespace
