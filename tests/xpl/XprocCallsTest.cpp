// The calls that start and end processes, and the processes of Windows.
#include <clocale>

#include "OwnChild.h"
#include "support/LogCapture.h"
#include "support/LogLines.h"
#include "support/SignsOfLife.h"
#include "support/Subprocess.h"
#include "support/TempFolder.h"
#include "support/TestHeaders.h"
#include "support/WindowsForTests.h"
#include "support/process_figures.h"
#include "xpl/Xfile.h"
#include "xpl/Xproc.h"
#include "xpl/XprocCalls.h"
#include "xpl/Xsystem.h"
#include "xpl/Xtext.h"

namespace {

// The error of a call that fails. Nothing: the call succeeds.
using Failure = std::optional<unsigned long>;
constexpr Failure kSuccess;

// Replaces the two system calls and keeps their arguments.
class FakeCalls {
 public:
    FakeCalls(Failure createFailure, Failure runAsFailure) : real_(xprocCalls()) {
        createResult = createFailure;
        runAsResult = runAsFailure;
        seen.clear();
        xprocCalls() = {create, runAs};
    }
    ~FakeCalls() { xprocCalls() = real_; }
    FakeCalls(const FakeCalls&) = delete;
    FakeCalls& operator=(const FakeCalls&) = delete;

    static inline Lines seen;

 private:
    static bool create(std::wstring& commandLine, XprocPtr& process, unsigned long& error) {
        seen.push_back("create " + xtextToUtf8(commandLine));
        commandLine[0] = L'?';  // as the real call may
        if (!createResult) process.reset(::CreateEventW(nullptr, FALSE, FALSE, nullptr));
        error = createResult.value_or(ERROR_SUCCESS);
        return !createResult;
    }
    static bool runAs(const std::wstring& file, const std::wstring& parameters, XprocPtr&,
                      unsigned long& error) {
        seen.push_back("runas " + xtextToUtf8(file) + " | " + xtextToUtf8(parameters));
        error = runAsResult.value_or(ERROR_SUCCESS);
        return !runAsResult;
    }

    static inline Failure createResult;
    static inline Failure runAsResult;
    XprocCalls real_;
};

constexpr const char* kBeyondAscii = "é 日本 \xF0\x9F\x8E\xAE";

constexpr int kOtherEncoding = 97;

std::wstring testVariable() {
    wchar_t value[64] = L"";
    ::GetEnvironmentVariableW(L"BRIDGE_TEST", value, 64);
    return value;
}

bool isElevated() {
    HANDLE token = nullptr;
    EXPECT_TRUE(::OpenProcessToken(::GetCurrentProcess(), TOKEN_QUERY, &token));
    TOKEN_ELEVATION elevation{};
    DWORD size = 0;
    EXPECT_TRUE(::GetTokenInformation(token, TokenElevation, &elevation, sizeof elevation, &size));
    ::CloseHandle(token);
    return elevation.TokenIsElevated != 0;
}

// Waits until a file has content, at most half a minute.
std::string awaitContent(const std::string& path) {
    for (int i = 0; i < 6'000; ++i, ::Sleep(5)) {
        if (xfileExists(path) != XERR_SUCCESS) continue;
        if (std::string content = readBytes(path); !content.empty()) return content;
    }
    return {};
}

// Another handle of the same process, with these rights. The caller closes it.
HANDLE otherHandle(HANDLE process, DWORD access) {
    HANDLE made = nullptr;
    ::DuplicateHandle(::GetCurrentProcess(), process, ::GetCurrentProcess(), &made, access,
                      /*bInheritHandle=*/FALSE, /*dwOptions=*/0);
    return made;
}

bool isOpen(HANDLE handle) {
    DWORD flags = 0;
    return ::GetHandleInformation(handle, &flags) != FALSE;
}

// Waits for a handle that has no exit code, and expects none.
void expectNoExitCode() {
    const HANDLE noProcess = ::CreateEventW(nullptr, TRUE, TRUE, nullptr);
    std::uint32_t status = 77;
    EXPECT_EQ(xprocWait(noProcess, &status), 0);
    EXPECT_EQ(status, 77u);
}

}  // namespace

SUBPROCESS(writesItsCommandLine) {
    writeBytes(arguments[0], xtextToUtf8(::GetCommandLineW()));
    return 7;
}

