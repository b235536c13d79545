#ifndef TESTS_PSEUDOCONSOLE_H
#define TESTS_PSEUDOCONSOLE_H

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

// A console without a window. Programs run in it, and this process reads its screen. Only one at a
// time, because this process leaves its own console for it.
class PseudoConsole {
 public:
    // `codePage` is for input and output: 65001 is UTF-8.
    explicit PseudoConsole(unsigned codePage);
    ~PseudoConsole();
    PseudoConsole(const PseudoConsole&) = delete;
    PseudoConsole& operator=(const PseudoConsole&) = delete;

    // Starts a program with its standard handles on the console. Only one at a time.
    void start(const std::string& program, const std::vector<std::string>& arguments);

    // Waits for the program's end and returns its exit status. Kills the program and fails the test
    // if it takes too long.
    std::uint32_t finish();

    // The screen from the top to the last character, in lines without trailing spaces, each with a
    // line feed. A wide character appears once.
    std::string screen() const;

    // Waits until the screen has this text, and returns the screen. Fails the test if it takes too
    // long.
    std::string screenWith(const std::string& text) const;

    // Whether the console follows escape sequences instead of showing them. Call before start().
    bool followsSequences() const;

    // Sends Ctrl+C to all programs on the console except this one.
    void pressCtrlC() const;

 private:
    struct State;
    std::unique_ptr<State> state_;
};

#endif
