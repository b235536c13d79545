// Refused calls with every level off: the same results without a line. Contains misuse that the
// compiler's thread-safety analysis would reject.
#if defined(__clang__)
#pragma clang diagnostic ignored "-Wthread-safety-analysis"
#endif

#include "support/Platform.h"
#include "support/SilentCalls.h"
#include "support/TempFolder.h"
#include "support/TestHeaders.h"
#include "xpl/XcatchAll.h"
#include "xpl/Xfile.h"
#include "xpl/XmutexNamed.h"
#include "xpl/Xproc.h"
#include "xpl/XprocCalls.h"

namespace {

int startElevatedDeclined() {
    const XprocCalls real = xprocCalls();
    xprocCalls().runAs = [](const std::wstring&, const std::wstring&, XprocPtr&,
                            unsigned long& error) {
        error = XPROC_ELEVATION_REQUIRED;
        return false;
    };
    const int result = xprocCreate_elevated_basic(nullptr, {"C:\\x.exe"});
    xprocCalls() = real;
    return result;
}

}  // namespace

TEST(XlogOffTest, WhatIsRefusedIsRefusedInSilence) {
    const XlogModule module{XlogTag::XLIB, "f"};
    const TempFolder folder;
    XmutexNamed mutex;
    expectSilence({
        {"a mutex whose name is not UTF-8", -1, 1, [&] { return mutex.init("\xFF"); }},
        {"try to take it", false, 1, [&] { return mutex.try_lock(); }},
        {"an exception at the border", 7, 1,
         [&] { return xcatchAll(module, "f", 7, []() -> int { throw std::bad_alloc(); }); }},
        {"another one", 8, 1, [&] { return xcatchAll(module, "f", 8, []() -> int { throw 1; }); }},
        {"move a missing file", XERR_NOENT, 1,
         [&] { return xfileMove(folder / "a", folder / "b"); }},
        {"start a missing program", XERR_NOENT, 1,
         [] { return xprocCreate(nullptr, {"C:\\no such\\program.exe"}); }},
        {"start a program whose name is not UTF-8", 101113, 1,
         [] { return xprocCreate(nullptr, {"\xFF"}); }},
        {"a declined elevation", 100740, 1, startElevatedDeclined},
        {"wait for no process", XERR_BADF, 1, [] { return xprocWait(nullptr, nullptr); }},
        {"kill no process", 0, 1, [] { return xprocKill(nullptr, 1); }},
    });
}

TEST(XlogOffTest, WhatIsFatalIsFatalInSilence) {
    expectSilentBreak("locksUninitialised", {"silent"});
    expectSilentBreak("unlocksUnowned",
                      {"Global\\vtr_test_off_" + std::to_string(ownProcessId()), "silent"});
}
