// What Windows is asked for when files are opened: which handles children inherit.
#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <vector>

#include "ImportTable.h"
#include "conf/Conf.h"
#include "conf/ConfStore.h"
#include "support/LogCapture.h"
#include "support/Scene.h"
#include "support/TempFolder.h"
#include "support/WindowsForTests.h"
#include "xpl/Xfile.h"
#include "xpl/Xlog.h"
#include "xpl/Xtext.h"

namespace {

using Lines = std::vector<std::string>;

// The system's own function, past the import table.
template <typename Function>
Function* systemCall(const char* name) {
    return reinterpret_cast<Function*>(
        reinterpret_cast<void*>(::GetProcAddress(::GetModuleHandleW(L"kernel32.dll"), name)));
}

}  // namespace

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
    static auto* const open = systemCall<decltype(::CreateFileW)>("CreateFileW");
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
    EXPECT_EQ(xfileMovePatiently(folder / "g", folder / "h"), 0);
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
SCENE(opensTheLog) {
    const ReplacedImport<decltype(::CreateFileW)> seen("CreateFileW", seeOpen);
    if (xlogSetFile(arguments[0]) != 0) return 1;
    for (const std::string& line : opens) std::printf("%s\n", line.c_str());
    return 0;
}

TEST_F(InheritanceArguments, TheLogIsInherited) {
    const ChildResult result = runScene("opensTheLog", {folder / "Player.log"});
    EXPECT_EQ(result.status, 0u);
    EXPECT_EQ(result.out, "inherited Player.log\r\n");
}
