// Paths of the C++ library are UTF-16 on Windows only.
#include "support/RegistrySandbox.h"
#include "support/Subprocess.h"
#include "support/TestHeaders.h"
#include "utl/UtlFolders.h"

SUBPROCESS(printsWideDirsOutsideAscii) {
    RegistrySandbox registry;
    registry.set("InstallDir", "C:\\Apps\\日本");
    registry.set("UserDefinedDir", "D:\\Ünïcode");
    std::printf("%s|%s", utlInstallDir().u8string().c_str(), utlDataDir().u8string().c_str());
    return 0;
}

TEST(UtlWideFolders, FoldersOutsideAsciiAreTheRegistrysOwn) {
    EXPECT_EQ(runSubprocess("printsWideDirsOutsideAscii").out, "C:\\Apps\\日本|D:\\Ünïcode");
}
