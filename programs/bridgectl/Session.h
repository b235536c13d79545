#ifndef BRIDGECTL_SESSION_H
#define BRIDGECTL_SESSION_H

#include <optional>
#include <string>

#include "Configuration.h"
#include "ExitCode.h"

// One run of the program: the options in front of the command, the library once a command needs it,
// and how the run ends.
class Session {
 public:
    // The library keeps the pointer to the client's text: a session lives as long as the process.
    std::string client = "Helper";
    std::string logFile;  // empty: the product's log
    bool noConf = false;

    ExitCode exitCode = ExitCode::Success;

    // Reads the file for `configuration` and initialises the library. False after an error message.
    bool start();

    const Configuration& configuration() const { return *configuration_; }

    // Prints an error and sets the exit code; false, so that callers can return it.
    bool fail(ExitCode code, const std::string& message);

    // The same for a status of the library.
    bool failStatus(ExitCode code, const std::string& what, int status);

    // Describes a key that a read may go on with; else an error.
    std::optional<KeyInfo> requireKey(const std::string& key);

 private:
    bool logCanBeOpened();

    std::optional<Configuration> configuration_;
};

// Reads a key through the library, in the form that people see. Only for KeyState::Value.
std::string readValue(const KeyInfo& key);

#endif
