#pragma once

#include <string>
#include <string_view>
#include <vector>

/// Column titles that logs have and an import finds a field for, as they are spelt.
const std::vector<std::string>& knownTitles();

/// The known title that differs from this one in nothing but case and blanks; "" where there is
/// none, or where the title is a known one.
std::string nearKnownTitle(std::string_view title);

/// Whether one slip of the keyboard makes one text the other, ignoring case: a character put in,
/// taken out or changed, or two that stand in the wrong order.
bool isOneSlip(std::string_view a, std::string_view b);

/// The known title that was probably meant, one slip of the keyboard away; "" where there is none.
std::string misspeltTitle(std::string_view title);
