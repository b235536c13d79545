#include "ConfFixture.h"
#include "HookedFiles.h"
#include "conf/ConfLoad.h"
#include "support/HeldFile.h"
#include "support/LogLines.h"
#include "xpl/XmutexNamed.h"

namespace {

using ConfLoadTest = ConfTest;

std::set<std::string, std::less<>> names(std::initializer_list<const char*> list) {
    return {list.begin(), list.end()};
}

}  // namespace

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

TEST_F(ConfLoadTest, AFileThatEndsInALineFeedLoads) {
    EXPECT_EQ(init("vtr.locale=\"en-US\"\n"), 0);
    EXPECT_EQ(committed("vtr.locale"), "en-US");
}

TEST_F(ConfLoadTest, AFileThatEndsWithoutOneLoads) {
    EXPECT_EQ(init("vtr.locale=\"en-US\""), 0);
    EXPECT_EQ(committed("vtr.locale"), "en-US");
}

TEST_F(ConfLoadTest, OneKeyMakesAnInstanceKnownWithAllItsDefaults) {
    ASSERT_EQ(init("vtr.instance.Nougat64.dpi=\"320\"\n"), 0);
    EXPECT_EQ(confGetInstances(store), names({"Nougat64"}));
    Entries expected;
    addInstanceDefaults(expected, "Nougat64");
    expected["vtr.instance.Nougat64.dpi"] = "320";
    EXPECT_EQ(committedCount(), globalCount() + instanceCount());
    for (const auto& [key, value] : expected) EXPECT_EQ(committed(key), value) << key;
}

TEST_F(ConfLoadTest, KeysComeInAnyOrderAndTheLastOneWins) {
    ASSERT_EQ(init("vtr.instance.B.ram=\"1\"\nvtr.instance.A.ram=\"2\"\nvtr.locale=\"a\"\n"
                   "vtr.instance.B.cpus=\"3\"\nvtr.instance.B.ram=\"4\"\nvtr.locale=\"b\"\n"),
              0);
    EXPECT_EQ(committed("vtr.instance.A.ram"), "2");
    EXPECT_EQ(committed("vtr.instance.B.ram"), "4");
    EXPECT_EQ(committed("vtr.instance.B.cpus"), "3");
    EXPECT_EQ(committed("vtr.locale"), "b");
}

TEST_F(ConfLoadTest, AnEmptyInstanceNameIsAName) {
    ASSERT_EQ(init("vtr.instance..dpi=\"1\"\n"), 0);
    EXPECT_EQ(confGetInstances(store), names({""}));
    EXPECT_EQ(committed("vtr.instance..dpi"), "1");
}

TEST_F(ConfLoadTest, AMissingFileFails) {
    EXPECT_EQ(confLibInit(store, path(), false), -1);
    EXPECT_EQ(log.texts(), Lines{logged::confNotOpened(path())});
    EXPECT_EQ(committedCount(), globalCount()) << "the defaults stay usable";
}

TEST_F(ConfLoadTest, AFolderInPlaceOfTheFileFails) {
    folder.makeFolder("vantrel.conf");
    EXPECT_EQ(confLibInit(store, path(), false), -1);
    EXPECT_EQ(log.texts(), Lines{logged::confNotOpened(path())});
}

TEST_F(ConfLoadTest, AFileHeldByAnotherProgramFails) {
    if (!HeldFile::isPossible()) GTEST_SKIP() << HeldFile::kNeedsWindows;
    folder.write("vantrel.conf", "vtr.locale=\"x\"\n");
    HeldFile held(path());
    EXPECT_EQ(confLibInit(store, path(), false), -1);
    held.release();
    EXPECT_EQ(log.texts(), Lines{logged::confNotOpened(path())});
    EXPECT_EQ(folder.read("vantrel.conf"), "vtr.locale=\"x\"\n");
}

TEST_F(ConfLoadTest, ABlankLineStopsTheLoadAfterTheLinesBeforeIt) {
    EXPECT_EQ(init("vtr.locale=\"a\"\n\nvtr.guid=\"b\"\n"), -1);
    EXPECT_EQ(log.texts(), Lines{logged::confMalformed("")});
    EXPECT_EQ(committed("vtr.locale"), "a");
    EXPECT_EQ(committed("vtr.guid"), "");
}

