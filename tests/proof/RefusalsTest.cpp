// Calls of Windows that fail, or have rare results, and what the library then returns and logs.
#include <cstdarg>

#include "ImportTable.h"
#include "appc/Appc.h"
#include "appc/AppcJson.h"
#include "appc/AppcStore.h"
#include "conf/Conf.h"
#include "conf/ConfStore.h"
#include "support/LogCapture.h"
#include "support/LogLines.h"
#include "support/RegistrySandbox.h"
#include "support/Subprocess.h"
#include "support/TempFolder.h"
#include "support/TestHeaders.h"
#include "support/WindowsForTests.h"
#include "utl/UtlProcessCalls.h"
#include "utl/UtlRegistry.h"
#include "xpl/Xfile.h"
#include "xpl/XlogLine.h"
#include "xpl/XmodulePin.h"
#include "xpl/XmutexNamed.h"
#include "xpl/Xproc.h"
#include "xpl/Xsystem.h"
#include "xpl/Xtext.h"
#include "xpl/Xunload.h"

// Last: they need <windows.h>.
#include <aclapi.h>
#include <psapi.h>
#include <shellapi.h>

namespace {

template <typename Result>
Result refuse(DWORD error, Result result) {
    ::SetLastError(error);
    return result;
}

std::atomic<int> calls;

// The named mutex and its access list.

constexpr const char* kMutexName = "Global\\vtr_test_refusals";

// Returns an error that differs from the thread's last error.
DWORD WINAPI refuseAcl(ULONG, PEXPLICIT_ACCESSW, PACL, PACL*) {
    return refuse(ERROR_BUSY, DWORD{ERROR_INVALID_PARAMETER});
}

// Expects that no mutex is made, with these lines, and without a line when the log is off.
void expectNoMutex(const std::string& step, int status) {
    XmutexNamed mutex;
    {
        const LogCapture log;
        EXPECT_EQ(mutex.init(kMutexName), -1);
        EXPECT_EQ(log.texts(),
                  (Lines{"E XMUTEX " + step + "\n",
                         std::string("E XMUTEX Failed to set security attributes for mutex '") +
                             kMutexName + "'. Error = " + std::to_string(status)}));
    }
    const LogOff off;
    EXPECT_EQ(mutex.init(kMutexName), -1);
    EXPECT_EQ(off.refused(), 2);
    EXPECT_EQ(off.printed(), 0);
}

TEST(MutexRefusals, EveryoneCannotBeNamed) {
    const auto refused =
        REPLACED(AllocateAndInitializeSid, failing<ERROR_NOT_ENOUGH_MEMORY, FALSE>);
    expectNoMutex("AllocateAndInitializeSid Error 8", XERR_NOMEM);
}

TEST(MutexRefusals, TheAccessListCannotBeMade) {
    const auto refused = REPLACED(SetEntriesInAclW, refuseAcl);
    expectNoMutex("SetEntriesInAcl Error 87", XERR_INVAL);
}

TEST(MutexRefusals, ThereIsNoMemoryForTheDescriptor) {
    const auto refused = REPLACED(LocalAlloc, failing<ERROR_NOT_ENOUGH_MEMORY, nullptr>);
    expectNoMutex("InitializeSecurityDescriptor Error 8", XERR_NOMEM);
}

TEST(MutexRefusals, TheDescriptorCannotBeInitialised) {
    const auto refused =
        REPLACED(InitializeSecurityDescriptor, failing<ERROR_UNKNOWN_REVISION, FALSE>);
    expectNoMutex("InitializeSecurityDescriptor Error 1305", 101305);
}

TEST(MutexRefusals, TheAccessListCannotBeSet) {
    const auto refused = REPLACED(SetSecurityDescriptorDacl, failing<ERROR_INVALID_ACL, FALSE>);
    expectNoMutex("SetSecurityDescriptorDacl Error 1336", 101336);
}

// Without its access list the mutex would shut other users out.
TEST(MutexRefusals, AnAccessListThatFailsWithoutAnErrorMakesNoMutex) {
    const auto refused = REPLACED(AllocateAndInitializeSid, failing<ERROR_SUCCESS, FALSE>);
    expectNoMutex("AllocateAndInitializeSid Error 0", 100000);
}

TEST(MutexRefusals, AnObjectThatWasRefusedCanBeInitialisedLater) {
    XmutexNamed mutex;
    const LogCapture log;
    {
        const auto refused =
            REPLACED(AllocateAndInitializeSid, failing<ERROR_NOT_ENOUGH_MEMORY, FALSE>);
        EXPECT_EQ(mutex.init(kMutexName), -1);
    }
    EXPECT_EQ(mutex.init(kMutexName), 0);
    mutex.lock();
    mutex.unlock();
    EXPECT_EQ(log.texts().size(), 2u) << "those of the refusal";
}

// Files.

BOOL WINAPI hugeSize(HANDLE, PLARGE_INTEGER size) {
    size->QuadPart = 0x80000000LL;
    return TRUE;
}

BOOL WINAPI refuseWrite(HANDLE, LPCVOID, DWORD, LPDWORD done, LPOVERLAPPED) {
    *done = 0;
    return refuse(ERROR_DISK_FULL, FALSE);
}

BOOL WINAPI writeNothing(HANDLE, LPCVOID, DWORD, LPDWORD done, LPOVERLAPPED) {
    *done = 0;
    return TRUE;
}

// Reads two bytes in each call. The second call fails nevertheless.
BOOL WINAPI readTwoThenFailWithTwo(HANDLE, LPVOID bytes, DWORD, LPDWORD done, LPOVERLAPPED) {
    std::memset(bytes, 'x', 2);
    *done = 2;
    return ++calls == 1 ? TRUE : refuse(ERROR_IO_DEVICE, FALSE);
}

DWORD moveError;

// Held by another program for the first two attempts.
BOOL WINAPI moveAtTheThirdAttempt(LPCWSTR, LPCWSTR, DWORD) {
    return ++calls < 3 ? refuse(moveError, FALSE) : TRUE;
}

BOOL WINAPI neverMove(LPCWSTR, LPCWSTR, DWORD) {
    ++calls;
    return refuse(moveError, FALSE);
}

// An app cache in the folder, with one app in its file.
struct Cache : AppcStore {
    explicit Cache(const TempFolder& folder)
        : AppcStore(appcDiskFiles(), folder.path() + "\\", folder.path() + "\\Shared\\") {
        folder.write("Engine\\Refusals\\AppCache\\AppCache.json",
                     R"([{"package":"com.a","activity":"m","appLabel":"l","versionCode":1,)"
                     R"("versionName":"v"}])");
    }
    std::string file() const { return instanceDir("Refusals") + "AppCache.json"; }

