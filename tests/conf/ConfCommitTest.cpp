#include "ConfFixture.h"
#include "HookedFiles.h"
#include "support/HeldFile.h"
#include "support/LogLines.h"
#include "support/Platform.h"
#include "support/SignsOfLife.h"
#include "support/Subprocess.h"
#include "xpl/XmutexNamed.h"
#include "xpl/Xproc.h"

namespace {

using Step = HookedFiles::Step;

const std::string kTemporaryNotOpened = "E CONF confCommitToFile: xfileOpen failed, err = ";

class ConfCommitTest : public ConfTest {
 protected:
    // A commit fails and logs this line last.
    void expectFailure(XErr err, const std::string& line) {
        log.clear();
        EXPECT_EQ(confCommit(store), err);
        EXPECT_EQ(log.texts().back(), line);
    }

    // The folder holds the file alone, with this content.
    void expectOnlyFile(const std::string& content) const {
        EXPECT_EQ(folder.list(), Lines{"vantrel.conf"});
        EXPECT_EQ(file(), content);
    }
};

// The same with a store whose files cannot be replaced until the test allows it.
class ConfUnmovedTest : public ConfCommitTest {
 protected:
    XErr moved = XERR_ACCES;
    HookedFiles files{[this](Step at) { return at == Step::Replace ? moved : XERR_SUCCESS; }};
    ConfStore failing{catalogue, files};
};

// Whether this system moves a file onto a read-only one. Tries it without the library.
bool replacesReadOnlyFiles() {
    namespace fs = std::filesystem;
    const TempFolder folder;
    const fs::path from = systemPath(folder.write("from", "new"));
    const fs::path to = systemPath(folder.write("to", "old"));
    fs::permissions(to, fs::perms::owner_read | fs::perms::group_read);
    std::error_code error;
    fs::rename(from, to, error);
    fs::permissions(to, fs::perms::all);
    return folder.read("to") == "new";
}

std::string invalidEntry(const std::string& entry, int length) {
    return "E CONF invalid conf entry " + entry + ", prop len = " + std::to_string(length) +
           ", max len = 4096";
}

}  // namespace

TEST_F(ConfCommitTest, WritesEveryKeyInByteOrder) {
    given(
        "vtr.instance.Nougat64_2.display_name=\"Ünïcode 日本\"\n"
        "vtr.instance.Nougat64_10.dpi=\"320\"\nvtr.locale=\"en-US\"\n");
    set("vtr.guid", "say \"hi\" = \\x");
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
    given("vtr.locale=\"a\"\n");
    EXPECT_EQ(confCommit(store), 0);
    EXPECT_EQ(file(), "vtr.locale=\"a\"\n");
    EXPECT_EQ(log.texts(XLOG_VERBOSE), Lines{logged::nothingToCommit()});
}

TEST_F(ConfCommitTest, CommittingToAFileAlwaysWrites) {
    given("vtr.locale=\"a\"\n");
    EXPECT_EQ(confCommitToFile(store, folder / "new\\sub\\copy"), 0);
    expectFile({{"vtr.locale", "a"}}, "new\\sub\\copy");
    EXPECT_EQ(file(), "vtr.locale=\"a\"\n") << "the loaded file is only read";
}

TEST_F(ConfCommitTest, CommittingToAnotherFileLeavesNothingToCommit) {
    given("vtr.locale=\"a\"\n");
    const std::string copy = folder / "copy";
    set("vtr.locale", "b");
    EXPECT_EQ(confCommitToFile(store, copy), 0);
    EXPECT_FALSE(confHasPendingChanges(store));
    EXPECT_EQ(confCommit(store), 0);
    EXPECT_EQ(log.texts(XLOG_VERBOSE),
              (Lines{logged::committing(copy), logged::nothingToCommit()}));
    expectFile({{"vtr.locale", "b"}}, "copy");
    EXPECT_EQ(file(), "vtr.locale=\"a\"\n") << "the change is in the other file only";
    EXPECT_EQ(folder.list(), (Lines{"copy", "vantrel.conf"}));
}

