// A file that another process holds is not overwritten before it has been read.
#include <QJsonArray>

#include "AppcFixture.h"
#include "support/HeldFile.h"
#include "support/LogLines.h"

namespace {

const char* const kSync = R"({"apps": [
    {"package": "com.c", "activity": "c", "appLabel": "C", "versionCode": 1, "versionName": "1"}]})";

// A cache whose file was held when it was loaded.
class AppcHeldFileTest : public AppcTest {
 protected:
    AppcHeldFileTest() {
        write(fileOf(kTwo));
        files.readError = 32;
        EXPECT_EQ(appcLibInit(held, "Nougat64"), 0);
        log.clear();
    }

    // Expects an update to be refused, and the file not to change.
    void expectRefusal() {
        log.clear();
        EXPECT_EQ(update(held, "com.new"), -1);
        EXPECT_EQ(log.texts(), Lines{kRefusal});
        EXPECT_EQ(read(), fileOf(kTwo));
        EXPECT_EQ(list(), Lines{"AppCache.json"});
    }

    const std::string kRefusal = logged::cacheNotSavedOver(file());

    FailingFiles files;
    ForeignStore held{data.path(), files};
};

}  // namespace

TEST_F(AppcHeldFileTest, ALoadKeepsTheFileAndTheCacheIsEmpty) {
    for (const int error : {32, 33}) {
        files.readError = error;
        log.clear();
        EXPECT_EQ(appcLoadFromFile(held), 0);
        EXPECT_EQ(log.texts(), Lines{logged::cacheKept(file(), error)});
        EXPECT_EQ(packagesOf(held), Lines{});
        EXPECT_EQ(read(), fileOf(kTwo));
        EXPECT_EQ(files.removed, Lines{});
        EXPECT_TRUE(isFileLockFree());
    }
}

TEST_F(AppcHeldFileTest, ALoadForgetsTheAppsThatWereReadBefore) {
    files.readError = 0;
    ASSERT_EQ(appcLoadFromFile(held), 0);
    ASSERT_EQ(packagesOf(held), (Lines{"com.a", "com.b"}));
    files.readError = 33;
    EXPECT_EQ(appcLoadFromFile(held), 0);
    EXPECT_EQ(packagesOf(held), Lines{});
    expectRefusal();
}

TEST_F(AppcHeldFileTest, EverySaveIsRefused) {
    EXPECT_EQ(appcSaveToFile(held), -1);
    EXPECT_EQ(update(held, "com.new"), -1);
    EXPECT_EQ(appcRemoveApp(held, "com.new"), -1);
    EXPECT_EQ(appcSyncInstalledApps(held, kSync), -1);
    EXPECT_EQ(log.texts(XLOG_VERBOSE), (Lines{kRefusal, kRefusal, kRefusal, kRefusal}));
    EXPECT_EQ(read(), fileOf(kTwo));
    EXPECT_EQ(list(), Lines{"AppCache.json"});
    EXPECT_EQ(files.moves, 0);
    EXPECT_EQ(files.removed, Lines{});
}

TEST_F(AppcHeldFileTest, TheMemoryHasWhatCouldNotBeSaved) {
    EXPECT_EQ(appcSyncInstalledApps(held, kSync), -1);
    EXPECT_EQ(packagesOf(held), Lines{"com.c"});
    EXPECT_EQ(update(held, "com.new"), -1);
    EXPECT_EQ(packagesOf(held), (Lines{"com.c", "com.new"}));
    EXPECT_EQ(appcRemoveApp(held, "com.c"), -1);
    EXPECT_EQ(packagesOf(held), Lines{"com.new"});
}

TEST_F(AppcHeldFileTest, IconsStayWhereTheyAre) {
    data.write("Engine\\UserData\\SharedFolder\\new.png", "new icon");
    data.write("Engine\\Nougat64\\AppCache\\com.a.png", "old icon");
    EXPECT_EQ(update(held, "com.a", "new.png"), -1);
    EXPECT_EQ(appcRemoveApp(held, "com.a"), -1);
    EXPECT_EQ(data.read("Engine\\UserData\\SharedFolder\\new.png"), "new icon");
    EXPECT_EQ(data.read("Engine\\Nougat64\\AppCache\\com.a.png"), "old icon");
}

