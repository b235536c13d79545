#ifndef XPL_XPROC_H
#define XPL_XPROC_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "xpl/Xerr.h"

// Child processes. Element 0 of an argument list is the program's path. All strings are UTF-8.
// Thread-safe.

// A process handle (HANDLE). The caller owns it and passes it to xprocWait, which closes it.
using XprocHandle = void*;

using XprocArguments = std::vector<std::string>;

// Starts a program without a window and does not wait for it. The child inherits this process's
// inheritable handles, environment and current folder. When Windows requires elevation (error 740),
// starts it through the shell's "runas" instead, which has no handle and leaves `handle` unchanged.
// `handle` may be null. Returns 22 for an empty list, else the translated error, which is logged;
// 100000 when Windows reports a failure without an error.
[[nodiscard]] XErr xprocCreate(XprocHandle* handle, const XprocArguments& arguments);

// The two ways that xprocCreate tries.
[[nodiscard]] XErr xprocCreate_basic(XprocHandle* handle, const XprocArguments& arguments);
[[nodiscard]] XErr xprocCreate_elevated_basic(XprocHandle* handle, const XprocArguments& arguments);

// Waits for a process to end, without a time limit, and closes the handle unless the wait fails.
// `exitCode` may be null; it is unchanged when the code cannot be read.
[[nodiscard]] XErr xprocWait(XprocHandle handle, std::uint32_t* exitCode);

// Terminates a process. Always returns 0; a failure is only logged. The handle stays open.
XErr xprocKill(XprocHandle handle, std::uint32_t exitCode);

// Sets an environment variable of this process, which later children inherit. An empty value
// removes it. Non-ASCII text is UTF-8 only after xsystemUseUtf8 has set the C runtime's locale;
// before that it is in the locale's code page.
[[nodiscard]] XErr xprocSetEnvironment(const std::string& name, const std::string& value);

// Quotes an argument as the product's programs parse it: in double quotes, with a backslash before
// each double quote and backslash. The programs parse the raw command line; the C runtime's rule
// differs.
std::string xprocQuote(std::string_view argument);

// The quoted arguments from `first` on, separated by single spaces.
std::string xprocJoin(const XprocArguments& arguments, std::size_t first);

#endif
