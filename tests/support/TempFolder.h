#ifndef TESTS_TEMPFOLDER_H
#define TESTS_TEMPFOLDER_H

#include <string>
#include <string_view>
#include <vector>

// A temporary folder. The destructor removes it with its content. Paths are UTF-8 with "\".
class TempFolder {
 public:
    TempFolder();
    ~TempFolder();
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    // Without a separator at its end.
    const std::string& path() const { return path_; }
    std::string operator/(std::string_view name) const;

    // Bytes, through the C++ library instead of the file module under test. write() creates missing
    // folders and returns the path.
    std::string write(std::string_view name, std::string_view content) const;
    std::string read(std::string_view name) const;
    bool has(std::string_view name) const;
    std::string makeFolder(std::string_view name) const;

    // The names of its direct entries, sorted.
    std::vector<std::string> list() const;

 private:
    std::string path_;
};

// The same for any path of the product.
void writeBytes(const std::string& path, std::string_view content);
std::string readBytes(const std::string& path);
void removeFile(const std::string& path);

#endif
