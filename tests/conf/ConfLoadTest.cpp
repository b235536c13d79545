#include "ConfFixture.h"
#include "HookedFiles.h"
#include "conf/ConfLoad.h"
#include "support/HeldFile.h"
#include "support/LogLines.h"
#include "support/Rows.h"
#include "xpl/XmutexNamed.h"

namespace {

class ConfLoadTest : public ConfTest {
 protected:
    void expectNotOpened() {
        EXPECT_EQ(confLibInit(store, path(), false), -1);
        EXPECT_EQ(log.texts(), Lines{logged::confNotOpened(path())});
    }
};

// A file that loads, and what the store then holds.
struct GoodFile {
    const char* name;
    std::string content;
    Entries values;
};

const GoodFile kGoodFiles[] = {
    {"AFileThatEndsInALineFeed", "vtr.locale=\"en-US\"\n", {{"vtr.locale", "en-US"}}},
    {"AFileThatEndsWithoutOne", "vtr.locale=\"en-US\"", {{"vtr.locale", "en-US"}}},
    {"AValueOfOneQuoteIsEmpty", "vtr.mem_opt_mode=\"\n", {{"vtr.mem_opt_mode", ""}}},
    {"ANulEndsAValue", {"vtr.locale=\"en\0us\"\n", 19}, {{"vtr.locale", "en"}}},
    {"WithCarriageReturnsEachValueKeepsItsClosingQuote",
     "vtr.locale=\"en\"\r\nvtr.guid=\"g\"\r\n",
     {{"vtr.locale", "en\""}, {"vtr.guid", "g\""}}},
};

CASE_PER_ROW(ConfGoodFile, ConfTest, kGoodFiles);

// A file whose load stops, and the log's line.
struct BadFile {
    const char* name;
    std::string content;
    std::string line;
};

std::string keyUnknown(const std::string& line, const std::string& directory = "prop") {
    return logged::keyUnknown(line.substr(0, line.find('=')), directory) + ": " + line;
}

const std::string kLongLine = "vtr.guid=\"" + std::string(4097 - 11, 'x') + "\"";

const BadFile kBadFiles[] = {
    {"ALineWithoutEquals", "vtr.locale=\"a\"\nnonsense\n", logged::confMalformed("nonsense")},
    {"ALineOf4097Bytes", kLongLine + "\n", logged::confMalformed(kLongLine)},
    {"AnUnknownGlobalProperty", "vtr.unknown=\"1\"\n", keyUnknown("vtr.unknown=\"1\"")},
    {"AnInstancePropertyIsNotAGlobalOne", "vtr.dpi=\"1\"\n", keyUnknown("vtr.dpi=\"1\"")},
    {"AnInstanceKeyWithoutAProperty", "vtr.instance.A=\"1\"\n",
     keyUnknown("vtr.instance.A=\"1\"", "iprop")},
    {"AForeignKey", "other.key=\"1\"\n", keyUnknown("other.key=\"1\"")},
    {"ANulInAKeyIsPartOfIt", {"vtr.loc\0ale=\"en\"\n", 17}, keyUnknown("vtr.loc")},
};

CASE_PER_ROW(ConfBadFile, ConfTest, kBadFiles);

}  // namespace

TEST_P(ConfGoodFile, Loads) {
    EXPECT_EQ(init(GetParam().content), 0);
    EXPECT_EQ(log.texts(), Lines{});
    for (const auto& [key, value] : GetParam().values) EXPECT_EQ(committed(key), value);
}

TEST_P(ConfBadFile, StopsTheLoad) {
    EXPECT_EQ(init(GetParam().content), -1);
    EXPECT_EQ(log.texts(), Lines{GetParam().line});
    EXPECT_TRUE(confGetInstances(store).empty());
}

TEST_F(ConfLoadTest, WithoutAFileTheMapHoldsTheGlobalDefaults) {
    ASSERT_EQ(initWithoutFile(), 0);
    EXPECT_EQ(committedCount(), globalCount());
    for (const auto& [key, value] : globalDefaults()) EXPECT_EQ(committed(key), value) << key;
    EXPECT_TRUE(confGetInstances(store).empty());
}

TEST_F(ConfLoadTest, AnEmptyFileLoadsNothing) {
    EXPECT_EQ(init(""), 0);
    EXPECT_EQ(committedCount(), globalCount());
    EXPECT_EQ(log.texts(), Lines{});
}

