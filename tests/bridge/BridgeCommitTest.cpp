#include "bridge/BridgeCommit.h"

#include <gtest/gtest.h>

#include <string>

#include "support/LogCapture.h"
#include "support/TempFolder.h"

TEST(BridgeCommitTest, TheLineNamesTheExportAndThePathBeforeTheStoresOwn) {
    const TempFolder folder;
    ASSERT_EQ(confLibInit(confStore(), folder.write("vantrel.conf", "vtr.locale=\"a\"\n"), false),
              0);
    const LogCapture log;
    const std::string path = folder / "copy.conf";
    EXPECT_EQ(bridge::bridgeConfCommitToFile(confStore(), path), 0);
    EXPECT_TRUE(folder.has("copy.conf"));
    ASSERT_FALSE(log.lines().empty());
    const LogCapture::Line first = log.lines().front();
    EXPECT_EQ(log.texts(XLOG_VERBOSE).front(), "I BRIDGE bridgeConfCommitToFile args: " + path);
    EXPECT_EQ(first.function, "bridgeConfCommitToFile");
    EXPECT_EQ(first.file, "Source/bridge/Bridge");
}
