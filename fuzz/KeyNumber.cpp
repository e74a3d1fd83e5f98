// Key numbers are normalised as the rule, written down step by step, says.

#include "ole/interchange/KeyNumber.h"

#include "support/KeyNumberModel.h"

#include "Fuzz.h"

void fuzz(std::string_view input) {
    const std::string result = normalisedKeyNumber(input);
    ASSERT_EQ(result, keyNumberByTheRule(std::string{input}));
    ASSERT_TRUE(result.empty() || result.size() == 15);
}
