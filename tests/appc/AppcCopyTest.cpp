#include "AppcFixture.h"
#include "support/HeldFile.h"
#include "support/Subprocess.h"

namespace {

class AppcCopyTest : public AppcTest {
 protected:
    AppcCopyTest() {
        data.makeFolder("Engine\\New");
        EXPECT_EQ(init("[]"), 0);
        log.clear();
    }
};

}  // namespace

TEST_F(AppcCopyTest, FilesAndFoldersAreCopied) {
    data.write("Engine\\Nougat64\\AppCache\\com.a.png", "icon");
    data.write("Engine\\Nougat64\\AppCache\\sub\\x", "y");
    EXPECT_EQ(appcCopyInstance(store, "Nougat64", "New"), 0);
    EXPECT_EQ(data.read("Engine\\New\\AppCache\\AppCache.json"), "[]");
    EXPECT_EQ(data.read("Engine\\New\\AppCache\\com.a.png"), "icon");
    EXPECT_EQ(data.read("Engine\\New\\AppCache\\sub\\x"), "y");
    EXPECT_EQ(log.texts(XLOG_VERBOSE), Lines{});
}

TEST_F(AppcCopyTest, AFileThatCannotBeCopiedIsLeftOutAndTheResultIsStillGood) {
    data.write("Engine\\Nougat64\\AppCache\\com.a.png", "icon");
    data.write("Engine\\Nougat64\\AppCache\\com.b.png", "icon");
    HeldFile held(data / "Engine\\Nougat64\\AppCache\\com.a.png");
    if (!held.isHeld()) GTEST_SKIP() << HeldFile::kNeedsWindows;
    EXPECT_EQ(appcCopyInstance(store, "Nougat64", "New"), 0);
    EXPECT_EQ(log.texts().size(), 1u);
    EXPECT_FALSE(data.has("Engine\\New\\AppCache\\com.a.png"));
    EXPECT_TRUE(data.has("Engine\\New\\AppCache\\com.b.png"));
    EXPECT_TRUE(data.has("Engine\\New\\AppCache\\AppCache.json"));
    EXPECT_TRUE(isFileLockFree());
}

TEST_F(AppcCopyTest, TheOpenCacheStaysOpen) {
    data.makeFolder("Engine\\Other\\AppCache");
    EXPECT_EQ(appcCopyInstance(store, "Other", "New"), 0) << "neither of the two is open";
    ASSERT_EQ(appcSaveToFile(store), 0);
    EXPECT_EQ(read(), "[\n]\n");
}

TEST_F(AppcCopyTest, AMissingBaseIsAnError) {
    EXPECT_EQ(appcCopyInstance(store, "Missing", "New"), -1);
    EXPECT_EQ(log.texts(),
              Lines{"E APPC Base instance directory " + dir("Missing") + " doesn't exist"});
    EXPECT_FALSE(data.has("Engine\\New\\AppCache"));
}

TEST_F(AppcCopyTest, AFolderThatExistsAlreadyIsAnError) {
    data.makeFolder("Engine\\New\\AppCache");
    EXPECT_EQ(appcCopyInstance(store, "Nougat64", "New"), -1);
    EXPECT_EQ(log.texts(),
              Lines{"E APPC Failed to create directory " + dir("New") + " for new instance New"});
    EXPECT_FALSE(data.has("Engine\\New\\AppCache\\AppCache.json"));
    EXPECT_EQ(appcCopyInstance(store, "Nougat64", "Nougat64"), -1);
}

TEST_F(AppcCopyTest, TheNewInstancesFolderMustExist) {
    EXPECT_EQ(appcCopyInstance(store, "Nougat64", "Jeux é"), -1);
    EXPECT_EQ(log.texts(), Lines{"E APPC Failed to create directory " + dir("Jeux é") +
                                 " for new instance Jeux é"});
    EXPECT_FALSE(data.has("Engine\\Jeux é"));
}

TEST_F(AppcCopyTest, TheMachineWideLockIsReleased) {
    EXPECT_EQ(appcCopyInstance(store, "Nougat64", "New"), 0);
    EXPECT_TRUE(isFileLockFree());
}

SUBPROCESS(copiesWithoutACache) {
    LogCapture log;
    ForeignStore store(arguments[0]);
    return appcCopyInstance(store, "Nougat64", "New");
}

TEST_F(AppcCopyTest, BeforeACacheIsOpenedThereIsNoLockToTake) {
    EXPECT_EQ(runSubprocess("copiesWithoutACache", {data.path()}).status, kFatalStatus);
    EXPECT_TRUE(data.has("Engine\\New\\AppCache"));
    EXPECT_FALSE(data.has("Engine\\New\\AppCache\\AppCache.json"));
}