TEST_F(ConfLoadTest, ALineWithoutEqualsStopsTheLoad) {
    EXPECT_EQ(init("vtr.locale=\"a\"\nnonsense\n"), -1);
    EXPECT_EQ(log.texts(), Lines{logged::confMalformed("nonsense")});
}

TEST_F(ConfLoadTest, ALineOf4097BytesStopsTheLoad) {
    const std::string line = "vtr.guid=\"" + std::string(4097 - 11, 'x') + "\"";
    ASSERT_EQ(line.size(), 4097u);
    EXPECT_EQ(init(line + "\n"), -1);
    EXPECT_EQ(log.texts(), Lines{logged::confMalformed(line)});
}

TEST_F(ConfLoadTest, LinesOf4094To4096BytesLoad) {
    for (const std::size_t size : {4094u, 4095u, 4096u}) {
        const std::string value(size - 11, 'x');
        EXPECT_EQ(init("vtr.guid=\"" + value + "\"\n"), 0) << size;
        EXPECT_EQ(committed("vtr.guid"), value) << size;
    }
}

TEST_F(ConfLoadTest, AnUnknownGlobalPropertyStopsTheLoad) {
    EXPECT_EQ(init("vtr.unknown=\"1\"\n"), -1);
    EXPECT_EQ(log.texts(), Lines{logged::keyUnknownIn("vtr.unknown=\"1\"")});
}

TEST_F(ConfLoadTest, AnUnknownInstancePropertyStopsTheLoad) {
    EXPECT_EQ(init("vtr.instance.A.dpi=\"1\"\nvtr.instance.A.locale=\"x\"\n"), -1);
    EXPECT_EQ(log.texts(), Lines{logged::keyUnknownIn("vtr.instance.A.locale=\"x\"", "iprop")});
    EXPECT_EQ(confGetInstances(store), names({"A"}));
}

TEST_F(ConfLoadTest, AnInstanceKeyWithoutAPropertyStopsTheLoad) {
    EXPECT_EQ(init("vtr.instance.A=\"1\"\n"), -1);
    EXPECT_EQ(log.texts(), Lines{logged::keyUnknownIn("vtr.instance.A=\"1\"", "iprop")});
    EXPECT_TRUE(confGetInstances(store).empty());
}

TEST_F(ConfLoadTest, AnInstancePropertyIsNoGlobalOne) {
    EXPECT_EQ(init("vtr.dpi=\"1\"\n"), -1);
    EXPECT_EQ(log.texts(), Lines{logged::keyUnknownIn("vtr.dpi=\"1\"")});
}

TEST_F(ConfLoadTest, AForeignKeyStopsTheLoad) {
    EXPECT_EQ(init("other.key=\"1\"\n"), -1);
    EXPECT_EQ(log.texts(), Lines{logged::keyUnknownIn("other.key=\"1\"")});
}

TEST_F(ConfLoadTest, AByteOrderMarkMakesTheFirstKeyAForeignOne) {
    EXPECT_EQ(init("\xEF\xBB\xBFvtr.locale=\"a\"\nvtr.guid=\"b\"\n"), -1);
    EXPECT_EQ(log.texts(), Lines{logged::keyUnknownIn("\xEF\xBB\xBFvtr.locale=\"a\"")});
    EXPECT_EQ(committed("vtr.locale"), "") << "no line was applied";
    EXPECT_EQ(committed("vtr.guid"), "");
}

TEST_F(ConfLoadTest, ALineThatEndsAtItsSignThrowsWithEveryLockReleased) {
    EXPECT_THROW(static_cast<void>(init("vtr.locale=\"a\"\nvtr.guid=\n")), std::out_of_range);
    EXPECT_EQ(committed("vtr.locale"), "a");
    folder.write("vantrel.conf", "vtr.guid=\"b\"\n");
    EXPECT_EQ(confReload(store), 0);
    EXPECT_EQ(committed("vtr.guid"), "b");
}

TEST_F(ConfLoadTest, ALineThatEndsOneBehindItsSignIsAnEmptyValue) {
    EXPECT_EQ(init("vtr.mem_opt_mode=\"\n"), 0);
    EXPECT_EQ(committed("vtr.mem_opt_mode"), "");
}

