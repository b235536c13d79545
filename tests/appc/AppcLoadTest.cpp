#include "AppcFixture.h"
#include "support/HeldFile.h"
#include "support/LogLines.h"
#include "support/Platform.h"
#include "support/RegistrySandbox.h"
#include "support/Subprocess.h"

namespace {

using AppcLoadTest = AppcTest;

const std::string kTwoApps =
    fileOf({{"com.a", "com.a.Main", "A", 1, "1.0"}, {"com.b", "com.b.Main", "日本 é", -2, "2"}});

// The lines of a load that fails because of a key.
Lines keyFailure(const std::string& what) {
    return {logged::cacheValueInvalid(what), logged::cacheNotLoaded()};
}

}  // namespace

TEST_F(AppcLoadTest, ReadsTheFile) {
    EXPECT_EQ(init(kTwoApps), 0);
    EXPECT_EQ(packages(), (Lines{"com.a", "com.b"}));
    EXPECT_EQ(app("com.b"), (AppcApp{"com.b.Main", "日本 é", -2, "2", "com.b.png"}));
    EXPECT_EQ(log.texts(XLOG_VERBOSE), Lines{});
    EXPECT_EQ(read(), kTwoApps);
}

TEST_F(AppcLoadTest, PackagesComeInByteOrder) {
    std::vector<PlainApp> apps;
    for (const char* package : {"é", "com.b", "com.B", "com.a.x", "com.a", "com.a-x"}) {
        apps.push_back(updated(package));
    }
    EXPECT_EQ(init(fileOf(apps)), 0);
    EXPECT_EQ(packages(), (Lines{"com.B", "com.a", "com.a-x", "com.a.x", "com.b", "é"}));
}

TEST_F(AppcLoadTest, AnEmptyArrayIsAnEmptyCache) {
    EXPECT_EQ(init("[]"), 0);
    EXPECT_EQ(count(), 0u);
    EXPECT_EQ(log.texts(), Lines{});
    EXPECT_EQ(read(), "[]");
}

TEST_F(AppcLoadTest, AMissingFileIsAnEmptyCache) {
    EXPECT_EQ(appcLibInit(store, "Nougat64"), 0);
    EXPECT_EQ(count(), 0u);
    EXPECT_EQ(log.texts(), Lines{logged::cacheMissing(file())});
    EXPECT_FALSE(exists());
}

TEST_F(AppcLoadTest, AnInstanceThatDoesNotExistIsAnEmptyCache) {
    EXPECT_EQ(appcLibInit(store, "Jeux é"), 0);
    EXPECT_EQ(log.texts(), Lines{logged::cacheMissing(dir("Jeux é") + "AppCache.json")});
}

TEST_F(AppcLoadTest, LinesCarryTheModulesFileAndTheFunctionsName) {
    EXPECT_EQ(appcLibInit(store, "Nougat64"), 0);
    ASSERT_EQ(log.lines().size(), 1u);
    EXPECT_EQ(log.lines()[0].file, "Source/appc/Appc");
    EXPECT_EQ(log.lines()[0].function, "appcLoadFromFile");
}

TEST_F(AppcLoadTest, OpeningAnotherInstanceNeverShowsTheAppsOfTheFirst) {
    ASSERT_EQ(init(kTwoApps), 0);
    EXPECT_EQ(appcLibInit(store, "Other"), 0);
    EXPECT_EQ(count(), 0u);
    EXPECT_EQ(appcLibInit(store, "Nougat64"), 0);
    EXPECT_EQ(count(), 2u);
}

TEST_F(AppcLoadTest, ALoadByItselfKeepsTheCacheWhereTheFileIsMissing) {
    ASSERT_EQ(init(kTwoApps), 0);
    removeFile(file());
    EXPECT_EQ(appcLoadFromFile(store), 0);
    EXPECT_EQ(count(), 2u);
    EXPECT_EQ(log.texts(), Lines{logged::cacheMissing(file())});
}

