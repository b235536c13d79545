#ifndef APPC_APPCFILES_H
#define APPC_APPCFILES_H

#include <cstdint>
#include <string>
#include <string_view>

#include "xpl/Xerr.h"
#include "xpl/XtemporaryFile.h"

enum class AppcWrite { Done, OpenFailed, WriteFailed };

// The file operations of the app cache: the disk's, or a test's substitute that fails or ends the
// process. Paths are UTF-8. A folder is never moved.
class AppcFiles : public XfileReplacer {
 public:
    // Reads a whole file, waiting up to half a second for another process that uses it. Returns the
    // Windows error of the open, or of the read if the bytes are locked, else 0. When the read
    // fails for another reason, `content` is what was read before, and empty for a file of 2 GiB or
    // more.
    [[nodiscard]] virtual std::int32_t read(const std::string& path, std::string& content) = 0;

    // Creates one folder. An existing folder is not an error.
    [[nodiscard]] virtual XErr makeFolder(const std::string& path) = 0;

    // Whether a file can be moved to this path: nothing is there, or a writable file. Also true
    // when the path cannot be examined: the move decides.
    [[nodiscard]] virtual bool isReplaceable(const std::string& path) = 0;

    // Creates or empties a file, writes it and closes it.
    [[nodiscard]] virtual AppcWrite write(const std::string& path, std::string_view text) = 0;
};

// The disk.
AppcFiles& appcDiskFiles();

// The system's text for a Windows error, in the user's language.
std::string appcErrorText(std::int32_t windowsError);

#endif
