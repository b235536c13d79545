#include "support/Proof.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string_view>

#include "support/growth.h"

int proofSize(int shortForm, int fullForm) {
    const char* const wanted = std::getenv("BRIDGE_PROOF");
    return wanted != nullptr && std::string_view(wanted) == "full" ? fullForm : shortForm;
}

void expectNoGrowth(int rounds, double bytesOfARound, const std::function<void()>& play) {
    Growth growth{};
    growthNote(&growth);
    for (int batch = 0; batch < GROWTH_BATCHES; ++batch) {
        play();
        growthNote(&growth);
    }
    EXPECT_LE(growthOfHandles(&growth), 0);
    EXPECT_LT(static_cast<double>(growthOfBytes(&growth)) / rounds, bytesOfARound);
}
