#include "support/HeldFile.h"
#include "support/LogCapture.h"
#include "support/LogLines.h"
#include "support/Platform.h"
#include "support/Rows.h"
#include "support/TempFolder.h"
#include "support/TestHeaders.h"
#include "support/process_figures.h"
#include "xpl/Xfile.h"

namespace {

class XfileTest : public ::testing::Test {
 protected:
    // Opens and writes; the status of the first step that fails.
    static XErr writeWith(const std::string& path, XfileMode mode, std::string_view text) {
        Xfile file;
        if (const XErr err = xfileOpen(file, path, mode); err != 0) return err;
        std::size_t done = 0;
        return xfileWriteAll(file, text.data(), text.size(), done);
    }

    // A file that a test has opened.
    static Xfile opened(const std::string& path, XfileMode mode = XfileMode::Read) {
        Xfile file;
        EXPECT_EQ(xfileOpen(file, path, mode), 0);
        return file;
    }

    // A path of more than 300 characters that does not exist yet.
    std::string longFolder() const {
        std::string path = folder.path();
        while (path.size() < 300) path += "\\a folder with a long name";
        return path;
    }

    // The content of a file whose path may be long.
    static std::string readLong(const std::string& path) { return readBytes("\\\\?\\" + path); }

    // Creates and deletes a file of five bytes, and expects the path's state at each step.
    static void expectLife(const std::string& path) {
        std::int64_t size = -1;
        EXPECT_EQ(xfileExists(path), XERR_NOENT);
        EXPECT_EQ(xfileSizeOfPath(path, size), XERR_NOENT);
        EXPECT_EQ(xfileDelete(path), XERR_NOENT);
        EXPECT_EQ(writeWith(path, XfileMode::WriteNew, "12345"), 0);
        EXPECT_EQ(xfileExists(path), 0);
        EXPECT_EQ(xfileExists(path.substr(0, path.rfind('\\'))), 0) << "a folder exists too";
        EXPECT_EQ(xfileSizeOfPath(path, size), 0);
        EXPECT_EQ(size, 5);
        EXPECT_EQ(xfileDelete(path), 0);
        EXPECT_EQ(xfileExists(path), XERR_NOENT);
    }

    // A folder is created once its parent exists, and removed once it is empty.
    void expectFolderLife(const std::string& parent) {
        const std::string path = parent + "\\d";
        EXPECT_EQ(xfileCreateFolder(path), XERR_NOENT) << "its parent must exist";
        ASSERT_EQ(xfileMakeFolders(parent), 0);
        EXPECT_EQ(xfileCreateFolder(path), 0);
        EXPECT_EQ(xfileCreateFolder(path), 0) << "an existing folder is a success";
        EXPECT_EQ(xfileExists(path), 0);
        ASSERT_EQ(writeWith(path + "\\f", XfileMode::WriteNew, "x"), 0);
        EXPECT_EQ(xfileRemoveFolder(path), XERR_NOTEMPTY);
        EXPECT_EQ(xfileDelete(path + "\\f"), 0);
        EXPECT_EQ(xfileRemoveFolder(path), 0);
        EXPECT_EQ(xfileExists(path), XERR_NOENT);
    }

    TempFolder folder;
};

// A write to "f", which exists with the content `before` or does not exist.
struct ModeCase {
    const char* name;
    std::optional<std::string> before;
    XfileMode mode;
    std::string text;
    XErr result;
    std::optional<std::string> after;
};

constexpr auto kUnlistedMode = static_cast<XfileMode>(99);

const ModeCase kModeCases[] = {
    {"ReadModeNeedsTheFile", {}, XfileMode::Read, "x", XERR_NOENT, {}},
    {"ReadModeDoesNotWrite", "abc", XfileMode::Read, "x", XERR_ACCES, "abc"},
    {"AnUnlistedModeReads", "abc", kUnlistedMode, "x", XERR_ACCES, "abc"},
    {"ReadWriteModeCreatesTheFile", {}, XfileMode::ReadWrite, "abcdef", 0, "abcdef"},
    {"ReadWriteModeKeepsTheOtherBytes", "abcdef", XfileMode::ReadWrite, "XY", 0, "XYcdef"},
    {"AppendModeCreatesTheFile", {}, XfileMode::Append, "one", 0, "one"},
    {"AppendModeWritesAtTheEnd", "one", XfileMode::Append, "two", 0, "onetwo"},
    {"WriteNewModeEmptiesAnExistingFile", "long content", XfileMode::WriteNew, "s", 0, "s"},
    {"UpdateModeNeedsTheFile", {}, XfileMode::Update, "x", XERR_NOENT, {}},
    {"UpdateModeKeepsTheOtherBytes", "abc", XfileMode::Update, "X", 0, "Xbc"},
};

CASE_PER_ROW(XfileModeTest, XfileTest, kModeCases);

}  // namespace

