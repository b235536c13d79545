#ifndef XPL_XLOG_H
#define XPL_XLOG_H

#include <cstdint>
#include <string>
#include <string_view>

#include "xpl/Xattributes.h"
#include "xpl/Xerr.h"
#include "xpl/XlogTags.h"

// The library's one log. A module declares who it is,
//
//     constexpr XlogModule kLog{XlogTag::CONF, "Source/conf/Conf"};
//
// and logs with XLOG_E, XLOG_W, XLOG_I, XLOG_D or XLOG_V. Arguments are not evaluated when the
// level is off. Any thread may log; a line is one write on an append-only file.

enum class XlogTag : std::int32_t {
#define XLOG_ENUMERATOR(tag) tag,
    XLOG_TAGS(XLOG_ENUMERATOR)
#undef XLOG_ENUMERATOR
};

constexpr std::int32_t XLOG_ERROR = 0;
constexpr std::int32_t XLOG_WARNING = 1;
constexpr std::int32_t XLOG_INFORMATION = 2;
constexpr std::int32_t XLOG_DEBUG = 3;
constexpr std::int32_t XLOG_VERBOSE = 4;

// A logging module: its tag, and the file that its lines name.
struct XlogModule {
    XlogTag tag;
    const char* file;
};

// A logger: the enablement test (non-zero: emit) and the printf-like print. A host that hands in a
// pair of its own gets every line and owns the formatting.
struct XlogLogger {
    using IsEnabled = std::int32_t (*)(std::int32_t tag, std::int32_t level);
    using Print = std::int32_t (*)(std::int32_t level, std::int32_t tag, const char* file,
                                   const char* function, std::int32_t line, const char* format,
                                   ...);
    IsEnabled isEnabled;
    Print print XPRINTF_LIKE(6, 7);
};

// The process-wide pair, through which every line goes. Before xlogLibInit it prints errors,
// without a tag name, to standard output. Only xlogLibInit changes it. A variable, since a call for
// it would be a quarter of what a line that is off costs.
extern XlogLogger xlogLogger;

inline const XlogLogger& xlogGetLogger() noexcept { return xlogLogger; }

// Starts logging. With a logger of the host's nothing else is set up. Otherwise the file is opened
// (an empty path means standard output; a file that cannot be opened is fatal), every tag gets its
// default level and the zone suffix of the time stamps is computed, once for the run. Calling it
// again closes the file of the call before. -1 when the default levels cannot be applied.
[[nodiscard]] XErr xlogLibInit(const XlogLogger* logger, const std::string& logFilePath);

// Applies a level specification: items "TAG:LEVEL" or "*:LEVEL", separated by single blanks, later
// items overriding earlier ones; of LEVEL only the first letter counts (E, W, I, D or V). A
// malformed item gives 22, with the items before it applied. An unknown tag changes nothing.
[[nodiscard]] XErr xlogSetLevels(std::string_view levels);

// Appends to another file from now on. An empty path changes nothing.
[[nodiscard]] XErr xlogSetFile(const std::string& path);

// Name that every line carries: who loaded the library.
void xlogSetClientName(std::string_view name);

// What lines show besides their message; all off at the start.
void xlogSetDisplay(bool showFile, bool showFunction, bool showLine);

// Logs the error line of an exception that the function with that name caught.
void xlogException(const XlogModule& module, const char* function, const char* what) noexcept;

// Logs "FATAL: DEBUG BREAK: ..." under the module's tag, breaks into the debugger and ends the
// process (status 0x80000003): for what must never happen.
[[noreturn]] void xlogFatalBreak(const XlogModule& module, std::int32_t line,
                                 const char* function) noexcept;

inline bool xlogIsEnabled(const XlogModule& module, std::int32_t level) noexcept {
    return xlogGetLogger().isEnabled(static_cast<std::int32_t>(module.tag), level) != 0;
}

#define XLOG_AT(module, level, ...)                                                      \
    (xlogIsEnabled(module, level) ? static_cast<void>(xlogGetLogger().print(             \
                                        level, static_cast<std::int32_t>((module).tag),  \
                                        (module).file, __func__, __LINE__, __VA_ARGS__)) \
                                  : static_cast<void>(0))
#define XLOG_E(module, ...) XLOG_AT(module, XLOG_ERROR, __VA_ARGS__)
#define XLOG_W(module, ...) XLOG_AT(module, XLOG_WARNING, __VA_ARGS__)
#define XLOG_I(module, ...) XLOG_AT(module, XLOG_INFORMATION, __VA_ARGS__)
#define XLOG_D(module, ...) XLOG_AT(module, XLOG_DEBUG, __VA_ARGS__)
#define XLOG_V(module, ...) XLOG_AT(module, XLOG_VERBOSE, __VA_ARGS__)
#define XLOG_FATAL(module) xlogFatalBreak(module, __LINE__, __func__)

#endif
