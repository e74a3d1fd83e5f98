// The two orders of texts: ignoring case, and natural. Sorting spends its time here, so both begin
// by running over what the two texts have in common.

#include "tarn/Ascii.h"
#include "tarn/byteWords.h"
#include "tarn/StringFunctions.h"

#include <algorithm>

namespace {

int sign(bool less) noexcept {
    return less ? -1 : 1;
}

template <class Number>
int compareNumbers(Number a, Number b) noexcept {
    return a == b ? 0 : sign(a < b);
}

unsigned char folded(char c) noexcept {
    return static_cast<unsigned char>(Tarn::toLower(c));
}

/// How many characters from the start on are the same ignoring case.
std::size_t commonLength(std::string_view a, std::string_view b) noexcept {
    const std::size_t end = std::min(a.size(), b.size());
    std::size_t i = 0;
    while (i + 8 <= end && Tarn::eightBytes(a.data() + i) == Tarn::eightBytes(b.data() + i)) {
        i += 8;
    }
    while (i < end && (a[i] == b[i] || folded(a[i]) == folded(b[i]))) {
        ++i;
    }
    return i;
}

/// Compares the characters at `at`, up to which the texts agree; the end comes before any other.
int compareAt(std::string_view a, std::string_view b, std::size_t at) noexcept {
    if (at == a.size() || at == b.size()) {
        return compareNumbers(a.size(), b.size());
    }
    return compareNumbers(folded(a[at]), folded(b[at]));
}

/// Where the digit run begins that ends at `at`.
std::size_t startOfDigits(std::string_view text, std::size_t at) noexcept {
    while (at > 0 && Tarn::isDigit(text[at - 1])) {
        --at;
    }
    return at;
}

/// A digit run cut from the front of a text.
struct DigitRun {
    std::size_t zeros;
    std::string_view digits; // without the leading zeros
};

DigitRun takeDigits(std::string_view& text) noexcept {
    std::size_t zeros = 0;
    while (zeros < text.size() && text[zeros] == '0') {
        ++zeros;
    }
    std::size_t end = zeros;
    while (end < text.size() && Tarn::isDigit(text[end])) {
        ++end;
    }
    const DigitRun run{zeros, text.substr(zeros, end - zeros)};
    text.remove_prefix(end);
    return run;
}

int compareValues(const DigitRun& a, const DigitRun& b) noexcept {
    if (a.digits.size() != b.digits.size()) {
        return sign(a.digits.size() < b.digits.size());
    }
    return a.digits.compare(b.digits);
}

bool bothAtDigit(std::string_view a, std::string_view b) noexcept {
    return !a.empty() && !b.empty() && Tarn::isDigit(a.front()) && Tarn::isDigit(b.front());
}

/// The natural order of texts that do not begin within a digit run.
int compareNaturally(std::string_view a, std::string_view b) noexcept {
    int zeros = 0; // the first difference in leading zeros
    for (;;) {
        if (bothAtDigit(a, b)) {
            const DigitRun runA = takeDigits(a);
            const DigitRun runB = takeDigits(b);
            if (const int byValue = compareValues(runA, runB)) {
                return byValue;
            }
            zeros = zeros != 0 ? zeros : compareNumbers(runA.zeros, runB.zeros);
        } else if (commonLength(a.substr(0, 1), b.substr(0, 1)) == 0) {
            const int rest = compareAt(a, b, 0);
            return rest != 0 ? rest : zeros;
        } else {
            a.remove_prefix(1);
            b.remove_prefix(1);
        }
    }
}

} // namespace

int compareIgnoringCase(std::string_view a, std::string_view b) noexcept {
    return compareAt(a, b, commonLength(a, b));
}

int strxcmp(std::string_view a, std::string_view b) noexcept {
    const std::size_t common = commonLength(a, b);
    if (common == a.size() && common == b.size()) {
        return 0;
    }
    // A digit run that reaches up to the difference counts as a whole.
    const std::size_t start = startOfDigits(a, common);
    return compareNaturally(a.substr(start), b.substr(start));
}
