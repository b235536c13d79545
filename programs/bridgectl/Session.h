#ifndef BRIDGECTL_SESSION_H
#define BRIDGECTL_SESSION_H

#include <optional>
#include <string>
#include <string_view>

#include "Configuration.h"
#include "ExitCode.h"

// One run of the program: the options in front of the command, the library once a command needs it,
// and how the run ends.
class Session {
 public:
    Session() = default;
    ~Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    // The library keeps the pointer to the client's text, which does not change after start().
    std::string client = "Helper";
    std::string logFile;  // empty: the product's log
    bool noConf = false;

    ExitCode exitCode = ExitCode::Success;

    // Reads the file for `configuration` and initialises the library. False after an error message.
    bool start();

    // Ends the library before the session ends: no callback runs afterwards. Not inside one.
    void stop();

    const Configuration& configuration() const { return *configuration_; }

    // Prints an error and sets the exit code; false, so that callers can return it.
    bool fail(ExitCode code, const std::string& message);

    // The same for a status of the library.
    bool failStatus(ExitCode code, const std::string& what, int status);

    // The error of a key in KeyState::Invalid.
    bool failInvalid(const KeyInfo& key);

    // The error of an instance that is not known.
    bool failInstance(std::string_view instance);

    // Type of a key; nothing, after an error, when there is no such key.
    std::optional<ConfType> requireType(const std::string& key);

    // Describes a key; nothing, after an error, when it or its instance does not exist.
    std::optional<KeyInfo> requireKey(const std::string& key);

 private:
    bool logCanBeOpened();

    std::optional<Configuration> configuration_;
    bool started_ = false;
};

// Reads a key through the library, in the form that people see. Only for KeyState::Value.
std::string readValue(const KeyInfo& key);

// The same for every state: "unset", and `invalid: "text"`.
std::string shownValue(const KeyInfo& key);

#endif
