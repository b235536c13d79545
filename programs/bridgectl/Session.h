#ifndef BRIDGECTL_SESSION_H
#define BRIDGECTL_SESSION_H

#include <optional>
#include <string>
#include <string_view>

#include "Configuration.h"
#include "ProgramRun.h"

// One run of the program: the options in front of the command, and the library once a command needs
// it.
class Session : public ProgramRun {
 public:
    Session() = default;
    ~Session();

    // The library keeps the pointer to the client's text, which does not change after start().
    std::string client = "Helper";
    bool noConf = false;

    // Reads the file for `configuration` and initialises the library. False after an error message.
    bool start();

    // Ends the library before the session ends: no callback runs afterwards. Not inside one.
    void stop();

    const Configuration& configuration() const { return *configuration_; }

    // The error of a key in KeyState::Invalid.
    bool failInvalid(const KeyInfo& key);

    // Type of a key; nothing, after an error, when there is no such key.
    std::optional<ConfType> requireType(const std::string& key);

    // Describes a key; nothing, after an error, when it or its instance does not exist.
    std::optional<KeyInfo> requireKey(const std::string& key);

 private:
    std::optional<Configuration> configuration_;
    bool started_ = false;
};

// Reads a key through the library, in the form that people see. Only for KeyState::Value.
std::string readValue(const KeyInfo& key);

// The same for every state: "unset", and `invalid: "text"`.
std::string shownValue(const KeyInfo& key);

#endif
