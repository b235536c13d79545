// The named mutex, open to everyone.
#include <chrono>
#include <cstdint>
#include <string>

#include "xpl/Xerr.h"
#include "xpl/Xlog.h"
#include "xpl/XmutexNamed.h"
#include "xpl/XobjectSecurity.h"
#include "xpl/Xtext.h"
#include "xpl/XwindowsLean.h"

namespace {

constexpr XlogModule kLog{XlogTag::XMUTEX, "Source/xpl/XmutexWinnt"};

}  // namespace

std::int32_t XmutexNamed::init(const std::string& name) {
    close();
    name_ = name;
    XobjectSecurity security;
    if (const auto error = xobjectSecurityInit(security)) {
        XLOG_E(kLog, "Failed to set security attributes for mutex '%s'. Error = %d", name.c_str(),
               xerrFromWindows(static_cast<std::int32_t>(*error)));
        return XERR_FAILURE;
    }
    std::wstring wide;
    DWORD error = ERROR_NO_UNICODE_TRANSLATION;
    if (xtextToWide(name, wide) == XERR_SUCCESS) {
        SECURITY_ATTRIBUTES attributes{sizeof(SECURITY_ATTRIBUTES), security.descriptor.get(),
                                       /*bInheritHandle=*/FALSE};
        handle_ = ::CreateMutexW(&attributes, /*bInitialOwner=*/FALSE, wide.c_str());
        error = ::GetLastError();
    }
    if (handle_ != nullptr) return XERR_SUCCESS;
    XLOG_E(kLog, "Failed to create mutex '%s'. Error = %d", name.c_str(), static_cast<int>(error));
    return XERR_FAILURE;
}

void XmutexNamed::close() noexcept {
    if (handle_ != nullptr) ::CloseHandle(handle_);
    handle_ = nullptr;
}

void XmutexNamed::lock() {
    if (::WaitForSingleObject(handle_, INFINITE) != WAIT_FAILED) return;
    const DWORD error = ::GetLastError();
    XLOG_E(kLog, "%s: Error in taking lock, GetLastError: %u", "lock",
           static_cast<unsigned>(error));
    xlogFatalBreak(kLog, __LINE__, "XmutexNamed::lock");
}

bool XmutexNamed::try_lock() {
    const DWORD result = ::WaitForSingleObject(handle_, 0);
    const DWORD error = result == WAIT_FAILED ? ::GetLastError() : DWORD{ERROR_SUCCESS};
    if (result == WAIT_FAILED) {
        XLOG_E(kLog, "%s: Error in try_lock, GetLastError: %u", "try_lock",
               static_cast<unsigned>(error));
    }
    return result == WAIT_OBJECT_0 || result == WAIT_ABANDONED;
}

bool XmutexNamed::try_lock_for(std::chrono::milliseconds limit) {
    const DWORD result = ::WaitForSingleObject(handle_, static_cast<DWORD>(limit.count()));
    if (result == WAIT_FAILED) lock();  // which reports the failure
    return result != WAIT_TIMEOUT;
}

void XmutexNamed::unlock() {
    if (::ReleaseMutex(handle_)) return;
    const DWORD error = ::GetLastError();
    XLOG_E(kLog, "%s: Error in unlocking, GetLastError: %u", "unlock",
           static_cast<unsigned>(error));
    xlogFatalBreak(kLog, __LINE__, "XmutexNamed::unlock");
}
