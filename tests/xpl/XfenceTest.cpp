#include "xpl/Xfence.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "support/LogCapture.h"

namespace {

constexpr XlogModule kModule{XlogTag::UTL, "f"};

using Lines = std::vector<std::string>;

}  // namespace

TEST(Xfence, AnswersTheCallsResultWithoutALine) {
    const LogCapture log;
    EXPECT_EQ(xfence(kModule, "function", -1, [] { return 5; }), 5);
    EXPECT_EQ(log.texts(XLOG_VERBOSE), Lines{});
}

TEST(Xfence, AnExceptionIsLoggedInItsOwnWords) {
    const LogCapture log;
    EXPECT_EQ(
        xfence(kModule, "function", -1, []() -> int { throw std::runtime_error("its words"); }),
        -1);
    EXPECT_EQ(log.texts(), Lines{"E UTL function: exception: its words"});
}

TEST(Xfence, WhatIsNoExceptionIsCalledUnknown) {
    const LogCapture log;
    EXPECT_EQ(xfence(kModule, "function", -1, []() -> int { throw 1; }), -1);
    EXPECT_EQ(log.texts(), Lines{"E UTL function: exception: unknown exception"});
}