    Lines packages() {
        std::list<std::string> list;
        appcGetPackages(*this, list);
        return {list.begin(), list.end()};
    }
};

class FileRefusals : public ::testing::Test {
 protected:
    FileRefusals() { calls = 0; }

    // Expects the app cache to report that its file is not an array, and to delete it.
    void expectDeletedCache() const {
        Cache cache(folder);
        EXPECT_EQ(appcLibInit(cache, "Refusals"), 0);
        EXPECT_EQ(log.texts(), Lines{logged::cacheNotAnArray(cache.file())});
        EXPECT_NE(xfileExists(cache.file()), 0);
    }

    TempFolder folder;
    LogCapture log;
};

TEST_F(FileRefusals, AConfigurationWithoutASizeIsAFailedRead) {
    const std::string path = folder.write("vantrel.conf", "vtr.locale=\"a\"\n");
    const ConfCatalogue catalogue = confProductCatalogue();
    ConfStore store(catalogue, confDiskFiles());
    {
        const auto refused = REPLACED(GetFileSizeEx, failing<ERROR_INVALID_FUNCTION, FALSE>);
        EXPECT_EQ(confLibInit(store, path, false), -1);
    }
    EXPECT_EQ(log.texts(), Lines{logged::confNotRead(path)});
    EXPECT_EQ(confReload(store), 0);
    EXPECT_EQ(confGetString(store, "vtr.locale"), "a");
}

TEST_F(FileRefusals, AnAppCacheWithoutASizeIsNoArrayAndIsDeleted) {
    const auto refused = REPLACED(GetFileSizeEx, failing<ERROR_INVALID_FUNCTION, FALSE>);
    expectDeletedCache();
}

TEST_F(FileRefusals, AnAppCacheOf2GiBIsNotReadAndIsDeleted) {
    const auto huge = REPLACED(GetFileSizeEx, hugeSize);
    expectDeletedCache();
}

TEST_F(FileRefusals, AnAppCacheWhoseAttributesAreRefusedIsOpenedAllTheSame) {
    Cache cache(folder);
    const auto refused =
        REPLACED(GetFileAttributesW, failing<ERROR_ACCESS_DENIED, INVALID_FILE_ATTRIBUTES>);
    EXPECT_EQ(appcLibInit(cache, "Refusals"), 0);
    EXPECT_EQ(cache.packages(), Lines{"com.a"});
    EXPECT_EQ(log.texts(), Lines{});
}

TEST_F(FileRefusals, AnAppCacheThatCannotBeWrittenStaysAsItWas) {
    Cache cache(folder);
    ASSERT_EQ(appcLibInit(cache, "Refusals"), 0);
    const std::string before = readBytes(cache.file());
    {
        const auto refused = REPLACED(WriteFile, refuseWrite);
        EXPECT_EQ(appcSaveToFile(cache), -1);
    }
    EXPECT_EQ(log.texts(), Lines{logged::cacheNotWritten(cache.file())});
    EXPECT_EQ(readBytes(cache.file()), before);
    EXPECT_EQ(folder.list(), Lines{"Engine"});
}

TEST_F(FileRefusals, ADeviceThatTakesNothingIsAnError) {
    Xfile file;
    ASSERT_EQ(xfileOpen(file, folder / "f", XfileMode::WriteNew), 0);
    std::size_t done = 77;
    const auto nothing = REPLACED(WriteFile, writeNothing);
    EXPECT_EQ(xfileWriteAll(file, "abc", 3, done), XERR_IO);
    EXPECT_EQ(done, 0u);
}

TEST_F(FileRefusals, WhatAFailingReadMovedIsCounted) {
    folder.write("f", "abcdef");
    Xfile file;
    ASSERT_EQ(xfileOpen(file, folder / "f", XfileMode::Read), 0);
    std::size_t done = 77;
    char bytes[6] = {};
    const auto failing = REPLACED(ReadFile, readTwoThenFailWithTwo);
    EXPECT_EQ(xfileReadAll(file, bytes, sizeof bytes, done), XERR_IO);
    EXPECT_EQ(calls, 2);
    EXPECT_EQ(done, 4u);
    EXPECT_STREQ(bytes, "xxxx");
}

TEST_F(FileRefusals, AFileBrieflyHeldIsTriedAgain) {
    const auto held = REPLACED(MoveFileExW, moveAtTheThirdAttempt);
    const std::string source = folder.write("a", "");
    constexpr DWORD kHeld[] = {ERROR_ACCESS_DENIED, ERROR_SHARING_VIOLATION, ERROR_LOCK_VIOLATION};
    for (const DWORD error : kHeld) {
        calls = 0;
        moveError = error;
        EXPECT_EQ(xfileMoveWithRetry(source, folder / "b"), 0) << error;
        EXPECT_EQ(calls, 3) << error;
    }
}

TEST_F(FileRefusals, AMoveThatKeepsFailingReturnsItsStatusAfterItsTries) {
    const auto refused = REPLACED(MoveFileExW, neverMove);
    const std::string source = folder.write("a", "");
    const struct {
        const char* what;
        XErr (*move)(const std::string& source, const std::string& destination);
        DWORD error;
        XErr result;
        int calls;
    } cases[] = {
        {"held for long", xfileMoveWithRetry, ERROR_LOCK_VIOLATION, 100033, 11},
        {"another error", xfileMoveWithRetry, ERROR_DISK_FULL, XERR_NOSPC, 1},
        {"held, without retry", xfileMove, ERROR_SHARING_VIOLATION, 100032, 1},
    };
    for (const auto& [what, move, error, result, expectedCalls] : cases) {
        calls = 0;
        moveError = error;
        EXPECT_EQ(move(source, folder / "b"), result) << what;
        EXPECT_EQ(calls, expectedCalls) << what;
    }
}

TEST_F(FileRefusals, AFailedFullPathIsTheStatus) {
    const auto refused = REPLACED(GetFullPathNameW, failing<ERROR_BAD_PATHNAME, 0>);
    EXPECT_EQ(xfileMakeFolders(folder / "a\\b"), XERR_NOENT);
    EXPECT_FALSE(folder.has("a"));
}

TEST_F(FileRefusals, AFullPathThatFailsAtTheSecondCallIsTheStatus) {
    const auto refused =
        REPLACED(GetFullPathNameW, [](LPCWSTR, DWORD room, LPWSTR, LPWSTR*) -> DWORD {
            return room == 0 ? DWORD{20} : refuse(ERROR_NOT_ENOUGH_MEMORY, DWORD{0});
        });
    EXPECT_EQ(xfileMakeFolders(folder / "a"), XERR_NOMEM);
    EXPECT_FALSE(folder.has("a"));
}

std::wstring fullPath;

// Another thread changes the current folder after the first call.
DWORD WINAPI growAfterTheFirst(LPCWSTR, DWORD room, LPWSTR path, LPWSTR*) {
    if (++calls == 1) return 4;
    if (room <= fullPath.size()) return static_cast<DWORD>(fullPath.size()) + 1;
    fullPath.copy(path, fullPath.size());
    path[fullPath.size()] = L'\0';
    return static_cast<DWORD>(fullPath.size());
}

TEST_F(FileRefusals, AFullPathThatGrowsMeanwhileIsRequestedAgain) {
    fullPath = wideForTests(folder / "a\\b");
    const auto growing = REPLACED(GetFullPathNameW, growAfterTheFirst);
    EXPECT_EQ(xfileMakeFolders("b"), 0);
    EXPECT_EQ(calls, 3);
    EXPECT_TRUE(folder.has("a\\b"));
}

// The log.

SUBPROCESS(logsToAFullDisk) {
    if (xlogLibInit(nullptr, arguments[0]) != 0) return 1;
    constexpr XlogModule module{XlogTag::CONF, "f"};
    {
        const auto refused = REPLACED(WriteFile, refuseWrite);
        XLOG_E(module, "lost");
    }
    XLOG_E(module, "written");
    return 0;
}

TEST_F(FileRefusals, ALogLineThatCannotBeWrittenIsLostAndTheNextOneIsNot) {
    EXPECT_EQ(runSubprocess("logsToAFullDisk", {folder / "log"}).status, 0u);
    EXPECT_EQ(logMessages(folder.read("log")), Lines{"E CONF  written"});
}

// Events around one slow write.
HANDLE writeBegins;
HANDLE writeGoesOn;

BOOL WINAPI writeSlowly(HANDLE file, LPCVOID bytes, DWORD size, LPDWORD done,
                        LPOVERLAPPED overlapped) {
    ::SetEvent(writeBegins);
    ::WaitForSingleObject(writeGoesOn, INFINITE);
    return systemFunction<decltype(::WriteFile)>("WriteFile")(file, bytes, size, done, overlapped);
}

SUBPROCESS(changesTheLogWhileALineIsWritten) {
    if (xlogLibInit(nullptr, arguments[0]) != 0) return 1;
    constexpr XlogModule module{XlogTag::CONF, "f"};
    writeBegins = ::CreateEventW(nullptr, TRUE, FALSE, nullptr);
    writeGoesOn = ::CreateEventW(nullptr, TRUE, FALSE, nullptr);
    xlogSetClientName("before");
    std::thread slow;
    {
        const auto slowly = REPLACED(WriteFile, writeSlowly);
        slow = std::thread([&module] { XLOG_E(module, "slow"); });
        ::WaitForSingleObject(writeBegins, INFINITE);
    }
    xlogSetClientName("after");  // returns although the line is not written yet
    if (xlogSetFile(arguments[1]) != 0) return 2;
    XLOG_E(module, "quick");
    ::SetEvent(writeGoesOn);
    slow.join();
    xlogSetClientName("last");
    XLOG_E(module, "done");
    return 0;
}

TEST_F(FileRefusals, ALineThatIsBeingWrittenKeepsItsFileAndBlocksNoOtherLine) {
    EXPECT_EQ(runSubprocess("changesTheLogWhileALineIsWritten", {folder / "log", folder / "second"})
                  .status,
              0u);
    EXPECT_EQ(logMessages(folder.read("log")), Lines{"E CONF before slow"});
    EXPECT_EQ(logMessages(folder.read("second")),
              (Lines{"E CONF after quick", "E CONF last done"}));
}

using Formatter = int(unsigned long long, char*, std::size_t, const char*, void*, va_list);

// Fails after it has written a part.
int giveUp(unsigned long long, char* buffer, std::size_t, const char*, void*, va_list) {
    std::memcpy(buffer, "before", 7);
    return -1;
}

std::string formatLine(const char* text, ...) XPRINTF_LIKE(1, 2);

std::string formatLine(const char* text, ...) {
    XlogLineBuffer buffer;
    std::va_list arguments;
    va_start(arguments, text);
    const std::size_t length =
        xlogFormatLine(buffer, {"T", 1, "2", "TAG", "C", 'E'}, {}, text, arguments);
    va_end(arguments);
    return {buffer.data(), length};
}

TEST(LogRefusals, AMessageThatCannotBeFormattedIsPaddedWithBlanksToTheEndOfTheLine) {
    const std::string header = formatLine("%s", "");
    std::string line;
    {
        const ReplacedImport<Formatter> failing("__stdio_common_vsprintf", giveUp);
        line = formatLine("%d", 5);
    }
    const std::string start = header.substr(0, header.size() - 1) + "before";
    EXPECT_EQ(line, start + std::string(4093 - start.size(), ' ') + "\n");
}

// Texts.

// Memory that needs no pages while it is not accessed; null when there is none.
class HugeMemory {
 public:
    explicit HugeMemory(std::size_t size)
        : memory_(::VirtualAlloc(nullptr, size, MEM_RESERVE | MEM_COMMIT, PAGE_READONLY)) {}
    ~HugeMemory() {
        if (memory_ != nullptr) ::VirtualFree(memory_, 0, MEM_RELEASE);
    }
    HugeMemory(const HugeMemory&) = delete;
    HugeMemory& operator=(const HugeMemory&) = delete;

