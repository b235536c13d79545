#ifndef XPL_XOBJECTSECURITY_H
#define XPL_XOBJECTSECURITY_H

#include <cstdint>
#include <memory>
#include <optional>

// Windows memory with a deallocator of its own.
struct XsidFree {
    void operator()(void* sid) const noexcept;
};
struct XlocalFree {
    void operator()(void* memory) const noexcept;
};
using XsidPtr = std::unique_ptr<void, XsidFree>;
using XlocalPtr = std::unique_ptr<void, XlocalFree>;

// Who may use a named object of the system, a mutex or a pipe: everyone, with all rights. The
// descriptor refers to the list and the list to the identifier: keep it until the object has been
// created.
struct XobjectSecurity {
    XsidPtr everyone;
    XlocalPtr acl;
    XlocalPtr descriptor;
};

// Builds the descriptor. Returns nothing or, after a log line, the error of Windows: 0 for a call
// that failed without setting one.
[[nodiscard]] std::optional<std::uint32_t> xobjectSecurityInit(XobjectSecurity& security);

#endif