TEST_P(XfileModeTest, Writes) {
    const ModeCase& row = GetParam();
    if (row.before) folder.write("f", *row.before);
    EXPECT_EQ(writeWith(folder / "f", row.mode, row.text), row.result);
    ASSERT_EQ(folder.has("f"), row.after.has_value());
    if (row.after) EXPECT_EQ(folder.read("f"), *row.after);
}

TEST_F(XfileTest, ReadModeCreatesNoFolder) {
    Xfile file;
    EXPECT_EQ(xfileOpen(file, folder / "new\\missing", XfileMode::Read), XERR_NOENT);
    EXPECT_FALSE(file.isOpen());
    EXPECT_FALSE(folder.has("new"));
}

TEST_F(XfileTest, AnUnlistedModeCreatesTheMissingFolders) {
    EXPECT_EQ(writeWith(folder / "new\\f", static_cast<XfileMode>(0), "x"), XERR_NOENT);
    EXPECT_TRUE(folder.has("new"));
    EXPECT_FALSE(folder.has("new\\f"));
}

TEST_F(XfileTest, AppendModeCannotRead) {
    folder.write("f", "abc");
    Xfile file = opened(folder / "f", XfileMode::Append);
    char byte = 0;
    std::uint32_t done = 7;
    EXPECT_EQ(xfileRead(file, &byte, 1, done), XERR_ACCES);
    EXPECT_EQ(done, 0u);
}

TEST_F(XfileTest, WritingModesCreateTheMissingFolders) {
    EXPECT_EQ(writeWith(folder / "a\\b\\c\\f", XfileMode::WriteNew, "x"), 0);
    EXPECT_EQ(folder.read("a\\b\\c\\f"), "x");
}

TEST_F(XfileTest, OnlyBackslashesSeparateTheMissingFolder) {
    EXPECT_EQ(writeWith(folder / "new/f", XfileMode::Append, "x"), XERR_NOENT);
    EXPECT_FALSE(folder.has("new"));
}

TEST_F(XfileTest, ALogPathCreatesTheDataFolderButNotTheLogsFolder) {
    const std::string log = folder / "Data\\Logs/Player.log";
    EXPECT_EQ(writeWith(log, XfileMode::Append, "x"), XERR_NOENT);
    EXPECT_TRUE(folder.has("Data"));
    EXPECT_FALSE(folder.has("Data\\Logs"));
    folder.makeFolder("Data\\Logs");
    EXPECT_EQ(writeWith(log, XfileMode::Append, "x"), 0);
    EXPECT_EQ(folder.read("Data\\Logs\\Player.log"), "x");
}

TEST_F(XfileTest, AFileInPlaceOfTheFolderFailsTheOpen) {
    folder.write("a", "file");
    EXPECT_EQ(writeWith(folder / "a\\f", XfileMode::WriteNew, "x"), XERR_NOENT);
    EXPECT_EQ(folder.read("a"), "file");
}

TEST_F(XfileTest, AFolderCannotBeOpened) {
    folder.makeFolder("d");
    EXPECT_EQ(writeWith(folder / "d", XfileMode::WriteNew, "x"), XERR_ACCES);
}

TEST_F(XfileTest, PathsAreUtf8) {
    EXPECT_EQ(writeWith(folder / "日本 é\xF0\x9F\x8E\xAE", XfileMode::WriteNew, "x"), 0);
    EXPECT_EQ(folder.list(), Lines{"日本 é\xF0\x9F\x8E\xAE"});
    EXPECT_EQ(writeWith(folder / "\xFF", XfileMode::WriteNew, "x"), 101113);
    EXPECT_EQ(xfileExists(folder / "\xFF"), 101113);
}

