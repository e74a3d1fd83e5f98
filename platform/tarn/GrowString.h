#pragma once

#include "tarn/export.h"
#include "tarn/LightweightString.h"

#include <string>
#include <string_view>

/// A growable text buffer. Appending is amortised constant a character.
class TARN_API GrowString {
public:
    GrowString() = default;

    /// Appends a zero-terminated text; null appends nothing.
    GrowString& append(const char* text);
    GrowString& append(std::string_view text);
    GrowString& append(const LightweightString<char>& text);
    GrowString& append(char c);
    /// Appends a whole number in decimal.
    GrowString& append(int number);
    GrowString& append(unsigned number);

    /// The zero-terminated text, good until the next change.
    [[nodiscard]] const char* c_str() const noexcept { return text_.c_str(); }
    [[nodiscard]] std::string_view view() const noexcept { return text_; }
    [[nodiscard]] std::size_t length() const noexcept { return text_.size(); }
    [[nodiscard]] LightweightString<char> string() const { return LightweightString<char>{view()}; }
    void clear() noexcept { text_.clear(); }

private:
    std::string text_;
};
