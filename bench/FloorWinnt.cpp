#include <cstddef>

#include "Bench.h"
#include "Floor.h"
#include "support/WindowsForTests.h"

namespace {

HANDLE handleOf(std::intptr_t handle) { return reinterpret_cast<HANDLE>(handle); }

DWORD accessOf(FloorFile::Mode mode) {
    if (mode == FloorFile::Append) return FILE_APPEND_DATA | SYNCHRONIZE;
    return mode == FloorFile::Read ? GENERIC_READ : GENERIC_WRITE;
}

DWORD dispositionOf(FloorFile::Mode mode) {
    if (mode == FloorFile::Append) return OPEN_ALWAYS;
    return mode == FloorFile::Read ? OPEN_EXISTING : CREATE_ALWAYS;
}

}  // namespace

FloorFile::FloorFile(const FloorPath& path, Mode mode)
    : handle_(reinterpret_cast<std::intptr_t>(::CreateFileW(
          path.c_str(), accessOf(mode), FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
          nullptr, dispositionOf(mode), FILE_ATTRIBUTE_NORMAL, nullptr))) {
    benchCheck(handleOf(handle_) != INVALID_HANDLE_VALUE, "cannot open a file");
}

FloorFile::~FloorFile() { ::CloseHandle(handleOf(handle_)); }

std::string FloorFile::read() {
    LARGE_INTEGER size{};
    ::GetFileSizeEx(handleOf(handle_), &size);
    std::string content(static_cast<std::size_t>(size.QuadPart), '\0');
    DWORD done = 0;
    ::ReadFile(handleOf(handle_), content.data(), static_cast<DWORD>(content.size()), &done,
               nullptr);
    benchCheck(done == content.size(), "cannot read a file");
    return content;
}

void FloorFile::write(std::string_view bytes) {
    DWORD done = 0;
    ::WriteFile(handleOf(handle_), bytes.data(), static_cast<DWORD>(bytes.size()), &done, nullptr);
    benchCheck(done == bytes.size(), "cannot write a file");
}

void FloorFile::flush() { ::FlushFileBuffers(handleOf(handle_)); }

void floorMove(const FloorPath& from, const FloorPath& to) {
    benchCheck(::MoveFileExW(from.c_str(), to.c_str(), MOVEFILE_REPLACE_EXISTING) != FALSE,
               "cannot move a file");
}

FloorMutex::FloorMutex(const char* name)
    : handle_(reinterpret_cast<std::intptr_t>(
          ::CreateMutexW(nullptr, FALSE, wideForTests(std::string("Global\\") + name).c_str()))) {}

FloorMutex::~FloorMutex() { ::CloseHandle(handleOf(handle_)); }

void FloorMutex::lock() { ::WaitForSingleObject(handleOf(handle_), INFINITE); }

void FloorMutex::unlock() { ::ReleaseMutex(handleOf(handle_)); }