TEST_F(ConfLoadTest, WithCarriageReturnsEachValueKeepsItsClosingQuote) {
    EXPECT_EQ(init("vtr.locale=\"en\"\r\nvtr.guid=\"g\"\r\n"), 0);
    EXPECT_EQ(committed("vtr.locale"), "en\"");
    EXPECT_EQ(committed("vtr.guid"), "g\"");
}

TEST_F(ConfLoadTest, ANulEndsAValue) {
    EXPECT_EQ(init({"vtr.locale=\"en\0us\"\n", 19}), 0);
    EXPECT_EQ(committed("vtr.locale"), "en");
}

TEST_F(ConfLoadTest, ANulInAKeyIsPartOfIt) {
    EXPECT_EQ(init({"vtr.loc\0ale=\"en\"\n", 17}), -1);
    EXPECT_EQ(log.texts(), Lines{logged::keyUnknownIn("vtr.loc")});
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
    ASSERT_EQ(init("vtr.locale=\"a\"\nvtr.instance.A.dpi=\"1\"\nvtr.instance.B.dpi=\"2\"\n"), 0);
    folder.write("vantrel.conf", "vtr.instance.B.ram=\"3\"\n");
    ASSERT_EQ(confReload(store), 0);
    EXPECT_EQ(committed("vtr.locale"), "a");
    EXPECT_EQ(committed("vtr.instance.A.dpi"), "1");
    EXPECT_EQ(committed("vtr.instance.B.dpi"), "2");
    EXPECT_EQ(committed("vtr.instance.B.ram"), "3");
    EXPECT_EQ(confGetInstances(store), names({"B"})) << "but the instance set is the file's";
}

TEST_F(ConfLoadTest, AReloadThatMeetsABadLineKnowsTheInstancesOfTheLinesBeforeIt) {
    ASSERT_EQ(init("vtr.instance.A.dpi=\"1\"\nvtr.instance.B.dpi=\"2\"\n"), 0);
    folder.write("vantrel.conf", "vtr.instance.A.dpi=\"3\"\nnonsense\nvtr.instance.B.dpi=\"4\"\n");
    EXPECT_EQ(confReload(store), -1);
    EXPECT_EQ(log.texts(), Lines{logged::confMalformed("nonsense")});
    EXPECT_EQ(confGetInstances(store), names({"A"}));
    EXPECT_EQ(committed("vtr.instance.A.dpi"), "3");
    EXPECT_EQ(committed("vtr.instance.B.dpi"), "2") << "still to be read by its key";
    folder.write("vantrel.conf", "vtr.instance.A.dpi=\"3\"\nvtr.instance.B.dpi=\"4\"\n");
    EXPECT_EQ(confReload(store), 0);
    EXPECT_EQ(confGetInstances(store), names({"A", "B"}));
}

TEST_F(ConfLoadTest, AFailedOpenKeepsTheInstances) {
    ASSERT_EQ(init("vtr.instance.A.dpi=\"1\"\n"), 0);
    removeFile(path());
    EXPECT_EQ(confReload(store), -1);
    EXPECT_EQ(confGetInstances(store), names({"A"}));
}

TEST_F(ConfLoadTest, AReloadKeepsPendingChangesAndTheCurrentInstance) {
    ASSERT_EQ(init("vtr.instance.A.dpi=\"1\"\n"), 0);
    ASSERT_EQ(confSetCurrentInstance(store, "A"), 0);
    confSetString(store, "vtr.locale", "pending");
    folder.write("vantrel.conf", "vtr.locale=\"file\"\n");
    ASSERT_EQ(confReload(store), 0);
    EXPECT_EQ(committed("vtr.locale"), "file");
    EXPECT_EQ(confGetString(store, "vtr.locale"), "pending");
    EXPECT_EQ(confGetCurrentInstance(store), "A");
}

TEST_F(ConfLoadTest, ASecondInitialisationPutsTheGlobalDefaultsBackFirst) {
    ASSERT_EQ(init("vtr.locale=\"a\"\nvtr.instance.A.dpi=\"1\"\n"), 0);
    ASSERT_EQ(init("vtr.instance.B.dpi=\"2\"\n"), 0);
    EXPECT_EQ(committed("vtr.locale"), "");
    EXPECT_EQ(committed("vtr.instance.A.dpi"), "1") << "instance keys are not touched";
}

