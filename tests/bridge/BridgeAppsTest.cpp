#include "bridge/BridgeApps.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include "appc/AppcStore.h"
#include "support/HeldFile.h"
#include "support/LogCapture.h"
#include "support/LogLines.h"
#include "support/Platform.h"
#include "support/Subprocess.h"
#include "support/TempFolder.h"
#include "support/TestHeaders.h"

namespace fs = std::filesystem;

namespace {

// A cache in a data folder. The app cache's own tests may run at the same time, so their
// machine-wide locks are those of other instances.
struct Cache : AppcStore {
    explicit Cache(const std::string& data)
        : AppcStore(appcDiskFiles(), data + "\\", data + "\\/Engine/UserData/SharedFolder/") {}
};

class BridgeAppsTest : public ::testing::Test {
 protected:
    void write(const std::string& instance, std::string_view content) const {
        fs::create_directories(systemPath(dir(instance)));
        writeBytes(file(instance), content);
    }
    bool exists(const std::string& instance) const {
        return fs::exists(systemPath(file(instance)));
    }
    std::string dir(const std::string& instance) const {
        return data.path() + "\\Engine/" + instance + "/AppCache/";
    }
    std::string file(const std::string& instance) const { return dir(instance) + "AppCache.json"; }

    std::string listing(const std::string& instance) {
        const auto text = internal::bridgeGetInstalledApps(store, instance);
        EXPECT_TRUE(text) << instance;
        return text.value_or("");
    }

    TempFolder data;
    LogCapture log;
    Cache store{data.path()};
};

// An array of one app.
std::string oneApp(const std::string& package) {
    return R"([{"package":")" + package +
           R"(","activity":"m","appLabel":"l","versionCode":1,"versionName":"v"}])";
}

// A file and its listing as Qt writes them.
struct Reference {
    std::string file;
    std::string listing;
};

Reference referenceOf(int count, const std::string& dir) {
    QJsonArray fileArray;
    QJsonArray listingArray;
    for (int i = 0; i < count; ++i) {
        const QString package = QStringLiteral("com.example.app%1").arg(10'000 + i);
        QJsonObject object{{"package", package},
                           {"activity", package + ".Main"},
                           {"appLabel", QString::fromUtf8("App \"日本\" 🎮\t%1").arg(i)},
                           {"versionCode", i * 1000},
                           {"versionName", QStringLiteral("1.2.%1\\").arg(i)}};
        QJsonObject listed = object;
        object["iconFileName"] = package + ".png";
        listed["iconFilePath"] = QString::fromStdString(dir) + package + ".png";
        fileArray.append(object);
        listingArray.append(listed);
    }
    return {QJsonDocument(fileArray).toJson().toStdString(),
            QJsonDocument(listingArray).toJson().toStdString()};
}

}  // namespace

TEST_F(BridgeAppsTest, MembersAreSortedAndTheIconIsAFullPath) {
    write(
        "Nougat32",
        R"([{"package": "com.b", "activity": "b.Main", "appLabel": "B \"q\" \\", "versionCode": 1e3,
               "versionName": "1.0", "iconFileName": "ignored"},
              {"package": "com.a", "activity": "", "appLabel": "é 日本", "versionCode": 99999999999,
               "versionName": "\u0001", "other": []}])");
    std::string folder;  // escaped, as in JSON
    for (const char c : dir("Nougat32")) folder += c == '\\' ? "\\\\" : std::string(1, c);
    EXPECT_EQ(listing("Nougat32"), R"([
    {
        "activity": "",
        "appLabel": "é 日本",
        "iconFilePath": ")" + folder + R"(com.a.png",
        "package": "com.a",
        "versionCode": 2147483647,
        "versionName": "\u0001"
    },
    {
        "activity": "b.Main",
        "appLabel": "B \"q\" \\",
        "iconFilePath": ")" + folder + R"(com.b.png",
        "package": "com.b",
        "versionCode": 1000,
        "versionName": "1.0"
    }
]
)");
    EXPECT_EQ(log.texts(XLOG_VERBOSE), Lines{});
}

TEST_F(BridgeAppsTest, WithoutACacheTheArrayIsEmpty) {
    EXPECT_EQ(listing("Nougat32"), "[\n]\n");
    EXPECT_EQ(log.texts(), Lines{logged::cacheMissing(file("Nougat32"))});
    EXPECT_FALSE(data.has("Engine")) << "nothing is created";
}

TEST_F(BridgeAppsTest, AnEmptyCacheIsAnEmptyArray) {
    write("Nougat32", "[]");
    EXPECT_EQ(listing("Nougat32"), "[\n]\n");
    EXPECT_EQ(log.texts(), Lines{});
}

TEST_F(BridgeAppsTest, ANameThatIsNotAsciiIsUsedAsItIs) {
    write("Jeux é 日本", oneApp("com.a"));
    EXPECT_NE(listing("Jeux é 日本").find("Engine/Jeux é 日本/AppCache/com.a.png\""),
              std::string::npos);
}