TEST_F(ConfLoadTest, OneKeyMakesAnInstanceKnownWithAllItsDefaults) {
    given("vtr.instance.Nougat64.dpi=\"320\"\n");
    EXPECT_EQ(confGetInstances(store), Names{"Nougat64"});
    Entries expected;
    addInstanceDefaults(expected, "Nougat64");
    expected["vtr.instance.Nougat64.dpi"] = "320";
    EXPECT_EQ(committedCount(), globalCount() + instanceCount());
    for (const auto& [key, value] : expected) EXPECT_EQ(committed(key), value) << key;
}

TEST_F(ConfLoadTest, KeysComeInAnyOrderAndTheLastOneWins) {
    given(
        "vtr.instance.B.ram=\"1\"\nvtr.instance.A.ram=\"2\"\nvtr.locale=\"a\"\n"
        "vtr.instance.B.cpus=\"3\"\nvtr.instance.B.ram=\"4\"\nvtr.locale=\"b\"\n");
    EXPECT_EQ(committed("vtr.instance.A.ram"), "2");
    EXPECT_EQ(committed("vtr.instance.B.ram"), "4");
    EXPECT_EQ(committed("vtr.instance.B.cpus"), "3");
    EXPECT_EQ(committed("vtr.locale"), "b");
}

TEST_F(ConfLoadTest, AnEmptyInstanceNameIsAName) {
    given("vtr.instance..dpi=\"1\"\n");
    EXPECT_EQ(confGetInstances(store), Names{""});
    EXPECT_EQ(committed("vtr.instance..dpi"), "1");
}

TEST_F(ConfLoadTest, ABlankLineStopsTheLoadAfterTheLinesBeforeIt) {
    EXPECT_EQ(init("vtr.locale=\"a\"\n\nvtr.guid=\"b\"\n"), -1);
    EXPECT_EQ(log.texts(), Lines{logged::confMalformed("")});
    EXPECT_EQ(committed("vtr.locale"), "a");
    EXPECT_EQ(committed("vtr.guid"), "");
}

TEST_F(ConfLoadTest, AnUnknownInstancePropertyStopsTheLoad) {
    EXPECT_EQ(init("vtr.instance.A.dpi=\"1\"\nvtr.instance.A.locale=\"x\"\n"), -1);
    EXPECT_EQ(log.texts(), Lines{keyUnknown("vtr.instance.A.locale=\"x\"", "iprop")});
    EXPECT_EQ(confGetInstances(store), Names{"A"});
}

TEST_F(ConfLoadTest, AByteOrderMarkMakesTheFirstKeyForeign) {
    EXPECT_EQ(init("\xEF\xBB\xBFvtr.locale=\"a\"\nvtr.guid=\"b\"\n"), -1);
    EXPECT_EQ(log.texts(), Lines{keyUnknown("\xEF\xBB\xBFvtr.locale=\"a\"")});
    EXPECT_EQ(committed("vtr.locale"), "") << "no line was applied";
    EXPECT_EQ(committed("vtr.guid"), "");
}

TEST_F(ConfLoadTest, AMissingFileFails) {
    expectNotOpened();
    EXPECT_EQ(committedCount(), globalCount()) << "the defaults stay usable";
}

TEST_F(ConfLoadTest, AFolderInPlaceOfTheFileFails) {
    folder.makeFolder("vantrel.conf");
    expectNotOpened();
}

TEST_F(ConfLoadTest, AFileHeldByAnotherProgramFails) {
    if (!HeldFile::isPossible()) GTEST_SKIP() << HeldFile::kNeedsWindows;
    writeFile("vtr.locale=\"x\"\n");
    HeldFile held(path());
    expectNotOpened();
    held.release();
    EXPECT_EQ(file(), "vtr.locale=\"x\"\n");
}

TEST_F(ConfLoadTest, LinesOf4094To4096BytesLoad) {
    for (const std::size_t size : {4094u, 4095u, 4096u}) {
        const std::string value(size - 11, 'x');
        EXPECT_EQ(init("vtr.guid=\"" + value + "\"\n"), 0) << size;
        EXPECT_EQ(committed("vtr.guid"), value) << size;
    }
}

TEST_F(ConfLoadTest, ALineThatEndsAtItsEqualsThrowsWithEveryLockReleased) {
    EXPECT_THROW(static_cast<void>(init("vtr.locale=\"a\"\nvtr.guid=\n")), std::out_of_range);
    EXPECT_EQ(committed("vtr.locale"), "a");
    writeFile("vtr.guid=\"b\"\n");
    EXPECT_EQ(confReload(store), 0);
    EXPECT_EQ(committed("vtr.guid"), "b");
}

