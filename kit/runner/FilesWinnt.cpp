#include <cstddef>
#include <cstdio>
#include <fstream>
#include <ios>
#include <string>
#include <system_error>

#include "Files.h"
#include "Record.h"
#include "xpl/Xtext.h"

// Last: <bcrypt.h> needs it.
#include "xpl/XwindowsLean.h"

#include <bcrypt.h>

namespace fs = std::filesystem;

fs::path pathOf(std::string_view text) { return fs::u8path(text.begin(), text.end()); }

std::string textOf(const fs::path& path) { return xtextToUtf8(path.native()); }

std::string readFile(const fs::path& path) {
    std::error_code error;
    const auto size = fs::file_size(path, error);
    std::string content(error ? 0 : static_cast<std::size_t>(size), '\0');
    std::ifstream file(path, std::ios::binary);
    file.read(content.data(), static_cast<std::streamsize>(content.size()));
    content.resize(static_cast<std::size_t>(file.gcount()));
    return content;
}

std::string readEnd(const fs::path& path, std::size_t bytes) {
    std::string content = readFile(path);
    if (content.size() > bytes) content.erase(0, content.size() - bytes);
    return content;
}

bool writeFile(const fs::path& path, std::string_view content) {
    std::ofstream file(path, std::ios::binary);
    file.write(content.data(), static_cast<std::streamsize>(content.size()));
    return file.flush().good();
}

// CopyFileW is many times faster than a copy through streams.
bool copyFolder(const fs::path& from, const fs::path& to) {
    std::error_code error;
    fs::create_directories(to, error);
    for (fs::recursive_directory_iterator at(from, error), end; !error && at != end;
         at.increment(error)) {
        const fs::path target = to / fs::relative(at->path(), from, error);
        if (error) break;
        if (at->is_directory()) {
            fs::create_directories(target, error);
        } else if (!::CopyFileW(at->path().c_str(), target.c_str(), /*bFailIfExists=*/TRUE)) {
            return false;
        }
    }
    return !error;
}

namespace {

std::string hexadecimalOf(const unsigned char* bytes, std::size_t count) {
    std::string text;
    for (std::size_t i = 0; i < count; ++i) {
        char digits[3];
        std::snprintf(digits, sizeof digits, "%02x", bytes[i]);
        text += digits;
    }
    return text;
}

std::string sha256(std::string& content) {
    constexpr ULONG kSize = 32;
    BCRYPT_ALG_HANDLE algorithm = nullptr;
    if (::BCryptOpenAlgorithmProvider(&algorithm, BCRYPT_SHA256_ALGORITHM, nullptr, 0) < 0)
        return {};
    BCRYPT_HASH_HANDLE hash = nullptr;
    unsigned char digest[kSize] = {};
    bool isDone = ::BCryptCreateHash(algorithm, &hash, nullptr, 0, nullptr, 0, 0) >= 0;
    if (isDone) {
        isDone = ::BCryptHashData(hash, reinterpret_cast<PUCHAR>(content.data()),
                                  static_cast<ULONG>(content.size()), 0) >= 0 &&
                 ::BCryptFinishHash(hash, digest, kSize, 0) >= 0;
        ::BCryptDestroyHash(hash);
    }
    ::BCryptCloseAlgorithmProvider(algorithm, 0);
    return isDone ? hexadecimalOf(digest, kSize) : std::string();
}

}  // namespace

FileDigest fileDigest(const fs::path& path) {
    const HANDLE file = ::CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr,
                                      OPEN_EXISTING, 0, /*hTemplateFile=*/nullptr);
    if (file == INVALID_HANDLE_VALUE) {
        const DWORD error = ::GetLastError();
        const bool isMissing = error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND;
        return {"", isMissing ? "missing" : "cannot be opened: " + hexadecimal(error)};
    }
    ::CloseHandle(file);
    std::string content = readFile(path);
    const std::string digest = sha256(content);
    return {digest, digest.empty() ? "no SHA-256 on this system" : ""};
}
