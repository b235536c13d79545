/**
 * @file bridge.hpp
 * @brief bridge.h for C++17: texts that free themselves, results that say what went wrong, and
 *        callbacks as std::function. Header only; needs no Qt.
 *
 * The conventions of bridge.h hold. What differs: texts go in as std::string and come back as
 * bridge::Text, an exception of a callback stays in the host, and the functions for finished APK
 * installs and for the instance list are called whenever they are set, each without regard to the
 * other (bridge.h: slots 3 and 4).
 */
#ifndef BRIDGE_BRIDGE_HPP
#define BRIDGE_BRIDGE_HPP

#include <bridge/bridge.h>

#include <cstdint>
#include <exception>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <utility>

namespace bridge {

/** A text of the library's, freed by the library at the end of its life. */
class Text {
 public:
    explicit Text(char* text) noexcept : text_(text) {}

    /** Null after a failure, which TextResult tells. */
    const char* c_str() const noexcept { return text_.get(); }
    std::string_view view() const noexcept {
        return text_ == nullptr ? std::string_view() : std::string_view(text_.get());
    }
    std::string str() const { return std::string(view()); }

 private:
    struct Free {
        void operator()(char* text) const noexcept { bridgeFreeMemory(text); }
    };
    std::unique_ptr<char, Free> text_;
};

/** The outcome of a call that has nothing to return: a result code of bridge.h. */
class [[nodiscard]] Status {
 public:
    explicit Status(bridge_i32 code) noexcept : code_(code) {}

    bool ok() const noexcept { return code_ == BRIDGE_SUCCESS; }
    explicit operator bool() const noexcept { return ok(); }
    bridge_i32 code() const noexcept { return code_; }

 private:
    bridge_i32 code_;
};

/** A text, or the result code that stands in its place. The log has the cause of a failure. */
class [[nodiscard]] TextResult {
 public:
    explicit TextResult(char* text) noexcept : text_(text) {}

    bool ok() const noexcept { return text_.c_str() != nullptr; }
    explicit operator bool() const noexcept { return ok(); }
    bridge_i32 code() const noexcept { return ok() ? BRIDGE_SUCCESS : BRIDGE_FAILURE; }

    /** The text; only when ok(). */
    const Text& operator*() const& noexcept { return text_; }
    Text operator*() && noexcept { return std::move(text_); }
    const Text* operator->() const noexcept { return &text_; }

    /** A copy of the text, or of what is to stand for it after a failure. */
    std::string valueOr(std::string_view other) const {
        return std::string(ok() ? text_.view() : other);
    }

