// What is refused, with every level off: the same results, and not a line.
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "support/LogCapture.h"
#include "support/RegistrySandbox.h"
#include "support/Subprocess.h"
#include "support/TempFolder.h"
#include "utl/UtlCopy.h"
#include "utl/UtlFolders.h"
#include "utl/UtlImages.h"
#include "utl/UtlProcess.h"
#include "utl/UtlProcessCalls.h"
#include "xpl/Xtext.h"

namespace {

void expectSilence(const LogOff& off, int lines) {
    EXPECT_EQ(off.refused(), lines);
    EXPECT_EQ(off.printed(), 0);
}

}  // namespace

TEST(UtlLogOffTest, ACopyThatFails) {
    const TempFolder folder;
    folder.makeFolder("source");
    folder.makeFolder("destination");
    folder.write("source\\a", "new");
    folder.write("destination\\a", "old");
    const LogOff off;
    EXPECT_EQ(utlCopyRecursive(folder / "missing", folder / "destination"), 0);
    EXPECT_EQ(utlCopyRecursive(folder / "source", folder / "destination"), -1);
    EXPECT_EQ(folder.read("destination\\a"), "old");
    expectSilence(off, 2);
}

TEST(UtlLogOffTest, AMaskThatMeansNothing) {
    const LogOff off;
    EXPECT_EQ(utlGetAbiListFromAbiInt(16, "Nougat64"), "");
    expectSilence(off, 1);
}

SUBPROCESS(trimsInSilence) {
    RegistrySandbox registry;
    registry.set("InstallDir", "C:\\Apps\\");
    static int trimmed = 0;
    utlProcessCalls().enumerate = [](std::vector<std::uint32_t>&) { return false; };
    utlProcessCalls().open = [](std::uint32_t) -> void* { return &trimmed; };
    utlProcessCalls().close = [](void*) {};
    utlProcessCalls().hasModules = [](void*) { return true; };
    utlProcessCalls().imagePath = [](void*, std::wstring& path) {
        return xtextToWide("C:\\Apps\\x.exe", path) == XERR_SUCCESS;
    };
    utlProcessCalls().emptyWorkingSet = [](void*) { ++trimmed; };
    const LogOff off;
    if (utlTrimMemoryAllProcs() != -1) return 1;
    utlProcessCalls().enumerate = [](std::vector<std::uint32_t>& ids) {
        ids = {4, 8};
        return true;
    };
    if (utlTrimMemoryAllProcs() != 0 || trimmed != 2) return 2;
    return off.refused() == 3 && off.printed() == 0 ? 0 : 3;
}

TEST(UtlLogOffTest, ATrim) { EXPECT_EQ(runSubprocess("trimsInSilence").status, 0u); }

SUBPROCESS(breaksInSilence) {
    RegistrySandbox registry;
    if (arguments[0] == "relative") registry.set("InstallDir", "Apps");
    const LogOff off;
    if (arguments[0] == "missing") utlGetInstallDir();
    if (arguments[0] == "relative") utlInstallDir();
    if (arguments[0] == "image") utlGetImageTrait("Nougat16");
    return 0;
}

TEST(UtlLogOffTest, WhatIsFatalIsFatalInSilence) {
    for (const char* what : {"missing", "relative", "image"}) {
        const ChildResult result = runSubprocess("breaksInSilence", {what});
        EXPECT_EQ(result.status, kFatalStatus) << what;
        EXPECT_EQ(result.out, "") << what;
    }
}
