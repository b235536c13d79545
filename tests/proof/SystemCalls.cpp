#include "SystemCalls.h"

#include "ImportTable.h"
#include "support/TestHeaders.h"
#include "support/WindowsForTests.h"

namespace {

struct State {
    std::recursive_mutex lock;
    std::vector<FaultAt> faults;
    std::vector<std::string> calls;
    bool armed = false;
    bool recording = false;
    std::map<HANDLE, std::string> open;
    std::vector<FileOperation> operations;
};

State& state() {
    static State& only = *new State;
    return only;
}

constexpr UINT kDied = 7;

[[noreturn]] void die() {
    ::TerminateProcess(::GetCurrentProcess(), kDied);
    for (;;) ::Sleep(1);
}

// Whether a fault also affects a later call of this function.
bool lasts(const State& s, const FaultAt& at, std::string_view function) {
    if (at.fault == Fault::ErrorForEver) return function != "ReleaseMutex";
    if (at.fault != Fault::DeniedForEver) return false;
    return s.calls[static_cast<std::size_t>(at.call)] == function;
}

// The fault of the call that is being made.
Fault nextFault(const char* function) {
    State& s = state();
    const std::lock_guard<std::recursive_mutex> guard(s.lock);
    if (!s.armed) return Fault::None;
    const int number = static_cast<int>(s.calls.size());
    s.calls.emplace_back(function);
    Fault fault = Fault::None;
    for (const FaultAt& at : s.faults) {
        if (number == at.call || (number > at.call && lasts(s, at, function))) fault = at.fault;
    }
    return fault;
}

// Makes a call, or its fault. `half` does half of the call.
template <typename Call, typename Half>
auto guarded(const char* function, decltype(std::declval<Call>()()) failure, DWORD error, Call call,
             Half half) -> decltype(call()) {
    switch (nextFault(function)) {
        case Fault::ErrorOnce:
        case Fault::ErrorForEver:
            ::SetLastError(error);
            return failure;
        case Fault::DeniedOnce:
        case Fault::DeniedForEver:
            ::SetLastError(ERROR_ACCESS_DENIED);
            return failure;
        case Fault::DieHalfway:
            half();
            die();
        case Fault::DieBefore:
            die();
        case Fault::DieAfter:
            call();
            die();
        case Fault::None:
            break;
    }
    return call();
}

void note(FileOperation operation) {
    State& s = state();
    const std::lock_guard<std::recursive_mutex> guard(s.lock);
    if (s.recording) s.operations.push_back(std::move(operation));
}

std::string narrow(LPCWSTR text) {
    char bytes[1000];
    ::WideCharToMultiByte(CP_UTF8, 0, text, -1, bytes, sizeof bytes, nullptr, nullptr);
    return bytes;
}

std::string pathOf(HANDLE file) {
    State& s = state();
    const std::lock_guard<std::recursive_mutex> guard(s.lock);
    const auto found = s.open.find(file);
    return found == s.open.end() ? std::string() : found->second;
}

constexpr auto kNothing = [] {};

constexpr char kCreate[] = "CreateFileW";
constexpr char kRead[] = "ReadFile";
constexpr char kWrite[] = "WriteFile";
constexpr char kFlush[] = "FlushFileBuffers";
constexpr char kClose[] = "CloseHandle";
constexpr char kMove[] = "MoveFileExW";
constexpr char kDelete[] = "DeleteFileW";
constexpr char kRelease[] = "ReleaseMutex";

// A call that a fault can replace: then it fails with this error.
template <const char* kName, DWORD kError, typename... Arguments>
BOOL faulty(Arguments... arguments) {
    return guarded(
        kName, BOOL{FALSE}, kError, [&] { return callSystem<kName, BOOL>(arguments...); },
        kNothing);
}

HANDLE createFile(LPCWSTR path, DWORD access, DWORD share, LPSECURITY_ATTRIBUTES security,
                  DWORD disposition, DWORD flags, HANDLE model) {
    const HANDLE file = guarded(
        kCreate, INVALID_HANDLE_VALUE, ERROR_ACCESS_DENIED,
        [&] {
            return callSystem<kCreate, HANDLE>(path, access, share, security, disposition, flags,
                                               model);
        },
        kNothing);
    if (file == INVALID_HANDLE_VALUE) return file;
    const DWORD error = ::GetLastError();
    {
        const std::lock_guard<std::recursive_mutex> guard(state().lock);
        state().open[file] = narrow(path);
    }
    if (disposition == CREATE_ALWAYS) note({FileOperation::Create, narrow(path), {}});
    ::SetLastError(error);
    return file;
}

BOOL writeFile(HANDLE file, LPCVOID bytes, DWORD size, LPDWORD done, LPOVERLAPPED overlapped) {
    const auto write = [&](DWORD count) {
        return callSystem<kWrite, BOOL>(file, bytes, count, done, overlapped);
    };
    const BOOL ok = guarded(
        kWrite, BOOL{FALSE}, ERROR_DISK_FULL, [&] { return write(size); },
        [&] { write(size / 2); });
    if (ok) note({FileOperation::Write, pathOf(file), {static_cast<const char*>(bytes), size}});
    return ok;
}

BOOL flush(HANDLE file) {
    const BOOL ok = faulty<kFlush, ERROR_WRITE_FAULT>(file);
    if (ok) note({FileOperation::Flush, pathOf(file), {}});
    return ok;
}

// A close that fails still closes the handle.
BOOL closeHandle(HANDLE handle) {
    {
        const std::lock_guard<std::recursive_mutex> guard(state().lock);
        state().open.erase(handle);
    }
    BOOL closed = FALSE;
    const auto close = [&] { return closed = callSystem<kClose, BOOL>(handle); };
    const BOOL ok = guarded(kClose, BOOL{FALSE}, ERROR_INVALID_HANDLE, close, kNothing);
    if (!ok && !closed) close();
    return ok;
}

BOOL moveFile(LPCWSTR from, LPCWSTR to, DWORD flags) {
    const BOOL ok = faulty<kMove, ERROR_DISK_FULL>(from, to, flags);
    if (ok) note({FileOperation::Move, narrow(from), narrow(to)});
    return ok;
}

BOOL deleteFile(LPCWSTR path) {
    const BOOL ok = faulty<kDelete, ERROR_ACCESS_DENIED>(path);
    if (ok) note({FileOperation::Delete, narrow(path), {}});
    return ok;
}

// The replacements stay for the rest of the process.
template <typename Function>
void install(const char* name, Function* replacement) {
    void* original = nullptr;
    replaceImport(/*module=*/nullptr, name, reinterpret_cast<void*>(replacement), &original);
}

void installOnce() {
    static const bool once = [] {
        install<decltype(::CreateFileW)>(kCreate, createFile);
        install<decltype(::ReadFile)>(kRead, faulty<kRead, ERROR_READ_FAULT>);
        install<decltype(::WriteFile)>(kWrite, writeFile);
        install<decltype(::FlushFileBuffers)>(kFlush, flush);
        install<decltype(::CloseHandle)>(kClose, closeHandle);
        install<decltype(::MoveFileExW)>(kMove, moveFile);
        install<decltype(::DeleteFileW)>(kDelete, deleteFile);
        install<decltype(::ReleaseMutex)>(kRelease, faulty<kRelease, ERROR_NOT_OWNER>);
        return true;
    }();
    static_cast<void>(once);
}

}  // namespace

void arm(std::vector<FaultAt> faults) {
    installOnce();
    const std::lock_guard<std::recursive_mutex> guard(state().lock);
    state().faults = std::move(faults);
    state().calls.clear();
    state().armed = true;
}

std::vector<std::string> disarm() {
    const std::lock_guard<std::recursive_mutex> guard(state().lock);
    state().armed = false;
    return std::exchange(state().calls, {});
}

void record() {
    installOnce();
    const std::lock_guard<std::recursive_mutex> guard(state().lock);
    state().operations.clear();
    state().recording = true;
}

std::vector<FileOperation> recorded() {
    const std::lock_guard<std::recursive_mutex> guard(state().lock);
    state().recording = false;
    return std::exchange(state().operations, {});
}
