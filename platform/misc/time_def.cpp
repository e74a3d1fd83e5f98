// Timecodes: from stored text, from seconds, to the two stored forms.
//
// Labels count at the nominal rate. Drop-frame labels leave out the first numbers of every minute
// but each tenth (two numbers at 30 frames a second, four at 60), so that they keep up with the
// clock.

#include "misc/time_def.h"

#include "tarn/Ascii.h"

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdio>

namespace {

constexpr double longest = 100.0 * 3600.0; // seconds: where two digits of hours end
constexpr double tolerance = 0.001;        // frames: what a stored decimal may have lost

constexpr std::size_t packedLength = 8;
constexpr std::size_t punctuatedLength = 11;

bool isPunctuated(std::string_view text) noexcept {
    return text.size() == punctuatedLength && Tarn::isPunctuation(text[2]) &&
           Tarn::isPunctuation(text[5]) && Tarn::isPunctuation(text[8]);
}

/// Reads two digits; -1 for anything else.
int twoDigits(const char* text) noexcept {
    if (!Tarn::isDigit(text[0]) || !Tarn::isDigit(text[1])) {
        return -1;
    }
    return (text[0] - '0') * 10 + (text[1] - '0');
}

/// The label that counting frame `frames` reaches when numbers are left out.
long long dropFrameLabel(long long frames, int nominal) noexcept {
    const long long dropped = nominal / 15;
    const long long minute = nominal * 60LL - dropped;
    const long long tenMinutes = minute * 10 + dropped;
    const long long tens = frames / tenMinutes;
    const long long rest = frames % tenMinutes;
    const long long minutes = rest < dropped ? 0 : (rest - dropped) / minute;
    return frames + dropped * (9 * tens + minutes);
}

} // namespace

int TCInf::nominalRate() const noexcept {
    if (rateNumerator <= 0 || rateDenominator <= 0) {
        return 0;
    }
    return static_cast<int>((0LL + rateNumerator + rateDenominator - 1) / rateDenominator);
}

bool TCInf::dropsFrames() const noexcept {
    const int nominal = nominalRate();
    return dropFrame && (nominal == 30 || nominal == 60) && rateNumerator % rateDenominator != 0;
}

// Labels that no clock shows (90:99:75:40) are taken as they are: a log's odd timecode must come
// through a change of form unharmed.
time_def::time_def(const char* text, int label) noexcept {
    std::string_view digits{text ? text : ""};
    if (label != LABEL_TIMECODE) {
        return;
    }
    const bool marked = digits.ends_with('d');
    digits.remove_suffix(marked ? 1 : 0);
    const bool punctuated = isPunctuated(digits);
    if (!punctuated && digits.size() != packedLength) {
        return;
    }
    const std::size_t step = punctuated ? 3 : 2;
    std::array<int, 4> parts{};
    for (std::size_t i = 0; i < parts.size(); ++i) {
        parts[i] = twoDigits(digits.data() + i * step);
        if (parts[i] < 0) {
            return;
        }
    }
    hours_ = parts[0];
    minutes_ = parts[1];
    seconds_ = parts[2];
    frames_ = parts[3];
    dropFrame_ = marked || (punctuated && digits[8] == ';');
    valid_ = true;
}

time_def::time_def(double seconds, const TCInf& rate) noexcept {
    // Written so that what is no number fails it too.
    if (!(std::fabs(seconds) < longest) || rate.nominalRate() == 0) {
        return;
    }
    const double exact = seconds * rate.rateNumerator / rate.rateDenominator;
    setFrames(static_cast<long long>(std::floor(exact + tolerance)), rate);
}

void time_def::setFrames(long long frames, const TCInf& rate) noexcept {
    const int nominal = rate.nominalRate();
    const long long count = frames < 0 ? -frames : frames;
    const long long label = rate.dropsFrames() ? dropFrameLabel(count, nominal) : count;
    const long long wholeSeconds = label / nominal;
    hours_ = static_cast<int>(wholeSeconds / 3600);
    minutes_ = static_cast<int>(wholeSeconds / 60 % 60);
    seconds_ = static_cast<int>(wholeSeconds % 60);
    frames_ = static_cast<int>(label % nominal);
    dropFrame_ = rate.dropsFrames();
    negative_ = frames < 0;
    valid_ = hours_ < 100; // labels may reach it a few frames before the clock does
}

LightweightString<char> time_def::get_punctuated_str() const {
    if (!valid_) {
        return "";
    }
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "%s%02d:%02d:%02d%c%02d", negative_ ? "-" : "", hours_,
                  minutes_, seconds_, dropFrame_ ? ';' : ':', frames_);
    return text.data();
}

LightweightString<char> time_def::get_database_str() const {
    if (!valid_) {
        return "";
    }
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "%s%02d%02d%02d%02d%s", negative_ ? "-" : "", hours_,
                  minutes_, seconds_, frames_, dropFrame_ ? "d" : "");
    return text.data();
}
