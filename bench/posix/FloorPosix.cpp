#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>

#include "Bench.h"
#include "Floor.h"

namespace {

int descriptorOf(std::intptr_t handle) { return static_cast<int>(handle); }

int flagsOf(FloorFile::Mode mode) {
    if (mode == FloorFile::Append) return O_WRONLY | O_APPEND | O_CREAT;
    return mode == FloorFile::Read ? O_RDONLY : O_WRONLY | O_CREAT | O_TRUNC;
}

}  // namespace

FloorFile::FloorFile(const FloorPath& path, Mode mode)
    : handle_(::open(path.c_str(), flagsOf(mode) | O_CLOEXEC, 0600)) {
    benchCheck(handle_ >= 0, "cannot open a file");
}

FloorFile::~FloorFile() { ::close(descriptorOf(handle_)); }

std::string FloorFile::read() {
    struct stat status {};
    ::fstat(descriptorOf(handle_), &status);
    std::string content(static_cast<std::size_t>(status.st_size), '\0');
    const ssize_t done = ::read(descriptorOf(handle_), content.data(), content.size());
    benchCheck(done == status.st_size, "cannot read a file");
    return content;
}

void FloorFile::write(std::string_view bytes) {
    const ssize_t done = ::write(descriptorOf(handle_), bytes.data(), bytes.size());
    benchCheck(done == static_cast<ssize_t>(bytes.size()), "cannot write a file");
}

void FloorFile::flush() { ::fsync(descriptorOf(handle_)); }

void floorMove(const FloorPath& from, const FloorPath& to) {
    benchCheck(::rename(from.c_str(), to.c_str()) == 0, "cannot move a file");
}

FloorMutex::FloorMutex(const char* name)
    : handle_(::open((std::filesystem::temp_directory_path() / name).c_str(),
                     O_RDWR | O_CREAT | O_CLOEXEC, 0600)) {}

FloorMutex::~FloorMutex() { ::close(descriptorOf(handle_)); }

void FloorMutex::lock() { ::flock(descriptorOf(handle_), LOCK_EX); }

void FloorMutex::unlock() { ::flock(descriptorOf(handle_), LOCK_UN); }
