#pragma once

#include "tarn/export.h"

#include <functional>

/// Brackets long operations, so that a host does not take them for a hang.
class TARN_API SystemWatchdog {
public:
    /// Begins a long operation; brackets nest.
    static void beginLifeSupport();
    /// Ends it; without a bracket that is open it does nothing.
    static void endLifeSupport();
    /// Number of brackets open at the moment.
    static int depth() noexcept;
    /// Called with the depth after every begin and end; an empty function switches that off.
    static void setObserver(std::function<void(int)> observer);
};
