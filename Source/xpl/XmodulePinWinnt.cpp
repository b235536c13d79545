#include "xpl/XmodulePin.h"
#include "xpl/XwindowsLean.h"

XmodulePin::XmodulePin() noexcept {
    static const char inThisModule = 0;
    HMODULE module = nullptr;
    if (::GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS,
                             reinterpret_cast<LPCWSTR>(&inThisModule), &module)) {
        module_ = module;
    }
}

XmodulePin::~XmodulePin() {
    if (module_ != nullptr) ::FreeLibrary(static_cast<HMODULE>(module_));
}

void xmodulePinForever(const void* address) noexcept {
    HMODULE ignored = nullptr;
    ::GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_PIN,
                         static_cast<LPCWSTR>(address), &ignored);
}
