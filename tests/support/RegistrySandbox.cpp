#include "support/RegistrySandbox.h"

#include <atomic>
#include <stdexcept>

#include "support/WindowsForTests.h"

namespace {

constexpr const wchar_t* kRoot = L"Software\\QXBridgeTests\\";
constexpr const wchar_t* kProductKey = L"SOFTWARE\\Vantrel_nvo";

HKEY createKey(HKEY root, const wchar_t* path) {
    HKEY key = nullptr;
    if (::RegCreateKeyExW(root, path, 0, nullptr, 0, KEY_ALL_ACCESS | KEY_WOW64_64KEY, nullptr,
                          &key, nullptr) != ERROR_SUCCESS) {
        throw std::runtime_error("cannot create a registry key");
    }
    return key;
}

}  // namespace

RegistrySandbox::RegistrySandbox() {
    static std::atomic<int> count{0};
    key_ = kRoot + std::to_wstring(::GetCurrentProcessId()) + L"-" + std::to_wstring(++count);
    const HKEY own = createKey(HKEY_CURRENT_USER, key_.c_str());
    ::RegOverridePredefKey(HKEY_LOCAL_MACHINE, own);
    ::RegCloseKey(own);
}

RegistrySandbox::~RegistrySandbox() {
    ::RegOverridePredefKey(HKEY_LOCAL_MACHINE, nullptr);
    ::RegDeleteTreeW(HKEY_CURRENT_USER, key_.c_str());
}

void RegistrySandbox::set(std::string_view name, std::string_view text) {
    const std::wstring wide = wideForTests(text);
    setRaw(name, REG_SZ, wide.c_str(), (wide.size() + 1) * sizeof(wchar_t));
}

void RegistrySandbox::setRaw(std::string_view name, unsigned long type, const void* data,
                             std::size_t size) {
    const HKEY key = createKey(HKEY_LOCAL_MACHINE, kProductKey);
    ::RegSetValueExW(key, wideForTests(name).c_str(), 0, type, static_cast<const BYTE*>(data),
                     static_cast<DWORD>(size));
    ::RegCloseKey(key);
}
