#include "doctor/System.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string_view>

#include "EventServer.h"
#include "utl/UtlRegistry.h"
#include "xpl/Xerr.h"
#include "xpl/Xfile.h"
#include "xpl/Xtext.h"
#include "xpl/XwindowsLean.h"

// Last: it needs <windows.h>.
#include <aclapi.h>

namespace {

struct CloseSystemHandle {
    void operator()(void* handle) const noexcept { ::CloseHandle(handle); }
};
using SystemHandle = std::unique_ptr<void, CloseSystemHandle>;

struct FreeLocal {
    void operator()(void* memory) const noexcept { ::LocalFree(memory); }
};

std::wstring wide(const std::string& text) {
    std::wstring converted;
    // A text that cannot be converted becomes empty.
    static_cast<void>(xtextToWide(text, converted));
    return converted;
}

// "BUILTIN\Users", or a placeholder for an account that no longer exists.
std::string accountName(PSID sid) {
    wchar_t name[256];
    wchar_t domain[256];
    DWORD nameSize = 256;
    DWORD domainSize = 256;
    SID_NAME_USE use{};
    if (!::LookupAccountSidW(nullptr, sid, name, &nameSize, domain, &domainSize, &use)) {
        return "an unknown account";
    }
    return (domainSize == 0 ? "" : xtextToUtf8(domain) + "\\") + xtextToUtf8(name);
}

std::string folderFrom(UINT(WINAPI* get)(LPWSTR, UINT)) {
    wchar_t path[MAX_PATH];
    const UINT length = get(path, MAX_PATH);
    return length < MAX_PATH ? xtextToUtf8(std::wstring_view(path, length)) : "";
}

std::string imageName(std::uint32_t id) {
    const SystemHandle process(::OpenProcess(PROCESS_QUERY_LIMITED_INFORMATION, FALSE, id));
    wchar_t path[1024];
    DWORD size = 1024;
    if (process == nullptr || !::QueryFullProcessImageNameW(process.get(), 0, path, &size)) {
        return {};
    }
    const std::string text = xtextToUtf8(std::wstring_view(path, size));
    return text.substr(text.find_last_of('\\') + 1);
}

template <typename Number>
Number numberAt(const char* bytes, std::size_t offset) {
    Number number;
    std::memcpy(&number, bytes + offset, sizeof number);
    return number;
}

}  // namespace

RegistryValue registryValueState(const std::string& name) {
    DWORD type = REG_NONE;
    const LSTATUS status =
        ::RegGetValueW(HKEY_LOCAL_MACHINE, wide(UTL_PRODUCT_KEY).c_str(), wide(name).c_str(),
                       RRF_RT_ANY | RRF_NOEXPAND | RRF_SUBKEY_WOW6464KEY, &type, nullptr, nullptr);
    if (status != ERROR_SUCCESS) return RegistryValue::Missing;
    return type == REG_SZ ? RegistryValue::Text : RegistryValue::OtherType;
}

bool unsignedFilesAreRefused() {
    DWORD state = 0;
    DWORD size = sizeof state;
    return ::RegGetValueW(HKEY_LOCAL_MACHINE, L"SYSTEM\\CurrentControlSet\\Control\\CI\\Policy",
                          L"VerifiedAndReputablePolicyState", RRF_RT_REG_DWORD, nullptr, &state,
                          &size) == ERROR_SUCCESS &&
           state == 1;
}

std::vector<std::string> writersOf(const std::string& folder) {
    PACL list = nullptr;
    PSECURITY_DESCRIPTOR made = nullptr;
    if (::GetNamedSecurityInfoW(wide(folder).c_str(), SE_FILE_OBJECT, DACL_SECURITY_INFORMATION,
                                nullptr, nullptr, &list, nullptr, &made) != ERROR_SUCCESS) {
        return {};
    }
    const std::unique_ptr<void, FreeLocal> descriptor(made);
    if (list == nullptr) return {"everyone: the folder has no access list"};
    std::vector<std::string> names;
    for (DWORD i = 0; i < list->AceCount; ++i) {
        void* entry = nullptr;
        if (!::GetAce(list, i, &entry)) continue;
        const auto* const allowed = static_cast<const ACCESS_ALLOWED_ACE*>(entry);
        if (allowed->Header.AceType != ACCESS_ALLOWED_ACE_TYPE) continue;
        if ((allowed->Mask & (FILE_ADD_FILE | GENERIC_WRITE | GENERIC_ALL)) == 0) continue;
        const std::string name = accountName(const_cast<DWORD*>(&allowed->SidStart));
        if (std::find(names.begin(), names.end(), name) == names.end()) names.push_back(name);
    }
    return names;
}

