// The part of the file module that is the same on every system.
#include "xpl/Xfile.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "xpl/XfileSystem.h"
#include "xpl/Xlog.h"

namespace {

constexpr XlogModule kLog{XlogTag::XFILE, "Source/xpl/Xfile"};

constexpr int kHeldRetries = 10;

constexpr std::int64_t kLargestWhole = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t kFileTooLarge = 223;  // a Windows error

// A system call takes a 32-bit length.
std::uint32_t pieceOf(std::size_t length) {
    return static_cast<std::uint32_t>(
        std::min<std::size_t>(length, std::numeric_limits<std::uint32_t>::max()));
}

XErr moveFile(const std::string& source, const std::string& destination, int retries) {
    if (const XErr err = xfileFlush(source); err != XERR_SUCCESS) {
        XLOG_W(kLog, "Error in flushing file %s to disk. Error = %d", source.c_str(), err);
    }
    return xfileSystemReplace(source, destination, retries);
}

// Reads an open file. Returns the Windows error, or 0.
std::int32_t readWhole(Xfile& file, std::string& content) {
    std::int64_t size = 0;
    if (xfileSize(file, size) != XERR_SUCCESS) return file.windowsError();
    if (size > kLargestWhole) return kFileTooLarge;
    content.resize(static_cast<std::size_t>(size));
    std::size_t done = 0;
    const XErr err = xfileReadAll(file, content.data(), content.size(), done);
    content.resize(done);
    // End of file is not an error: the file may have become shorter since its size was read.
    return err == XERR_SUCCESS || err == XERR_NODATA ? 0 : file.windowsError();
}

XfileReadErrors openAndRead(const std::string& path, std::string& content) {
    content.clear();
    Xfile file;
    if (xfileOpen(file, path, XfileMode::Read, XfileSharing::Private) != XERR_SUCCESS) {
        return {file.windowsError(), 0};
    }
    return {0, readWhole(file, content)};
}

}  // namespace

Xfile::~Xfile() { xfileClose(*this); }

Xfile::Xfile(Xfile&& other) noexcept : handle_(std::exchange(other.handle_, nullptr)) {}

Xfile& Xfile::operator=(Xfile&& other) noexcept {
    if (this != &other) adopt(std::exchange(other.handle_, nullptr));
    return *this;
}

XErr xfileOpen(Xfile& file, const std::string& path, XfileMode mode, XfileSharing sharing) {
    if (mode != XfileMode::Read) {
        const std::string folder(xfileFolderPart(path));
        if (!folder.empty() && xfileExists(folder) != XERR_SUCCESS) {
            static_cast<void>(xfileMakeFolders(folder));  // the open reports the real outcome
        }
    }
    return xfileSystemOpen(file, path, mode, sharing);
}

XErr xfileReadAll(Xfile& file, void* buffer, std::size_t length, std::size_t& done) {
    done = 0;
    while (done < length) {
        std::uint32_t moved = 0;
        const XErr err =
            xfileRead(file, static_cast<char*>(buffer) + done, pieceOf(length - done), moved);
        done += moved;
        if (err != XERR_SUCCESS) return err;
        if (moved == 0) return XERR_NODATA;
    }
    return XERR_SUCCESS;
}

XErr xfileWriteAll(Xfile& file, const void* buffer, std::size_t length, std::size_t& done) {
    done = 0;
    while (done < length) {
        std::uint32_t moved = 0;
        const XErr err = xfileWrite(file, static_cast<const char*>(buffer) + done,
                                    pieceOf(length - done), moved);
        done += moved;
        if (err != XERR_SUCCESS) return err;
        if (moved == 0) return XERR_IO;  // else this would loop forever
    }
    return XERR_SUCCESS;
}

void xfileClose(Xfile& file) { file.adopt(nullptr); }

XErr xfileMove(const std::string& source, const std::string& destination) {
    return moveFile(source, destination, /*retries=*/0);
}

XErr xfileMoveWithRetry(const std::string& source, const std::string& destination) {
    return moveFile(source, destination, kHeldRetries);
}

XfileReadErrors xfileReadWithRetry(const std::string& path, std::string& content) {
    for (int attempt = 0;; ++attempt) {
        const XfileReadErrors errors = openAndRead(path, content);
        const std::int32_t error = errors.open != 0 ? errors.open : errors.bytes;
        if (attempt == kHeldRetries || !xfileSystemWaitForHolder(error)) return errors;
    }
}
