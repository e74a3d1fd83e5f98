#pragma once

#include "tarn/LineBuffer.h"

#include <string>
#include <string_view>

/// Appends a value as a field of a table file: in quotes, a quote within it doubled, a line feed as
/// backslash n, carriage returns left out.
void appendQuotedValue(Tarn::LineBuffer& line, std::string_view text);

/// The line of a parameter, without its end. Neither text is escaped.
std::string parameterLine(std::string_view name, std::string_view value);
