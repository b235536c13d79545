#include <QJsonArray>
#include <QJsonObject>

#include "AppcFixture.h"
#include "support/LogLines.h"

namespace {

class AppcEditTest : public AppcTest {
 protected:
    AppcEditTest() {
        EXPECT_EQ(init(fileOf(kTwo)), 0);
        log.clear();
    }

    void writeShared(const std::string& name, std::string_view content) const {
        data.write("Engine\\UserData\\SharedFolder\\" + name, content);
    }
    bool hasShared(const std::string& name) const {
        return data.has("Engine\\UserData\\SharedFolder\\" + name);
    }
    static std::string iconOf(const std::string& package) {
        return "Engine\\Nougat64\\AppCache\\" + package + ".png";
    }
    std::string icon(const std::string& package) const { return data.read(iconOf(package)); }
    void writeIcon(const std::string& package) const { data.write(iconOf(package), "old icon"); }
    bool hasIcon(const std::string& package) const { return data.has(iconOf(package)); }

    // Makes the next save fail, since a file cannot replace a folder.
    void blockTheFile() const {
        removeFile(file());
        data.makeFolder("Engine\\Nougat64\\AppCache\\AppCache.json");
    }
};

const char* const kSync = R"({"apps": [
    {"package": "com.b", "activity": "b2", "appLabel": "B2", "versionCode": 3, "versionName": "3"},
    {"package": "com.c", "activity": "c", "appLabel": "C", "versionCode": 1, "versionName": "1"}]})";

}  // namespace

TEST_F(AppcEditTest, ASyncReplacesTheWholeCache) {
    writeIcon("com.a");
    EXPECT_EQ(appcSyncInstalledApps(store, kSync), 0);
    EXPECT_EQ(read(), fileOf({{"com.b", "b2", "B2", 3, "3"}, {"com.c", "c", "C", 1, "1"}}));
    EXPECT_EQ(packages(), (Lines{"com.b", "com.c"}));
    EXPECT_TRUE(hasIcon("com.a")) << "icons are not touched";
    EXPECT_EQ(log.texts(XLOG_VERBOSE), Lines{});
}

TEST_F(AppcEditTest, ASyncWithNoAppsWritesAnEmptyArray) {
    EXPECT_EQ(appcSyncInstalledApps(store, R"({"apps": []})"), 0);
    EXPECT_EQ(read(), "[\n]\n");
    EXPECT_EQ(count(), 0u);
}

TEST_F(AppcEditTest, ASyncWithoutAnArrayOfAppsChangesNothing) {
    for (const char* json : {R"({"apps": {}})", "", "[]", "{}", "nonsense", R"({"apps": null})",
                             static_cast<const char*>(nullptr)}) {
        log.clear();
        EXPECT_EQ(appcSyncInstalledApps(store, json), -1);
        EXPECT_EQ(log.texts(),
                  Lines{"E APPC appcSyncInstalledApps: Error in reading appList as json array"});
        EXPECT_EQ(packages(), (Lines{"com.a", "com.b"}));
        EXPECT_EQ(read(), fileOf(kTwo));
    }
}

TEST_F(AppcEditTest, ASyncWithABadKeyEmptiesTheMemoryAndLeavesTheFile) {
    EXPECT_EQ(appcSyncInstalledApps(store, R"({"apps": [{"package": "com.x"}]})"), -1);
    EXPECT_EQ(withoutNumbers(log.texts()),
              (Lines{logged::cacheValueInvalid("activity: Not defined"),
                     "E APPC appcSyncInstalledApps: Error in reading json object"}));
    EXPECT_EQ(count(), 0u);
    EXPECT_EQ(read(), fileOf(kTwo));
}

TEST_F(AppcEditTest, ASyncWithSomethingElseInTheListKeepsTheAppsBeforeItInMemory) {
    EXPECT_EQ(appcSyncInstalledApps(
                  store, (R"({"apps": )" + arrayOf({Element().text(), "1"}) + "}").c_str()),
              -1);
    EXPECT_EQ(log.texts(), Lines{"E APPC appcSyncInstalledApps: Error in reading json object"});
    EXPECT_EQ(packages(), Lines{"com.a"});
    EXPECT_EQ(read(), fileOf(kTwo));
}

