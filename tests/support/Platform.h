#ifndef TESTS_PLATFORM_H
#define TESTS_PLATFORM_H

#include <chrono>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

// What tests ask of the system that they run on.

int ownProcessId();

inline void sleepMs(int milliseconds) {
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

// Path of this test program, and its arguments as UTF-8, which argv need not be.
std::string ownProgram();
std::vector<std::string> utf8Arguments(int argc, char** argv);

// Lets a process that breaks end at once, without a dialog. Its children inherit this.
void breakQuietly();

// A path of the product, "C:\Data\file", as the C++ library takes it, and back.
std::filesystem::path systemPath(const std::string& path);
std::string productPath(const std::filesystem::path& path);

// The same for paths of any length, some of which the system's usual form cannot express.
std::filesystem::path longSystemPath(const std::string& path);

// How often a local socket of Qt's tells that it is about to close: where it has another socket
// inside, that one tells it too.
int closeSignals();

// Goes to a folder, and back when it goes out of scope.
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
