// Files by UTF-8 path, over POSIX. Every path goes through xfileSystemPath, and every error through
// translated(), which returns what Windows would.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <string>
#include <string_view>

#include "xpl/Xerr.h"
#include "xpl/Xfile.h"
#include "xpl/XfileSystem.h"
#include "xpl/Xtext.h"

namespace {

constexpr std::int32_t kNegativeSeek = 131;
constexpr std::int32_t kNoUnicodeTranslation = 1113;

int openFlags(XfileMode mode) {
    switch (mode) {
        case XfileMode::ReadWrite:
            return O_RDWR | O_CREAT;
        case XfileMode::Append:
            return O_WRONLY | O_APPEND | O_CREAT;
        case XfileMode::WriteNew:
            return O_RDWR | O_CREAT | O_TRUNC;
        case XfileMode::Update:
            return O_RDWR;
        case XfileMode::Read:
            break;
    }
    return O_RDONLY;
}

// A handle is the descriptor plus one, since null means closed.
int descriptorOf(const Xfile& file) {
    return static_cast<int>(reinterpret_cast<std::intptr_t>(file.handle())) - 1;
}

void* handleOf(int descriptor) {
    // NOLINTNEXTLINE(performance-no-int-to-ptr): the handle of the interface is a pointer
    return reinterpret_cast<void*>(static_cast<std::intptr_t>(descriptor) + 1);
}

// The codes are errno values, except where Windows reports a failure differently.
XErr translated(int error) {
    switch (error) {
        case ENOTDIR:  // part of the path is not a folder
            return XERR_NOENT;
        case EISDIR:
            return XERR_ACCES;
        default:
            return error;
    }
}

// The Windows error of an errno value.
std::int32_t windowsErrorOf(int error) {
    switch (error) {
        case ENOENT:
            return 2;
        case ENOTDIR:
            return 3;
        case EMFILE:
        case ENFILE:
            return 4;
        case EACCES:
        case EPERM:
        case EISDIR:
            return 5;
        case EBADF:
            return 6;
        case ENOMEM:
            return 8;
        case EROFS:
            return 19;
        case EINVAL:
            return 87;
        case ENOSPC:
            return 112;
        case ENAMETOOLONG:
            return 206;
        case EIO:
            return 1117;
        default:
            return 31;  // a device does not function
    }
}

// Status of a failed call on a file.
XErr failed(Xfile& file, int error) {
    file.setWindowsError(windowsErrorOf(error));
    return translated(error);
}

XErr statusOf(int result) { return result == 0 ? XERR_SUCCESS : translated(errno); }

// Calls `call(systemPath)`, which returns 0 or sets errno.
template <typename Call>
XErr withPath(const std::string& path, Call call) {
    std::wstring ignored;  // as strict as Windows about UTF-8
    if (const XErr err = xtextToWide(path, ignored); err != XERR_SUCCESS) return err;
    return statusOf(call(xfileSystemPath(path).c_str()));
}

// Status of a read or write. EBADF means that the descriptor is not open for it: access denied.
XErr transferred(Xfile& file, ssize_t moved, std::uint32_t& done) {
    const int error = errno;
    done = moved < 0 ? 0 : static_cast<std::uint32_t>(moved);
    if (moved >= 0) return XERR_SUCCESS;
    return failed(file, error == EBADF && file.isOpen() ? EACCES : error);
}

// The result that a failed open returns to withPath.
int refused(Xfile& file, int error) {
    file.setWindowsError(windowsErrorOf(error));
    errno = error;
    return -1;
}

bool isFolder(const char* path) {
    struct stat data {};
    return ::stat(path, &data) == 0 && S_ISDIR(data.st_mode);
}

int makeFolder(const char* path) {
    const int result = ::mkdir(path, 0777);
    return result != 0 && errno == EEXIST ? 0 : result;
}

// The absolute path in the product's form. A drive alone means the current folder, as on Windows.
XErr absolutePath(const std::string& path, std::string& absolute) {
    if (path.empty()) return XERR_NOENT;
    absolute = xfileSystemPath(path);
    if (absolute.empty() || absolute.front() != '/') {
        char folder[4096];
        if (::getcwd(folder, sizeof folder) == nullptr) return translated(errno);
        absolute = std::string(folder) + "/" + absolute;
    }
    std::replace(absolute.begin(), absolute.end(), '/', '\\');
    if (absolute.substr(0, 2) != "\\\\") absolute.insert(0, "C:");
    return XERR_SUCCESS;
}

}  // namespace

std::string xfileSystemPath(const std::string& path) {
    if (path == "NUL") return "/dev/null";
    constexpr std::string_view kLongPrefix = "\\\\?\\";
    std::string mapped = path.substr(path.rfind(kLongPrefix, 0) == 0 ? kLongPrefix.size() : 0);
    if (mapped.size() > 1 && mapped[1] == ':') mapped.erase(0, 2);
    std::replace(mapped.begin(), mapped.end(), '\\', '/');
    return mapped;
}

