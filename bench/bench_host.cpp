// bench_host library FOLDER   starts the library with the product's data in FOLDER, and prints the
//                             nanoseconds
// bench_host qt FOLDER        the same, but only loads the library's dependencies
// bench_host memory FOLDER    prints the private bytes that the initialisation allocates
// bench_host commit FOLDER KEY EVENT
//                             starts the library, prints a line, then changes and commits KEY in a
//                             loop while the event with this name is set
#include <bridge/bridge.h>

#include <chrono>
#include <cstdio>
#include <cstring>
#include <ratio>

#include "support/RegistrySandbox.h"
#include "support/WindowsForTests.h"

namespace {

using Clock = std::chrono::steady_clock;

template <typename Function>
Function resolve(HMODULE module, const char* name) {
    return reinterpret_cast<Function>(reinterpret_cast<void*>(::GetProcAddress(module, name)));
}

// Private memory of this process, without code.
std::size_t privateBytes() {
    std::size_t sum = 0;
    MEMORY_BASIC_INFORMATION region{};
    for (char* at = nullptr; ::VirtualQuery(at, &region, sizeof region) == sizeof region;
         at += region.RegionSize) {
        if (region.State == MEM_COMMIT && region.Type == MEM_PRIVATE) sum += region.RegionSize;
    }
    return sum;
}

double nanosecondsSince(Clock::time_point start) {
    return std::chrono::duration<double, std::nano>(Clock::now() - start).count();
}

int printTime(bool ok, Clock::time_point start) {
    std::printf("%.0f\n", nanosecondsSince(start));
    return ok ? 0 : 1;
}

int loadQt() {
    const auto start = Clock::now();
    const bool core = ::LoadLibraryW(L"Qt5Core.dll") != nullptr;
    return printTime(::LoadLibraryW(L"Qt5Network.dll") != nullptr && core, start);
}

int useLibrary(bool showMemory) {
    const auto start = Clock::now();
    const HMODULE module = ::LoadLibraryW(L"QX-Bridge.dll");
    if (module == nullptr) return 1;
    const auto init = resolve<decltype(&bridgeApiInit)>(module, "bridgeApiInit");
    const auto fini = resolve<decltype(&bridgeApiFini)>(module, "bridgeApiFini");
    const std::size_t before = privateBytes();
    bool ok = init("Helper") == BRIDGE_SUCCESS;
    if (showMemory) {
        std::printf("%.0f\n", static_cast<double>(privateBytes()) - static_cast<double>(before));
        return ok ? 0 : 1;
    }
    ok = fini() == BRIDGE_SUCCESS && ok;
    return printTime(ok, start);
}

int commitWhileSet(const char* key, const char* eventName) {
    const HANDLE event = ::OpenEventA(SYNCHRONIZE, FALSE, eventName);
    const HMODULE module = ::LoadLibraryW(L"QX-Bridge.dll");
    if (event == nullptr || module == nullptr) return 1;
    const auto init = resolve<decltype(&bridgeApiInit)>(module, "bridgeApiInit");
    const auto set = resolve<decltype(&bridgeConfSetString)>(module, "bridgeConfSetString");
    const auto commit = resolve<decltype(&bridgeConfCommit)>(module, "bridgeConfCommit");
    if (init("Helper") != BRIDGE_SUCCESS) return 1;
    std::puts("ready");
    std::fflush(stdout);
    for (bool odd = false; ::WaitForSingleObject(event, INFINITE) == WAIT_OBJECT_0; odd = !odd) {
        if (set(key, odd ? "mine" : "yours") != BRIDGE_SUCCESS) return 1;
        if (commit() != BRIDGE_SUCCESS) return 1;
    }
    return 1;
}

}  // namespace

int main(int count, char** arguments) {
    const bool commits = count == 5 && std::strcmp(arguments[1], "commit") == 0;
    if (count != 3 && !commits) return 2;
    RegistrySandbox registry;
    registry.set("UserDefinedDir", arguments[2]);
    if (commits) return commitWhileSet(arguments[3], arguments[4]);
    if (std::strcmp(arguments[1], "qt") == 0) return loadQt();
    return useLibrary(std::strcmp(arguments[1], "memory") == 0);
}