TEST_F(XfileTest, AHeldFileReportsTheSharingViolation) {
    if (!HeldFile::isPossible()) GTEST_SKIP() << HeldFile::kNeedsWindows;
    folder.write("f", "x");
    HeldFile held(folder / "f");
    Xfile file;
    EXPECT_EQ(xfileOpen(file, folder / "f", XfileMode::Read), 100032);
    held.release();
    EXPECT_EQ(xfileOpen(file, folder / "f", XfileMode::Read), 0);
}

TEST_F(XfileTest, ReadAllStopsAtTheEndOfTheFile) {
    folder.write("f", "abc");
    Xfile file = opened(folder / "f");
    char bytes[8] = {};
    std::size_t done = 0;
    EXPECT_EQ(xfileReadAll(file, bytes, 3, done), 0);
    EXPECT_EQ(done, 3u);
    EXPECT_EQ(xfileReadAll(file, bytes, 1, done), XERR_NODATA);
    EXPECT_EQ(done, 0u);
    EXPECT_STREQ(bytes, "abc");
}

TEST_F(XfileTest, AZeroLengthWriteAllDoesNotWrite) {
    Xfile closed;  // any call with its handle would fail
    std::size_t done = 9;
    EXPECT_EQ(xfileWriteAll(closed, "", 0, done), 0);
    EXPECT_EQ(done, 0u);
    EXPECT_EQ(xfileWriteAll(closed, "x", 1, done), XERR_BADF);
    EXPECT_EQ(done, 0u);
}

TEST_F(XfileTest, SizeAndSeek) {
    folder.write("f", "0123456789");
    Xfile file = opened(folder / "f");
    std::int64_t number = 0;
    EXPECT_EQ(xfileSize(file, number), 0);
    EXPECT_EQ(number, 10);
    EXPECT_EQ(xfileSeek(file, -3, XfileSeekFrom::End, number), 0);
    EXPECT_EQ(number, 7);
    EXPECT_EQ(xfileSeek(file, 1, XfileSeekFrom::Current, number), 0);
    EXPECT_EQ(number, 8);
    char byte = 0;
    std::uint32_t done = 0;
    EXPECT_EQ(xfileRead(file, &byte, 1, done), 0);
    EXPECT_EQ(byte, '8');
    EXPECT_EQ(xfileSeek(file, -1, XfileSeekFrom::Begin, number), 100131);
    xfileClose(file);
    EXPECT_FALSE(file.isOpen());
    EXPECT_EQ(xfileSize(file, number), XERR_BADF);
    xfileClose(file);
}

TEST_F(XfileTest, MovingAnObjectLeavesNoHandleBehind) {
    folder.write("f", "x");
    const long before = openHandles();
    Xfile first = opened(folder / "f");
    Xfile second(std::move(first));
    EXPECT_TRUE(second.isOpen());
    Xfile third;
    third = std::move(second);
    EXPECT_TRUE(third.isOpen());
    third = Xfile();
    EXPECT_EQ(openHandles(), before) << "every handle is closed";
}

TEST_F(XfileTest, ExistsSizeAndDeletePerPath) { expectLife(folder / "f"); }

TEST_F(XfileTest, ALongPathExistsHasASizeAndIsDeleted) {
    ASSERT_EQ(xfileMakeFolders(longFolder()), 0);
    expectLife(longFolder() + "\\f");
}

TEST_F(XfileTest, CreateAndRemoveOneFolder) { expectFolderLife(folder / "x"); }

TEST_F(XfileTest, ALongFolderIsCreatedAndRemoved) { expectFolderLife(longFolder()); }

TEST_F(XfileTest, MakeFoldersTakesBothSeparators) {
    EXPECT_EQ(xfileMakeFolders(folder / "a/b\\c//d\\"), 0);
    EXPECT_TRUE(folder.has("a\\b\\c\\d"));
    EXPECT_EQ(xfileMakeFolders(folder / "a/b\\c//d\\"), 0) << "existing folders are no error";
}

TEST_F(XfileTest, MakeFoldersWorksBeyond260Characters) {
    std::string deep = folder.path();
    while (deep.size() < 600) deep += "\\a folder with a long name";
    EXPECT_EQ(xfileMakeFolders(deep), 0);
    EXPECT_EQ(xfileExists("\\\\?\\" + deep), 0);
}

