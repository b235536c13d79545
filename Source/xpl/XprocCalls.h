#ifndef XPL_XPROCCALLS_H
#define XPL_XPROCCALLS_H

// What the parts of the process module share: the log's name for it, the ownership of processes,
// and the system calls.

#include <memory>
#include <string>

#include "xpl/Xlog.h"

// The tag is not XPROC: filters of the product's log depend on it.
constexpr XlogModule kXprocLog{XlogTag::XSTR, "Source/xpl/XprocWinnt"};

// ERROR_ELEVATION_REQUIRED of winerror.h, which some versions of that header lack.
constexpr unsigned long XPROC_ELEVATION_REQUIRED = 740;

// A process, or on Windows its first thread, that nobody has been given yet or no longer needs.
// Letting go of it does not end it.
struct XprocClose {
    void operator()(void* process) const noexcept;
};
using XprocPtr = std::unique_ptr<void, XprocClose>;

// The two system calls that start a process, and what a test puts in their place: elevation is
// nothing that a test can have Windows demand.
struct XprocCalls {
    // Each returns whether it succeeded. `process` then receives a handle, or stays null when there
    // is none; after a failure `error` is the Windows error, which can be 0: a shell extension or a
    // hook may fail a call and set none. `commandLine` may be changed by the call.
    bool (*create)(std::wstring& commandLine, XprocPtr& process, unsigned long& error);
    bool (*runAs)(const std::wstring& file, const std::wstring& parameters, XprocPtr& process,
                  unsigned long& error);
};

// The calls in use: the system's own, until a test replaces them.
XprocCalls& xprocCalls() noexcept;

#endif
