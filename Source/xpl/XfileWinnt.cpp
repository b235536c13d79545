// Files by UTF-8 path, over the wide-character Windows API.
#include <cstdint>
#include <string>

#include "xpl/Xerr.h"
#include "xpl/Xfile.h"
#include "xpl/XfileSystem.h"
#include "xpl/Xtext.h"
#include "xpl/XwindowsLean.h"

namespace {

constexpr DWORD kReplaceRetryMs = 50;

struct OpenRow {
    DWORD access;
    DWORD disposition;
};

OpenRow openRow(XfileMode mode) {
    switch (mode) {
        case XfileMode::ReadWrite:
            return {GENERIC_READ | GENERIC_WRITE, OPEN_ALWAYS};
        case XfileMode::Append:
            return {FILE_APPEND_DATA, OPEN_ALWAYS};
        case XfileMode::WriteNew:
            return {GENERIC_READ | GENERIC_WRITE, CREATE_ALWAYS};
        case XfileMode::Update:
            return {GENERIC_READ | GENERIC_WRITE, OPEN_EXISTING};
        case XfileMode::Read:
            break;
    }
    return {GENERIC_READ, OPEN_EXISTING};
}

bool existsWide(const std::wstring& path) {
    return ::GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES;
}

XErr createFolderWide(const std::wstring& path) {
    if (::CreateDirectoryW(path.c_str(), nullptr)) return XERR_SUCCESS;
    const DWORD error = ::GetLastError();
    return error == ERROR_ALREADY_EXISTS ? XERR_SUCCESS
                                         : xerrFromWindows(static_cast<std::int32_t>(error));
}

// The absolute path, with "\" only. Its length may change between two calls, when another thread
// changes the current folder.
XErr absolutePath(const std::wstring& path, std::wstring& absolute) {
    absolute.clear();
    for (DWORD room = 0;;) {
        const DWORD length =
            ::GetFullPathNameW(path.c_str(), room, absolute.data(), /*lpFilePart=*/nullptr);
        if (length == 0) return xerrLast();
        absolute.resize(length);
        if (length < room) return XERR_SUCCESS;
        room = length;
    }
}

// Status of the file call that just failed on this thread, perhaps without setting an error.
XErr failed(Xfile& file) {
    const DWORD error = ::GetLastError();
    file.setWindowsError(static_cast<std::int32_t>(error != 0 ? error : ERROR_GEN_FAILURE));
    return xerrFromWindows(static_cast<std::int32_t>(error));
}

// Errors of a file that a scanner or reader uses for a moment.
bool isBrieflyHeld(DWORD error) {
    return error == ERROR_ACCESS_DENIED ||
           xerrIsHeld(xerrFromWindows(static_cast<std::int32_t>(error)));
}

// The path as passed to Windows. A path without an absolute form is unchanged: the call that takes
// it reports the error.
XErr windowsPath(const std::string& path, std::wstring& wide) {
    if (const XErr err = xtextToWide(path, wide); err != XERR_SUCCESS) return err;
    std::wstring absolute;
    if (absolutePath(wide, absolute) == XERR_SUCCESS) wide = xfileWindowsPath(wide, absolute);
    return XERR_SUCCESS;
}

// Calls `call(windowsPath)`, which returns whether it succeeded.
template <typename Call>
XErr withWindowsPath(const std::string& path, Call call) {
    std::wstring wide;
    if (const XErr err = windowsPath(path, wide); err != XERR_SUCCESS) return err;
    return call(wide) ? XERR_SUCCESS : xerrLast();
}

}  // namespace

std::string xfileSystemPath(const std::string& path) { return path; }

void Xfile::adopt(void* handle) {
    if (handle_ != nullptr) ::CloseHandle(handle_);
    handle_ = handle;
}

XErr xfileSystemOpen(Xfile& file, const std::string& path, XfileMode mode, XfileSharing sharing) {
    std::wstring wide;
    if (const XErr err = windowsPath(path, wide); err != XERR_SUCCESS) {
        file.setWindowsError(ERROR_NO_UNICODE_TRANSLATION);
        return err;
    }
    const OpenRow row = openRow(mode);
    SECURITY_ATTRIBUTES attributes{sizeof(SECURITY_ATTRIBUTES), nullptr,
                                   sharing == XfileSharing::Inherited};
    const HANDLE handle = ::CreateFileW(
        wide.c_str(), row.access, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
        &attributes, row.disposition, FILE_ATTRIBUTE_NORMAL, /*hTemplateFile=*/nullptr);
    if (handle == INVALID_HANDLE_VALUE) return failed(file);
    file.adopt(handle);
    return XERR_SUCCESS;
}

XErr xfileRead(Xfile& file, void* buffer, std::uint32_t length, std::uint32_t& done) {
    DWORD moved = 0;
    const BOOL ok = ::ReadFile(file.handle(), buffer, length, &moved, /*lpOverlapped=*/nullptr);
    const XErr err = ok ? XERR_SUCCESS : failed(file);
    done = moved;
    return err;
}

