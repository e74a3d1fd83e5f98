// Key numbers are normalised as the rule, written down step by step, says.

#include "ole/interchange/KeyNumber.h"

#include "support/KeyNumberModel.h"

#include "Fuzz.h"

// 15 characters are kept; on the way there the text may be copied once or twice.
constexpr Bounds normalising{.live = {100, 2}, .sum = {200, 4}, .blocks = {8, 0}};

void fuzz(std::string_view input) {
    const std::string result =
        within(normalising, input.size(), [=] { return normalisedKeyNumber(input); });
    ASSERT_EQ(result, keyNumberByTheRule(std::string{input}));
    ASSERT_TRUE(result.empty() || result.size() == 15);
}
