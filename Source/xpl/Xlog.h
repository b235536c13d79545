#ifndef XPL_XLOG_H
#define XPL_XLOG_H

#include <cstdint>
#include <string>
#include <string_view>

#include "xpl/Xattributes.h"
#include "xpl/Xerr.h"
#include "xpl/XlogTags.h"

// The library's log. A module declares itself,
//
//     constexpr XlogModule kLog{XlogTag::CONF, "Source/conf/Conf"};
//
// and logs with XLOG_E, XLOG_W, XLOG_I, XLOG_D or XLOG_V. Arguments are not evaluated when the
// level is off. Thread-safe: a line is one write to a file opened for appending.

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

// A logging module: its tag, and the source file that its lines show.
struct XlogModule {
    XlogTag tag;
    const char* file;
};

// A logger: a test whether a line is enabled (non-zero: yes), and a printf-like function. A host
// that supplies its own pair gets every line and does the formatting.
struct XlogLogger {
    using IsEnabled = std::int32_t (*)(std::int32_t tag, std::int32_t level);
    using Print = std::int32_t (*)(std::int32_t level, std::int32_t tag, const char* file,
                                   const char* function, std::int32_t line, const char* format,
                                   ...);
    IsEnabled isEnabled;
    Print print XPRINTF_LIKE(6, 7);
};

// The process-wide logger. Before xlogLibInit it prints errors, without a tag, to standard output.
// Only xlogLibInit changes it. A variable, since a function call would add a quarter to the cost of
// a disabled line.
extern XlogLogger xlogLogger;

inline const XlogLogger& xlogGetLogger() noexcept { return xlogLogger; }

// Starts logging. With a host's logger, nothing else is set up. Otherwise opens the file (an empty
// path means standard output; a file that cannot be opened is fatal), sets the default levels and
// computes the zone suffix of the time stamps. A second call closes the first one's file. Returns
// -1 when the default levels cannot be applied.
[[nodiscard]] XErr xlogLibInit(const XlogLogger* logger, const std::string& logFilePath);

// Applies a level specification: items "TAG:LEVEL" or "*:LEVEL", separated by single spaces. Later
// items override earlier ones, and only the first letter of LEVEL counts (E, W, I, D or V). Returns
// 22 at a malformed item, after applying those before it. Unknown tags are ignored.
[[nodiscard]] XErr xlogSetLevels(std::string_view levels);

// Switches to another file. An empty path changes nothing.
[[nodiscard]] XErr xlogSetFile(const std::string& path);

// Sets the name of the host that every line shows.
void xlogSetClientName(std::string_view name);

// What lines show in addition to the message. All off by default.
void xlogSetDisplay(bool showFile, bool showFunction, bool showLine);

// Logs an error line for an exception that the named function caught.
void xlogException(const XlogModule& module, const char* function, const char* what) noexcept;

// Logs "FATAL: DEBUG BREAK: ..." under the module's tag, breaks into the debugger and ends the
// process (status 0x80000003). For states that must never occur.
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
