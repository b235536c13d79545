// When the server's thread object releases the module of its code.
#include "ipc/IpcServer.h"
#include "proof/ImportTable.h"
#include "support/LogCapture.h"
#include "support/TestHeaders.h"
#include "support/WindowsForTests.h"

namespace {

int freed;
int freedBefore;  // when the module was released

// The C runtime's free(), which the test replaces.
void reallyFree(void* memory) { static_cast<void>(std::realloc(memory, 0)); }

void countFreed(void* memory) {
    if (memory != nullptr) ++freed;
    reallyFree(memory);
}

// The module is this program, which must stay loaded.
BOOL WINAPI letGo(HMODULE module) {
    EXPECT_EQ(module, ::GetModuleHandleW(nullptr));
    EXPECT_EQ(freedBefore, -1) << "once";
    freedBefore = freed;
    return TRUE;
}

bool ignore(QLocalSocket*, const std::uint8_t*, std::int32_t, void*, std::int32_t) { return true; }

}  // namespace

TEST(IpcServerPinTest, TheModuleIsReleasedAfterTheOtherMembers) {
    const LogOff off;
    auto server = std::make_unique<IpcServerThread>(std::string(100, 'n'), ignore);
    freed = 0;
    freedBefore = -1;
    {
        const ReplacedImport<void(void*)> counted("free", countFreed);
        const auto held = REPLACED(FreeLibrary, letGo);
        server.reset();
    }
    EXPECT_EQ(freedBefore, 1) << "the name, which is a member";
    EXPECT_EQ(freed, 2) << "and the object";
}
