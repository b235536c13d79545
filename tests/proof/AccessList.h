#ifndef TESTS_PROOF_ACCESSLIST_H
#define TESTS_PROOF_ACCESSLIST_H

#include "support/WindowsForTests.h"

// The rights that the only entry of an access list grants to everyone; 0 for any other list.
inline ACCESS_MASK rightsOfEveryone(PSECURITY_DESCRIPTOR descriptor) {
    BOOL present = FALSE;
    BOOL defaulted = FALSE;
    PACL list = nullptr;
    void* entry = nullptr;
    if (descriptor == nullptr) return 0;
    if (!::GetSecurityDescriptorDacl(descriptor, &present, &list, &defaulted)) return 0;
    if (!present || list == nullptr || list->AceCount != 1 || !::GetAce(list, 0, &entry)) return 0;
    auto* const allowed = static_cast<ACCESS_ALLOWED_ACE*>(entry);
    const bool isForEveryone = allowed->Header.AceType == ACCESS_ALLOWED_ACE_TYPE &&
                               ::IsWellKnownSid(&allowed->SidStart, WinWorldSid);
    return isForEveryone ? allowed->Mask : 0;
}

#endif
