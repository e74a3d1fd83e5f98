// Identifiers: the two text forms, parsing of both, order and hash.
//
//     short = letter uuid flags         long = letter "-" 8-4-4-4-12 "-" flags
//     uuid  = 32 hex digits             flags = 2 hex digits

#include "tarn/Cookie.h"

#include "tarn/Ascii.h"

#include <array>
#include <atomic>
#include <chrono>
#include <cstring>
#include <optional>
#include <string>
#include <string_view>
#include <unistd.h>

#if __has_include(<sys/random.h>)
#include <sys/random.h>
#endif

namespace {

constexpr std::size_t uuidDigits = 32;
constexpr std::size_t shortForm = 1 + uuidDigits + 2;
constexpr std::uint8_t allFlags = 255;

/// The characters of an identifier's text that count.
struct Significant {
    char text[shortForm] = {};
    std::size_t size = 0;

    [[nodiscard]] std::string_view view() const noexcept { return {text, size}; }
};

/// An ASCII character as a byte, anything else as a byte that no identifier holds.
template <class Char>
char asAscii(Char c) noexcept {
    return c > Char{0} && c < Char{127} ? static_cast<char>(c) : '\x7f';
}

template <class Char>
std::basic_string_view<Char> trimmed(std::basic_string_view<Char> text) noexcept {
    while (!text.empty() && Tarn::isSpace(asAscii(text.front()))) {
        text.remove_prefix(1);
    }
    while (!text.empty() && Tarn::isSpace(asAscii(text.back()))) {
        text.remove_suffix(1);
    }
    return text;
}

/// The text without outer white space and hyphens; nothing when that is too long.
template <class Char>
std::optional<Significant> significant(std::basic_string_view<Char> text) noexcept {
    Significant result;
    for (const Char c : trimmed(text)) {
        if (c == Char{'-'}) {
            continue;
        }
        if (result.size == sizeof(result.text)) {
            return std::nullopt;
        }
        result.text[result.size++] = asAscii(c);
    }
    return result;
}

constexpr std::uint8_t noDigit = 0xFF;

constexpr auto hexValues = [] {
    std::array<std::uint8_t, 256> values{};
    values.fill(noDigit);
    for (std::uint8_t i = 0; i < 10; ++i) {
        values[static_cast<std::size_t>('0' + i)] = i;
    }
    for (std::uint8_t i = 10; i < 16; ++i) {
        values[static_cast<std::size_t>('a' + i - 10)] = i;
        values[static_cast<std::size_t>('A' + i - 10)] = i;
    }
    return values;
}();

/// Reads two hex digits for each byte; false, with any bytes read, where one is none.
bool readHex(const char* digits, std::uint8_t* bytes, std::size_t n) noexcept {
    unsigned seen = 0;
    for (std::size_t i = 0; i < n; ++i) {
        const unsigned high = hexValues[static_cast<unsigned char>(digits[2 * i])];
        const unsigned low = hexValues[static_cast<unsigned char>(digits[2 * i + 1])];
        seen |= high | low;
        bytes[i] = static_cast<std::uint8_t>(high << 4 | low);
    }
    return seen < 16;
}

/// Reads the UUID and, where they follow, the flags.
Cookie cookieOf(char kind, std::string_view digits) noexcept {
    Cookie::Uuid uuid; // NOLINT(cppcoreguidelines-pro-type-member-init): all of it is read
    std::uint8_t flags = allFlags;
    const bool read = readHex(digits.data(), uuid.data(), uuid.size()) &&
                      (digits.size() == uuidDigits || readHex(&digits[uuidDigits], &flags, 1));
    return read ? Cookie{uuid, kind, flags} : Cookie{};
}

template <class Char>
Cookie parsed(std::basic_string_view<Char> text, bool stored) noexcept {
    const auto chars = significant(text);
    if (!chars || chars->size < uuidDigits) {
        return {};
    }
    const std::string_view all = chars->view();
    const bool hasLetter = all.size() % 2 != 0; // only the letter stands alone
    if (!hasLetter) {
        return stored ? Cookie{} : cookieOf(CookieType::Unspecified, all);
    }
    const char kind = all.front();
    if (!Tarn::isLetter(kind) || kind == CookieType::Invalid) {
        return {};
    }
    return cookieOf(kind, all.substr(1));
}

std::uint64_t mixed(std::uint64_t x) noexcept {
    x ^= x >> 30;
    x *= 0xBF58476D1CE4E5B9U;
    x ^= x >> 27;
    x *= 0x94D049BB133111EBU;
    return x ^ (x >> 31);
}

/// For systems that offer no random numbers: unlikely to repeat, though it could be guessed.
void fillFromClock(Cookie::Uuid& uuid) noexcept {
    static std::atomic<std::uint64_t> calls{0};
    const auto ticks = std::chrono::system_clock::now().time_since_epoch().count();
    const auto process = static_cast<std::uint64_t>(getpid());
    const std::uint64_t words[] = {mixed(static_cast<std::uint64_t>(ticks)),
                                   mixed((process << 32) + ++calls)};
    std::memcpy(uuid.data(), words, uuid.size());
}

void appendHex(std::string& text, std::uint8_t byte) {
    constexpr const char* digits = "0123456789abcdef";
    text += digits[byte >> 4];
    text += digits[byte & 15];
}

bool groupEndsBefore(std::size_t byte) noexcept {
    return byte == 0 || byte == 4 || byte == 6 || byte == 8 || byte == 10 || byte == 16;
}

} // namespace

