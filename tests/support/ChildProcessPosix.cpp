#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <spawn.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <condition_variable>
#include <csignal>
#include <mutex>
#include <stdexcept>
#include <thread>

#include "support/ChildProcess.h"
#include "support/Platform.h"

namespace {

constexpr std::uint32_t kKilledStatus = 99;

// A pipe whose ends no child inherits but as its standard output.
struct Pipe {
    int read = -1;
    int write = -1;

    Pipe() {
        int ends[2];
        if (::pipe2(ends, O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
        read = ends[0];
        write = ends[1];
    }
    void closeWrite() { ::close(std::exchange(write, -1)); }
};

// Appends what arrives; false at the end of the pipe.
bool readMore(int pipe, std::string& text) {
    char bytes[4096];
    const ssize_t count = ::read(pipe, bytes, sizeof bytes);
    if (count <= 0) return false;
    text.append(bytes, static_cast<std::size_t>(count));
    return true;
}

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

// As Windows has it: a break is its own status.
std::uint32_t statusOf(int status) {
    if (WIFEXITED(status)) return static_cast<std::uint32_t>(WEXITSTATUS(status));
    return WTERMSIG(status) == SIGTRAP ? kFatalStatus : kKilledStatus;
}

}  // namespace

struct ChildProcess::State {
    Pipe out;
    Pipe err;
    pid_t process = 0;
    bool reaped = false;
    int status = 0;
    std::chrono::seconds limit{};
    std::string outText;
    std::thread errReader;

    std::mutex errLock;
    std::condition_variable errChanged;
    std::string errText;
    std::size_t errRead = 0;
    bool errEnded = false;

    void readErrors() {
        for (std::string piece; readMore(err.read, piece); piece.clear()) {
            const std::lock_guard<std::mutex> guard(errLock);
            errText += piece;
            errChanged.notify_all();
        }
        const std::lock_guard<std::mutex> guard(errLock);
        errEnded = true;
        errChanged.notify_all();
    }

    void reap() {
        if (!std::exchange(reaped, true)) ::waitpid(process, &status, 0);
    }

    // Whether it ended within its limit.
    bool waitForEnd() const {
        if (reaped) return true;
        const int handle = static_cast<int>(::syscall(SYS_pidfd_open, process, 0));
        pollfd ended{handle, POLLIN, 0};
        const auto milliseconds = std::chrono::duration_cast<std::chrono::milliseconds>(limit);
        const int result = ::poll(&ended, 1, static_cast<int>(milliseconds.count()));
        ::close(handle);
        return result == 1;
    }

    void start(const std::string& program, const std::vector<std::string>& arguments,
               const ChildOptions& options) {
        std::vector<std::string> all{program};
        all.insert(all.end(), arguments.begin(), arguments.end());
        std::vector<std::string> environment = environmentWith(options);
        posix_spawn_file_actions_t actions;
        ::posix_spawn_file_actions_init(&actions);
        ::posix_spawn_file_actions_adddup2(&actions, out.write, STDOUT_FILENO);
        ::posix_spawn_file_actions_adddup2(&actions, err.write, STDERR_FILENO);
        if (!options.folder.empty()) {
            ::posix_spawn_file_actions_addchdir_np(&actions, systemPath(options.folder).c_str());
        }
        const int error = ::posix_spawn(&process, systemPath(program).c_str(), &actions, nullptr,
                                        pointersTo(all).data(), pointersTo(environment).data());
        ::posix_spawn_file_actions_destroy(&actions);
        if (error != 0) throw std::runtime_error("cannot start " + program);
    }
};

ChildProcess::ChildProcess(const std::string& program, const std::vector<std::string>& arguments,
                           const ChildOptions& options)
    : state_(std::make_unique<State>()) {
    State& state = *state_;
    state.start(program, arguments, options);
    state.limit = options.limit;
    state.out.closeWrite();
    state.err.closeWrite();
    state.errReader = std::thread([&state] { state.readErrors(); });
}

ChildProcess::ChildProcess(ChildProcess&&) noexcept = default;

ChildProcess::~ChildProcess() {
    if (state_ == nullptr) return;
    kill();
    if (state_->errReader.joinable()) state_->errReader.join();
    if (state_->out.read >= 0) closeOutput();
    ::close(state_->err.read);
}

void ChildProcess::kill() {
    if (!state_->reaped) ::kill(state_->process, SIGKILL);
    state_->reap();
}

void* ChildProcess::handle() const {
    return reinterpret_cast<void*>(static_cast<std::intptr_t>(state_->process));
}

std::string ChildProcess::readLine() {
    std::size_t end;
    while ((end = state_->outText.find('\n')) == std::string::npos) {
        if (!readMore(state_->out.read, state_->outText)) {
            const std::lock_guard<std::mutex> guard(state_->errLock);
            throw std::runtime_error("child ended without the line; it wrote: " + state_->outText +
                                     state_->errText);
        }
    }
    std::string line = state_->outText.substr(0, end);
    state_->outText.erase(0, end + 1);
    return line;
}

std::string ChildProcess::readErrorLine() {
    State& state = *state_;
    std::unique_lock<std::mutex> guard(state.errLock);
    std::size_t end;
    while ((end = state.errText.find('\n', state.errRead)) == std::string::npos) {
        if (state.errEnded) throw std::runtime_error("child ended; it wrote: " + state.errText);
        state.errChanged.wait(guard);
    }
    const std::string line = state.errText.substr(state.errRead, end - state.errRead);
    state.errRead = end + 1;
    return line;
}

void ChildProcess::closeOutput() { ::close(std::exchange(state_->out.read, -1)); }

ChildResult ChildProcess::finish() {
    State& state = *state_;
    std::thread outReader([&state] {
        while (state.out.read >= 0 && readMore(state.out.read, state.outText)) {
        }
    });
    if (!state.waitForEnd()) {
        ADD_FAILURE() << "child did not end within " << state.limit.count() << " s";
        kill();
    }
    state.reap();
    outReader.join();
    state.errReader.join();
    return {statusOf(state.status), state.outText, state.errText};
}

ChildResult runChild(const std::string& program, const std::vector<std::string>& arguments,
                     const ChildOptions& options) {
    return ChildProcess(program, arguments, options).finish();
}

// Programs have no ".exe" here.
std::string builtProgram(std::string_view name) {
    constexpr std::string_view kEnding = ".exe";
    if (name.size() > kEnding.size() && name.substr(name.size() - kEnding.size()) == kEnding) {
        name.remove_suffix(kEnding.size());
    }
    return (std::filesystem::u8path(ownProgram()).parent_path() / name).u8string();
}
