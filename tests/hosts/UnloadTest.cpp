// Hosts that unload the library after an exception inside it, and continue.
#include <string>

#include "EveryEvent.h"
#include "support/EventPackets.h"
#include "support/LogLines.h"
#include "support/RawServer.h"

namespace {

constexpr const char* kGood = "vtr.locale=\"en-US\"\n";
constexpr const char* kThrows = "vtr.country=\n";

class UnloadTest : public PlainHostTest {
 protected:
    ChildProcess startHost(const std::string& use) const {
        return {builtProgram("unloading_host.exe"), {data.path(), use}};
    }

    // Expects a host to print these lines, and then that it has unloaded the library and, without
    // `qtStays`, Qt.
    void expectUnload(ChildProcess& host, const Lines& lines, bool qtStays = false) const {
        const ChildResult result = host.finish();
        EXPECT_EQ(result.status, 0u) << result.out << result.err;
        const std::string qt = std::string("Qt5Core ") + (qtStays ? "1" : "0");
        EXPECT_EQ(linesOf(result.out), with(lines, {"fini 0", "QX-Bridge 0", qt, "ended 0"}));
    }
    void expectUnload(const std::string& use, const Lines& lines, bool qtStays = false) const {
        ChildProcess host = startHost(use);
        expectUnload(host, lines, qtStays);
    }

    bool hasLoggedAnException() const {
        const Lines lines = log();
        return std::any_of(lines.begin(), lines.end(), logged::isOfException);
    }
};

}  // namespace

TEST_F(UnloadTest, WithoutAnException) {
    writeConf(kGood);
    expectUnload("none", {"init 0"});
    EXPECT_FALSE(hasLoggedAnException());
}

TEST_F(UnloadTest, AfterAnExceptionOnTheHostsThread) {
    writeConf(kThrows);
    expectUnload("none", {"init -1"});
    EXPECT_TRUE(hasLoggedAnException());
}

TEST_F(UnloadTest, AfterAnExceptionInsideQt) {
    writeConf(kGood);
    data.write("Engine\\Nougat64\\AppCache\\AppCache.json", "[]");
    expectUnload("apps", {"init 0", "apps 0", "refused 1"});
    EXPECT_TRUE(hasLoggedAnException());
}

// Qt stays loaded after a request.
TEST_F(UnloadTest, AfterAnExceptionInsideQtDuringARequest) {
    writeConf(kGood);
    expectUnload("request", {"init 0", "shutdown -1", "refused 1"}, /*qtStays=*/true);
    EXPECT_TRUE(hasLoggedAnException());
}

// The event's reload of the configuration throws.
TEST_F(UnloadTest, AfterAnExceptionOnTheServersThread) {
    writeConf(kGood);
    ChildProcess host = startHost("event");
    RawPipe pipe(connectToHelper());
    writeConf(kThrows);
    ASSERT_TRUE(pipe.write(instanceListUpdatedPacket()));
    expectUnload(host, {"init 0", "arrived 1"}, /*qtStays=*/true);
    EXPECT_TRUE(hasLoggedAnException());
}
