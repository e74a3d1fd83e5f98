#pragma once

// Character tests on ASCII alone. Bytes of 128 and above are never white space, control characters,
// letters, digits or punctuation, whatever the host's locale says; texts are UTF-8 or older
// encodings and pass through unharmed.

namespace Tarn {

/// True for codes 9 to 13 and 32.
constexpr bool isSpace(char c) noexcept {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

/// True for codes 0 to 31 and 127.
constexpr bool isControl(char c) noexcept {
    return static_cast<unsigned char>(c) < 32 || static_cast<unsigned char>(c) == 127;
}

/// True for '0' to '9'.
constexpr bool isDigit(char c) noexcept {
    return c >= '0' && c <= '9';
}

/// True for the 52 ASCII letters.
constexpr bool isLetter(char c) noexcept {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

/// True for the 32 ASCII punctuation marks (printable, neither blank, letter nor digit).
constexpr bool isPunctuation(char c) noexcept {
    return c > ' ' && static_cast<unsigned char>(c) < 127 && !isLetter(c) && !isDigit(c);
}

/// The lower-case form of an ASCII capital; any other byte as it is.
constexpr char toLower(char c) noexcept {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

/// The upper-case form of an ASCII small letter; any other byte as it is.
constexpr char toUpper(char c) noexcept {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

} // namespace Tarn
