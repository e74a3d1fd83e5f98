#pragma once

#include "misc/time_def.h"
#include "tarn/export.h"

namespace Tarn {

/// The project that is open in the editor: its frame rate and how it counts. 25 frames without drop
/// frame until a host says otherwise.
class TARN_API CurrentProject {
public:
    /// Which revision of the project is asked for; 0 is the current one, the only one here.
    using Revision = int;

    /// A frame rate as a fraction.
    struct FrameRate {
        int numerator = 25;  ///< frames
        int denominator = 1; ///< in so many seconds
    };

    /// The project's frame rate, the same for every revision.
    static FrameRate getFrameRate(Revision revision);
    /// Whether the project counts in drop-frame timecode.
    static bool getUseDropFrameTimecode();

    /// Sets the rate for all of the process from now on; a host calls it when a project opens.
    static void setFrameRate(FrameRate rate) noexcept;
    /// Sets the way of counting likewise. It takes effect at fractional rates of nominally 30
    /// or 60.
    static void setUseDropFrameTimecode(bool use) noexcept;
    /// How often the two getters have been called, so that tests can tell reading from remembering.
    static unsigned long readCount() noexcept;
};

} // namespace Tarn