    const void* get() const { return memory_; }

 private:
    void* memory_;
};

constexpr std::size_t kTooLong = std::size_t{1} << 31;

TEST(TextRefusals, ATextOf2GiBIsRefused) {
    const HugeMemory memory(kTooLong);
    ASSERT_NE(memory.get(), nullptr);
    const std::string_view text(static_cast<const char*>(memory.get()), kTooLong);
    std::wstring wide = L"before";
    EXPECT_EQ(xtextToWide(text, wide), XERR_NAMETOOLONG);
    EXPECT_EQ(wide, L"");
    QJsonArray array;
    EXPECT_FALSE(appcParseArray(text, array));
}

TEST(TextRefusals, AWideTextOf4GiBIsRefused) {
    const HugeMemory memory(kTooLong * sizeof(wchar_t));
    ASSERT_NE(memory.get(), nullptr);
    EXPECT_EQ(xtextToUtf8({static_cast<const wchar_t*>(memory.get()), kTooLong}), "");
}

TEST(TextRefusals, AWideTextThatCannotBeConvertedIsEmpty) {
    const auto refused = REPLACED(WideCharToMultiByte, failing<ERROR_SUCCESS, 0>);
    EXPECT_EQ(xtextToUtf8(L"abc"), "");
}

// Processes.

TEST(ProcessRefusals, AnElevatedStartThatTheUserDeclinesIsTheStatus) {
    const LogCapture log;
    const auto refused = REPLACED(ShellExecuteExW, failing<ERROR_CANCELLED, FALSE>);
    XprocHandle handle = nullptr;
    EXPECT_EQ(xprocCreate_elevated_basic(&handle, {"C:\\x.exe", "a"}), 101223);
    EXPECT_EQ(handle, nullptr);
    EXPECT_EQ(log.texts(), Lines{logged::elevatedStartFailed("C:\\x.exe", "\"a\"", "1223")});
}

TEST(ProcessRefusals, AnElevatedStartThatFailsWithoutAnErrorIsAFailure) {
    const LogCapture log;
    const auto refused = REPLACED(ShellExecuteExW, failing<ERROR_SUCCESS, FALSE>);
    XprocHandle handle = nullptr;
    EXPECT_EQ(xprocCreate_elevated_basic(&handle, {"C:\\x.exe"}), 100000);
    EXPECT_EQ(handle, nullptr);
    EXPECT_EQ(log.texts(), Lines{logged::elevatedStartFailed("C:\\x.exe", "", "0")});
}

TEST(ProcessRefusals, AVariableThatCannotBeSetIsTheStatus) {
    const ReplacedImport<int(const char*)> refused("_putenv", failing<ERROR_NOT_ENOUGH_MEMORY, -1>);
    EXPECT_EQ(xprocSetEnvironment("BRIDGE_TEST", "x"), XERR_NOMEM);
}

TEST(ProcessRefusals, AFailedListOfProcessesIsAFailure) {
    const ReplacedImport<decltype(::EnumProcesses)> refused("K32EnumProcesses",
                                                            failing<ERROR_SUCCESS, FALSE>);
    std::vector<std::uint32_t> ids{1, 2};
    EXPECT_FALSE(utlProcessCalls().enumerate(ids));
    EXPECT_EQ(ids, (std::vector<std::uint32_t>{1, 2}));
}

TEST(ProcessRefusals, AnImageWhosePathIsRefusedHasNone) {
    const auto refused = REPLACED(QueryFullProcessImageNameW, failing<ERROR_GEN_FAILURE, FALSE>);
    std::wstring path = L"before";
    EXPECT_FALSE(utlProcessCalls().imagePath(::GetCurrentProcess(), path));
    EXPECT_EQ(path, L"");
}

// The registry.

// A value of 6 bytes at the first call; another program changes it before the second.
template <DWORD kType, LSTATUS kStatus>
LSTATUS WINAPI changeBetween(HKEY, LPCWSTR, LPDWORD, LPDWORD type, LPBYTE data, LPDWORD size) {
    *size = 6;
    *type = data == nullptr ? REG_SZ : kType;
    return data == nullptr ? LSTATUS{ERROR_SUCCESS} : kStatus;
}

std::string readVersion() {
    RegistrySandbox registry;
    registry.set("Version", "abc");
    return utlRegistryString(UtlRegistryRoot::LocalMachine, UTL_PRODUCT_KEY, "Version", "default");
}

TEST(RegistryRefusals, AValueThatGrowsWhileItIsReadIsTheDefault) {
    const auto changing = REPLACED(RegQueryValueExW, changeBetween<REG_SZ, ERROR_MORE_DATA>);
    EXPECT_EQ(readVersion(), "default");
}

TEST(RegistryRefusals, AValueThatBecomesANumberWhileItIsReadIsTheDefault) {
    const auto changing = REPLACED(RegQueryValueExW, changeBetween<REG_DWORD, ERROR_SUCCESS>);
    EXPECT_EQ(readVersion(), "default");
}

// The module of the code.

BOOL WINAPI findNoModule(DWORD, LPCWSTR, HMODULE* module) {
    *module = nullptr;
    return refuse(ERROR_MOD_NOT_FOUND, FALSE);
}

BOOLEAN NTAPI sayThatTheProcessEnds() { return TRUE; }

FARPROC WINAPI findProcessEnds(HMODULE, LPCSTR) {
    return reinterpret_cast<FARPROC>(reinterpret_cast<void*>(sayThatTheProcessEnds));
}

FARPROC WINAPI findNoExport(HMODULE, LPCSTR) { return nullptr; }

// Returns another module's handle for the program's, as if this code were in a library.
HMODULE WINAPI beALibrary(LPCWSTR name) {
    HMODULE found = nullptr;
    ::GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                         name == nullptr ? L"ntdll.dll" : name, &found);
    return found;
}

