#pragma once

// A test program whose settings stand in the environment before the module is loaded: it sets them
// and starts itself again.

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <unistd.h>

inline int runWithSetting(int argc, char** argv, const char* variable, const char* value) {
    if (!std::getenv("OLE_TEST_STARTED_AGAIN")) {
        setenv(variable, value, 1);
        setenv("OLE_TEST_STARTED_AGAIN", "1", 1);
        execv(argv[0], argv); // not /proc/self/exe, which is valgrind where that runs the test
        std::perror("cannot start again");
        return 1;
    }
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
