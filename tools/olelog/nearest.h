#pragma once

#include <string>
#include <string_view>
#include <vector>

/// The name that was probably meant: the one that needs the fewest changes of single characters,
/// ignoring case; "" when none is near.
std::string nearestOf(std::string_view typed, const std::vector<std::string>& names);
