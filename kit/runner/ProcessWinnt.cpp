#include <cstddef>
#include <memory>
#include <optional>

#include "Process.h"
#include "xpl/Xtext.h"

// Last: it brings <windows.h>.
#include "xpl/XwindowsLean.h"

namespace fs = std::filesystem;

namespace {

struct HandleCloser {
    void operator()(void* handle) const { ::CloseHandle(handle); }
};
using OwnedHandle = std::unique_ptr<void, HandleCloser>;

OwnedHandle owned(HANDLE handle) {
    return OwnedHandle(handle == INVALID_HANDLE_VALUE ? nullptr : handle);
}

// Set by Ctrl+C.
HANDLE stopEvent() {
    static const HANDLE event = ::CreateEventW(nullptr, /*bManualReset=*/TRUE, FALSE, nullptr);
    return event;
}

std::wstring wideOf(const std::string& text) {
    std::wstring wide;
    return xtextToWide(text, wide) == XERR_SUCCESS ? wide : std::wstring();
}

// The C runtime's quoting rules, which every program of the kit follows.
std::wstring quoted(const std::string& argument) {
    std::wstring text = L"\"";
    std::size_t backslashes = 0;
    for (const wchar_t c : wideOf(argument)) {
        if (c == L'"') text.append(backslashes + 1, L'\\');
        backslashes = c == L'\\' ? backslashes + 1 : 0;
        text += c;
    }
    return text.append(backslashes, L'\\').append(L"\"");
}

std::wstring commandLine(const std::vector<std::string>& command) {
    std::wstring line;
    for (const std::string& word : command)
        line.append(line.empty() ? L"" : L" ").append(quoted(word));
    return line;
}

// A job that ends its processes when its last handle is closed.
OwnedHandle endingJob() {
    OwnedHandle job = owned(::CreateJobObjectW(nullptr, nullptr));
    JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits{};
    limits.BasicLimitInformation.LimitFlags = JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE;
    ::SetInformationJobObject(job.get(), JobObjectExtendedLimitInformation, &limits, sizeof limits);
    return job;
}

OwnedHandle inheritable(const wchar_t* path, DWORD access, DWORD creation) {
    SECURITY_ATTRIBUTES attributes{sizeof attributes, nullptr, /*bInheritHandle=*/TRUE};
    return owned(::CreateFileW(path, access, FILE_SHARE_READ | FILE_SHARE_WRITE, &attributes,
                               creation, FILE_ATTRIBUTE_NORMAL, /*hTemplateFile=*/nullptr));
}

// The main thread is suspended until the process is in its job.
DWORD startSuspended(const std::vector<std::string>& command, const fs::path& folder, HANDLE input,
                     HANDLE output, PROCESS_INFORMATION& process) {
    std::wstring line = commandLine(command);
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdInput = input;
    startup.hStdOutput = output;
    startup.hStdError = output;
    const BOOL isStarted = ::CreateProcessW(nullptr, line.data(), nullptr, nullptr,
                                            /*bInheritHandles=*/TRUE, CREATE_SUSPENDED, nullptr,
                                            folder.c_str(), &startup, &process);
    return isStarted ? ERROR_SUCCESS : ::GetLastError();
}

void waitForEnd(HANDLE process, int seconds, ProcessRun& run) {
    const HANDLE events[] = {process, stopEvent()};
    const DWORD limit = static_cast<DWORD>(seconds) * 1000;
    const DWORD which = ::WaitForMultipleObjects(2, events, /*bWaitAll=*/FALSE, limit);
    run.isLate = which == WAIT_TIMEOUT;
    run.isStopped = which == WAIT_OBJECT_0 + 1;
    DWORD status = 0;
    ::GetExitCodeProcess(process, &status);
    run.status = status;
}

std::optional<std::wstring> variableOf(const std::wstring& name) {
    std::wstring value(32768, L'\0');
    ::SetLastError(ERROR_SUCCESS);
    value.resize(
        ::GetEnvironmentVariableW(name.c_str(), value.data(), static_cast<DWORD>(value.size())));
    if (value.empty() && ::GetLastError() == ERROR_ENVVAR_NOT_FOUND) return std::nullopt;
    return value;
}

}  // namespace

ProcessRun runProcess(const std::vector<std::string>& command, const fs::path& folder,
                      const fs::path& output, int seconds) {
    ProcessRun run;
    const OwnedHandle out = inheritable(output.c_str(), GENERIC_WRITE, CREATE_ALWAYS);
    const OwnedHandle in = inheritable(L"NUL", GENERIC_READ, OPEN_EXISTING);
    const OwnedHandle job = endingJob();
    const ULONGLONG begin = ::GetTickCount64();
    PROCESS_INFORMATION information{};
    run.error = startSuspended(command, folder, in.get(), out.get(), information);
    if (run.error != ERROR_SUCCESS) return run;
    const OwnedHandle process = owned(information.hProcess);
    const OwnedHandle thread = owned(information.hThread);
    ::AssignProcessToJobObject(job.get(), process.get());
    ::ResumeThread(thread.get());
    waitForEnd(process.get(), seconds, run);
    ::TerminateJobObject(job.get(), 1);
    ::TerminateProcess(process.get(), 1);  // no effect on an ended process
    ::WaitForSingleObject(process.get(), INFINITE);
    run.milliseconds = static_cast<long>(::GetTickCount64() - begin);
    return run;
}

std::string programOnPath(const std::string& name) {
    std::wstring found(32768, L'\0');
    const DWORD length =
        ::SearchPathW(nullptr, wideOf(name).c_str(), L".exe", static_cast<DWORD>(found.size()),
                      found.data(), /*lpFilePart=*/nullptr);
    if (length == 0 || length >= found.size()) return {};
    found.resize(length);
    return xtextToUtf8(found);
}

ScopedVariables::ScopedVariables(const Variables& variables) {
    for (const auto& [name, value] : variables) {
        const std::wstring wideName = wideOf(name);
        earlier_.push_back({wideName, variableOf(wideName)});
        ::SetEnvironmentVariableW(wideName.c_str(), wideOf(value).c_str());
    }
}

ScopedVariables::~ScopedVariables() {
    for (const Earlier& earlier : earlier_) {
        ::SetEnvironmentVariableW(earlier.name.c_str(),
                                  earlier.value ? earlier.value->c_str() : nullptr);
    }
}

void stopEverything() { ::SetEvent(stopEvent()); }

bool isEverythingStopped() { return ::WaitForSingleObject(stopEvent(), 0) == WAIT_OBJECT_0; }
