// What Windows is asked for when files are opened, moved and removed: which handles children
// inherit, and in which form paths arrive.
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

// "inherited NAME" or "private NAME" for each file that was asked for.
Lines opens;

std::string nameOf(LPCWSTR path) {
    const std::string text = xtextToUtf8(path);
    return text.substr(text.rfind('\\') + 1);
}

HANDLE WINAPI seeOpen(LPCWSTR path, DWORD access, DWORD share, LPSECURITY_ATTRIBUTES security,
                      DWORD disposition, DWORD flags, HANDLE model) {
    static auto* const open = systemFunction<decltype(::CreateFileW)>("CreateFileW");
    const bool isInherited = security != nullptr && security->bInheritHandle != FALSE;
    opens.push_back((isInherited ? "inherited " : "private ") + nameOf(path));
    return open(path, access, share, security, disposition, flags, model);
}

class InheritanceArguments : public ::testing::Test {
 protected:
    InheritanceArguments() { opens.clear(); }

    const ReplacedImport<decltype(::CreateFileW)> seen{"CreateFileW", seeOpen};
    TempFolder folder;
    LogCapture log;
};

}  // namespace

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

// In a process of its own, whose log it is.
SUBPROCESS(opensTheLog) {
    const ReplacedImport<decltype(::CreateFileW)> seen("CreateFileW", seeOpen);
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

namespace {

constexpr int kWriters = 4;
constexpr int kLinesOfAWriter = 100;

struct LogWrites {
    std::mutex guard;
    DWORD access = 0;  // which the file was opened with
    Lines texts;
};
LogWrites logWrites;

HANDLE WINAPI seeAccess(LPCWSTR path, DWORD access, DWORD share, LPSECURITY_ATTRIBUTES security,
                        DWORD disposition, DWORD flags, HANDLE model) {
    static auto* const open = systemFunction<decltype(::CreateFileW)>("CreateFileW");
    logWrites.access = access;
    return open(path, access, share, security, disposition, flags, model);
}

BOOL WINAPI seeWrite(HANDLE file, LPCVOID bytes, DWORD size, LPDWORD done,
                     LPOVERLAPPED overlapped) {
    static auto* const write = systemFunction<decltype(::WriteFile)>("WriteFile");
    const std::lock_guard lock(logWrites.guard);
    logWrites.texts.emplace_back(static_cast<const char*>(bytes), size);
    return write(file, bytes, size, done, overlapped);
}

std::string messageOf(int writer, int line) {
    return std::to_string(writer) + ":" + std::to_string(line) + " " +
           std::string(300, static_cast<char>('a' + writer));
}

void logLinesOf(int writer) {
    constexpr XlogModule module{XlogTag::CONF, "f"};
    for (int i = 0; i < kLinesOfAWriter; ++i) XLOG_I(module, "%s", messageOf(writer, i).c_str());
}

}  // namespace

// In a process of its own, whose log it is.
SUBPROCESS(logsFromSeveralThreads) {
    const ReplacedImport<decltype(::CreateFileW)> opening("CreateFileW", seeAccess);
    const ReplacedImport<decltype(::WriteFile)> writing("WriteFile", seeWrite);
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

// What keeps lines whole where the system appends each write as a whole.
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

namespace {

// "FUNCTION PATH" for each call, "FUNCTION PATH > PATH" for a move.
Lines handed;

void note(const char* function, LPCWSTR path) {
    handed.push_back(std::string(function) + " " + xtextToUtf8(path));
}

HANDLE WINAPI noteOpen(LPCWSTR path, DWORD access, DWORD share, LPSECURITY_ATTRIBUTES security,
                       DWORD disposition, DWORD flags, HANDLE model) {
    static auto* const open = systemFunction<decltype(::CreateFileW)>("CreateFileW");
    note("CreateFileW", path);
    return open(path, access, share, security, disposition, flags, model);
}

DWORD WINAPI noteAttributes(LPCWSTR path) {
    static auto* const attributes =
        systemFunction<decltype(::GetFileAttributesW)>("GetFileAttributesW");
    note("GetFileAttributesW", path);
    return attributes(path);
}

BOOL WINAPI noteAttributesEx(LPCWSTR path, GET_FILEEX_INFO_LEVELS level, LPVOID data) {
    static auto* const attributes =
        systemFunction<decltype(::GetFileAttributesExW)>("GetFileAttributesExW");
    note("GetFileAttributesExW", path);
    return attributes(path, level, data);
}

BOOL WINAPI noteDelete(LPCWSTR path) {
    static auto* const remove = systemFunction<decltype(::DeleteFileW)>("DeleteFileW");
    note("DeleteFileW", path);
    return remove(path);
}

BOOL WINAPI noteRemoveFolder(LPCWSTR path) {
    static auto* const remove = systemFunction<decltype(::RemoveDirectoryW)>("RemoveDirectoryW");
    note("RemoveDirectoryW", path);
    return remove(path);
}

BOOL WINAPI noteCreateFolder(LPCWSTR path, LPSECURITY_ATTRIBUTES security) {
    static auto* const create = systemFunction<decltype(::CreateDirectoryW)>("CreateDirectoryW");
    note("CreateDirectoryW", path);
    return create(path, security);
}

BOOL WINAPI noteMove(LPCWSTR from, LPCWSTR to, DWORD flags) {
    static auto* const move = systemFunction<decltype(::MoveFileExW)>("MoveFileExW");
    note("MoveFileExW", from);
    handed.back() += " > " + xtextToUtf8(to);
    return move(from, to, flags);
}

BOOL WINAPI noteCopy(LPCWSTR from, LPCWSTR to, BOOL failIfThere) {
    static auto* const copy = systemFunction<decltype(::CopyFileW)>("CopyFileW");
    note("CopyFileW", from);
    handed.back() += " > " + xtextToUtf8(to);
    return copy(from, to, failIfThere);
}

class PathArguments : public ::testing::Test {
 protected:
    PathArguments() { handed.clear(); }

    // A name whose path in the folder has that many characters.
    std::string nameFor(std::size_t length) const {
        return std::string(length - folder.path().size() - 1, 'n');
    }

    // Every operation on a file or folder of that path, whose folder is `folder`.
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

    // What those are to hand over, `path` in this form.
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
    const ReplacedImport<decltype(::CreateFileW)> open{"CreateFileW", noteOpen};
    const ReplacedImport<decltype(::GetFileAttributesW)> attributes{"GetFileAttributesW",
                                                                    noteAttributes};
    const ReplacedImport<decltype(::GetFileAttributesExW)> attributesEx{"GetFileAttributesExW",
                                                                        noteAttributesEx};
    const ReplacedImport<decltype(::DeleteFileW)> deleteFile{"DeleteFileW", noteDelete};
    const ReplacedImport<decltype(::RemoveDirectoryW)> removeFolder{"RemoveDirectoryW",
                                                                    noteRemoveFolder};
    const ReplacedImport<decltype(::CreateDirectoryW)> createFolder{"CreateDirectoryW",
                                                                    noteCreateFolder};
    const ReplacedImport<decltype(::MoveFileExW)> move{"MoveFileExW", noteMove};
};

}  // namespace

TEST_F(PathArguments, A247CharacterPathIsHandedOverAsItIs) {
    const std::string path = folder.path() + "\\./" + nameFor(247);
    useEverything(path);
    EXPECT_EQ(handed, everythingWith(path));
}

TEST_F(PathArguments, A248CharacterPathIsHandedOverInTheLongForm) {
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

TEST_F(PathArguments, APathWithoutAnAbsoluteFormIsHandedOverAsItIs) {
    const ReplacedImport<decltype(::GetFullPathNameW)> refused(
        "GetFullPathNameW", [](LPCWSTR, DWORD, LPWSTR, LPWSTR*) -> DWORD { return 0; });
    const std::string path = folder / nameFor(248);
    static_cast<void>(xfileExists(path));
    EXPECT_EQ(handed, Lines{"GetFileAttributesW " + path});
}

// Qt hands every absolute path over in the long form, so that its length needs no look.
TEST(QtPathArguments, WhatIsCopiedIsInTheLongForm) {
    const TempFolder folder;
    const LogCapture log;
    folder.write("from\\sub\\f", "x");
    folder.makeFolder("to");
    handed.clear();
    {
        const ReplacedImport<decltype(::CopyFileW)> copy{"CopyFileW", noteCopy, "Qt5Core.dll"};
        const ReplacedImport<decltype(::CreateDirectoryW)> create{"CreateDirectoryW",
                                                                  noteCreateFolder, "Qt5Core.dll"};
        EXPECT_EQ(utlCopyRecursive(folder / "from", folder / "to"), 0);
    }
    const std::string root = "\\\\?\\" + folder.path();
    EXPECT_EQ(handed, (Lines{"CreateDirectoryW " + root + "\\to\\sub",
                             "CopyFileW " + root + "\\from\\sub\\f > " + root + "\\to\\sub\\f"}));
}
