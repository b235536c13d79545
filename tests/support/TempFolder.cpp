#include "support/TempFolder.h"

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <fstream>
#include <ios>
#include <iterator>
#include <stdexcept>
#include <system_error>

#include "support/Platform.h"

namespace fs = std::filesystem;

TempFolder::TempFolder() {
    static std::atomic<int> count{0};
    const fs::path folder = fs::temp_directory_path() / ("qxb-" + std::to_string(ownProcessId()) +
                                                         "-" + std::to_string(++count));
    fs::remove_all(folder);
    fs::create_directories(folder);
    path_ = productPath(folder);
}

TempFolder::~TempFolder() {
    std::error_code ignored;
    fs::remove_all(longSystemPath(path_), ignored);
}

std::string TempFolder::operator/(std::string_view name) const {
    return path_ + "\\" + std::string(name);
}

std::string TempFolder::write(std::string_view name, std::string_view content) const {
    const fs::path path = systemPath(*this / name);
    if (!std::ofstream(path, std::ios::app)) fs::create_directories(path.parent_path());
    writeBytes(*this / name, content);
    return *this / name;
}

std::string TempFolder::read(std::string_view name) const { return readBytes(*this / name); }

bool TempFolder::has(std::string_view name) const { return fs::exists(systemPath(*this / name)); }

std::string TempFolder::makeFolder(std::string_view name) const {
    fs::create_directories(systemPath(*this / name));
    return *this / name;
}

std::vector<std::string> TempFolder::list() const {
    std::vector<std::string> names;
    for (const fs::directory_entry& entry : fs::directory_iterator(systemPath(path_))) {
        names.push_back(entry.path().filename().u8string());
    }
    std::sort(names.begin(), names.end());
    return names;
}

void writeBytes(const std::string& path, std::string_view content) {
    std::ofstream file(systemPath(path), std::ios::binary | std::ios::trunc);
    file.write(content.data(), static_cast<std::streamsize>(content.size()));
    if (!file.flush()) throw std::runtime_error("cannot write " + path);
}

std::string readBytes(const std::string& path) {
    std::ifstream file(systemPath(path), std::ios::binary);
    if (!file) throw std::runtime_error("cannot read " + path);
    return {std::istreambuf_iterator<char>(file), {}};
}

void removeFile(const std::string& path) {
    if (!fs::remove(systemPath(path))) throw std::runtime_error("no file " + path);
}
