// What every test for leaked handles rests on.
#include <gtest/gtest.h>

#include <vector>

#include "support/WindowsForTests.h"
#include "support/open_handles.h"

TEST(OpenHandlesTest, EachOpenHandleIsCounted) {
    const long before = openHandles();
    std::vector<HANDLE> events;
    for (int i = 0; i < 50; ++i) events.push_back(::CreateEventW(nullptr, FALSE, FALSE, nullptr));
    EXPECT_EQ(openHandles(), before + 50);
    for (const HANDLE event : events) ::CloseHandle(event);
    EXPECT_EQ(openHandles(), before);
}
