// What every test for leaks rests on.
#include <gtest/gtest.h>

#include <vector>

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
