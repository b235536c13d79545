#ifndef TESTS_SYSTEMCHILD_H
#define TESTS_SYSTEMCHILD_H

// The system's part of ChildProcess.

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "support/ChildProcess.h"

// A pipe. A child gets its write end as standard output or error.
class ChildPipe {
 public:
    ChildPipe();
    ~ChildPipe();
    ChildPipe(const ChildPipe&) = delete;
    ChildPipe& operator=(const ChildPipe&) = delete;

    // Appends what arrives. False at the end of the pipe and after closeRead().
    bool readMore(std::string& text) const;

    void closeRead();
    void closeWrite();
    std::intptr_t writingEnd() const { return write_; }

 private:
    std::intptr_t read_;
    std::intptr_t write_;
};

// A started process. The destructor kills it.
class SystemChild {
 public:
    SystemChild(const std::string& program, const std::vector<std::string>& arguments,
                const ChildOptions& options, const ChildPipe& out, const ChildPipe& err);
    ~SystemChild();
    SystemChild(const SystemChild&) = delete;
    SystemChild& operator=(const SystemChild&) = delete;

    // Whether it ended within the limit.
    bool waitFor(std::chrono::seconds limit);

    // Does nothing after its end.
    void kill();

    // Waits for its end.
    std::uint32_t status();

    void* handle() const;

 private:
    std::intptr_t process_;
    std::optional<std::uint32_t> status_;  // once it is known
};

#endif
