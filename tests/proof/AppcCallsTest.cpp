// The app cache's calls of Windows: their arguments, and refusals that another process causes, for
// a moment or for long.
#include "ImportTable.h"
#include "appc/Appc.h"
#include "appc/AppcStore.h"
#include "support/LogCapture.h"
#include "support/LogLines.h"
#include "support/TempFolder.h"
#include "support/TestHeaders.h"
#include "support/WindowsForTests.h"

namespace {

constexpr const char* kOneApp =
    "[\n    {\n        \"activity\": \"m\",\n        \"appLabel\": \"l\",\n        "
    "\"iconFileName\": \"com.a.png\",\n        \"package\": \"com.a\",\n        \"versionCode\": "
    "1,\n        \"versionName\": \"v\"\n    }\n]\n";

constexpr int kTries = 11;

// What the replacements have recorded, for the app cache's files only.
struct Seen {
    int error = 0;     // of the next calls
    int refusals = 0;  // how many of them
    int calls = 0;
    DWORD sleptMs = 0;
    int inherited = 0;
};
Seen seen;

bool refuse() {
    ++seen.calls;
    if (seen.refusals == 0) return false;
    --seen.refusals;
    ::SetLastError(static_cast<DWORD>(seen.error));
    return true;
}

constexpr char kOpen[] = "CreateFileW";
constexpr char kRead[] = "ReadFile";
constexpr char kMove[] = "MoveFileExW";
constexpr char kAttributes[] = "GetFileAttributesW";

// Fails while refuse() returns true, then makes the calls.
template <const char* kName, std::intptr_t kFailure, typename Result, typename... Arguments>
Result refuseSome(Arguments... arguments) {
    return refuse() ? (Result)kFailure : callSystem<kName, Result>(arguments...);
}

HANDLE WINAPI countInherited(LPCWSTR path, DWORD access, DWORD share,
                             LPSECURITY_ATTRIBUTES security, DWORD disposition, DWORD flags,
                             HANDLE model) {
    ++seen.calls;
    if (security != nullptr && security->bInheritHandle) ++seen.inherited;
    return callSystem<kOpen, HANDLE>(path, access, share, security, disposition, flags, model);
}

// As Windows does. Wine ignores the separator.
HANDLE WINAPI refuseTrailingSeparator(LPCWSTR path, DWORD access, DWORD share,
                                      LPSECURITY_ATTRIBUTES security, DWORD disposition,
                                      DWORD flags, HANDLE model) {
    const std::wstring_view text(path);
    if (text.back() == L'/' || text.back() == L'\\') {
        ::SetLastError(ERROR_PATH_NOT_FOUND);
        return INVALID_HANDLE_VALUE;
    }
    return callSystem<kOpen, HANDLE>(path, access, share, security, disposition, flags, model);
}

void WINAPI countSleep(DWORD milliseconds) { seen.sleptMs += milliseconds; }

class AppcCallsTest : public ::testing::Test {
 protected:
    AppcCallsTest() {
        data.makeFolder("Engine\\Calls\\AppCache");
        data.makeFolder("Shared");
        writeFile();
        seen = {};
    }

    void writeFile() const { data.write(kFile, kOneApp); }

    static void refuseNext(int count, int error) {
        seen = {};
        seen.error = error;
        seen.refusals = count;
    }

    Lines packages() {
        std::list<std::string> list;
        appcGetPackages(store, list);
        return {list.begin(), list.end()};
    }

    XErr update(const std::string& package, const std::string& icon) {
        return appcUpdateApp(store, package, "m", "l", 1, "v", icon);
    }

    // Loads a new file while `refusals` calls are refused, and expects this number of calls.
    void load(int refusals, int error, int calls) {
        const auto sleeping = REPLACED(Sleep, countSleep);
        writeFile();
        log.clear();
        refuseNext(refusals, error);
        EXPECT_EQ(appcLibInit(store, "Calls"), 0) << error;
        EXPECT_EQ(seen.calls, calls) << error;
    }

    // Loads while all attempts except the last are refused.
    void expectReadAtTheLastTry() {
        const auto sleeping = REPLACED(Sleep, countSleep);
        for (const int error :
             {ERROR_ACCESS_DENIED, ERROR_SHARING_VIOLATION, ERROR_LOCK_VIOLATION}) {
            refuseNext(kTries - 1, error);
            EXPECT_EQ(appcLibInit(store, "Calls"), 0) << error;
            EXPECT_EQ(seen.calls, kTries) << error;
            EXPECT_EQ(seen.sleptMs, 500u) << error;
            EXPECT_EQ(packages(), Lines{"com.a"}) << error;
            EXPECT_EQ(log.texts(), Lines{}) << error;
        }
    }

    Lines kept(int error) const { return {logged::cacheKept(path(), error)}; }
    Lines deleted(int error) const { return {logged::cacheDeleted(path(), error)}; }

    std::string path() const { return store.instanceDir("Calls") + "AppCache.json"; }

    static constexpr const char* kFile = "Engine\\Calls\\AppCache\\AppCache.json";

