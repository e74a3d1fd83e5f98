// Small questions about texts and single characters.

#include "tarn/StringFunctions.h"

#include "tarn/Ascii.h"

#include <cctype>

bool isEssentiallyEmpty(std::string_view text) noexcept {
    return text.find_first_not_of(" \t\r\n") == std::string_view::npos;
}

bool isfindbreak(char c) noexcept {
    const bool ascii = static_cast<unsigned char>(c) < 128;
    return ascii && !Tarn::isLetter(c) && !Tarn::isDigit(c) && c != '_';
}

bool Tarn::isLocaleSpace(char c) noexcept {
    return std::isspace(static_cast<unsigned char>(c)) != 0;
}
