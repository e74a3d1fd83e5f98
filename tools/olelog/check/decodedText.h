#pragma once

#include <optional>
#include <string>
#include <string_view>

/// A text as UTF-8, read in an encoding that iconv knows by this name; nothing where it is not of
/// that encoding, or the system knows none of that name.
std::optional<std::string> decodedText(std::string_view bytes, const std::string& encoding);