 private:
    Text text_;
};

/** Who the host is. Two hosts of one kind share a server name: only the first gets events. */
enum class Client { Launcher, Installer, LogCollector, Helper, Uninstaller };

/** The client id's text, which lives for ever, as the library wants it. */
inline const char* clientId(Client client) noexcept {
    switch (client) {
        case Client::Launcher:
            return "Launcher";
        case Client::Installer:
            return "Installer";
        case Client::LogCollector:
            return "LogCollector";
        case Client::Helper:
            return "Helper";
        case Client::Uninstaller:
            return "Uninstaller";
    }
    return "";
}

/** bridgeApiInit() */
inline Status init(Client client) { return Status(bridgeApiInit(clientId(client))); }

/** bridgeApiInitEx() without a configuration file: the catalogue's defaults only. */
inline Status initWithoutFile(Client client, const char* logFilePath = nullptr) {
    return Status(bridgeApiInitEx(clientId(client), 1, 0, logFilePath));
}

/** bridgeApiInitEx() with a log file of the host's choice. */
inline Status initWithLog(Client client, const std::string& logFilePath) {
    return Status(bridgeApiInitEx(clientId(client), 0, 0, logFilePath.c_str()));
}

/** bridgeApiFini(); not from inside a callback. FreeLibrary() only after it has returned. */
inline void finish() { static_cast<void>(bridgeApiFini()); }

/** Typed access to the configuration. Keys and types that the catalogue does not know are fatal. */
namespace conf {

inline bool getBool(const std::string& key) { return bridgeConfGetBool(key.c_str()) != 0; }
inline std::int32_t getI32(const std::string& key) { return bridgeConfGetI32(key.c_str()); }
inline std::int64_t getI64(const std::string& key) { return bridgeConfGetI64(key.c_str()); }
inline TextResult getString(const std::string& key) {
    return TextResult(bridgeConfGetString(key.c_str()));
}
inline TextResult getMultiString(const std::string& key) {
    return TextResult(bridgeConfGetMultiString(key.c_str()));
}

inline Status setBool(const std::string& key, bool value) {
    return Status(bridgeConfSetBool(key.c_str(), value ? 1 : 0));
}
inline Status setI32(const std::string& key, std::int32_t value) {
    return Status(bridgeConfSetI32(key.c_str(), value));
}
inline Status setI64(const std::string& key, std::int64_t value) {
    return Status(bridgeConfSetI64(key.c_str(), value));
}
inline Status setString(const std::string& key, const std::string& value) {
    return Status(bridgeConfSetString(key.c_str(), value.c_str()));
}
inline Status setMultiString(const std::string& key, const std::string& value) {
    return Status(bridgeConfSetMultiString(key.c_str(), value.c_str()));
}

inline Status commit() { return Status(bridgeConfCommit()); }
/** bridgeConfCommitToFile(); afterwards nothing is staged for commit(). */
inline Status commitToFile(const std::string& path) {
    return Status(bridgeConfCommitToFile(path.c_str()));
}

}  // namespace conf

/** bridgeConfGetInstances(): JSON. */
inline TextResult instances() { return TextResult(bridgeConfGetInstances()); }

/** bridgeGetInstalledApps(): JSON. */
inline TextResult installedApps(const std::string& instance) {
    return TextResult(bridgeGetInstalledApps(instance.c_str()));
}

inline Status launchApp(const std::string& instance, const std::string& package) {
    return Status(bridgeLaunchApp(instance.c_str(), package.c_str()));
}
inline Status launchAppStore(const std::string& instance, const std::string& store,
                             const std::string& package) {
    return Status(bridgeLaunchAppStore(instance.c_str(), store.c_str(), package.c_str()));
}
inline Status launchUrl(const std::string& instance, const std::string& url) {
    return Status(bridgeLaunchUrl(instance.c_str(), url.c_str()));
}
inline Status installApk(const std::string& instance, const std::string& apkFilePath) {
    return Status(bridgeInstallApk(instance.c_str(), apkFilePath.c_str()));
}
inline Status uninstallApp(const std::string& instance, const std::string& package) {
    return Status(bridgeUninstallApp(instance.c_str(), package.c_str()));
}
inline Status installImage(const std::string& imageName) {
    return Status(bridgeInstallImage(imageName.c_str()));
}

/** What a new instance is to be; all texts, numbers in decimal. */
struct FreshInstance {
    std::string imageName;
    std::string cpu;
    std::string ram;
    std::string graphicEngine;
    std::string graphicRenderer;
    std::string deviceProfile;
};

inline Status createFreshInstance(const FreshInstance& wanted) {
    return Status(bridgeCreateFreshInstance(wanted.imageName.c_str(), wanted.cpu.c_str(),
                                            wanted.ram.c_str(), wanted.graphicEngine.c_str(),
                                            wanted.graphicRenderer.c_str(),
                                            wanted.deviceProfile.c_str()));
}

inline Status shutdownPlayer(const std::string& instance, bool flag = false) {
    return Status(bridgePlrShutdown(instance.c_str(), flag ? 1 : 0));
}
inline void shutdown() { bridgeShutdown(); }

/** An installed or updated app. The texts live as long as the call. */
struct AppInstalled {
    std::string_view instance;
    std::string_view package;
    std::string_view activity;
    std::string_view appLabel;
    std::int32_t versionCode;
    std::string_view versionName;
    std::string_view iconFilePath;
    bool isUpdate;
};

/**
 * The host's functions; any may be empty. They run on the library's event thread, one after
 * another. A text lives as long as the call.
 */
struct Callbacks {
    std::function<void(const AppInstalled& app)> appInstalled;
    std::function<void(std::string_view instance, std::string_view package)> appUninstalled;
    std::function<void(std::string_view instance, std::int32_t status,
                       std::string_view apkFilePath)>
        apkInstallCompleted;
    std::function<void()> instanceListUpdated;
    std::function<void(std::string_view imageName, std::int32_t status, double progress)>
        installImageProgress;
    std::function<void(std::int32_t status, std::string_view instance)> createInstanceCompleted;
    std::function<void(std::string_view instance)> instanceConfigurationChanged;
    std::function<void(std::string_view instance, std::string_view package)> appDisplayed;
    std::function<void(std::string_view instance, std::string_view emailId, std::int32_t action)>
        accountListUpdated;

