// The sizes of proofs.
#include "support/Proof.h"

#include <gtest/gtest.h>

TEST(ProofTest, AProofIsShortByDefault) {
    for (const char* proof : {static_cast<const char*>(nullptr), "", "0", "-5", "long"}) {
        EXPECT_EQ(proofSizeFor(proof, 100, 10'000), 100);
    }
}

TEST(ProofTest, APercentageLiesBetweenTheForms) {
    EXPECT_EQ(proofSizeFor("20", 100, 10'000), 2080);
    EXPECT_EQ(proofSizeFor("50", 32, 8), 20) << "a limit becomes tighter";
    EXPECT_EQ(proofSizeFor("10", 1'000'000'000, 2'000'000'000), 1'100'000'000);
}

TEST(ProofTest, FullMeansTheLongForm) {
    for (const char* proof : {"full", "100", "200"}) {
        EXPECT_EQ(proofSizeFor(proof, 100, 10'000), 10'000);
        EXPECT_EQ(proofSizeFor(proof, 32, 8), 8);
    }
}
