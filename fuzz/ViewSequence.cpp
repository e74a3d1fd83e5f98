// Programs of operations on a table, views, chains of views and listeners, against the plain model:
// the bytes make the choices that the model test draws at random.

#include "model/ViewSequence.h"

#include "Fuzz.h"

// A byte is one step at most, and what a step works on is kept small. Nearly all of this is what
// listeners note down: every view, in every notice of a chain of views that tell one another of a
// deletion.
constexpr Bounds running{
    .live = {300'000, 10'000}, .sum = {300'000, 40'000}, .blocks = {1'000, 500}};
constexpr int mostSteps = 400;

void fuzz(std::string_view input) {
    const MemoryCheck check{running, std::min<std::size_t>(input.size(), mostSteps)};
    Random choices{input};
    runViewSequence(choices, mostSteps);
}
