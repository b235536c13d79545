// The figures that the tests for leaks compare.
#include <gtest/gtest-spi.h>

#include "support/Proof.h"
#include "support/TestHeaders.h"
#include "support/WindowsForTests.h"
#include "support/process_figures.h"

TEST(ProcessFiguresTest, EachOpenHandleIsCounted) {
    const long before = openHandles();
    std::vector<HANDLE> events;
    for (int i = 0; i < 50; ++i) events.push_back(::CreateEventW(nullptr, FALSE, FALSE, nullptr));
    EXPECT_EQ(openHandles(), before + 50);
    for (const HANDLE event : events) ::CloseHandle(event);
    EXPECT_EQ(openHandles(), before);
}

TEST(ProcessFiguresTest, MemoryInUseIsCounted) {
    constexpr long long kMebibyte = 1 << 20;
    const long long before = heapBytes();
    std::vector<std::vector<char>> blocks;
    for (int i = 0; i < 640; ++i) blocks.emplace_back(100 * 1024, 'x');
    const long long gained = heapBytes() - before;
    EXPECT_GT(gained, 60 * kMebibyte);
    EXPECT_LT(gained, 70 * kMebibyte);
}

// More rounds than a heap bucket has blocks, since a bucket counts as a whole.
TEST(ProcessFiguresTest, MemoryThatEveryRoundKeepsIsALeak) {
    constexpr int kRounds = 100;
    std::vector<std::vector<char>> kept;
    EXPECT_NONFATAL_FAILURE(expectNoGrowth(kRounds, 32,
                                           [&] {
                                               for (int i = 0; i < kRounds; ++i) {
                                                   kept.emplace_back(40, 'x');
                                               }
                                           }),
                            "a round leaves handles, or 32 bytes and more");
}

TEST(ProcessFiguresTest, MemoryThatOnlyTheFirstRoundsKeepIsNotALeak) {
    std::vector<std::vector<char>> kept;
    expectNoGrowth(10, 32, [&] {
        if (kept.size() < 5) kept.emplace_back(100'000, 'x');
    });
    EXPECT_EQ(kept.size(), 5u);
}
