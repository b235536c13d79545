// What is refused, with every level off: the same results, and not a line. The
// compiler refuses much of what is tried here, which is what it is for.
#if defined(__clang__)
#pragma clang diagnostic ignored "-Wthread-safety-analysis"
#endif

#include <gtest/gtest.h>

#include <new>
#include <string>

#include "support/LogCapture.h"
#include "support/Platform.h"
#include "support/Subprocess.h"
#include "support/TempFolder.h"
#include "xpl/XcatchAll.h"
#include "xpl/Xfile.h"
#include "xpl/XmutexNamed.h"
#include "xpl/Xproc.h"
#include "xpl/XprocCalls.h"

namespace {

class XlogOffTest : public ::testing::Test {
 protected:
    void expectSilence(int lines) const {
        EXPECT_EQ(off.refused(), lines);
        EXPECT_EQ(off.printed(), 0);
    }

    LogOff off;
};

// Ends with a fatal break, and says nothing.
void expectSilentBreak(const std::string& subprocess, const SubprocessArguments& arguments = {}) {
    const ChildResult result = runSubprocess(subprocess, arguments);
    EXPECT_EQ(result.status, kFatalStatus);
    EXPECT_EQ(result.out, "");
}

}  // namespace

TEST_F(XlogOffTest, AMutexWhoseNameIsNotUtf8) {
    XmutexNamed mutex;
    EXPECT_EQ(mutex.init("\xFF"), -1);
    const bool acquired = mutex.try_lock();
    EXPECT_FALSE(acquired);
    if (acquired) mutex.unlock();
    expectSilence(2);
}

TEST_F(XlogOffTest, AnExceptionAtTheBorder) {
    const XlogModule module{XlogTag::XLIB, "f"};
    EXPECT_EQ(xcatchAll(module, "f", 7, []() -> int { throw std::bad_alloc(); }), 7);
    EXPECT_EQ(xcatchAll(module, "f", 8, []() -> int { throw 1; }), 8);
    expectSilence(2);
}

TEST_F(XlogOffTest, AMoveOfAFileThatIsNotThere) {
    const TempFolder folder;
    EXPECT_EQ(xfileMove(folder / "a", folder / "b"), XERR_NOENT);
    expectSilence(1);
}

TEST_F(XlogOffTest, AProgramThatIsNotThere) {
    EXPECT_EQ(xprocCreate(nullptr, {"C:\\no such\\program.exe"}), XERR_NOENT);
    expectSilence(1);
}

TEST_F(XlogOffTest, AProgramWhoseNameIsNotUtf8) {
    EXPECT_EQ(xprocCreate(nullptr, {"\xFF"}), 101113);
    expectSilence(1);
}

TEST_F(XlogOffTest, AnElevatedStartThatIsDeclined) {
    const XprocCalls real = xprocCalls();
    xprocCalls().runAs = [](const std::wstring&, const std::wstring&, XprocPtr&,
                            unsigned long& error) {
        error = XPROC_ELEVATION_REQUIRED;
        return false;
    };
    EXPECT_EQ(xprocCreate_elevated_basic(nullptr, {"C:\\x.exe"}), 100740);
    xprocCalls() = real;
    expectSilence(1);
}

TEST_F(XlogOffTest, AWaitForNoProcess) {
    EXPECT_EQ(xprocWait(nullptr, nullptr), XERR_BADF);
    EXPECT_EQ(xprocKill(nullptr, 1), 0);
    expectSilence(2);
}

SUBPROCESS(locksUninitialisedInSilence) {
    const LogOff silence;
    XmutexNamed mutex;
    mutex.lock();
    mutex.unlock();
    return 0;
}

TEST_F(XlogOffTest, ALockThatFailsIsStillFatal) {
    expectSilentBreak("locksUninitialisedInSilence");
}

SUBPROCESS(unlocksUnownedInSilence) {
    const LogOff silence;
    XmutexNamed mutex;
    if (mutex.init(arguments[0]) != 0) return 1;
    mutex.unlock();
    return 0;
}

TEST_F(XlogOffTest, ALockThatCannotBeReleasedIsStillFatal) {
    expectSilentBreak("unlocksUnownedInSilence",
                      {"Global\\vtr_test_off_" + std::to_string(ownProcessId())});
}