TEST(ModuleRefusals, AModuleThatIsNotFoundIsNotPinned) {
    calls = 0;
    const auto none = REPLACED(GetModuleHandleExW, findNoModule);
    const auto counting = REPLACED(FreeLibrary, [](HMODULE) -> BOOL {
        ++calls;
        return TRUE;
    });
    { const XmodulePin pin; }
    EXPECT_EQ(calls, 0);
}

TEST(ModuleRefusals, ALibraryIsUnloadedWhileTheProcessGoesOn) {
    EXPECT_FALSE(xsystemIsUnloading()) << "a program";
    const auto library = REPLACED(GetModuleHandleW, beALibrary);
    EXPECT_TRUE(xsystemIsUnloading());
    {
        const auto ends = REPLACED(GetProcAddress, findProcessEnds);
        EXPECT_FALSE(xsystemIsUnloading());
    }
    {
        const auto unknown = REPLACED(GetProcAddress, findNoExport);
        EXPECT_FALSE(xsystemIsUnloading()) << "releasing too little is safe";
        EXPECT_FALSE(xsystemProcessEnds()) << "and so is ending the server";
    }
    const auto none = REPLACED(GetModuleHandleExW, findNoModule);
    EXPECT_FALSE(xsystemIsUnloading());
}

// How often each object was released.
std::vector<int> released;

