#ifndef TESTS_PROOF_H
#define TESTS_PROOF_H

#include <functional>

// How much of a proof is run: the short form, or with BRIDGE_PROOF=full in the environment the long
// one, which takes minutes to hours and is for `./run soak`. BRIDGE_PROOF=20 is so many percent of
// the way from the one to the other.
int proofSize(int shortForm, int fullForm);

// The same for that value of BRIDGE_PROOF; null where it is not set.
int proofSizeFor(const char* proof, int shortForm, int fullForm);

// Plays GROWTH_BATCHES batches of so many rounds, and expects that a round leaves nothing behind:
// less than this many bytes on the heaps, and no handle (support/growth.h). What is taken once is
// to be taken before, in rounds of the test's own.
void expectNoGrowth(int rounds, double bytesOfARound, const std::function<void()>& play);

#endif
