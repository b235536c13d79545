// The same events in hosts of each kind: with the C++ wrapper, and with Qt.
#include "EveryEvent.h"
#include "support/LogLines.h"
#include "support/RawServer.h"

namespace {

class HostKindsTest : public PlainHostTest {
 protected:
    HostKindsTest() { writeConf("vtr.instance.Nougat64.dpi=\"240\"\n"); }

    // The lines of a host that gets every event.
    Lines linesOfHost(const std::string& program, const std::string& scene) const {
        ChildProcess host(builtProgram(program), {data.path(), scene});
        RawPipe pipe(connectToHelper());
        EXPECT_TRUE(pipe.write(everyEvent()));
        const ChildResult result = host.finish();
        EXPECT_EQ(result.status, 0u) << result.out << result.err;
        return linesOf(result.out);
    }

    // The lines of a host that gets no event, without "init 0" and "finished".
    Lines linesOfScene(const std::string& scene) const {
        const ChildResult result = runChild(builtProgram("cpp_host.exe"), {data.path(), scene});
        EXPECT_EQ(result.status, 0u) << result.err;
        const Lines lines = linesOf(result.out);
        EXPECT_EQ(lines.front(), "init 0");
        EXPECT_EQ(lines.back(), "finished");
        return {lines.begin() + 1, lines.end() - 1};
    }

    static Lines allEventsAnd(const Lines& after) {
        return with(with(with({"init 0"}, everyLine()), after), {"finished"});
    }
};

const Lines kTimer{"the host's own timer ran: 1"};

}  // namespace

TEST_F(HostKindsTest, ThroughTheCppWrapper) {
    EXPECT_EQ(linesOfHost("cpp_host.exe", "all"), allEventsAnd({}));
}

TEST_F(HostKindsTest, AnExceptionStaysInTheWrapper) {
    Lines expected = allEventsAnd({});
    expected[8] = "failed: the host's own";
    EXPECT_EQ(linesOfHost("cpp_host.exe", "throws"), expected);
}

TEST_F(HostKindsTest, AnExceptionOfABareCallbackIsLoggedAndTheNextEventComes) {
    EXPECT_EQ(linesOfHost("cpp_host.exe", "raw"),
              (Lines{"init 0", lineOf("account-list-updated"), "finished"}));
    const Lines lines = log();
    EXPECT_EQ(std::count(lines.begin(), lines.end(),
                         logged::byHelper(logged::exceptionCaught("IPC", "ipcReadCommand",
                                                                  "through the library"))),
              1);
}

TEST_F(HostKindsTest, EmptyFunctionsOfTheWrapperArePassedOver) {
    EXPECT_EQ(linesOfHost("cpp_host.exe", "empty"),
              (Lines{"init 0", lineOf("account-list-updated"), "finished"}));
}

TEST_F(HostKindsTest, TheWrappersOtherFunctions) {
    EXPECT_EQ(linesOfScene("calls"),
              (Lines{"locale ", "set 1 1 1 1", "get 320 1 a,b", "commit 0", "instances 1", "apps 0",
                     "launch 2 2 2 2 2 2 2", "shutdown 0"}));
}

TEST_F(HostKindsTest, TheWrappersOtherFiles) {
    writeConf("vtr.locale=\"fr-FR\"\n");
    EXPECT_EQ(linesOfScene("files"),
              (Lines{"without 0 \"\"", "without, with a log 0", "log 0 \"fr-FR\"", "committed 0"}));
    EXPECT_EQ(log().size(), 6u) << "of the first two initialisations";
    EXPECT_EQ(logMessages(data.read("first.log")).size(), 3u);
    EXPECT_EQ(logMessages(data.read("second.log")).size(), 5u) << "a commit logs its path twice";
    EXPECT_NE(data.read("copy.conf").find("vtr.locale=\"fr-FR\"\n"), std::string::npos);
}

TEST_F(HostKindsTest, WithAnApplicationObjectMadeBefore) {
    EXPECT_EQ(linesOfHost("qt_host.exe", "before"), allEventsAnd(kTimer));
}

TEST_F(HostKindsTest, WithAnApplicationObjectMadeAfterwards) {
    EXPECT_EQ(linesOfHost("qt_host.exe", "after"), allEventsAnd(kTimer));
}

TEST_F(HostKindsTest, WithAnApplicationObjectThatIsDeleted) {
    EXPECT_EQ(linesOfHost("qt_host.exe", "ended"), allEventsAnd({}));
}

TEST_F(HostKindsTest, WithQtAndWithoutAnApplicationObject) {
    EXPECT_EQ(linesOfHost("qt_host.exe", "none"), allEventsAnd({}));
}

TEST_F(HostKindsTest, AnApplicationObjectOfAnotherThreadMakesQtWarn) {
    Lines lines = linesOfHost("qt_host.exe", "elsewhere");
    const std::string warning =
        "Qt says: WARNING: QApplication was not created in the main() thread.";
    const auto found = std::find(lines.begin(), lines.end(), warning);
    ASSERT_NE(found, lines.end());
    lines.erase(found);
    EXPECT_EQ(lines, allEventsAnd({}));
}
