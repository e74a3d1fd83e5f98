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
        int numerator = 25;
        int denominator = 1;
    };

    static FrameRate getFrameRate(Revision revision);
    static bool getUseDropFrameTimecode();

    static void setFrameRate(FrameRate rate) noexcept;
    static void setUseDropFrameTimecode(bool use) noexcept;
    /// How often the two getters have been called, so that tests can tell reading from remembering.
    static unsigned long readCount() noexcept;
};

} // namespace Tarn
