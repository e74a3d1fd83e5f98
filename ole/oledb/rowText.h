#pragma once

#include "tarn/LineBuffer.h"

#include <string_view>

/// Appends a value as a field of a table file: in quotes, a quote within it doubled, a line feed as
/// backslash n, carriage returns left out.
void appendQuotedValue(Tarn::LineBuffer& line, std::string_view text);