TEST_F(ConfCommitTest, AChangeCommittedToAnotherFileIsReadUntilTheNextLoad) {
    given("vtr.locale=\"a\"\n");
    set("vtr.locale", "b");
    ASSERT_EQ(confCommitToFile(store, folder / "copy"), 0);
    EXPECT_EQ(confGetString(store, "vtr.locale"), "b");
    set("vtr.locale", "b");
    EXPECT_FALSE(confHasPendingChanges(store)) << "setting it again stages nothing";
    ASSERT_EQ(confReload(store), 0);
    EXPECT_EQ(confGetString(store, "vtr.locale"), "a");
}

TEST_F(ConfCommitTest, AChangeCommittedToAnotherFileReachesTheFirstOnlyIfThatLacksTheKey) {
    given("vtr.locale=\"a\"\n");
    set("vtr.locale", "b");
    set("vtr.guid", "b");
    ASSERT_EQ(confCommitToFile(store, folder / "copy"), 0);
    set("vtr.country", "c");
    ASSERT_EQ(confCommit(store), 0);
    expectFile({{"vtr.locale", "a"}, {"vtr.guid", "b"}, {"vtr.country", "c"}});
}

TEST_F(ConfCommitTest, WhatOthersCommittedMeanwhileIsKept) {
    given("vtr.locale=\"a\"\nvtr.guid=\"old\"\n");
    set("vtr.guid", "mine");
    folder.write("vantrel.conf",
                 "vtr.guid=\"theirs\"\nvtr.locale=\"b\"\nvtr.instance.N.dpi=\"7\"\n");
    ASSERT_EQ(confCommit(store), 0);
    expectFile({{"vtr.guid", "mine"}, {"vtr.locale", "b"}, {"vtr.instance.N.dpi", "7"}});
    EXPECT_EQ(confGetInstances(store).count("N"), 1u);
}

TEST_F(ConfCommitTest, KeysThatAnotherProgramDeletedComeBack) {
    given("vtr.instance.A.dpi=\"7\"\nvtr.instance.B.dpi=\"8\"\n");
    writeFile("vtr.instance.B.dpi=\"8\"\n");
    set("vtr.guid", "x");
    ASSERT_EQ(confCommit(store), 0);
    EXPECT_TRUE(hasLine("vtr.instance.A.dpi=\"7\""));
}

TEST_F(ConfCommitTest, ANewInstanceIsMissingFromTheSetUntilTheNextLoad) {
    given("");
    set("vtr.instance.New.ram", 1);
    EXPECT_EQ(confGetInstances(store).size(), 1u);
    ASSERT_EQ(confCommit(store), 0);
    EXPECT_EQ(confGetInstances(store).size(), 0u);
    EXPECT_EQ(confReload(store), 0);
    EXPECT_EQ(confGetInstances(store).size(), 1u);
}

TEST_F(ConfCommitTest, RemovedKeysLeaveTheFile) {
    given("vtr.instance.A.dpi=\"7\"\n");
    ASSERT_EQ(confDeleteInstance(store, "A"), 0);
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
    old.registerGlobal("old", deprecatedText("d"));
    ConfStore other(old, confDiskFiles());
    load(other, "vtr.old=\"x\"\n", /*allowDeprecated=*/true);
    EXPECT_EQ(confGetString(other, "vtr.old"), "x");
    ASSERT_EQ(confCommitToFile(other, path()), 0);
    EXPECT_EQ(file(), "vtr.kept=\"k\"\n");
}

TEST_F(ConfCommitTest, WithCarriageReturnsTheClosingQuotesStay) {
    given("vtr.locale=\"en\"\r\n");
    ASSERT_EQ(confCommitToFile(store, path()), 0);
    EXPECT_TRUE(hasLine("vtr.locale=\"en\"\""));
}

TEST_F(ConfCommitTest, ATemporaryFileThatCannotBeCreatedChangesNothing) {
    given("vtr.locale=\"a\"\n");
    folder.makeFolder("vantrel.conf-temp");
    set("vtr.guid", "x");
    EXPECT_EQ(confCommit(store), XERR_ACCES);
    EXPECT_EQ(log.texts(),
              (Lines{logged::committing(path()), kTemporaryNotOpened + "13 [XERR_ACCES]"}));
    EXPECT_TRUE(confHasPendingChanges(store));
    EXPECT_EQ(file(), "vtr.locale=\"a\"\n");
    EXPECT_TRUE(folder.has("vantrel.conf-temp"));
}

