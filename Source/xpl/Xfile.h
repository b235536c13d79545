#ifndef XPL_XFILE_H
#define XPL_XFILE_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "xpl/Xerr.h"

// How a file is opened. Every mode shares reading, writing and deleting.
enum class XfileMode : std::uint32_t {
    Read = 1,       // must exist
    ReadWrite = 2,  // created when missing
    Append = 3,     // append only, created when missing; concurrent writes do not mix
    WriteNew = 4,   // created, or emptied when it exists
    Update = 5,     // read and write; must exist
};

// Whether child processes inherit the handle. A child that inherits it keeps the file open until it
// ends, and an open file cannot always be replaced: use Private for files that are open for one
// operation only.
enum class XfileSharing : std::uint32_t { Inherited, Private };

enum class XfileSeekFrom : std::uint32_t { Begin = 0, Current = 1, End = 2 };

// An open file, or none. The destructor closes it.
class Xfile {
 public:
    Xfile() = default;
    ~Xfile();
    Xfile(Xfile&& other) noexcept;
    Xfile& operator=(Xfile&& other) noexcept;
    Xfile(const Xfile&) = delete;
    Xfile& operator=(const Xfile&) = delete;

    bool isOpen() const { return handle_ != nullptr; }

    // The system handle, null when closed. For the functions below.
    void* handle() const { return handle_; }
    void adopt(void* handle);

    // Windows error of the function below that last failed on this object: a status can stand for
    // several Windows errors.
    std::int32_t windowsError() const { return windowsError_; }
    void setWindowsError(std::int32_t windowsError) { windowsError_ = windowsError; }

 private:
    void* handle_ = nullptr;
    std::int32_t windowsError_ = 0;
};

// Paths are UTF-8, of any length. Every function returns the translated Windows error and logs
// nothing, except for the flush warning of the two moves.

// Opens `path`. In every mode but Read, first creates the folders before the last "\" ("/" does not
// count here); if that fails, the open reports the error. An invalid mode opens like Read, but
// creates the folders.
[[nodiscard]] XErr xfileOpen(Xfile& file, const std::string& path, XfileMode mode,
                             XfileSharing sharing = XfileSharing::Inherited);

// One read or write call. `done` is the count of bytes moved.
[[nodiscard]] XErr xfileRead(Xfile& file, void* buffer, std::uint32_t length, std::uint32_t& done);
[[nodiscard]] XErr xfileWrite(Xfile& file, const void* buffer, std::uint32_t length,
                              std::uint32_t& done);

// Repeats the call until everything is done. Returns 61 (XERR_NODATA) at the end of the file.
// `done` is set after a failure too.
[[nodiscard]] XErr xfileReadAll(Xfile& file, void* buffer, std::size_t length, std::size_t& done);
[[nodiscard]] XErr xfileWriteAll(Xfile& file, const void* buffer, std::size_t length,
                                 std::size_t& done);

// The Windows errors of opening and of reading a file; 0 for none.
struct XfileReadErrors {
    std::int32_t open = 0;
    std::int32_t bytes = 0;
};

// Reads a whole file of less than 2 GiB through a private handle. When another process may be using
// it (Windows errors 5, 32 and 33), retries up to 10 times within half a second. `content` is what
// the last attempt read.
[[nodiscard]] XfileReadErrors xfileReadWithRetry(const std::string& path, std::string& content);

// Closes the file, if it is open. Closing cannot fail.
void xfileClose(Xfile& file);

[[nodiscard]] XErr xfileSize(Xfile& file, std::int64_t& size);
[[nodiscard]] XErr xfileSeek(Xfile& file, std::int64_t distance, XfileSeekFrom from,
                             std::int64_t& position);

// 0 when a file or folder with that path exists.
[[nodiscard]] XErr xfileExists(const std::string& path);
[[nodiscard]] XErr xfileSizeOfPath(const std::string& path, std::int64_t& size);

struct XfileAttributes {
    bool isFolder = false;
    bool isReadOnly = false;
};

// Attributes of a file or folder, however its path is spelled.
[[nodiscard]] XErr xfileAttributes(const std::string& path, XfileAttributes& attributes);

[[nodiscard]] XErr xfileDelete(const std::string& path);
[[nodiscard]] XErr xfileRemoveFolder(const std::string& path);

// Creates one folder, whose parent must exist. Succeeds when the folder exists.
[[nodiscard]] XErr xfileCreateFolder(const std::string& path);

// The same, but returns 98 (XERR_ADDRINUSE) when the path exists.
[[nodiscard]] XErr xfileCreateNewFolder(const std::string& path);

// Creates every missing folder of a path. Both "/" and "\" are separators. Drives and shares are
// never created.
[[nodiscard]] XErr xfileMakeFolders(const std::string& path);

// Flushes a file's data to the disk, through a private handle. The file must exist; missing folders
// are created, as by every open for writing.
[[nodiscard]] XErr xfileFlush(const std::string& path);

// Flushes `source`, then moves it to `destination`, replacing an existing file. If the flush fails,
// logs a warning and moves the file anyway.
[[nodiscard]] XErr xfileMove(const std::string& source, const std::string& destination);

// The same, for a destination that another process (a scanner, a reader) may be using: retries a
// refused move (Windows errors 5, 32 and 33) up to 10 times within half a second.
[[nodiscard]] XErr xfileMoveWithRetry(const std::string& source, const std::string& destination);

// A path in the form that the system and Qt take. On Windows it is unchanged.
std::string xfileSystemPath(const std::string& path);

// The folder that xfileOpen creates: the part before the last "\", or nothing.
std::string_view xfileFolderPart(std::string_view path);

// The form of `path` that is passed to Windows; `absolute` is its absolute form. From 248
// characters on, which Windows refuses for a folder, this is the long-path form ("\\?\C:\a",
// "\\?\UNC\server\share\a"). Shorter paths, long-path forms and device paths ("\\.\") are
// unchanged.
std::wstring xfileWindowsPath(std::wstring_view path, std::wstring_view absolute);

// The folders of an absolute path, shortest first, in the long-path form ("\\?\C:\a",
// "\\?\C:\a\b"), without the root.
std::vector<std::wstring> xfileFolderChain(std::wstring_view absolutePath);

#endif
