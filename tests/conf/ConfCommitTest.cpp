#include "ConfFixture.h"
#include "HookedFiles.h"
#include "support/HeldFile.h"
#include "support/LogLines.h"
#include "support/Platform.h"
#include "support/SignsOfLife.h"
#include "support/Subprocess.h"
#include "support/SystemAbilities.h"
#include "xpl/XmutexNamed.h"
#include "xpl/Xproc.h"

namespace {

using ConfCommitTest = ConfTest;

using Step = HookedFiles::Step;

}  // namespace

TEST_F(ConfCommitTest, WritesEveryKeyInByteOrder) {
    ASSERT_EQ(init("vtr.instance.Nougat64_2.display_name=\"Ünïcode 日本\"\n"
                   "vtr.instance.Nougat64_10.dpi=\"320\"\nvtr.locale=\"en-US\"\n"),
              0);
    confSetString(store, "vtr.guid", "say \"hi\" = \\x");
    ASSERT_EQ(confCommit(store), 0);
    expectFile({{"vtr.locale", "en-US"},
                {"vtr.guid", "say \"hi\" = \\x"},
                {"vtr.instance.Nougat64_2.display_name", "Ünïcode 日本"},
                {"vtr.instance.Nougat64_10.dpi", "320"}});
    EXPECT_EQ(folder.list(), Lines{"vantrel.conf"});
    EXPECT_EQ(log.texts(), Lines{logged::committing(path())});
    EXPECT_FALSE(confHasPendingChanges(store));
}

TEST_F(ConfCommitTest, WithoutAChangeNothingIsWritten) {
    ASSERT_EQ(init("vtr.locale=\"a\"\n"), 0);
    log.clear();
    EXPECT_EQ(confCommit(store), 0);
    EXPECT_EQ(folder.read("vantrel.conf"), "vtr.locale=\"a\"\n");
    EXPECT_EQ(log.texts(XLOG_VERBOSE), Lines{logged::nothingToCommit()});
}

TEST_F(ConfCommitTest, CommittingToAFileAlwaysWrites) {
    ASSERT_EQ(init("vtr.locale=\"a\"\n"), 0);
    EXPECT_EQ(confCommitToFile(store, folder / "new\\sub\\copy"), 0);
    expectFile({{"vtr.locale", "a"}}, "new\\sub\\copy");
    EXPECT_EQ(folder.read("vantrel.conf"), "vtr.locale=\"a\"\n") << "the loaded file is only read";
}

TEST_F(ConfCommitTest, CommittingToAnotherFileLeavesNothingToCommit) {
    const std::string before = "vtr.locale=\"a\"\n";
    ASSERT_EQ(init(before), 0);
    log.clear();
    const std::string copy = folder / "copy";
    EXPECT_EQ(confSetString(store, "vtr.locale", "b"), 0);
    EXPECT_EQ(confCommitToFile(store, copy), 0);
    EXPECT_FALSE(confHasPendingChanges(store));
    EXPECT_EQ(confCommit(store), 0);
    EXPECT_EQ(log.texts(XLOG_VERBOSE),
              (Lines{logged::committing(copy), logged::nothingToCommit()}));
    expectFile({{"vtr.locale", "b"}}, "copy");
    EXPECT_EQ(folder.read("vantrel.conf"), before) << "the change is in the other file only";
    EXPECT_EQ(folder.list(), (Lines{"copy", "vantrel.conf"}));
}

TEST_F(ConfCommitTest, AChangeThatWentToAnotherFileIsReadUntilTheNextLoad) {
    ASSERT_EQ(init("vtr.locale=\"a\"\n"), 0);
    confSetString(store, "vtr.locale", "b");
    ASSERT_EQ(confCommitToFile(store, folder / "copy"), 0);
    EXPECT_EQ(confGetString(store, "vtr.locale"), "b");
    confSetString(store, "vtr.locale", "b");
    EXPECT_FALSE(confHasPendingChanges(store)) << "setting it again stages nothing";
    ASSERT_EQ(confReload(store), 0);
    EXPECT_EQ(confGetString(store, "vtr.locale"), "a");
}

