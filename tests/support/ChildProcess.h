#ifndef TESTS_CHILDPROCESS_H
#define TESTS_CHILDPROCESS_H

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

// Status of a process that the library ended with its fatal break.
constexpr std::uint32_t kFatalStatus = 0x80000003;

struct ChildResult {
    std::uint32_t status = 0;
    std::string out;  // standard output, as bytes
    std::string err;  // standard error
};

struct ChildOptions {
    std::vector<std::pair<std::string, std::string>> environment;  // before this process's
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

    // Waits for the next line of its standard output, without the line feed.
    std::string readLine();

    // The same for its standard error, which finish() gives whole all the same.
    std::string readErrorLine();

    // Leaves its standard output without a reader.
    void closeOutput();

    // Waits for its end. A child that does not end within its limit fails the test.
    ChildResult finish();

    void kill();

    // The Windows handle, for what this class does not offer.
    void* handle() const;

 private:
    struct State;
    std::unique_ptr<State> state_;
};

ChildResult runChild(const std::string& program, const std::vector<std::string>& arguments,
                     const ChildOptions& options = {});

// Path of a program of the build tree, by name ("bridgectl.exe").
std::string builtProgram(std::string_view name);

// Paths of a file among the products, and of a stand-in: "QX-Player.exe". For Windows only.
std::string productFile(std::string_view name);
std::string standinProgram(std::string_view name);

#endif