TEST_F(XfileTest, ALongPathIsOpenedInEveryMode) {
    ASSERT_EQ(xfileMakeFolders(longFolder()), 0);
    const std::string path = longFolder() + "\\f";
    EXPECT_EQ(writeWith(path, XfileMode::Read, "x"), XERR_NOENT);
    EXPECT_EQ(writeWith(path, XfileMode::Update, "x"), XERR_NOENT);
    EXPECT_EQ(writeWith(path, XfileMode::WriteNew, "abc"), 0);
    EXPECT_EQ(writeWith(path, XfileMode::ReadWrite, "A"), 0);
    EXPECT_EQ(writeWith(path, XfileMode::Append, "d"), 0);
    EXPECT_EQ(writeWith(path, XfileMode::Update, "AB"), 0);
    EXPECT_EQ(readLong(path), "ABcd");
    Xfile file;
    EXPECT_EQ(xfileOpen(file, path, XfileMode::Read), 0);
}

TEST_F(XfileTest, WritingModesCreateTheMissingFoldersOfALongPath) {
    const std::string path = longFolder() + "\\f";
    EXPECT_EQ(writeWith(path, XfileMode::Append, "x"), 0);
    EXPECT_EQ(readLong(path), "x");
}

TEST_F(XfileTest, ALongPathIsFlushedAndMoved) {
    const LogCapture log;
    const std::string path = longFolder() + "\\f";
    ASSERT_EQ(writeWith(path, XfileMode::WriteNew, "x"), 0);
    EXPECT_EQ(xfileFlush(path), 0);
    EXPECT_EQ(xfileMove(path, folder / "short"), 0);
    EXPECT_EQ(folder.read("short"), "x");
    EXPECT_EQ(xfileMoveWithRetry(folder / "short", path), 0);
    EXPECT_EQ(readLong(path), "x");
    EXPECT_EQ(xfileMove(path, path + "2"), 0);
    EXPECT_EQ(readLong(path + "2"), "x");
    EXPECT_EQ(log.texts(XLOG_WARNING), Lines{});
}

TEST_F(XfileTest, ARelativePathIsLongWhenItsAbsoluteFormIs) {
    const std::string inside = longFolder().substr(folder.path().size() + 1);
    ASSERT_EQ(xfileMakeFolders(longFolder() + "\\d"), 0);
    const InFolder here(folder.path());
    EXPECT_EQ(writeWith(".\\" + inside + "/d/../f", XfileMode::WriteNew, "x"), 0);
    EXPECT_EQ(readLong(longFolder() + "\\f"), "x");
}

TEST_F(XfileTest, MakeFoldersTakesARelativePath) {
    {
        const InFolder here(folder.path());
        EXPECT_EQ(xfileMakeFolders("rel/sub"), 0);
    }
    EXPECT_TRUE(folder.has("rel\\sub"));
}

TEST_F(XfileTest, MakeFoldersTakesADrivesCurrentFolder) {
    {
        const InFolder here(folder.path());
        const std::string drive = folder.path().substr(0, 2);
        EXPECT_EQ(xfileMakeFolders(drive), 0);
        EXPECT_EQ(folder.list(), Lines{});
        EXPECT_EQ(xfileMakeFolders(drive + "a\\b"), 0);
    }
    EXPECT_EQ(folder.list(), Lines{"a"});
    EXPECT_TRUE(folder.has("a\\b"));
}

TEST_F(XfileTest, MakeFoldersNeedsAPath) {
    const InFolder here(folder.path());
    EXPECT_NE(xfileMakeFolders(""), 0);
    EXPECT_EQ(folder.list(), Lines{});
}

TEST_F(XfileTest, MakeFoldersReportsTheFirstRealFailure) {
    folder.write("file", "x");
    EXPECT_EQ(xfileMakeFolders(folder / "file\\a\\b"), XERR_NOENT);
}

TEST_F(XfileTest, MoveReplacesTheDestination) {
    folder.write("from", "new");
    folder.write("to", "old");
    EXPECT_EQ(xfileMove(folder / "from", folder / "to"), 0);
    EXPECT_EQ(folder.list(), Lines{"to"});
    EXPECT_EQ(folder.read("to"), "new");
}

TEST_F(XfileTest, MoveOfAMissingSourceWarnsAndFails) {
    const LogCapture log;
    EXPECT_EQ(xfileMove(folder / "from", folder / "to"), XERR_NOENT);
    EXPECT_EQ(log.texts(), Lines{logged::fileNotFlushed(folder / "from")});
    EXPECT_EQ(folder.list(), Lines{});
}