TEST(Xproc, AChildGetsTheExactCommandLine) {
    const TempFolder folder;
    for (const QuotingCase& hard : kQuotingCases) {
        const std::string file = slashed(folder / hard.name);
        EXPECT_EQ(exitCodeOf(startOwn("writesItsCommandLine", {file, hard.argument})), 7u);
        EXPECT_EQ(folder.read(hard.name), xprocQuote(ownPath()) +
                                              R"( "--subprocess" "writesItsCommandLine" ")" + file +
                                              "\" " + hard.quoted)
            << hard.name;
    }
}

// Whether the C runtime sets variables in the encoding of its locale. In its own process, so that
// the locale of the tests does not change.
SUBPROCESS(asksTheRuntimeForVariablesInUtf8) {
    std::setlocale(LC_ALL, ".UTF8");
    if (::_putenv((std::string("BRIDGE_TEST=") + kBeyondAscii).c_str()) != 0) return 1;
    return testVariable() == wideForTests(kBeyondAscii) ? 0 : kOtherEncoding;
}

SUBPROCESS(writesItsVariable) {
    writeBytes(arguments[0], xtextToUtf8(testVariable()));
    return 0;
}

// In its own process, since it changes the locale.
SUBPROCESS(setsVariableBeyondAscii) {
    xsystemUseUtf8();
    if (xprocSetEnvironment("BRIDGE_TEST", kBeyondAscii) != 0) return 1;
    return xprocWait(startOwn("writesItsVariable", {arguments[0]}), nullptr);
}

TEST(Xproc, AVariableBeyondAsciiReachesTheChildren) {
    const std::uint32_t asked = runSubprocess("asksTheRuntimeForVariablesInUtf8").status;
    if (asked == kOtherEncoding) {
        GTEST_SKIP() << "needs Windows, whose C runtime sets variables in the locale's encoding";
    }
    ASSERT_EQ(asked, 0u);
    const TempFolder folder;
    EXPECT_EQ(runSubprocess("setsVariableBeyondAscii", {slashed(folder / "value")}).status, 0u);
    EXPECT_EQ(folder.read("value"), kBeyondAscii);
}

