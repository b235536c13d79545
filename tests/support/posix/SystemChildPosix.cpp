#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstddef>
#include <filesystem>
#include <stdexcept>
#include <string_view>
#include <utility>

#include "support/Platform.h"
#include "support/SystemChild.h"

namespace {

constexpr std::uint32_t kKilledStatus = 99;

std::vector<std::string> environmentWith(const ChildOptions& options) {
    std::vector<std::string> all;
    for (char** entry = environ; *entry != nullptr; ++entry) {
        const std::string_view text(*entry);
        bool replaced = false;
        for (const auto& [name, value] : options.environment) {
            replaced |= text.substr(0, text.find('=')) == name;
        }
        if (!replaced) all.emplace_back(text);
    }
    for (const auto& [name, value] : options.environment) all.push_back(name + "=" + value);
    return all;
}

std::vector<char*> pointersTo(std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    for (std::string& text : texts) pointers.push_back(text.data());
    pointers.push_back(nullptr);
    return pointers;
}

// As on Windows, a fatal break has its own status.
std::uint32_t statusOf(int status) {
    if (WIFEXITED(status)) return static_cast<std::uint32_t>(WEXITSTATUS(status));
    return WTERMSIG(status) == SIGTRAP ? kFatalStatus : kKilledStatus;
}

void closeDescriptor(std::intptr_t& descriptor) {
    if (descriptor >= 0) ::close(static_cast<int>(std::exchange(descriptor, -1)));
}

}  // namespace

ChildPipe::ChildPipe() {
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
    read_ = ends[0];
    write_ = ends[1];
}

ChildPipe::~ChildPipe() {
    closeRead();
    closeWrite();
}

bool ChildPipe::readMore(std::string& text) const {
    char bytes[4096];
    const ssize_t count = ::read(static_cast<int>(read_), bytes, sizeof bytes);
    if (count <= 0) return false;
    text.append(bytes, static_cast<std::size_t>(count));
    return true;
}

void ChildPipe::closeRead() { closeDescriptor(read_); }

void ChildPipe::closeWrite() { closeDescriptor(write_); }

SystemChild::SystemChild(const std::string& program, const std::vector<std::string>& arguments,
                         const ChildOptions& options, const ChildPipe& out, const ChildPipe& err) {
    std::vector<std::string> all{program};
    all.insert(all.end(), arguments.begin(), arguments.end());
    std::vector<std::string> environment = environmentWith(options);
    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawn_file_actions_adddup2(&actions, static_cast<int>(out.writingEnd()), STDOUT_FILENO);
    ::posix_spawn_file_actions_adddup2(&actions, static_cast<int>(err.writingEnd()), STDERR_FILENO);
    if (!options.folder.empty()) {
        ::posix_spawn_file_actions_addchdir_np(&actions, systemPath(options.folder).c_str());
    }
    pid_t process = 0;
    const int error = ::posix_spawn(&process, systemPath(program).c_str(), &actions, nullptr,
                                    pointersTo(all).data(), pointersTo(environment).data());
    ::posix_spawn_file_actions_destroy(&actions);
    if (error != 0) throw std::runtime_error("cannot start " + program);
    process_ = process;
}

SystemChild::~SystemChild() { kill(); }

bool SystemChild::waitFor(std::chrono::seconds limit) {
    if (status_) return true;
    const int ending = static_cast<int>(::syscall(SYS_pidfd_open, process_, 0));
    pollfd ended{ending, POLLIN, 0};
    const auto milliseconds = std::chrono::duration_cast<std::chrono::milliseconds>(limit);
    const int result = ::poll(&ended, 1, static_cast<int>(milliseconds.count()));
    ::close(ending);
    return result == 1;
}

void SystemChild::kill() {
    if (!status_) ::kill(static_cast<pid_t>(process_), SIGKILL);
    status();
}

std::uint32_t SystemChild::status() {
    if (!status_) {
        int status = 0;
        ::waitpid(static_cast<pid_t>(process_), &status, 0);
        status_ = statusOf(status);
    }
    return *status_;
}

void* SystemChild::handle() const {
    // NOLINTNEXTLINE(performance-no-int-to-ptr): the handle of the interface is a pointer
    return reinterpret_cast<void*>(process_);
}

// Programs have no ".exe" here.
std::string builtProgram(std::string_view name) {
    constexpr std::string_view kEnding = ".exe";
    if (name.size() > kEnding.size() && name.substr(name.size() - kEnding.size()) == kEnding) {
        name.remove_suffix(kEnding.size());
    }
    return (std::filesystem::u8path(ownProgram()).parent_path() / name).u8string();
}
