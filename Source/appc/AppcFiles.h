#ifndef APPC_APPCFILES_H
#define APPC_APPCFILES_H

#include <string>
#include <string_view>

#include "xpl/Xerr.h"

enum class AppcWrite { Done, OpenFailed, WriteFailed };

// The file operations of the app cache: the disk, or what a test puts in its place to make an
// operation fail, or the process end in the middle of one. Paths are UTF-8.
class AppcFiles {
 public:
    virtual ~AppcFiles() = default;

    // Reads a whole file. The status is that of the opening: a read that fails later leaves in
    // `content` what came before, and nothing of a file of 2 GiB or more.
    [[nodiscard]] virtual XErr read(const std::string& path, std::string& content) = 0;

    // Creates one folder; an existing one is no error.
    [[nodiscard]] virtual XErr makeFolder(const std::string& path) = 0;

    // Whether a file may be moved to there: nothing is there, or a file that may be written.
    [[nodiscard]] virtual bool isReplaceable(const std::string& path) = 0;

    // Creates or empties a file, writes it and closes it.
    [[nodiscard]] virtual AppcWrite write(const std::string& path, std::string_view text) = 0;

    // Moves a file, never a folder, onto another one or to where nothing is.
    [[nodiscard]] virtual XErr move(const std::string& source, const std::string& destination) = 0;

    // Deletes a file, if it is there and can be deleted.
    virtual void remove(const std::string& path) = 0;
};

// The disk.
AppcFiles& appcDiskFiles();

// The system's text for a status of a file operation, in the user's language.
std::string appcErrorText(XErr err);

#endif
