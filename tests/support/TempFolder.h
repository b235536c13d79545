#ifndef TESTS_TEMPFOLDER_H
#define TESTS_TEMPFOLDER_H

#include <string>
#include <string_view>
#include <vector>

// A folder of the test's own, removed with everything in it. Paths are UTF-8 with "\".
class TempFolder {
 public:
    TempFolder();
    ~TempFolder();
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    // Without a separator at its end.
    const std::string& path() const { return path_; }
    std::string operator/(std::string_view name) const;

    // Plain bytes, with the C++ library and not with the file module that is under test. A write
    // makes the folders that are missing.
    std::string write(std::string_view name, std::string_view content) const;
    std::string read(std::string_view name) const;
    bool has(std::string_view name) const;
    std::string makeFolder(std::string_view name) const;

    // Names of everything directly inside, sorted.
    std::vector<std::string> list() const;

 private:
    std::string path_;
};

// The same for any path of the product.
void writeBytes(const std::string& path, std::string_view content);
std::string readBytes(const std::string& path);
void removeFile(const std::string& path);

#endif
