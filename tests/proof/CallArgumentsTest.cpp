// Arguments of Windows calls that no result shows: the calls that start processes, make the named
// mutex, and examine the running processes.
#include "AccessList.h"
#include "ImportTable.h"
#include "support/LogCapture.h"
#include "support/LogLines.h"
#include "support/RegistrySandbox.h"
#include "support/Subprocess.h"
#include "support/TestHeaders.h"
#include "support/WindowsForTests.h"
#include "utl/UtlProcess.h"
#include "utl/UtlProcessCalls.h"
#include "xpl/XmutexNamed.h"
#include "xpl/Xproc.h"

// Last: they need <windows.h>.
#include <psapi.h>
#include <shellapi.h>

namespace {

HANDLE newEvent() { return ::CreateEventW(nullptr, FALSE, FALSE, nullptr); }

bool isOpen(HANDLE handle) {
    DWORD flags = 0;
    return ::GetHandleInformation(handle, &flags) != FALSE;
}

// Starting a program.

using SeenCreate = ReplacedImport<decltype(::CreateProcessW)>;

struct Start {
    bool hasProgram;
    std::wstring commandLine;
    LPSECURITY_ATTRIBUTES processAttributes;
    LPSECURITY_ATTRIBUTES threadAttributes;
    BOOL inheritHandles;
    DWORD flags;
    LPVOID environment;
    bool hasFolder;
    STARTUPINFOW startup;
};

std::vector<Start> starts;
PROCESS_INFORMATION startedProcess;
DWORD startError;
bool startWorks;

// Overwrites the command line, as the system may.
BOOL WINAPI seeStart(LPCWSTR program, LPWSTR commandLine, LPSECURITY_ATTRIBUTES process,
                     LPSECURITY_ATTRIBUTES thread, BOOL inherit, DWORD flags, LPVOID environment,
                     LPCWSTR folder, LPSTARTUPINFOW startup, LPPROCESS_INFORMATION started) {
    starts.push_back({program != nullptr, commandLine, process, thread, inherit, flags, environment,
                      folder != nullptr, *startup});
    commandLine[0] = L'?';
    *started = startedProcess;
    ::SetLastError(startError);
    return startWorks;
}

// Replaces one of this process's standard handles while it lives.
class StandardHandle {
 public:
    explicit StandardHandle(DWORD id) : id_(id), before_(::GetStdHandle(id)) {
        ::SetStdHandle(id, own);
    }
    ~StandardHandle() {
        ::SetStdHandle(id_, before_);
        ::CloseHandle(own);
    }
    StandardHandle(const StandardHandle&) = delete;
    StandardHandle& operator=(const StandardHandle&) = delete;

    const HANDLE own = newEvent();

 private:
    const DWORD id_;
    const HANDLE before_;
};

class StartArguments : public ::testing::Test {
 protected:
    StartArguments() {
        starts.clear();
        startError = ERROR_SUCCESS;
        startWorks = true;
        startedProcess = {newEvent(), newEvent(), 1, 2};
    }
    ~StartArguments() override {
        for (const HANDLE handle : {startedProcess.hProcess, startedProcess.hThread}) {
            if (isOpen(handle)) ::CloseHandle(handle);
        }
    }

