#ifndef BRIDGECTL_SESSION_H
#define BRIDGECTL_SESSION_H

#include <optional>
#include <string>
#include <string_view>

#include "CallTimes.h"
#include "Configuration.h"
#include "OwnRegistry.h"
#include "conf/ConfCatalogue.h"
#include "shared/ProgramRun.h"

// One run of bridgectl: the options before the command, and the library if the command needs it.
class Session : public ProgramRun {
 public:
    Session() = default;
    ~Session();

    // The library keeps the pointer to this text. It must not change after start().
    std::string client = "Helper";
    bool noConf = false;
    bool timing = false;  // print the times

    // Replace the folders in the registry; both or neither.
    std::optional<std::string> dataFolder;
    std::optional<std::string> installFolder;

    // Uses these two folders. Throws as OwnRegistry does.
    void useFolders();

    // Reads the file for configuration() and initialises the library. False after an error.
    bool start();

    // Shuts the library down; no callback runs afterwards. Must not be called from a callback.
    void stop();

    // Calls a function of the library and measures its time under this name for printTimes().
    template <typename Call>
    auto timed(const char* function, Call call) {
        const CallTimer timer(times_, function);
        return call();
    }

    // Prints the times on standard error. Call after stop().
    void printTimes() const;

    const Configuration& configuration() const { return *configuration_; }

    // Reports an unknown instance, with the nearest name as a hint.
    bool failInstance(std::string_view instance);

    // Reports a key in KeyState::Invalid.
    bool failInvalid(const KeyInfo& key);

    // False, after an error, if the instance does not exist. Always true without the configuration
    // file.
    bool requireInstance(const std::string& instance);

    // The type of a key. Empty, after an error, if the key does not exist.
    std::optional<ConfType> requireType(const std::string& key);

    // Describes a key. Empty, after an error, if the key or its instance does not exist.
    std::optional<KeyInfo> requireKey(const std::string& key);

 private:
    int startLibrary();
    std::string startHint() const;

    OwnRegistry registry_;
    CallTimes times_;
    std::optional<Configuration> configuration_;
    bool started_ = false;
};

#endif