void Xfile::adopt(void* handle) {
    if (handle_ != nullptr) ::close(descriptorOf(*this));
    handle_ = handle;
}

XErr xfileSystemOpen(Xfile& file, const std::string& path, XfileMode mode, XfileSharing sharing) {
    const int flags = openFlags(mode) | (sharing == XfileSharing::Private ? O_CLOEXEC : 0);
    file.setWindowsError(kNoUnicodeTranslation);  // reported when the path cannot be converted
    return withPath(path, [&file, flags](const char* system) {
        const int descriptor = ::open(system, flags, 0666);
        if (descriptor < 0) return refused(file, errno);
        if (isFolder(system)) {  // which POSIX would open for reading
            ::close(descriptor);
            return refused(file, EISDIR);
        }
        file.adopt(handleOf(descriptor));
        return 0;
    });
}

XErr xfileRead(Xfile& file, void* buffer, std::uint32_t length, std::uint32_t& done) {
    return transferred(file, ::read(descriptorOf(file), buffer, length), done);
}

XErr xfileWrite(Xfile& file, const void* buffer, std::uint32_t length, std::uint32_t& done) {
    return transferred(file, ::write(descriptorOf(file), buffer, length), done);
}

XErr xfileSize(Xfile& file, std::int64_t& size) {
    struct stat data {};
    if (::fstat(descriptorOf(file), &data) != 0) return failed(file, errno);
    size = data.st_size;
    return XERR_SUCCESS;
}

XErr xfileSeek(Xfile& file, std::int64_t distance, XfileSeekFrom from, std::int64_t& position) {
    constexpr int kFrom[] = {SEEK_SET, SEEK_CUR, SEEK_END};
    const off_t reached =
        ::lseek(descriptorOf(file), distance, kFrom[static_cast<std::uint32_t>(from)]);
    if (reached < 0 && errno == EINVAL) {
        file.setWindowsError(kNegativeSeek);
        return xerrFromWindows(kNegativeSeek);
    }
    if (reached < 0) return failed(file, errno);
    position = reached;
    return XERR_SUCCESS;
}

XErr xfileExists(const std::string& path) {
    return withPath(path, [](const char* system) { return ::access(system, F_OK); });
}

XErr xfileSizeOfPath(const std::string& path, std::int64_t& size) {
    return withPath(path, [&size](const char* system) {
        struct stat data {};
        if (::stat(system, &data) != 0) return -1;
        size = data.st_size;
        return 0;
    });
}

XErr xfileDelete(const std::string& path) {
    return withPath(path, [](const char* system) { return ::unlink(system); });
}

XErr xfileRemoveFolder(const std::string& path) {
    return withPath(path, [](const char* system) { return ::rmdir(system); });
}

XErr xfileCreateFolder(const std::string& path) { return withPath(path, makeFolder); }

XErr xfileMakeFolders(const std::string& path) {
    std::string absolute;
    std::wstring wide;
    if (const XErr err = absolutePath(path, absolute); err != XERR_SUCCESS) return err;
    if (const XErr err = xtextToWide(absolute, wide); err != XERR_SUCCESS) return err;
    for (const std::wstring& folder : xfileFolderChain(wide)) {
        const std::string narrow = xtextToUtf8(folder);
        if (xfileExists(narrow) == XERR_SUCCESS) continue;
        if (const XErr err = xfileCreateFolder(narrow); err != XERR_SUCCESS) return err;
    }
    return XERR_SUCCESS;
}

XErr xfileFlush(const std::string& path) {
    Xfile file;
    const XErr err = xfileOpen(file, path, XfileMode::Update, XfileSharing::Private);
    if (err != XERR_SUCCESS) return err;
    return statusOf(::fsync(descriptorOf(file)));
}

// POSIX has no sharing violations.
XErr xfileSystemReplace(const std::string& source, const std::string& destination,
                        int /*retries*/) {
    return withPath(source, [&destination](const char* from) {
        const std::string to = xfileSystemPath(destination);
        if (!isFolder(to.c_str())) return std::rename(from, to.c_str());
        errno = EACCES;  // on Windows a folder is never replaced
        return -1;
    });
}

XErr xfileAttributes(const std::string& path, XfileAttributes& attributes) {
    return withPath(path, [&attributes](const char* system) {
        struct stat data {};
        if (::stat(system, &data) != 0) return -1;
        attributes = {S_ISDIR(data.st_mode), ::access(system, W_OK) != 0};
        return 0;
    });
}

XErr xfileCreateNewFolder(const std::string& path) {
    const XErr err = withPath(path, [](const char* system) { return ::mkdir(system, 0777); });
    return err == XERR_EXIST ? XERR_ADDRINUSE : err;
}

// POSIX has no sharing violations.
bool xfileSystemWaitForHolder(std::int32_t /*windowsError*/) { return false; }