TEST_F(ConfLoadTest, AddingAnInstanceOverwritesNothing) {
    ASSERT_EQ(init("vtr.instance.A.dpi=\"1\"\n"), 0);
    EXPECT_EQ(confAddInstance(store, "A"), 0);
    EXPECT_EQ(confAddInstance(store, "B"), 0);
    EXPECT_EQ(committed("vtr.instance.A.dpi"), "1");
    EXPECT_EQ(committed("vtr.instance.B.dpi"), "240");
    EXPECT_EQ(confGetInstances(store), names({"A", "B"}));
}

TEST_F(ConfLoadTest, TheMutexOfAllProgramsHasTheProductsName) {
    EXPECT_EQ(ConfStore(catalogue, confDiskFiles()).fileLockName, "Global\\vtr_conf_nvo");
}

TEST_F(ConfLoadTest, ALoadWaitsForTheMachineWideMutex) {
    ASSERT_EQ(init("vtr.locale=\"old\"\n"), 0);
    XmutexNamed other;
    ASSERT_EQ(other.init(store.fileLockName), 0);
    other.lock();
    std::thread reload([this] { EXPECT_EQ(confReload(store), 0); });
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    folder.write("vantrel.conf", "vtr.locale=\"new\"\n");
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
    EXPECT_EQ(confGetInstances(broken), names({"A"}));
    EXPECT_EQ(confGetString(broken, "vtr.locale"), "a");
    EXPECT_EQ(confGetI32(broken, "vtr.instance.A.dpi"), 1);
}

TEST_F(ConfLoadTest, DeprecatedKeysAreRemembered) {
    ConfCatalogue old = confProductCatalogue();
    old.registerGlobal("old", {ConfType::String, "d", false, true});
    old.registerInstance("old", {ConfType::String, "", false, true});
    ConfStore other(old, confDiskFiles());
    load(other, "vtr.instance.A.old=\"1\"\n", /*allowDeprecated=*/true);
    const std::lock_guard<std::mutex> guard(other.lock);
    EXPECT_EQ(other.deprecated, names({"vtr.old", "vtr.instance.A.old"}));
}

TEST_F(ConfLoadTest, TheLoadItselfRemembersADeprecatedGlobalKey) {
    ConfCatalogue old;
    old.registerGlobal("old", {ConfType::String, "d", false, true});
    ConfStore other(old, confDiskFiles());
    folder.write("vantrel.conf", "vtr.old=\"1\"\n");
    const std::lock_guard<std::mutex> guard(other.lock);
    const std::lock_guard<XsharedMutex> changing(other.viewLock);
    other.path = path();
    ASSERT_EQ(confReport(confApplyFile(other, folder.read("vantrel.conf"))), 0);
    EXPECT_EQ(other.deprecated, names({"vtr.old"}));
}

TEST_F(ConfLoadTest, AFailureToCreateTheMutexIsReturned) {
    store.fileLockName = "Global\\vtr_test_\xFF";
    EXPECT_EQ(init("vtr.locale=\"a\"\n"), -1);
    EXPECT_EQ(log.texts(), Lines{logged::mutexNotMade(store.fileLockName, "1113")});
    EXPECT_EQ(committed("vtr.locale"), "") << "nothing is read without the lock";
}

TEST_F(ConfLoadTest, ACatalogueWithoutInstancePropertiesKnowsNoInstance) {
    ConfCatalogue globalsOnly;
    globalsOnly.registerGlobal("locale", {ConfType::String, ""});
    ConfStore other(globalsOnly, confDiskFiles());
    folder.write("vantrel.conf", "vtr.locale=\"a\"\nvtr.instance.A.dpi=\"1\"\n");
    EXPECT_EQ(confLibInit(other, path(), false), -1);
    EXPECT_EQ(log.texts(), Lines{logged::keyUnknownIn("vtr.instance.A.dpi=\"1\"", "iprop")});
    EXPECT_EQ(confGetString(other, "vtr.locale"), "a");
}
