// The search for one pattern: which texts may hold it, and the search itself.

#include "ole/oledb/TextPattern.h"

#include "tarn/Ascii.h"
#include "tarn/byteWords.h"
#include "tarn/StringFunctions.h"

#include <algorithm>

namespace {

constexpr char anyCharacter = '?';
constexpr std::size_t wordSize = sizeof(std::uint64_t);
constexpr std::uint64_t oneInEachByte = 0x0101010101010101;

std::size_t literalFrom(std::string_view pattern, std::size_t at) noexcept {
    return std::min(pattern.find_first_not_of(anyCharacter, at), pattern.size());
}

} // namespace

/// The pair is the first two characters of the pattern that stand for themselves. In timecodes a
/// mark of the pattern may stand for another behind the first character, so that one must do.
TextPattern::TextPattern(const char* pattern, Rules rules) noexcept
    : pattern_{pattern ? pattern : ""}, rules_{rules} {
    const std::string_view all{pattern_};
    const std::size_t first = literalFrom(all, 0);
    if (first == all.size() || (rules.timecode && first != 0)) {
        return;
    }
    const std::size_t next = rules.timecode ? all.size() : literalFrom(all, first + 1);
    const std::size_t second = next == all.size() ? first : next;
    hasPair_ = true;
    first_ = literalOf(all[first]);
    second_ = literalOf(all[second]);
    distance_ = second - first;
}

TextPattern::Literal TextPattern::literalOf(char c) const noexcept {
    const bool bothCases = !rules_.caseSensitive && Tarn::isLetter(c);
    const std::uint64_t caseBits = bothCases ? oneInEachByte * ('a' - 'A') : 0;
    return {oneInEachByte * static_cast<unsigned char>(c) | caseBits, caseBits};
}

/// False only where the pattern does not occur. The last word of a text overlaps the one before.
bool TextPattern::mayOccurIn(std::string_view text) const noexcept {
    if (!hasPair_ || text.size() < wordSize + distance_) {
        return !text.empty();
    }
    const char* const last = text.data() + text.size() - wordSize - distance_;
    for (const char* at = text.data(); at < last; at += wordSize) {
        if (pairStandsIn(at)) {
            return true;
        }
    }
    return pairStandsIn(last);
}

/// Whether the pair begins at one of eight bytes.
bool TextPattern::pairStandsIn(const char* text) const noexcept {
    const auto differences = [](const char* at, const Literal& literal) {
        return (Tarn::eightBytes(at) | literal.caseBits) ^ literal.bytes;
    };
    const std::uint64_t both = differences(text, first_) | differences(text + distance_, second_);
    return Tarn::hasByte(both, '\0') != 0;
}

bool TextPattern::equal(char inText, char inPattern) const noexcept {
    return inPattern == anyCharacter || inText == inPattern ||
           (!rules_.caseSensitive && Tarn::toLower(inText) == Tarn::toLower(inPattern));
}

bool TextPattern::wordEndsAround(const char* text, const char* first,
                                 const char* behind) const noexcept {
    if (!rules_.wholeWord) {
        return true;
    }
    const bool breakBefore = first == text || isfindbreak(first[-1]);
    return breakBefore && (*behind == '\0' || isfindbreak(*behind));
}

bool TextPattern::isFoundIn(const char* text) const noexcept {
    const char* t = text;
    while (*t != '\0') {
        const char* const first = t;
        if (!equal(*t++, *pattern_)) {
            continue;
        }
        if (*t == '\0' && first != text) {
            return pattern_[1] == '\0'; // the last character of a longer text: no word test
        }
        const char* p = pattern_ + 1;
        while (*p != '\0' && *t != '\0' && equal(*t, *p)) {
            ++t;
            ++p;
            if (rules_.timecode && Tarn::isPunctuation(*t) && Tarn::isPunctuation(*p)) {
                ++t;
                ++p;
            }
        }
        // A failed attempt leaves t at the character that failed, where the search goes on.
        if (*p == '\0' && wordEndsAround(text, first, t)) {
            return true;
        }
    }
    return false;
}