TEST_F(ConfLoadTest, AFileOf50MegabytesOnOneLineIsRefused) {
    EXPECT_EQ(init(std::string(50 << 20, 'x')), -1);
    EXPECT_EQ(log.texts().size(), 1u);
}

TEST_F(ConfLoadTest, AFileOf50MegabytesOfEntriesLoads) {
    std::string text;
    const std::string value(4000, 'v');
    while (text.size() < (50u << 20)) text += "vtr.guid=\"" + value + "\"\n";
    EXPECT_EQ(init(text), 0);
    EXPECT_EQ(committed("vtr.guid"), value);
}

TEST_F(ConfLoadTest, AReloadKeepsKeysThatTheFileLost) {
    given("vtr.locale=\"a\"\nvtr.instance.A.dpi=\"1\"\nvtr.instance.B.dpi=\"2\"\n");
    writeFile("vtr.instance.B.ram=\"3\"\n");
    ASSERT_EQ(confReload(store), 0);
    EXPECT_EQ(committed("vtr.locale"), "a");
    EXPECT_EQ(committed("vtr.instance.A.dpi"), "1");
    EXPECT_EQ(committed("vtr.instance.B.dpi"), "2");
    EXPECT_EQ(committed("vtr.instance.B.ram"), "3");
    EXPECT_EQ(confGetInstances(store), Names{"B"}) << "the instance set is the file's";
}

TEST_F(ConfLoadTest, AReloadThatMeetsABadLineListsTheInstancesOfTheLinesBeforeIt) {
    given("vtr.instance.A.dpi=\"1\"\nvtr.instance.B.dpi=\"2\"\n");
    writeFile("vtr.instance.A.dpi=\"3\"\nnonsense\nvtr.instance.B.dpi=\"4\"\n");
    EXPECT_EQ(confReload(store), -1);
    EXPECT_EQ(log.texts(), Lines{logged::confMalformed("nonsense")});
    EXPECT_EQ(confGetInstances(store), Names{"A"});
    EXPECT_EQ(committed("vtr.instance.A.dpi"), "3");
    EXPECT_EQ(committed("vtr.instance.B.dpi"), "2") << "its key can still be read";
    writeFile("vtr.instance.A.dpi=\"3\"\nvtr.instance.B.dpi=\"4\"\n");
    EXPECT_EQ(confReload(store), 0);
    EXPECT_EQ(confGetInstances(store), (Names{"A", "B"}));
}

TEST_F(ConfLoadTest, AFailedOpenKeepsTheInstances) {
    given("vtr.instance.A.dpi=\"1\"\n");
    removeFile(path());
    EXPECT_EQ(confReload(store), -1);
    EXPECT_EQ(confGetInstances(store), Names{"A"});
}

TEST_F(ConfLoadTest, AReloadKeepsPendingChangesAndTheCurrentInstance) {
    given("vtr.instance.A.dpi=\"1\"\n");
    ASSERT_EQ(confSetCurrentInstance(store, "A"), 0);
    set("vtr.locale", "pending");
    writeFile("vtr.locale=\"file\"\n");
    ASSERT_EQ(confReload(store), 0);
    EXPECT_EQ(committed("vtr.locale"), "file");
    EXPECT_EQ(confGetString(store, "vtr.locale"), "pending");
    EXPECT_EQ(confGetCurrentInstance(store), "A");
}

TEST_F(ConfLoadTest, ASecondInitialisationPutsTheGlobalDefaultsBackFirst) {
    given("vtr.locale=\"a\"\nvtr.instance.A.dpi=\"1\"\n");
    given("vtr.instance.B.dpi=\"2\"\n");
    EXPECT_EQ(committed("vtr.locale"), "");
    EXPECT_EQ(committed("vtr.instance.A.dpi"), "1") << "instance keys are not touched";
}

TEST_F(ConfLoadTest, AddingAnInstanceOverwritesNothing) {
    given("vtr.instance.A.dpi=\"1\"\n");
    EXPECT_EQ(confAddInstance(store, "A"), 0);
    EXPECT_EQ(confAddInstance(store, "B"), 0);
    EXPECT_EQ(committed("vtr.instance.A.dpi"), "1");
    EXPECT_EQ(committed("vtr.instance.B.dpi"), "240");
    EXPECT_EQ(confGetInstances(store), (Names{"A", "B"}));
}

TEST_F(ConfLoadTest, TheMutexOfAllProgramsHasTheProductsName) {
    EXPECT_EQ(ConfStore(catalogue, confDiskFiles()).fileLockName, "Global\\vtr_conf_nvo");
}

