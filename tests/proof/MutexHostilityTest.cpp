// The machine-wide lock with owners that are killed, or suspended.
#include "conf/Conf.h"
#include "conf/ConfStore.h"
#include "support/LogCapture.h"
#include "support/LogLines.h"
#include "support/Proof.h"
#include "support/Subprocess.h"
#include "support/TempFolder.h"
#include "support/TestHeaders.h"
#include "support/WindowsForTests.h"
#include "support/process_figures.h"
#include "xpl/XmutexNamed.h"

namespace {

std::string shortName() { return "proof_" + std::to_string(::GetCurrentProcessId()); }

using SuspendCall = long(__stdcall*)(HANDLE process);

SuspendCall processCall(const char* name) {
    return reinterpret_cast<SuspendCall>(
        reinterpret_cast<void*>(::GetProcAddress(::GetModuleHandleW(L"ntdll.dll"), name)));
}

}  // namespace

SUBPROCESS(takesTheLockForEver) {
    XmutexNamed mutex;
    if (mutex.init(arguments[0]) != 0) return 1;
    mutex.lock();
    std::printf("locked\n");
    std::fflush(stdout);
    ::Sleep(INFINITE);
    mutex.unlock();
    return 0;
}

TEST(MutexHostilityTest, ALockIsTakenOverFromAKilledOwner) {
    const std::string name = shortName();
    XmutexNamed mutex;
    ASSERT_EQ(mutex.init(name), 0);
    const LogCapture log;
    const int rounds = proofSize(30, 1000);
    long handles = 0;
    for (int i = 0; i < rounds; ++i) {
        ChildProcess owner = startSubprocess("takesTheLockForEver", {name});
        ASSERT_EQ(owner.readLine(), "locked");
        ASSERT_FALSE(mutex.try_lock());
        owner.kill();
        mutex.lock();
        mutex.unlock();
        if (i == 5) handles = openHandles();
    }
    EXPECT_LE(openHandles(), handles + HANDLES_OF_THE_SYSTEM);
}

// Takes the lock, waits for the event, prints the file, and releases the lock.
SUBPROCESS(takesTheLockUntilTold) {
    XmutexNamed mutex;
    const HANDLE event = ::OpenEventW(SYNCHRONIZE, FALSE, wideForTests(arguments[1]).c_str());
    if (event == nullptr || mutex.init(arguments[0]) != 0) return 1;
    const std::lock_guard<XmutexNamed> guard(mutex);
    std::printf("locked\n");
    std::fflush(stdout);
    if (::WaitForSingleObject(event, INFINITE) != WAIT_OBJECT_0) return 2;
    std::printf("\"%s\"", readBytes(arguments[2]).c_str());
    return 0;
}

TEST(MutexHostilityTest, ACommitWaitsForASuspendedOwner) {
    const TempFolder folder;
    const LogCapture log;
    folder.write("vantrel.conf", "");
    ConfStore& store = confStore();
    const std::string lock = "Global\\" + shortName();
    store.fileLockName = lock;
    ASSERT_EQ(confLibInit(store, folder / "vantrel.conf", false), 0);
    confSetString(store, "vtr.locale", "x");
    const std::string name = shortName() + "_go";
    const HANDLE go =
        ::CreateEventW(nullptr, /*bManualReset=*/TRUE, FALSE, wideForTests(name).c_str());
    ChildProcess owner =
        startSubprocess("takesTheLockUntilTold", {lock, name, folder / "vantrel.conf"});
    ASSERT_EQ(owner.readLine(), "locked");
    ASSERT_GE(processCall("NtSuspendProcess")(owner.handle()), 0);
    std::atomic<bool> committed{false};
    std::thread committer([&] {
        EXPECT_EQ(confCommit(store), 0);
        committed = true;
    });
    ::SetEvent(go);
    ::Sleep(static_cast<DWORD>(proofSize(2500, 10'000)));
    EXPECT_FALSE(committed);
    EXPECT_EQ(folder.read("vantrel.conf"), "");
    EXPECT_EQ(folder.list(), std::vector<std::string>{"vantrel.conf"});
    EXPECT_GE(processCall("NtResumeProcess")(owner.handle()), 0);
    const ChildResult result = owner.finish();
    committer.join();
    ::CloseHandle(go);
    EXPECT_EQ(result.status, 0u);
    EXPECT_EQ(result.out, "\"\"") << "nobody wrote as long as it had the lock";
    EXPECT_NE(folder.read("vantrel.conf").find("vtr.locale=\"x\"\n"), std::string::npos);
    EXPECT_EQ(folder.list(), std::vector<std::string>{"vantrel.conf"});
}

TEST(MutexHostilityTest, ALockWhoseNameIsAnotherObjectsFailsTheStart) {
    const TempFolder folder;
    const LogCapture log;
    const std::string name = shortName() + "_event";
    const HANDLE event = ::CreateEventW(nullptr, FALSE, FALSE, wideForTests(name).c_str());
    ConfCatalogue catalogue = confProductCatalogue();
    ConfStore store(catalogue, confDiskFiles());
    store.fileLockName = name;
    EXPECT_EQ(confLibInit(store, folder.write("vantrel.conf", ""), false), XERR_FAILURE);
    EXPECT_EQ(log.texts(), std::vector<std::string>{logged::mutexNotMade(name, "6")});
    ::CloseHandle(event);
    EXPECT_EQ(confLibInit(store, folder / "vantrel.conf", false), 0);
}
