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
    explicit RecentValues(std::size_t columns) : count_{columns}, early_{columns * earlyRows} {}

    /// A string of this text, which must not be empty and hold no zero byte.
    LightweightString<char> stringOf(std::size_t column, std::string_view text) {
        if (early_ != 0) {
            --early_;
            return LightweightString<char>::ofWhole(text);
        }
        columns_.resize(count_);
        Column& met = columns_[column];
        if (met.rest != 0) {
            --met.rest;
            return LightweightString<char>::ofWhole(text);
        }
        const Ends ends{text};
        Value& place = met.values[ends.slot()];
        const bool known = place.is(text, ends);
        met.note(known);
        if (!known) {
            place = {ends, LightweightString<char>::ofWhole(text)};
        }
        return place.string;
    }

private:
    static constexpr std::size_t earlyRows = 64; // for so few the room to remember is not worth it
    static constexpr std::size_t slots = 64;
    static constexpr unsigned trial = 128; // values that decide about the next ones
    static constexpr unsigned enough = trial / 8;
    static constexpr unsigned restLength = 4096;

    /// Length and both ends of a text: all of it up to 16 bytes, so that most values are known
    /// again without a look at the strings.
    struct Ends {
        Ends() = default;
        explicit Ends(std::string_view text) : size{text.size()} {
            const char* const end = text.data() + size;
            if (size >= 8) {
                front = Tarn::eightBytes(text.data());
                back = Tarn::eightBytes(end - 8);
            } else if (size >= 4) {
                front = Tarn::fourBytes(text.data());
                back = Tarn::fourBytes(end - 4);
            } else {
                front = static_cast<unsigned char>(text.front());
                back = static_cast<std::uint64_t>(static_cast<unsigned char>(text[size / 2])) << 8 |
                       static_cast<unsigned char>(text.back());
            }
        }
        bool operator==(const Ends&) const = default;
        /// Ends and length tell most values of a log apart.
        [[nodiscard]] std::size_t slot() const noexcept {
            // 2^64 divided by the golden ratio
            constexpr std::uint64_t oddConstant = 0x9E3779B97F4A7C15;
            const std::uint64_t mixed = size + (front ^ (back << 7 | back >> 57));
            return static_cast<std::size_t>(mixed * oddConstant >> 58);
        }

        std::uint64_t front = 0;
        std::uint64_t back = 0;
        std::size_t size = 0;
    };

    struct Value {
        [[nodiscard]] bool is(std::string_view text, const Ends& of) const noexcept {
            return ends == of && (of.size <= 16 || string.view() == text);
        }

        Ends ends;
        LightweightString<char> string;
    };

    struct Column {
        std::array<Value, slots> values;
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

    std::size_t count_;
    std::size_t early_; // values until there are columns
    std::vector<Column> columns_;
};
