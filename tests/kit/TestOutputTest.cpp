#include "TestOutput.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace {

constexpr const char* kAll =
    "Running main() from x\r\n"
    "[==========] Running 3 tests from 1 test suite.\r\n"
    "[ RUN      ] A.Passes\r\n"
    "some line\r\n"
    "[figure] retries 12 of 10000\r\r\n"
    "[       OK ] A.Passes (7 ms)\r\n"
    "[ RUN      ] A.Skips\r\n"
    "D:\\x.cpp:12: Skipped\r\n"
    "needs Windows\r\n"
    "\r\n"
    "[  SKIPPED ] A.Skips (0 ms)\r\n"
    "[ RUN      ] A.Fails/0\r\n"
    "x.cpp:3: Failure\r\n"
    "Expected: 1\r\n"
    "[  FAILED  ] A.Fails/0, where GetParam() = 1 (1234 ms)\r\n"
    "[  FAILED  ] 1 test, listed below:\r\n"
    "[  FAILED  ] A.Fails/0, where GetParam() = 1\r\n";

}  // namespace

TEST(KitTestOutput, EachTestHasItsEndItsReasonAndItsTime) {
    const TestOutput output = readTestOutput(kAll);
    ASSERT_EQ(output.tests.size(), 3u);
    EXPECT_EQ(output.tests[0].name, "A.Passes");
    EXPECT_EQ(output.tests[0].outcome, Outcome::Passed);
    EXPECT_EQ(output.tests[0].reason, "");
    EXPECT_EQ(output.tests[0].milliseconds, 7);
    EXPECT_EQ(output.tests[1].outcome, Outcome::Skipped);
    EXPECT_EQ(output.tests[1].reason, "needs Windows");
    EXPECT_EQ(output.tests[2].outcome, Outcome::Failed);
    EXPECT_EQ(output.tests[2].reason, "x.cpp:3: Failure\nExpected: 1");
    EXPECT_EQ(output.tests[2].milliseconds, 1234);
}

TEST(KitTestOutput, FiguresAreCollected) {
    const std::vector<std::pair<std::string, std::string>> expected = {{"retries", "12 of 10000"}};
    EXPECT_EQ(readTestOutput(kAll).figures, expected);
}

TEST(KitTestOutput, ATestWithoutAnEndHasFailed) {
    const TestOutput output = readTestOutput("[ RUN      ] A.B\nlast words");
    ASSERT_EQ(output.tests.size(), 1u);
    EXPECT_EQ(output.tests[0].outcome, Outcome::Failed);
    EXPECT_EQ(output.tests[0].reason, "the process ended in this test\nlast words");
}

TEST(KitTestOutput, TheEndOfAnotherTestIsNoEnd) {
    const TestOutput output = readTestOutput("[ RUN      ] A.B\n[       OK ] A.BC (1 ms)\n");
    EXPECT_EQ(output.tests[0].outcome, Outcome::Failed);
}

TEST(KitTestOutput, TogetherTheWorstCountsAndNothingIsAFailure) {
    const TestRun passed{"a", Outcome::Passed, "", 0};
    const TestRun skipped{"b", Outcome::Skipped, "", 0};
    const TestRun failed{"c", Outcome::Failed, "", 0};
    EXPECT_EQ(outcomeOf({}), Outcome::Failed);
    EXPECT_EQ(outcomeOf({passed, skipped}), Outcome::Passed);
    EXPECT_EQ(outcomeOf({skipped}), Outcome::Skipped);
    EXPECT_EQ(outcomeOf({passed, failed, skipped}), Outcome::Failed);
}
