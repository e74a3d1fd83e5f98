// Texts on a terminal: what may be printed, how wide it is, and where it can be cut.
//
// Nearly all texts are plain ASCII, so every operation begins with that case.

#include "shownText.h"

#include <algorithm>
#include <fmt/format.h>
#include <utf8proc.h>

namespace {

constexpr std::string_view ellipsis = "\u2026";
constexpr std::size_t longestQuoted = 60;

bool isPlain(std::string_view text) {
    return std::all_of(text.begin(), text.end(), [](char c) { return c >= ' ' && c <= '~'; });
}

/// The character at the beginning of a text, and how many bytes it has; negative code for a byte
/// that belongs to none.
struct Character {
    utf8proc_int32_t code = -1;
    std::size_t bytes = 1;
};

Character firstCharacter(std::string_view text) {
    Character character;
    const auto length =
        utf8proc_iterate(reinterpret_cast<const utf8proc_uint8_t*>(text.data()),
                         static_cast<utf8proc_ssize_t>(text.size()), &character.code);
    character.bytes = length > 0 ? static_cast<std::size_t>(length) : 1;
    return character;
}

/// Marks that would change how the rest of a line is read: directions, line ends of other kinds.
bool disturbsLine(utf8proc_int32_t code) {
    return code == 0x061C || code == 0x200E || code == 0x200F || code == 0xFEFF ||
           (code >= 0x2028 && code <= 0x202E) || (code >= 0x2066 && code <= 0x2069);
}

bool isControl(utf8proc_int32_t code) {
    return code < 0x20 || (code >= 0x7F && code < 0xA0);
}

void appendSpelled(std::string& out, std::string_view bytes, utf8proc_int32_t code) {
    if (code == '\n' || code == '\r' || code == '\t') {
        out += code == '\n' ? "\\n" : code == '\r' ? "\\r" : "\\t";
        return;
    }
    if (code >= 0xA0) {
        out += fmt::format("\\u{:04x}", code);
        return;
    }
    for (const char byte : bytes) {
        out += fmt::format("\\x{:02x}", static_cast<unsigned char>(byte));
    }
}

/// Cuts a text into what a reader takes for one character each.
class Clusters {
public:
    explicit Clusters(std::string_view text) : rest_{text} {}

    [[nodiscard]] bool atEnd() const { return rest_.empty(); }
    [[nodiscard]] std::size_t width() const { return width_; }

    /// The next cluster; `width` is its width from now on.
    std::string_view next() {
        Character last = firstCharacter(rest_);
        std::size_t bytes = last.bytes;
        std::size_t width = widthOf(last.code);
        utf8proc_int32_t state = 0;
        while (bytes < rest_.size()) {
            const Character following = firstCharacter(rest_.substr(bytes));
            if (utf8proc_grapheme_break_stateful(last.code, following.code, &state)) {
                break;
            }
            bytes += following.bytes;
            width += widthOf(following.code);
            last = following;
        }
        width_ = std::min<std::size_t>(width, 2); // no single sign is wider
        const std::string_view cluster = rest_.substr(0, bytes);
        rest_.remove_prefix(bytes);
        return cluster;
    }

private:
    static std::size_t widthOf(utf8proc_int32_t code) {
        return static_cast<std::size_t>(std::max(utf8proc_charwidth(code), 0));
    }

    std::string_view rest_;
    std::size_t width_ = 0;
};

} // namespace

std::string shown(std::string_view text) {
    if (isPlain(text)) {
        return std::string{text};
    }
    std::string out;
    while (!text.empty()) {
        const Character character = firstCharacter(text);
        const std::string_view bytes = text.substr(0, character.bytes);
        if (isControl(character.code) || disturbsLine(character.code)) {
            appendSpelled(out, bytes, character.code);
        } else {
            out += bytes;
        }
        text.remove_prefix(character.bytes);
    }
    return out;
}

std::string inQuotes(std::string_view text) {
    return '"' + cutToWidth(shown(text), longestQuoted) + '"';
}

std::size_t displayWidth(std::string_view shownText) {
    if (isPlain(shownText)) {
        return shownText.size();
    }
    std::size_t width = 0;
    for (Clusters clusters{shownText}; !clusters.atEnd();) {
        clusters.next();
        width += clusters.width();
    }
    return width;
}

std::size_t widthWhenShown(std::string_view text) {
    return isPlain(text) ? text.size() : displayWidth(shown(text));
}

std::string cutToWidth(std::string_view shownText, std::size_t width) {
    if (displayWidth(shownText) <= width) {
        return std::string{shownText};
    }
    std::string kept;
    std::size_t used = 1; // the ellipsis
    for (Clusters clusters{shownText}; !clusters.atEnd();) {
        const std::string_view cluster = clusters.next();
        used += clusters.width();
        if (used > width) {
            break;
        }
        kept += cluster;
    }
    return width == 0 ? std::string{} : kept.append(ellipsis);
}

bool isUtf8(std::string_view text) {
    while (!text.empty()) {
        const Character character = firstCharacter(text);
        if (character.code < 0) {
            return false;
        }
        text.remove_prefix(character.bytes);
    }
    return true;
}
