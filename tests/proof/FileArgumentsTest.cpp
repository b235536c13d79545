// The arguments of Windows' file functions: which handles children inherit, and the form of paths.
#include "ImportTable.h"
#include "conf/Conf.h"
#include "conf/ConfStore.h"
#include "support/LogCapture.h"
#include "support/Subprocess.h"
#include "support/TempFolder.h"
#include "support/TestHeaders.h"
#include "support/WindowsForTests.h"
#include "utl/UtlCopy.h"
#include "xpl/Xfile.h"
#include "xpl/Xlog.h"
#include "xpl/Xtext.h"

// Inheritance.

namespace {

constexpr char kCreateFile[] = "CreateFileW";
constexpr char kWriteFile[] = "WriteFile";

// "inherited NAME" or "private NAME" for each file that was opened.
Lines opens;

std::string nameOf(LPCWSTR path) {
    const std::string text = xtextToUtf8(path);
    return text.substr(text.rfind('\\') + 1);
}

HANDLE WINAPI seeOpen(LPCWSTR path, DWORD access, DWORD share, LPSECURITY_ATTRIBUTES security,
                      DWORD disposition, DWORD flags, HANDLE model) {
    const bool isInherited = security != nullptr && security->bInheritHandle != FALSE;
    opens.push_back((isInherited ? "inherited " : "private ") + nameOf(path));
    return callSystem<kCreateFile, HANDLE>(path, access, share, security, disposition, flags,
                                           model);
}

class InheritanceArguments : public ::testing::Test {
 protected:
    InheritanceArguments() { opens.clear(); }

