#ifndef TESTS_PROOF_H
#define TESTS_PROOF_H

// How much of a proof is run: the short form, or with BRIDGE_PROOF=full in the environment the long
// one, which takes minutes to hours and is for `./run soak`.
int proofSize(int shortForm, int fullForm);

#endif