    const SeenCreate seen{"CreateProcessW", seeStart};
    const LogCapture log;
};

TEST_F(StartArguments, AProgramInheritsHandlesAndHasNoWindow) {
    EXPECT_EQ(xprocCreate_basic(nullptr, {R"(C:\P\x.exe)", "a b"}), 0);
    ASSERT_EQ(starts.size(), 1u);
    EXPECT_FALSE(starts[0].hasProgram) << "the command line names it";
    EXPECT_EQ(starts[0].commandLine, LR"("C:\\P\\x.exe" "a b")");
    EXPECT_EQ(starts[0].processAttributes, nullptr);
    EXPECT_EQ(starts[0].threadAttributes, nullptr);
    EXPECT_EQ(starts[0].inheritHandles, TRUE);
    EXPECT_EQ(starts[0].flags, 0x08000000u) << "CREATE_NO_WINDOW and nothing else";
    EXPECT_EQ(starts[0].environment, nullptr);
    EXPECT_FALSE(starts[0].hasFolder);
}

TEST_F(StartArguments, TheStandardHandlesAreGivenWithoutEffect) {
    const StandardHandle input(STD_INPUT_HANDLE);
    const StandardHandle output(STD_OUTPUT_HANDLE);
    const StandardHandle error(STD_ERROR_HANDLE);
    EXPECT_EQ(xprocCreate_basic(nullptr, {"x.exe"}), 0);
    ASSERT_EQ(starts.size(), 1u);
    STARTUPINFOW expected{};  // without the flag, the handles are ignored
    expected.cb = 104;
    expected.hStdInput = input.own;
    expected.hStdOutput = output.own;
    expected.hStdError = error.own;
    EXPECT_EQ(std::memcmp(&starts[0].startup, &expected, sizeof expected), 0);
}

TEST_F(StartArguments, TheProcessGoesToTheCallerAndItsThreadIsClosed) {
    XprocHandle handle = nullptr;
    EXPECT_EQ(xprocCreate_basic(&handle, {"x.exe"}), 0);
    EXPECT_EQ(handle, startedProcess.hProcess);
    EXPECT_TRUE(isOpen(startedProcess.hProcess));
    EXPECT_FALSE(isOpen(startedProcess.hThread));
}

TEST_F(StartArguments, AProcessThatTheCallerDoesNotWantIsClosedWithItsThread) {
    EXPECT_EQ(xprocCreate_basic(nullptr, {"x.exe"}), 0);
    EXPECT_FALSE(isOpen(startedProcess.hProcess));
    EXPECT_FALSE(isOpen(startedProcess.hThread));
}

TEST_F(StartArguments, AFailedStartClosesNothingAndLogsTheCommandLineUnchanged) {
    startError = ERROR_ACCESS_DENIED;
    startWorks = false;
    XprocHandle handle = &handle;
    EXPECT_EQ(xprocCreate_basic(&handle, {"x.exe"}), XERR_ACCES);
    EXPECT_EQ(handle, &handle);
    EXPECT_TRUE(isOpen(startedProcess.hProcess));
    EXPECT_TRUE(isOpen(startedProcess.hThread));
    EXPECT_EQ(log.texts(), Lines{logged::startFailed(R"("x.exe")", "5")});
}

TEST_F(StartArguments, AFailedStartWithoutAnErrorIsAFailure) {
    startWorks = false;
    XprocHandle handle = &handle;
    EXPECT_EQ(xprocCreate(&handle, {"x.exe"}), 100000);
    EXPECT_EQ(handle, &handle);
    EXPECT_TRUE(isOpen(startedProcess.hProcess));
    EXPECT_EQ(log.texts(), Lines{logged::startFailed(R"("x.exe")", "0")});
}

TEST_F(StartArguments, AStartThatWorksIsASuccessWhateverTheLastError) {
    startError = ERROR_ACCESS_DENIED;
    XprocHandle handle = nullptr;
    EXPECT_EQ(xprocCreate(&handle, {"x.exe"}), 0);
    EXPECT_EQ(handle, startedProcess.hProcess);
    EXPECT_EQ(log.texts(), Lines{});
}

// Starting a program with elevation.

using SeenShell = ReplacedImport<decltype(::ShellExecuteExW)>;

struct Elevation {
    SHELLEXECUTEINFOW info;
    std::wstring verb;
    std::wstring file;
    std::wstring parameters;
};

std::vector<Elevation> elevations;
HANDLE elevatedProcess;

BOOL WINAPI seeElevation(SHELLEXECUTEINFOW* info) {
    elevations.push_back({*info, info->lpVerb, info->lpFile, info->lpParameters});
    info->hProcess = elevatedProcess;
    return TRUE;
}

class ElevationArguments : public ::testing::Test {
 protected:
    ElevationArguments() {
        starts.clear();
        elevations.clear();
        startedProcess = {};
        startError = 740;
        startWorks = false;
        elevatedProcess = nullptr;
    }

