// Refused calls with every level off: the same results without a line.
#include "support/RegistrySandbox.h"
#include "support/SilentCalls.h"
#include "support/TempFolder.h"
#include "support/TestHeaders.h"
#include "utl/UtlCopy.h"
#include "utl/UtlImages.h"
#include "utl/UtlProcess.h"
#include "utl/UtlProcessCalls.h"
#include "xpl/Xtext.h"

TEST(UtlLogOffTest, WhatIsRefusedIsRefusedInSilence) {
    const TempFolder folder;
    folder.makeFolder("source");
    folder.makeFolder("destination");
    folder.write("source\\a", "new");
    folder.write("destination\\a", "old");
    expectSilence({
        {"copy a missing folder", 0, 1,
         [&] { return utlCopyRecursive(folder / "missing", folder / "destination"); }},
        {"copy over a file", -1, 1,
         [&] { return utlCopyRecursive(folder / "source", folder / "destination"); }},
        {"the file is as it was", true, 0, [&] { return folder.read("destination\\a") == "old"; }},
        {"list a mask that means nothing", true, 1,
         [] { return utlGetAbiListFromAbiInt(16, "Nougat64").empty(); }},
    });
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

TEST(UtlLogOffTest, ATrimIsSilent) { EXPECT_EQ(runSubprocess("trimsInSilence").status, 0u); }

TEST(UtlLogOffTest, WhatIsFatalIsFatalInSilence) {
    expectSilentBreak("printsFolders", {"silent", "install"});
    expectSilentBreak("printsFolders", {"silent", "InstallDir=Apps", "wide install"});
    expectSilentBreak("looksUpImage", {"Nougat16", "silent"});
}
