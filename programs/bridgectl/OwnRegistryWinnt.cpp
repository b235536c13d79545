#include <bridge/bridge.h>

#include <cstdint>
#include <stdexcept>

#include "OwnRegistry.h"
#include "WindowsErrorText.h"
#include "utl/UtlRegistry.h"
#include "xpl/Xerr.h"
#include "xpl/Xtext.h"
#include "xpl/XwindowsLean.h"

namespace {

[[noreturn]] void fail(const std::string& what, LSTATUS error) {
    throw std::runtime_error(what + ": Windows error " + std::to_string(error) + ": " +
                             windowsErrorText(static_cast<std::uint32_t>(error)));
}

void require(LSTATUS error) {
    if (error != ERROR_SUCCESS) fail("cannot make a registry for these folders", error);
}

std::wstring wide(const std::string& text) {
    std::wstring converted;
    if (xtextToWide(text, converted) != XERR_SUCCESS) {
        fail("no path: " + text, ERROR_NO_UNICODE_TRANSLATION);
    }
    return converted;
}

// A relative path would depend on the folder in which each program starts.
std::wstring absolute(const std::string& folder) {
    const std::wstring given = wide(folder);
    std::wstring path(::GetFullPathNameW(given.c_str(), 0, nullptr, nullptr), L'\0');
    const DWORD size =
        ::GetFullPathNameW(given.c_str(), static_cast<DWORD>(path.size()), path.data(), nullptr);
    if (size == 0 || size >= path.size()) {
        fail("no path: " + folder, static_cast<LSTATUS>(::GetLastError()));
    }
    path.resize(size);
    return path;
}

// Volatile: never written to disk.
HKEY createKey(HKEY root, const std::wstring& path) {
    HKEY key = nullptr;
    require(::RegCreateKeyExW(root, path.c_str(), 0, nullptr, REG_OPTION_VOLATILE,
                              KEY_ALL_ACCESS | KEY_WOW64_64KEY, nullptr, &key, nullptr));
    return key;
}

void setText(const wchar_t* name, const std::wstring& text) {
    const HKEY key = createKey(HKEY_LOCAL_MACHINE, wide(UTL_PRODUCT_KEY));
    const LSTATUS error =
        ::RegSetValueExW(key, name, 0, REG_SZ, reinterpret_cast<const BYTE*>(text.c_str()),
                         static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t)));
    ::RegCloseKey(key);
    require(error);
}

}  // namespace

OwnRegistry::~OwnRegistry() {
    if (path_.empty()) return;
    ::RegOverridePredefKey(HKEY_LOCAL_MACHINE, nullptr);
    ::RegDeleteTreeW(HKEY_CURRENT_USER, path_.c_str());
}

void OwnRegistry::useFolders(const std::string& dataFolder, const std::string& installFolder) {
    const std::wstring data = absolute(dataFolder);
    std::wstring install = absolute(installFolder);
    if (install.back() != L'\\') install += L'\\';
    path_ = L"Software\\QX-Bridge\\Development-" + std::to_wstring(::GetCurrentProcessId());
    // A process that ended fatally may have left a key with the same process id.
    ::RegDeleteTreeW(HKEY_CURRENT_USER, path_.c_str());
    const HKEY own = createKey(HKEY_CURRENT_USER, path_);
    const LSTATUS error = ::RegOverridePredefKey(HKEY_LOCAL_MACHINE, own);
    ::RegCloseKey(own);
    require(error);
    setText(L"UserDefinedDir", data);
    setText(L"InstallDir", install);
    setText(L"Version", wide(BRIDGE_VERSION_TEXT));
}
