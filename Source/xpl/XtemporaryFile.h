#ifndef XPL_XTEMPORARYFILE_H
#define XPL_XTEMPORARYFILE_H

#include <string>

#include "xpl/Xerr.h"
#include "xpl/Xlog.h"

// The file operations needed to replace a file. Tests substitute their own.
class XfileReplacer {
 public:
    virtual ~XfileReplacer() = default;

    // Flushes `source`, then moves it to `destination`, replacing an existing file. While another
    // process has either file open, retries for up to half a second.
    [[nodiscard]] virtual XErr replace(const std::string& source,
                                       const std::string& destination) = 0;

    // Deletes a file, if it exists and can be deleted.
    virtual void remove(const std::string& path) = 0;
};

// A file that will replace another. The destructor deletes it unless it was moved.
class XtemporaryFile {
 public:
    // When the deletion throws, logs that for this module and function; the file then stays.
    XtemporaryFile(XfileReplacer& files, std::string path, const XlogModule& module,
                   const char* function);
    ~XtemporaryFile();
    XtemporaryFile(const XtemporaryFile&) = delete;
    XtemporaryFile& operator=(const XtemporaryFile&) = delete;

    const std::string& path() const { return path_; }

    // Set this before creating the file, since the creation may throw after creating it; clear it
    // when the creation failed.
    void setExists(bool exists) { exists_ = exists; }

    // Moves the file, which must be closed, to another path.
    [[nodiscard]] XErr moveOnto(const std::string& path);

 private:
    XfileReplacer& files_;
    const std::string path_;
    const XlogModule& module_;
    const char* const function_;
    bool exists_ = false;
};

#endif
