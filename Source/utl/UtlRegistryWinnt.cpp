// Texts of the Windows registry.
#include "utl/UtlRegistry.h"

#include "xpl/Xerr.h"
#include "xpl/Xtext.h"
#include "xpl/XwindowsLean.h"

namespace {

// An open registry key, or none. The destructor closes it.
class RegistryKey {
 public:
    RegistryKey(HKEY root, const std::wstring& path) {
        if (::RegOpenKeyExW(root, path.c_str(), 0, KEY_QUERY_VALUE | KEY_WOW64_64KEY, &key_) !=
            ERROR_SUCCESS) {
            key_ = nullptr;
        }
    }
    ~RegistryKey() {
        if (key_ != nullptr) ::RegCloseKey(key_);
    }
    RegistryKey(const RegistryKey&) = delete;
    RegistryKey& operator=(const RegistryKey&) = delete;

    // Returns false for a missing value, another type, or a failed read.
    bool readText(const std::wstring& name, std::wstring& text) const {
        if (key_ == nullptr) return false;
        DWORD type = REG_NONE;
        DWORD size = 0;
        if (query(name, type, nullptr, size) != ERROR_SUCCESS || type != REG_SZ) return false;
        text.assign((size + 1) / sizeof(wchar_t), L'\0');
        if (query(name, type, text.data(), size) != ERROR_SUCCESS || type != REG_SZ) return false;
        text.resize(size / sizeof(wchar_t));
        while (!text.empty() && text.back() == L'\0') text.pop_back();  // the size includes it
        return true;
    }

 private:
    LSTATUS query(const std::wstring& name, DWORD& type, wchar_t* data, DWORD& size) const {
        return ::RegQueryValueExW(key_, name.c_str(), /*lpReserved=*/nullptr, &type,
                                  reinterpret_cast<BYTE*>(data), &size);
    }

    HKEY key_ = nullptr;
};

}  // namespace

std::string utlRegistryString(UtlRegistryRoot root, const std::string& keyPath,
                              const std::string& valueName, const std::string& defaultValue) {
    std::wstring path;
    std::wstring name;
    std::wstring text;
    if (xtextToWide(keyPath, path) != XERR_SUCCESS) return defaultValue;
    if (xtextToWide(valueName, name) != XERR_SUCCESS) return defaultValue;
    const HKEY rootKey =
        root == UtlRegistryRoot::LocalMachine ? HKEY_LOCAL_MACHINE : HKEY_CURRENT_USER;
    return RegistryKey(rootKey, path).readText(name, text) ? xtextToUtf8(text) : defaultValue;
}
