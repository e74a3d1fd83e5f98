#pragma once

#include "tarn/export.h"
#include "tarn/LightweightString.h"

#include <string_view>

/// What a text label holds. Only timecode labels are parsed here.
enum label_t : int {
    LABEL_TIMECODE = 6 ///< a timecode
};

/// A frame rate as a fraction, and whether labels drop frame numbers.
struct TARN_API TCInf {
    int rateNumerator = 25;  ///< frames
    int rateDenominator = 1; ///< in so many seconds
    bool dropFrame = false;  ///< whether drop-frame counting is asked for

    /// Frames a second that labels count: the rate rounded up, 30 for 29.97.
    [[nodiscard]] int nominalRate() const noexcept;
    /// Whether drop-frame counting applies: asked for, and a fractional rate of nominally 30 or 60.
    [[nodiscard]] bool dropsFrames() const noexcept;
};

/// The value that stands for no time.
inline constexpr double invalid_time = 1e99;

/// A time: hours, minutes, seconds, frames and the drop-frame mark; or an invalid time.
class TARN_API time_def {
public:
    /// An invalid time.
    time_def() noexcept = default;
    /// Parses a timecode: two digits each of hours, minutes, seconds and frames with one
    /// punctuation mark between them, or eight digits; either may be followed by "d". The mark ";"
    /// before the frames, or the "d", means drop frame. Any other text, or kind of label, gives an
    /// invalid time. Null reads as "".
    time_def(const char* text, int label) noexcept;
    /// A time in seconds at a frame rate: the frame that contains it (with a thousandth of a frame
    /// of tolerance). Invalid for 1e99, for what is no number, and from 100 hours on, either side
    /// of zero.
    time_def(double seconds, const TCInf& rate) noexcept;

    /// Whether this is a time at all.
    [[nodiscard]] bool valid() const noexcept { return valid_; }
    /// 10:00:00:05, or 10:00:00;05 under drop frame; "" for an invalid time. Negative times begin
    /// with "-".
    [[nodiscard]] LightweightString<char> get_punctuated_str() const;
    /// 10000005, or 10000005d under drop frame; "" for an invalid time. Negative times begin with
    /// "-".
    [[nodiscard]] LightweightString<char> get_database_str() const;

private:
    void setFrames(long long frames, const TCInf& rate) noexcept;

    int hours_ = 0;
    int minutes_ = 0;
    int seconds_ = 0;
    int frames_ = 0;
    bool dropFrame_ = false;
    bool negative_ = false;
    bool valid_ = false;
};
