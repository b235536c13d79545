#ifndef XPL_XMUTEXSECURITY_H
#define XPL_XMUTEXSECURITY_H

#include <memory>

#include "xpl/Xerr.h"

// Windows memory with a deallocator of its own.
struct XsidFree {
    void operator()(void* sid) const noexcept;
};
struct XlocalFree {
    void operator()(void* memory) const noexcept;
};
using XsidPtr = std::unique_ptr<void, XsidFree>;
using XlocalPtr = std::unique_ptr<void, XlocalFree>;

// Builds a security descriptor that grants everyone all rights. The descriptor refers to the list
// and the list to the identifier: keep all three until the object has been created.
[[nodiscard]] XErr xmutexInitSecurityAttribs(XsidPtr& sid, XlocalPtr& acl, XlocalPtr& descriptor);

#endif
