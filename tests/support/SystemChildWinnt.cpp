#include "support/SystemChild.h"

#include <cstddef>
#include <stdexcept>
#include <string_view>
#include <utility>

#include "support/Platform.h"
#include "support/WindowsForTests.h"

namespace {

// The C runtime's rule, which the test programs' start-up undoes.
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

// Sets values in this process, so that CreateProcess inherits them. The destructor restores them.
class ScopedEnvironment {
 public:
    explicit ScopedEnvironment(const ChildOptions& options) {
        for (const auto& [name, value] : options.environment) {
            const std::wstring wideName = wideForTests(name);
            before_.emplace_back(wideName, environmentValue(wideName));
            ::SetEnvironmentVariableW(wideName.c_str(), wideForTests(value).c_str());
        }
    }
    // In reverse order, since a name may be set twice.
    ~ScopedEnvironment() {
        for (auto entry = before_.rbegin(); entry != before_.rend(); ++entry) {
            const auto& [name, value] = *entry;
            ::SetEnvironmentVariableW(name.c_str(), value ? value->c_str() : nullptr);
        }
    }

 private:
    std::vector<std::pair<std::wstring, std::optional<std::wstring>>> before_;
};

HANDLE handleOf(std::intptr_t number) {
    // NOLINTNEXTLINE(performance-no-int-to-ptr): the numbers are handles
    return reinterpret_cast<HANDLE>(number);
}

std::intptr_t numberOf(HANDLE handle) { return reinterpret_cast<std::intptr_t>(handle); }

void closeHandle(std::intptr_t& number) {
    if (number != 0) ::CloseHandle(handleOf(std::exchange(number, 0)));
}

}  // namespace

ChildPipe::ChildPipe() {
    SECURITY_ATTRIBUTES inheritable{sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
    HANDLE read = nullptr;
    HANDLE write = nullptr;
    if (!::CreatePipe(&read, &write, &inheritable, 0)) throw std::runtime_error("no pipe");
    ::SetHandleInformation(read, HANDLE_FLAG_INHERIT, 0);
    read_ = numberOf(read);
    write_ = numberOf(write);
}

ChildPipe::~ChildPipe() {
    closeRead();
    closeWrite();
}

bool ChildPipe::readMore(std::string& text) const {
    char bytes[4096];
    DWORD count = 0;
    if (read_ == 0) return false;
    if (!::ReadFile(handleOf(read_), bytes, sizeof bytes, &count, nullptr)) return false;
    text.append(bytes, count);
    return count > 0;
}

void ChildPipe::closeRead() { closeHandle(read_); }

void ChildPipe::closeWrite() { closeHandle(write_); }

SystemChild::SystemChild(const std::string& program, const std::vector<std::string>& arguments,
                         const ChildOptions& options, const ChildPipe& out, const ChildPipe& err) {
    const ScopedEnvironment environment(options);
    std::wstring line = commandLine(program, arguments);
    const std::wstring folder = wideForTests(options.folder);
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdInput = ::GetStdHandle(STD_INPUT_HANDLE);
    startup.hStdOutput = handleOf(out.writingEnd());
    startup.hStdError = handleOf(err.writingEnd());
    PROCESS_INFORMATION process{};
    if (!::CreateProcessW(nullptr, line.data(), nullptr, nullptr, /*bInheritHandles=*/TRUE, 0,
                          nullptr, folder.empty() ? nullptr : folder.c_str(), &startup, &process)) {
        throw std::runtime_error("cannot start " + program + ": error " +
                                 std::to_string(::GetLastError()));
    }
    ::CloseHandle(process.hThread);
    process_ = numberOf(process.hProcess);
}

SystemChild::~SystemChild() {
    kill();
    closeHandle(process_);
}

bool SystemChild::waitFor(std::chrono::seconds limit) {
    const auto milliseconds = std::chrono::duration_cast<std::chrono::milliseconds>(limit);
    return ::WaitForSingleObject(handle(), static_cast<DWORD>(milliseconds.count())) ==
           WAIT_OBJECT_0;
}

void SystemChild::kill() {
    ::TerminateProcess(handle(), 99);
    ::WaitForSingleObject(handle(), INFINITE);
}

std::uint32_t SystemChild::status() {
    ::WaitForSingleObject(handle(), INFINITE);
    DWORD status = 0;
    ::GetExitCodeProcess(handle(), &status);
    status_ = status;
    return status;
}

void* SystemChild::handle() const { return handleOf(process_); }

namespace {

// Folder of this test program, with "\\" at the end.
std::string ownFolder() {
    const std::string program = ownProgram();
    return program.substr(0, program.rfind('\\') + 1);
}

std::string besideTests(std::string_view folder, std::string_view name) {
    const std::string tests = ownFolder();
    return tests.substr(0, tests.rfind('\\', tests.size() - 2) + 1).append(folder).append(name);
}

}  // namespace

std::string builtProgram(std::string_view name) { return ownFolder().append(name); }

std::string productFile(std::string_view name) { return besideTests("bin\\", name); }

std::string standinProgram(std::string_view name) { return besideTests("standins\\", name); }
