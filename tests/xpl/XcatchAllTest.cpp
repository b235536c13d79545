#include "xpl/XcatchAll.h"

#include "support/LogCapture.h"
#include "support/LogLines.h"
#include "support/TestHeaders.h"

namespace {

constexpr XlogModule kModule{XlogTag::UTL, "f"};

}  // namespace

TEST(XcatchAll, ReturnsTheCallsResultWithoutALine) {
    const LogCapture log;
    EXPECT_EQ(xcatchAll(kModule, "function", -1, [] { return 5; }), 5);
    EXPECT_EQ(log.texts(XLOG_VERBOSE), Lines{});
}

TEST(XcatchAll, AnExceptionIsLoggedInItsOwnWords) {
    const LogCapture log;
    EXPECT_EQ(
        xcatchAll(kModule, "function", -1, []() -> int { throw std::runtime_error("its words"); }),
        -1);
    EXPECT_EQ(log.texts(), Lines{logged::exceptionCaught("UTL", "function", "its words")});
}

TEST(XcatchAll, WhatIsNoExceptionIsCalledUnknown) {
    const LogCapture log;
    EXPECT_EQ(xcatchAll(kModule, "function", -1, []() -> int { throw 1; }), -1);
    EXPECT_EQ(log.texts(), Lines{logged::exceptionCaught("UTL", "function", "unknown exception")});
}

TEST(XcatchAll, ACallWithoutAResultIsMadeAndItsExceptionLogged) {
    const LogCapture log;
    int calls = 0;
    EXPECT_TRUE(xcatchAll(kModule, "function", [&calls] { ++calls; }));
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(log.texts(XLOG_VERBOSE), Lines{});
    EXPECT_FALSE(
        xcatchAll(kModule, "function", []() -> void { throw std::runtime_error("its words"); }));
    EXPECT_EQ(log.texts(), Lines{logged::exceptionCaught("UTL", "function", "its words")});
}