    TempFolder data;
    LogCapture log;
    AppcStore store{appcDiskFiles(), data.path() + "\\", data.path() + "\\Shared/"};
};

}  // namespace

TEST_F(AppcCallsTest, NoFileIsInherited) {
    const auto counting = REPLACED(CreateFileW, countInherited);
    data.write("Shared\\icon.png", "icon");
    ASSERT_EQ(appcLibInit(store, "Calls"), 0);
    EXPECT_EQ(seen.calls, 1) << "the read";
    EXPECT_EQ(update("com.b", "icon.png"), 0);
    EXPECT_EQ(seen.calls, 4) << "the flush of the icon, the temporary file and its flush";
    EXPECT_EQ(appcRemoveApp(store, "com.b"), 0);
    EXPECT_EQ(appcSyncInstalledApps(store, R"({"apps": []})"), 0);
    EXPECT_EQ(seen.calls, 8);
    EXPECT_EQ(seen.inherited, 0);
}

TEST_F(AppcCallsTest, AFolderIsNotMovedWhereItsPathWithASeparatorCannotBeOpened) {
    const auto windows = REPLACED(CreateFileW, refuseTrailingSeparator);
    data.write("Shared\\sub\\x", "x");
    ASSERT_EQ(appcLibInit(store, "Calls"), 0);
    for (const char* icon : {"", "/", "\\", "./", "sub/", "sub\\", "sub//"}) {
        EXPECT_EQ(update("com.b", icon), 0) << icon;
        EXPECT_TRUE(data.has("Shared\\sub\\x")) << icon;
        EXPECT_FALSE(data.has("Engine\\Calls\\AppCache\\com.b.png")) << icon;
    }
    EXPECT_EQ(log.texts(), Lines{});
}

TEST_F(AppcCallsTest, AnIconWhoseAttributesAreRefusedIsNotMoved) {
    data.write("Shared\\icon.png", "icon");
    ASSERT_EQ(appcLibInit(store, "Calls"), 0);
    const auto refusing = REPLACED(GetFileAttributesW, refuseSome<kAttributes, -1>);
    refuseNext(1, ERROR_ACCESS_DENIED);
    EXPECT_EQ(update("com.b", "icon.png"), 0);
    EXPECT_TRUE(data.has("Shared\\icon.png"));
    EXPECT_FALSE(data.has("Engine\\Calls\\AppCache\\com.b.png"));
}

TEST_F(AppcCallsTest, AnOpenThatIsRefusedForAMomentIsTriedAgain) {
    const auto refusing = REPLACED(CreateFileW, refuseSome<kOpen, -1>);
    expectReadAtTheLastTry();
}

TEST_F(AppcCallsTest, AnOpenThatStaysRefusedKeepsAHeldFileOnly) {
    for (const int error : {ERROR_ACCESS_DENIED, ERROR_SHARING_VIOLATION, ERROR_LOCK_VIOLATION}) {
        const auto refusing = REPLACED(CreateFileW, refuseSome<kOpen, -1>);
        load(kTries, error, kTries);
        EXPECT_EQ(packages(), Lines{}) << error;
        const bool isDenied = error == ERROR_ACCESS_DENIED;
        EXPECT_EQ(log.texts(), isDenied ? deleted(error) : kept(error));
        EXPECT_EQ(data.has(kFile), !isDenied) << error;
    }
}

TEST_F(AppcCallsTest, AnOpenThatFailsForAnotherReasonIsNotTriedAgain) {
    for (const int error : {ERROR_FILE_NOT_FOUND, ERROR_PATH_NOT_FOUND, ERROR_WRITE_PROTECT,
                            ERROR_IO_DEVICE, ERROR_FILE_CORRUPT}) {
        const auto refusing = REPLACED(CreateFileW, refuseSome<kOpen, -1>);
        load(1, error, 1);
        EXPECT_EQ(seen.sleptMs, 0u) << error;
        EXPECT_EQ(log.texts(), deleted(error));
        EXPECT_FALSE(data.has(kFile)) << error;
    }
}

TEST_F(AppcCallsTest, AnOpenThatFailsWithoutAnErrorIsAFailureToo) {
    const auto refusing = REPLACED(CreateFileW, refuseSome<kOpen, -1>);
    refuseNext(1, ERROR_SUCCESS);
    EXPECT_EQ(appcLibInit(store, "Calls"), 0);
    EXPECT_EQ(log.texts(), deleted(ERROR_GEN_FAILURE));
}

TEST_F(AppcCallsTest, BytesThatAreRefusedForAMomentAreReadAgain) {
    const auto refusing = REPLACED(ReadFile, refuseSome<kRead, FALSE>);
    expectReadAtTheLastTry();
}

TEST_F(AppcCallsTest, BytesThatStayHeldKeepTheFileAndRefuseSaves) {
    for (const int error : {ERROR_SHARING_VIOLATION, ERROR_LOCK_VIOLATION}) {
        const auto refusing = REPLACED(ReadFile, refuseSome<kRead, FALSE>);
        load(kTries, error, kTries);
        EXPECT_EQ(log.texts(), kept(error));
        EXPECT_EQ(update("com.b", ""), -1) << error;
        EXPECT_EQ(log.texts().back(), logged::cacheNotSavedOver(path()));
        EXPECT_EQ(data.read(kFile), kOneApp) << error;
        EXPECT_EQ(appcLoadFromFile(store), 0) << error;
        EXPECT_EQ(packages(), Lines{"com.a"}) << error;
    }
}