    const SeenCreate seenStart{"CreateProcessW", seeStart};
    const SeenShell seenElevation{"ShellExecuteExW", seeElevation};
};

TEST_F(ElevationArguments, TheShellIsAskedForNothingButTheStart) {
    const LogCapture log;
    XprocHandle handle = &handle;
    EXPECT_EQ(xprocCreate(&handle, {R"(C:\P\x.exe)", "a b", R"(C:\)"}), 0);
    ASSERT_EQ(starts.size(), 1u);
    ASSERT_EQ(elevations.size(), 1u);
    EXPECT_EQ(elevations[0].verb, L"runas");
    EXPECT_EQ(elevations[0].file, LR"(C:\P\x.exe)");
    EXPECT_EQ(elevations[0].parameters, LR"("a b" "C:\\")");
    SHELLEXECUTEINFOW expected{};  // no mask, so no process handle is requested
    expected.cbSize = 112;
    expected.lpVerb = elevations[0].info.lpVerb;
    expected.lpFile = elevations[0].info.lpFile;
    expected.lpParameters = elevations[0].info.lpParameters;
    expected.nShow = SW_SHOWNORMAL;
    EXPECT_EQ(std::memcmp(&elevations[0].info, &expected, sizeof expected), 0);
    EXPECT_EQ(handle, &handle) << "as the caller set it";
}

TEST_F(ElevationArguments, AProcessOfTheShellGoesToTheCaller) {
    elevatedProcess = newEvent();
    XprocHandle handle = nullptr;
    EXPECT_EQ(xprocCreate_elevated_basic(&handle, {"x.exe"}), 0);
    EXPECT_EQ(handle, elevatedProcess);
    EXPECT_TRUE(isOpen(elevatedProcess));
    ::CloseHandle(elevatedProcess);
}

TEST_F(ElevationArguments, AProcessOfTheShellThatTheCallerDoesNotWantIsClosed) {
    elevatedProcess = newEvent();
    EXPECT_EQ(xprocCreate_elevated_basic(nullptr, {"x.exe"}), 0);
    EXPECT_FALSE(isOpen(elevatedProcess));
}

// The named mutex.

struct MutexRequest {
    int count;
    bool hasAttributes;
    DWORD length;
    BOOL inherit;
    ACCESS_MASK everyoneMay;
    BOOL initialOwner;
    std::wstring name;
};

MutexRequest mutexRequest;

HANDLE WINAPI seeMutex(LPSECURITY_ATTRIBUTES attributes, BOOL initialOwner, LPCWSTR name) {
    mutexRequest = {mutexRequest.count + 1, attributes != nullptr, 0, TRUE, 0, initialOwner, name};
    if (attributes != nullptr) {
        mutexRequest.length = attributes->nLength;
        mutexRequest.inherit = attributes->bInheritHandle;
        mutexRequest.everyoneMay = rightsOfEveryone(attributes->lpSecurityDescriptor);
    }
    return newEvent();
}

TEST(MutexArguments, TheMutexIsOpenToEveryoneAndNotInherited) {
    mutexRequest = {};
    const auto seen = REPLACED(CreateMutexW, seeMutex);
    XmutexNamed mutex;
    EXPECT_EQ(mutex.init("Global\\vtr_日本_nvo"), 0);
    EXPECT_EQ(mutexRequest.count, 1);
    ASSERT_TRUE(mutexRequest.hasAttributes);
    EXPECT_EQ(mutexRequest.length, 24u);
    EXPECT_EQ(mutexRequest.inherit, FALSE);
    EXPECT_EQ(mutexRequest.everyoneMay, 0x001FFFFFu);
    EXPECT_EQ(mutexRequest.initialOwner, FALSE);
    EXPECT_EQ(mutexRequest.name, L"Global\\vtr_日本_nvo");
}

TEST(MutexArguments, ANameThatIsNotUtf8IsNotAskedFor) {
    mutexRequest = {};
    const LogCapture log;
    const auto seen = REPLACED(CreateMutexW, seeMutex);
    XmutexNamed mutex;
    EXPECT_EQ(mutex.init("\xFF"), -1);
    EXPECT_EQ(mutexRequest.count, 0);
    EXPECT_EQ(log.texts(), Lines{logged::mutexNotMade("\xFF", "1113")});
}

TEST(MutexArguments, AnEmptyNameIsWindowsToJudge) {
    const LogCapture log;
    const auto refused =
        REPLACED(CreateMutexW, [](LPSECURITY_ATTRIBUTES, BOOL, LPCWSTR name) -> HANDLE {
            ::SetLastError(*name == L'\0' ? ERROR_INVALID_NAME : ERROR_GEN_FAILURE);
            return nullptr;
        });
    XmutexNamed mutex;
    EXPECT_EQ(mutex.init(""), -1);
    EXPECT_EQ(log.texts(), Lines{logged::mutexNotMade("", "123")});
}

// The running processes.

constexpr DWORD kFirstProcess = 8001;

// Three processes. The second is the product's.
std::array<HANDLE, 3> processes;
Lines processCalls;

void saw(const std::string& call) { processCalls.push_back(call); }

std::string numberOf(HANDLE process) {
    for (std::size_t i = 0; i < processes.size(); ++i) {
        if (processes[i] == process) return std::to_string(i);
    }
    return "none";
}

BOOL WINAPI listThree(DWORD* ids, DWORD size, DWORD* used) {
    saw("list " + std::to_string(size));
    for (DWORD i = 0; i < 3; ++i) ids[i] = kFirstProcess + i;
    *used = 3 * sizeof(DWORD);
    return TRUE;
}

HANDLE WINAPI openOfThree(DWORD access, BOOL inherit, DWORD id) {
    const HANDLE process = processes.at(id - kFirstProcess);
    saw("open " + numberOf(process) + " " + std::to_string(access) + " " + std::to_string(inherit));
    return process;
}

BOOL WINAPI listModules(HANDLE process, HMODULE*, DWORD size, LPDWORD needed) {
    saw("modules " + numberOf(process) + " " + std::to_string(size));
    *needed = 0;
    return TRUE;
}

BOOL WINAPI pathOfThree(HANDLE process, DWORD flags, LPWSTR path, PDWORD length) {
    saw("path " + numberOf(process) + " " + std::to_string(flags) + " " + std::to_string(*length));
    const std::wstring text = process == processes[1] ? L"C:\\Apps\\x.exe" : L"C:\\Other\\x.exe";
    text.copy(path, text.size());
    *length = static_cast<DWORD>(text.size());
    return TRUE;
}

BOOL WINAPI trimOfThree(HANDLE process, SIZE_T smallest, SIZE_T largest) {
    const bool isEverything = smallest == static_cast<SIZE_T>(-1) && largest == smallest;
    saw("trim " + numberOf(process) + (isEverything ? " wholly" : " partly"));
    return TRUE;
}

std::wstring crashModule;
PVOID crashContext;

HRESULT WINAPI seeCrashModule(PCWSTR path, PVOID context) {
    crashModule = path;
    crashContext = context;
    return static_cast<HRESULT>(0x80070057);
}

// In its own process, since the install folder is read once.
SUBPROCESS(trimsOneOfThree) {
    RegistrySandbox registry;
    registry.set("InstallDir", "C:\\Apps\\");
    for (HANDLE& process : processes) process = newEvent();
    const ReplacedImport<decltype(::EnumProcesses)> list("K32EnumProcesses", listThree);
    const auto open = REPLACED(OpenProcess, openOfThree);
    const ReplacedImport<decltype(::EnumProcessModules)> modules("K32EnumProcessModules",
                                                                 listModules);
    const auto path = REPLACED(QueryFullProcessImageNameW, pathOfThree);
    const auto trim = REPLACED(SetProcessWorkingSetSize, trimOfThree);
    const LogCapture log;
    if (utlTrimMemoryAllProcs() != 0) return 1;
    for (const std::string& call : processCalls) std::printf("%s\n", call.c_str());
    for (const HANDLE process : processes) {
        if (isOpen(process)) return 2;
    }
    return 0;
}

TEST(ProcessArguments, OnlyTheProductsProcessIsTrimmedAndWholly) {
    const ChildResult result = runSubprocess("trimsOneOfThree");
    EXPECT_EQ(result.status, 0u) << result.out << result.err;
    EXPECT_EQ(result.out,
              "list 4096\r\n"
              "open 0 1296 0\r\nmodules 0 8\r\npath 0 0 32768\r\n"
              "open 1 1296 0\r\nmodules 1 8\r\npath 1 0 32768\r\ntrim 1 wholly\r\n"
              "open 2 1296 0\r\nmodules 2 8\r\npath 2 0 32768\r\n");
}

TEST(ProcessArguments, TheCrashModuleIsRegisteredWithoutAContext) {
    crashContext = &crashModule;
    const ReplacedImport<HRESULT WINAPI(PCWSTR, PVOID)> seen("WerRegisterRuntimeExceptionModule",
                                                             seeCrashModule);
    EXPECT_EQ(utlProcessCalls().registerCrashModule(L"C:\\日本\\x.dll"),
              static_cast<std::int32_t>(0x80070057));
    EXPECT_EQ(crashModule, L"C:\\日本\\x.dll");
    EXPECT_EQ(crashContext, nullptr);
}

}  // namespace
