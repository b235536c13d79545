// Access to the event server by a client on another machine and by one of low integrity.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <string>

#include "ServedName.h"
#include "support/LogCapture.h"
#include "support/TempFolder.h"
#include "support/WindowsForTests.h"
#include "xpl/XmutexNamed.h"

// Last: it needs <windows.h>.
#include <sddl.h>

namespace {

// Connects with these rights and returns the Windows error, or 0.
DWORD connectTo(const std::string& path, DWORD access = GENERIC_READ | GENERIC_WRITE) {
    const HANDLE pipe = ::CreateFileW(wideForTests(path).c_str(), access, 0, nullptr, OPEN_EXISTING,
                                      0, /*hTemplateFile=*/nullptr);
    if (pipe == INVALID_HANDLE_VALUE) return ::GetLastError();
    ::CloseHandle(pipe);
    return ERROR_SUCCESS;
}

// A path through the network redirector: the server sees a client on this machine as remote.
std::string throughTheNetwork(const std::string& name) { return R"(\\127.0.0.1\pipe\)" + name; }

std::string local(const std::string& name) { return R"(\\.\pipe\)" + name; }

// Connects to a pipe that accepts remote clients, to see whether this machine allows any.
DWORD connectToOpenPipe(const std::string& name) {
    const HANDLE pipe =
        ::CreateNamedPipeW(wideForTests(local(name)).c_str(), PIPE_ACCESS_DUPLEX, PIPE_TYPE_BYTE, 1,
                           4096, 4096, 0, /*lpSecurityAttributes=*/nullptr);
    const DWORD error = connectTo(throughTheNetwork(name));
    ::CloseHandle(pipe);
    return error;
}

// Impersonates a token of low integrity on this thread while the object lives.
class LowIntegrity {
 public:
    LowIntegrity() {
        HANDLE own = nullptr;
        HANDLE low = nullptr;
        ::OpenProcessToken(::GetCurrentProcess(), TOKEN_DUPLICATE | TOKEN_QUERY, &own);
        ::DuplicateTokenEx(own, MAXIMUM_ALLOWED, nullptr, SecurityImpersonation, TokenImpersonation,
                           &low);
        isSet_ = lower(low) && ::SetThreadToken(nullptr, low);
        ::CloseHandle(low);
        ::CloseHandle(own);
    }
    ~LowIntegrity() { ::RevertToSelf(); }
    LowIntegrity(const LowIntegrity&) = delete;
    LowIntegrity& operator=(const LowIntegrity&) = delete;

    bool isSet() const { return isSet_; }

 private:
    static bool lower(HANDLE token) {
        TOKEN_MANDATORY_LABEL label{};
        label.Label.Attributes = SE_GROUP_INTEGRITY;
        if (!::ConvertStringSidToSidW(L"S-1-16-4096", &label.Label.Sid)) return false;
        const DWORD size = sizeof label + ::GetLengthSid(label.Label.Sid);
        const bool isLow = ::SetTokenInformation(token, TokenIntegrityLevel, &label, size) != 0;
        ::LocalFree(label.Label.Sid);
        return isLow;
    }

    bool isSet_ = false;
};

// Opens a mutex with these rights and returns the Windows error, or 0.
DWORD openMutex(const std::string& name, DWORD access) {
    const HANDLE mutex =
        ::CreateMutexExW(nullptr, wideForTests(name).c_str(), /*dwFlags=*/0, access);
    if (mutex == nullptr) return ::GetLastError();
    ::CloseHandle(mutex);
    return ERROR_SUCCESS;
}

// Records the result without expecting one: the default label of an object only denies writes, so
// Windows may grant the other rights.
void recordEither(const char* what, DWORD error) {
    std::printf("[figure] %s 0x%08lX\n", what, error);
    EXPECT_TRUE(error == ERROR_SUCCESS || error == ERROR_ACCESS_DENIED) << what << ' ' << error;
}

DWORD createFile(const std::string& path) {
    const HANDLE file = ::CreateFileW(wideForTests(path).c_str(), GENERIC_WRITE, 0, nullptr,
                                      CREATE_ALWAYS, 0, /*hTemplateFile=*/nullptr);
    if (file == INVALID_HANDLE_VALUE) return ::GetLastError();
    ::CloseHandle(file);
    return ERROR_SUCCESS;
}

}  // namespace

TEST(ClientsTest, ARemoteClientIsRefused) {
    const LogCapture log;
    const ServedName server;
    const DWORD control = connectToOpenPipe(server.name() + "_open");
    if (control != ERROR_SUCCESS) {
        GTEST_SKIP() << "needs a machine that serves its pipes to the network: error " << control;
    }
    EXPECT_EQ(connectTo(local(server.name())), DWORD{ERROR_SUCCESS});
    const DWORD error = connectTo(throughTheNetwork(server.name()));
    std::printf("[figure] error 0x%08lX\n", error);
    EXPECT_NE(error, DWORD{ERROR_SUCCESS});
}

TEST(ClientsTest, AClientOfLowIntegrityIsRefusedByThePipe) {
    const LogCapture log;
    const ServedName server;
    ASSERT_EQ(connectTo(local(server.name())), DWORD{ERROR_SUCCESS});
    const LowIntegrity low;
    ASSERT_TRUE(low.isSet());
    EXPECT_EQ(connectTo(local(server.name())), DWORD{ERROR_ACCESS_DENIED});
    EXPECT_EQ(connectTo(local(server.name()), GENERIC_WRITE), DWORD{ERROR_ACCESS_DENIED});
}

TEST(ClientsTest, AClientOfLowIntegrityOpensThePipeForReadingOrIsRefused) {
    const LogCapture log;
    const ServedName server;
    ASSERT_EQ(connectTo(local(server.name()), GENERIC_READ), DWORD{ERROR_SUCCESS});
    const LowIntegrity low;
    ASSERT_TRUE(low.isSet());
    recordEither("pipe-for-reading", connectTo(local(server.name()), GENERIC_READ));
}

TEST(ClientsTest, AClientOfLowIntegrityIsRefusedByTheMutex) {
    const std::string name = "Local\\vtr_test_kit_" + std::to_string(ownProcessId());
    XmutexNamed mutex;
    ASSERT_EQ(mutex.init(name), 0);
    ASSERT_EQ(openMutex(name, MUTEX_ALL_ACCESS), DWORD{ERROR_SUCCESS});
    const LowIntegrity low;
    ASSERT_TRUE(low.isSet());
    EXPECT_EQ(openMutex(name, MUTEX_ALL_ACCESS), DWORD{ERROR_ACCESS_DENIED});
}

TEST(ClientsTest, AClientOfLowIntegrityOpensTheMutexToWaitOrIsRefused) {
    const std::string name = "Local\\vtr_test_kit_wait_" + std::to_string(ownProcessId());
    XmutexNamed mutex;
    ASSERT_EQ(mutex.init(name), 0);
    const LowIntegrity low;
    ASSERT_TRUE(low.isSet());
    recordEither("mutex-to-wait-for", openMutex(name, SYNCHRONIZE));
}

TEST(ClientsTest, AClientOfLowIntegrityIsRefusedByADataFolder) {
    const TempFolder folder;
    ASSERT_EQ(createFile(folder / "before"), DWORD{ERROR_SUCCESS});
    const LowIntegrity low;
    ASSERT_TRUE(low.isSet());
    EXPECT_EQ(createFile(folder / "after"), DWORD{ERROR_ACCESS_DENIED});
}
