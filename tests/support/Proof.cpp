#include "support/Proof.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "support/growth.h"

namespace {

int percentOf(const char* proof) {
    if (proof == nullptr) return 0;
    if (std::string_view(proof) == "full") return 100;
    return std::clamp(std::atoi(proof), 0, 100);
}

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

int proofSizeFor(const char* proof, int shortForm, int fullForm) {
    const std::int64_t way = std::int64_t{fullForm} - shortForm;
    return shortForm + static_cast<int>(way * percentOf(proof) / 100);
}

int proofSize(int shortForm, int fullForm) {
    return proofSizeFor(std::getenv("BRIDGE_PROOF"), shortForm, fullForm);
}

void expectNoGrowth(int rounds, double bytesOfARound, const std::function<void()>& play) {
    Growth growth{};
    growthNote(&growth);
    for (int batch = 0; batch < GROWTH_BATCHES; ++batch) {
        play();
        growthNote(&growth);
    }
    EXPECT_TRUE(growthOfHandles(&growth) <= 0 &&
                static_cast<double>(growthOfBytes(&growth)) / rounds < bytesOfARound)
        << "a round leaves handles, or " << bytesOfARound
        << " bytes and more: " << batchesOf(growth);
}
