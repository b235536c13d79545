#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <string_view>

#include "support/Platform.h"

namespace fs = std::filesystem;

int ownProcessId() { return ::getpid(); }

std::string ownProgram() { return fs::read_symlink("/proc/self/exe").u8string(); }

std::vector<std::string> utf8Arguments(int argc, char** argv) { return {argv, argv + argc}; }

void breakQuietly() {}

fs::path systemPath(const std::string& path) {
    constexpr std::string_view kLongPrefix = "\\\\?\\";
    std::string text = path.substr(path.rfind(kLongPrefix, 0) == 0 ? kLongPrefix.size() : 0);
    if (text.size() > 1 && text[1] == ':') text.erase(0, 2);
    std::replace(text.begin(), text.end(), '\\', '/');
    return fs::u8path(text);
}

std::string productPath(const fs::path& path) {
    std::string text = path.u8string();
    std::replace(text.begin(), text.end(), '/', '\\');
    return path.is_absolute() ? "C:" + text : text;
}

fs::path longSystemPath(const std::string& path) { return systemPath(path); }

int closeSignals() { return 2; }

std::string systemErrorText(int error) { return std::strerror(error); }

// What the program has allocated; 0 where a sanitizer does the allocating.