TEST(Xproc, AProgramThatNeedsElevationIsStartedThroughTheShell) {
    const LogCapture log;
    const FakeCalls calls(XPROC_ELEVATION_REQUIRED, kSuccess);
    XprocHandle handle = &handle;
    EXPECT_EQ(xprocCreate(&handle, {R"(C:\P\x.exe)", "a b", R"("q")"}), 0);
    EXPECT_EQ(FakeCalls::seen, (Lines{R"(create "C:\\P\\x.exe" "a b" "\"q\"")",
                                      R"(runas C:\P\x.exe | "a b" "\"q\"")"}));
    EXPECT_EQ(handle, &handle) << "the shell gives no handle";
    EXPECT_EQ(log.texts(), Lines{logged::startFailed(R"("C:\\P\\x.exe" "a b" "\"q\"")", "740")});
}

TEST(Xproc, AnElevatedStartWithOnlyAProgramHasNoParameters) {
    const FakeCalls calls(kSuccess, kSuccess);
    EXPECT_EQ(xprocCreate_elevated_basic(nullptr, {"C:\\x.exe"}), 0);
    EXPECT_EQ(FakeCalls::seen, Lines{"runas C:\\x.exe | "});
}

TEST(Xproc, ADeclinedElevationIsLogged) {
    const LogCapture log;
    const FakeCalls calls(XPROC_ELEVATION_REQUIRED, ERROR_CANCELLED);
    EXPECT_EQ(xprocCreate(nullptr, {"C:\\x.exe", "a"}), 101223);
    ASSERT_EQ(log.texts().size(), 2u);
    EXPECT_EQ(log.texts()[1], logged::elevatedStartFailed("C:\\x.exe", "\"a\"", "1223"));
}

TEST(Xproc, OtherFailuresAreNotRetried) {
    const FakeCalls calls(ERROR_ACCESS_DENIED, kSuccess);
    EXPECT_EQ(xprocCreate(nullptr, {"x"}), XERR_ACCES);
    EXPECT_EQ(FakeCalls::seen.size(), 1u);
}

TEST(Xproc, AFailureWithoutAnErrorCodeIsReported) {
    const LogCapture log;
    const FakeCalls calls(ERROR_SUCCESS, kSuccess);
    XprocHandle handle = &handle;
    EXPECT_EQ(xprocCreate(&handle, {"x.exe", "a"}), 100000);
    EXPECT_EQ(FakeCalls::seen, Lines{R"(create "x.exe" "a")"}) << "and asks for no elevation";
    EXPECT_EQ(handle, &handle);
    EXPECT_EQ(log.texts(), Lines{logged::startFailed(R"("x.exe" "a")", "0")});
}

TEST(Xproc, AnElevatedStartThatFailsWithoutAnErrorCodeIsReported) {
    const LogCapture log;
    const FakeCalls calls(XPROC_ELEVATION_REQUIRED, ERROR_SUCCESS);
    XprocHandle handle = &handle;
    EXPECT_EQ(xprocCreate(&handle, {"x.exe", "a"}), 100000);
    EXPECT_EQ(handle, &handle);
    ASSERT_EQ(log.texts().size(), 2u);
    EXPECT_EQ(log.texts()[1], logged::elevatedStartFailed("x.exe", "\"a\"", "0"));
}

TEST(Xproc, AHandleThatNobodyTakesIsClosed) {
    const FakeCalls calls(kSuccess, kSuccess);
    const long before = openHandles();
    for (int i = 0; i < 50; ++i) ASSERT_EQ(xprocCreate(nullptr, {"x"}), 0);
    EXPECT_EQ(openHandles(), before);
}

TEST(Xproc, AnElevatedStartReachesTheProgram) {
    const TempFolder folder;
    const LogCapture log;
    const std::string file = folder / "line";
    ASSERT_EQ(xprocCreate_elevated_basic(nullptr, ownCall("writesItsCommandLine", {slashed(file)})),
              0);
    EXPECT_NE(awaitContent(file), "");
}

SUBPROCESS(writesItsElevation) {
    writeBytes(arguments[0], isElevated() ? "elevated" : "plain");
    return 0;
}

TEST(Xproc, OnlyAnElevatedStartElevatesTheProgram) {
    if (isElevated()) {
        GTEST_SKIP() << "needs Wine 10 or Windows, where a program starts without elevation";
    }
    const TempFolder folder;
    const std::string file = folder / "elevated";
    EXPECT_EQ(exitCodeOf(startOwn("writesItsElevation", {slashed(folder / "plain")})), 0u);
    EXPECT_EQ(folder.read("plain"), "plain");
    ASSERT_EQ(xprocCreate_elevated_basic(nullptr, ownCall("writesItsElevation", {slashed(file)})),
              0);
    EXPECT_EQ(awaitContent(file), "elevated");
}

TEST(Xproc, AWaitWithoutAnExitCodeClosesTheHandle) {
    const XprocHandle child = startOwn("doesNothing");
    EXPECT_TRUE(isOpen(child));
    EXPECT_EQ(xprocWait(child, nullptr), 0);
    EXPECT_FALSE(isOpen(child));
}

TEST(Xproc, AFailedWaitLeavesTheHandleOpen) {
    const XprocHandle child = startOwn("doesNothing");
    const HANDLE cannotWait = otherHandle(child, PROCESS_QUERY_INFORMATION);
    {
        const LogCapture log;
        EXPECT_EQ(xprocWait(cannotWait, nullptr), XERR_ACCES);
        EXPECT_EQ(log.texts(), Lines{logged::processNotAwaited("13 XERR_ACCES")});
    }
    EXPECT_TRUE(isOpen(cannotWait));
    ::CloseHandle(cannotWait);
    EXPECT_EQ(xprocWait(child, nullptr), 0);
}

TEST(Xproc, KillingAnEndedProcessReturnsZero) {
    SignsOfLife signs;
    const XprocHandle child = startOwn("sleepsLong", {signs.next()});
    EXPECT_TRUE(signs.allArrived());
    const HANDLE again = otherHandle(child, PROCESS_ALL_ACCESS);
    xprocKill(child, 1);
    EXPECT_EQ(xprocWait(child, nullptr), 0);
    EXPECT_EQ(xprocKill(again, 2), 0);
    ::CloseHandle(again);
}

TEST(Xproc, AnExitCodeThatCannotBeReadIsLoggedWithTwoBlanks) {
    const LogCapture log;
    expectNoExitCode();
    EXPECT_EQ(log.texts(), Lines{"E XSTR xprocWait  GetExitCodeProcess failed with 9 XERR_BADF"});
}

TEST(Xproc, AnExitCodeThatCannotBeReadIsNotReturnedWithTheLogOff) {
    const LogOff off;
    expectNoExitCode();
    EXPECT_EQ(off.refused(), 1);
    EXPECT_EQ(off.printed(), 0);
}