TEST_F(AppcEditTest, ASyncReturnsTheSavesResult) {
    blockTheFile();
    EXPECT_EQ(appcSyncInstalledApps(store, kSync), -1);
    EXPECT_EQ(log.texts(), Lines{logged::cacheNotOpenedForWriting(file())});
    EXPECT_EQ(packages(), (Lines{"com.b", "com.c"}));
}

TEST_F(AppcEditTest, ReadingAnArrayReplacesTheMemoryAndNotTheFile) {
    EXPECT_EQ(appcReadFromJsonObj(store, QJsonArray()), 0);
    EXPECT_EQ(count(), 0u);
    EXPECT_EQ(read(), fileOf(kTwo));
    EXPECT_EQ(appcReadFromJsonObj(store, QJsonArray{QJsonObject()}), -1);
    EXPECT_EQ(withoutNumbers(log.texts()),
              Lines{logged::cacheValueInvalid("package: Not defined")});
}

TEST_F(AppcEditTest, AnUpdateAddsAnAppWithItsIcon) {
    writeShared("new icon é.png", "icon");
    EXPECT_EQ(appcUpdateApp(store, "com.c", "com.c.Main", "C 日本", -7, "3.0", "new icon é.png"),
              0);
    EXPECT_EQ(read(), fileOf({kTwo[0], kTwo[1], {"com.c", "com.c.Main", "C 日本", -7, "3.0"}}));
    EXPECT_EQ(icon("com.c"), "icon");
    EXPECT_FALSE(hasShared("new icon é.png"));
    EXPECT_EQ(log.texts(XLOG_VERBOSE), Lines{});
}

TEST_F(AppcEditTest, AnUpdateOfAnAppKeepsOneRecordAndReplacesItsValuesAndIcon) {
    writeIcon("com.a");
    writeShared("x.png", "new icon");
    EXPECT_EQ(update(store, "com.a", "x.png"), 0);
    EXPECT_EQ(read(), fileOf({updated("com.a"), kTwo[1]}));
    EXPECT_EQ(app("com.a"), (AppcApp{"m", "l", 9, "v", "com.a.png"}));
    EXPECT_EQ(icon("com.a"), "new icon");
}

TEST_F(AppcEditTest, AMissingIconIsNotReported) {
    writeIcon("com.a");
    EXPECT_EQ(update(store, "com.a", "missing.png"), 0);
    EXPECT_EQ(read(), fileOf({updated("com.a"), kTwo[1]}));
    EXPECT_EQ(icon("com.a"), "old icon");
    EXPECT_EQ(log.texts(XLOG_ERROR), Lines{});
    EXPECT_EQ(log.texts(), Lines{logged::fileNotFlushed(store.sharedDir + "/missing.png")});
}

TEST_F(AppcEditTest, AFolderIsNeverMovedAsAnIcon) {
    data.makeFolder("Engine\\UserData\\SharedFolder\\sub");
    writeShared("sub\\x", "x");
    for (const char* name : {"", ".", "..", "./", "..\\", "sub", "sub/", "sub\\", "sub//", "sub/.",
                             "sub\\..", "SUB/"}) {
        EXPECT_EQ(update(store, "com.c", name), 0) << name;
        EXPECT_TRUE(hasShared("sub\\x")) << name;
        EXPECT_FALSE(hasIcon("com.c")) << name;
    }
}

TEST_F(AppcEditTest, AnUpdateWithoutAnIconAsksForNoMove) {
    writeIcon("com.a");
    FailingFiles files;
    ForeignStore counted(data.path(), files);
    ASSERT_EQ(appcLibInit(counted, "Nougat64"), 0);
    EXPECT_EQ(update(counted, "com.a", ""), 0);
    EXPECT_EQ(files.moves, 1) << "the save's";
    EXPECT_EQ(icon("com.a"), "old icon");
    EXPECT_EQ(log.texts(XLOG_VERBOSE), Lines{});
}

