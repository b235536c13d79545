#include "support/SystemAbilities.h"

#include <filesystem>
#include <system_error>

#include "support/Platform.h"
#include "support/TempFolder.h"

namespace fs = std::filesystem;

bool readOnlyFilesAreReplaced() {
    const TempFolder folder;
    const fs::path from = systemPath(folder.write("from", "new"));
    const fs::path to = systemPath(folder.write("to", "old"));
    fs::permissions(to, fs::perms::owner_read | fs::perms::group_read);
    std::error_code error;
    fs::rename(from, to, error);
    fs::permissions(to, fs::perms::all);
    return folder.read("to") == "new";
}
