#include "support/RegistrySandbox.h"

#include <atomic>

#include "support/RegistryKey.h"

RegistrySandbox::RegistrySandbox() {
    static std::atomic<int> count{0};
    key_ = L"Software\\QXBridgeTests\\" + std::to_wstring(::GetCurrentProcessId()) + L"-" +
           std::to_wstring(++count);
    // A process that ended fatally has not cleaned up, and process ids are reused.
    ::RegDeleteTreeW(HKEY_CURRENT_USER, key_.c_str());
    const HKEY own = createRegistryKey(HKEY_CURRENT_USER, key_.c_str());
    ::RegOverridePredefKey(HKEY_LOCAL_MACHINE, own);
    ::RegCloseKey(own);
}

RegistrySandbox::~RegistrySandbox() {
    ::RegOverridePredefKey(HKEY_LOCAL_MACHINE, nullptr);
    ::RegDeleteTreeW(HKEY_CURRENT_USER, key_.c_str());
}

void RegistrySandbox::set(std::string_view name, std::string_view text) {
    setProductText(name, text);
}
