// System calls for child processes: posix_spawn and related ones. The command line is split by the
// rule of xprocQuote.
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <vector>

#include "xpl/Xfile.h"
#include "xpl/Xlog.h"
#include "xpl/Xproc.h"
#include "xpl/XprocCalls.h"
#include "xpl/Xtext.h"

namespace {

constexpr unsigned long kFileNotFound = 2;
constexpr unsigned long kAccessDenied = 5;
constexpr unsigned long kNotEnoughMemory = 8;

struct Process {
    pid_t id;
    std::uint32_t killedWith;  // the exit code from xprocKill
};

std::vector<std::string> takeApart(const std::string& line) {
    std::vector<std::string> arguments;
    bool inside = false;
    for (std::size_t i = 0; i < line.size(); ++i) {
        if (line[i] == '"') {
            inside = !inside;
            if (inside) arguments.emplace_back();
        } else if (inside) {
            if (line[i] == '\\' && i + 1 < line.size()) ++i;
            arguments.back() += line[i];
        }
    }
    return arguments;
}

unsigned long windowsError(int error) {
    if (error == ENOENT || error == ENOTDIR) return kFileNotFound;
    return error == EACCES ? kAccessDenied : kNotEnoughMemory;
}

bool createProcess(std::wstring& commandLine, XprocPtr& process, unsigned long& error) {
    std::vector<std::string> arguments = takeApart(xtextToUtf8(commandLine));
    if (arguments.empty()) {
        error = kFileNotFound;
        return false;
    }
    const std::string program = xfileSystemPath(arguments[0]);
    std::vector<char*> pointers;
    pointers.reserve(arguments.size() + 1);
    for (std::string& argument : arguments) pointers.push_back(argument.data());
    pointers.push_back(nullptr);
    pid_t id = 0;
    const int result = ::posix_spawn(&id, program.c_str(), /*file_actions=*/nullptr,
                                     /*attrp=*/nullptr, pointers.data(), environ);
    if (result != 0) {
        error = windowsError(result);
        return false;
    }
    process.reset(new Process{id, 0});
    return true;
}

// POSIX has no elevation prompt.
bool runAs(const std::wstring& file, const std::wstring& parameters, XprocPtr&,
           unsigned long& error) {
    std::wstring line;
    static_cast<void>(xtextToWide(xprocQuote(xtextToUtf8(file)) + " ", line));
    line += parameters;
    XprocPtr started;
    return createProcess(line, started, error);
}

std::uint32_t exitCodeOf(const Process& process, int status) {
    if (WIFEXITED(status)) return static_cast<std::uint32_t>(WEXITSTATUS(status));
    return process.killedWith;
}

}  // namespace

XprocCalls& xprocCalls() noexcept {
    static XprocCalls calls{createProcess, runAs};
    return calls;
}

// A child that nobody waits for stays a zombie until this process ends.
void XprocClose::operator()(void* process) const noexcept { delete static_cast<Process*>(process); }

XErr xprocWait(XprocHandle handle, std::uint32_t* exitCode) {
    const auto* const process = static_cast<const Process*>(handle);
    int status = 0;
    if (process == nullptr || ::waitpid(process->id, &status, 0) < 0) {
        const XErr err = process == nullptr ? XERR_BADF : errno;
        XLOG_E(kXprocLog, "xprocWait failed with %d %s", err, xerrName(err).c_str());
        return err;
    }
    const XprocPtr ended(handle);
    if (exitCode != nullptr) *exitCode = exitCodeOf(*process, status);
    return XERR_SUCCESS;
}

XErr xprocKill(XprocHandle handle, std::uint32_t exitCode) {
    auto* const process = static_cast<Process*>(handle);
    if (process != nullptr) process->killedWith = exitCode;
    if (process == nullptr || ::kill(process->id, SIGKILL) != 0) {
        const XErr err = process == nullptr ? XERR_BADF : errno;
        XLOG_E(kXprocLog, "%s: TerminateProcess failed err=%d [%s]", "xprocKill", err,
               xerrName(err).c_str());
    }
    return XERR_SUCCESS;
}

// An empty value removes the variable, as it does on Windows.
XErr xprocSetEnvironment(const std::string& name, const std::string& value) {
    const int result = value.empty() ? ::unsetenv(name.c_str())
                                     : ::setenv(name.c_str(), value.c_str(), /*replace=*/1);
    return result == 0 ? XERR_SUCCESS : errno;
}
