#include "support/ChildProcess.h"

#include <gtest/gtest.h>

#include <condition_variable>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <thread>

#include "support/Proof.h"
#include "support/WindowsForTests.h"

namespace {

// The C runtime's rule, which the test programs' own start-up undoes.
std::wstring quoted(const std::string& argument) {
    std::wstring text = L"\"";
    std::size_t backslashes = 0;
    for (const wchar_t c : wideForTests(argument)) {
        if (c == L'"') text.append(backslashes + 1, L'\\');
        backslashes = c == L'\\' ? backslashes + 1 : 0;
        text += c;
    }
    return text.append(backslashes, L'\\').append(L"\"");
}

std::wstring commandLine(const std::string& program, const std::vector<std::string>& arguments) {
    std::wstring line = quoted(program);
    for (const std::string& argument : arguments) line.append(L" ").append(quoted(argument));
    return line;
}

std::optional<std::wstring> environmentValue(const std::wstring& name) {
    wchar_t value[4096];
    ::SetLastError(ERROR_SUCCESS);  // a value may be empty
    const DWORD length = ::GetEnvironmentVariableW(name.c_str(), value, 4096);
    if (length == 0 && ::GetLastError() == ERROR_ENVVAR_NOT_FOUND) return std::nullopt;
    return std::wstring(value, length);
}

// Values that CreateProcess inherits from this process while the object lives.
class ScopedEnvironment {
 public:
    explicit ScopedEnvironment(const ChildOptions& options) {
        for (const auto& [name, value] : options.environment) {
            const std::wstring wideName = wideForTests(name);
            before_.emplace_back(wideName, environmentValue(wideName));
            ::SetEnvironmentVariableW(wideName.c_str(), wideForTests(value).c_str());
        }
    }
    // Backwards, since a name may have been set twice.
    ~ScopedEnvironment() {
        for (auto entry = before_.rbegin(); entry != before_.rend(); ++entry) {
            const auto& [name, value] = *entry;
            ::SetEnvironmentVariableW(name.c_str(), value ? value->c_str() : nullptr);
        }
    }

 private:
    std::vector<std::pair<std::wstring, std::optional<std::wstring>>> before_;
};

// A pipe whose writing end the child inherits.
struct Pipe {
    HANDLE read = nullptr;
    HANDLE write = nullptr;

    Pipe() {
        SECURITY_ATTRIBUTES inheritable{sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
        if (!::CreatePipe(&read, &write, &inheritable, 0)) throw std::runtime_error("no pipe");
        ::SetHandleInformation(read, HANDLE_FLAG_INHERIT, 0);
    }
    void closeWrite() { ::CloseHandle(std::exchange(write, nullptr)); }
};

// Appends what arrives; false at the end of the pipe.
bool readMore(HANDLE pipe, std::string& text) {
    char bytes[4096];
    DWORD count = 0;
    if (!::ReadFile(pipe, bytes, sizeof bytes, &count, nullptr) || count == 0) return false;
    text.append(bytes, count);
    return true;
}

}  // namespace

struct ChildProcess::State {
    Pipe out;
    Pipe err;
    PROCESS_INFORMATION process{};
    std::chrono::seconds limit{};
    std::string outText;
    std::thread errReader;

    std::mutex errLock;
    std::condition_variable errChanged;
    std::string errText;      // all of it
    std::size_t errRead = 0;  // how much of it readErrorLine() has given
    bool errEnded = false;

