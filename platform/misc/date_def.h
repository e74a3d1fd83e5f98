#pragma once

#include "tarn/export.h"
#include "tarn/LightweightString.h"

/// A date and time from a decimal count of seconds since 1970, in local time.
class TARN_API date_def {
public:
    /// Parses the count, with blanks around it; a fraction is rounded down to its second. Any other
    /// text gives no date. Null reads as "".
    explicit date_def(const char* text);
    /// The full form, 2024-03-05 14:07:09, whatever the form number; "" for no date.
    [[nodiscard]] LightweightString<char> get_all(int form) const;

private:
    long long seconds_ = 0;
    bool valid_ = false;
};

namespace Tarn {

/// The text of the standard `ctime` for a count of seconds since 1970: weekday, month, day, time of
/// day, year, newline, in local time. "" when the year cannot be expressed.
TARN_API LightweightString<char> ctimeText(long long secondsSince1970);

/// Seconds since 1970, now.
TARN_API long long now() noexcept;

} // namespace Tarn