TEST_F(BridgeAppsTest, EachCallOpensItsInstanceAgain) {
    write("A", oneApp("com.a"));
    write("B", oneApp("com.b"));
    EXPECT_NE(listing("A").find("com.a"), std::string::npos);
    EXPECT_EQ(listing("B").find("com.a"), std::string::npos);
    EXPECT_EQ(listing("C"), "[\n]\n");
    write("A", oneApp("com.new"));
    EXPECT_EQ(listing("A").find("com.a\""), std::string::npos) << "the file has changed meanwhile";
}

TEST_F(BridgeAppsTest, AFileThatIsNoArrayIsDeletedAndTheArrayIsEmpty) {
    write("Nougat32", "{}");
    EXPECT_EQ(listing("Nougat32"), "[\n]\n");
    EXPECT_EQ(log.texts(), Lines{logged::cacheNotAnArray(file("Nougat32"))});
    EXPECT_FALSE(exists("Nougat32"));
}

TEST_F(BridgeAppsTest, AFileThatIsHeldIsKeptAndTheArrayIsEmpty) {
    if (!HeldFile::isPossible()) GTEST_SKIP() << HeldFile::kNeedsWindows;
    for (const HeldFile::Shares shares : {HeldFile::Shares::Nothing, HeldFile::Shares::Deletion}) {
        write("Nougat32", oneApp("com.a"));
        log.clear();
        HeldFile held(file("Nougat32"), shares);
        ASSERT_TRUE(held.isHeld());
        EXPECT_EQ(listing("Nougat32"), "[\n]\n");
        EXPECT_EQ(log.texts(), Lines{logged::cacheKept(file("Nougat32"), 32)});
        held.release();
        EXPECT_EQ(readBytes(file("Nougat32")), oneApp("com.a"));
        EXPECT_NE(listing("Nougat32").find("com.a.png"), std::string::npos);
    }
}

TEST_F(BridgeAppsTest, ABadElementIsNoListing) {
    for (const char* content : {"[3]", "[{}]"}) {
        write("Nougat32", content);
        log.clear();
        EXPECT_EQ(internal::bridgeGetInstalledApps(store, "Nougat32"), std::nullopt);
        const Lines lines = log.texts();
        ASSERT_GE(lines.size(), 2u);
        EXPECT_EQ(Lines(lines.end() - 2, lines.end()),
                  (Lines{logged::cacheNotLoaded(), logged::appsNotListed()}));
        EXPECT_EQ(log.lines().back().function, "bridgeGetInstalledApps");
        EXPECT_TRUE(exists("Nougat32"));
    }
}

TEST_F(BridgeAppsTest, ALockThatCannotBeMadeIsNoListing) {
    EXPECT_EQ(internal::bridgeGetInstalledApps(store, "a\\b"), std::nullopt);
    EXPECT_EQ(log.texts().back(), logged::appsNotListed());
}

TEST_F(BridgeAppsTest, TenThousandAppsAreListedByteForByteAsQtDoes) {
    const Reference reference = referenceOf(10'000, dir("Nougat32"));
    write("Nougat32", reference.file);
    EXPECT_TRUE(listing("Nougat32") == reference.listing);
}

TEST_F(BridgeAppsTest, ThreadsGetTheInstanceThatTheyAskedFor) {
    std::vector<std::string> expected;
    for (int i = 0; i < 4; ++i) {
        const std::string instance = "I" + std::to_string(i);
        write(instance, oneApp("com.app" + std::to_string(i)));
        expected.push_back(listing(instance));
    }
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < expected.size(); ++i) {
        threads.emplace_back([&, i] {
            for (int round = 0; round < 200; ++round) {
                ASSERT_EQ(listing("I" + std::to_string(i)), expected[i]);
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(log.texts(), Lines{});
}

// Lists a cache on threads while others edit it.
SUBPROCESS(listsBesideEdits) {
    LogCapture log;
    Cache store(arguments[0]);
    if (appcLibInit(store, "Nougat32") != 0) return 1;
    const auto repeat = [](auto call) {
        return std::thread([call] {
            for (int round = 0; round < 200; ++round) call();
        });
    };
    std::thread threads[] = {
        repeat([&] { EXPECT_TRUE(internal::bridgeGetInstalledApps(store, "Nougat32")); }),
        repeat([&] { EXPECT_TRUE(internal::bridgeGetInstalledApps(store, "Other")); }),
        repeat([&] { EXPECT_EQ(appcSaveToFile(store), 0); }),
        repeat([&] { EXPECT_EQ(appcLoadFromFile(store), 0); }),
        repeat([&] { EXPECT_EQ(appcSyncInstalledApps(store, R"({"apps": []})"), 0); })};
    for (std::thread& thread : threads) thread.join();
    return ::testing::Test::HasFailure() ? 2 : 0;
}

TEST_F(BridgeAppsTest, AListingAndEditsNeverWaitForEachOtherForEver) {
    write("Nougat32", oneApp("com.a"));
    write("Other", oneApp("com.b"));
    EXPECT_EQ(runSubprocess("listsBesideEdits", {data.path()}).status, 0u);
}