TEST_F(ConfCommitTest, AChangeThatWentToAnotherFileComesToTheFirstOneOnlyWhereThatLacksTheKey) {
    ASSERT_EQ(init("vtr.locale=\"a\"\n"), 0);
    confSetString(store, "vtr.locale", "b");
    confSetString(store, "vtr.guid", "b");
    ASSERT_EQ(confCommitToFile(store, folder / "copy"), 0);
    confSetString(store, "vtr.country", "c");
    ASSERT_EQ(confCommit(store), 0);
    expectFile({{"vtr.locale", "a"}, {"vtr.guid", "b"}, {"vtr.country", "c"}});
}

TEST_F(ConfCommitTest, WhatOthersCommittedMeanwhileIsKept) {
    ASSERT_EQ(init("vtr.locale=\"a\"\nvtr.guid=\"old\"\n"), 0);
    confSetString(store, "vtr.guid", "mine");
    folder.write("vantrel.conf",
                 "vtr.guid=\"theirs\"\nvtr.locale=\"b\"\nvtr.instance.N.dpi=\"7\"\n");
    ASSERT_EQ(confCommit(store), 0);
    expectFile({{"vtr.guid", "mine"}, {"vtr.locale", "b"}, {"vtr.instance.N.dpi", "7"}});
    EXPECT_EQ(confGetInstances(store).count("N"), 1u);
}

TEST_F(ConfCommitTest, KeysThatAnotherProgramDeletedComeBack) {
    ASSERT_EQ(init("vtr.instance.A.dpi=\"7\"\nvtr.instance.B.dpi=\"8\"\n"), 0);
    folder.write("vantrel.conf", "vtr.instance.B.dpi=\"8\"\n");
    confSetString(store, "vtr.guid", "x");
    ASSERT_EQ(confCommit(store), 0);
    EXPECT_TRUE(hasLine("vtr.instance.A.dpi=\"7\""));
}

TEST_F(ConfCommitTest, ANewInstanceIsMissingFromTheSetUntilTheNextLoad) {
    ASSERT_EQ(init(""), 0);
    confSetI32(store, "vtr.instance.New.ram", 1);
    EXPECT_EQ(confGetInstances(store).size(), 1u);
    ASSERT_EQ(confCommit(store), 0);
    EXPECT_EQ(confGetInstances(store).size(), 0u);
    EXPECT_EQ(confReload(store), 0);
    EXPECT_EQ(confGetInstances(store).size(), 1u);
}

TEST_F(ConfCommitTest, RemovedKeysLeaveTheFile) {
    ASSERT_EQ(init("vtr.instance.A.dpi=\"7\"\n"), 0);
    {
        const std::lock_guard<XsharedMutex> changing(store.viewLock);
        for (const auto& entry : catalogue.instances()) {
            const std::string key = "vtr.instance.A." + entry.first;
            store.view.remove(store.view.value(confFindKey(catalogue, key)));
        }
        store.view.forgetInstances();
    }
    EXPECT_TRUE(confHasPendingChanges(store));
    ASSERT_EQ(confCommit(store), 0);
    expectFile({});
    EXPECT_EQ(confGetInstances(store).count("A"), 1u) << "listed until the next load";
    ASSERT_EQ(confReload(store), 0);
    EXPECT_EQ(confGetInstances(store).count("A"), 0u);
}

TEST_F(ConfCommitTest, DeprecatedKeysAreDroppedFromTheFile) {
    ConfCatalogue old;
    old.registerGlobal("kept", {ConfType::String, "k"});
    old.registerGlobal("old", {ConfType::String, "d", false, true});
    ConfStore other(old, confDiskFiles());
    load(other, "vtr.old=\"x\"\n", /*allowDeprecated=*/true);
    EXPECT_EQ(confGetString(other, "vtr.old"), "x");
    ASSERT_EQ(confCommitToFile(other, path()), 0);
    EXPECT_EQ(folder.read("vantrel.conf"), "vtr.kept=\"k\"\n");
}

