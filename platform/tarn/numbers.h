#pragma once

#include "tarn/export.h"
#include "tarn/LightweightString.h"

#include <string_view>

// Numbers to text and back, the same in every locale.

namespace Tarn {

/// A whole number in decimal.
TARN_API LightweightString<char> decimal(long long number);
/// As "%.8lf" in the C locale prints it: 2.50000000; all digits of huge values; inf, -inf, nan.
TARN_API LightweightString<char> fixed8(double number);

/// As `atoi`, defined for every text: leading white space, a sign, digits; 0 without digits; values
/// beyond the type are clamped. Null reads as "".
TARN_API int parseInt(const char* text) noexcept;
TARN_API int parseInt(std::string_view text) noexcept;
/// The same for 64 bits.
TARN_API long long parseLongLong(const char* text) noexcept;
/// As `atof` in the C locale; rubbish after the number is ignored, 0 without one. Null reads as "".
TARN_API double parseDouble(const char* text) noexcept;

} // namespace Tarn
