#include "support/HeldFile.h"
#include "support/LogCapture.h"
#include "support/Platform.h"
#include "support/TempFolder.h"
#include "support/TestHeaders.h"
#include "utl/UtlCopy.h"

namespace {

namespace fs = std::filesystem;

// Everything below a folder: "name=content" for files, "name\" for folders, sorted. Any length.
Lines treeOf(const std::string& folder) {
    Lines tree;
    const fs::path root = longSystemPath(folder);
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(root)) {
        const std::string path = productPath(entry.path());
        const std::string name = path.substr(productPath(root).size() + 1);
        tree.push_back(entry.is_directory() ? name + "\\" : name + "=" + readBytes(path));
    }
    std::sort(tree.begin(), tree.end());
    return tree;
}

std::string sourceMissing(const std::string& path) {
    return "W UTL utlCopyRecursive: source dir " + path + " doesn't exist";
}

class UtlCopyTest : public ::testing::Test {
 protected:
    UtlCopyTest() { folder.makeFolder("source"); }

    void fillSource(const std::vector<std::string>& files) {
        for (const std::string& name : files) folder.write("source\\" + name, "new " + name);
    }

    XErr copy() { return utlCopyRecursive(source, destination); }

    // Expects a line for each of these files and no other line.
    void expectFailed(const Lines& files) const {
        Lines lines;
        for (const std::string& name : files) {
            lines.push_back("W UTL utlCopyRecursive: Failed to copy file = " + name);
        }
        EXPECT_EQ(log.texts(XLOG_VERBOSE), lines);
    }

    // Expects a copy to have this result, to leave this tree, and to fail for these files.
    void expectCopy(XErr result, const Lines& tree, const Lines& failed = {}) {
        EXPECT_EQ(copy(), result);
        EXPECT_EQ(treeOf(destination), tree);
        expectFailed(failed);
    }

    TempFolder folder;
    LogCapture log;
    const std::string source = folder / "source";
    const std::string destination = folder / "destination";
};

}  // namespace

TEST_F(UtlCopyTest, CopiesEveryFileAndFolder) {
    fillSource({"a", "b.json", "sub\\c", "sub\\deeper\\d", "other\\e"});
    folder.makeFolder("source\\empty");
    folder.makeFolder("destination");
    expectCopy(
        0, {"a=new a", "b.json=new b.json", "empty\\", "other\\", "other\\e=new other\\e", "sub\\",
            "sub\\c=new sub\\c", "sub\\deeper\\", "sub\\deeper\\d=new sub\\deeper\\d"});
    EXPECT_EQ(treeOf(destination), treeOf(source));
}