TEST_F(AppcLoadTest, ALoadByItselfEmptiesTheCacheWhereItDeletesTheFile) {
    ASSERT_EQ(init(kTwoApps), 0);
    write("{}");
    EXPECT_EQ(appcLoadFromFile(store), 0);
    EXPECT_EQ(count(), 0u);
    EXPECT_FALSE(exists());
}

TEST_F(AppcLoadTest, ALoadFollowsTheFile) {
    ASSERT_EQ(init(kTwoApps), 0);
    write(fileOf({{"com.c", "", "", 3, ""}}));
    EXPECT_EQ(packages(), (Lines{"com.a", "com.b"})) << "nothing watches the file";
    EXPECT_EQ(appcLoadFromFile(store), 0);
    EXPECT_EQ(packages(), Lines{"com.c"});
}

TEST_F(AppcLoadTest, AFileThatIsNotAnArrayIsDeleted) {
    for (const std::string& content :
         {std::string("{}"), std::string(), std::string(" \n"), std::string("null"),
          std::string("[\"\xFF\"]"), std::string("[]\0", 3), std::string("[] x"),
          std::string(R"({"apps": []})"), std::string("[1,]")}) {
        log.clear();
        EXPECT_EQ(init(content), 0) << content;
        EXPECT_EQ(count(), 0u);
        EXPECT_EQ(log.texts(), Lines{logged::cacheNotAnArray(file())}) << content;
        EXPECT_FALSE(exists()) << content;
    }
}

TEST_F(AppcLoadTest, AByteOrderMarkAndCarriageReturnsAreTolerated) {
    std::string text = "\xEF\xBB\xBF";
    for (const char c : kTwoApps) text += c == '\n' ? std::string("\r\n") : std::string(1, c);
    EXPECT_EQ(init(text), 0);
    EXPECT_EQ(count(), 2u);
    EXPECT_EQ(read(), text);
}

TEST_F(AppcLoadTest, AFileCutAnywhereIsDeletedAndTheNextSaveWritesAFreshOne) {
    const std::size_t whole = kTwoApps.size() - 1;  // only the last line feed may be missing
    for (std::size_t size = 0; size < whole; ++size) {
        log.clear();
        ASSERT_EQ(init(kTwoApps.substr(0, size)), 0) << size;
        ASSERT_EQ(count(), 0u) << size;
        ASSERT_EQ(log.texts(), Lines{logged::cacheNotAnArray(file())}) << size;
        ASSERT_FALSE(exists()) << size;
    }
    ASSERT_EQ(appcSaveToFile(store), 0);
    EXPECT_EQ(read(), "[\n]\n");
    EXPECT_EQ(init(kTwoApps.substr(0, whole)), 0);
    EXPECT_EQ(count(), 2u);
}

TEST_F(AppcLoadTest, AnElementThatIsNotAnObjectKeepsTheAppsBeforeIt) {
    Element a;
    Element b;
    b.package = R"("com.b")";
    for (const char* bad : {"3", "null", "[]", "\"x\"", "true"}) {
        const std::string text = arrayOf({a.text(), b.text(), bad, a.text()});
        log.clear();
        EXPECT_EQ(init(text), -1) << bad;
        EXPECT_EQ(packages(), (Lines{"com.a", "com.b"})) << bad;
        EXPECT_EQ(log.texts(), Lines{logged::cacheNotLoaded()});
        EXPECT_EQ(read(), text) << "the file stays";
    }
}

TEST_F(AppcLoadTest, AVersionCodeThatIsATextEmptiesTheCache) {
    Element bad;
    bad.package = R"("com.b")";
    bad.versionCode = R"("12")";
    const std::string text = arrayOf({Element().text(), bad.text()});
    EXPECT_EQ(init(text), -1);
    EXPECT_EQ(count(), 0u);
    EXPECT_EQ(withoutNumbers(log.texts()),
              keyFailure("versionCode: Invalid type 3 expected Double"));
    EXPECT_EQ(read(), text) << "the file stays";
}