TEST_F(AppcEditTest, TheFirstAppOfAnInstanceLeavesItsIconWhereItIs) {
    ASSERT_EQ(appcLibInit(store, "Nougat64_1"), 0);
    data.makeFolder("Engine\\Nougat64_1");
    writeShared("x.png", "icon");
    EXPECT_EQ(update(store, "com.a", "x.png"), 0);
    EXPECT_TRUE(hasShared("x.png")) << "the folder comes with the save, after the move";
    EXPECT_EQ(data.read("Engine\\Nougat64_1\\AppCache\\AppCache.json"), fileOf({updated("com.a")}));
    EXPECT_EQ(update(store, "com.a", "x.png"), 0);
    EXPECT_FALSE(hasShared("x.png"));
}

TEST_F(AppcEditTest, AnUpdateReturnsTheSavesResultAndKeepsTheRecord) {
    blockTheFile();
    EXPECT_EQ(update(store, "com.c", "x.png"), -1);
    EXPECT_EQ(packages(), (Lines{"com.a", "com.b", "com.c"}));
    ASSERT_EQ(appcLibInit(store, "New"), 0);
    EXPECT_EQ(update(store, "com.c", "x.png"), XERR_NOENT);
    EXPECT_EQ(log.texts(XLOG_ERROR).back(),
              logged::cacheFolderNotMade(dir("New"), "XERR_NOENT [2]"));
}

TEST_F(AppcEditTest, TextsThatAreNotUtf8ReachTheFileReplaced) {
    EXPECT_EQ(appcUpdateApp(store, "com.c", "m\xFF", "l", 9, "v", "x.png"), 0);
    EXPECT_EQ(read(), fileOf({kTwo[0], kTwo[1], {"com.c", "m\xEF\xBF\xBD", "l", 9, "v"}}));
    EXPECT_EQ(app("com.c").activity, "m\xFF") << "the memory has them unchanged";
}

TEST_F(AppcEditTest, ARemovalTakesTheAppAndItsIcon) {
    writeIcon("com.a");
    writeIcon("com.b");
    EXPECT_EQ(appcRemoveApp(store, "com.a"), 0);
    EXPECT_EQ(read(), fileOf({kTwo[1]}));
    EXPECT_FALSE(hasIcon("com.a"));
    EXPECT_TRUE(hasIcon("com.b"));
    EXPECT_EQ(log.texts(XLOG_VERBOSE), Lines{});
}

TEST_F(AppcEditTest, AnAppWithoutAnIconFileIsRemovedAllTheSame) {
    EXPECT_EQ(appcRemoveApp(store, "com.b"), 0);
    EXPECT_EQ(read(), fileOf({kTwo[0]}));
    EXPECT_EQ(log.texts(XLOG_VERBOSE), Lines{});
}

TEST_F(AppcEditTest, RemovingWhatIsNotCachedRewritesNothing) {
    write("untouched");
    writeIcon("com.c");
    EXPECT_EQ(appcRemoveApp(store, "com.c"), 0);
    EXPECT_EQ(read(), "untouched");
    EXPECT_TRUE(hasIcon("com.c"));
}

TEST_F(AppcEditTest, ARemovalReturnsTheSavesResult) {
    blockTheFile();
    EXPECT_EQ(appcRemoveApp(store, "com.a"), -1);
    EXPECT_EQ(packages(), Lines{"com.b"});
}

TEST_F(AppcEditTest, ANulInAPackageNameDoesNotEndAPath) {
    data.write("Engine\\Nougat64\\AppCache\\keep", "x");
    writeShared("icon", "icon");
    EXPECT_EQ(update(store, std::string("keep\0", 5), "icon"), 0);
    EXPECT_EQ(data.read("Engine\\Nougat64\\AppCache\\keep"), "x");
    EXPECT_EQ(update(store, "com.c", std::string("icon\0x", 6)), 0);
    EXPECT_TRUE(hasShared("icon"));
    EXPECT_EQ(appcRemoveApp(store, std::string("keep\0", 5)), 0);
    EXPECT_EQ(data.read("Engine\\Nougat64\\AppCache\\keep"), "x");
}

TEST_F(AppcEditTest, AnEditWritesWhatThisProcessHasInMemory) {
    write(fileOf({{"com.theirs", "t", "T", 1, "1"}}));
    EXPECT_EQ(appcRemoveApp(store, "com.a"), 0);
    EXPECT_EQ(read(), fileOf({kTwo[1]})) << "nothing watches the file";
}
