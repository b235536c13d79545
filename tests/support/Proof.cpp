#include "support/Proof.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <string_view>

#include "support/growth.h"

int proofSize(int shortForm, int fullForm) {
    const char* const wanted = std::getenv("BRIDGE_PROOF");
    return wanted != nullptr && std::string_view(wanted) == "full" ? fullForm : shortForm;
}

namespace {

// What each batch added, for a failure's text.
std::string batchesOf(const Growth& growth) {
    std::string text = "batches:";
    for (int i = 0; i < GROWTH_BATCHES; ++i) {
        text += " handles " + std::to_string(growth.handles[i + 1] - growth.handles[i]) +
                ", bytes " + std::to_string(growth.bytes[i + 1] - growth.bytes[i]) + ";";
    }
    return text;
}

}  // namespace

void expectNoGrowth(int rounds, double bytesOfARound, const std::function<void()>& play) {
    Growth growth{};
    growthNote(&growth);
    for (int batch = 0; batch < GROWTH_BATCHES; ++batch) {
        play();
        growthNote(&growth);
    }
    EXPECT_LE(growthOfHandles(&growth), 0) << batchesOf(growth);
    EXPECT_LT(static_cast<double>(growthOfBytes(&growth)) / rounds, bytesOfARound)
        << batchesOf(growth);
}