TEST_F(ConfCommitTest, WithCarriageReturnsTheClosingQuotesStay) {
    ASSERT_EQ(init("vtr.locale=\"en\"\r\n"), 0);
    ASSERT_EQ(confCommitToFile(store, path()), 0);
    EXPECT_TRUE(hasLine("vtr.locale=\"en\"\""));
}

TEST_F(ConfCommitTest, ATemporaryFileThatCannotBeCreatedChangesNothing) {
    ASSERT_EQ(init("vtr.locale=\"a\"\n"), 0);
    folder.makeFolder("vantrel.conf-temp");
    confSetString(store, "vtr.guid", "x");
    log.clear();
    EXPECT_EQ(confCommit(store), XERR_ACCES);
    EXPECT_EQ(log.texts(), (Lines{logged::committing(path()),
                                  "E CONF confCommitToFile: xfileOpen failed, err = 13 "
                                  "[XERR_ACCES]"}));
    EXPECT_TRUE(confHasPendingChanges(store));
    EXPECT_EQ(folder.read("vantrel.conf"), "vtr.locale=\"a\"\n");
    EXPECT_TRUE(folder.has("vantrel.conf-temp"));
}

TEST_F(ConfCommitTest, AFileInPlaceOfTheFolderIsAFailedOpen) {
    ASSERT_EQ(init(""), 0);
    folder.write("file", "x");
    log.clear();
    EXPECT_EQ(confCommitToFile(store, folder / "file\\sub\\copy"), XERR_NOENT);
    EXPECT_EQ(log.texts().back(),
              "E CONF confCommitToFile: xfileOpen failed, err = 2 [XERR_NOENT]");
    EXPECT_EQ(folder.read("file"), "x");
}

TEST_F(ConfCommitTest, AFailedReloadKeepsTheChangesPending) {
    ASSERT_EQ(init("vtr.locale=\"a\"\n"), 0);
    confSetString(store, "vtr.guid", "x");
    folder.write("vantrel.conf", "broken\n");
    log.clear();
    EXPECT_EQ(confCommit(store), -1);
    EXPECT_EQ(log.texts().back(), logged::confMalformed("broken"));
    EXPECT_EQ(folder.list(), Lines{"vantrel.conf"});
    EXPECT_EQ(folder.read("vantrel.conf"), "broken\n");
    EXPECT_TRUE(confIsPropPending(store, "vtr.guid"));
}

TEST_F(ConfCommitTest, AMissingConfFileIsNeverCreated) {
    ASSERT_EQ(confLibInit(store, path(), false), -1);
    confSetString(store, "vtr.guid", "x");
    EXPECT_EQ(confCommit(store), -1);
    EXPECT_EQ(folder.list(), Lines{});
}

TEST_F(ConfCommitTest, AnExceptionInTheReloadDeletesTheTemporaryFile) {
    ASSERT_EQ(init("vtr.locale=\"a\"\n"), 0);
    confSetString(store, "vtr.guid", "x");
    folder.write("vantrel.conf", "vtr.locale=");
    EXPECT_THROW(static_cast<void>(confCommit(store)), std::out_of_range);
    EXPECT_EQ(folder.list(), Lines{"vantrel.conf"});
    folder.write("vantrel.conf", "");
    EXPECT_EQ(confCommit(store), 0) << "every lock was released";
}

TEST_F(ConfCommitTest, WithoutAConfFileTheMoveFails) {
    ASSERT_EQ(initWithoutFile(), 0);
    confSetString(store, "vtr.guid", "x");
    log.clear();
    {
        const InFolder here(folder.path());
        EXPECT_EQ(confCommit(store), XERR_NOENT);
    }
    EXPECT_EQ(log.texts(),
              (Lines{logged::committing(""), logged::confNotReplaced("2 [XERR_NOENT]")}));
    EXPECT_EQ(folder.list(), Lines{}) << "\"-temp\" is deleted";
    EXPECT_FALSE(confHasPendingChanges(store));
    EXPECT_EQ(committed("vtr.guid"), "x") << "the change is only in memory";
}