Cookie::Cookie(const char* text, bool stored) noexcept
    : Cookie{text ? std::string_view{text} : std::string_view{}, stored} {}

/// The short form is what tables hold.
Cookie::Cookie(std::string_view text, bool stored) noexcept
    : Cookie{text.size() == shortForm ? cookieOf(text.front(), text.substr(1)) : Cookie{}} {
    if (!valid()) {
        *this = parsed(text, stored);
    }
}

Cookie::Cookie(const LightweightString<wchar_t>& text, bool stored) noexcept
    : Cookie{parsed(text.view(), stored)} {}

Cookie Cookie::random(char kind, std::uint8_t flags) {
    Uuid uuid{};
    if (getentropy(uuid.data(), uuid.size()) != 0) {
        fillFromClock(uuid);
    }
    uuid[6] = static_cast<std::uint8_t>((uuid[6] & 0x0F) | 0x40); // version 4
    uuid[8] = static_cast<std::uint8_t>((uuid[8] & 0x3F) | 0x80); // the variant of all UUIDs
    return {uuid, kind, flags};
}

LightweightString<char> Cookie::asString(bool longForm) const {
    if (!valid()) {
        return "";
    }
    std::string text{kind_};
    for (std::size_t i = 0; i <= uuid_.size(); ++i) {
        if (longForm && groupEndsBefore(i)) {
            text += '-';
        }
        appendHex(text, i < uuid_.size() ? uuid_[i] : flags_);
    }
    return LightweightString<char>{std::string_view{text}};
}

int Cookie::compare(const Cookie& other) const noexcept {
    if (kind_ != other.kind_) {
        return static_cast<unsigned char>(kind_) < static_cast<unsigned char>(other.kind_) ? -1 : 1;
    }
    if (const int byUuid = std::memcmp(uuid_.data(), other.uuid_.data(), uuid_.size())) {
        return byUuid;
    }
    return flags_ - other.flags_;
}

Cookie convertCookie(const Cookie& cookie, char kind, std::uint8_t flags) noexcept {
    return cookie.valid() ? Cookie{cookie.uuid(), kind, flags} : Cookie{};
}

std::size_t CookieHash::operator()(const Cookie& cookie) const noexcept {
    std::uint64_t words[2];
    std::memcpy(words, cookie.uuid().data(), sizeof(words));
    const auto kind = static_cast<unsigned char>(cookie.kind());
    const std::uint64_t rest = (std::uint64_t{kind} << 8) | cookie.flags();
    return static_cast<std::size_t>(mixed(words[0] + mixed(words[1] + rest)));
}
