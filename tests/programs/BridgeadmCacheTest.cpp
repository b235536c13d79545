// The app cache commands of bridgeadm. The tests compare the files' bytes and read them with
// bridgectl.
#include <string>

#include "BridgeadmFixture.h"
#include "support/HeldFile.h"
#include "support/WindowsForTests.h"

namespace {

// An app in the cache's file.
std::string cachedApp(const std::string& package, const std::string& activity,
                      const std::string& label, const std::string& versionCode,
                      const std::string& versionName) {
    return "    {\n        \"activity\": \"" + activity + "\",\n        \"appLabel\": \"" + label +
           "\",\n        \"iconFileName\": \"" + package + ".png\",\n        \"package\": \"" +
           package + "\",\n        \"versionCode\": " + versionCode +
           ",\n        \"versionName\": \"" + versionName + "\"\n    }";
}

constexpr const char* kList =
    R"({"apps": [)"
    R"({"package": "com.b", "activity": ".B", "appLabel": "Spiel 日本", "versionCode": 7,)"
    R"( "versionName": "1.7"},)"
    R"({"package": "com.a", "activity": ".A", "appLabel": "A", "versionCode": 1,)"
    R"( "versionName": "1.0"}]})";

class BridgeadmCacheTest : public BridgeadmTest {
 protected:
    BridgeadmCacheTest() {
        data.makeFolder("Engine\\Nougat64");
        data.makeFolder("Engine\\Nougat32");
        data.makeFolder("Engine\\UserData\\SharedFolder");
    }

    // Syncs from a file with this list.
    std::string sync(const std::string& list) const {
        return output({"sync-apps", "Nougat64", data.write("list.json", list)});
    }

    std::string cache() const { return data.read(kCache); }

    // Runs a command that fails and does not change the cache's file.
    void expectCacheFailure(const Arguments& arguments, unsigned status,
                            const std::string& error) const {
        const bool existed = data.has(kCache);
        const std::string before = existed ? cache() : "";
        expectFailure(arguments, status, error);
        ASSERT_EQ(data.has(kCache), existed);
        if (existed) EXPECT_EQ(cache(), before);
    }

    static constexpr const char* kFolder = "Engine\\Nougat64\\AppCache";
    static constexpr const char* kCache = "Engine\\Nougat64\\AppCache\\AppCache.json";

    const std::string bothApps = "[\n" + cachedApp("com.a", ".A", "A", "1", "1.0") + ",\n" +
                                 cachedApp("com.b", ".B", "Spiel 日本", "7", "1.7") + "\n]\n";
};

}  // namespace

TEST_F(BridgeadmCacheTest, ASyncReplacesTheCache) {
    EXPECT_EQ(sync(kList), "apps of Nougat64: 2\n");
    EXPECT_EQ(cache(), bothApps);
    EXPECT_EQ(sync(R"({"apps": [{"package": "com.c", "activity": ".C", "appLabel": "C",)"
                   R"( "versionCode": 3, "versionName": "3"}]})"),
              "apps of Nougat64: 1\n");
    EXPECT_EQ(cache(), "[\n" + cachedApp("com.c", ".C", "C", "3", "3") + "\n]\n");
    EXPECT_EQ(file(), fileText(entries)) << "the configuration stays as it is";
}

TEST_F(BridgeadmCacheTest, AnEmptyListEmptiesTheCache) {
    sync(kList);
    EXPECT_EQ(sync(R"({"apps": []})"), "apps of Nougat64: 0\n");
    EXPECT_EQ(cache(), "[\n]\n");
}

TEST_F(BridgeadmCacheTest, ASyncLeavesIconsAlone) {
    data.write(kFolder + std::string("\\com.z.png"), "icon");
    sync(kList);
    EXPECT_EQ(data.read(kFolder + std::string("\\com.z.png")), "icon");
}

