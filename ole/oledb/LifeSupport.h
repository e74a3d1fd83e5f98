#pragma once

#include "misc/SystemWatchdog.h"

/// Tells the watchdog of a long operation for as long as it lives.
class LifeSupport {
public:
    LifeSupport() { SystemWatchdog::beginLifeSupport(); }
    LifeSupport(const LifeSupport&) = delete;
    LifeSupport& operator=(const LifeSupport&) = delete;
    ~LifeSupport() { SystemWatchdog::endLifeSupport(); }
};
