#pragma once

#include "tarn/export.h"

#include <cstdint>
#include <functional>

/// Brackets long operations, so that a host does not take them for a hang, and tells how far those
/// are that read and write files.
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

    /// Tells how far a long operation is: `done` of `total`, in whatever it counts. Costs next to
    /// nothing while nobody observes.
    static void reportProgress(std::uint64_t done, std::uint64_t total);
    /// Called with what is reported, now and then while a file is read or written: bytes of a file
    /// that comes in pieces, lines of a log, rows that are saved. Within one operation `done` only
    /// grows, and stays at or below `total`, which is never 0; it ends there, unless the operation
    /// fails. Files whose size is not known, and empty ones, report nothing. An empty function
    /// switches that off. The observer runs in the middle of the operation: it must not touch the
    /// table, nor throw.
    static void setProgressObserver(std::function<void(std::uint64_t, std::uint64_t)> observer);
};
