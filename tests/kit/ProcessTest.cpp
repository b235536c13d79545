#include "Process.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

#include "Files.h"
#include "support/Platform.h"
#include "support/Subprocess.h"
#include "support/TempFolder.h"
#include "support/WindowsForTests.h"

namespace {

using Words = std::vector<std::string>;

// Runs a subprocess of this program, with its output in the file "out".
ProcessRun runOwn(const TempFolder& folder, const std::string& name, const Words& arguments,
                  int seconds = 60) {
    Words command{ownProgram(), "--subprocess", name};
    command.insert(command.end(), arguments.begin(), arguments.end());
    return runProcess(command, systemPath(folder.path()), systemPath(folder / "out"), seconds);
}

bool hasEnded(unsigned long id) {
    const HANDLE process = ::OpenProcess(SYNCHRONIZE, /*bInheritHandle=*/FALSE, id);
    if (process == nullptr) return true;
    const bool isOver = ::WaitForSingleObject(process, 30'000) == WAIT_OBJECT_0;
    ::CloseHandle(process);
    return isOver;
}

}  // namespace

SUBPROCESS(printsItsArguments) {
    for (const std::string& argument : arguments) std::printf("<%s>", argument.c_str());
    std::fputs("error", stderr);
    return 7;
}

SUBPROCESS(printsAVariable) {
    const wchar_t* const value = ::_wgetenv(L"QX_KIT_TEST");
    std::printf("%ls", value == nullptr ? L"none" : value);
    return 0;
}

SUBPROCESS(sleepsForEver) {
    ::Sleep(INFINITE);
    return 0;
}

SUBPROCESS(startsAnotherAndSleeps) {
    const ChildProcess child = startSubprocess("sleepsForEver");
    std::printf("%lu\n", ::GetProcessId(child.handle()));
    std::fflush(stdout);
    ::Sleep(INFINITE);
    return 0;
}

TEST(KitProcess, StatusAndOutputAreKept) {
    const TempFolder folder;
    const ProcessRun run = runOwn(folder, "printsItsArguments", {"a b", "q\"x", "c\\", ""});
    EXPECT_EQ(run.error, 0u);
    EXPECT_EQ(run.status, 7u);
    EXPECT_FALSE(run.isLate);
    EXPECT_FALSE(run.isStopped);
    const std::string out = folder.read("out");
    EXPECT_NE(out.find("<a b><q\"x><c\\><>"), std::string::npos) << out;
    EXPECT_NE(out.find("error"), std::string::npos) << out;
}

TEST(KitProcess, AProgramThatIsNotThereHasItsError) {
    const TempFolder folder;
    const ProcessRun run = runProcess({folder / "none.exe"}, systemPath(folder.path()),
                                      systemPath(folder / "out"), 10);
    EXPECT_EQ(run.error, DWORD{ERROR_FILE_NOT_FOUND});
}

TEST(KitProcess, AtItsLimitItEnds) {
    const TempFolder folder;
    const ProcessRun run = runOwn(folder, "sleepsForEver", {}, 1);
    EXPECT_TRUE(run.isLate);
    EXPECT_FALSE(run.isStopped);
}

TEST(KitProcess, VariablesLastAsLongAsTheirObject) {
    const TempFolder folder;
    {
        const ScopedVariables variables({{"QX_KIT_TEST", "a=b"}});
        runOwn(folder, "printsAVariable", {});
        EXPECT_EQ(folder.read("out"), "a=b");
    }
    runOwn(folder, "printsAVariable", {});
    EXPECT_EQ(folder.read("out"), "none");
}

TEST(KitProcess, AVariableHasItsEarlierValueAgain) {
    const TempFolder folder;
    const ScopedVariables earlier({{"QX_KIT_TEST", "earlier"}});
    { const ScopedVariables variables({{"QX_KIT_TEST", "later"}}); }
    runOwn(folder, "printsAVariable", {});
    EXPECT_EQ(folder.read("out"), "earlier");
}

SUBPROCESS(isStopped) {
    const TempFolder folder;
    std::thread user([&folder] {
        const auto out = systemPath(folder / "out");
        while (readFile(out).find('\n') == std::string::npos) sleepMs(5);
        stopEverything();
    });
    const ProcessRun run = runOwn(folder, "startsAnotherAndSleeps", {});
    user.join();
    if (!run.isStopped || run.isLate || !isEverythingStopped()) return 1;
    return hasEnded(std::strtoul(folder.read("out").c_str(), nullptr, 10)) ? 0 : 2;
}

TEST(KitProcess, AStopEndsWhatRunsAndWhatThatHasStarted) {
    EXPECT_FALSE(isEverythingStopped());
    EXPECT_EQ(runSubprocess("isStopped").status, 0u);
}

TEST(KitProcess, AProgramOfPathIsFoundByItsName) {
    EXPECT_NE(programOnPath("cmd").find("cmd.exe"), std::string::npos);
    EXPECT_EQ(programOnPath("no-such-program"), "");
}

TEST(KitFiles, ADigestIsThatOfTheBytes) {
    const TempFolder folder;
    EXPECT_EQ(fileDigest(systemPath(folder.write("abc", "abc"))).digest,
              "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
    EXPECT_EQ(fileDigest(systemPath(folder.write("empty", ""))).digest,
              "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
    const FileDigest missing = fileDigest(systemPath(folder / "none"));
    EXPECT_EQ(missing.digest, "");
    EXPECT_EQ(missing.fault, "missing");
}

TEST(KitFiles, AFolderIsCopiedWithEverythingInIt) {
    const TempFolder folder;
    folder.makeFolder("from");
    folder.makeFolder("from\\sub");
    folder.write("from\\a", "1");
    folder.write("from\\sub\\b", std::string("2\0\n", 3));
    EXPECT_TRUE(copyFolder(systemPath(folder / "from"), systemPath(folder / "to\\here")));
    EXPECT_EQ(folder.read("to\\here\\a"), "1");
    EXPECT_EQ(folder.read("to\\here\\sub\\b"), std::string("2\0\n", 3));
    EXPECT_FALSE(copyFolder(systemPath(folder / "from"), systemPath(folder / "to\\here")));
}

TEST(KitFiles, TheEndOfAFileIsReadAlone) {
    const TempFolder folder;
    folder.write("f", "0123456789");
    EXPECT_EQ(readEnd(systemPath(folder / "f"), 4), "6789");
    EXPECT_EQ(readEnd(systemPath(folder / "f"), 40), "0123456789");
    EXPECT_EQ(readFile(systemPath(folder / "none")), "");
}
