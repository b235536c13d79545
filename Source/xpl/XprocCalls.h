#ifndef XPL_XPROCCALLS_H
#define XPL_XPROCCALLS_H

// Shared by the parts of the process module: log module, ownership of processes, system calls.

#include <memory>
#include <string>

#include "xpl/Xlog.h"

// The tag is not XPROC: filters of the product's log depend on it.
constexpr XlogModule kXprocLog{XlogTag::XSTR, "Source/xpl/XprocWinnt"};

// ERROR_ELEVATION_REQUIRED of winerror.h, which some versions of that header lack.
constexpr unsigned long XPROC_ELEVATION_REQUIRED = 740;

// Closes the handle of a process or, on Windows, of its first thread. Does not end the process.
struct XprocClose {
    void operator()(void* process) const noexcept;
};
using XprocPtr = std::unique_ptr<void, XprocClose>;

// The two system calls that start a process. Tests replace them, since a test cannot trigger a UAC
// prompt.
struct XprocCalls {
    // Each returns whether it succeeded. `process` then is a handle, or null when there is none.
    // After a failure `error` is the Windows error, which can be 0: a shell extension or a hook may
    // fail a call without setting one. The call may modify `commandLine`.
    bool (*create)(std::wstring& commandLine, XprocPtr& process, unsigned long& error);
    bool (*runAs)(const std::wstring& file, const std::wstring& parameters, XprocPtr& process,
                  unsigned long& error);
};

// The calls in use: the system's, unless a test replaces them.
XprocCalls& xprocCalls() noexcept;

#endif
