#pragma once

// Random runs that can be repeated. Every run has a seed, which a failure prints;
// OLE_TEST_SEED=<seed> runs that one alone, OLE_TEST_ROUNDS=<n> runs n times as many. A fuzzer has
// its choices made by its bytes instead.

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <random>
#include <string>
#include <string_view>

class Random {
public:
    explicit Random(std::uint64_t seed) : engine_{seed} {}
    /// Choices that bytes make, as many bytes a choice as it needs; 0 from their end on.
    explicit Random(std::string_view bytes) : bytes_{bytes}, fromBytes_{true} {}

    [[nodiscard]] bool usedUp() const { return fromBytes_ && bytes_.empty(); }
    /// 0 to n - 1.
    unsigned below(unsigned n) {
        if (fromBytes_) {
            return fromBytes(n - 1) % n;
        }
        return std::uniform_int_distribution<unsigned>{0, n - 1}(engine_);
    }
    bool oneIn(unsigned n) { return below(n) == 0; }
    template <class List>
    const auto& pick(const List& list) {
        return list[below(static_cast<unsigned>(std::size(list)))];
    }
    /// Up to `most` characters of an alphabet.
    std::string text(std::string_view alphabet, unsigned most) {
        std::string out(below(most + 1), ' ');
        for (char& c : out) {
            c = pick(alphabet);
        }
        return out;
    }

private:
    unsigned fromBytes(unsigned most) {
        unsigned number = 0;
        for (; most != 0 && !bytes_.empty(); most >>= 8) {
            number = number << 8 | static_cast<unsigned char>(bytes_.front());
            bytes_.remove_prefix(1);
        }
        return number;
    }

    std::mt19937_64 engine_;
    std::string_view bytes_;
    bool fromBytes_ = false;
};

template <class Body>
void forSeeds(unsigned rounds, Body body) {
    const char* const replay = std::getenv("OLE_TEST_SEED");
    const char* const factor = std::getenv("OLE_TEST_ROUNDS");
    const std::uint64_t first = replay ? std::strtoull(replay, nullptr, 10) : 1;
    const std::uint64_t count =
        replay ? 1 : rounds * (factor ? std::strtoull(factor, nullptr, 10) : 1);
    for (std::uint64_t seed = first; seed < first + count; ++seed) {
        SCOPED_TRACE("repeat with OLE_TEST_SEED=" + std::to_string(seed));
        Random random{seed};
        body(random);
        if (testing::Test::HasFailure()) {
            return;
        }
    }
}