LockState lockState(const std::string& name, std::chrono::milliseconds limit) {
    const SystemHandle mutex(
        ::OpenMutexW(SYNCHRONIZE | MUTEX_MODIFY_STATE, FALSE, wide(name).c_str()));
    if (mutex == nullptr) {
        return ::GetLastError() == ERROR_ACCESS_DENIED ? LockState::Refused : LockState::Free;
    }
    const DWORD result = ::WaitForSingleObject(mutex.get(), static_cast<DWORD>(limit.count()));
    if (result == WAIT_TIMEOUT) return LockState::Held;
    if (result == WAIT_FAILED) return LockState::Refused;
    ::ReleaseMutex(mutex.get());
    return LockState::Free;
}

std::optional<PipeServer> pipeServer(const std::string& serverName) {
    EventServerProbe probe;
    if (!probe.connect(serverName)) return std::nullopt;
    PipeServer server;
    server.process = probe.process();
    server.image = imageName(server.process);
    return server;
}

std::string modulePath(const std::string& name) {
    const HMODULE module = ::GetModuleHandleW(name.empty() ? nullptr : wide(name).c_str());
    wchar_t path[1024];
    const DWORD length = module == nullptr ? 0 : ::GetModuleFileNameW(module, path, 1024);
    return xtextToUtf8(std::wstring_view(path, length));
}

std::string fileVersion(const std::string& path) {
    const std::wstring file = wide(path);
    const DWORD size = ::GetFileVersionInfoSizeW(file.c_str(), nullptr);
    std::string bytes(size, '\0');
    void* found = nullptr;
    UINT length = 0;
    if (size == 0 || !::GetFileVersionInfoW(file.c_str(), 0, size, bytes.data()) ||
        !::VerQueryValueW(bytes.data(), L"\\", &found, &length)) {
        return {};
    }
    const auto& info = *static_cast<const VS_FIXEDFILEINFO*>(found);
    std::string text;
    for (const DWORD pair : {info.dwFileVersionMS, info.dwFileVersionLS}) {
        if (!text.empty()) text += ".";
        text += std::to_string(HIWORD(pair)) + "." + std::to_string(LOWORD(pair));
    }
    return text;
}

bool isSigned(const std::string& path) {
    constexpr std::size_t kRead = 4096;  // enough for the headers of any program
    constexpr std::size_t kOptionalHeader = 24;
    constexpr std::size_t kSecuritySize = 112 + 4 * 8 + 4;  // the fifth entry of the directory
    Xfile file;
    char bytes[kRead] = {};
    std::uint32_t done = 0;
    if (xfileOpen(file, path, XfileMode::Read, XfileSharing::Private) != XERR_SUCCESS) return false;
    if (xfileRead(file, bytes, kRead, done) != XERR_SUCCESS || done < 64) return false;
    const std::size_t header = numberAt<std::uint32_t>(bytes, 0x3C);
    const std::size_t at = header + kOptionalHeader + kSecuritySize;
    return at + sizeof(std::uint32_t) <= done && numberAt<std::uint32_t>(bytes, at) != 0;
}

std::vector<std::string> searchFolders() {
    const std::string program = modulePath("");
    std::vector<std::string> folders{program.substr(0, program.find_last_of('\\')),
                                     folderFrom(::GetSystemDirectoryW),
                                     folderFrom(::GetWindowsDirectoryW)};
    const wchar_t* const path = ::_wgetenv(L"PATH");
    std::string rest = path == nullptr ? "" : xtextToUtf8(path);
    while (!rest.empty()) {
        const std::size_t end = std::min(rest.find(';'), rest.size());
        if (end > 0) folders.push_back(rest.substr(0, end));
        rest.erase(0, std::min(end + 1, rest.size()));
    }
    return folders;
}

bool isSameFolder(const std::string& one, const std::string& other) {
    const auto identityOf = [](const std::string& path, BY_HANDLE_FILE_INFORMATION& info) {
        const HANDLE handle =
            ::CreateFileW(wide(path).c_str(), 0, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                          OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
        if (handle == INVALID_HANDLE_VALUE) return false;
        const SystemHandle folder(handle);
        return ::GetFileInformationByHandle(handle, &info) != 0;
    };
    BY_HANDLE_FILE_INFORMATION first{};
    BY_HANDLE_FILE_INFORMATION second{};
    return identityOf(one, first) && identityOf(other, second) &&
           first.dwVolumeSerialNumber == second.dwVolumeSerialNumber &&
           first.nFileIndexHigh == second.nFileIndexHigh &&
           first.nFileIndexLow == second.nFileIndexLow;
}

std::uint32_t thisProcess() { return ::GetCurrentProcessId(); }
