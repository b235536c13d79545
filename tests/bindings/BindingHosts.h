#ifndef TESTS_BINDINGHOSTS_H
#define TESTS_BINDINGHOSTS_H

#include <cstdlib>
#include <string>

#include "support/WindowsForTests.h"

// An environment variable, such as the path of a language's host; "" if it is not set.
inline std::string environment(const char* name) {
    const char* const value = std::getenv(name);
    return value == nullptr ? std::string() : value;
}

// Whether there is the registry key for the folders that this process sets for development.
inline bool hasDevelopmentKey(DWORD process) {
    const std::wstring path = L"Software\\QX-Bridge\\Development-" + std::to_wstring(process);
    HKEY key = nullptr;
    if (::RegOpenKeyExW(HKEY_CURRENT_USER, path.c_str(), 0, KEY_READ, &key) != ERROR_SUCCESS) {
        return false;
    }
    ::RegCloseKey(key);
    return true;
}

#endif
