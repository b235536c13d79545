#include "SystemCalls.h"

#include <map>
#include <mutex>
#include <type_traits>

#include "ImportTable.h"
#include "support/WindowsForTests.h"

namespace {

struct State {
    std::recursive_mutex lock;
    Fault fault = Fault::None;
    int target = -1;
    int count = 0;
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

// Makes a call, or lets the armed fault take its place. `half` does half of it.
template <typename Call, typename Half>
auto guarded(decltype(std::declval<Call>()()) failure, DWORD error, Call call, Half half)
    -> decltype(call()) {
    State& s = state();
    Fault fault = Fault::None;
    {
        const std::lock_guard<std::recursive_mutex> guard(s.lock);
        if (s.armed) {
            const int number = s.count++;
            const bool later = s.fault == Fault::ErrorForEver && number > s.target;
            if (number == s.target || later) fault = s.fault;
        }
    }
    if (fault == Fault::ErrorOnce || fault == Fault::ErrorForEver) {
        ::SetLastError(error);
        return failure;
    }
    if (fault == Fault::DieHalfway) half();
    if (fault == Fault::DieBefore || fault == Fault::DieHalfway) die();
    const auto result = call();
    if (fault == Fault::DieAfter) die();
    return result;
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
        INVALID_HANDLE_VALUE, ERROR_ACCESS_DENIED,
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
        BOOL{FALSE}, ERROR_READ_FAULT,
        [&] { return realReadFile(file, buffer, size, done, overlapped); }, kNothing);
}

decltype(&::WriteFile) realWriteFile;
BOOL WINAPI writeFile(HANDLE file, LPCVOID bytes, DWORD size, LPDWORD done,
                      LPOVERLAPPED overlapped) {
    const BOOL ok = guarded(
        BOOL{FALSE}, ERROR_DISK_FULL,
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
        BOOL{FALSE}, ERROR_WRITE_FAULT, [&] { return realFlush(file); }, kNothing);
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
        BOOL{FALSE}, ERROR_INVALID_HANDLE, [&] { return closed = realClose(handle); }, kNothing);
    if (!ok && !closed) realClose(handle);
    return ok;
}

decltype(&::MoveFileExW) realMove;
BOOL WINAPI moveFile(LPCWSTR from, LPCWSTR to, DWORD flags) {
    const BOOL ok = guarded(
        BOOL{FALSE}, ERROR_DISK_FULL, [&] { return realMove(from, to, flags); }, kNothing);
    if (ok) note({FileOperation::Move, narrow(from), narrow(to)});
    return ok;
}

decltype(&::DeleteFileW) realDelete;
BOOL WINAPI deleteFile(LPCWSTR path) {
    const BOOL ok = guarded(
        BOOL{FALSE}, ERROR_ACCESS_DENIED, [&] { return realDelete(path); }, kNothing);
    if (ok) note({FileOperation::Delete, narrow(path), {}});
    return ok;
}

decltype(&::ReleaseMutex) realRelease;
BOOL WINAPI releaseMutex(HANDLE mutex) {
    return guarded(
        BOOL{FALSE}, ERROR_NOT_OWNER, [&] { return realRelease(mutex); }, kNothing);
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

void arm(Fault fault, int call) {
    installOnce();
    const std::lock_guard<std::recursive_mutex> guard(state().lock);
    state().fault = fault;
    state().target = call;
    state().count = 0;
    state().armed = true;
}

int disarm() {
    const std::lock_guard<std::recursive_mutex> guard(state().lock);
    state().armed = false;
    return state().count;
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