TEST_F(ConfCommitTest, ATemporaryFileThatCannotBeCreatedIsNotDeleted) {
    int removals = 0;
    HookedFiles files([&removals](Step at) {
        removals += at == Step::Remove ? 1 : 0;
        return at == Step::Create ? XERR_IO : XERR_SUCCESS;
    });
    ConfStore failing(catalogue, files);
    load(failing, "");
    EXPECT_EQ(confCommitToFile(failing, path()), XERR_IO);
    EXPECT_EQ(removals, 0);
}

TEST_F(ConfCommitTest, AFileInPlaceOfTheFolderIsAFailedOpen) {
    given("");
    folder.write("file", "x");
    EXPECT_EQ(confCommitToFile(store, folder / "file\\sub\\copy"), XERR_NOENT);
    EXPECT_EQ(log.texts().back(), kTemporaryNotOpened + "2 [XERR_NOENT]");
    EXPECT_EQ(folder.read("file"), "x");
}

TEST_F(ConfCommitTest, AFailedReloadKeepsTheChangesPending) {
    given("vtr.locale=\"a\"\n");
    set("vtr.guid", "x");
    writeFile("broken\n");
    expectFailure(-1, logged::confMalformed("broken"));
    expectOnlyFile("broken\n");
    EXPECT_TRUE(confIsPropPending(store, "vtr.guid"));
}

TEST_F(ConfCommitTest, AMissingConfFileIsNeverCreated) {
    ASSERT_EQ(confLibInit(store, path(), false), -1);
    set("vtr.guid", "x");
    EXPECT_EQ(confCommit(store), -1);
    EXPECT_EQ(folder.list(), Lines{});
}

TEST_F(ConfCommitTest, AnExceptionInTheReloadDeletesTheTemporaryFile) {
    given("vtr.locale=\"a\"\n");
    set("vtr.guid", "x");
    writeFile("vtr.locale=");
    EXPECT_THROW(static_cast<void>(confCommit(store)), std::out_of_range);
    EXPECT_EQ(folder.list(), Lines{"vantrel.conf"});
    writeFile("");
    EXPECT_EQ(confCommit(store), 0) << "every lock was released";
}

TEST_F(ConfCommitTest, WithoutAConfFileTheMoveFails) {
    ASSERT_EQ(initWithoutFile(), 0);
    set("vtr.guid", "x");
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
    given("");
    folder.makeFolder("target");
    EXPECT_EQ(confCommitToFile(store, folder / "target"), XERR_ACCES);
    EXPECT_EQ(log.texts().back(), logged::confNotReplaced("13 [XERR_ACCES]"));
    EXPECT_EQ(folder.list(), (Lines{"target", "vantrel.conf"}));
}

TEST_F(ConfCommitTest, AFileHeldForAMomentIsReplaced) {
    if (!HeldFile::isPossible()) GTEST_SKIP() << HeldFile::kNeedsWindows;
    given("vtr.locale=\"a\"\n");
    set("vtr.locale", "b");
    const BrieflyHeldFile held(path(), HeldFile::Shares::ReadAndWrite);
    EXPECT_EQ(confCommit(store), 0);
    EXPECT_TRUE(hasLine("vtr.locale=\"b\""));
}

TEST_F(ConfCommitTest, AFileHeldForLongStaysAndTheTemporaryFileGoes) {
    if (!HeldFile::isPossible()) GTEST_SKIP() << HeldFile::kNeedsWindows;
    given("vtr.locale=\"a\"\n");
    set("vtr.locale", "b");
    HeldFile held(path(), HeldFile::Shares::ReadAndWrite);
    const XErr err = confCommit(store);
    held.release();
    EXPECT_TRUE(err == XERR_ACCES || err == 100032) << err;
    expectOnlyFile("vtr.locale=\"a\"\n");
}

