#pragma once

// Random runs that can be repeated. Every run has a seed, which a failure prints;
// OLE_TEST_SEED=<seed> runs that one alone, OLE_TEST_ROUNDS=<n> runs n times as many.

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <random>
#include <string>
#include <string_view>

class Random {
public:
    explicit Random(std::uint64_t seed) : engine_{seed} {}

    /// 0 to n - 1.
    unsigned below(unsigned n) {
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
    std::mt19937_64 engine_;
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
