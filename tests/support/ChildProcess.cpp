#include "support/ChildProcess.h"

#include <gtest/gtest.h>

#include <condition_variable>
#include <cstddef>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <thread>

#include "support/Proof.h"
#include "support/SystemChild.h"

struct ChildProcess::State {
    ChildPipe out;
    ChildPipe err;
    std::optional<SystemChild> child;
    std::chrono::seconds limit{};
    std::string outText;
    std::thread errReader;

    std::mutex errLock;
    std::condition_variable errChanged;
    std::string errText;      // all of it
    std::size_t errRead = 0;  // how much of it readErrorLine() has returned
    bool errEnded = false;

    void readErrors() {
        for (std::string piece; err.readMore(piece); piece.clear()) {
            const std::lock_guard<std::mutex> guard(errLock);
            errText += piece;
            errChanged.notify_all();
        }
        const std::lock_guard<std::mutex> guard(errLock);
        errEnded = true;
        errChanged.notify_all();
    }
};

ChildProcess::ChildProcess(const std::string& program, const std::vector<std::string>& arguments,
                           const ChildOptions& options)
    : state_(std::make_unique<State>()) {
    State& state = *state_;
    if (options.outputIsBroken) closeOutput();
    state.child.emplace(program, arguments, options, state.out, state.err);
    state.limit = options.limit * proofSize(1, 60);
    state.out.closeWrite();
    state.err.closeWrite();
    state.errReader = std::thread([&state] { state.readErrors(); });
}

ChildProcess::ChildProcess(ChildProcess&&) noexcept = default;

ChildProcess::~ChildProcess() {
    if (state_ == nullptr) return;
    kill();
    if (state_->errReader.joinable()) state_->errReader.join();
}

void ChildProcess::kill() { state_->child->kill(); }

void* ChildProcess::handle() const { return state_->child->handle(); }

std::string ChildProcess::readLine() {
    std::size_t end;
    while ((end = state_->outText.find('\n')) == std::string::npos) {
        if (!state_->out.readMore(state_->outText)) {
            const std::lock_guard<std::mutex> guard(state_->errLock);
            throw std::runtime_error("child ended without the line; it wrote: " + state_->outText +
                                     state_->errText);
        }
    }
    std::string line = state_->outText.substr(0, end);
    state_->outText.erase(0, end + 1);
    if (!line.empty() && line.back() == '\r') line.pop_back();
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

void ChildProcess::closeOutput() { state_->out.closeRead(); }

ChildResult ChildProcess::finish() {
    State& state = *state_;
    std::thread outReader([&state] {
        while (state.out.readMore(state.outText)) {
        }
    });
    if (!state.child->waitFor(state.limit)) {
        ADD_FAILURE() << "child did not end within " << state.limit.count() << " s";
        kill();
    }
    outReader.join();
    state.errReader.join();
    return {state.child->status(), state.outText, state.errText};
}

ChildResult runChild(const std::string& program, const std::vector<std::string>& arguments,
                     const ChildOptions& options) {
    return ChildProcess(program, arguments, options).finish();
}
