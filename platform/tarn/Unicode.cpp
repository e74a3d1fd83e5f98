// Between bytes and wide texts: UTF-8 on one side; UTF-32, or UTF-16 where wchar_t has 16 bits, on
// the other. Decoding is strict: overlong forms, surrogates and codes past U+10FFFF are malformed.
// Texts show malformed input as U+FFFD; paths escape each bad byte as a lone surrogate, which no
// well-formed input can give, so that the way back is exact.

#include "tarn/StringFunctions.h"

#include <algorithm>
#include <string>

namespace {

constexpr bool wideIsUTF16 = sizeof(wchar_t) == 2;
constexpr char32_t replacement = 0xFFFD;
constexpr char32_t escapeBase = 0xDC00;

/// What happens to input that is malformed.
enum class Malformed { replaced, escaped };

/// A code point and the number of units it took; 0 units: the first unit is malformed.
struct Decoded {
    char32_t code;
    std::size_t units;
};

constexpr bool isSurrogate(char32_t code) noexcept {
    return code >= 0xD800 && code <= 0xDFFF;
}

constexpr bool isCodePoint(char32_t code) noexcept {
    return code <= 0x10FFFF && !isSurrogate(code);
}

constexpr bool isEscape(char32_t code) noexcept {
    return code >= escapeBase + 0x80 && code <= escapeBase + 0xFF;
}

std::size_t lengthByLead(unsigned char lead) noexcept {
    if (lead < 0x80) {
        return 1;
    }
    if (lead < 0xC2 || lead > 0xF4) {
        return 0;
    }
    return lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
}

Decoded firstOf(std::string_view bytes) noexcept {
    constexpr char32_t smallest[] = {0, 0, 0x80, 0x800, 0x10000};
    constexpr unsigned char leadBits[] = {0, 0x7F, 0x1F, 0x0F, 0x07};
    const auto lead = static_cast<unsigned char>(bytes.front());
    const std::size_t length = lengthByLead(lead);
    if (length == 0 || length > bytes.size()) {
        return {lead, 0};
    }
    char32_t code = lead & leadBits[length];
    for (std::size_t i = 1; i < length; ++i) {
        const auto next = static_cast<unsigned char>(bytes[i]);
        if ((next & 0xC0) != 0x80) {
            return {lead, 0};
        }
        code = (code << 6) | (next & 0x3FU);
    }
    return code >= smallest[length] && isCodePoint(code) ? Decoded{code, length} : Decoded{lead, 0};
}

Decoded firstOf(std::wstring_view wide) noexcept {
    const auto unit = static_cast<char32_t>(wide[0]);
    if (isCodePoint(unit)) {
        return {unit, 1};
    }
    if (wideIsUTF16 && unit < escapeBase && wide.size() > 1) {
        const auto low = static_cast<char32_t>(wide[1]);
        if (isSurrogate(low) && low >= escapeBase) {
            return {0x10000 + ((unit - 0xD800) << 10) + (low - escapeBase), 2};
        }
    }
    return {unit, 0};
}

void append(std::wstring& wide, char32_t code) {
    if (wideIsUTF16 && code > 0xFFFF) {
        wide += static_cast<wchar_t>(0xD800 + ((code - 0x10000) >> 10));
        code = escapeBase + (code & 0x3FF);
    }
    wide += static_cast<wchar_t>(code);
}

void append(std::string& bytes, char32_t code) {
    const auto tail = [&](unsigned shift) {
        bytes += static_cast<char>(0x80 | ((code >> shift) & 0x3F));
    };
    if (code < 0x80) {
        bytes += static_cast<char>(code);
    } else if (code < 0x800) {
        bytes += static_cast<char>(0xC0 | (code >> 6));
        tail(0);
    } else if (code < 0x10000) {
        bytes += static_cast<char>(0xE0 | (code >> 12));
        tail(6);
        tail(0);
    } else {
        bytes += static_cast<char>(0xF0 | (code >> 18));
        tail(12);
        tail(6);
        tail(0);
    }
}

bool appendEscaped(std::wstring& wide, char32_t badByte) {
    wide += static_cast<wchar_t>(escapeBase + badByte);
    return true;
}

bool appendEscaped(std::string& bytes, char32_t badUnit) {
    if (!isEscape(badUnit)) {
        return false;
    }
    bytes += static_cast<char>(badUnit - escapeBase);
    return true;
}

/// Converts between the two forms; a run of malformed units that are not escaped gives one U+FFFD.
template <class To, class From>
LightweightString<To> converted(std::basic_string_view<From> from, Malformed malformed) {
    std::basic_string<To> to;
    to.reserve(from.size());
    bool inBadRun = false;
    while (!from.empty()) {
        const Decoded first = firstOf(from);
        const bool good = first.units != 0;
        if (good) {
            append(to, first.code);
        }
        const bool done =
            good || (malformed == Malformed::escaped && appendEscaped(to, first.code));
        if (!done && !inBadRun) {
            append(to, replacement);
        }
        inBadRun = !done;
        from.remove_prefix(std::max<std::size_t>(first.units, 1));
    }
    return LightweightString<To>{std::basic_string_view<To>{to}};
}

} // namespace

LightweightString<char> toUTF8(const LightweightString<wchar_t>& text) {
    return text.isNull() ? LightweightString<char>{}
                         : converted<char>(text.view(), Malformed::replaced);
}

LightweightString<wchar_t> fromUTF8(const LightweightString<char>& text) {
    return text.isNull() ? LightweightString<wchar_t>{}
                         : converted<wchar_t>(text.view(), Malformed::replaced);
}

LightweightString<wchar_t> pathFromBytes(std::string_view path) {
    return converted<wchar_t>(path, Malformed::escaped);
}

LightweightString<char> pathToBytes(const LightweightString<wchar_t>& path) {
    return converted<char>(path.view(), Malformed::escaped);
}

LightweightString<wchar_t> Tarn::WStringFromAscii(const char* text) {
    return text ? converted<wchar_t>(std::string_view{text}, Malformed::replaced)
                : LightweightString<wchar_t>{};
}
