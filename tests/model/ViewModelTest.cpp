// Many random sequences of operations on views, see ViewSequence.h. A failure prints its seed.

#include "model/ViewSequence.h"
#include "support/LiveBytes.h"

TEST(ViewModel, AgreesWithPlainVectors) {
    forSeeds(2500, [](Random& random) { runViewSequence(random, 400); });
}

#if defined(OLE_TEST_ADDRESS_SANITIZER)
constexpr unsigned pairs = 200; // each step takes ten times as long
#else
constexpr unsigned pairs = 1250;
#endif

/// Step by step, and in one pass when somebody looks.
TEST(ViewModel, IsTheSameWhetherAnybodyListens) {
    forSeeds(pairs, [](const Random& random) {
        for (const Hearing hearing : {Hearing::Nobody, Hearing::Quiet}) {
            Random same = random;
            runViewSequence(same, 400, hearing);
        }
    });
}