TEST_F(AppcHeldFileTest, RemovingWhatIsNotCachedNeedsNoSave) {
    EXPECT_EQ(appcRemoveApp(held, "com.a"), 0);
    EXPECT_EQ(log.texts(), Lines{});
    EXPECT_EQ(read(), fileOf(kTwo));
}

TEST_F(AppcHeldFileTest, ALoadThatReadsTheFileEndsTheRefusal) {
    files.readError = 0;
    EXPECT_EQ(appcLoadFromFile(held), 0);
    EXPECT_EQ(update(held, "com.c"), 0);
    EXPECT_EQ(read(), fileOf({kTwo[0], kTwo[1], updated("com.c")}));
    EXPECT_EQ(log.texts(), Lines{});
}

TEST_F(AppcHeldFileTest, OpeningTheInstanceAgainEndsTheRefusalWhenItsFileIsRead) {
    EXPECT_EQ(appcLibInit(held, "Nougat64"), 0);
    expectRefusal();
    files.readError = 0;
    EXPECT_EQ(appcLibInit(held, "Nougat64"), 0);
    EXPECT_EQ(update(held, "com.c"), 0);
    EXPECT_EQ(packagesOf(held), (Lines{"com.a", "com.b", "com.c"}));
}

TEST_F(AppcHeldFileTest, ALoadThatFindsNoFileEndsTheRefusal) {
    EXPECT_EQ(update(held, "com.c"), -1);
    removeFile(file());
    EXPECT_EQ(appcLoadFromFile(held), 0);
    EXPECT_EQ(appcSaveToFile(held), 0);
    EXPECT_EQ(read(), fileOf({updated("com.c")})) << "such a load keeps the memory";
}

TEST_F(AppcHeldFileTest, ALoadThatDeletesTheFileEndsTheRefusal) {
    for (const int error : {0, 5}) {
        files.readError = 32;
        write("{}");
        ASSERT_EQ(appcLoadFromFile(held), 0);
        files.readError = error;
        EXPECT_EQ(appcLoadFromFile(held), 0);
        EXPECT_FALSE(exists());
        EXPECT_EQ(appcSaveToFile(held), 0);
        EXPECT_EQ(read(), "[\n]\n");
    }
}

TEST_F(AppcHeldFileTest, ALoadThatFailsDoesNotEndTheRefusal) {
    for (const char* bad : {"[{}]", "[1]"}) {
        files.readError = 0;
        write(bad);
        EXPECT_EQ(appcLoadFromFile(held), -1);
        EXPECT_EQ(appcSaveToFile(held), -1);
        EXPECT_EQ(appcLibInit(held, "Nougat64"), -1);
        EXPECT_EQ(appcSaveToFile(held), -1);
        EXPECT_EQ(log.texts().back(), kRefusal);
        EXPECT_EQ(read(), bad);
    }
}

TEST_F(AppcHeldFileTest, ReplacingTheMemoryDoesNotEndTheRefusal) {
    EXPECT_EQ(appcReadFromJsonObj(held, QJsonArray()), 0);
    expectRefusal();
}

TEST_F(AppcHeldFileTest, AnotherInstanceIsNotRefused) {
    data.makeFolder("Engine\\Other");
    EXPECT_EQ(appcLibInit(held, "Other"), 0);
    EXPECT_EQ(update(held, "com.c"), 0);
    EXPECT_EQ(data.read("Engine\\Other\\AppCache\\AppCache.json"), fileOf({updated("com.c")}));
    EXPECT_EQ(read(), fileOf(kTwo));
}

TEST_F(AppcHeldFileTest, AnotherInstanceWithABadFileIsSavedOver) {
    data.write("Engine\\Other\\AppCache\\AppCache.json", "[{}]");
    files.readError = 0;
    EXPECT_EQ(appcLibInit(held, "Other"), -1);
    EXPECT_EQ(appcSaveToFile(held), 0);
}