TEST_F(XfileTest, MoveFromAMissingFolderMakesTheFolderAndFails) {
    const LogCapture log;
    const std::string from = folder / "new\\from";
    EXPECT_EQ(xfileMove(from, folder / "to"), XERR_NOENT);
    EXPECT_EQ(log.texts(), Lines{logged::fileNotFlushed(from)});
    EXPECT_EQ(folder.list(), Lines{"new"});
    EXPECT_FALSE(folder.has("new\\from"));
}

TEST_F(XfileTest, FlushNeverCreatesTheFile) {
    EXPECT_EQ(xfileFlush(folder / "f"), XERR_NOENT);
    EXPECT_FALSE(folder.has("f"));
    folder.write("f", "x");
    EXPECT_EQ(xfileFlush(folder / "f"), 0);
}

TEST_F(XfileTest, AMoveOntoAHeldFileFailsAlsoAfterItsRetries) {
    if (!HeldFile::isPossible()) GTEST_SKIP() << HeldFile::kNeedsWindows;
    folder.write("from", "new");
    folder.write("to", "old");
    for (const auto move : {xfileMove, xfileMoveWithRetry}) {
        HeldFile held(folder / "to");
        const XErr err = move(folder / "from", folder / "to");
        held.release();
        const char* const what = move == xfileMove ? "plain" : "with retry";
        EXPECT_TRUE(err == XERR_ACCES || err == 100032) << what << ": " << err;
        EXPECT_EQ(folder.read("to"), "old") << what;
        EXPECT_EQ(folder.read("from"), "new") << what;
    }
}

TEST_F(XfileTest, AMoveWithRetryOutlastsAShortHold) {
    if (!HeldFile::isPossible()) GTEST_SKIP() << HeldFile::kNeedsWindows;
    folder.write("from", "new");
    folder.write("to", "old");
    const BrieflyHeldFile held(folder / "to");
    EXPECT_EQ(xfileMoveWithRetry(folder / "from", folder / "to"), 0);
    EXPECT_EQ(folder.read("to"), "new");
}

TEST_F(XfileTest, MovingAFileOntoItselfKeepsItOpen) {
    Xfile file = opened(folder / "f", XfileMode::WriteNew);
    Xfile& same = file;
    file = std::move(same);
    EXPECT_TRUE(file.isOpen());
    std::uint32_t done = 0;
    EXPECT_EQ(xfileWrite(file, "abc", 3, done), 0);
    EXPECT_EQ(done, 3u);
}

TEST_F(XfileTest, AttributesDistinguishFoldersHoweverThePathIsSpelled) {
    folder.makeFolder("sub");
    folder.write("f", "");
    XfileAttributes attributes;
    for (const char* name : {"", ".", "..", "sub", "sub/", "sub\\", "sub//", "sub/.", "sub\\.."}) {
        attributes = {};
        EXPECT_EQ(xfileAttributes(folder / name, attributes), 0) << name;
        EXPECT_TRUE(attributes.isFolder) << name;
    }
    EXPECT_EQ(xfileAttributes(folder / "f", attributes), 0);
    EXPECT_FALSE(attributes.isFolder);
    EXPECT_FALSE(attributes.isReadOnly);
    EXPECT_EQ(xfileAttributes(folder / "sub/../f", attributes), 0);
    EXPECT_FALSE(attributes.isFolder);
}

TEST_F(XfileTest, AttributesOfAMissingFileAreNotSet) {
    XfileAttributes attributes{true, true};
    EXPECT_EQ(xfileAttributes(folder / "missing", attributes), XERR_NOENT);
    EXPECT_EQ(xfileAttributes(folder / "\xFF", attributes), 101113);
    EXPECT_TRUE(attributes.isFolder && attributes.isReadOnly) << "they are left alone";
}

