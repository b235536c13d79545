#ifndef TESTS_PROOF_H
#define TESTS_PROOF_H

#include <functional>

// The size of a proof: the short form, or with BRIDGE_PROOF=full in the environment the long form,
// which takes minutes to hours (`./run soak`). BRIDGE_PROOF=20 is 20 percent of the way from short
// to long.
int proofSize(int shortForm, int fullForm);

// The same for a value of BRIDGE_PROOF. Null: it is not set.
int proofSizeFor(const char* proof, int shortForm, int fullForm);

// Plays GROWTH_BATCHES batches of `rounds` rounds each. Expects that a round leaks no handle and
// fewer than this many bytes (support/growth.h). Play a few rounds before, so that objects that are
// allocated only once do not count.
void expectNoGrowth(int rounds, double bytesOfARound, const std::function<void()>& play);

#endif
