#include "support/HeldFile.h"

#include <utility>

#include "support/WindowsForTests.h"

HeldFile::HeldFile(const std::string& path, Shares shares) {
    const DWORD mode =
        shares == Shares::Nothing ? 0 : DWORD{FILE_SHARE_READ} | DWORD{FILE_SHARE_WRITE};
    const HANDLE handle = ::CreateFileW(wideForTests(path).c_str(), GENERIC_READ, mode, nullptr,
                                        OPEN_EXISTING, 0, nullptr);
    if (handle != INVALID_HANDLE_VALUE) handle_ = handle;
}

void HeldFile::release() {
    if (handle_ != nullptr) ::CloseHandle(std::exchange(handle_, nullptr));
}

bool HeldFile::isPossible() { return true; }
