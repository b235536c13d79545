#ifndef TESTS_PLATFORM_H
#define TESTS_PLATFORM_H

#include <chrono>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

// What tests need from the system.

int ownProcessId();

inline void sleepMs(int milliseconds) {
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

// Path of this test program, and its arguments as UTF-8 (argv need not be).
std::string ownProgram();
std::vector<std::string> utf8Arguments(int argc, char** argv);

// Makes a fatal break end the process without a dialog. Children inherit this.
void breakQuietly();

// Converts a path of the product ("C:\Data\file") to the C++ library's form, and back.
std::filesystem::path systemPath(const std::string& path);
std::string productPath(const std::filesystem::path& path);

// The same for paths of any length.
std::filesystem::path longSystemPath(const std::string& path);

// How often a QLocalSocket emits aboutToClose(): twice where it wraps another socket, which emits
// it too.
int closeSignals();

// Changes the current folder for its scope.
class InFolder {
 public:
    explicit InFolder(const std::string& path);
    ~InFolder();
    InFolder(const InFolder&) = delete;
    InFolder& operator=(const InFolder&) = delete;

 private:
    std::filesystem::path before_;
};

// The system's text for one of its errors, without the line feed.
std::string systemErrorText(int error);

#endif