TEST_F(ConfCommitTest, AFailedMoveDeletesTheTemporaryFile) {
    ASSERT_EQ(init(""), 0);
    folder.makeFolder("target");
    log.clear();
    EXPECT_EQ(confCommitToFile(store, folder / "target"), XERR_ACCES);
    EXPECT_EQ(log.texts().back(), logged::confNotReplaced("13 [XERR_ACCES]"));
    EXPECT_EQ(folder.list(), (Lines{"target", "vantrel.conf"}));
}

TEST_F(ConfCommitTest, AFileHeldForAMomentIsReplacedAllTheSame) {
    if (!HeldFile::isPossible()) GTEST_SKIP() << HeldFile::kNeedsWindows;
    ASSERT_EQ(init("vtr.locale=\"a\"\n"), 0);
    confSetString(store, "vtr.locale", "b");
    const BrieflyHeldFile held(path(), HeldFile::Shares::ReadAndWrite);
    EXPECT_EQ(confCommit(store), 0);
    EXPECT_TRUE(hasLine("vtr.locale=\"b\""));
}

TEST_F(ConfCommitTest, AFileHeldForLongStaysAndTheTemporaryFileGoes) {
    if (!HeldFile::isPossible()) GTEST_SKIP() << HeldFile::kNeedsWindows;
    ASSERT_EQ(init("vtr.locale=\"a\"\n"), 0);
    confSetString(store, "vtr.locale", "b");
    HeldFile held(path(), HeldFile::Shares::ReadAndWrite);
    const XErr err = confCommit(store);
    held.release();
    EXPECT_TRUE(err == XERR_ACCES || err == 100032) << err;
    EXPECT_EQ(folder.list(), Lines{"vantrel.conf"});
    EXPECT_EQ(folder.read("vantrel.conf"), "vtr.locale=\"a\"\n");
}

TEST_F(ConfCommitTest, AReadOnlyFileStaysAndTheTemporaryFileGoes) {
    if (readOnlyFilesAreReplaced()) {
        GTEST_SKIP() << "needs Wine 10 or Windows, where a read-only file is not replaced";
    }
    ASSERT_EQ(init("vtr.locale=\"a\"\n"), 0);
    confSetString(store, "vtr.locale", "b");
    std::filesystem::permissions(systemPath(path()), std::filesystem::perms::owner_read);
    log.clear();
    EXPECT_EQ(confCommit(store), XERR_ACCES);
    std::filesystem::permissions(systemPath(path()), std::filesystem::perms::all);
    EXPECT_EQ(log.texts().back(), logged::confNotReplaced("13 [XERR_ACCES]"));
    EXPECT_EQ(folder.list(), Lines{"vantrel.conf"});
    EXPECT_EQ(folder.read("vantrel.conf"), "vtr.locale=\"a\"\n");
}

TEST_F(ConfCommitTest, AFailedWriteNamesTheFirstLineThatIsNotWhole) {
    const std::string text = fileText(globalDefaults());
    const std::size_t third = text.find('\n', text.find('\n') + 1) + 1;
    const std::string thirdLine = text.substr(third, text.find('\n', third) + 1 - third);
    for (const std::size_t written : {third, third + 1, third + thirdLine.size() - 1}) {
        std::vector<Lines> atRemovals;
        HookedFiles files([&](Step at) {
            if (at == Step::Remove) atRemovals.push_back(folder.list());
            return at == Step::Write ? XERR_NOSPC : XERR_SUCCESS;
        });
        files.writtenBeforeFailure = written;
        ConfStore failing(catalogue, files);
        load(failing, "");
        log.clear();
        EXPECT_EQ(confCommitToFile(failing, path()), XERR_NOSPC);
        EXPECT_EQ(log.texts().back(),
                  "E CONF xfileWrite failed for " + thirdLine + ", err = 28 [XERR_NOSPC]");
        EXPECT_EQ(log.texts().size(), 2u);
        EXPECT_EQ(atRemovals, std::vector<Lines>{(Lines{"vantrel.conf", "vantrel.conf-temp"})});
        EXPECT_EQ(folder.list(), Lines{"vantrel.conf"});
        EXPECT_EQ(folder.read("vantrel.conf"), "");
    }
}

