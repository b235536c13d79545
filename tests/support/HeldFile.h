#ifndef TESTS_HELDFILE_H
#define TESTS_HELDFILE_H

#include <string>
#include <thread>

#include "support/Platform.h"

// Holds a file open as a scanner or another program may. By what it shares, others cannot open the
// file (Nothing), can only delete it (Deletion), can neither move nor delete it (ReadAndWrite), or
// can open but not read it (EverythingButItsBytes).
class HeldFile {
 public:
    enum class Shares { Nothing, Deletion, ReadAndWrite, EverythingButItsBytes };

    explicit HeldFile(const std::string& path, Shares shares = Shares::Nothing);
    ~HeldFile() { release(); }
    HeldFile(const HeldFile&) = delete;
    HeldFile& operator=(const HeldFile&) = delete;

    bool isHeld() const { return handle_ != nullptr; }
    void release();

    // Whether this system can hold files.
    static bool isPossible();
    static constexpr const char* kNeedsWindows =
        "needs Windows, where a program can hold a file against others";

 private:
    void* handle_ = nullptr;
};

// Releases the file after a moment, while the test runs.
class BrieflyHeldFile {
 public:
    explicit BrieflyHeldFile(const std::string& path,
                             HeldFile::Shares shares = HeldFile::Shares::Nothing)
        : held_(path, shares), wasHeld_(held_.isHeld()), release_([this] {
              sleepMs(120);
              held_.release();
          }) {}
    ~BrieflyHeldFile() { release_.join(); }
    BrieflyHeldFile(const BrieflyHeldFile&) = delete;
    BrieflyHeldFile& operator=(const BrieflyHeldFile&) = delete;

    bool wasHeld() const { return wasHeld_; }

 private:
    HeldFile held_;
    const bool wasHeld_;
    std::thread release_;
};

#endif
