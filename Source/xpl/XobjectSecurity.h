#ifndef XPL_XOBJECTSECURITY_H
#define XPL_XOBJECTSECURITY_H

#include <cstdint>
#include <memory>
#include <optional>

// Windows memory with its own deallocator.
struct XsidFree {
    void operator()(void* sid) const noexcept;
};
struct XlocalFree {
    void operator()(void* memory) const noexcept;
};
using XsidPtr = std::unique_ptr<void, XsidFree>;
using XlocalPtr = std::unique_ptr<void, XlocalFree>;

// Security descriptor of a named mutex or pipe: full access for everyone. The descriptor points to
// the list, and the list to the identifier: keep them until the object has been created.
struct XobjectSecurity {
    XsidPtr everyone;
    XlocalPtr acl;
    XlocalPtr descriptor;
};

// Builds the descriptor. After a failure, logs it and returns the Windows error, which is 0 when
// the call set none.
[[nodiscard]] std::optional<std::uint32_t> xobjectSecurityInit(XobjectSecurity& security);

#endif