TEST_F(BridgeadmCacheTest, AListThatCannotBeReadIsAnError) {
    sync(kList);
    const std::string missing = data / "nowhere.json";
    expectCacheFailure({"sync-apps", "Nougat64", missing}, 4,
                       "cannot read " + missing + ": 2 XERR_NOENT");
    for (const char* list : {"", "nonsense", "[]", "{}", R"({"apps": {}})"}) {
        const std::string path = data.write("list.json", list);
        expectCacheFailure({"sync-apps", "Nougat64", path}, 4,
                           path + " is not a JSON object with an array \"apps\"");
    }
}

TEST_F(BridgeadmCacheTest, AnUnreadableAppIsAnErrorWithAReason) {
    sync(kList);
    const struct {
        const char* element;
        const char* error;
    } cases[] = {
        {"7", "an app is not an object"},
        {R"({"package": "com.a"})", R"(an app has no "activity")"},
        {R"({"package": "com.a", "activity": null})", R"(an app has no "activity")"},
        {R"({"package": 7})", R"(the "package" of an app is not a String)"},
        {R"({"package": "a", "activity": "b", "appLabel": "c", "versionCode": "12"})",
         R"(the "versionCode" of an app is not a Double)"},
    };
    for (const auto& [element, error] : cases) {
        const std::string path =
            data.write("list.json", std::string("{\"apps\": [") + element + "]}");
        expectCacheFailure({"sync-apps", "Nougat64", path}, 4, path + ": " + error);
    }
}

TEST_F(BridgeadmCacheTest, AnUpdateAddsAnAppAndMovesItsIcon) {
    sync(kList);
    data.write("Engine\\UserData\\SharedFolder\\icon 日本.png", "icon bytes");
    EXPECT_EQ(output({"update-app", "Nougat64", "com.c", "--activity", ".C", "--label", "C \"é\"",
                      "--version-code", "-3", "--version-name", "3.0", "--icon", "icon 日本.png"}),
              "updated com.c of Nougat64\n");
    EXPECT_EQ(cache(), bothApps.substr(0, bothApps.size() - 3) + ",\n" +
                           cachedApp("com.c", ".C", R"(C \"é\")", "-3", "3.0") + "\n]\n");
    EXPECT_EQ(data.read(kFolder + std::string("\\com.c.png")), "icon bytes");
    EXPECT_FALSE(data.has("Engine\\UserData\\SharedFolder\\icon 日本.png"));
}

TEST_F(BridgeadmCacheTest, AnUpdateKeepsOtherValues) {
    sync(kList);
    EXPECT_EQ(output({"update-app", "Nougat64", "com.b", "--version-code", "8"}),
              "updated com.b of Nougat64\n");
    EXPECT_EQ(cache(), "[\n" + cachedApp("com.a", ".A", "A", "1", "1.0") + ",\n" +
                           cachedApp("com.b", ".B", "Spiel 日本", "8", "1.7") + "\n]\n");
    output({"update-app", "Nougat64", "com.b", "--label", "", "--activity", ".New"});
    EXPECT_EQ(cache(), "[\n" + cachedApp("com.a", ".A", "A", "1", "1.0") + ",\n" +
                           cachedApp("com.b", ".New", "", "8", "1.7") + "\n]\n");
}

TEST_F(BridgeadmCacheTest, AnUpdateStartsACache) {
    EXPECT_EQ(output({"update-app", "Nougat64", "com.a"}), "updated com.a of Nougat64\n");
    EXPECT_EQ(cache(), "[\n" + cachedApp("com.a", "", "", "0", "") + "\n]\n");
}

TEST_F(BridgeadmCacheTest, AMissingIconIsAnError) {
    sync(kList);
    expectCacheFailure({"update-app", "Nougat64", "com.c", "--icon", "nowhere.png"}, 3,
                       "no such file in the shared folder: nowhere.png");
}

