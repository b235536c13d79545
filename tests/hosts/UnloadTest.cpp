// Hosts that unload the library after an exception inside it, and go on.
#include <string>

#include "EveryEvent.h"
#include "support/EventPackets.h"
#include "support/LogLines.h"
#include "support/RawServer.h"

namespace {

class UnloadTest : public PlainHostTest {
 protected:
    Script arguments(const std::string& use) const { return {data.path(), use}; }

    Lines linesOfHost(const std::string& use) const {
        const ChildResult result = runChild(builtProgram("unloading_host.exe"), arguments(use));
        EXPECT_EQ(result.status, 0u) << result.out << result.err;
        return linesOf(result.out);
    }

    std::string loggedException() const {
        for (const std::string& line : log()) {
            if (logged::isOfException(line)) return line;
        }
        return {};
    }
};

constexpr const char* kGood = "vtr.locale=\"en-US\"\n";
constexpr const char* kThrows = "vtr.country=\n";

}  // namespace

TEST_F(UnloadTest, WithoutAnException) {
    writeConf(kGood);
    EXPECT_EQ(linesOfHost("none"),
              (Lines{"init 0", "fini 0", "QX-Bridge 0", "Qt5Core 0", "ended 0"}));
    EXPECT_EQ(loggedException(), "");
}

TEST_F(UnloadTest, AfterAnExceptionOnTheHostsThread) {
    writeConf(kThrows);
    EXPECT_EQ(linesOfHost("none"),
              (Lines{"init -1", "fini 0", "QX-Bridge 0", "Qt5Core 0", "ended 0"}));
    EXPECT_NE(loggedException(), "");
}

TEST_F(UnloadTest, AfterAnExceptionInsideQt) {
    writeConf(kGood);
    data.write("Engine\\Nougat64\\AppCache\\AppCache.json", "[]");
    EXPECT_EQ(linesOfHost("apps"), (Lines{"init 0", "apps 0", "refused 1", "fini 0", "QX-Bridge 0",
                                          "Qt5Core 0", "ended 0"}));
    EXPECT_NE(loggedException(), "");
}

// Qt stays loaded once a request was made.
TEST_F(UnloadTest, AfterAnExceptionInsideQtDuringARequest) {
    writeConf(kGood);
    EXPECT_EQ(linesOfHost("request"), (Lines{"init 0", "shutdown -1", "refused 1", "fini 0",
                                             "QX-Bridge 0", "Qt5Core 1", "ended 0"}));
    EXPECT_NE(loggedException(), "");
}

// The reload that the event brings throws.
TEST_F(UnloadTest, AfterAnExceptionOnTheServersThread) {
    writeConf(kGood);
    ChildProcess host(builtProgram("unloading_host.exe"), arguments("event"));
    RawPipe pipe(connectToHelper());
    writeConf(kThrows);
    ASSERT_TRUE(pipe.write(instanceListUpdatedPacket()));
    const ChildResult result = host.finish();
    EXPECT_EQ(result.status, 0u) << result.out << result.err;
    EXPECT_EQ(linesOf(result.out),
              (Lines{"init 0", "arrived 1", "fini 0", "QX-Bridge 0", "Qt5Core 1", "ended 0"}));
    EXPECT_NE(loggedException(), "");
}