TEST_F(ConfCommitTest, AWriteThatFailsAtOnceNamesTheFirstLine) {
    HookedFiles files(Step::Write, XERR_NOSPC);
    ConfStore failing(catalogue, files);
    load(failing, "");
    confSetString(failing, "vtr.guid", "x");
    log.clear();
    EXPECT_EQ(confCommit(failing), XERR_NOSPC);
    EXPECT_EQ(log.texts().back(),
              "E CONF xfileWrite failed for vtr.campaign_hash=\"\"\n, err = 28 [XERR_NOSPC]");
    EXPECT_FALSE(confHasPendingChanges(failing)) << "merged into the map, and only there";
    EXPECT_EQ(confGetString(failing, "vtr.guid"), "x");
}

TEST_F(ConfCommitTest, AfterAFailedMoveTheFilesValuesComeBackWithTheNextCommit) {
    XErr moved = XERR_ACCES;
    HookedFiles files([&moved](Step at) { return at == Step::Replace ? moved : XERR_SUCCESS; });
    ConfStore failing(catalogue, files);
    load(failing, "vtr.guid=\"old\"\n");
    confSetString(failing, "vtr.guid", "new");
    EXPECT_EQ(confCommit(failing), XERR_ACCES);
    EXPECT_EQ(confGetString(failing, "vtr.guid"), "new");
    confSetString(failing, "vtr.guid", "new");
    EXPECT_FALSE(confHasPendingChanges(failing)) << "it is the value in memory already";
    moved = XERR_SUCCESS;
    EXPECT_EQ(confCommitToFile(failing, path()), 0);
    EXPECT_EQ(confGetString(failing, "vtr.guid"), "old");
    EXPECT_TRUE(hasLine("vtr.guid=\"old\""));
}

TEST_F(ConfCommitTest, TheNextCommitBringsKeysThatTheFileLacksAfterAFailedMove) {
    XErr moved = XERR_ACCES;
    HookedFiles files([&moved](Step at) { return at == Step::Replace ? moved : XERR_SUCCESS; });
    ConfStore failing(catalogue, files);
    load(failing, "");
    confSetString(failing, "vtr.guid", "x");
    EXPECT_EQ(confCommit(failing), XERR_ACCES);
    EXPECT_EQ(folder.read("vantrel.conf"), "");
    moved = XERR_SUCCESS;
    EXPECT_EQ(confCommit(failing), 0) << "nothing is pending any more";
    EXPECT_EQ(folder.read("vantrel.conf"), "");
    EXPECT_EQ(confCommitToFile(failing, path()), 0);
    EXPECT_TRUE(hasLine("vtr.guid=\"x\""));
}

TEST_F(ConfCommitTest, AnEntryOf4096BytesOrMoreIsRefusedAndTheOldFileStays) {
    ASSERT_EQ(init("vtr.locale=\"a\"\n"), 0);
    struct {
        std::size_t line;  // with its line feed
        int shown;
    } const cases[] = {{4096, 4096}, {4097, -1}, {9000, -1}};
    for (const auto& [size, shown] : cases) {
        const std::string value(size - 12, 'x');
        confSetString(store, "vtr.guid", value);
        log.clear();
        EXPECT_EQ(confCommit(store), XERR_2BIG);
        EXPECT_EQ(log.texts().back(), "E CONF invalid conf entry vtr.guid=\"" + value +
                                          "\", prop len = " + std::to_string(shown) +
                                          ", max len = 4096");
        EXPECT_EQ(folder.read("vantrel.conf"), "vtr.locale=\"a\"\n");
        EXPECT_EQ(folder.list(), Lines{"vantrel.conf"});
    }
    confSetString(store, "vtr.guid", std::string(4095 - 12, 'x'));
    EXPECT_EQ(confCommit(store), 0);
    EXPECT_EQ(confReload(store), 0) << "what was written reads back";
}

