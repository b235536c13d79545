#ifndef XPL_XPROC_H
#define XPL_XPROC_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "xpl/Xerr.h"

// Child processes. Element 0 of an argument list is the program's path; all texts are UTF-8. Safe
// from every thread.

// A process as Windows knows it (a HANDLE). Whoever asked for one owns it and gives it to
// xprocWait, which closes it.
using XprocHandle = void*;

using XprocArguments = std::vector<std::string>;

// Starts a program without a window and does not wait for it. The child inherits this process's
// inheritable handles, environment and current folder. When Windows demands elevation (error 740),
// it is started through the shell's "runas" instead, which gives no handle: `handle` is then left
// as it was. `handle` may be null. 22 for an empty list, else the translated error, logged; 100000
// when Windows reports a failure without an error.
[[nodiscard]] XErr xprocCreate(XprocHandle* handle, const XprocArguments& arguments);

// The two ways that xprocCreate chooses from.
[[nodiscard]] XErr xprocCreate_basic(XprocHandle* handle, const XprocArguments& arguments);
[[nodiscard]] XErr xprocCreate_elevated_basic(XprocHandle* handle, const XprocArguments& arguments);

// Waits for the end of a process without limit and closes the handle, unless the wait fails.
// `exitCode` may be null; it is left as it was when the code cannot be read.
[[nodiscard]] XErr xprocWait(XprocHandle handle, std::uint32_t* exitCode);

// Ends a process. Always 0: a failure is only logged. The handle stays open.
XErr xprocKill(XprocHandle handle, std::uint32_t exitCode);

// Sets an environment variable of this process and of the children that start from now on; an empty
// value removes it. Texts beyond ASCII are UTF-8 only where the C runtime's locale is
// (xsystemUseUtf8, which the start-up of the platform layer calls); else they are of its code page.
[[nodiscard]] XErr xprocSetEnvironment(const std::string& name, const std::string& value);

// An argument as the product's programs parse it: between double quotes, with a backslash before
// every double quote and every backslash. This is not the C runtime's rule: they undo it on the
// raw command line.
std::string xprocQuote(std::string_view argument);

// Quoted arguments from `first` on, separated by single blanks.
std::string xprocJoin(const XprocArguments& arguments, std::size_t first);

#endif
