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
    Append = 3,     // append only, created when missing: one write call is one piece in the file
    WriteNew = 4,   // created, or emptied when it exists
    Update = 5,     // read and write; must exist
};

// Whether child processes receive the open file. A child that inherits handles keeps the file open
// for its whole life, and a file that any process has open cannot always be replaced: files that
// are open for one operation only are private.
enum class XfileSharing : std::uint32_t { Inherited, Private };

enum class XfileSeekFrom : std::uint32_t { Begin = 0, Current = 1, End = 2 };

// An open file, or none. Closes itself.
class Xfile {
 public:
    Xfile() = default;
    ~Xfile();
    Xfile(Xfile&& other) noexcept;
    Xfile& operator=(Xfile&& other) noexcept;
    Xfile(const Xfile&) = delete;
    Xfile& operator=(const Xfile&) = delete;

    bool isOpen() const { return handle_ != nullptr; }

    // The system's handle; null when closed. For the functions below.
    void* handle() const { return handle_; }
    void adopt(void* handle);

    // What Windows said when one of the functions below just failed on this object: a status can
    // stand for several Windows errors.
    std::int32_t windowsError() const { return windowsError_; }
    void setWindowsError(std::int32_t windowsError) { windowsError_ = windowsError; }

 private:
    void* handle_ = nullptr;
    std::int32_t windowsError_ = 0;
};

// Paths are UTF-8, of any length. Every operation answers the translated Windows error and logs
// nothing, except for the flush warning of the two moves.

// Opens `path`. In every mode but Read, a missing folder before the last "\" is created first
// ("/" does not count in this step); the open reports the real outcome. A mode that is none of the
// five opens like Read, and creates the folder all the same.
[[nodiscard]] XErr xfileOpen(Xfile& file, const std::string& path, XfileMode mode,
                             XfileSharing sharing = XfileSharing::Inherited);

// One read or write call. `done` is the count of bytes moved.
[[nodiscard]] XErr xfileRead(Xfile& file, void* buffer, std::uint32_t length, std::uint32_t& done);
[[nodiscard]] XErr xfileWrite(Xfile& file, const void* buffer, std::uint32_t length,
                              std::uint32_t& done);

// Repeats the call until everything is done; a file that ends early gives 61 (XERR_NODATA).
// `done` tells how far it came, after a failure too.
[[nodiscard]] XErr xfileReadAll(Xfile& file, void* buffer, std::size_t length, std::size_t& done);
[[nodiscard]] XErr xfileWriteAll(Xfile& file, const void* buffer, std::size_t length,
                                 std::size_t& done);

// The Windows errors that kept a file from being opened and its bytes from being read; 0 for none.
struct XfileReadErrors {
    std::int32_t open = 0;
    std::int32_t bytes = 0;
};

// Reads a whole file of less than 2 GiB through a private handle. One that another process may be
// holding for a moment (Windows errors 5, 32 and 33, of the open or of the bytes) is tried up to 10
// times more within half a second. `content` is what the last attempt read.
[[nodiscard]] XfileReadErrors xfileReadWithRetry(const std::string& path, std::string& content);

// Closes the file; does nothing when it is closed. Closing has no status.
void xfileClose(Xfile& file);

[[nodiscard]] XErr xfileSize(Xfile& file, std::int64_t& size);
[[nodiscard]] XErr xfileSeek(Xfile& file, std::int64_t distance, XfileSeekFrom from,
                             std::int64_t& position);

// 0 when something, a file or a folder, has that path.
[[nodiscard]] XErr xfileExists(const std::string& path);
[[nodiscard]] XErr xfileSizeOfPath(const std::string& path, std::int64_t& size);

struct XfileAttributes {
    bool isFolder = false;
    bool isReadOnly = false;
};

// What the system says of a file or a folder, however the path to it is spelled.
[[nodiscard]] XErr xfileAttributes(const std::string& path, XfileAttributes& attributes);

[[nodiscard]] XErr xfileDelete(const std::string& path);
[[nodiscard]] XErr xfileRemoveFolder(const std::string& path);

// Creates one folder, whose parent must exist; a folder that exists already is a success.
[[nodiscard]] XErr xfileCreateFolder(const std::string& path);

// The same, but something that exists already is 98 (XERR_ADDRINUSE).
[[nodiscard]] XErr xfileCreateNewFolder(const std::string& path);

// Creates every missing folder along a path, "/" and "\" both separating. The root of a drive and
// the share of a UNC path are never created.
[[nodiscard]] XErr xfileMakeFolders(const std::string& path);

// Writes a file's data to the disk, through a private handle. The file must exist; its missing
// folder is made all the same, as by every open that may write.
[[nodiscard]] XErr xfileFlush(const std::string& path);

// Flushes `source` and moves it onto `destination`, replacing what is there. A failed flush is
// logged as a warning, and the move goes on.
[[nodiscard]] XErr xfileMove(const std::string& source, const std::string& destination);

// The same for a destination that another process may be holding for a moment (a scanner, a
// reader): a refused move (Windows errors 5, 32 and 33) is tried up to 10 times more within half a
// second.
[[nodiscard]] XErr xfileMoveWithRetry(const std::string& source, const std::string& destination);

// A path as the system's own functions and Qt's take it: Windows takes the product's as they are.
std::string xfileSystemPath(const std::string& path);

// The folder that xfileOpen creates: what stands before the last "\", or nothing.
std::string_view xfileFolderPart(std::string_view path);

// What Windows is handed for `path`, whose absolute form is `absolute`: from 248 characters on, the
// length that it refuses for a folder, the absolute form in the long-path form
// ("\\?\C:\a", "\\?\UNC\server\share\a"), which has no such limit; else the path as it is. A path
// in the long-path form, or one of a device ("\\.\"), stays as it is.
std::wstring xfileWindowsPath(std::wstring_view path, std::wstring_view absolute);

// The folders of an absolute path, shortest first, in the long-path form ("\\?\C:\a",
// "\\?\C:\a\b"), without the root.
std::vector<std::wstring> xfileFolderChain(std::wstring_view absolutePath);

#endif
