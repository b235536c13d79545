// The mutex among the objects of Windows: their kinds, and who may open it.
#include <gtest/gtest.h>

#include "support/LogCapture.h"
#include "support/WindowsForTests.h"
#include "xpl/XmutexNamed.h"
#include "xpl/XmutexSecurity.h"

// Last: it needs <windows.h>.
#include <aclapi.h>
#include <sddl.h>

TEST(XmutexNamed, ANameOfAnotherKindOfObjectIsRefused) {
    const std::string name = "Global\\vtr_test_kind" + std::to_string(::GetCurrentProcessId());
    const HANDLE event = ::CreateEventW(nullptr, FALSE, FALSE, wideForTests(name).c_str());
    const LogCapture log;
    XmutexNamed mutex;
    EXPECT_EQ(mutex.init(name), -1);
    EXPECT_EQ(log.texts(), std::vector<std::string>{"E XMUTEX Failed to create mutex '" + name +
                                                    "'. Error = 6"});
    ::CloseHandle(event);
}

TEST(XmutexSecurity, GrantsEveryoneAllRightsOnce) {
    XsidPtr sid;
    XlocalPtr acl;
    XlocalPtr descriptor;
    ASSERT_EQ(xmutexInitSecurityAttribs(sid, acl, descriptor), 0);
    LPSTR text = nullptr;
    ASSERT_TRUE(::ConvertSidToStringSidA(sid.get(), &text));
    EXPECT_STREQ(text, "S-1-1-0");
    ::LocalFree(text);

    BOOL present = FALSE;
    BOOL defaulted = TRUE;
    PACL list = nullptr;
    ASSERT_TRUE(::GetSecurityDescriptorDacl(descriptor.get(), &present, &list, &defaulted));
    EXPECT_TRUE(present);
    EXPECT_FALSE(defaulted);
    EXPECT_EQ(list, acl.get());
    ASSERT_EQ(list->AceCount, 1);
    void* ace = nullptr;
    ASSERT_TRUE(::GetAce(list, 0, &ace));
    const auto* allowed = static_cast<const ACCESS_ALLOWED_ACE*>(ace);
    EXPECT_EQ(allowed->Header.AceType, ACCESS_ALLOWED_ACE_TYPE);
    EXPECT_EQ(allowed->Header.AceFlags, 0);
    EXPECT_EQ(allowed->Mask, 0x001FFFFFu);
    EXPECT_TRUE(::EqualSid(sid.get(), const_cast<DWORD*>(&allowed->SidStart)));
}
