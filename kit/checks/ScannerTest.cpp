// Commits and saves while this machine's scanner is running.
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <string>

#include "ImportTable.h"
#include "appc/Appc.h"
#include "appc/AppcStore.h"
#include "conf/Conf.h"
#include "conf/ConfStore.h"
#include "support/LogCapture.h"
#include "support/Proof.h"
#include "support/RegistrySandbox.h"
#include "support/Subprocess.h"
#include "support/TempFolder.h"
#include "support/WindowsForTests.h"

namespace {

// Counts of file moves, by their results.
struct Moves {
    std::atomic<int> all{0};
    std::atomic<int> denied{0};  // error 5
    std::atomic<int> shared{0};  // error 32
    std::atomic<int> others{0};
};
Moves moves;

BOOL WINAPI countedMove(LPCWSTR from, LPCWSTR to, DWORD flags) {
    const BOOL isMoved = ::MoveFileWithProgressW(from, to, nullptr, nullptr, flags);
    const DWORD error = ::GetLastError();
    ++moves.all;
    if (!isMoved) {
        std::atomic<int>& count = error == ERROR_ACCESS_DENIED       ? moves.denied
                                  : error == ERROR_SHARING_VIOLATION ? moves.shared
                                                                     : moves.others;
        ++count;
    }
    ::SetLastError(error);
    return isMoved;
}

void printMoves(const char* what, int operations, int failed) {
    std::printf("[figure] %s %d\n", what, operations);
    std::printf("[figure] %s-failed %d\n", what, failed);
    std::printf("[figure] %s-retries %d\n", what, moves.all - operations);
    std::printf("[figure] %s-error-5 %d\n", what, moves.denied.load());
    std::printf("[figure] %s-error-32 %d\n", what, moves.shared.load());
    std::printf("[figure] %s-other-errors %d\n", what, moves.others.load());
}

constexpr int kShort = 300;
constexpr int kFull = 10'000;

// Calls an operation repeatedly and returns the number of failures.
template <typename Operation>
int failuresOf(int times, Operation operation) {
    int failed = 0;
    for (int i = 0; i < times; ++i) failed += operation(i) == XERR_SUCCESS ? 0 : 1;
    return failed;
}

}  // namespace

SUBPROCESS(commitsManyTimes) {
    const int times = proofSize(kShort, kFull);
    ConfStore& store = confStore();
    if (xlogLibInit(nullptr, arguments[0] + "\\log") != XERR_SUCCESS) return 1;
    if (confLibInit(store, arguments[0] + "\\vantrel.conf", false) != XERR_SUCCESS) return 2;
    const ReplacedImport<decltype(::MoveFileExW)> counted("MoveFileExW", countedMove);
    const int failed = failuresOf(times, [&](int i) {
        confSetString(store, "vtr.guid", std::to_string(i));
        return confCommit(store);
    });
    printMoves("commits", times, failed);
    return failed == 0 && moves.all >= times ? 0 : 3;
}

SUBPROCESS(savesManyTimes) {
    const int times = proofSize(kShort, kFull);
    RegistrySandbox registry;
    registry.set("UserDefinedDir", arguments[0]);
    if (xlogLibInit(nullptr, arguments[0] + "\\log") != XERR_SUCCESS) return 1;
    AppcStore& store = appcStore();
    if (appcLibInit(store, "Nougat64") != XERR_SUCCESS) return 2;
    const ReplacedImport<decltype(::MoveFileExW)> counted("MoveFileExW", countedMove);
    const int failed = failuresOf(times, [&](int i) {
        return appcUpdateApp(store, "com.a", "com.a.Main", "A", i, "1.0", "");
    });
    printMoves("saves", times, failed);
    return failed == 0 && moves.all >= times ? 0 : 3;
}

namespace {

void play(const std::string& subprocess, const std::string& folder) {
    ChildOptions options;
    options.limit = std::chrono::minutes(30);
    const ChildResult result = runSubprocess(subprocess, {folder}, options);
    std::printf("%s%s", result.out.c_str(), result.err.c_str());
    EXPECT_EQ(result.status, 0u);
}

}  // namespace

TEST(ScannerTest, EveryCommitSucceeds) {
    const TempFolder folder;
    folder.write("vantrel.conf", "vtr.locale=\"en-US\"\n");
    play("commitsManyTimes", folder.path());
}

TEST(ScannerTest, EverySaveOfAnAppCacheSucceeds) {
    const TempFolder folder;
    folder.makeFolder("Engine");
    folder.makeFolder("Engine\\Nougat64");
    play("savesManyTimes", folder.path());
}
