// Timecodes: labels from seconds against a counter that steps frame by frame through a day, and the
// forms that texts may have.

#include "misc/time_def.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdio>
#include <limits>
#include <string>
#include <utility>

namespace {

std::string punctuated(const time_def& time) {
    return time.get_punctuated_str().c_str();
}

std::string database(const time_def& time) {
    return time.get_database_str().c_str();
}

std::string label(double seconds, const TCInf& rate) {
    return punctuated(time_def{seconds, rate});
}

constexpr TCInf rate25{25, 1, false};
constexpr TCInf drop30{30000, 1001, true};
constexpr TCInf drop60{60000, 1001, true};

/// A timecode counter as a machine has it: one frame on, carry, and in drop frame the jump over the
/// first labels of a minute.
class Counter {
public:
    Counter(int nominal, int dropped) : nominal_{nominal}, dropped_{dropped} {}

    void step() {
        if (++frames_ < nominal_) {
            return;
        }
        frames_ = 0;
        if (++seconds_ < 60) {
            return;
        }
        seconds_ = 0;
        if (++minutes_ % 10 != 0) {
            frames_ = dropped_;
        }
        if (minutes_ == 60) {
            minutes_ = 0;
            ++hours_;
        }
    }
    [[nodiscard]] std::string text(const char* form) const {
        std::array<char, 32> out{};
        std::snprintf(out.data(), out.size(), form, hours_, minutes_, seconds_, frames_);
        return out.data();
    }
    [[nodiscard]] bool nearMinute() const {
        return (seconds_ == 59 && frames_ >= nominal_ - 2) || (seconds_ == 0 && frames_ < 6);
    }
    [[nodiscard]] int hours() const { return hours_; }

private:
    int nominal_;
    int dropped_;
    int hours_ = 0;
    int minutes_ = 0;
    int seconds_ = 0;
    int frames_ = 0;
};

/// Compares a frame's label at its start and in its middle, and the stored forms with each other.
void checkFrame(const Counter& counter, long long frame, const TCInf& rate) {
    const bool drops = rate.dropsFrames();
    const std::string expected =
        counter.text(drops ? "%02d:%02d:%02d;%02d" : "%02d:%02d:%02d:%02d");
    const std::string stored = counter.text(drops ? "%02d%02d%02d%02dd" : "%02d%02d%02d%02d");
    const double length = static_cast<double>(rate.rateDenominator) / rate.rateNumerator;
    const double start = static_cast<double>(frame) * length;
    ASSERT_EQ(label(start, rate), expected) << "frame " << frame;
    ASSERT_EQ(label(start + 0.5 * length, rate), expected) << "frame " << frame;
    ASSERT_EQ(label(std::round(start * 1e8) / 1e8, rate), expected) << "frame " << frame;
    ASSERT_EQ(database(time_def{start, rate}), stored);
    ASSERT_EQ(punctuated(time_def{stored.c_str(), LABEL_TIMECODE}), expected);
    ASSERT_EQ(database(time_def{expected.c_str(), LABEL_TIMECODE}), stored);
}

void checkDay(const TCInf& rate, int nominal, int dropped) {
    Counter counter{nominal, dropped};
    for (long long frame = 0; counter.hours() < 24; ++frame, counter.step()) {
        if (frame % 997 == 0 || (dropped != 0 && counter.nearMinute())) {
            checkFrame(counter, frame, rate);
            if (testing::Test::HasFatalFailure()) {
                return;
            }
        }
    }
}

TEST(TimeDef, LabelsOfADayAreThoseOfACounter) {
    checkDay(rate25, 25, 0);
    checkDay(TCInf{24000, 1001, true}, 24, 0); // no drop frame at this rate, asked for or not
    checkDay(TCInf{30000, 1001, false}, 30, 0);
    checkDay(TCInf{30, 1, true}, 30, 0); // nor where the rate is whole
    checkDay(drop30, 30, 2);
    checkDay(drop60, 60, 4);
}

TEST(TimeDef, HighRatesAndNegativeSeconds) {
    EXPECT_EQ(label(1.0, TCInf{120, 1, false}), "00:00:01:00");
    EXPECT_EQ(label(-0.0, rate25), "00:00:00:00");
    EXPECT_EQ(label(-1e-6, rate25), "00:00:00:00") << "within the tolerance";
    EXPECT_EQ(label(-0.04, rate25), "-00:00:00:01");
    EXPECT_EQ(label(-0.05, rate25), "-00:00:00:02") << "the frame that contains it";
    EXPECT_EQ(label(-60.06, drop30), "-00:01:00;02");
    EXPECT_EQ(database(time_def{-3600.4, rate25}), "-01000010");
}

TEST(TimeDef, SecondsThatAreNoTime) {
    const double infinite = std::numeric_limits<double>::infinity();
    for (const double seconds : {invalid_time, -invalid_time, infinite, -infinite, std::nan(""),
                                 360000.0, -360000.0, 1e18}) {
        const time_def time{seconds, rate25};
        EXPECT_FALSE(time.valid()) << seconds;
        EXPECT_EQ(punctuated(time) + database(time), "") << seconds;
    }
    EXPECT_EQ(label(359999.96, rate25), "99:59:59:24");
    EXPECT_EQ(label(-359999.96, rate25), "-99:59:59:24");
    EXPECT_EQ(label(-359999.97, rate25), "") << "rounded down to a hundred hours";
    EXPECT_EQ(label(359999.99, drop30), "") << "drop-frame labels reach a hundred hours before";
    EXPECT_EQ(label(359999.0, drop30), "99:59:59;10");
    for (const TCInf& rate : {TCInf{0, 1, false}, TCInf{25, 0, false}, TCInf{-25, 1, true}}) {
        EXPECT_FALSE((time_def{1.0, rate}.valid()));
    }
    const int most = std::numeric_limits<int>::max();
    EXPECT_EQ((TCInf{most, most, false}.nominalRate()), 1);
    EXPECT_TRUE((time_def{359999.0, TCInf{most, 1, true}}.valid()));
}

TEST(TimeDef, TextsThatAreTimecodes) {
    const std::pair<const char*, const char*> cases[] = {
        {"10:00:00:05", "10:00:00:05 10000005"},   {"10:00:00;05", "10:00:00;05 10000005d"},
        {"10;00;00:05", "10:00:00:05 10000005"},   {"10.00-00/05", "10:00:00:05 10000005"},
        {"10:00:00:05d", "10:00:00;05 10000005d"}, {"10:00:00;05d", "10:00:00;05 10000005d"},
        {"10000005", "10:00:00:05 10000005"},      {"10000005d", "10:00:00;05 10000005d"},
        {"99:99:99:99", "99:99:99:99 99999999"}};
    for (const auto& [text, forms] : cases) {
        const time_def time{text, LABEL_TIMECODE};
        EXPECT_EQ(punctuated(time) + " " + database(time), forms);
    }
}

TEST(TimeDef, OtherTextsAreInvalid) {
    // clang-format off
    const char* const texts[] = {
        "", "d", "10:00:00", "10:00:00:5", "10:00:00:05 ", " 10:00:00:05", "10:00:00:005",
        "10 00 00 05", "1000:00:05", "10:00:00:0a", "1000000", "100000055", "10000005D",
        "10000005dd", "-10000005", "10a00a00a05", "10:00:00::5", "+1000005",
        "\xd9\xa1\xd9\xa0:00:00:05", "10\26700:00:05"};
    // clang-format on
    for (const char* const text : texts) {
        const time_def time{text, LABEL_TIMECODE};
        EXPECT_FALSE(time.valid()) << text;
        EXPECT_EQ(punctuated(time) + database(time), "") << text;
    }
    EXPECT_FALSE((time_def{nullptr, LABEL_TIMECODE}.valid()));
    EXPECT_FALSE((time_def{"10:00:00:05", 5}.valid()));
    EXPECT_FALSE(time_def{}.valid());
}

} // namespace