    /** Gets what one of the above threw. What this one throws is dropped. */
    std::function<void(std::exception_ptr exception)> failed;
};

/** How the functions above reach the library; not for hosts. */
namespace detail {

using SharedCallbacks = std::shared_ptr<const Callbacks>;

struct CurrentCallbacks {
    std::mutex lock;
    SharedCallbacks callbacks;
};

/** Made once and never destroyed: events can come until the process ends. */
inline CurrentCallbacks& current() {
    static CurrentCallbacks& state = *new CurrentCallbacks;
    return state;
}

/** Calls one of the functions, on a table that stays whole while it runs. */
template <typename Function, typename... Arguments>
void call(Function Callbacks::*member, Arguments&&... arguments) noexcept {
    SharedCallbacks callbacks;
    try {
        {
            const std::lock_guard<std::mutex> guard(current().lock);
            callbacks = current().callbacks;
        }
        const Function& function = (*callbacks).*member;
        if (function) function(std::forward<Arguments>(arguments)...);
    } catch (...) {
        try {
            if (callbacks && callbacks->failed) callbacks->failed(std::current_exception());
        } catch (...) {
        }
    }
}

}  // namespace detail

/** bridgeRegisterCallbacks(): starts the event server, the first time, and replaces all functions.
 */
inline void registerCallbacks(Callbacks callbacks) {
    auto shared = std::make_shared<const Callbacks>(std::move(callbacks));
    {
        const std::lock_guard<std::mutex> guard(detail::current().lock);
        detail::current().callbacks.swap(shared);
    }
    bridgeRegisterCallbacks(
        [](const char* instance, const char* package, const char* activity, const char* appLabel,
           bridge_i32 versionCode, const char* versionName, const char* iconFilePath,
           bridge_bool isUpdate) {
            detail::call(&Callbacks::appInstalled,
                         AppInstalled{instance, package, activity, appLabel, versionCode,
                                      versionName, iconFilePath, isUpdate != 0});
        },
        [](const char* instance, const char* package) {
            detail::call(&Callbacks::appUninstalled, instance, package);
        },
        [](const char* instance, bridge_i32 status, const char* apkFilePath) {
            detail::call(&Callbacks::apkInstallCompleted, instance, status, apkFilePath);
        },
        [] { detail::call(&Callbacks::instanceListUpdated); },
        [](const char* imageName, bridge_i32 status, double progress) {
            detail::call(&Callbacks::installImageProgress, imageName, status, progress);
        },
        [](bridge_i32 status, const char* instance) {
            detail::call(&Callbacks::createInstanceCompleted, status, instance);
        },
        [](const char* instance) {
            detail::call(&Callbacks::instanceConfigurationChanged, instance);
        },
        [](const char* instance, const char* package) {
            detail::call(&Callbacks::appDisplayed, instance, package);
        },
        [](const char* instance, const char* emailId, bridge_i32 action) {
            detail::call(&Callbacks::accountListUpdated, instance, emailId, action);
        });
}

}  // namespace bridge

#endif
