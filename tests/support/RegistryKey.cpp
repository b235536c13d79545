#include "support/RegistryKey.h"

#include <stdexcept>
#include <string>

HKEY createRegistryKey(HKEY root, const wchar_t* path) {
    // Volatile like the keys of hosts in other languages: one of these hosts may have created the
    // parent key, and a volatile key can have only volatile subkeys.
    HKEY key = nullptr;
    if (::RegCreateKeyExW(root, path, 0, nullptr, REG_OPTION_VOLATILE,
                          KEY_ALL_ACCESS | KEY_WOW64_64KEY, nullptr, &key,
                          nullptr) != ERROR_SUCCESS) {
        throw std::runtime_error("cannot create a registry key");
    }
    return key;
}

void setProductValue(std::string_view name, unsigned long type, const void* data,
                     std::size_t size) {
    const HKEY key = createRegistryKey(HKEY_LOCAL_MACHINE, kProductKey);
    ::RegSetValueExW(key, wideForTests(name).c_str(), 0, type, static_cast<const BYTE*>(data),
                     static_cast<DWORD>(size));
    ::RegCloseKey(key);
}

void setProductText(std::string_view name, std::string_view text) {
    const std::wstring wide = wideForTests(text);
    setProductValue(name, REG_SZ, wide.c_str(), (wide.size() + 1) * sizeof(wchar_t));
}