TEST_F(XfileTest, AReadOnlyFileIsReportedAsReadOnly) {
    const std::string path = folder.write("f", "");
    namespace fs = std::filesystem;
    fs::permissions(systemPath(path), fs::perms::owner_read | fs::perms::group_read);
    Xfile file;
    const bool mayWrite = xfileOpen(file, path, XfileMode::Update) == 0;
    XfileAttributes attributes;
    EXPECT_EQ(xfileAttributes(path, attributes), 0);
    fs::permissions(systemPath(path), fs::perms::all);
    EXPECT_FALSE(attributes.isFolder);
    if (!attributes.isReadOnly && mayWrite) {
        GTEST_SKIP() << "needs Windows, where an administrator may not write every file either";
    }
    EXPECT_TRUE(attributes.isReadOnly);
}

TEST_F(XfileTest, ANewFolderMustNotExist) {
    EXPECT_EQ(xfileCreateNewFolder(folder / "d/"), 0);
    EXPECT_TRUE(folder.has("d"));
    EXPECT_EQ(xfileCreateNewFolder(folder / "d/"), XERR_ADDRINUSE);
    folder.write("f", "x");
    EXPECT_EQ(xfileCreateNewFolder(folder / "f"), XERR_ADDRINUSE);
    EXPECT_EQ(xfileCreateNewFolder(folder / "x\\y"), XERR_NOENT) << "its parent must exist";
}

TEST_F(XfileTest, TheWindowsErrorOfAFailureIsKept) {
    folder.write("f", "");
    Xfile file;
    ASSERT_EQ(xfileOpen(file, folder / "missing", XfileMode::Read), XERR_NOENT);
    EXPECT_EQ(file.windowsError(), 2);
    ASSERT_EQ(xfileOpen(file, folder / "f\\x", XfileMode::Read), XERR_NOENT);
    EXPECT_EQ(file.windowsError(), 3) << "the same status";
    ASSERT_EQ(xfileOpen(file, folder.path(), XfileMode::Read), XERR_ACCES);
    EXPECT_EQ(file.windowsError(), 5);
    ASSERT_EQ(xfileOpen(file, folder / "\xFF", XfileMode::Read), 101113);
    EXPECT_EQ(file.windowsError(), 1113);
    ASSERT_EQ(xfileOpen(file, folder / "f", XfileMode::Append), 0);
    std::uint32_t done = 0;
    char byte = 0;
    ASSERT_EQ(xfileRead(file, &byte, 1, done), XERR_ACCES);
    EXPECT_EQ(file.windowsError(), 5);
    std::int64_t position = 0;
    ASSERT_EQ(xfileSeek(file, -1, XfileSeekFrom::Begin, position), 100131);
    EXPECT_EQ(file.windowsError(), 131);
}

TEST_F(XfileTest, AReadWithRetryReadsTheWholeFile) {
    for (const std::string& text : {std::string("a\0b\n", 4), std::string()}) {
        folder.write("f", text);
        std::string content = "before";
        const XfileReadErrors errors = xfileReadWithRetry(folder / "f", content);
        EXPECT_EQ(errors.open, 0);
        EXPECT_EQ(errors.bytes, 0);
        EXPECT_EQ(content, text);
    }
}

TEST_F(XfileTest, AReadWithRetryOfAFileThatCannotBeOpenedHasTheErrorAndNoContent) {
    const std::pair<std::string, int> cases[] = {
        {folder / "missing", 2}, {folder.path(), 5}, {folder / "\xFF", 1113}};
    for (const auto& [path, error] : cases) {
        std::string content = "before";
        const XfileReadErrors errors = xfileReadWithRetry(path, content);
        EXPECT_EQ(errors.open, error);
        EXPECT_EQ(errors.bytes, 0);
        EXPECT_EQ(content, "");
    }
}

TEST_F(XfileTest, AReadWithRetryOutlastsAShortHold) {
    if (!HeldFile::isPossible()) GTEST_SKIP() << HeldFile::kNeedsWindows;
    folder.write("f", "content");
    const BrieflyHeldFile held(folder / "f");
    std::string content;
    EXPECT_EQ(xfileReadWithRetry(folder / "f", content).open, 0);
    EXPECT_EQ(content, "content");
}

TEST_F(XfileTest, AReadWithRetryGivesUpOnALongHold) {
    if (!HeldFile::isPossible()) GTEST_SKIP() << HeldFile::kNeedsWindows;
    folder.write("f", "content");
    HeldFile held(folder / "f");
    std::string content;
    EXPECT_EQ(xfileReadWithRetry(folder / "f", content).open, 32);
    held.release();
    EXPECT_EQ(folder.read("f"), "content");
}