TEST_F(UtlCopyTest, FilesAreCopiedByteForByte) {
    std::string bytes;
    for (int i = 0; i < 300'000; ++i) bytes += static_cast<char>(i * 7 + i / 256);
    folder.write("source\\bytes", bytes);
    folder.write("source\\nothing", "");
    folder.makeFolder("destination");
    EXPECT_EQ(copy(), 0);
    EXPECT_TRUE(folder.read("destination\\bytes") == bytes);
    EXPECT_EQ(folder.read("destination\\nothing"), "");
}

TEST_F(UtlCopyTest, TheSourceStaysAsItIs) {
    fillSource({"a", "sub\\b"});
    const Lines before = treeOf(source);
    folder.makeFolder("destination");
    EXPECT_EQ(copy(), 0);
    EXPECT_EQ(treeOf(source), before);
}

TEST_F(UtlCopyTest, AMissingSourceIsAWarningAndSuccess) {
    EXPECT_EQ(utlCopyRecursive(folder / "nowhere", destination), 0);
    EXPECT_EQ(log.texts(XLOG_VERBOSE), Lines{sourceMissing(folder / "nowhere")});
    EXPECT_EQ(folder.list(), Lines{"source"});
}

TEST_F(UtlCopyTest, AFileInPlaceOfTheSourceIsAMissingSource) {
    folder.write("file", "x");
    EXPECT_EQ(utlCopyRecursive(folder / "file", destination), 0);
    EXPECT_EQ(log.texts(), Lines{sourceMissing(folder / "file")});
}

TEST_F(UtlCopyTest, ASourceThatIsNotUtf8IsAMissingSource) {
    EXPECT_EQ(utlCopyRecursive(source + "\xff", destination), 0);
    EXPECT_EQ(log.texts(), Lines{sourceMissing(source + "\xff")});
}

TEST_F(UtlCopyTest, AnEmptySourceDoesNotCreateTheDestination) {
    EXPECT_EQ(copy(), 0);
    EXPECT_EQ(folder.list(), Lines{"source"});
    expectFailed({});
}

TEST_F(UtlCopyTest, AnEmptySourceLeavesTheDestinationUnchanged) {
    folder.write("destination\\sub\\a", "old");
    expectCopy(0, {"sub\\", "sub\\a=old"});
}

TEST_F(UtlCopyTest, AMissingDestinationIsNotCreatedForFiles) {
    fillSource({"a"});
    EXPECT_EQ(copy(), -1);
    EXPECT_EQ(folder.list(), Lines{"source"});
    expectFailed({"a"});
}

TEST_F(UtlCopyTest, AMissingDestinationIsCreatedForSubfoldersWhichComeFirst) {
    fillSource({"a", "sub\\b"});
    expectCopy(0, {"a=new a", "sub\\", "sub\\b=new sub\\b"});
}

TEST_F(UtlCopyTest, MissingParentsAreCreatedForSubfolders) {
    fillSource({"sub\\b"});
    EXPECT_EQ(utlCopyRecursive(source, folder / "x\\y\\z"), 0);
    EXPECT_EQ(treeOf(folder / "x"),
              (Lines{"y\\", "y\\z\\", "y\\z\\sub\\", "y\\z\\sub\\b=new sub\\b"}));
}

TEST_F(UtlCopyTest, AnExistingSubfolderIsReplacedWithAllItsContent) {
    fillSource({"sub\\b"});
    folder.write("destination\\sub\\old\\c", "old");
    folder.write("destination\\sub\\b", "old");
    folder.makeFolder("destination\\other");
    expectCopy(0, {"other\\", "sub\\", "sub\\b=new sub\\b"});
}

TEST_F(UtlCopyTest, AnExistingFileKeepsItsContentAndTheOthersAreCopied) {
    fillSource({"a", "b", "c"});
    folder.write("destination\\b", "old");
    expectCopy(-1, {"a=new a", "b=old", "c=new c"}, {"b"});
}

TEST_F(UtlCopyTest, FailuresAreLoggedByNameIgnoringCase) {
    const std::vector<std::string> names{"d", "B", "a", "C"};
    fillSource(names);
    folder.makeFolder("destination");
    for (const std::string& name : names) folder.write("destination\\" + name, "old");
    EXPECT_EQ(copy(), -1);
    expectFailed({"a", "B", "C", "d"});
}

TEST_F(UtlCopyTest, AFolderInPlaceOfAFileStays) {
    fillSource({"a"});
    folder.makeFolder("destination\\a");
    expectCopy(-1, {"a\\"}, {"a"});
}

TEST_F(UtlCopyTest, AFileThatCannotBeReadFailsAndTheOthersAreCopied) {
    if (!HeldFile::isPossible()) GTEST_SKIP() << HeldFile::kNeedsWindows;
    fillSource({"a", "b", "c"});
    folder.makeFolder("destination");
    const HeldFile held(source + "\\b");
    expectCopy(-1, {"a=new a", "c=new c"}, {"b"});
}

TEST_F(UtlCopyTest, AFailureTwoLevelsDownIsLoggedAndNotCounted) {
    if (!HeldFile::isPossible()) GTEST_SKIP() << HeldFile::kNeedsWindows;
    fillSource({"a", "sub\\deeper\\b"});
    folder.makeFolder("destination");
    const HeldFile held(source + "\\sub\\deeper\\b");
    expectCopy(0, {"a=new a", "sub\\", "sub\\deeper\\"}, {"b"});
}

TEST_F(UtlCopyTest, AFailureOneLevelDownIsLoggedBeforeThoseOfTheFolderItself) {
    if (!HeldFile::isPossible()) GTEST_SKIP() << HeldFile::kNeedsWindows;
    fillSource({"a", "sub\\b"});
    folder.write("destination\\a", "old");
    const HeldFile held(source + "\\sub\\b");
    EXPECT_EQ(copy(), -1);
    expectFailed({"b", "a"});
}

TEST_F(UtlCopyTest, ASubfolderThatCannotBeMadeFailsItsFilesOnly) {
    fillSource({"a", "sub\\b", "sub\\deeper\\c"});
    folder.write("destination\\sub", "a file in its place");
    expectCopy(0, {"a=new a", "sub=a file in its place"}, {"c", "b"});
}

TEST_F(UtlCopyTest, ASubfolderThatCannotBeRemovedKeepsWhatIsHeld) {
    if (!HeldFile::isPossible()) GTEST_SKIP() << HeldFile::kNeedsWindows;
    fillSource({"sub\\b", "sub\\c"});
    folder.write("destination\\sub\\b", "old");
    folder.write("destination\\sub\\c", "old");
    {
        const HeldFile held(destination + "\\sub\\b");
        EXPECT_EQ(copy(), 0);
    }
    EXPECT_EQ(treeOf(destination), (Lines{"sub\\", "sub\\b=old", "sub\\c=new sub\\c"}));
    expectFailed({"b"});
}

TEST_F(UtlCopyTest, NamesOutsideAsciiAreKept) {
    fillSource({"Ünïcode", "日本\\アプリ", "😀\\😀"});
    folder.makeFolder("destination");
    expectCopy(0, treeOf(source));
    EXPECT_EQ(copy(), -1);
    expectFailed({"Ünïcode"});  // the folders were replaced
}

TEST_F(UtlCopyTest, FoldersOutsideAsciiAreTakenAsUtf8) {
    folder.write("日本\\a", "x");
    folder.makeFolder("Ünïcode");
    EXPECT_EQ(utlCopyRecursive(folder / "日本", folder / "Ünïcode"), 0);
    EXPECT_EQ(folder.read("Ünïcode\\a"), "x");
    EXPECT_EQ(utlCopyRecursive(folder / "日本語", folder / "Ünïcode"), 0);
    EXPECT_EQ(log.texts(), Lines{sourceMissing(folder / "日本語")});
}

TEST_F(UtlCopyTest, BothSeparatorsAreTaken) {
    fillSource({"sub\\b"});
    std::string slashed = source;
    std::replace(slashed.begin(), slashed.end(), '\\', '/');
    EXPECT_EQ(utlCopyRecursive(slashed, destination), 0);
    EXPECT_EQ(treeOf(destination), (Lines{"sub\\", "sub\\b=new sub\\b"}));
}

TEST_F(UtlCopyTest, PathsBeyond260CharactersAreCopied) {
    const std::string part(100, 'p');
    const std::string deep = part + "\\" + part + "\\" + part;
    const std::string file(100, 'f');
    fs::create_directories(longSystemPath(source + "\\" + deep));
    writeBytes("\\\\?\\" + source + "\\" + deep + "\\" + file, "deep");
    folder.makeFolder("destination");
    expectCopy(0,
               {part + "\\", part + "\\" + part + "\\", deep + "\\", deep + "\\" + file + "=deep"});
    EXPECT_EQ(copy(), 0) << "what is there is removed again";
    EXPECT_EQ(treeOf(destination).size(), 4u);
    EXPECT_EQ(log.texts(XLOG_VERBOSE), Lines{});
}

TEST_F(UtlCopyTest, AFailureBeyond260CharactersIsLogged) {
    const std::string part(120, 'p');
    const std::string deep = "\\" + part + "\\" + part + "\\" + part;
    fs::create_directories(longSystemPath(source + deep));
    fs::create_directories(longSystemPath(destination + deep));
    writeBytes("\\\\?\\" + source + deep + "\\file", "new");
    writeBytes("\\\\?\\" + destination + deep + "\\file", "old");
    EXPECT_EQ(utlCopyRecursive(source + deep, destination + deep), -1);
    expectFailed({"file"});
    EXPECT_EQ(readBytes("\\\\?\\" + destination + deep + "\\file"), "old");
}
