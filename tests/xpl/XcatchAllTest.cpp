#include "xpl/XcatchAll.h"

#include "support/LogCapture.h"
#include "support/LogLines.h"
#include "support/TestHeaders.h"

namespace {

constexpr XlogModule kModule{XlogTag::UTL, "f"};

int throwWords() { throw std::runtime_error("its words"); }

class XcatchAllTest : public ::testing::Test {
 protected:
    void expectException(const std::string& words) const {
        EXPECT_EQ(log.texts(XLOG_VERBOSE),
                  Lines{logged::exceptionCaught("UTL", "function", words)});
    }

    LogCapture log;
};

}  // namespace

TEST_F(XcatchAllTest, ReturnsTheCallsResultWithoutALine) {
    EXPECT_EQ(xcatchAll(kModule, "function", -1, [] { return 5; }), 5);
    EXPECT_EQ(log.texts(XLOG_VERBOSE), Lines{});
}

TEST_F(XcatchAllTest, AnExceptionIsLoggedInItsOwnWords) {
    EXPECT_EQ(xcatchAll(kModule, "function", -1, throwWords), -1);
    expectException("its words");
}

TEST_F(XcatchAllTest, AnotherTypeIsLoggedAsUnknown) {
    EXPECT_EQ(xcatchAll(kModule, "function", -1, []() -> int { throw 1; }), -1);
    expectException("unknown exception");
}

TEST_F(XcatchAllTest, ACallWithoutAResultIsMadeAndItsExceptionLogged) {
    int calls = 0;
    EXPECT_TRUE(xcatchAll(kModule, "function", [&calls] { ++calls; }));
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(log.texts(XLOG_VERBOSE), Lines{});
    EXPECT_FALSE(xcatchAll(kModule, "function", [] { static_cast<void>(throwWords()); }));
    expectException("its words");
}