    const ReplacedImport<decltype(::CreateFileW)> seen{"CreateFileW", seeOpen};
    TempFolder folder;
    LogCapture log;
};

TEST_F(InheritanceArguments, AnOpenIsInheritedUnlessItIsPrivate) {
    Xfile file;
    EXPECT_EQ(xfileOpen(file, folder / "a", XfileMode::WriteNew), 0);
    EXPECT_EQ(xfileOpen(file, folder / "b", XfileMode::WriteNew, XfileSharing::Private), 0);
    EXPECT_EQ(opens, (Lines{"inherited a", "private b"}));
}

TEST_F(InheritanceArguments, AFlushIsPrivate) {
    EXPECT_EQ(xfileFlush(folder.write("f", "x")), 0);
    EXPECT_EQ(opens, Lines{"private f"});
}

TEST_F(InheritanceArguments, TheFlushOfAMoveIsPrivate) {
    folder.write("f", "x");
    EXPECT_EQ(xfileMove(folder / "f", folder / "g"), 0);
    EXPECT_EQ(xfileMoveWithRetry(folder / "g", folder / "h"), 0);
    EXPECT_EQ(opens, (Lines{"private f", "private g"}));
}

TEST_F(InheritanceArguments, EveryFileOfACommitIsPrivate) {
    const ConfCatalogue catalogue = confProductCatalogue();
    ConfStore store(catalogue, confDiskFiles());
    ASSERT_EQ(confLibInit(store, folder.write("vantrel.conf", ""), false), 0);
    EXPECT_EQ(opens, Lines{"private vantrel.conf"});
    opens.clear();
    confSetString(store, "vtr.locale", "x");
    ASSERT_EQ(confCommit(store), 0);
    EXPECT_EQ(opens, (Lines{"private vantrel.conf-temp", "private vantrel.conf",
                            "private vantrel.conf-temp"}));
}

// In its own process, because it sets the process's log.
SUBPROCESS(opensTheLog) {
    const auto seen = REPLACED(CreateFileW, seeOpen);
    if (xlogSetFile(arguments[0]) != 0) return 1;
    for (const std::string& line : opens) std::printf("%s\n", line.c_str());
    return 0;
}

TEST_F(InheritanceArguments, TheLogIsInherited) {
    const ChildResult result = runSubprocess("opensTheLog", {folder / "Player.log"});
    EXPECT_EQ(result.status, 0u);
    EXPECT_EQ(result.out, "inherited Player.log\r\n");
}

// The log's lines.

constexpr int kWriters = 4;
constexpr int kLinesOfAWriter = 100;

struct LogWrites {
    std::mutex guard;
    DWORD access = 0;  // of the open file
    Lines texts;
};
LogWrites logWrites;

HANDLE WINAPI seeAccess(LPCWSTR path, DWORD access, DWORD share, LPSECURITY_ATTRIBUTES security,
                        DWORD disposition, DWORD flags, HANDLE model) {
    logWrites.access = access;
    return callSystem<kCreateFile, HANDLE>(path, access, share, security, disposition, flags,
                                           model);
}

BOOL WINAPI seeWrite(HANDLE file, LPCVOID bytes, DWORD size, LPDWORD done,
                     LPOVERLAPPED overlapped) {
    const std::lock_guard lock(logWrites.guard);
    logWrites.texts.emplace_back(static_cast<const char*>(bytes), size);
    return callSystem<kWriteFile, BOOL>(file, bytes, size, done, overlapped);
}

std::string messageOf(int writer, int line) {
    return std::to_string(writer) + ":" + std::to_string(line) + " " +
           std::string(300, static_cast<char>('a' + writer));
}

void logLinesOf(int writer) {
    constexpr XlogModule module{XlogTag::CONF, "f"};
    for (int i = 0; i < kLinesOfAWriter; ++i) XLOG_I(module, "%s", messageOf(writer, i).c_str());
}

// In its own process, because it sets the process's log.
SUBPROCESS(logsFromSeveralThreads) {
    const auto opening = REPLACED(CreateFileW, seeAccess);
    const auto writing = REPLACED(WriteFile, seeWrite);
    if (xlogLibInit(nullptr, arguments[0]) != 0) return 1;
    std::vector<std::thread> threads;
    for (int i = 0; i < kWriters; ++i) threads.emplace_back(logLinesOf, i);
    for (std::thread& thread : threads) thread.join();
    if (logWrites.access != FILE_APPEND_DATA) return 2;
    std::string all;
    for (const std::string& text : logWrites.texts) {
        if (text.find('\n') != text.size() - 1) return 3;
        all += text;
    }
    writeBytes(arguments[1], all);
    return 0;
}

// Windows appends each write as a whole, so lines stay whole.
TEST(LogArguments, EachLineIsOneWriteToTheEndOfTheFile) {
    const TempFolder folder;
    ASSERT_EQ(runSubprocess("logsFromSeveralThreads", {folder / "log", folder / "writes"}).status,
              0u);
    const Lines written = logMessages(folder.read("writes"));
    EXPECT_EQ(written.size(), std::size_t{kWriters * kLinesOfAWriter});
    std::set<std::string> expected;
    for (int writer = 0; writer < kWriters; ++writer) {
        for (int i = 0; i < kLinesOfAWriter; ++i) {
            expected.insert("I CONF  " + messageOf(writer, i));
        }
    }
    EXPECT_EQ(std::set<std::string>(written.begin(), written.end()), expected);
}

// The form of paths.

// "FUNCTION PATH" for each call, "FUNCTION PATH > PATH" for a move.
Lines handed;

template <typename Argument>
void noteDestination(Argument) {}
void noteDestination(LPCWSTR path) { handed.back() += " > " + xtextToUtf8(path); }

// Records the call and makes it.
template <const char* kName, typename Result, typename... Rest>
Result noting(LPCWSTR path, Rest... rest) {
    handed.push_back(std::string(kName) + " " + xtextToUtf8(path));
    (noteDestination(rest), ...);
    return callSystem<kName, Result>(path, rest...);
}

constexpr char kAttributes[] = "GetFileAttributesW";
constexpr char kAttributesEx[] = "GetFileAttributesExW";
constexpr char kDeleteFile[] = "DeleteFileW";
constexpr char kRemoveFolder[] = "RemoveDirectoryW";
constexpr char kCreateFolder[] = "CreateDirectoryW";
constexpr char kMove[] = "MoveFileExW";
constexpr char kCopy[] = "CopyFileW";

class PathArguments : public ::testing::Test {
 protected:
    PathArguments() { handed.clear(); }

    // A name whose path in the folder has that many characters.
    std::string nameFor(std::size_t length) const {
        return std::string(length - folder.path().size() - 1, 'n');
    }

    // Every operation on a file or folder of this path, which is in `folder`.
    void useEverything(const std::string& path) const {
        Xfile file;
        std::int64_t size = 0;
        EXPECT_EQ(xfileOpen(file, path, XfileMode::WriteNew), 0);
        xfileClose(file);
        EXPECT_EQ(xfileOpen(file, path, XfileMode::Read), 0);
        xfileClose(file);
        EXPECT_EQ(xfileExists(path), 0);
        EXPECT_EQ(xfileSizeOfPath(path, size), 0);
        EXPECT_EQ(xfileFlush(path), 0);
        EXPECT_EQ(xfileMove(path, folder / "m"), 0);
        EXPECT_EQ(xfileMoveWithRetry(folder / "m", path), 0);
        EXPECT_EQ(xfileDelete(path), 0);
        EXPECT_EQ(xfileCreateFolder(path), 0);
        EXPECT_EQ(xfileRemoveFolder(path), 0);
    }

