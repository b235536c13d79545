// Path manipulation of the file module. Touches no file.
#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "xpl/Xfile.h"

namespace {

constexpr std::wstring_view kLongPrefix = L"\\\\?\\";
constexpr std::wstring_view kLongUncPrefix = L"\\\\?\\UNC\\";
constexpr std::wstring_view kUncPrefix = L"\\\\";
constexpr std::wstring_view kDevicePrefix = L"\\\\.\\";
constexpr std::wstring_view kUncRoot = L"UNC\\";

// MAX_PATH less the room that Windows reserves for an 8.3 file name in a folder.
constexpr std::size_t kLongPathLength = 248;

bool startsWith(std::wstring_view text, std::wstring_view prefix) {
    return text.substr(0, prefix.size()) == prefix;
}

// The same, ignoring the case of the text. The prefix is in capitals.
bool startsWithLetters(std::wstring_view text, std::wstring_view prefix) {
    constexpr auto isSame = [](wchar_t capital, wchar_t c) {
        return c == capital || (c >= L'a' && c <= L'z' && c - L'a' + L'A' == capital);
    };
    return text.size() >= prefix.size() &&
           std::equal(prefix.begin(), prefix.end(), text.begin(), isSame);
}

// Whether this is a long-path form or a device path.
bool isLongOrDevice(std::wstring_view path) {
    return startsWith(path, kLongPrefix) || startsWith(path, kDevicePrefix);
}

// A path's root, which cannot be created ("\\?\C:", "\\?\UNC\server\share"), and the rest.
struct SplitPath {
    std::wstring root;
    std::wstring_view rest;
};

// The text before the `count`th separator of `path`, and what follows it.
SplitPath cutAfterComponents(std::wstring_view prefix, std::wstring_view path, int count) {
    std::size_t end = 0;
    for (int i = 0; i < count && end != std::wstring_view::npos; ++i) {
        end = path.find(L'\\', i == 0 ? 0 : end + 1);
    }
    if (end == std::wstring_view::npos) return {std::wstring(prefix).append(path), {}};
    return {std::wstring(prefix).append(path.substr(0, end)), path.substr(end + 1)};
}

SplitPath splitRoot(std::wstring_view path) {
    if (isLongOrDevice(path)) {
        const std::wstring_view inside = path.substr(kLongPrefix.size());
        if (!startsWithLetters(inside, kUncRoot)) {
            return cutAfterComponents(kLongPrefix, inside, 1);
        }
        return cutAfterComponents(kLongUncPrefix, inside.substr(kUncRoot.size()), 2);
    }
    if (startsWith(path, kUncPrefix)) {
        return cutAfterComponents(kLongUncPrefix, path.substr(kUncPrefix.size()), 2);
    }
    return cutAfterComponents(kLongPrefix, path, 1);
}

}  // namespace

std::string_view xfileFolderPart(std::string_view path) {
    const std::size_t separator = path.rfind('\\');
    return separator == std::string_view::npos ? std::string_view{} : path.substr(0, separator);
}

std::wstring xfileWindowsPath(std::wstring_view path, std::wstring_view absolute) {
    if (absolute.size() < kLongPathLength || isLongOrDevice(path)) return std::wstring(path);
    if (isLongOrDevice(absolute)) return std::wstring(absolute);
    if (!startsWith(absolute, kUncPrefix)) return std::wstring(kLongPrefix).append(absolute);
    return std::wstring(kLongUncPrefix).append(absolute.substr(kUncPrefix.size()));
}

std::vector<std::wstring> xfileFolderChain(std::wstring_view absolutePath) {
    auto [folder, rest] = splitRoot(absolutePath);
    std::vector<std::wstring> chain;
    while (!rest.empty()) {
        const std::size_t end = rest.find(L'\\');
        const std::wstring_view name = rest.substr(0, end);
        rest = end == std::wstring_view::npos ? std::wstring_view{} : rest.substr(end + 1);
        if (name.empty()) continue;
        folder.append(L"\\").append(name);
        chain.push_back(folder);
    }
    return chain;
}
