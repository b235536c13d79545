// The mutex as an object of Windows: its kind and its access rights.
#include "support/LogCapture.h"
#include "support/LogLines.h"
#include "support/TestHeaders.h"
#include "support/WindowsForTests.h"
#include "xpl/XmutexNamed.h"
#include "xpl/XobjectSecurity.h"

// Last: it needs <windows.h>.
#include <aclapi.h>
#include <sddl.h>

namespace {

void expectEveryone(PSID sid) {
    LPSTR text = nullptr;
    ASSERT_TRUE(::ConvertSidToStringSidA(sid, &text));
    EXPECT_STREQ(text, "S-1-1-0");
    ::LocalFree(text);
}

// The list must have one entry, which grants everyone all rights.
void expectFullAccessForEveryone(PACL list) {
    ASSERT_NE(list, nullptr);
    ASSERT_EQ(list->AceCount, 1);
    void* entry = nullptr;
    ASSERT_TRUE(::GetAce(list, 0, &entry));
    auto* const allowed = static_cast<ACCESS_ALLOWED_ACE*>(entry);
    EXPECT_EQ(allowed->Header.AceType, ACCESS_ALLOWED_ACE_TYPE);
    EXPECT_EQ(allowed->Header.AceFlags, 0);
    EXPECT_EQ(allowed->Mask, 0x001FFFFFu);
    expectEveryone(&allowed->SidStart);
}

}  // namespace

TEST(XmutexNamed, ANameOfAnotherKindOfObjectIsRefused) {
    const std::string name = "Global\\vtr_test_kind" + std::to_string(::GetCurrentProcessId());
    const HANDLE event = ::CreateEventW(nullptr, FALSE, FALSE, wideForTests(name).c_str());
    const LogCapture log;
    XmutexNamed mutex;
    EXPECT_EQ(mutex.init(name), -1);
    EXPECT_EQ(log.texts(), std::vector<std::string>{logged::mutexNotMade(name, "6")});
    ::CloseHandle(event);
}

TEST(XobjectSecurity, GrantsEveryoneAllRightsOnce) {
    XobjectSecurity security;
    ASSERT_FALSE(xobjectSecurityInit(security).has_value());
    expectEveryone(security.everyone.get());
    BOOL present = FALSE;
    BOOL defaulted = TRUE;
    PACL list = nullptr;
    ASSERT_TRUE(
        ::GetSecurityDescriptorDacl(security.descriptor.get(), &present, &list, &defaulted));
    EXPECT_TRUE(present);
    EXPECT_FALSE(defaulted);
    EXPECT_EQ(list, security.acl.get());
    expectFullAccessForEveryone(list);
}

TEST(XobjectSecurity, ARealMutexIsOpenToEveryone) {
    const std::string name = "Global\\vtr_test_open" + std::to_string(::GetCurrentProcessId());
    XmutexNamed mutex;
    ASSERT_EQ(mutex.init(name), 0);
    const HANDLE opened =
        ::OpenMutexW(READ_CONTROL, /*bInheritHandle=*/FALSE, wideForTests(name).c_str());
    ASSERT_NE(opened, nullptr);
    PACL list = nullptr;
    PSECURITY_DESCRIPTOR descriptor = nullptr;
    EXPECT_EQ(::GetSecurityInfo(opened, SE_KERNEL_OBJECT, DACL_SECURITY_INFORMATION, nullptr,
                                nullptr, &list, nullptr, &descriptor),
              DWORD{ERROR_SUCCESS});
    const XlocalPtr owned(descriptor);
    ::CloseHandle(opened);
    expectFullAccessForEveryone(list);
}
