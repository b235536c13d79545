#ifndef TESTS_CHILDPROCESS_H
#define TESTS_CHILDPROCESS_H

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

// Exit status after the library's fatal break.
constexpr std::uint32_t kFatalStatus = 0x80000003;

struct ChildResult {
    std::uint32_t status = 0;
    std::string out;  // standard output, as bytes
    std::string err;  // standard error
};

struct ChildOptions {
    std::vector<std::pair<std::string, std::string>> environment;  // overrides this process's
    std::string folder;                                            // empty: this process's
    std::chrono::seconds limit{60};                                // then it is killed
    bool outputIsBroken = false;                                   // its output has no reader
};

// A running child with its output in pipes. Destroying it kills it.
class ChildProcess {
 public:
    ChildProcess(const std::string& program, const std::vector<std::string>& arguments,
                 const ChildOptions& options = {});
    ~ChildProcess();
    ChildProcess(ChildProcess&&) noexcept;

    // Waits for the next line of its standard output. Returns it without the line feed.
    std::string readLine();
    // The same for its standard error. finish() still returns these lines too.
    std::string readErrorLine();

    // Leaves its standard output without a reader.
    void closeOutput();

    // Waits for its end. A child that exceeds its limit fails the test.
    ChildResult finish();

    void kill();

    // The Windows handle, for direct system calls.
    void* handle() const;

 private:
    struct State;
    std::unique_ptr<State> state_;
};

ChildResult runChild(const std::string& program, const std::vector<std::string>& arguments,
                     const ChildOptions& options = {});

// Path of a program of the build tree, by name ("bridgectl.exe").
std::string builtProgram(std::string_view name);

// Paths of a product file and of a stand-in ("QX-Player.exe"). Windows only.
std::string productFile(std::string_view name);
std::string standinProgram(std::string_view name);

#endif