    // The calls of those operations, with `path` in this form.
    Lines everythingWith(const std::string& path) const {
        const std::string lookAtFolder = "GetFileAttributesW " + folder.path();
        const std::string other = folder / "m";
        return {lookAtFolder,
                "CreateFileW " + path,
                "CreateFileW " + path,
                "GetFileAttributesW " + path,
                "GetFileAttributesExW " + path,
                lookAtFolder,
                "CreateFileW " + path,
                lookAtFolder,
                "CreateFileW " + path,
                "MoveFileExW " + path + " > " + other,
                lookAtFolder,
                "CreateFileW " + other,
                "MoveFileExW " + other + " > " + path,
                "DeleteFileW " + path,
                "CreateDirectoryW " + path,
                "RemoveDirectoryW " + path};
    }

    TempFolder folder;
    LogCapture log;
    const ReplacedImport<decltype(::CreateFileW)> create{kCreateFile, noting<kCreateFile>};
    const ReplacedImport<decltype(::GetFileAttributesW)> look{kAttributes, noting<kAttributes>};
    const ReplacedImport<decltype(::GetFileAttributesExW)> lookEx{kAttributesEx,
                                                                  noting<kAttributesEx>};
    const ReplacedImport<decltype(::DeleteFileW)> remove{kDeleteFile, noting<kDeleteFile>};
    const ReplacedImport<decltype(::RemoveDirectoryW)> rmdir{kRemoveFolder, noting<kRemoveFolder>};
    const ReplacedImport<decltype(::CreateDirectoryW)> mkdir{kCreateFolder, noting<kCreateFolder>};
    const ReplacedImport<decltype(::MoveFileExW)> move{kMove, noting<kMove>};
};

TEST_F(PathArguments, A247CharacterPathIsPassedAsItIs) {
    const std::string path = folder.path() + "\\./" + nameFor(247);
    useEverything(path);
    EXPECT_EQ(handed, everythingWith(path));
}

TEST_F(PathArguments, A248CharacterPathIsPassedInTheLongForm) {
    const std::string name = nameFor(248);
    useEverything(folder.path() + "\\./" + name);
    EXPECT_EQ(handed, everythingWith("\\\\?\\" + (folder / name)));
}

TEST_F(PathArguments, APathInTheLongFormStaysAsItIs) {
    for (const std::size_t length : {247u, 248u}) {
        handed.clear();
        const std::string path = "\\\\?\\" + (folder / nameFor(length));
        EXPECT_EQ(xfileExists(path), XERR_NOENT);
        EXPECT_EQ(xfileDelete(path), XERR_NOENT);
        EXPECT_EQ(handed, (Lines{"GetFileAttributesW " + path, "DeleteFileW " + path}));
    }
}

TEST_F(PathArguments, APathWithoutAnAbsoluteFormIsPassedAsItIs) {
    const auto refused =
        REPLACED(GetFullPathNameW, [](LPCWSTR, DWORD, LPWSTR, LPWSTR*) -> DWORD { return 0; });
    const std::string path = folder / nameFor(248);
    static_cast<void>(xfileExists(path));
    EXPECT_EQ(handed, Lines{"GetFileAttributesW " + path});
}

// Qt passes every absolute path in the long form, whatever its length.
TEST(QtPathArguments, WhatIsCopiedIsInTheLongForm) {
    const TempFolder folder;
    const LogCapture log;
    folder.write("from\\sub\\f", "x");
    folder.makeFolder("to");
    handed.clear();
    {
        const ReplacedImport<decltype(::CopyFileW)> copy{kCopy, noting<kCopy>, "Qt5Core.dll"};
        const ReplacedImport<decltype(::CreateDirectoryW)> create{
            kCreateFolder, noting<kCreateFolder>, "Qt5Core.dll"};
        EXPECT_EQ(utlCopyRecursive(folder / "from", folder / "to"), 0);
    }
    const std::string root = "\\\\?\\" + folder.path();
    EXPECT_EQ(handed, (Lines{"CreateDirectoryW " + root + "\\to\\sub",
                             "CopyFileW " + root + "\\from\\sub\\f > " + root + "\\to\\sub\\f"}));
}

}  // namespace
