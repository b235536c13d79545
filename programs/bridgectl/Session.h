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

// One run of the program: the options in front of the command, and the library once a command needs
// it.
class Session : public ProgramRun {
 public:
    Session() = default;
    ~Session();

    // The library keeps the pointer to the client's text, which does not change after start().
    std::string client = "Helper";
    bool noConf = false;
    bool timing = false;  // printTimes() prints

    // In place of the registry's folders; both or none.
    std::optional<std::string> dataFolder;
    std::optional<std::string> installFolder;

    // Makes the two folders the product's. Throws as OwnRegistry does.
    void useFolders();

    // Reads the file for `configuration` and initialises the library. False after an error message.
    bool start();

    // Ends the library before the session ends: no callback runs afterwards. Not inside one.
    void stop();

    // Calls a function of the library, whose name is for printTimes().
    template <typename Call>
    auto timed(const char* function, Call call) {
        const CallTimer timer(times_, function);
        return call();
    }

    // The library's times on standard error, once it has stopped.
    void printTimes() const;

    const Configuration& configuration() const { return *configuration_; }

    // The error of an instance that is not known, with the name that was probably meant.
    bool failInstance(std::string_view instance);

    // The error of a key in KeyState::Invalid.
    bool failInvalid(const KeyInfo& key);

    // False, after an error, when there is no such instance. Without the configuration file none is
    // known, and any will do.
    bool requireInstance(const std::string& instance);

    // Type of a key; nothing, after an error, when there is no such key.
    std::optional<ConfType> requireType(const std::string& key);

    // Describes a key; nothing, after an error, when it or its instance does not exist.
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