TEST_F(ConfCommitTest, AKeyThatFillsALineIsRefusedAndTheOldFileStays) {
    const auto& first = *catalogue.instances().begin();
    const struct {
        std::string name;
        XErr result;
    } cases[] = {{std::string(5000, 'n'), XERR_2BIG}, {std::string(5000, 'n') + "\n", XERR_INVAL}};
    for (const auto& [name, result] : cases) {
        ASSERT_EQ(init("vtr.locale=\"a\"\n"), 0);
        confSetI32(store, "vtr.instance." + name + ".dpi", 320);
        log.clear();
        EXPECT_EQ(confCommit(store), result);
        EXPECT_EQ(log.texts().back(), "E CONF invalid conf entry vtr.instance." + name + "." +
                                          first.first + "=\"" + first.second.defaultValue +
                                          "\", prop len = -1, max len = 4096");
        EXPECT_EQ(folder.read("vantrel.conf"), "vtr.locale=\"a\"\n");
        EXPECT_FALSE(folder.has("vantrel.conf-temp"));
        ASSERT_EQ(confDeleteInstance(store, name), 0);
        ASSERT_EQ(confCommit(store), 0);
    }
}

TEST_F(ConfCommitTest, AFileWithALineThatCannotBeWrittenAgainLoadsAndBlocksCommits) {
    for (const std::size_t size : {4095u, 4096u}) {
        ASSERT_EQ(init("vtr.guid=\"" + std::string(size - 11, 'x') + "\"\n"), 0);
        confSetString(store, "vtr.locale", std::to_string(size));
        EXPECT_EQ(confCommit(store), XERR_2BIG);
        confSetString(store, "vtr.guid", "short");
        EXPECT_EQ(confCommit(store), 0);
    }
    ASSERT_EQ(init("vtr.guid=\"" + std::string(4094 - 11, 'x') + "\"\n"), 0);
    confSetString(store, "vtr.locale", "fits");
    EXPECT_EQ(confCommit(store), 0);
}

TEST_F(ConfCommitTest, AFileWithANulInTheNameOfAnInstanceLoadsAndBlocksCommits) {
    const std::string file = std::string("vtr.instance.A") + '\0' + "B.dpi=\"320\"\n";
    ASSERT_EQ(init(file), 0);
    confSetString(store, "vtr.locale", "a");
    EXPECT_EQ(confCommit(store), XERR_INVAL);
    EXPECT_EQ(folder.read("vantrel.conf"), file);
}

TEST_F(ConfCommitTest, AValueOfTheFileIsWrittenUpToItsNul) {
    ASSERT_EQ(init(std::string("vtr.guid=\"a") + '\0' + "b\"\n"), 0);
    confSetString(store, "vtr.locale", "b");
    EXPECT_EQ(confCommit(store), 0);
    Entries expected = globalDefaults();
    expected["vtr.guid"] = "a";
    expected["vtr.locale"] = "b";
    EXPECT_EQ(folder.read("vantrel.conf"), fileText(expected));
}

TEST_F(ConfCommitTest, ALineFeedInAValueIsRefusedUntilItIsSetAgain) {
    ASSERT_EQ(init("vtr.locale=\"a\"\n"), 0);
    confSetString(store, "vtr.guid", "x\ny");
    log.clear();
    EXPECT_EQ(confCommit(store), XERR_INVAL);
    EXPECT_EQ(log.texts().back(),
              "E CONF invalid conf entry vtr.guid=\"x\ny\", prop len = 15, max len = 4096");
    confSetString(store, "vtr.locale", "b");
    EXPECT_EQ(confCommit(store), XERR_INVAL);
    confSetString(store, "vtr.guid", "xy");
    EXPECT_EQ(confCommit(store), 0);
}