TEST_F(AppcLoadTest, MessagesOfTheReaderStartWithAFunctionNameAndASourceLine) {
    EXPECT_EQ(init("[{}]"), -1);
    EXPECT_NE(log.texts()[0], withoutNumbers(log.texts())[0]);
    EXPECT_EQ(log.lines()[0].function, "appcReadFromJsonObj");
}

TEST_F(AppcLoadTest, EveryKeyMustBeThere) {
    const Lines keys{"package", "activity", "appLabel", "versionCode", "versionName"};
    for (const std::string& missing : keys) {
        std::string members;
        std::string nulls;
        for (const std::string& key : keys) {
            const std::string member =
                '"' + key + (key == "versionCode" ? "\": 1, " : "\": \"x\", ");
            if (key != missing) members += member;
            nulls += key == missing ? '"' + key + "\": null, " : member;
        }
        for (const std::string& text : {members, nulls}) {
            log.clear();
            EXPECT_EQ(init("[" + Element().text() + ", {" + text + "\"x\": 1}]"), -1) << missing;
            EXPECT_EQ(withoutNumbers(log.texts()), keyFailure(missing + ": Not defined"));
            EXPECT_EQ(count(), 0u);
            EXPECT_TRUE(exists());
        }
    }
}

TEST_F(AppcLoadTest, EveryKeyMustHaveItsType) {
    const std::pair<const char*, int> values[] = {
        {"true", 1}, {"1.5", 2}, {"\"x\"", 3}, {"[]", 4}, {"{}", 5}};
    const std::pair<const char*, std::string Element::*> keys[] = {
        {"package", &Element::package},
        {"activity", &Element::activity},
        {"appLabel", &Element::appLabel},
        {"versionCode", &Element::versionCode},
        {"versionName", &Element::versionName}};
    for (const auto& [key, member] : keys) {
        const bool isNumber = std::string(key) == "versionCode";
        for (const auto& [value, type] : values) {
            Element element;
            element.*member = value;
            log.clear();
            const bool fits = type == (isNumber ? 2 : 3);
            EXPECT_EQ(init(arrayOf({element.text()})), fits ? 0 : -1) << key << " " << value;
            EXPECT_EQ(withoutNumbers(log.texts()),
                      fits
                          ? Lines{}
                          : keyFailure(std::string(key) + ": Invalid type " + std::to_string(type) +
                                       " expected " + (isNumber ? "Double" : "String")));
            EXPECT_TRUE(exists());
        }
    }
}

TEST_F(AppcLoadTest, TheFirstBadKeyInReadingOrderIsNamed) {
    EXPECT_EQ(init(R"([{"versionName": 1, "versionCode": "x", "package": "p", "activity": "a"}])"),
              -1);
    EXPECT_EQ(withoutNumbers(log.texts()), keyFailure("appLabel: Not defined"));
}

TEST_F(AppcLoadTest, AFolderInPlaceOfTheFileStays) {
    data.makeFolder("Engine\\Nougat64\\AppCache\\AppCache.json");
    EXPECT_EQ(appcLibInit(store, "Nougat64"), 0);
    EXPECT_EQ(log.texts(), Lines{logged::cacheDeleted(file(), 5)});
    EXPECT_EQ(count(), 0u);
    EXPECT_TRUE(exists());
}

