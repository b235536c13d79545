// The listing of installed apps, through the library.
#include "PlainHost.h"
#include "support/HeldFile.h"
#include "support/LogLines.h"

namespace {

class AppsTest : public PlainHostTest {
 protected:
    AppsTest() {
        writeConf("");
        data.makeFolder("Engine\\A\\AppCache");
        data.makeFolder("Engine\\B\\AppCache");
    }

    void writeCache(const std::string& instance, const std::string& text) const {
        data.write("Engine\\" + instance + "\\AppCache\\AppCache.json", text);
    }

    std::string iconOf(const std::string& package) const {
        std::string folder;
        for (const char c : data.path()) folder.append(c == '\\' ? 2 : 1, c);
        return folder + "\\\\Engine/A/AppCache/" + package + ".png";
    }
};

constexpr const char* kOneApp =
    R"([{"package":"com.a","activity":"Main","appLabel":"Größe \"1\"","versionCode":7,)"
    R"("versionName":"1.2"}])";

}  // namespace

TEST_F(AppsTest, AreListedAsJson) {
    writeCache("A", kOneApp);
    EXPECT_EQ(asHelper("apps A"),
              (Lines{"apps [", "    {", R"(        "activity": "Main",)",
                     R"(        "appLabel": "Größe \"1\"",)",
                     R"(        "iconFilePath": ")" + iconOf("com.a") + R"(",)",
                     R"(        "package": "com.a",)", R"(        "versionCode": 7,)",
                     R"(        "versionName": "1.2")", "    }", "]", ""}));
}

TEST_F(AppsTest, AreThoseOfTheInstanceAskedFor) {
    writeCache("A", kOneApp);
    EXPECT_EQ(asHelper("apps B apps A apps B").size(), 3u + 11 + 3);
}

TEST_F(AppsTest, ABadCacheIsNull) {
    writeCache("A", R"([{"package":"com.a"}])");
    EXPECT_EQ(asHelper("apps A"), Lines{"apps (null)"});
    EXPECT_EQ(log().back(), logged::byHelper(logged::appsNotListed()));
}

TEST_F(AppsTest, ACacheThatAnotherProgramHoldsIsKept) {
    for (const HeldFile::Shares shares : {HeldFile::Shares::Nothing, HeldFile::Shares::Deletion}) {
        writeCache("A", kOneApp);
        const std::string file = data.path() + "\\Engine/A/AppCache/AppCache.json";
        HeldFile held(file, shares);
        ASSERT_TRUE(held.isHeld());
        EXPECT_EQ(asHelper("apps A"), (Lines{"apps [", "]", ""}));
        EXPECT_EQ(log().back(), logged::byHelper(logged::cacheKept(file, 32)));
        held.release();
        EXPECT_EQ(data.read("Engine\\A\\AppCache\\AppCache.json"), kOneApp);
    }
}

TEST_F(AppsTest, ANullInstanceIsNull) {
    EXPECT_EQ(asHelper("apps (null)"), Lines{"apps (null)"});
    EXPECT_EQ(log().back(), logged::byHelper(logged::nullArgument("bridgeGetInstalledApps")));
}