void release(void* object) { ++released[reinterpret_cast<std::uintptr_t>(object)]; }

void remember(std::size_t number) { xunloadRemember(reinterpret_cast<void*>(number), release); }

// Remembers another object right before an instruction of xunloadRemember, as another thread could.
struct Intrusion {
    bool active = false;
    int instruction = 0;
    int reached = 0;
    std::size_t number = 0;
} intrusion;

constexpr DWORD kTrapFlag = 0x100;
constexpr std::uintptr_t kFunctionSize = 512;  // and more

LONG CALLBACK singleStep(EXCEPTION_POINTERS* exception) {
    if (exception->ExceptionRecord->ExceptionCode != EXCEPTION_SINGLE_STEP) {
        return EXCEPTION_CONTINUE_SEARCH;
    }
    CONTEXT& context = *exception->ContextRecord;
    const auto function = reinterpret_cast<std::uintptr_t>(&xunloadRemember);
    const bool isInside = context.Rip - function < kFunctionSize;
    if (intrusion.active && isInside && ++intrusion.reached == intrusion.instruction) {
        intrusion.active = false;
        remember(intrusion.number);
    }
    if (intrusion.active) {
        context.EFlags |= kTrapFlag;
    } else {
        context.EFlags &= ~kTrapFlag;
    }
    return EXCEPTION_CONTINUE_EXECUTION;
}

// Returns false when the function ended before that instruction.
bool rememberBeside(std::size_t number, std::size_t intruder, int instruction) {
    intrusion = {true, instruction, 0, intruder};
    __asm__ volatile("pushfq; orq $0x100, (%%rsp); popfq" ::: "memory", "cc");
    remember(number);
    return !std::exchange(intrusion.active, false);
}

// In its own process: everything that it remembers is released.
SUBPROCESS(remembersBesideOthers) {
    void* const watch = ::AddVectoredExceptionHandler(/*First=*/1, singleStep);
    std::size_t count = 0;
    int instruction = 1;
    while (rememberBeside(count, count + 1, instruction)) {
        count += 2;
        ++instruction;
    }
    ++count;
    ::RemoveVectoredExceptionHandler(watch);
    released.assign(count, 0);
    {
        const auto library = REPLACED(GetModuleHandleW, beALibrary);
        xunloadRelease();
    }
    if (instruction < 10) return 1;
    return released == std::vector<int>(count, 1) ? 0 : 2;
}

TEST(ModuleRefusals, ObjectsThatThreadsRememberAtTheSameTimeAreReleasedOnce) {
    EXPECT_EQ(runSubprocess("remembersBesideOthers").status, 0u);
}

}  // namespace