TEST_F(ConfLoadTest, ALoadWaitsForTheMachineWideMutex) {
    given("vtr.locale=\"old\"\n");
    XmutexNamed other;
    ASSERT_EQ(other.init(store.fileLockName), 0);
    other.lock();
    std::thread reload([this] { EXPECT_EQ(confReload(store), 0); });
    waitUntilLocked();
    writeFile("vtr.locale=\"new\"\n");
    other.unlock();
    reload.join();
    EXPECT_EQ(committed("vtr.locale"), "new");
}

TEST_F(ConfLoadTest, AReadThatFailsIsReported) {
    HookedFiles files(HookedFiles::Step::Read, XERR_IO);
    ConfStore broken(catalogue, files);
    EXPECT_EQ(confLibInit(broken, "C:\\x.conf", false), -1);
    EXPECT_EQ(log.texts(), Lines{logged::confNotRead("C:\\x.conf")});
}

// Without the defaults the read of a bool would be fatal.
TEST_F(ConfLoadTest, AnInitialisationThatThrowsWhileItReadsLeavesTheDefaults) {
    HookedFiles files([](HookedFiles::Step) -> XErr { throw std::bad_alloc(); });
    ConfStore broken(catalogue, files);
    broken.fileLockName = store.fileLockName;
    EXPECT_THROW(static_cast<void>(confLibInit(broken, path(), false)), std::bad_alloc);
    EXPECT_TRUE(confGetBool(broken, "vtr.enable_statusbar"));
}

TEST_F(ConfLoadTest, AReadThatFailsChangesNothing) {
    XErr readable = XERR_SUCCESS;
    HookedFiles files([&readable](HookedFiles::Step) { return readable; });
    ConfStore broken(catalogue, files);
    load(broken, "vtr.locale=\"a\"\nvtr.instance.A.dpi=\"1\"\n");
    readable = XERR_IO;
    EXPECT_EQ(confReload(broken), -1);
    EXPECT_EQ(confGetInstances(broken), Names{"A"});
    EXPECT_EQ(confGetString(broken, "vtr.locale"), "a");
    EXPECT_EQ(confGetI32(broken, "vtr.instance.A.dpi"), 1);
}

TEST_F(ConfLoadTest, DeprecatedKeysAreRemembered) {
    ConfCatalogue old = confProductCatalogue();
    old.registerGlobal("old", deprecatedText("d"));
    old.registerInstance("old", deprecatedText());
    ConfStore other(old, confDiskFiles());
    load(other, "vtr.instance.A.old=\"1\"\n", /*allowDeprecated=*/true);
    const std::lock_guard<std::mutex> guard(other.lock);
    EXPECT_EQ(other.deprecated, (Names{"vtr.old", "vtr.instance.A.old"}));
}

TEST_F(ConfLoadTest, TheLoadItselfRemembersADeprecatedGlobalKey) {
    ConfCatalogue old;
    old.registerGlobal("old", deprecatedText("d"));
    ConfStore other(old, confDiskFiles());
    writeFile("vtr.old=\"1\"\n");
    const std::lock_guard<std::mutex> guard(other.lock);
    const std::lock_guard<XsharedMutex> changing(other.viewLock);
    other.path = path();
    ASSERT_EQ(confReport(confApplyFile(other, file())), 0);
    EXPECT_EQ(other.deprecated, Names{"vtr.old"});
}

TEST_F(ConfLoadTest, AFailureToCreateTheMutexIsReturned) {
    store.fileLockName = "Global\\vtr_test_\xFF";
    EXPECT_EQ(init("vtr.locale=\"a\"\n"), -1);
    EXPECT_EQ(log.texts(), Lines{logged::mutexNotMade(store.fileLockName, "1113")});
    EXPECT_EQ(committed("vtr.locale"), "") << "nothing is read without the lock";
}

TEST_F(ConfLoadTest, ACatalogueWithoutInstancePropertiesRefusesInstanceKeys) {
    ConfCatalogue globalsOnly;
    globalsOnly.registerGlobal("locale", {ConfType::String, ""});
    ConfStore other(globalsOnly, confDiskFiles());
    writeFile("vtr.locale=\"a\"\nvtr.instance.A.dpi=\"1\"\n");
    EXPECT_EQ(confLibInit(other, path(), false), -1);
    EXPECT_EQ(log.texts(), Lines{keyUnknown("vtr.instance.A.dpi=\"1\"", "iprop")});
    EXPECT_EQ(confGetString(other, "vtr.locale"), "a");
}
