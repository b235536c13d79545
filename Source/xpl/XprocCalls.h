#ifndef XPL_XPROCCALLS_H
#define XPL_XPROCCALLS_H

#include <string>

// ERROR_ELEVATION_REQUIRED of winerror.h, which some versions of that header lack.
constexpr unsigned long XPROC_ELEVATION_REQUIRED = 740;

// The two system calls that start a process, and what a test puts in their place: elevation is
// nothing that a test can have Windows demand.
struct XprocCalls {
    // Each answers 0 or the Windows error. `process` receives a handle, or null when there is none;
    // `commandLine` may be changed by the call.
    unsigned long (*create)(std::wstring& commandLine, void*& process);
    unsigned long (*runAs)(const std::wstring& file, const std::wstring& parameters,
                           void*& process);
};

// Lets go of a process that nobody waits for.
void xprocClose(void* process) noexcept;

// The calls in use: the system's own, until a test replaces them.
XprocCalls& xprocCalls() noexcept;

#endif
