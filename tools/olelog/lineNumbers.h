#pragma once

#include <string>
#include <vector>

/// Lines for people: "12, 15-18".
std::string runsOf(const std::vector<unsigned>& lines);

/// " (and so in 3 other lines: 14-16)", for what is told of one line and true of more; "" where
/// there are none.
std::string andOtherLines(const std::vector<unsigned>& others);
