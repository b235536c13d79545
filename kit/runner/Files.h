#ifndef KIT_FILES_H
#define KIT_FILES_H

#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>

#include "Manifest.h"

// Converts UTF-8 to a path of the system, and back.
std::filesystem::path pathOf(std::string_view text);
std::string textOf(const std::filesystem::path& path);

// The content of a file; empty if it cannot be read.
std::string readFile(const std::filesystem::path& path);

// At most this number of bytes from its end.
std::string readEnd(const std::filesystem::path& path, std::size_t bytes);

bool writeFile(const std::filesystem::path& path, std::string_view content);

// Copies a folder with its content.
bool copyFolder(const std::filesystem::path& from, const std::filesystem::path& to);

// The SHA-256 of a file.
FileDigest fileDigest(const std::filesystem::path& path);

#endif
