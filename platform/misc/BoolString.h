#pragma once

#include "tarn/export.h"
#include "tarn/LightweightString.h"

/// "true" or "false".
TARN_API LightweightString<char> BoolAsString(bool value);

/// Reads true, t, yes, y, on, 1 and false, f, no, n, off, 0, ignoring case. Other texts return
/// false and leave `value` alone.
TARN_API bool BoolFromString(const LightweightString<char>& text, bool& value);
