// Programs of operations on a table, views, chains of views and listeners, against the plain model:
// the bytes make the choices that the model test draws at random.

#include "model/ViewSequence.h"

#include "Fuzz.h"

void fuzz(std::string_view input) {
    Random choices{input};
    runViewSequence(choices, 400);
}
