#include <dlfcn.h>

#include "xpl/XmodulePin.h"

namespace {

// Returns null for the program itself, which is never unloaded.
void* openModuleOf(const void* address, int flags) noexcept {
    Dl_info info{};
    if (::dladdr(address, &info) == 0) return nullptr;
    return ::dlopen(info.dli_fname, RTLD_LAZY | RTLD_NOLOAD | flags);
}

}  // namespace

XmodulePin::XmodulePin() noexcept {
    static const char inThisModule = 0;
    module_ = openModuleOf(&inThisModule, 0);
}

XmodulePin::~XmodulePin() {
    if (module_ != nullptr) ::dlclose(module_);
}

void xmodulePinForever(const void* address) noexcept {
    if (void* const module = openModuleOf(address, RTLD_NODELETE)) ::dlclose(module);
}