TEST_F(BridgeadmCacheTest, AnIconThatCannotBeMovedIsReported) {
    // The icon is moved before the first save creates the folder.
    data.write("Engine\\UserData\\SharedFolder\\a.png", "icon");
    expectFailure({"update-app", "Nougat64", "com.a", "--icon", "a.png"}, 5,
                  "saved, but the icon could not be moved: a.png");
    EXPECT_EQ(cache(), "[\n" + cachedApp("com.a", "", "", "0", "") + "\n]\n");
    EXPECT_EQ(output({"update-app", "Nougat64", "com.a", "--icon", "a.png"}),
              "updated com.a of Nougat64\n");
    EXPECT_EQ(data.read(kFolder + std::string("\\com.a.png")), "icon");
}

TEST_F(BridgeadmCacheTest, PathsAreNotPackageNames) {
    sync(kList);
    for (const std::string name : {"..\\a", "a/b", "a:b", "", "日本"}) {
        for (const char* command : {"update-app", "remove-app"}) {
            expectCacheFailure({command, "Nougat64", name}, 4, "not a valid package name: " + name);
        }
    }
}

TEST_F(BridgeadmCacheTest, RemovesAnAppWithItsIcon) {
    sync(kList);
    data.write(kFolder + std::string("\\com.a.png"), "icon");
    EXPECT_EQ(output({"remove-app", "Nougat64", "com.a"}), "removed com.a from Nougat64\n");
    EXPECT_EQ(cache(), "[\n" + cachedApp("com.b", ".B", "Spiel 日本", "7", "1.7") + "\n]\n");
    EXPECT_FALSE(data.has(kFolder + std::string("\\com.a.png")));
}

TEST_F(BridgeadmCacheTest, AMissingAppCannotBeRemoved) {
    sync(kList);
    expectCacheFailure({"remove-app", "Nougat64", "com.c"}, 3, "no such app: com.c");
    expectFailure({"remove-app", "Nougat32", "com.a"}, 3, "no such app: com.a");
}

TEST_F(BridgeadmCacheTest, CopiesACacheWithItsIcons) {
    sync(kList);
    data.write(kFolder + std::string("\\com.a.png"), "icon");
    EXPECT_EQ(output({"copy-cache", "Nougat64", "Nougat32"}),
              "copied the app cache of Nougat64 to Nougat32\n");
    EXPECT_EQ(data.read("Engine\\Nougat32\\AppCache\\AppCache.json"), bothApps);
    EXPECT_EQ(data.read("Engine\\Nougat32\\AppCache\\com.a.png"), "icon");
    EXPECT_EQ(cache(), bothApps);
}

TEST_F(BridgeadmCacheTest, OtherProgramsReadACopiedCache) {
    sync(kList);
    output({"copy-cache", "Nougat64", "Nougat32"});
    const ChildResult result = runChild(productFile("bridgectl.exe"), {"apps", "Nougat32"});
    EXPECT_EQ(result.status, 0u) << result.err;
    EXPECT_EQ(result.out,
              "NAME        PACKAGE  ACTIVITY  VERSION  ICON\n"
              "A           com.a    .A        1.0 (1)  no\n"
              "Spiel 日本  com.b    .B        1.7 (7)  no\n");
}

TEST_F(BridgeadmCacheTest, ACacheIsNotCopiedOverAnother) {
    sync(kList);
    data.makeFolder("Engine\\Nougat32\\AppCache");
    expectCacheFailure({"copy-cache", "Nougat64", "Nougat32"}, 2,
                       "an app cache of Nougat32 exists");
    expectCacheFailure({"copy-cache", "Nougat64", "Nougat64"}, 2,
                       "an app cache of Nougat64 exists");
}

TEST_F(BridgeadmCacheTest, WithoutACacheThereIsNothingToCopy) {
    expectFailure({"copy-cache", "Nougat64", "Nougat32"}, 3, "no app cache of Nougat64");
}

TEST_F(BridgeadmCacheTest, ATargetWithoutAFolderIsAnError) {
    sync(kList);
    ASSERT_TRUE(::RemoveDirectoryW(wideForTests(data / "Engine\\Nougat32").c_str()));
    expectCacheFailure({"copy-cache", "Nougat64", "Nougat32"}, 6,
                       "the app cache was not written: -1 XERR_FAILURE");
}