    void readErrors() {
        for (std::string piece; readMore(err.read, piece); piece.clear()) {
            const std::lock_guard<std::mutex> guard(errLock);
            errText += piece;
            errChanged.notify_all();
        }
        const std::lock_guard<std::mutex> guard(errLock);
        errEnded = true;
        errChanged.notify_all();
    }
};

ChildProcess::ChildProcess(const std::string& program, const std::vector<std::string>& arguments,
                           const ChildOptions& options)
    : state_(std::make_unique<State>()) {
    const ScopedEnvironment environment(options);
    std::wstring line = commandLine(program, arguments);
    const std::wstring folder = wideForTests(options.folder);
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdInput = ::GetStdHandle(STD_INPUT_HANDLE);
    startup.hStdOutput = state_->out.write;
    startup.hStdError = state_->err.write;
    if (options.outputIsBroken) closeOutput();
    if (!::CreateProcessW(nullptr, line.data(), nullptr, nullptr, /*bInheritHandles=*/TRUE, 0,
                          nullptr, folder.empty() ? nullptr : folder.c_str(), &startup,
                          &state_->process)) {
        throw std::runtime_error("cannot start " + program + ": error " +
                                 std::to_string(::GetLastError()));
    }
    state_->limit = options.limit * proofSize(1, 60);
    state_->out.closeWrite();
    state_->err.closeWrite();
    State& state = *state_;
    state.errReader = std::thread([&state] { state.readErrors(); });
}

ChildProcess::ChildProcess(ChildProcess&&) noexcept = default;

ChildProcess::~ChildProcess() {
    if (state_ == nullptr) return;
    kill();
    if (state_->errReader.joinable()) state_->errReader.join();
    ::CloseHandle(state_->process.hThread);
    ::CloseHandle(state_->process.hProcess);
    if (state_->out.read != nullptr) closeOutput();
    ::CloseHandle(state_->err.read);
}

void ChildProcess::kill() {
    ::TerminateProcess(state_->process.hProcess, 99);
    ::WaitForSingleObject(state_->process.hProcess, INFINITE);
}

void* ChildProcess::handle() const { return state_->process.hProcess; }

std::string ChildProcess::readLine() {
    std::size_t end;
    while ((end = state_->outText.find('\n')) == std::string::npos) {
        if (!readMore(state_->out.read, state_->outText)) {
            const std::lock_guard<std::mutex> guard(state_->errLock);
            throw std::runtime_error("child ended without the line; it wrote: " + state_->outText +
                                     state_->errText);
        }
    }
    std::string line = state_->outText.substr(0, end);
    state_->outText.erase(0, end + 1);
    if (!line.empty() && line.back() == '\r') line.pop_back();
    return line;
}

std::string ChildProcess::readErrorLine() {
    State& state = *state_;
    std::unique_lock<std::mutex> guard(state.errLock);
    std::size_t end;
    while ((end = state.errText.find('\n', state.errRead)) == std::string::npos) {
        if (state.errEnded) throw std::runtime_error("child ended; it wrote: " + state.errText);
        state.errChanged.wait(guard);
    }
    const std::string line = state.errText.substr(state.errRead, end - state.errRead);
    state.errRead = end + 1;
    return line;
}

void ChildProcess::closeOutput() { ::CloseHandle(std::exchange(state_->out.read, nullptr)); }

ChildResult ChildProcess::finish() {
    State& state = *state_;
    std::thread outReader([&state] {
        while (state.out.read != nullptr && readMore(state.out.read, state.outText)) {
        }
    });
    const auto limit = std::chrono::duration_cast<std::chrono::milliseconds>(state.limit);
    if (::WaitForSingleObject(state.process.hProcess, static_cast<DWORD>(limit.count())) !=
        WAIT_OBJECT_0) {
        ADD_FAILURE() << "child did not end within " << state.limit.count() << " s";
        kill();
    }
    outReader.join();
    state.errReader.join();
    ChildResult result{0, state.outText, state.errText};
    DWORD status = 0;
    ::GetExitCodeProcess(state.process.hProcess, &status);
    result.status = status;
    return result;
}

ChildResult runChild(const std::string& program, const std::vector<std::string>& arguments,
                     const ChildOptions& options) {
    return ChildProcess(program, arguments, options).finish();
}

std::string builtProgram(std::string_view name) {
    wchar_t self[MAX_PATH];
    ::GetModuleFileNameW(nullptr, self, MAX_PATH);
    const std::wstring path(self);
    const std::wstring folder = path.substr(0, path.rfind(L'\\') + 1);
    std::string narrow;
    for (const wchar_t c : folder) narrow += static_cast<char>(c);  // the build tree is ASCII
    return narrow.append(name);
}
