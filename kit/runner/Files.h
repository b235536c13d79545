#ifndef KIT_FILES_H
#define KIT_FILES_H

#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>

#include "Manifest.h"

// A path of the system for UTF-8, and back.
std::filesystem::path pathOf(std::string_view text);
std::string textOf(const std::filesystem::path& path);

// The whole file; empty when it cannot be read.
std::string readFile(const std::filesystem::path& path);

// The last so many bytes of it.
std::string readEnd(const std::filesystem::path& path, std::size_t bytes);

bool writeFile(const std::filesystem::path& path, std::string_view content);

// Copies everything in a folder.
bool copyFolder(const std::filesystem::path& from, const std::filesystem::path& to);

// The SHA-256 of a file.
FileDigest fileDigest(const std::filesystem::path& path);

#endif
