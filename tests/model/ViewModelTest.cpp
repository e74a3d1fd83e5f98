// Many random sequences of operations on views, see ViewSequence.h. A failure prints its seed.

#include "model/ViewSequence.h"

TEST(ViewModel, AgreesWithPlainVectors) {
    forSeeds(2500, [](Random& random) { runViewSequence(random, 400); });
}
