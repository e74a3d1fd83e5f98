#pragma once

#include <cstdlib>

/// Whether the long forms were asked for: OLE_LONG_TESTS=1.
inline bool longTests() {
    const char* const asked = std::getenv("OLE_LONG_TESTS");
    return asked && *asked == '1';
}
