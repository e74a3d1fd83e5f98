#pragma once

#include "tarn/export.h"
#include "tarn/LightweightString.h"

#include <string>
#include <string_view>

/// A growable text buffer. Appending is amortised constant a character.
class TARN_API GrowString {
public:
    GrowString() = default;

    ///@{
    /// Appends a text; that of a pointer ends at its zero byte, and null appends nothing.
    GrowString& append(const char* text);
    GrowString& append(std::string_view text);
    GrowString& append(const LightweightString<char>& text);
    ///@}
    /// Appends a byte.
    GrowString& append(char c);
    ///@{
    /// Appends a whole number in decimal.
    GrowString& append(int number);
    GrowString& append(unsigned number);
    ///@}

    /// The zero-terminated text, good until the next change.
    [[nodiscard]] const char* c_str() const noexcept { return text_.c_str(); }
    /// The text as a slice, good until the next change.
    [[nodiscard]] std::string_view view() const noexcept { return text_; }
    /// The number of bytes.
    [[nodiscard]] std::size_t length() const noexcept { return text_.size(); }
    /// A copy of the text, up to its first zero byte.
    [[nodiscard]] LightweightString<char> string() const { return LightweightString<char>{view()}; }
    /// Makes the text empty.
    void clear() noexcept { text_.clear(); }

private:
    std::string text_;
};