TEST_F(BridgeadmCacheTest, AnInstanceWithoutAFolderCannotBeSaved) {
    ASSERT_TRUE(::RemoveDirectoryW(wideForTests(data / "Engine\\Nougat64").c_str()));
    expectFailure({"update-app", "Nougat64", "com.a"}, 6,
                  "the app cache was not written: 2 XERR_NOENT");
    expectFailure({"sync-apps", "Nougat64", data.write("list.json", kList)}, 6,
                  "the app cache was not written: 2 XERR_NOENT");
}

TEST_F(BridgeadmCacheTest, UnknownInstancesAreErrors) {
    const std::string list = data.write("list.json", kList);
    for (const Arguments& arguments :
         {Arguments{"sync-apps", "Nougat64_9", list}, Arguments{"update-app", "Nougat64_9", "a"},
          Arguments{"remove-app", "Nougat64_9", "a"},
          Arguments{"copy-cache", "Nougat64_9", "Nougat64"},
          Arguments{"copy-cache", "Nougat64", "Nougat64_9"}}) {
        expectFailure(arguments, 3,
                      "no such instance: Nougat64_9\nbridgeadm: did you mean Nougat64?");
    }
    EXPECT_FALSE(data.has("Engine\\Nougat64_9"));
}

TEST_F(BridgeadmCacheTest, ACacheWithABadAppIsAnErrorAndStays) {
    data.write(kCache, "[7]");
    expectCacheFailure({"update-app", "Nougat64", "com.a"}, 5,
                       "the app cache cannot be read: -1 XERR_FAILURE");
    expectCacheFailure({"copy-cache", "Nougat64", "Nougat32"}, 5,
                       "the app cache cannot be read: -1 XERR_FAILURE");
}

TEST_F(BridgeadmCacheTest, ACacheThatAnotherProgramHoldsIsAnErrorAndStays) {
    sync(kList);
    data.write("Engine\\UserData\\SharedFolder\\a.png", "icon");
    const std::string list = data.write("list.json", R"({"apps": []})");
    for (const HeldFile::Shares shares : {HeldFile::Shares::Nothing, HeldFile::Shares::Deletion}) {
        for (const Arguments& arguments :
             {Arguments{"update-app", "Nougat64", "com.c", "--icon", "a.png"},
              Arguments{"remove-app", "Nougat64", "com.a"},
              Arguments{"sync-apps", "Nougat64", list},
              Arguments{"copy-cache", "Nougat64", "Nougat32"}}) {
            HeldFile held(data / kCache, shares);
            ASSERT_TRUE(held.isHeld());
            expectFailure(arguments, 5, "another program holds the app cache; try again later");
            held.release();
            EXPECT_EQ(cache(), bothApps) << arguments[0];
        }
    }
    EXPECT_TRUE(data.has("Engine\\UserData\\SharedFolder\\a.png"));
    EXPECT_FALSE(data.has("Engine\\Nougat32\\AppCache"));
}

TEST_F(BridgeadmCacheTest, AnUpdateWithoutAnIconLeavesTheSharedFolderAlone) {
    sync(kList);
    data.write("Engine\\UserData\\SharedFolder\\a.png", "icon");
    EXPECT_EQ(output({"update-app", "Nougat64", "com.a", "--label", "L"}),
              "updated com.a of Nougat64\n");
    EXPECT_EQ(data.read("Engine\\UserData\\SharedFolder\\a.png"), "icon");
    EXPECT_FALSE(data.has(kFolder + std::string("\\com.a.png")));
}

TEST_F(BridgeadmCacheTest, ACacheThatIsNotAListIsReplaced) {
    data.write(kCache, "nonsense");
    output({"update-app", "Nougat64", "com.a"});
    EXPECT_EQ(cache(), "[\n" + cachedApp("com.a", "", "", "0", "") + "\n]\n");
}