TEST_F(ConfCommitTest, AReadOnlyFileStaysAndTheTemporaryFileGoes) {
    if (replacesReadOnlyFiles()) {
        GTEST_SKIP() << "needs Wine 10 or Windows, where a read-only file is not replaced";
    }
    given("vtr.locale=\"a\"\n");
    set("vtr.locale", "b");
    std::filesystem::permissions(systemPath(path()), std::filesystem::perms::owner_read);
    expectFailure(XERR_ACCES, logged::confNotReplaced("13 [XERR_ACCES]"));
    std::filesystem::permissions(systemPath(path()), std::filesystem::perms::all);
    expectOnlyFile("vtr.locale=\"a\"\n");
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
        EXPECT_EQ(confCommitToFile(failing, path()), XERR_NOSPC);
        EXPECT_EQ(log.texts().back(),
                  "E CONF xfileWrite failed for " + thirdLine + ", err = 28 [XERR_NOSPC]");
        EXPECT_EQ(log.texts().size(), 2u);
        EXPECT_EQ(atRemovals, std::vector<Lines>{(Lines{"vantrel.conf", "vantrel.conf-temp"})});
        expectOnlyFile("");
    }
}

TEST_F(ConfCommitTest, AWriteThatFailsAtOnceNamesTheFirstLine) {
    HookedFiles files(Step::Write, XERR_NOSPC);
    ConfStore failing(catalogue, files);
    load(failing, "");
    confSetString(failing, "vtr.guid", "x");
    EXPECT_EQ(confCommit(failing), XERR_NOSPC);
    EXPECT_EQ(log.texts().back(),
              "E CONF xfileWrite failed for vtr.campaign_hash=\"\"\n, err = 28 [XERR_NOSPC]");
    EXPECT_FALSE(confHasPendingChanges(failing)) << "merged into the map, and only there";
    EXPECT_EQ(confGetString(failing, "vtr.guid"), "x");
}