TEST_F(AppcTest, AFileThatIsReallyHeldIsKeptAndNotSavedOver) {
    if (!HeldFile::isPossible()) GTEST_SKIP() << HeldFile::kNeedsWindows;
    const std::string refusal = logged::cacheNotSavedOver(file());
    for (const HeldFile::Shares shares : {HeldFile::Shares::Nothing, HeldFile::Shares::Deletion}) {
        write(fileOf(kTwo));
        log.clear();
        HeldFile holder(file(), shares);
        ASSERT_TRUE(holder.isHeld());
        EXPECT_EQ(appcLibInit(store, "Nougat64"), 0);
        EXPECT_EQ(log.texts(), Lines{logged::cacheKept(file(), 32)});
        EXPECT_EQ(count(), 0u);
        EXPECT_EQ(update(store, "com.c"), -1);
        EXPECT_EQ(log.texts().back(), refusal);
        holder.release();
        EXPECT_EQ(update(store, "com.c"), -1) << "not loaded yet";
        EXPECT_EQ(read(), fileOf(kTwo));
        EXPECT_EQ(list(), Lines{"AppCache.json"});
        EXPECT_EQ(appcLoadFromFile(store), 0);
        EXPECT_EQ(update(store, "com.c"), 0);
        EXPECT_EQ(packages(), (Lines{"com.a", "com.b", "com.c"}));
        removeFile(file());
    }
}

TEST_F(AppcTest, AFileWhoseBytesAreLockedIsKeptAndNotSavedOver) {
    if (!HeldFile::isPossible()) GTEST_SKIP() << HeldFile::kNeedsWindows;
    write(fileOf(kTwo));
    HeldFile holder(file(), HeldFile::Shares::EverythingButItsBytes);
    ASSERT_TRUE(holder.isHeld());
    if (read() == fileOf(kTwo)) GTEST_SKIP() << "needs Windows, where locked bytes are not read";
    EXPECT_EQ(appcLibInit(store, "Nougat64"), 0);
    EXPECT_EQ(log.texts(), Lines{logged::cacheKept(file(), 33)});
    EXPECT_EQ(update(store, "com.c"), -1);
    holder.release();
    EXPECT_EQ(read(), fileOf(kTwo));
    EXPECT_EQ(appcLoadFromFile(store), 0);
    EXPECT_EQ(packages(), (Lines{"com.a", "com.b"}));
}

TEST_F(AppcTest, AFileThatIsHeldForAMomentIsWaitedFor) {
    if (!HeldFile::isPossible()) GTEST_SKIP() << HeldFile::kNeedsWindows;
    for (const HeldFile::Shares shares : {HeldFile::Shares::Nothing, HeldFile::Shares::Deletion,
                                          HeldFile::Shares::EverythingButItsBytes}) {
        write(fileOf(kTwo));
        const BrieflyHeldFile holder(file(), shares);
        ASSERT_TRUE(holder.wasHeld());
        EXPECT_EQ(appcLibInit(store, "Nougat64"), 0);
        EXPECT_EQ(packages(), (Lines{"com.a", "com.b"}));
        EXPECT_EQ(update(store, "com.c"), 0);
        EXPECT_EQ(log.texts(), Lines{});
    }
}

TEST_F(AppcTest, ASaveOverAFileThatIsHeldForAMomentWaits) {
    if (!HeldFile::isPossible()) GTEST_SKIP() << HeldFile::kNeedsWindows;
    ASSERT_EQ(init(fileOf(kTwo)), 0);
    const BrieflyHeldFile holder(file(), HeldFile::Shares::ReadAndWrite);
    ASSERT_TRUE(holder.wasHeld());
    EXPECT_EQ(appcSyncInstalledApps(store, R"({"apps": []})"), 0);
    EXPECT_EQ(read(), "[\n]\n");
    EXPECT_EQ(log.texts(), Lines{});
}
