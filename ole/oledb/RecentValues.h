#pragma once

#include "tarn/byteWords.h"
#include "tarn/LightweightString.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

/// Values met lately, column by column, while many rows come in. A log says the same reel, scene
/// and track names over and over; a value that is here already is shared and not stored again,
/// which saves memory and, for that reason, time. Columns whose values hardly repeat are left alone
/// most of the time.
class RecentValues {
public:
    explicit RecentValues(std::size_t columns) : columns_(columns) {}

    /// A string of this text, which must not be empty and hold no zero byte.
    LightweightString<char> stringOf(std::size_t column, std::string_view text) {
        Column& met = columns_[column];
        if (met.rest != 0) {
            --met.rest;
            return LightweightString<char>{text};
        }
        LightweightString<char>& place = met.values[slotOf(text)];
        const bool known = place.view() == text;
        met.note(known);
        if (!known) {
            place = LightweightString<char>{text};
        }
        return place;
    }

private:
    static constexpr std::size_t slots = 64;
    static constexpr unsigned trial = 128; // values that decide about the next ones
    static constexpr unsigned enough = trial / 8;
    static constexpr unsigned restLength = 4096;

    struct Column {
        std::array<LightweightString<char>, slots> values;
        unsigned asked = 0;
        unsigned found = 0;
        unsigned rest = 0; // values that are not looked up

        void note(bool known) noexcept {
            found += known ? 1 : 0;
            if (++asked == trial) {
                rest = found < enough ? restLength : 0;
                asked = 0;
                found = 0;
            }
        }
    };

    /// Both ends and the length tell most values of a log apart.
    static std::size_t slotOf(std::string_view text) noexcept {
        std::uint64_t mixed = text.size();
        if (text.size() >= 8) {
            const std::uint64_t back = Tarn::eightBytes(text.data() + text.size() - 8);
            mixed += Tarn::eightBytes(text.data()) ^ (back << 7 | back >> 57);
        } else {
            for (const char c : text) {
                mixed = mixed << 8 | static_cast<unsigned char>(c);
            }
        }
        constexpr std::uint64_t oddConstant =
            0x9E3779B97F4A7C15; // 2^64 divided by the golden ratio
        return static_cast<std::size_t>(mixed * oddConstant >> 58);
    }

    std::vector<Column> columns_;
};
