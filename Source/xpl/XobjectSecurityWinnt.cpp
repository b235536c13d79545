// Full access for everyone to system objects.
#include "xpl/Xlog.h"
#include "xpl/XobjectSecurity.h"
#include "xpl/XwindowsLean.h"

// Last: it needs <windows.h>.
#include <aclapi.h>

namespace {

// Errors of pipes appear under the mutex's tag too.
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

// Returns the error: this call does not set the last error.
DWORD makeAcl(const XsidPtr& sid, XlocalPtr& acl) {
    EXPLICIT_ACCESS_W access{};
    access.grfAccessPermissions = kAllRights;
    access.grfAccessMode = SET_ACCESS;
    access.grfInheritance = NO_INHERITANCE;
    access.Trustee.TrusteeForm = TRUSTEE_IS_SID;
    access.Trustee.TrusteeType = TRUSTEE_IS_WELL_KNOWN_GROUP;
    access.Trustee.ptstrName = static_cast<LPWSTR>(sid.get());
    PACL made = nullptr;
    const DWORD error = ::SetEntriesInAclW(1, &access, /*OldAcl=*/nullptr, &made);
    if (error == ERROR_SUCCESS) acl.reset(made);
    return error;
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

// Logs the error of a call that failed, and returns it.
std::uint32_t logged(const char* call, DWORD error) {
    XLOG_E(kLog, "%s Error %u\n", call, static_cast<unsigned>(error));
    return error;
}

}  // namespace

void XsidFree::operator()(void* sid) const noexcept { ::FreeSid(sid); }

void XlocalFree::operator()(void* memory) const noexcept { ::LocalFree(memory); }

std::optional<std::uint32_t> xobjectSecurityInit(XobjectSecurity& security) {
    if (!makeWorldSid(security.everyone)) {
        return logged("AllocateAndInitializeSid", ::GetLastError());
    }
    if (const DWORD error = makeAcl(security.everyone, security.acl); error != ERROR_SUCCESS) {
        return logged("SetEntriesInAcl", error);
    }
    if (!makeDescriptor(security.descriptor)) {
        return logged("InitializeSecurityDescriptor", ::GetLastError());
    }
    if (!setDacl(security.descriptor, security.acl)) {
        return logged("SetSecurityDescriptorDacl", ::GetLastError());
    }
    return std::nullopt;
}