TEST_F(ConfUnmovedTest, AfterAFailedMoveTheFilesValuesComeBackWithTheNextCommit) {
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

TEST_F(ConfUnmovedTest, TheNextCommitBringsKeysThatTheFileLacksAfterAFailedMove) {
    load(failing, "");
    confSetString(failing, "vtr.guid", "x");
    EXPECT_EQ(confCommit(failing), XERR_ACCES);
    EXPECT_EQ(file(), "");
    moved = XERR_SUCCESS;
    EXPECT_EQ(confCommit(failing), 0) << "nothing is pending any more";
    EXPECT_EQ(file(), "");
    EXPECT_EQ(confCommitToFile(failing, path()), 0);
    EXPECT_TRUE(hasLine("vtr.guid=\"x\""));
}

TEST_F(ConfCommitTest, AnEntryOf4096BytesOrMoreIsRefusedAndTheOldFileStays) {
    given("vtr.locale=\"a\"\n");
    // The length of the line with its line feed, and the length in the log.
    const std::pair<std::size_t, int> cases[] = {{4096, 4096}, {4097, -1}, {9000, -1}};
    for (const auto& [size, shown] : cases) {
        const std::string value(size - 12, 'x');
        set("vtr.guid", value);
        expectFailure(XERR_2BIG, invalidEntry("vtr.guid=\"" + value + "\"", shown));
        expectOnlyFile("vtr.locale=\"a\"\n");
    }
    set("vtr.guid", std::string(4095 - 12, 'x'));
    EXPECT_EQ(confCommit(store), 0);
    EXPECT_EQ(confReload(store), 0) << "what was written reads back";
}

TEST_F(ConfCommitTest, AKeyThatFillsALineIsRefusedAndTheOldFileStays) {
    const auto& first = *catalogue.instances().begin();
    const std::string longName(5000, 'n');
    const std::pair<std::string, XErr> cases[] = {{longName, XERR_2BIG},
                                                  {longName + "\n", XERR_INVAL}};
    for (const auto& [name, result] : cases) {
        given("vtr.locale=\"a\"\n");
        set("vtr.instance." + name + ".dpi", 320);
        expectFailure(result, invalidEntry("vtr.instance." + name + "." + first.first + "=\"" +
                                               first.second.defaultValue + "\"",
                                           -1));
        expectOnlyFile("vtr.locale=\"a\"\n");
        ASSERT_EQ(confDeleteInstance(store, name), 0);
        ASSERT_EQ(confCommit(store), 0);
    }
}

TEST_F(ConfCommitTest, AFileWithALineThatCannotBeWrittenAgainLoadsAndBlocksCommits) {
    for (const std::size_t size : {4095u, 4096u}) {
        given("vtr.guid=\"" + std::string(size - 11, 'x') + "\"\n");
        set("vtr.locale", std::to_string(size));
        EXPECT_EQ(confCommit(store), XERR_2BIG);
        set("vtr.guid", "short");
        EXPECT_EQ(confCommit(store), 0);
    }
    given("vtr.guid=\"" + std::string(4094 - 11, 'x') + "\"\n");
    set("vtr.locale", "fits");
    EXPECT_EQ(confCommit(store), 0);
}

TEST_F(ConfCommitTest, AFileWithANulInTheNameOfAnInstanceLoadsAndBlocksCommits) {
    const std::string content("vtr.instance.A\0B.dpi=\"320\"\n", 27);
    given(content);
    set("vtr.locale", "a");
    EXPECT_EQ(confCommit(store), XERR_INVAL);
    EXPECT_EQ(file(), content);
}

TEST_F(ConfCommitTest, AValueOfTheFileIsWrittenUpToItsNul) {
    given({"vtr.guid=\"a\0b\"\n", 15});
    set("vtr.locale", "b");
    EXPECT_EQ(confCommit(store), 0);
    expectFile({{"vtr.guid", "a"}, {"vtr.locale", "b"}});
}

TEST_F(ConfCommitTest, ALineFeedInAValueIsRefusedUntilItIsSetAgain) {
    given("vtr.locale=\"a\"\n");
    set("vtr.guid", "x\ny");
    expectFailure(XERR_INVAL, invalidEntry("vtr.guid=\"x\ny\"", 15));
    set("vtr.locale", "b");
    EXPECT_EQ(confCommit(store), XERR_INVAL);
    set("vtr.guid", "xy");
    EXPECT_EQ(confCommit(store), 0);
}

TEST_F(ConfCommitTest, ALineFeedInAValueOfTheFileIsRefusedOnceAndThenLost) {
    given("vtr.guid=\"a\"\nvtr.locale=\"a\"\n");
    set("vtr.guid", "x\ny");
    EXPECT_EQ(confCommit(store), XERR_INVAL);
    EXPECT_FALSE(confHasPendingChanges(store));
    EXPECT_EQ(confCommit(store), 0) << "nothing is pending";
    set("vtr.locale", "b");
    EXPECT_EQ(confCommit(store), 0);
    EXPECT_EQ(confGetString(store, "vtr.guid"), "a");
    EXPECT_EQ(confGetString(store, "vtr.locale"), "b");
}

TEST_F(ConfCommitTest, AnInvalidInstanceNameBlocksTheCommitsOfThisProcess) {
    given("");
    set("vtr.instance.a=b.dpi", 1);
    EXPECT_EQ(confCommit(store), XERR_INVAL);
    set("vtr.locale", "x");
    EXPECT_EQ(confCommit(store), XERR_INVAL);
    EXPECT_EQ(file(), "");
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
    given(text);
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
    given("");
    std::atomic<int> commits{0};
    std::vector<XprocHandle> children(kChildren);
    SignsOfLife signs;
    std::thread launcher([&] {
        for (int i = 0; i < kChildren; ++i) {
            EXPECT_EQ(xprocCreate(&children[static_cast<std::size_t>(i)],
                                  {builtProgram("conf_test.exe"), "--subprocess", "staysAlive",
                                   signs.next()}),
                      0);
            // Starts the children at regular intervals of the commits.
            while (commits < kCommits * i / kChildren) sleepMs(1);
        }
    });
    for (int i = 1; i <= kCommits; ++i) {
        set("vtr.next_vm_id", i + 1);
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
