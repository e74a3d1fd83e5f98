// The library must answer before `main`, while the objects of other libraries are made, and after
// it, while they are destroyed.

#include "misc/config.h"
#include "misc/CurrentProject.h"
#include "misc/diagnostics.h"
#include "misc/SystemWatchdog.h"
#include "tarn/NotifyMsgTypeDictionary.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>

namespace {

/// Stands before the library's own state is made, so it is destroyed when destructible state would
/// be gone already.
class Resident {
public:
    Resident() = default;
    Resident(const Resident&) = delete;
    Resident& operator=(const Resident&) = delete;
    ~Resident() {
        Tarn::setLogSink([this](std::string_view text) { logged += text; });
        LogBoth("late");
        Tarn::setLogSink({});
        const bool good = logged == "earlylate" && config_int("test_resident", 0) == 42 &&
                          NotifyMsgTypeDictionary::intern("test resident") == type &&
                          std::strcmp(NotifyMsgTypeDictionary::name(type), "test resident") == 0;
        if (!good) {
            std::fputs("the library forgot its state before the program ended\n", stderr);
            std::_Exit(70);
        }
    }

    /// Uses everything that has a state.
    bool use() {
        setenv("OLE_CONFIG_TEST_RESIDENT", "41", 1);
        setting = config_int("test_resident", 0);
        config_int_set("test_resident", 42);
        type = NotifyMsgTypeDictionary::intern("test resident");
        SystemWatchdog::beginLifeSupport();
        depth = SystemWatchdog::depth();
        SystemWatchdog::endLifeSupport();
        rate = Tarn::CurrentProject::getFrameRate(0).numerator;
        Tarn::setLogSink([this](std::string_view text) { logged += text; });
        LogBoth("early");
        Tarn::setLogSink({});
        return true;
    }

    std::string logged;
    int setting = 0;
    int type = 0;
    int depth = 0;
    int rate = 0;
};

Resident resident;
const bool used = resident.use();

TEST(StaticLifetime, StateMadeBeforeMainIsTheStateAfterIt) {
    EXPECT_TRUE(used);
    EXPECT_EQ(resident.setting, 41);
    EXPECT_EQ(config_int("test_resident", 0), 42);
    EXPECT_EQ(NotifyMsgTypeDictionary::intern("test resident"), resident.type);
    EXPECT_EQ(resident.depth, 1);
    EXPECT_EQ(resident.rate, 25);
    EXPECT_EQ(resident.logged, "early");
}

} // namespace
