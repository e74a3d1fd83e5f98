#pragma once

#include "tarn/LightweightString.h"

#include <string_view>

/// The name of the table field that a log's column of this name goes to: by the user's map file,
/// else by the built-in names, else the name itself. Names are compared to the letter. The map file
/// is read at the first call in the process.
LightweightString<char> fieldNameForAleColumn(const LightweightString<char>& column);
