// The machine-wide lock among processes that die with it, or are stopped while they hold it.
#include <gtest/gtest.h>

#include <atomic>
#include <cstdio>
#include <thread>

#include "conf/Conf.h"
#include "conf/ConfStore.h"
#include "support/LogCapture.h"
#include "support/Proof.h"
#include "support/Scene.h"
#include "support/TempFolder.h"
#include "support/WindowsForTests.h"
#include "support/process_figures.h"
#include "xpl/XmutexNamed.h"

namespace {

constexpr const char* kLock = "Global\\vtr_conf_nvo";

std::string shortName() { return "proof_" + std::to_string(::GetCurrentProcessId()); }

using SuspendCall = long(__stdcall*)(HANDLE process);

SuspendCall processCall(const char* name) {
    return reinterpret_cast<SuspendCall>(
        reinterpret_cast<void*>(::GetProcAddress(::GetModuleHandleW(L"ntdll.dll"), name)));
}

}  // namespace

// Takes the lock and says so; killed with it.
SCENE(takesTheLockForEver) {
    XmutexNamed mutex;
    if (mutex.init(arguments[0]) != 0) return 1;
    mutex.lock();
    std::printf("locked\n");
    std::fflush(stdout);
    ::Sleep(INFINITE);
    mutex.unlock();
    return 0;
}

TEST(MutexHostilityTest, OwnersThatAreKilledAreTakenOverFrom) {
    const std::string name = shortName();
    XmutexNamed mutex;
    ASSERT_EQ(mutex.init(name), 0);
    const LogCapture log;
    const int rounds = proofSize(30, 1000);
    long handles = 0;
    for (int i = 0; i < rounds; ++i) {
        ChildProcess owner = startScene("takesTheLockForEver", {name});
        ASSERT_EQ(owner.readLine(), "locked");
        ASSERT_FALSE(mutex.try_lock());
        owner.kill();
        mutex.lock();
        mutex.unlock();
        if (i == 5) handles = openHandles();
    }
    EXPECT_LE(openHandles(), handles + HANDLES_OF_THE_SYSTEM);
}

TEST(MutexHostilityTest, ACommitWaitsForAnOwnerThatIsStopped) {
    const TempFolder folder;
    const LogCapture log;
    folder.write("vantrel.conf", "");
    ConfStore& store = confStore();
    ASSERT_EQ(confLibInit(store, folder / "vantrel.conf", false), 0);
    confSetString(store, "vtr.locale", "x");
    ChildProcess owner = startScene("takesTheLockForEver", {kLock});
    ASSERT_EQ(owner.readLine(), "locked");
    ASSERT_GE(processCall("NtSuspendProcess")(owner.handle()), 0);
    std::atomic<bool> committed{false};
    std::thread committer([&] {
        EXPECT_EQ(confCommit(store), 0);
        committed = true;
    });
    ::Sleep(300);
    EXPECT_FALSE(committed);
    EXPECT_EQ(folder.read("vantrel.conf"), "");
    ASSERT_GE(processCall("NtResumeProcess")(owner.handle()), 0);
    owner.kill();
    committer.join();
    EXPECT_NE(folder.read("vantrel.conf").find("vtr.locale=\"x\"\n"), std::string::npos);
}

TEST(MutexHostilityTest, ALockWhoseNameIsAnotherObjectsFailsTheStart) {
    const TempFolder folder;
    const LogCapture log;
    const std::string name = shortName() + "_event";
    const HANDLE event = ::CreateEventW(nullptr, FALSE, FALSE, wideForTests(name).c_str());
    ConfCatalogue catalogue = confProductCatalogue();
    ConfStore store(catalogue, confDiskFiles());
    store.fileLockName = name;
    EXPECT_NE(confLibInit(store, folder.write("vantrel.conf", ""), false), 0);
    ::CloseHandle(event);
    EXPECT_EQ(confLibInit(store, folder / "vantrel.conf", false), 0);
}
