// Trimming real processes, and registering with Windows.
#include "support/LogCapture.h"
#include "support/LogLines.h"
#include "support/RegistrySandbox.h"
#include "support/Subprocess.h"
#include "support/TempFolder.h"
#include "support/TestHeaders.h"
#include "support/WindowsForTests.h"
#include "utl/UtlProcess.h"

// Last: it needs <windows.h>.
#include <psapi.h>

namespace {

namespace fs = std::filesystem;

// An install folder with a copy of this program. Its path has the form of Windows' image paths.
class InstallFolder {
 public:
    InstallFolder() : path_(fs::canonical(fs::u8path(folder_.path())).u8string() + "\\") {
        for (const char* name : {"utl_test.exe", "Qt5Core.dll"}) {
            fs::copy_file(fs::u8path(builtProgram(name)), fs::u8path(path_ + name));
        }
    }

    // Ends in a separator, as the registry has it.
    const std::string& path() const { return path_; }
    std::string program() const { return path_ + "utl_test.exe"; }

    // Starts a process of the folder that holds this much memory.
    ChildProcess start(std::size_t megabytes) const {
        ChildProcess child(program(), {"--subprocess", "holdsMemory", std::to_string(megabytes)});
        EXPECT_EQ(child.readLine(), "ready");
        return child;
    }

 private:
    TempFolder folder_;
    std::string path_;
};

std::size_t workingSetOf(void* process) {
    PROCESS_MEMORY_COUNTERS counters{};
    EXPECT_TRUE(::GetProcessMemoryInfo(process, &counters, sizeof counters));
    return counters.WorkingSetSize;
}

// Tries the system call directly.
bool workingSetsCanBeEmptied(const InstallFolder& install) {
    const ChildProcess child = install.start(/*megabytes=*/64);
    const std::size_t before = workingSetOf(child.handle());
    EXPECT_TRUE(::EmptyWorkingSet(child.handle()));
    return workingSetOf(child.handle()) < before / 2;
}

}  // namespace

SUBPROCESS(trimsRealProcesses) {
    RegistrySandbox registry;
    registry.set("InstallDir", arguments[0]);
    const LogCapture log;
    const XErr result = utlTrimMemoryAllProcs();
    for (const std::string& line : log.texts(XLOG_VERBOSE)) std::printf("%s\n", line.c_str());
    std::printf("%d\n", result);
    return 0;
}

SUBPROCESS(holdsMemory) {
    std::vector<char> memory(std::stoul(arguments[0]) << 20, 'x');
    std::printf("ready\n");
    std::fflush(stdout);
    ::Sleep(120'000);
    return memory[0];
}

TEST(UtlTrim, ARealProcessOfTheInstallFolderIsTrimmed) {
    const InstallFolder install;
    const ChildProcess child = install.start(/*megabytes=*/1);
    const std::string id = std::to_string(::GetProcessId(child.handle()));
    EXPECT_EQ(subprocessOutput("trimsRealProcesses", {install.path()}),
              logged::memoryTrimmed(id, install.program()) + "\n0\n");
}

TEST(UtlTrim, ARealProcessOfAnotherFolderIsLeftAlone) {
    const InstallFolder install;
    const ChildProcess child = install.start(/*megabytes=*/1);
    EXPECT_EQ(subprocessOutput("trimsRealProcesses", {install.path() + "other\\"}), "0\n");
}

TEST(UtlTrim, TheWorkingSetShrinks) {
    const InstallFolder install;
    if (!workingSetsCanBeEmptied(install)) {
        GTEST_SKIP() << "needs Windows, whose working sets can be emptied";
    }
    const ChildProcess child = install.start(/*megabytes=*/64);
    const std::size_t before = workingSetOf(child.handle());
    EXPECT_GT(before, std::size_t{64} << 20);
    subprocessOutput("trimsRealProcesses", {install.path()});
    EXPECT_LT(workingSetOf(child.handle()), before / 2);
}

SUBPROCESS(registersTheRealCrashHandler) {
    RegistrySandbox registry;
    registry.set("InstallDir", arguments[0]);
    std::printf("%d\n", utlRegisterCrashHandler());
    return 0;
}

TEST(UtlCrashHandler, WindowsTakesTheModule) {
    const TempFolder folder;
    folder.write("QX-WerHandler.dll", "looked for only when the process crashes");
    EXPECT_EQ(subprocessOutput("registersTheRealCrashHandler", {folder.path() + "\\"}), "0\n");
}