// Holds a file, so that no other process can open it.
SUBPROCESS(holdsFile) {
    const HeldFile held(arguments[0]);
    std::puts(held.isHeld() ? "held" : "failed");
    std::fflush(stdout);
    sleepMs(60'000);
    return 0;
}

TEST_F(AppcLoadTest, AFileThatAnotherProcessHoldsForItselfStaysAndTheCacheIsEmpty) {
    if (!HeldFile::isPossible()) GTEST_SKIP() << HeldFile::kNeedsWindows;
    ASSERT_EQ(init(kTwoApps), 0);
    {
        ChildProcess holder = startSubprocess("holdsFile", {file()});
        ASSERT_EQ(holder.readLine(), "held");
        EXPECT_EQ(appcLoadFromFile(store), 0);
    }
    EXPECT_EQ(log.texts(), Lines{logged::cacheKept(file(), 32)});
    EXPECT_EQ(count(), 0u);
    EXPECT_EQ(read(), kTwoApps);
}

TEST_F(AppcLoadTest, AFileOfAHundredMegabytesLoads) {
    EXPECT_EQ(init("[" + std::string(100'000'000, ' ') + Element().text() + "]"), 0);
    EXPECT_EQ(packages(), Lines{"com.a"});
    EXPECT_TRUE(exists());
}

TEST_F(AppcLoadTest, AHundredMegabytesOfSomethingElseAreDeleted) {
    EXPECT_EQ(init(std::string(100'000'000, '\0')), 0);
    EXPECT_EQ(count(), 0u);
    EXPECT_FALSE(exists());
}

TEST_F(AppcLoadTest, TenThousandAppsComeBack) {
    std::vector<PlainApp> apps;
    for (int i = 10'000; i < 20'000; ++i) {
        const std::string package = "com.example.app" + std::to_string(i);
        apps.push_back({package, package + ".Main", "App 日本 " + std::to_string(i), i, "1.2.3"});
    }
    const std::string text = fileOf(apps);
    ASSERT_EQ(init(text), 0);
    EXPECT_EQ(count(), 10'000u);
    EXPECT_EQ(app("com.example.app12345"), (AppcApp{"com.example.app12345.Main", "App 日本 12345",
                                                    12345, "1.2.3", "com.example.app12345.png"}));
    ASSERT_EQ(appcSaveToFile(store), 0);
    EXPECT_TRUE(read() == text);
}

TEST_F(AppcLoadTest, ALookupSkipsNullPointers) {
    ASSERT_EQ(init(kTwoApps), 0);
    EXPECT_EQ(appcGetApp(store, "com.a", nullptr, nullptr, nullptr, nullptr, nullptr), 0);
    std::string label;
    EXPECT_EQ(appcGetApp(store, "com.a", nullptr, &label, nullptr, nullptr, nullptr), 0);
    EXPECT_EQ(label, "A");
}

TEST_F(AppcLoadTest, ALookupOfAnUnknownPackageChangesNothing) {
    ASSERT_EQ(init(kTwoApps), 0);
    std::string label = "before";
    EXPECT_EQ(appcGetApp(store, "com.A", nullptr, &label, nullptr, nullptr, nullptr), XERR_NOENT);
    EXPECT_EQ(appcGetApp(store, "", nullptr, nullptr, nullptr, nullptr, nullptr), XERR_NOENT);
    EXPECT_EQ(label, "before");
}

TEST_F(AppcLoadTest, AListingOpensTheInstanceAndHasTheIconsPaths) {
    write(arrayOf({Element().text()}));
    std::string folder;  // escaped, as in JSON
    for (const char c : dir()) folder += c == '\\' ? "\\\\" : std::string(1, c);
    std::string listing;
    EXPECT_EQ(appcListApps(store, "Nougat64", listing), 0);
    EXPECT_EQ(listing, listingOf({{"com.a", "com.a.Main", "A", 1, "1.0"}}, folder));
    EXPECT_EQ(packages(), Lines{"com.a"});
}

TEST_F(AppcLoadTest, AFailedListingLeavesTheTextAsItWas) {
    write("[{}]");
    std::string listing = "before";
    EXPECT_EQ(appcListApps(store, "Nougat64", listing), XERR_FAILURE);
    EXPECT_EQ(listing, "before");
}

TEST_F(AppcLoadTest, PackageNamesAreAppended) {
    ASSERT_EQ(init(kTwoApps), 0);
    std::list<std::string> list{"first"};
    appcGetPackages(store, list);
    EXPECT_EQ(list, (std::list<std::string>{"first", "com.a", "com.b"}));
}

TEST_F(AppcLoadTest, ALockThatCannotBeMadeIsTheResultAndTheCacheIsEmpty) {
    AppcStore product(appcDiskFiles(), data.path() + "\\", "");
    write(kTwoApps);
    ASSERT_EQ(appcLibInit(product, "Nougat64"), 0);
    EXPECT_EQ(appcLibInit(product, "a\\b"), -1);
    ASSERT_EQ(log.texts().size(), 1u) << "nothing is loaded";
    EXPECT_EQ(log.texts()[0].rfind(logged::mutexNotMade("Global\\vtr_appc_a\\b_nvo"), 0), 0u)
        << log.texts()[0];
    EXPECT_EQ(packagesOf(product), Lines{});
}

TEST_F(AppcLoadTest, AnInstanceNameThatIsNotUtf8HasNoLock) {
    EXPECT_EQ(appcLibInit(store, "\xFF"), -1);
    EXPECT_EQ(count(), 0u);
}

TEST_F(AppcLoadTest, AFileThatCannotBeOpenedIsDeletedUnlessItIsHeld) {
    for (const std::int32_t error : {2, 3, 5, 19, 32, 33, 1117, 1392}) {
        write(kTwoApps);
        FailingFiles files;
        files.readError = error;
        ForeignStore closed(data.path(), files);
        log.clear();
        EXPECT_EQ(appcLibInit(closed, "Nougat64"), 0) << error;
        const bool isHeld = error == 32 || error == 33;
        EXPECT_EQ(log.texts(), Lines{isHeld ? logged::cacheKept(file(), error)
                                            : logged::cacheDeleted(file(), error)});
        EXPECT_EQ(packagesOf(closed), Lines{}) << error;
        EXPECT_EQ(exists(), isHeld) << error;
        EXPECT_TRUE(isFileLockFree()) << error;
    }
}

TEST_F(AppcLoadTest, TheFileIsReadUnderItsMachineWideLock) {
    write(kTwoApps);
    LockWatch files(data.path());
    ForeignStore watched(data.path(), files);
    EXPECT_EQ(appcLibInit(watched, "Nougat64"), 0);
    EXPECT_EQ(files.steps, Lines{"read, locked"});
}

TEST_F(AppcLoadTest, EveryOutcomeReleasesTheMachineWideLock) {
    for (const char* text : {"[]", "{}", "[1]", "[{}]"}) {
        static_cast<void>(init(text));
        EXPECT_TRUE(isFileLockFree()) << text;
    }
}

SUBPROCESS(printsTheProcesssStore) {
    LogCapture quiet;
    RegistrySandbox registry;
    registry.set("UserDefinedDir", "D:\\Data");
    std::puts(appcStore().dataDir.c_str());
    std::puts(appcStore().sharedDir.c_str());
    std::puts(appcStore().instanceDir("Jeux").c_str());
    return &appcStore() == &appcStore() ? 0 : 1;
}

TEST(AppcStoreTest, TheProcesssStoreLivesInTheProductsFolders) {
    const ChildResult result = runSubprocess("printsTheProcesssStore");
    EXPECT_EQ(result.status, 0u);
    EXPECT_EQ(logMessages(result.out),
              (Lines{"D:\\Data\\", "D:\\Data\\/Engine/UserData/SharedFolder/",
                     "D:\\Data\\Engine/Jeux/AppCache/"}));
}

TEST(AppcErrorText, IsTheSystems) {
    for (const std::int32_t error : {2, 3, 5, 19, 32, 33, 1117, 1392}) {
        EXPECT_EQ(appcErrorText(error), systemErrorText(error)) << error;
    }
}
