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

constexpr std::string_view kRelease = "ReleaseMutex";

// Whether a fault goes on at a later call, of this function.
bool lasts(const State& s, const FaultAt& at, std::string_view function) {
    if (at.fault == Fault::ErrorForEver) return function != kRelease;
    if (at.fault != Fault::DeniedForEver) return false;
    return s.calls[static_cast<std::size_t>(at.call)] == function;
}

// What is to become of the call that is being made.
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

// Makes a call of `function`, or lets a fault take its place. `half` does half of it.
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

decltype(&::CreateFileW) realCreateFile;
HANDLE WINAPI createFile(LPCWSTR path, DWORD access, DWORD share, LPSECURITY_ATTRIBUTES security,
                         DWORD disposition, DWORD flags, HANDLE model) {
    const HANDLE file = guarded(
        "CreateFileW", INVALID_HANDLE_VALUE, ERROR_ACCESS_DENIED,
        [&] { return realCreateFile(path, access, share, security, disposition, flags, model); },
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

decltype(&::ReadFile) realReadFile;
BOOL WINAPI readFile(HANDLE file, LPVOID buffer, DWORD size, LPDWORD done,
                     LPOVERLAPPED overlapped) {
    return guarded(
        "ReadFile", BOOL{FALSE}, ERROR_READ_FAULT,
        [&] { return realReadFile(file, buffer, size, done, overlapped); }, kNothing);
}

decltype(&::WriteFile) realWriteFile;
BOOL WINAPI writeFile(HANDLE file, LPCVOID bytes, DWORD size, LPDWORD done,
                      LPOVERLAPPED overlapped) {
    const BOOL ok = guarded(
        "WriteFile", BOOL{FALSE}, ERROR_DISK_FULL,
        [&] { return realWriteFile(file, bytes, size, done, overlapped); },
        [&] { realWriteFile(file, bytes, size / 2, done, overlapped); });
    if (ok) {
        note({FileOperation::Write, pathOf(file), {static_cast<const char*>(bytes), size}});
    }
    return ok;
}

decltype(&::FlushFileBuffers) realFlush;
BOOL WINAPI flush(HANDLE file) {
    const BOOL ok = guarded(
        "FlushFileBuffers", BOOL{FALSE}, ERROR_WRITE_FAULT, [&] { return realFlush(file); },
        kNothing);
    if (ok) note({FileOperation::Flush, pathOf(file), {}});
    return ok;
}

// One that fails has closed the handle all the same: nothing could be done about it.
decltype(&::CloseHandle) realClose;
BOOL WINAPI closeHandle(HANDLE handle) {
    {
        const std::lock_guard<std::recursive_mutex> guard(state().lock);
        state().open.erase(handle);
    }
    BOOL closed = FALSE;
    const BOOL ok = guarded(
        "CloseHandle", BOOL{FALSE}, ERROR_INVALID_HANDLE,
        [&] { return closed = realClose(handle); }, kNothing);
    if (!ok && !closed) realClose(handle);
    return ok;
}

decltype(&::MoveFileExW) realMove;
BOOL WINAPI moveFile(LPCWSTR from, LPCWSTR to, DWORD flags) {
    const BOOL ok = guarded(
        "MoveFileExW", BOOL{FALSE}, ERROR_DISK_FULL, [&] { return realMove(from, to, flags); },
        kNothing);
    if (ok) note({FileOperation::Move, narrow(from), narrow(to)});
    return ok;
}

decltype(&::DeleteFileW) realDelete;
BOOL WINAPI deleteFile(LPCWSTR path) {
    const BOOL ok = guarded(
        "DeleteFileW", BOOL{FALSE}, ERROR_ACCESS_DENIED, [&] { return realDelete(path); },
        kNothing);
    if (ok) note({FileOperation::Delete, narrow(path), {}});
    return ok;
}

decltype(&::ReleaseMutex) realRelease;
BOOL WINAPI releaseMutex(HANDLE mutex) {
    return guarded(
        "ReleaseMutex", BOOL{FALSE}, ERROR_NOT_OWNER, [&] { return realRelease(mutex); }, kNothing);
}

template <typename Function>
void install(const char* name, Function replacement, Function& original) {
    replaceImport(/*module=*/nullptr, name, reinterpret_cast<void*>(replacement),
                  reinterpret_cast<void**>(&original));
}

void installOnce() {
    static const bool once = [] {
        install("CreateFileW", &createFile, realCreateFile);
        install("ReadFile", &readFile, realReadFile);
        install("WriteFile", &writeFile, realWriteFile);
        install("FlushFileBuffers", &flush, realFlush);
        install("CloseHandle", &closeHandle, realClose);
        install("MoveFileExW", &moveFile, realMove);
        install("DeleteFileW", &deleteFile, realDelete);
        install("ReleaseMutex", &releaseMutex, realRelease);
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
