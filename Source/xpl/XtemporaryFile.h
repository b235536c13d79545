#ifndef XPL_XTEMPORARYFILE_H
#define XPL_XTEMPORARYFILE_H

#include <string>

#include "xpl/Xerr.h"
#include "xpl/Xlog.h"

// What putting a new file in an old one's place asks of the file operations: of the disk's, or of
// what a test puts in their place.
class XfileReplacer {
 public:
    virtual ~XfileReplacer() = default;

    // Flushes a file and moves it onto another one or to where nothing is, waiting up to half a
    // second for another process that holds either.
    [[nodiscard]] virtual XErr replace(const std::string& source,
                                       const std::string& destination) = 0;

    // Deletes a file, if it is there and can be deleted.
    virtual void remove(const std::string& path) = 0;
};

// A file that is written to take an old one's place. It is deleted at the end unless it did.
class XtemporaryFile {
 public:
    // A deletion that throws is logged for this module and function; the file then stays.
    XtemporaryFile(XfileReplacer& files, std::string path, const XlogModule& module,
                   const char* function);
    ~XtemporaryFile();
    XtemporaryFile(const XtemporaryFile&) = delete;
    XtemporaryFile& operator=(const XtemporaryFile&) = delete;

    const std::string& path() const { return path_; }

    // To be set before the file is created, which may throw after creating it; and again when it
    // turns out that it was not.
    void setExists(bool exists) { exists_ = exists; }

    // Puts the file, which nobody has open any more, in the place of another one.
    [[nodiscard]] XErr moveOnto(const std::string& path);

 private:
    XfileReplacer& files_;
    const std::string path_;
    const XlogModule& module_;
    const char* const function_;
    bool exists_ = false;
};

#endif
