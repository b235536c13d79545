#ifndef TESTS_LOGLINES_H
#define TESTS_LOGLINES_H

#include <string>

#include "support/Platform.h"

// Log lines that more than one test file expects, as LogCapture::texts() has them. A line that a
// single file expects stands there.
namespace logged {

// The line as a process of this name has it in its log file.
inline std::string by(const std::string& process, std::string line) {
    return line.insert(line.find(' ', 2), ' ' + process);
}

// The line as a host that was initialised as "Helper" has it in its log file.
inline std::string byHelper(const std::string& line) { return by("Helper_bridge", line); }

// The line without its level and tag.
inline std::string messageOf(const std::string& line) { return line.substr(line.find(' ', 2) + 1); }

// The platform.

// Without an error: the start of the line.
inline std::string mutexNotMade(const std::string& name, const std::string& error = "") {
    return "E XMUTEX Failed to create mutex '" + name + "'. Error = " + error;
}

// With the milliseconds as "N".
inline std::string lockAwaited(const std::string& function, const std::string& name) {
    return "W CONF " + function + ": waiting for " + name + " for N ms";
}

inline std::string lockObtained(const std::string& function, const std::string& name) {
    return "W CONF " + function + ": waited for " + name + " for N ms";
}

inline std::string fileNotFlushed(const std::string& path) {
    return "W XFILE Error in flushing file " + path + " to disk. Error = 2";
}

// Without an error: the start of the line.
inline std::string startFailed(const std::string& commandLine, const std::string& error = "") {
    return "E XSTR xprocCreate_basic: CreateProcessW failed: cmdline " + commandLine +
           " GetLastError() " + error;
}

inline std::string elevatedStartFailed(const std::string& program, const std::string& parameters,
                                       const std::string& error) {
    return "E XSTR xprocCreate_elevated_basic: ShellExecuteEx failed: filename " + program +
           " parameters " + parameters + " GetLastError() " + error;
}

// An exception that became a result, of the module "BRIDGE", "IPC" or another. Without its words:
// the start of the line.
inline std::string exceptionCaught(const std::string& module, const std::string& function,
                                   const std::string& words = "") {
    return "E " + module + " " + function + ": exception: " + words;
}

// Whether it is such a line, of any module.
inline bool isOfException(const std::string& line) {
    return line.find(": exception: ") != std::string::npos;
}

inline std::string processNotAwaited(const std::string& error) {
    return "E XSTR xprocWait failed with " + error;
}

// Folders and processes.

inline std::string installFolderUnknown() {
    return "E UTL utlGetInstallDir: Failed to get install dir properly";
}

// The start of the line.
inline std::string memoryTrimming() { return "I UTL Trimming memory for process "; }

inline std::string memoryTrimmed(const std::string& process, const std::string& image) {
    return memoryTrimming() + process + ":" + image;
}

}  // namespace logged

#endif
