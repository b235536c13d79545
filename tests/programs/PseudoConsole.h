#ifndef TESTS_PSEUDOCONSOLE_H
#define TESTS_PSEUDOCONSOLE_H

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

// A console without a window that programs run in, and whose screen this process reads. One at a
// time: this process leaves its own console for it.
class PseudoConsole {
 public:
    // With a code page for output: 65001 is UTF-8.
    explicit PseudoConsole(unsigned codePage);
    ~PseudoConsole();
    PseudoConsole(const PseudoConsole&) = delete;
    PseudoConsole& operator=(const PseudoConsole&) = delete;

    // Starts a program with all its standard handles on the console. One at a time.
    void start(const std::string& program, const std::vector<std::string>& arguments);

    // The exit status, once the program has ended. One that does not end in time is killed, and
    // the test fails.
    std::uint32_t finish();

    // What the screen shows from its top to its last character, in lines without trailing spaces.
    // Each ends with a line feed; a wide character counts as two columns and is in it once.
    std::string screen() const;

    // The screen once it has this text. Fails the test when it does not get it.
    std::string screenWith(const std::string& text) const;

    // Whether escape sequences move the cursor and set colours, or are shown. Before anything is
    // started.
    bool followsSequences() const;

    // Ctrl+C, for every program in the console but this one.
    void pressCtrlC() const;

 private:
    struct State;
    std::unique_ptr<State> state_;
};

#endif
