#include "xpl/Xproc.h"

#include "OwnChild.h"
#include "support/LogCapture.h"
#include "support/LogLines.h"
#include "support/Platform.h"
#include "support/SignsOfLife.h"
#include "support/Subprocess.h"
#include "support/TempFolder.h"
#include "support/TestHeaders.h"
#include "support/process_figures.h"

TEST(XprocQuote, HardArguments) {
    for (const QuotingCase& hard : kQuotingCases) {
        EXPECT_EQ(xprocQuote(hard.argument), hard.quoted) << hard.name;
    }
}

TEST(XprocQuote, ArgumentsAreJoinedBySingleBlanks) {
    EXPECT_EQ(xprocJoin({"p", "a b", R"(say "hi")", R"(C:\x)"}, 0),
              R"("p" "a b" "say \"hi\"" "C:\\x")");
    EXPECT_EQ(xprocJoin({"p", "a"}, 1), R"("a")");
    EXPECT_EQ(xprocJoin({"p"}, 1), "");
}

TEST(Xproc, AnEmptyListIsRefused) {
    XprocHandle handle = nullptr;
    EXPECT_EQ(xprocCreate(&handle, {}), XERR_INVAL);
    EXPECT_EQ(xprocCreate_basic(&handle, {}), XERR_INVAL);
    EXPECT_EQ(xprocCreate_elevated_basic(&handle, {}), XERR_INVAL);
}

TEST(Xproc, AMissingProgramIsLoggedWithItsCommandLine) {
    const LogCapture log;
    EXPECT_EQ(xprocCreate(nullptr, {"C:\\no such\\program.exe", "a b"}), XERR_NOENT);
    const Lines texts = log.texts();
    ASSERT_EQ(texts.size(), 1u);
    EXPECT_EQ(texts[0].rfind(logged::startFailed(R"("C:\\no such\\program.exe" "a b")"), 0), 0u)
        << texts[0];
}

TEST(Xproc, ArgumentsThatAreNotUtf8AreRefused) {
    const LogCapture log;
    EXPECT_EQ(xprocCreate(nullptr, {"x.exe", "\xFF"}), 101113);
    EXPECT_EQ(log.texts(),
              Lines{"E XSTR xprocCreate_basic: arguments cannot be converted: \"x.exe\" \"\xFF\" "
                    "err = 101113 [NOTDEFINED: 101113]"});
}

// Writes an argument per line.
SUBPROCESS(writesItsArguments) {
    std::string text;
    for (const std::string& argument : arguments) text += argument + "\n";
    writeBytes(arguments[0], text);
    return 7;
}

TEST(Xproc, AChildGetsItsArgumentsAndItsStatusComesBack) {
    const TempFolder folder;
    const std::string file = slashed(folder / "arguments");
    EXPECT_EQ(exitCodeOf(startOwn("writesItsArguments", {file, "a b", "", "é日"})), 7u);
    EXPECT_EQ(folder.read("arguments"), file + "\na b\n\né日\n");
}

SUBPROCESS(doesNothing) { return 7; }

TEST(Xproc, AChildLeavesNoHandleAfterItsWait) {
    EXPECT_EQ(exitCodeOf(startOwn("doesNothing")), 7u);
    const long before = openHandles();
    for (int i = 0; i < 5; ++i) {
        EXPECT_EQ(xprocWait(startOwn("doesNothing"), nullptr), 0);
        EXPECT_EQ(exitCodeOf(startOwn("doesNothing")), 7u);
    }
    EXPECT_EQ(openHandles(), before) << "neither processes nor their threads";
}

SUBPROCESS(sleepsLong) {
    leaveSignOfLife(arguments[0]);
    sleepMs(60'000);
    return 0;
}

TEST(Xproc, KillingEndsTheChild) {
    SignsOfLife signs;
    const XprocHandle child = startOwn("sleepsLong", {signs.next()});
    EXPECT_TRUE(signs.allArrived());
    EXPECT_EQ(xprocKill(child, 42), 0);
    EXPECT_EQ(exitCodeOf(child), 42u);
}

TEST(Xproc, AFailedKillIsOnlyLogged) {
    const LogCapture log;
    EXPECT_EQ(xprocKill(nullptr, 1), 0);
    EXPECT_EQ(log.texts(), Lines{"E XSTR xprocKill: TerminateProcess failed err=9 [XERR_BADF]"});
}

TEST(Xproc, AFailedWaitIsLoggedAndReturned) {
    const LogCapture log;
    EXPECT_EQ(xprocWait(nullptr, nullptr), XERR_BADF);
    EXPECT_EQ(log.texts(), Lines{logged::processNotAwaited("9 XERR_BADF")});
}

SUBPROCESS(printsVariable) {
    const char* const value = std::getenv("BRIDGE_TEST");
    std::printf("%s", value == nullptr ? "(none)" : value);
    return 0;
}

TEST(Xproc, AVariableReachesTheChildren) {
    ASSERT_EQ(xprocSetEnvironment("BRIDGE_TEST", "some value"), 0);
    EXPECT_EQ(runSubprocess("printsVariable").out, "some value");
    ASSERT_EQ(xprocSetEnvironment("BRIDGE_TEST", ""), 0);
    EXPECT_EQ(runSubprocess("printsVariable").out, "(none)");
}

TEST(Xproc, AnElevatedStartTakesUtf8Only) {
    const LogCapture log;
    EXPECT_EQ(xprocCreate_elevated_basic(nullptr, {"\xFF"}), 101113);
    EXPECT_EQ(xprocCreate_elevated_basic(nullptr, {"x.exe", "\xFF"}), 101113);
    const std::string start = "E XSTR xprocCreate_elevated_basic: arguments cannot be converted: ";
    const std::string end = " err = 101113 [NOTDEFINED: 101113]";
    EXPECT_EQ(log.texts(), (Lines{start + "\xFF" + end, start + "\"\xFF\"" + end}));
}
