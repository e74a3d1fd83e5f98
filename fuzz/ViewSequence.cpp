// Programs of operations on a table, views, chains of views and listeners, against the plain model:
// the bytes make the choices that the model test draws at random.

#include "model/ViewSequence.h"

#include "Fuzz.h"

// A byte is one step at most, and what a step works on is kept small: 5 KB and 100 allocations as
// seen from outside, so that most of them are the model's.
constexpr Bounds running{.live = {300'000, 600}, .sum = {300'000, 12'000}, .blocks = {1'000, 250}};
constexpr int mostSteps = 400;

void fuzz(std::string_view input) {
    const MemoryCheck check{running, std::min<std::size_t>(input.size(), mostSteps)};
    Random choices{input};
    runViewSequence(choices, mostSteps);
}
