#ifndef APPC_APPCFILES_H
#define APPC_APPCFILES_H

#include <cstdint>
#include <string>
#include <string_view>

#include "xpl/Xerr.h"
#include "xpl/XtemporaryFile.h"

enum class AppcWrite { Done, OpenFailed, WriteFailed };

// The file operations of the app cache: the disk, or what a test puts in its place to make an
// operation fail, or the process end in the middle of one. Paths are UTF-8. A folder is never
// moved.
class AppcFiles : public XfileReplacer {
 public:
    // Reads a whole file, waiting up to half a second for another process that holds it. Returns
    // the Windows error of the opening, or of the bytes if they are held; else 0. A read that fails
    // for another reason leaves in `content` what came before, and nothing of a file of 2 GiB or
    // more.
    [[nodiscard]] virtual std::int32_t read(const std::string& path, std::string& content) = 0;

    // Creates one folder; an existing one is no error.
    [[nodiscard]] virtual XErr makeFolder(const std::string& path) = 0;

    // Whether a file may be moved to there: nothing is there, or a file that may be written. True
    // as well for what may not be looked at: the move decides.
    [[nodiscard]] virtual bool isReplaceable(const std::string& path) = 0;

    // Creates or empties a file, writes it and closes it.
    [[nodiscard]] virtual AppcWrite write(const std::string& path, std::string_view text) = 0;
};

// The disk.
AppcFiles& appcDiskFiles();

// The system's text for a Windows error, in the user's language.
std::string appcErrorText(std::int32_t windowsError);

#endif