TEST_F(AppcCallsTest, BytesThatCannotBeReadForAnotherReasonAreNoArray) {
    for (const int error : {ERROR_IO_DEVICE, ERROR_ACCESS_DENIED}) {
        const auto refusing = REPLACED(ReadFile, refuseSome<kRead, FALSE>);
        load(kTries, error, error == ERROR_IO_DEVICE ? 1 : kTries);
        EXPECT_EQ(log.texts(), Lines{logged::cacheNotAnArray(path())});
        EXPECT_FALSE(data.has(kFile)) << error;
    }
}

TEST_F(AppcCallsTest, AFileWhoseAttributesAreRefusedIsNotMissing) {
    for (const int error : {ERROR_ACCESS_DENIED, ERROR_SHARING_VIOLATION, ERROR_LOCK_VIOLATION}) {
        const auto refusing = REPLACED(GetFileAttributesW, refuseSome<kAttributes, -1>);
        refuseNext(1, error);
        EXPECT_EQ(appcLibInit(store, "Calls"), 0) << error;
        EXPECT_EQ(packages(), Lines{"com.a"}) << error;
        EXPECT_EQ(log.texts(), Lines{}) << error;
    }
}

TEST_F(AppcCallsTest, ARenameThatIsRefusedForAMomentIsTriedAgain) {
    ASSERT_EQ(appcLibInit(store, "Calls"), 0);
    for (const int error : {ERROR_ACCESS_DENIED, ERROR_SHARING_VIOLATION}) {
        const auto refusing = REPLACED(MoveFileExW, refuseSome<kMove, FALSE>);
        const auto sleeping = REPLACED(Sleep, countSleep);
        refuseNext(kTries - 1, error);
        EXPECT_EQ(appcSaveToFile(store), 0) << error;
        EXPECT_EQ(seen.calls, kTries) << error;
        EXPECT_EQ(seen.sleptMs, 500u) << error;
        EXPECT_EQ(log.texts(), Lines{}) << error;
    }
}

TEST_F(AppcCallsTest, ARenameThatStaysRefusedLeavesTheOldFile) {
    ASSERT_EQ(appcLibInit(store, "Calls"), 0);
    const auto refusing = REPLACED(MoveFileExW, refuseSome<kMove, FALSE>);
    const auto sleeping = REPLACED(Sleep, countSleep);
    refuseNext(kTries, ERROR_SHARING_VIOLATION);
    EXPECT_EQ(appcSyncInstalledApps(store, R"({"apps": []})"), -1);
    EXPECT_EQ(seen.calls, kTries);
    EXPECT_EQ(log.texts(), Lines{logged::cacheNotWritten(path())});
    EXPECT_EQ(data.read(kFile), kOneApp);
}

TEST_F(AppcCallsTest, AFileThatIsReadOnlyIsNotReplaced) {
    ASSERT_EQ(appcLibInit(store, "Calls"), 0);
    const auto readOnly = REPLACED(GetFileAttributesW, [](LPCWSTR) -> DWORD {
        return FILE_ATTRIBUTE_ARCHIVE | FILE_ATTRIBUTE_READONLY;
    });
    EXPECT_EQ(appcSaveToFile(store), -1);
    EXPECT_EQ(log.texts(), Lines{logged::cacheNotOpenedForWriting(path())});
    EXPECT_EQ(data.read(kFile), kOneApp);
}

TEST_F(AppcCallsTest, AFolderIsNotReplaced) {
    ASSERT_EQ(appcLibInit(store, "Calls"), 0);
    const auto folder =
        REPLACED(GetFileAttributesW, [](LPCWSTR) -> DWORD { return FILE_ATTRIBUTE_DIRECTORY; });
    EXPECT_EQ(appcSaveToFile(store), -1);
    EXPECT_EQ(log.texts(), Lines{logged::cacheNotOpenedForWriting(path())});
    EXPECT_EQ(data.read(kFile), kOneApp);
}

TEST_F(AppcCallsTest, AFileWhoseAttributesAreRefusedIsRenamedAllTheSame) {
    ASSERT_EQ(appcLibInit(store, "Calls"), 0);
    const auto refusing = REPLACED(GetFileAttributesW, [](LPCWSTR path) -> DWORD {
        static const auto attributes =
            systemFunction<decltype(::GetFileAttributesW)>("GetFileAttributesW");
        const std::wstring_view text(path);
        if (text.substr(text.size() - 4) != L"json") return attributes(path);
        ::SetLastError(ERROR_ACCESS_DENIED);
        return INVALID_FILE_ATTRIBUTES;
    });
    EXPECT_EQ(appcSyncInstalledApps(store, R"({"apps": []})"), 0);
    EXPECT_EQ(data.read(kFile), "[\n]\n");
    EXPECT_EQ(log.texts(), Lines{});
}
