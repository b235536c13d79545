// Starting child processes: the command line, and elevation.
#include "xpl/Xproc.h"

#include <utility>

#include "xpl/Xlog.h"
#include "xpl/XprocCalls.h"
#include "xpl/Xtext.h"

namespace {

// Passes the handle of a new process to a caller that asked for it. An elevated start has none.
void handOver(XprocPtr process, XprocHandle* handle) {
    if (process != nullptr && handle != nullptr) *handle = process.release();
}

XErr translated(unsigned long error) { return xerrFromWindows(static_cast<std::int32_t>(error)); }

// Converts to UTF-16 for `function`, and logs a failure.
XErr toWide(const char* function, const std::string& text, std::wstring& wide) {
    const XErr err = xtextToWide(text, wide);
    if (err != XERR_SUCCESS) {
        XLOG_E(kXprocLog, "%s: arguments cannot be converted: %s err = %d [%s]", function,
               text.c_str(), err, xerrName(err).c_str());
    }
    return err;
}

}  // namespace

XErr xprocCreate(XprocHandle* handle, const XprocArguments& arguments) {
    const XErr err = xprocCreate_basic(handle, arguments);
    if (err != translated(XPROC_ELEVATION_REQUIRED)) return err;
    return xprocCreate_elevated_basic(handle, arguments);
}

XErr xprocCreate_basic(XprocHandle* handle, const XprocArguments& arguments) {
    constexpr const char* kFunction = "xprocCreate_basic";
    if (arguments.empty()) return XERR_INVAL;
    std::wstring commandLine;
    if (const XErr err = toWide(kFunction, xprocJoin(arguments, 0), commandLine);
        err != XERR_SUCCESS) {
        return err;
    }
    const std::wstring shown = commandLine;  // the call may modify the original
    XprocPtr process;
    unsigned long error = 0;
    if (!xprocCalls().create(commandLine, process, error)) {
        XLOG_E(kXprocLog, "%s: CreateProcessW failed: cmdline %ls GetLastError() %d", kFunction,
               shown.c_str(), static_cast<int>(error));
        return translated(error);
    }
    handOver(std::move(process), handle);
    return XERR_SUCCESS;
}

XErr xprocCreate_elevated_basic(XprocHandle* handle, const XprocArguments& arguments) {
    constexpr const char* kFunction = "xprocCreate_elevated_basic";
    if (arguments.empty()) return XERR_INVAL;
    std::wstring file;
    std::wstring parameters;
    if (const XErr err = toWide(kFunction, arguments[0], file); err != XERR_SUCCESS) return err;
    if (const XErr err = toWide(kFunction, xprocJoin(arguments, 1), parameters);
        err != XERR_SUCCESS) {
        return err;
    }
    XprocPtr process;
    unsigned long error = 0;
    if (!xprocCalls().runAs(file, parameters, process, error)) {
        XLOG_E(kXprocLog,
               "%s: ShellExecuteEx failed: filename %ls parameters %ls GetLastError() %d",
               kFunction, file.c_str(), parameters.c_str(), static_cast<int>(error));
        return translated(error);
    }
    handOver(std::move(process), handle);
    return XERR_SUCCESS;
}
