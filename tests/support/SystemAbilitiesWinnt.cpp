#include "support/SystemAbilities.h"

#include <string>
#include <thread>
#include <vector>

#include "support/TempFolder.h"
#include "support/WindowsForTests.h"

namespace {

constexpr int kThreads = 4;
constexpr int kWrites = 250;
constexpr DWORD kSize = 300;

void append(HANDLE file) {
    const std::string text(kSize, 'x');
    for (int i = 0; i < kWrites; ++i) {
        DWORD done = 0;
        ::WriteFile(file, text.data(), kSize, &done, /*lpOverlapped=*/nullptr);
    }
}

// Whether the writes of several threads are all in a file. Two at the same offset leave it shorter.
bool allWritesArrive(const std::wstring& path) {
    const HANDLE file =
        ::CreateFileW(path.c_str(), FILE_APPEND_DATA, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                      CREATE_NEW, FILE_ATTRIBUTE_NORMAL, /*hTemplateFile=*/nullptr);
    std::vector<std::thread> threads;
    for (int i = 0; i < kThreads; ++i) threads.emplace_back(append, file);
    for (std::thread& thread : threads) thread.join();
    LARGE_INTEGER size{};
    ::GetFileSizeEx(file, &size);
    ::CloseHandle(file);
    return size.QuadPart == LONGLONG{kSize} * kWrites * kThreads;
}

}  // namespace

// Where appending is not atomic, nine rounds in ten lose writes.
bool appendsAreAtomic() {
    constexpr int kRounds = 40;
    const TempFolder folder;
    for (int i = 0; i < kRounds; ++i) {
        if (!allWritesArrive(wideForTests(folder / std::to_string(i)))) return false;
    }
    return true;
}
