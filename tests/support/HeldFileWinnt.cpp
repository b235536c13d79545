#include "support/HeldFile.h"

#include <utility>

#include "support/WindowsForTests.h"

namespace {

DWORD shareMode(HeldFile::Shares shares) {
    switch (shares) {
        case HeldFile::Shares::Nothing:
            return 0;
        case HeldFile::Shares::Deletion:
            return FILE_SHARE_DELETE;
        case HeldFile::Shares::ReadAndWrite:
            return FILE_SHARE_READ | FILE_SHARE_WRITE;
        case HeldFile::Shares::EverythingButItsBytes:
            break;
    }
    return FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
}

// The lock ends with the handle.
bool lockBytes(HANDLE file) {
    OVERLAPPED from{};
    return ::LockFileEx(file, LOCKFILE_EXCLUSIVE_LOCK, 0, MAXDWORD, 0, &from) != FALSE;
}

}  // namespace

HeldFile::HeldFile(const std::string& path, Shares shares) {
    const HANDLE handle = ::CreateFileW(wideForTests(path).c_str(), GENERIC_READ, shareMode(shares),
                                        nullptr, OPEN_EXISTING, 0, nullptr);
    if (handle == INVALID_HANDLE_VALUE) return;
    handle_ = handle;
    if (shares == Shares::EverythingButItsBytes && !lockBytes(handle)) release();
}

void HeldFile::release() {
    if (handle_ != nullptr) ::CloseHandle(std::exchange(handle_, nullptr));
}

bool HeldFile::isPossible() { return true; }
