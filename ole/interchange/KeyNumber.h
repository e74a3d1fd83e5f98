#pragma once

#include <string>
#include <string_view>

/// Film key numbers in the fixed form of 15 characters that tables hold: prefix and count
/// right-aligned in 12 characters, filled with "_" on the left, then "+" and two digits of
/// perforation offset.
///
/// A number of up to 14 characters is only filled up to 15; one of exactly 15 stays as it is; a
/// longer one is taken apart at its last "+" or "&", blanks and hyphens before it dropped. "" where
/// a longer number has no such mark, or fewer than two characters behind it: deliberately, the
/// number is then not kept.
std::string normalisedKeyNumber(std::string_view keyNumber);
