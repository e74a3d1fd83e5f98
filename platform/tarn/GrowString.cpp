// The growable buffer for texts that are put together piece by piece.

#include "tarn/GrowString.h"

#include <charconv>

namespace {

template <class Number>
void appendDecimal(std::string& text, Number number) {
    char digits[16];
    text.append(digits, std::to_chars(digits, digits + sizeof(digits), number).ptr);
}

} // namespace

GrowString& GrowString::append(const char* text) {
    return append(text ? std::string_view{text} : std::string_view{});
}

GrowString& GrowString::append(std::string_view text) {
    text_.append(text);
    return *this;
}

GrowString& GrowString::append(const LightweightString<char>& text) {
    return append(text.view());
}

GrowString& GrowString::append(char c) {
    text_.push_back(c);
    return *this;
}

GrowString& GrowString::append(int number) {
    appendDecimal(text_, number);
    return *this;
}

GrowString& GrowString::append(unsigned number) {
    appendDecimal(text_, number);
    return *this;
}
