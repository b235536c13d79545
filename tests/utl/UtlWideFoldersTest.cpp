// Paths of the C++ library are UTF-16 on Windows only.
#include "support/Subprocess.h"
#include "support/TestHeaders.h"

TEST(UtlWideFolders, FoldersOutsideAsciiAreTheRegistrysOwn) {
    EXPECT_EQ(subprocessOutput("printsFolders",
                               {"InstallDir=C:\\Apps\\日本", "UserDefinedDir=D:\\Ünïcode",
                                "wide install", "wide data"}),
              "C:\\Apps\\日本\nD:\\Ünïcode\n");
}
