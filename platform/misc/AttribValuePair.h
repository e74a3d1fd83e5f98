#pragma once

#include "tarn/export.h"
#include "tarn/LightweightString.h"

#include <string_view>

namespace Tarn {

/// A line of a settings file, cut at the first separator; white space around both halves is
/// dropped.
class TARN_API AttribValuePair {
public:
    ///@{
    /// Cuts a line; copies both halves. The separator is not null.
    AttribValuePair(std::string_view line, std::string_view separator);
    AttribValuePair(const LightweightString<char>& line, const char* separator)
        : AttribValuePair{line.view(), std::string_view{separator}} {}
    ///@}

    /// False without a separator or with an empty attribute; an empty value is fine.
    [[nodiscard]] bool valid() const noexcept { return !attribute_.empty(); }
    /// What stands before the separator; "" when the pair is not valid.
    [[nodiscard]] const LightweightString<char>& attribute() const noexcept { return attribute_; }
    /// What stands behind the separator.
    [[nodiscard]] const LightweightString<char>& value() const noexcept { return value_; }

private:
    LightweightString<char> attribute_;
    LightweightString<char> value_;
};

} // namespace Tarn
