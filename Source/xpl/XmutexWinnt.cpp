// The named mutex, open to everyone.
#include <cstdint>
#include <string>

#include "xpl/Xerr.h"
#include "xpl/Xlog.h"
#include "xpl/XmutexNamed.h"
#include "xpl/XmutexSecurity.h"
#include "xpl/Xtext.h"
#include "xpl/XwindowsLean.h"

// Last: it needs <windows.h>.
#include <aclapi.h>

namespace {

constexpr XlogModule kLog{XlogTag::XMUTEX, "Source/xpl/XmutexWinnt"};

constexpr DWORD kAllRights = 0x001FFFFF;

// Everyone, S-1-1-0.
bool makeWorldSid(XsidPtr& sid) {
    SID_IDENTIFIER_AUTHORITY world = SECURITY_WORLD_SID_AUTHORITY;
    PSID made = nullptr;
    if (!::AllocateAndInitializeSid(&world, 1, SECURITY_WORLD_RID, 0, 0, 0, 0, 0, 0, 0, &made)) {
        return false;
    }
    sid.reset(made);
    return true;
}

bool makeAcl(const XsidPtr& sid, XlocalPtr& acl) {
    EXPLICIT_ACCESS_W access{};
    access.grfAccessPermissions = kAllRights;
    access.grfAccessMode = SET_ACCESS;
    access.grfInheritance = NO_INHERITANCE;
    access.Trustee.TrusteeForm = TRUSTEE_IS_SID;
    access.Trustee.TrusteeType = TRUSTEE_IS_WELL_KNOWN_GROUP;
    access.Trustee.ptstrName = static_cast<LPWSTR>(sid.get());
    PACL made = nullptr;
    const DWORD error = ::SetEntriesInAclW(1, &access, /*OldAcl=*/nullptr, &made);
    ::SetLastError(error);  // this one function answers its error instead of setting it
    if (error != ERROR_SUCCESS) return false;
    acl.reset(made);
    return true;
}

bool makeDescriptor(XlocalPtr& descriptor) {
    descriptor.reset(::LocalAlloc(LPTR, SECURITY_DESCRIPTOR_MIN_LENGTH));
    return descriptor != nullptr &&
           ::InitializeSecurityDescriptor(descriptor.get(), SECURITY_DESCRIPTOR_REVISION);
}

bool setDacl(const XlocalPtr& descriptor, const XlocalPtr& acl) {
    return ::SetSecurityDescriptorDacl(descriptor.get(), /*bDaclPresent=*/TRUE,
                                       static_cast<PACL>(acl.get()), /*bDaclDefaulted=*/FALSE);
}

}  // namespace

void XsidFree::operator()(void* sid) const noexcept { ::FreeSid(sid); }

void XlocalFree::operator()(void* memory) const noexcept { ::LocalFree(memory); }

XErr xmutexInitSecurityAttribs(XsidPtr& sid, XlocalPtr& acl, XlocalPtr& descriptor) {
    DWORD error = ERROR_SUCCESS;
    if (!makeWorldSid(sid)) {
        error = ::GetLastError();
        XLOG_E(kLog, "AllocateAndInitializeSid Error %u\n", static_cast<unsigned>(error));
    } else if (!makeAcl(sid, acl)) {
        error = ::GetLastError();
        XLOG_E(kLog, "SetEntriesInAcl Error %u\n", static_cast<unsigned>(error));
    } else if (!makeDescriptor(descriptor)) {
        error = ::GetLastError();
        XLOG_E(kLog, "InitializeSecurityDescriptor Error %u\n", static_cast<unsigned>(error));
    } else if (!setDacl(descriptor, acl)) {
        error = ::GetLastError();
        XLOG_E(kLog, "SetSecurityDescriptorDacl Error %u\n", static_cast<unsigned>(error));
    } else {
        return XERR_SUCCESS;
    }
    ::SetLastError(error);  // for the caller, whatever the log did
    return xerrFromWindows(static_cast<std::int32_t>(error));
}

std::int32_t XmutexNamed::init(const std::string& name) {
    close();
    XsidPtr sid;
    XlocalPtr acl;
    XlocalPtr descriptor;
    if (const XErr err = xmutexInitSecurityAttribs(sid, acl, descriptor); err != XERR_SUCCESS) {
        XLOG_E(kLog, "Failed to set security attributes for mutex '%s'. Error = %d", name.c_str(),
               err);
        return XERR_FAILURE;
    }
    std::wstring wide;
    if (xtextToWide(name, wide) == XERR_SUCCESS) {
        SECURITY_ATTRIBUTES attributes{sizeof(SECURITY_ATTRIBUTES), descriptor.get(), FALSE};
        handle_ = ::CreateMutexW(&attributes, /*bInitialOwner=*/FALSE, wide.c_str());
    } else {
        ::SetLastError(ERROR_NO_UNICODE_TRANSLATION);
    }
    if (handle_ != nullptr) return XERR_SUCCESS;
    const DWORD error = ::GetLastError();
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

void XmutexNamed::unlock() {
    if (::ReleaseMutex(handle_)) return;
    const DWORD error = ::GetLastError();
    XLOG_E(kLog, "%s: Error in unlocking, GetLastError: %u", "unlock",
           static_cast<unsigned>(error));
    xlogFatalBreak(kLog, __LINE__, "XmutexNamed::unlock");
}
