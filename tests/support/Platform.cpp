#include "support/Platform.h"

#include <system_error>

namespace fs = std::filesystem;

InFolder::InFolder(const std::string& path) : before_(fs::current_path()) {
    fs::current_path(systemPath(path));
}

InFolder::~InFolder() {
    std::error_code ignored;
    fs::current_path(before_, ignored);
}