TEST_F(ConfCommitTest, ALineFeedInAValueOfTheFileIsRefusedOnceAndThenLost) {
    ASSERT_EQ(init("vtr.guid=\"a\"\nvtr.locale=\"a\"\n"), 0);
    confSetString(store, "vtr.guid", "x\ny");
    EXPECT_EQ(confCommit(store), XERR_INVAL);
    EXPECT_FALSE(confHasPendingChanges(store));
    EXPECT_EQ(confCommit(store), 0) << "nothing is to be done";
    confSetString(store, "vtr.locale", "b");
    EXPECT_EQ(confCommit(store), 0);
    EXPECT_EQ(confGetString(store, "vtr.guid"), "a");
    EXPECT_EQ(confGetString(store, "vtr.locale"), "b");
}

TEST_F(ConfCommitTest, AnImpossibleInstanceNameBlocksTheCommitsOfThisProcess) {
    ASSERT_EQ(init(""), 0);
    confSetI32(store, "vtr.instance.a=b.dpi", 1);
    EXPECT_EQ(confCommit(store), XERR_INVAL);
    confSetString(store, "vtr.locale", "x");
    EXPECT_EQ(confCommit(store), XERR_INVAL);
    EXPECT_EQ(folder.read("vantrel.conf"), "");
}

TEST_F(ConfCommitTest, AFailedWriteComesBeforeALaterEntryThatIsRefused) {
    HookedFiles files(Step::Write, XERR_NOSPC);
    ConfStore failing(catalogue, files);
    load(failing, "");
    confSetString(failing, "vtr.version_machine_id", "x\ny");
    EXPECT_EQ(confCommit(failing), XERR_NOSPC);
}

TEST_F(ConfCommitTest, ALargeStoreIsWrittenWhole) {
    Entries expected = globalDefaults();
    for (int i = 0; i < 1000; ++i) addInstanceDefaults(expected, "Nougat64_" + std::to_string(i));
    const std::string text = fileText(expected);
    ASSERT_GT(text.size(), std::size_t{1 << 20});
    ASSERT_EQ(init(text), 0);
    EXPECT_EQ(confCommitToFile(store, folder / "copy"), 0);
    EXPECT_TRUE(folder.read("copy") == text);
}

SUBPROCESS(staysAlive) {
    leaveSignOfLife(arguments[0]);
    sleepMs(120'000);
    return 0;
}

TEST_F(ConfCommitTest, ChildrenThatStartMeanwhileNeverBlockACommit) {
    constexpr int kCommits = 1000;
    constexpr int kChildren = 25;
    ASSERT_EQ(init(""), 0);
    std::atomic<int> commits{0};
    std::vector<XprocHandle> children(kChildren);
    SignsOfLife signs;
    std::thread launcher([&] {
        for (int i = 0; i < kChildren; ++i) {
            EXPECT_EQ(xprocCreate(&children[static_cast<std::size_t>(i)],
                                  {builtProgram("conf_test.exe"), "--subprocess", "staysAlive",
                                   signs.next()}),
                      0);
            // Spread over all the commits.
            while (commits < kCommits * i / kChildren) sleepMs(1);
        }
    });
    for (int i = 1; i <= kCommits; ++i) {
        confSetI32(store, "vtr.next_vm_id", i + 1);
        EXPECT_EQ(confCommit(store), 0) << i;
        commits = i;
    }
    launcher.join();
    EXPECT_EQ(runSubprocess("commitsManyTimes", {path(), "Other", "20"}).status, 0u)
        << "another process commits while the children live";
    EXPECT_TRUE(signs.allArrived());
    for (XprocHandle child : children) {
        xprocKill(child, 0);
        EXPECT_EQ(xprocWait(child, nullptr), 0);
    }
    EXPECT_TRUE(hasLine("vtr.next_vm_id=\"1001\""));
}