XErr xfileWrite(Xfile& file, const void* buffer, std::uint32_t length, std::uint32_t& done) {
    DWORD moved = 0;
    const BOOL ok = ::WriteFile(file.handle(), buffer, length, &moved, /*lpOverlapped=*/nullptr);
    const XErr err = ok ? XERR_SUCCESS : failed(file);
    done = moved;
    return err;
}

XErr xfileSize(Xfile& file, std::int64_t& size) {
    LARGE_INTEGER value{};
    if (!::GetFileSizeEx(file.handle(), &value)) return failed(file);
    size = value.QuadPart;
    return XERR_SUCCESS;
}

XErr xfileSeek(Xfile& file, std::int64_t distance, XfileSeekFrom from, std::int64_t& position) {
    LARGE_INTEGER to{};
    LARGE_INTEGER reached{};
    to.QuadPart = distance;
    if (!::SetFilePointerEx(file.handle(), to, &reached, static_cast<DWORD>(from))) {
        return failed(file);
    }
    position = reached.QuadPart;
    return XERR_SUCCESS;
}

XErr xfileExists(const std::string& path) { return withWindowsPath(path, existsWide); }

XErr xfileSizeOfPath(const std::string& path, std::int64_t& size) {
    return withWindowsPath(path, [&size](const std::wstring& wide) {
        WIN32_FILE_ATTRIBUTE_DATA data{};
        if (!::GetFileAttributesExW(wide.c_str(), GetFileExInfoStandard, &data)) return false;
        size = static_cast<std::int64_t>((std::uint64_t{data.nFileSizeHigh} << 32) |
                                         data.nFileSizeLow);
        return true;
    });
}

XErr xfileDelete(const std::string& path) {
    return withWindowsPath(
        path, [](const std::wstring& wide) { return ::DeleteFileW(wide.c_str()) != FALSE; });
}

XErr xfileRemoveFolder(const std::string& path) {
    return withWindowsPath(
        path, [](const std::wstring& wide) { return ::RemoveDirectoryW(wide.c_str()) != FALSE; });
}

XErr xfileCreateFolder(const std::string& path) {
    std::wstring wide;
    if (const XErr err = windowsPath(path, wide); err != XERR_SUCCESS) return err;
    return createFolderWide(wide);
}

XErr xfileMakeFolders(const std::string& path) {
    std::wstring wide;
    std::wstring absolute;
    if (const XErr err = xtextToWide(path, wide); err != XERR_SUCCESS) return err;
    if (const XErr err = absolutePath(wide, absolute); err != XERR_SUCCESS) return err;
    for (const std::wstring& folder : xfileFolderChain(absolute)) {
        if (existsWide(folder)) continue;
        if (const XErr err = createFolderWide(folder); err != XERR_SUCCESS) return err;
    }
    return XERR_SUCCESS;
}

XErr xfileFlush(const std::string& path) {
    Xfile file;
    const XErr err = xfileOpen(file, path, XfileMode::Update, XfileSharing::Private);
    if (err != XERR_SUCCESS) return err;
    return ::FlushFileBuffers(file.handle()) ? XERR_SUCCESS : xerrLast();
}

XErr xfileSystemReplace(const std::string& source, const std::string& destination, int retries) {
    std::wstring from;
    std::wstring to;
    if (const XErr err = windowsPath(source, from); err != XERR_SUCCESS) return err;
    if (const XErr err = windowsPath(destination, to); err != XERR_SUCCESS) return err;
    for (int attempt = 0;; ++attempt) {
        if (::MoveFileExW(from.c_str(), to.c_str(), MOVEFILE_REPLACE_EXISTING)) return XERR_SUCCESS;
        const DWORD error = ::GetLastError();
        if (!isBrieflyHeld(error) || attempt == retries) {
            return xerrFromWindows(static_cast<std::int32_t>(error));
        }
        ::Sleep(kReplaceRetryMs);
    }
}

XErr xfileAttributes(const std::string& path, XfileAttributes& attributes) {
    return withWindowsPath(path, [&attributes](const std::wstring& wide) {
        const DWORD bits = ::GetFileAttributesW(wide.c_str());
        if (bits == INVALID_FILE_ATTRIBUTES) return false;
        attributes = {(bits & FILE_ATTRIBUTE_DIRECTORY) != 0,
                      (bits & FILE_ATTRIBUTE_READONLY) != 0};
        return true;
    });
}

XErr xfileCreateNewFolder(const std::string& path) {
    return withWindowsPath(path, [](const std::wstring& wide) {
        return ::CreateDirectoryW(wide.c_str(), nullptr) != FALSE;
    });
}

bool xfileSystemWaitForHolder(std::int32_t windowsError) {
    if (!isBrieflyHeld(static_cast<DWORD>(windowsError))) return false;
    ::Sleep(kReplaceRetryMs);
    return true;
}
